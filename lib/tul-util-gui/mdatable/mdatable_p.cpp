#include <tul-util-gui/mdatable/mdatable_p.h>

#include <tul-util-gui/mdatable/mdatableheader_p.h>
#include <tul-util-gui/mdatable/mdatableitem.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QApplication>
#include <QPointer>
#include <QScrollBar>

#include <algorithm>
#include <limits>

namespace
{

const int repaintMargin = 2; // pixels around a cell that its focus frame may touch

} // namespace

QRect tul::grownForRepaint(const QRect &rect)
{
    // Far edges may be the last coordinates that there are, and sizes have to be numbers too.
    const auto moved = [](int edge, int by) {
        const long long limit = std::numeric_limits<int>::max() - 1;
        return static_cast<int>(std::clamp(edge + static_cast<long long>(by), -limit / 2, limit));
    };
    return {QPoint(moved(rect.left(), -repaintMargin), moved(rect.top(), -repaintMargin)),
            QPoint(moved(rect.right(), repaintMargin), moved(rect.bottom(), repaintMargin))};
}

MDATablePrivate::MDATablePrivate(MDATable *table)
    : q(table)
    , rows{table,
           nullptr,
           nullptr,
           Qt::Key_Down,
           Qt::Key_Up,
           &MDATable::numRows,
           &MDATable::rowHeightChanged}
    , columns{table,
              nullptr,
              nullptr,
              Qt::Key_Right,
              Qt::Key_Left,
              &MDATable::numCols,
              &MDATable::columnWidthChanged}
    , layout(table, this)
    , interaction(table, this)
    , painter(table, this)
{
}

void MDATablePrivate::construct(long long numRows, long long numCols, const char *name)
{
    q->setObjectName(QString::fromUtf8(name));
    q->viewport()->setFocusProxy(q);
    q->viewport()->setFocusPolicy(Qt::WheelFocus);
    q->setFocusPolicy(Qt::WheelFocus);
    rows.header
        = new MDATableHeader(q, Qt::Vertical, numRows, q, QStringLiteral("left table header"));
    // By design: hosts and their style sheets look for it by this name.
    columns.header
        = new MDATableHeader(q, Qt::Horizontal, numCols, q, QStringLiteral("right table header"));
    rows.bar = q->verticalScrollBar();
    columns.bar = q->horizontalScrollBar();
    // Cells run from left to right in every layout, and so does the bar that scrolls them.
    columns.bar->setLayoutDirection(Qt::LeftToRight);

    q->setLeftMargin(rows.header->sizeHint().width());
    q->setTopMargin(columns.header->sizeHint().height());
    for (const TableAxis *axis : {&columns, &rows}) {
        QObject::connect(axis->bar, &QScrollBar::valueChanged, axis->header,
                         &MDATableHeader::setOffset);
    }
    QObject::connect(columns.header, &MDATableHeader::sectionSizeChanged, q,
                     &MDATable::columnWidthChanged);
    QObject::connect(rows.header, &MDATableHeader::sectionSizeChanged, q,
                     &MDATable::rowHeightChanged);
    QObject::connect(columns.header, &MDATableHeader::fixedExtentChanged, q,
                     &MDATable::topHeaderFixedExtentChanged);
    QObject::connect(rows.header, &MDATableHeader::fixedExtentChanged, q,
                     &MDATable::leftHeaderFixedExtentChanged);
    QObject::connect(qApp, &QApplication::focusChanged, &focusContext,
                     [this](const QWidget *from, const QWidget *to) { focusMoved(from, to); });

    if (numRows >= 1 && numCols >= 1)
        q->setCurrentCell(0, 0);
    q->installEventFilter(q);
    q->resize(640, 480);
    // So that hosts can scroll before they show the table.
    q->updateScrollBars();
}

void MDATablePrivate::setItem(long long row, long long col, MDATableItem *item)
{
    if (!item || !q->isSectionValid(row, col))
        return;
    sizeStore();
    const long long width = q->numCols();
    if (store.find(row, col, q->numRows(), width) != item) {
        if (item->table() == q)
            q->updateCell(item->row(), item->col());
        store.releaseItem(item, width);
        q->clearCell(row, col);
        store.put(row, col, width, item);
    }
    item->setRow(row);
    item->setCol(col);
    item->m_table = q;
    q->updateCell(row, col);
    raiseItemWidth(item->sizeHint().width());
}

void MDATablePrivate::takeItem(MDATableItem *item)
{
    if (!item)
        return;
    const QRect area = q->cellGeometry(item->row(), item->col());
    store.removeItem(item, q->numCols());
    q->viewport()->repaint(area);
    item->setRow(-1);
    item->setCol(-1);
    item->m_table = nullptr;
}

void MDATablePrivate::clearCell(long long row, long long col)
{
    if (!q->isSectionValid(row, col))
        return;
    sizeStore();
    const QRect area = q->cellGeometry(row, col);
    if (store.find(row, col, q->numRows(), q->numCols()))
        delete store.release(row, col, q->numCols());
    if (area.intersects(q->viewport()->rect()))
        q->viewport()->repaint(area);
}

void MDATablePrivate::setSparse(bool sparse)
{
    if (sparse == store.isSparse())
        return;
    store.setSparse(sparse);
    if (!sparse) {
        sizeStore();
        store.moveSparseToDense(q->numCols());
    }
    q->viewport()->update();
}

void MDATablePrivate::clear()
{
    const QPointer<MDATable> table(q);
    store.setSparse(false);
    q->clearSelection(false);
    if (!table)
        return;
    rows.header->reset();
    columns.header->reset();
    store.clear();
    q->resizeData(0);
    validRegion = QRegion();
    maxItemWidth = 0;
    finishDimensionChange();
    rows.current = -1;
    columns.current = -1;
}

void MDATablePrivate::clearData()
{
    const QPointer<MDATable> table(q);
    q->clearSelection(false);
    if (!table)
        return;
    store.clear();
    maxItemWidth = 0;
    validRegion = QRegion();
    q->viewport()->update();
}

void MDATablePrivate::sizeStore() const
{
    const long long needed = tul::saturatedMul(q->numCols(), q->numRows());
    if (!store.isSparse() && store.denseSize() != needed)
        q->resizeData(needed);
}

void MDATablePrivate::setCount(TableAxis &axis, long long count)
{
    if (count < 0)
        return;
    const QPointer<MDATable> table(q);
    // First of all, because hosts may edit cells when it is announced.
    q->clearSelection(false);
    if (!table)
        return;
    QVector<MDATableItem *> saved;
    q->saveContents(saved);
    axis.header->setCount(count);
    q->resizeData(tul::saturatedMul(q->numCols(), q->numRows()));
    q->restoreContents(saved);
    finishDimensionChange();
    if (axis.current >= axis.count())
        keepCurrentInside(axis);
    if (table && rows.current == -1 && columns.current == -1 && q->numRows() > 0
        && q->numCols() > 0)
        q->setCurrentCell(0, 0);
}

void MDATablePrivate::setHidden(TableAxis &axis, long long from, long long to, bool hidden) const
{
    from = std::max(from, 0LL);
    to = std::min(to, axis.count() - 1);
    if (from > to)
        return;
    if (!hidden) {
        axis.header->showSections(from, to);
        axis.announceSizeChange();
        return;
    }
    axis.header->hideSections(from, to);
    if (from <= axis.current && axis.current <= to) {
        const int key = to < axis.count() - 1 ? axis.forwardKey : axis.backwardKey;
        long long row = rows.current;
        long long col = columns.current;
        interaction.fixCell(row, col, key);
        const QPointer<MDATable> table(q);
        q->setCurrentCell(row, col);
        if (!table)
            return;
    }
    axis.announceSizeChange();
}

void MDATablePrivate::finishDimensionChange() const
{
    q->updateScrollBars();
    q->updateGeometries();
    q->viewport()->update();
}

void MDATablePrivate::contentSizeChanged() const
{
    q->updateScrollBars();
    q->viewport()->update();
    q->delayedUpdateGeometries();
}

/// Brings a current cell that the table has lost back to its last row or column, to none when
/// nothing is left.
void MDATablePrivate::keepCurrentInside(const TableAxis &axis) const
{
    const long long last = axis.count() - 1;
    if (&axis == &rows)
        q->setCurrentCell(last, last != -1 ? columns.current : -1);
    else
        q->setCurrentCell(last != -1 ? rows.current : -1, last);
}

void MDATablePrivate::raiseItemWidth(int width)
{
    maxItemWidth = std::max(maxItemWidth, width);
}

QRegion MDATablePrivate::takeSelections()
{
    // The current cell looks selected while there are blocks.
    QRegion covered = hasCurrentCell() ? q->cellGeometry(rows.current, columns.current) : QRect();
    for (int i = 0; i < selections.count(); ++i)
        covered += visibleRect(selections.at(i));
    selections.clear();
    return covered & q->viewport()->rect();
}

QRect MDATablePrivate::visibleRect(const MDATableSelection &block) const
{
    if (!block.isActive())
        return {};
    bool optimize = false;
    return q->rangeGeometry(block.topRow(), block.leftCol(), block.bottomRow(), block.rightCol(),
                            optimize);
}

void MDATablePrivate::repaintBlock(const MDATableSelection &block) const
{
    repaintDifference(MDATableSelection(), block);
    q->updateCell(rows.current, columns.current);
}

void MDATablePrivate::repaintDifference(const MDATableSelection &before,
                                        const MDATableSelection &after) const
{
    const QRegion changed = QRegion(visibleRect(before)) ^ visibleRect(after);
    for (const QRect &part : changed)
        q->viewport()->update(tul::grownForRepaint(part));
}

void MDATablePrivate::updateSelectedLook() const
{
    q->updateCell(rows.current, columns.current);
    for (int i = 0; i < selections.count(); ++i)
        q->viewport()->update(visibleRect(selections.at(i)));
}

/// Selected cells look as with the focus while it is in an editor on the cells, of whose focus the
/// table gets no event.
void MDATablePrivate::focusMoved(const QWidget *from, const QWidget *to) const
{
    const QWidget *viewport = q->viewport();
    if (viewport->isAncestorOf(from) != viewport->isAncestorOf(to))
        updateSelectedLook();
}
