#include <tul-util-gui/mdatable/tableinteraction_p.h>

#include <tul-util-gui/mdatable/mdatable_p.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>
#include <tul-util-gui/mdatable/mdatableitem.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace
{

const int autoScrollInterval = 100; // milliseconds

} // namespace

TableInteraction::TableInteraction(MDATable *table, MDATablePrivate *state)
    : q(table)
    , d(state)
    , m_autoScrollTimer(new QTimer(table))
{
    m_autoScrollTimer->setSingleShot(true);
    m_autoScrollTimer->setInterval(autoScrollInterval);
    QObject::connect(m_autoScrollTimer, &QTimer::timeout, table, &MDATable::doAutoScroll);
}

void TableInteraction::setCurrentCell(long long row, long long col, bool updateSelections,
                                      bool ensureVisible)
{
    row = std::min(row, q->numRows() - 1);
    col = std::min(col, q->numCols() - 1);
    const Cell old{d->rows.current, d->columns.current};
    if (row == old.row && col == old.col)
        return;
    d->rows.current = row;
    d->columns.current = col;
    if (old.isValid())
        q->repaintCell(old.row, old.col);
    if (d->hasCurrentCell()) {
        q->repaintCell(row, col);
        if (ensureVisible)
            d->layout.ensureCellVisible(row, col);
    }

    const QPointer<MDATable> table(q);
    Q_EMIT q->currentChanged(row, col);
    if (!table || !updateSelections || q->isSelected(d->rows.current, d->columns.current, false))
        return;
    q->clearSelection();
    if (table && d->hasCurrentCell())
        startSelection({d->rows.current, d->columns.current});
}

bool TableInteraction::filterKey(QKeyEvent *event)
{
    const bool isBacktab = event->key() == Qt::Key_Backtab;
    if (event->key() != Qt::Key_Tab && !isBacktab)
        return false;
    const bool isBack = isBacktab || event->modifiers() & Qt::ShiftModifier;
    if (!(event->modifiers() & Qt::ControlModifier) || !leaveByKey(event, !isBack))
        q->keyPressEvent(event);
    return true;
}

/// Leaves the key to the widgets around the table, which may turn their pages with it, or else
/// moves the focus on. False when there is nowhere to go.
bool TableInteraction::leaveByKey(QKeyEvent *event, bool next)
{
    if (!q->isWindow()) {
        const QPointer<MDATable> table(q);
        event->ignore();
        QCoreApplication::sendEvent(q->parentWidget(), event);
        if (!table || event->isAccepted())
            return true;
    }
    event->accept(); // it does not go to them again
    return q->focusNextPrevChild(next);
}

void TableInteraction::keyPress(QKeyEvent *event)
{
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    event->accept();
    switch (event->key()) {
    case Qt::Key_Tab:
        if (shift)
            backtab();
        else
            tab();
        break;
    case Qt::Key_Backtab:
        backtab();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        q->activateNextCell();
        break;
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        moveByKey(event->key(), shift);
        break;
    case Qt::Key_C:
        if (event->modifiers() & Qt::ControlModifier)
            q->copy();
        else
            event->ignore();
        break;
    default:
        event->ignore();
    }
}

/// Down the column, then on to the top of the next one; inside a block of several cells down the
/// block.
void TableInteraction::activateNextCell()
{
    const Cell current{d->rows.current, d->columns.current};
    const long long firstRow = d->rows.header->visibleFrom(0);
    const long long firstCol = d->columns.header->visibleFrom(0);
    if (current.isNone() || firstRow == -1 || firstCol == -1)
        return;

    Cell next{d->rows.header->visibleFrom(tul::saturatedAdd(current.row, 1)), current.col};
    if (next.row == -1) {
        next = {firstRow, d->columns.header->visibleFrom(tul::saturatedAdd(current.col, 1))};
        if (next.col == -1)
            next.col = firstCol;
    }

    const MDATableSelection block = q->getCurrentSelection();
    if (block.isActive() && !block.isSingleElement() && block.numRows() > 0
        && block.numCols() > 0) {
        // By design: the column advances only after the table's last row. At the bottom of a block
        // that ends above it, Return goes back to the top of the same column.
        if (current.row < block.bottomRow())
            q->setCurrentCell(next.row, current.col);
        else
            q->setCurrentCell(block.topRow(),
                              current.col < block.rightCol() ? next.col : block.leftCol());
        return;
    }
    const QPointer<MDATable> table(q);
    q->clearSelection(true);
    if (table)
        table->setCurrentCell(next.row, next.col);
}

void TableInteraction::mousePress(QMouseEvent *event)
{
    const QPoint pos = event->pos();
    m_pressedOnSelected = false;
    m_pressed = {q->rowAt(pos.y()), q->columnAt(pos.x())};
    const Cell cell = fixedCellAt(pos);
    if (cell.isNone())
        return;

    const QPointer<MDATable> table(q);
    const Cell anchor{d->rows.current, d->columns.current};
    if (isSteppable(m_pressed.row, m_pressed.col)) {
        q->setCurrentCell(cell.row, cell.col, false, true);
        if (!table)
            return;
        if (event->modifiers() & Qt::ShiftModifier)
            extendSelection(anchor);
        else if (!q->isSelected(d->rows.current, d->columns.current, false))
            selectOnly(true);
        else
            m_pressedOnSelected = event->button() == Qt::LeftButton;
    }
    if (table)
        Q_EMIT table->pressed(cell.row, cell.col, event->button(), pos);
}

void TableInteraction::mouseMove(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    const QPointer<MDATable> table(q);
    if (m_pressedOnSelected && !fixedCellAt(event->pos()).isNone()) {
        m_pressedOnSelected = false;
        replaceSelections(event->pos());
        if (!table)
            return;
    }
    m_autoScrollTimer->stop();
    autoScroll();
    if (table && !q->viewport()->rect().contains(event->pos()))
        m_autoScrollTimer->start();
}

void TableInteraction::mouseRelease(QMouseEvent *event)
{
    const QPointer<MDATable> table(q);
    const Cell current{d->rows.current, d->columns.current};
    if (!current.isNone() && current.row == m_pressed.row && current.col == m_pressed.col)
        Q_EMIT q->clicked(current.row, current.col, event->button(), event->pos());
    if (!table || event->button() != Qt::LeftButton)
        return;
    m_autoScrollTimer->stop();
    // By design: the block is inactive, as after a key. What was selected is dropped, and the cell
    // under the pointer is where Shift starts from.
    if (std::exchange(m_pressedOnSelected, false) && fixedCellAt(event->pos()).isValid())
        replaceSelections(event->pos());
}

void TableInteraction::mouseDoubleClick(QMouseEvent *event)
{
    const Cell cell{q->rowAt(event->pos().y()), q->columnAt(event->pos().x())};
    if (event->button() == Qt::LeftButton && !cell.isNone() && isSteppable(cell.row, cell.col))
        Q_EMIT q->doubleClicked(cell.row, cell.col, event->button(), event->pos());
}

void TableInteraction::contextMenu(QContextMenuEvent *event)
{
    event->accept();
    Cell cell{q->rowAt(event->pos().y()), q->columnAt(event->pos().x())};
    QPoint pos = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        cell = {d->rows.current, d->columns.current};
        const QPoint corner = q->cellGeometry(cell.row, cell.col).bottomLeft();
        const QRect view = q->viewport()->rect();
        pos = q->viewport()->mapToGlobal({std::clamp(corner.x(), 0, std::max(view.right(), 0)),
                                          std::clamp(corner.y(), 0, std::max(view.bottom(), 0))});
    }
    Q_EMIT q->contextMenuRequested(cell.row, cell.col, pos);
}

void TableInteraction::autoScroll()
{
    const QPoint pos = q->viewport()->mapFromGlobal(QCursor::pos());
    Cell cell{q->rowAt(pos.y()), q->columnAt(pos.x())};
    if (cell.row < 0 || cell.row >= q->numRows())
        cell.row = d->rows.current;
    if (cell.col < 0 || cell.col >= q->numCols())
        cell.col = d->columns.current;
    d->layout.ensureCellVisible(cell.row, cell.col);

    const QPointer<MDATable> table(q);
    if (MDATableSelection *block = d->selections.current()) {
        const MDATableSelection before = *block;
        block->expandTo(cell.row, cell.col);
        const MDATableSelection after = *block; // the block may go with the signal
        q->setCurrentCell(cell.row, cell.col, false, true);
        if (!table)
            return;
        d->repaintDifference(before, after);
        if (after != before)
            Q_EMIT q->selectionChanged();
    } else {
        q->setCurrentCell(cell.row, cell.col, false, true);
    }
    if (table && !q->viewport()->rect().contains(pos))
        m_autoScrollTimer->start();
}

void TableInteraction::fixCell(long long &row, long long &col, int key) const
{
    if (row == -1 || col == -1) {
        row = col = -1;
        return;
    }
    const bool rowHidden = q->isRowHidden(row);
    const bool colHidden = q->isColumnHidden(col);
    switch (key) {
    case Qt::Key_Left:
        col = colHidden ? d->columns.backward(col) : col;
        break;
    case Qt::Key_Right:
        col = colHidden ? d->columns.forward(col) : col;
        break;
    case Qt::Key_Home:
    case Qt::Key_Up:
    case Qt::Key_PageUp:
        row = rowHidden ? d->rows.backward(row) : row;
        break;
    case Qt::Key_End:
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        row = rowHidden ? d->rows.forward(row) : row;
        break;
    default:
        break;
    }
}

void TableInteraction::tab()
{
    const long long row = d->rows.current;
    const long long columns = q->numCols();
    if (row == -1 || d->columns.current >= columns - 1)
        return;
    long long col = d->columns.header->visibleFrom(std::min(d->columns.current + 1, columns - 1));
    while (col != -1 && !isSteppable(row, col))
        col = d->columns.header->visibleFrom(col + 1);
    // By design: without such a column it is the last one, hidden or disabled as it may be.
    q->setCurrentCell(row, col == -1 ? columns : col);
}

void TableInteraction::backtab()
{
    const long long row = d->rows.current;
    if (row == -1 || d->columns.current < 1)
        return;
    long long col = d->columns.header->visibleUpTo(d->columns.current - 1);
    while (col != -1 && !isSteppable(row, col))
        col = d->columns.header->visibleUpTo(col - 1);
    // By design: without such a column there is no current column any more.
    q->setCurrentCell(row, col);
}

void TableInteraction::moveByKey(int key, bool extend)
{
    const Cell anchor{d->rows.current, d->columns.current};
    Cell target = keyTarget(key);
    fixCell(target.row, target.col, key);
    if (!target.isValid())
        return;
    const QPointer<MDATable> table(q);
    q->setCurrentCell(target.row, target.col, false, true);
    if (!table)
        return;
    if (extend)
        extendSelection(anchor);
    else if (!q->isSelected(d->rows.current, d->columns.current, false))
        selectOnly(false);
}

TableInteraction::Cell TableInteraction::keyTarget(int key) const
{
    const long long row = d->rows.current;
    const long long col = d->columns.current;
    const long long lastRow = q->numRows() - 1;
    const long long lastCol = q->numCols() - 1;
    switch (key) {
    case Qt::Key_Home:
        return {0, col};
    case Qt::Key_End:
        return {lastRow, col};
    case Qt::Key_Left:
        return {row, std::max(tul::saturatedAdd(col, -1), 0LL)};
    case Qt::Key_Right:
        return {row, std::min(col + 1, lastCol)};
    case Qt::Key_Up:
        return {std::max(tul::saturatedAdd(row, -1), 0LL), col};
    case Qt::Key_Down:
        return {std::min(row + 1, lastRow), col};
    case Qt::Key_PageUp:
        return {pageTarget(-1), col};
    case Qt::Key_PageDown:
        return {pageTarget(1), col};
    default:
        return {-1, -1};
    }
}

/// The row a viewport's height before (-1) or after (1) the current one.
long long TableInteraction::pageTarget(int direction) const
{
    const long long row = d->rows.current;
    const long long y = static_cast<long long>(q->rowPos(row))
        + static_cast<long long>(direction) * q->viewport()->height();
    const long long found = q->rowAt(tul::clampToInt(y));
    if (direction < 0) {
        const long long target = std::max(found, 0LL);
        return target < row || row < 0 ? target : row;
    }
    const long long last = q->numRows() - 1;
    const long long target = std::min(found, last);
    return target <= row ? last : target;
}

/// Whether the user can step on the cell: it is empty or its item is enabled.
bool TableInteraction::isSteppable(long long row, long long col) const
{
    if (!q->isSectionValid(row, col))
        return true; // there is nothing to ask an override of item() for
    const MDATableItem *item = q->item(row, col);
    return !item || item->isEnabled();
}

/// The visible cell nearest to a position of the viewport; -1 where there is no row or no column.
TableInteraction::Cell TableInteraction::fixedCellAt(const QPoint &pos) const
{
    return {d->rows.fixed(q->rowAt(pos.y()), pos.y()),
            d->columns.fixed(q->columnAt(pos.x()), pos.x())};
}

void TableInteraction::startSelection(const Cell &cell)
{
    d->selections.start(cell.row, cell.col);
    q->updateCell(cell.row, cell.col);
}

/// Replaces all blocks by an inactive one at a position of the viewport.
void TableInteraction::replaceSelections(const QPoint &pos)
{
    const QPointer<MDATable> table(q);
    q->clearSelection();
    const Cell cell = table ? fixedCellAt(pos) : Cell{-1, -1};
    if (!cell.isValid())
        return;
    startSelection(cell);
    Q_EMIT q->selectionChanged();
}

/// Replaces all blocks by one at the current cell: inactive after a key, active after a press.
void TableInteraction::selectOnly(bool active)
{
    const Cell current{d->rows.current, d->columns.current};
    if (!current.isValid())
        return;
    {
        // One announcement for the whole change.
        const QSignalBlocker blocker(q);
        q->clearSelection();
    }
    startSelection(current);
    if (active)
        d->selections.current()->expandTo(current.row, current.col);
    Q_EMIT q->selectionChanged();
}

/// Grows the current block to the current cell. Where there is none yet, it starts at `anchor`, the
/// cell that was current before, if that still is a cell.
void TableInteraction::extendSelection(const Cell &anchor)
{
    const Cell to{d->rows.current, d->columns.current};
    if (!q->isSectionValid(to.row, to.col))
        return;
    if (!d->selections.current())
        startSelection(q->isSectionValid(anchor.row, anchor.col) ? anchor : to);
    MDATableSelection *block = d->selections.current();
    const MDATableSelection before = *block;
    block->expandTo(to.row, to.col);
    d->repaintDifference(before, *block);
    Q_EMIT q->selectionChanged();
}
