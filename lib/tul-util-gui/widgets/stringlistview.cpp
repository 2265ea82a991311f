#include <tul-util-gui/widgets/stringlistview_p.h>

#include <QPointer>
#include <QScopedValueRollback>

using Ui::StringListView;

void StringListView::editNew(const QModelIndex &index)
{
    const QPersistentModelIndex added(index);
    setCurrentIndex(added); // ends the editing of another entry, which may remove that
    m_new = added;
    edit(added);
}

void StringListView::commitData(QWidget *editor)
{
    const QPointer<StringListView> self(this);
    QListView::commitData(editor);
    if (!self)
        return;
    // Removing a row makes the view commit once more, with the next row current.
    if (m_keepRows)
        m_committedMeanwhile = true;
    else
        removeIfEmpty(currentIndex());
}

void StringListView::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    QListView::closeEditor(editor, hint);
    const QPersistentModelIndex added = m_new;
    m_new = QPersistentModelIndex();
    if (hint == QAbstractItemDelegate::RevertModelCache && !m_keepRows)
        removeIfEmpty(added);
}

void StringListView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    if (m_keepRows) {
        QListView::currentChanged(current, previous);
        return;
    }
    // The view commits the editor of the entry it leaves when the next one is current already, and
    // goes on with an index of that one: the removal has to wait.
    const QPersistentModelIndex left(previous);
    m_committedMeanwhile = false;
    {
        const QScopedValueRollback<bool> guard(m_keepRows, true);
        QListView::currentChanged(current, previous);
    }
    if (m_committedMeanwhile)
        removeIfEmpty(left);
}

void StringListView::rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end)
{
    const QScopedValueRollback<bool> guard(m_keepRows, true);
    QListView::rowsAboutToBeRemoved(parent, start, end);
}

void StringListView::removeIfEmpty(const QModelIndex &index)
{
    if (!index.isValid() || !index.data().toString().isEmpty())
        return;
    const QScopedValueRollback<bool> guard(m_keepRows, true);
    model()->removeRow(index.row());
}
