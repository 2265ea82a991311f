#include <tul-util-gui/mdatable/mdadimensionlistwidget.h>

#include <QDrag>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>

MdaDimensionListWidget::MdaDimensionListWidget(QWidget *parent)
    : FixedHeightListWidget(parent)
{
    QPalette noHighlight = palette();
    noHighlight.setBrush(QPalette::Inactive, QPalette::Highlight, QBrush(Qt::NoBrush));
    noHighlight.setBrush(QPalette::Active, QPalette::Highlight, QBrush(Qt::NoBrush));
    setPalette(noHighlight);
    viewport()->setAutoFillBackground(false);
}

void MdaDimensionListWidget::dragMoveEvent(QDragMoveEvent *event)
{
    // The base handling also scrolls a list that is too long, over fixed entries like over others.
    FixedHeightListWidget::dragMoveEvent(event);
    if (!isDropAllowed(event->pos()))
        event->ignore();
    // Only a view in the dragging state paints its drop indicator.
    const State wanted = event->isAccepted() ? DraggingState : NoState;
    if (state() != wanted) {
        setState(wanted);
        viewport()->update();
    }
}

void MdaDimensionListWidget::dropEvent(QDropEvent *event)
{
    if (!isDropAllowed(event->pos())) {
        QDragLeaveEvent leave;
        dragLeaveEvent(&leave); // ends what the drag has begun here
        event->ignore();
        return;
    }
    const int countBefore = count();
    FixedHeightListWidget::dropEvent(event);
    const bool moved = event->source() == this && event->isAccepted()
        && event->dropAction() == Qt::MoveAction && count() == countBefore;
    if (!moved)
        return;
    // The list widget has moved the rows of its own drag already. Reported as a move, they would
    // be removed once more when the drag ends.
    event->setDropAction(Qt::CopyAction);
    if (event->dropAction() != Qt::CopyAction)
        event->setDropAction(Qt::IgnoreAction); // a drag that offers nothing but moving
}

void MdaDimensionListWidget::startDrag(Qt::DropActions supportedActions)
{
    // By design: all of them, so that a selected fixed entry travels with the movable ones.
    const QModelIndexList indexes = selectedIndexes();
    if (indexes.isEmpty())
        return;
    QMimeData *const mimeData = model()->mimeData(indexes);
    if (!mimeData)
        return;
    // Made persistent before the drag: a drop into this list inserts its copies first.
    QList<QPersistentModelIndex> dragged;
    for (const QModelIndex &index : indexes)
        dragged.append(index);

    const QPointer<MdaDimensionListWidget> self(this);
    auto *const drag = new QDrag(this);
    drag->setMimeData(mimeData);
    // A list that goes takes the drag with it, which the toolkit must then not go on with.
    const QMetaObject::Connection cancel
        = connect(this, &QObject::destroyed, drag, [] { QDrag::cancel(); });
    const Qt::DropAction action = drag->exec(supportedActions, Qt::IgnoreAction);
    if (!self)
        return;
    disconnect(cancel);
    if (action == Qt::MoveAction)
        removeRows(dragged);
}

void MdaDimensionListWidget::removeRows(const QList<QPersistentModelIndex> &indexes)
{
    for (const QPersistentModelIndex &index : indexes) {
        if (index.isValid())
            model()->removeRow(index.row());
    }
}

/// Whether the entry at `position` gives way: the one below it, or the last one in the empty area.
bool MdaDimensionListWidget::isDropAllowed(const QPoint &position) const
{
    return isRowDragEnabled(indexAt(position).row()); // -1 for no index
}

/// -1, for no row, is read as the last one. An empty list has nothing to protect.
bool MdaDimensionListWidget::isRowDragEnabled(int row) const
{
    if (row == -1 && count() == 0)
        return true;
    const QListWidgetItem *const rowItem = item(row == -1 ? count() - 1 : row);
    return rowItem && rowItem->flags().testFlag(Qt::ItemIsDragEnabled);
}

bool MdaDimensionListWidget::isIndexDragEnabled(const QModelIndex &index) const
{
    return model()->flags(index).testFlag(Qt::ItemIsDragEnabled);
}

/// By design: what remains are the selected entries that are fixed, whatever the name suggests. The
/// list itself has no use for it.
QModelIndexList MdaDimensionListWidget::selectedDraggableIndexes() const
{
    QModelIndexList indexes = selectedIndexes();
    for (int i = indexes.size() - 1; i >= 0; --i) {
        if (isIndexDragEnabled(indexes.at(i)))
            indexes.removeAt(i);
    }
    return indexes;
}
