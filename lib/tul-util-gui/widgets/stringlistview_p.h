#pragma once

#include <QListView>
#include <QPersistentModelIndex>

namespace Ui
{

/// A list view that removes the entry that was edited until it was empty.
class StringListView : public QListView
{
    Q_OBJECT

public:
    using QListView::QListView;

    /// Opens the editor of an entry that has just been added and that goes when the editing is
    /// cancelled while it is still empty.
    void editNew(const QModelIndex &index);

protected:
    void commitData(QWidget *editor) override;
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) override;

private:
    void removeIfEmpty(const QModelIndex &index);

    QPersistentModelIndex m_new; // the entry that editNew() has opened
    bool m_keepRows = false; // the view is in the middle of something that counts on its rows
    bool m_committedMeanwhile = false; // and an editor has written its text back
};

} // namespace Ui
