#include <tul-util-gui/mdatable/tablelayout_p.h>

#include <tul-util-gui/mdatable/mdatable_p.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace
{

const int largestFittingHint = 500; // pixels up to which the size hint shows the whole table

// Process-wide: a call for one table from within a call for another is dropped too.
bool updatingHeaders = false;

} // namespace

TableLayout::TableLayout(MDATable *table, MDATablePrivate *state)
    : q(table)
    , d(state)
    , m_timer(new QTimer(table))
{
    m_timer->setSingleShot(true);
    QObject::connect(m_timer, &QTimer::timeout, table, &MDATable::updateGeometriesSlot);
}

QRect TableLayout::cellGeometry(long long row, long long col) const
{
    const int x = q->columnPos(col);
    const int y = q->rowPos(row);
    // The far edges of huge cells have to be coordinates too.
    const int highest = std::numeric_limits<int>::max();
    const int width = std::min(q->columnWidth(), highest - std::max(x, 0));
    const int height = std::min(q->rowHeight(), highest - std::max(y, 0));
    return {x, y, q->isColumnHidden(col) ? 0 : width, q->isRowHidden(row) ? 0 : height};
}

QRect TableLayout::visibleGeometry(long long top, long long left, long long bottom,
                                   long long right) const
{
    const QSize size = q->viewport()->size();
    if (!d->rows.cutToVisible(top, bottom, q->rowAt(0), q->rowAt(size.height()))
        || !d->columns.cutToVisible(left, right, q->columnAt(0), q->columnAt(size.width())))
        return {};
    // Everything between the corners is visible or has no size: they span the union of all cells.
    return q->cellGeometry(top, left) | q->cellGeometry(bottom, right);
}

void TableLayout::setLeftMargin(int margin)
{
    m_leftMargin = margin;
    applyMargins();
}

void TableLayout::setTopMargin(int margin)
{
    m_topMargin = margin;
    applyMargins();
}

void TableLayout::applyMargins()
{
    if (q->isRightToLeft())
        q->setViewportMargins(0, m_topMargin, m_leftMargin, 0);
    else
        q->setViewportMargins(m_leftMargin, m_topMargin, 0, 0);
    q->updateGeometries();
}

QSize TableLayout::sizeHint(const QSize &usual) const
{
    const QSize table = q->tableSize();
    if (table.width() < largestFittingHint && table.height() < largestFittingHint)
        return table + QSize(m_leftMargin + 5, m_topMargin + 5);
    return usual
        + QSize(d->rows.header->isHidden() ? 0 : m_leftMargin,
                d->columns.header->isHidden() ? 0 : m_topMargin);
}

void TableLayout::updateScrollBars()
{
    const QSize table = q->tableSize();
    // Contents that fit without scroll bars need none, even if those that show now take their room.
    const auto fitsInto = [&table](const QSize &room) {
        return table.width() <= room.width() && table.height() <= room.height();
    };
    // The second test is slow.
    const bool fits = fitsInto(q->size()) && fitsInto(q->maximumViewportSize());
    const QSize excess
        = fits ? QSize(0, 0) : (table - q->viewport()->size()).expandedTo(QSize(0, 0));
    setBarMaximum(d->columns.bar, excess.width());
    setBarMaximum(d->rows.bar, excess.height());
    d->columns.bar->setSingleStep(q->columnWidth());
    d->columns.bar->setPageStep(tul::clampToInt(10LL * q->columnWidth()));
    d->rows.bar->setSingleStep(q->rowHeight());
    d->rows.bar->setPageStep(tul::clampToInt(10LL * q->rowHeight()));
}

void TableLayout::updateHeaders()
{
    if (updatingHeaders)
        return;
    const QScopedValueRollback<bool> guard(updatingHeaders, true);
    const QSize table = q->tableSize();
    const auto pullBack = [](const TableAxis &axis, int content, int extent) {
        const long long offset = axis.header->offset();
        if (offset != 0 && content < extent + offset)
            axis.bar->setValue(content - extent);
    };
    pullBack(d->columns, table.width(), d->columns.header->width());
    pullBack(d->rows, table.height(), d->rows.header->height());

    const int frame = q->frameWidth();
    const QRect rowsRect(frame, m_topMargin + frame, m_leftMargin, q->viewport()->height());
    const QRect columnsRect(m_leftMargin + frame, frame, q->viewport()->width(), m_topMargin);
    const Qt::LayoutDirection direction = q->layoutDirection();
    d->rows.header->setGeometry(QStyle::visualRect(direction, q->rect(), rowsRect));
    d->columns.header->setGeometry(QStyle::visualRect(direction, q->rect(), columnsRect));
    for (const TableAxis *axis : {&d->columns, &d->rows}) {
        axis->bar->setValue(axis->header->offset()); // a resized header may have gone to its start
        axis->bar->raise();
    }
    if (m_cellOffset != QPoint(d->columns.header->offset(), d->rows.header->offset()))
        scrollCells();
}

void TableLayout::queueUpdate() const
{
    if (!m_timer->isActive())
        m_timer->start(0);
}

/// Sets a scroll bar's maximum. Hiding a million rows one by one changes it a million times: as
/// long as the bar stays visible and keeps its value, nobody but listeners of the range needs to
/// know at once, and they are told once, with the delayed layout.
void TableLayout::setBarMaximum(QScrollBar *bar, int maximum)
{
    if (bar->maximum() == maximum)
        return;
    if (bar->maximum() == 0 || maximum == 0 || bar->value() > maximum) {
        bar->setMaximum(maximum);
        return;
    }
    const QSignalBlocker blocker(bar);
    bar->setMaximum(maximum);
    m_barRangesPending = true;
    q->delayedUpdateGeometries();
}

void TableLayout::announceBarRanges()
{
    if (!m_barRangesPending)
        return;
    m_barRangesPending = false;
    const QPointer<MDATable> table(q);
    for (QScrollBar *bar : {d->columns.bar, d->rows.bar}) {
        if (table)
            Q_EMIT bar->rangeChanged(bar->minimum(), bar->maximum());
    }
}

void TableLayout::scrollCells()
{
    const QPoint offset(d->columns.header->offset(), d->rows.header->offset());
    const QPoint moved = m_cellOffset - offset;
    m_cellOffset = offset;
    QWidget *viewport = q->viewport();
    const bool staysInView
        = std::abs(moved.x()) < viewport->width() && std::abs(moved.y()) < viewport->height();
    // Widgets on the viewport stay where they are, which only painting goes round, and so does what
    // a host paints outside of the cells.
    if (staysInView && viewport->children().isEmpty())
        viewport->scroll(moved.x(), moved.y(),
                         QRect(QPoint(0, 0), q->tableSize().boundedTo(viewport->size())));
    else
        viewport->update();
}

void TableLayout::ensureCellVisible(long long row, long long col)
{
    const QPoint before = scrolledTo();
    d->rows.ensureVisible(row, q->viewport()->height());
    d->columns.ensureVisible(col, q->viewport()->width());
    if (m_wasShown)
        return;
    if (before != m_scrolledTo)
        m_scrolledFrom = before;
    m_scrolledTo = scrolledTo();
}

/// The size of the viewport is known only now: brings the cell that was made current before into
/// view again, unless the host has scrolled away from it.
void TableLayout::tableShown()
{
    if (m_wasShown)
        return;
    if (m_scrolledTo == scrolledTo()) {
        d->columns.bar->setValue(m_scrolledFrom.x());
        d->rows.bar->setValue(m_scrolledFrom.y());
        ensureCellVisible(d->rows.current, d->columns.current);
    }
    m_wasShown = true;
}

QPoint TableLayout::scrolledTo() const
{
    return {d->columns.bar->value(), d->rows.bar->value()};
}
