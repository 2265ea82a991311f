#include <tul-util-gui/mdatable/tablepainter_p.h>

#include <tul-util-gui/mdatable/mdatable_p.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>
#include <tul-util-gui/mdatable/mdatableitem.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStyleOptionViewItem>
#include <QVarLengthArray>

#include <algorithm>
#include <typeinfo>

void TablePainter::drawContents(QPainter *painter, const QRect &clip)
{
    const QSize size = q->viewport()->size();
    const bool empty = q->numRows() == 0 || q->numCols() == 0;
    const long long colFirst = empty ? -1 : q->columnAt(clip.left());
    const long long rowFirst = empty ? -1 : q->rowAt(clip.top());
    if (rowFirst == -1 || colFirst == -1) {
        q->paintEmptyArea(painter, 0, 0, size.width(), size.height());
        return;
    }
    const long long colAtEnd = q->columnAt(clip.right());
    const long long rowAtEnd = q->rowAt(clip.bottom());
    m_activeLook = wantsActiveLook();
    m_gridHint = gridHint();
    m_lastPaintedCol = colAtEnd == -1 ? q->numCols() - 1 : colAtEnd;
    m_lastPaintedRow = rowAtEnd == -1 ? q->numRows() - 1 : rowAtEnd;
    drawCells(painter, rowFirst, colFirst, m_lastPaintedRow, m_lastPaintedCol);

    if (d->hasCurrentCell()) {
        const QRect current = q->cellGeometry(d->rows.current, d->columns.current);
        const QTransform origin = painter->worldTransform();
        painter->translate(current.topLeft());
        q->paintFocus(painter, current);
        painter->setWorldTransform(origin);
    }
    q->paintEmptyArea(painter, 0, 0, size.width(), size.height());
    m_activeLook = true;
    m_gridHint.reset();
}

void TablePainter::drawCells(QPainter *painter, long long rowFirst, long long colFirst,
                             long long rowLast, long long colLast)
{
    const HiddenSections &hiddenRows = d->rows.header->hiddenSections();
    const HiddenSections &hiddenColumns = d->columns.header->hiddenSections();
    QVarLengthArray<long long, 64> columns;
    for (HiddenSections::VisibleCursor col(hiddenColumns, colFirst); col.section() <= colLast;
         col.next())
        columns.append(col.section());

    const long long currentRow = d->rows.current;
    const long long currentCol = d->columns.current;
    const bool loneCurrent = q->focusStyle() == MDATable::SpreadSheet
        && !d->selections.isInLargerBlock(currentRow, currentCol);
    const QSize cell(q->columnWidth(), q->rowHeight());
    const QTransform origin = painter->worldTransform();
    const Qt::LayoutDirection direction = painter->layoutDirection();
    // Cells are not mirrored, and neither is what they hold: a minus stays before its number.
    painter->setLayoutDirection(Qt::LeftToRight);
    painter->setPen(q->palette().color(QPalette::Text)); // the one that most items will set
    const int xFirst = q->columnPos(colFirst);
    long long y = q->rowPos(rowFirst);
    for (long long row = hiddenRows.nextVisible(rowFirst); row <= rowLast;
         row = hiddenRows.nextVisible(row + 1)) {
        long long x = xFirst;
        for (const long long col : columns) {
            const QRect rect(QPoint(tul::clampToInt(x), tul::clampToInt(y)), cell);
            x += cell.width();
            if (!isExposed(rect))
                continue;
            const bool isLoneCurrent = loneCurrent && row == currentRow && col == currentCol;
            painter->translate(rect.topLeft());
            q->paintCell(painter, row, col, rect, !isLoneCurrent && q->isSelected(row, col));
            painter->setWorldTransform(origin);
        }
        y += cell.height();
    }
    painter->setLayoutDirection(direction);
}

QPalette::ColorGroup TablePainter::groupOf(long long row, long long col) const
{
    const MDATableItem *item = q->item(row, col);
    // By design: the valid region has 32-bit coordinates, and cells beyond them wrap round.
    if (item ? !item->isEnabled()
             : d->validRegion.contains(QPoint(static_cast<int>(col), static_cast<int>(row))))
        return QPalette::Disabled;
    if (!m_activeLook
        && q->style()->styleHint(QStyle::SH_ItemView_ChangeHighlightOnFocus, nullptr, q))
        return QPalette::Inactive;
    return QPalette::Active;
}

void TablePainter::drawCell(QPainter *painter, long long row, long long col, const QRect &cr,
                            bool selected, QPalette::ColorGroup group) const
{
    const int width = cr.width();
    const int height = cr.height();
    QPalette palette = q->palette();
    palette.setCurrentColorGroup(group);
    const bool isCurrent = row == d->rows.current && col == d->columns.current;
    if (selected && isCurrent && q->focusStyle() == MDATable::SpreadSheet && hasFocus())
        selected = false;

    if (MDATableItem *item = q->item(row, col)) {
        if (typeid(*item) == typeid(MDATableItem)) {
            // Our own items change nothing but the pen: most of the cost of a saved state is saved.
            const QPen pen = painter->pen();
            item->paint(painter, palette, cr, selected);
            if (painter->pen() != pen)
                painter->setPen(pen);
        } else {
            painter->save();
            item->paint(painter, palette, cr, selected);
            painter->restore();
        }
    } else {
        painter->fillRect(0, 0, width, height,
                          palette.brush(selected ? QPalette::Highlight : QPalette::Base));
    }

    if (!q->showGrid())
        return;
    const int hint = m_gridHint ? *m_gridHint : gridHint();
    const QColor line = hint != -1 && q->palette() == palette
        ? QColor::fromRgb(static_cast<QRgb>(hint))
        : palette.color(QPalette::Mid);
    painter->fillRect(width - 1, 0, 1, height, line);
    painter->fillRect(0, height - 1, width, 1, line);
}

void TablePainter::drawFocus(QPainter *painter, const QRect &cr) const
{
    if (!hasFocus() || cr.isEmpty())
        return;
    const QRect frame(0, 0, cr.width(), cr.height());
    if (q->focusStyle() == MDATable::SpreadSheet) {
        // By design: the outer frame lies on the neighbours, so that the mark is two pixels wide.
        painter->setPen(QPen(Qt::black, 1));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(frame.adjusted(0, 0, -1, -1));
        painter->drawRect(QRect(-1, -1, frame.width() + 1, frame.height() + 1));
        return;
    }
    const bool selected = q->isSelected(d->rows.current, d->columns.current, false);
    QStyleOptionFocusRect option;
    option.initFrom(q);
    option.rect = frame;
    option.palette = q->palette();
    option.state |= QStyle::State_KeyboardFocusChange;
    // By design: not State_Selected. The frame of a selected cell is the one at the border, which
    // styles draw so that it shows on the highlight.
    if (selected)
        option.state |= QStyle::State_FocusAtBorder;
    option.backgroundColor = q->palette().color(selected ? QPalette::Highlight : QPalette::Base);
    q->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, painter, q);
}

void TablePainter::drawEmptyArea(QPainter *painter, const QRect &rect) const
{
    const QRegion outside = QRegion(rect) - QRect(QPoint(0, 0), q->tableSize());
    const QBrush base = q->viewport()->palette().brush(QPalette::Base);
    for (const QRect &part : outside)
        painter->fillRect(part, base);
}

bool TablePainter::hasFocus() const
{
    return q->hasFocus() || q->viewport()->hasFocus();
}

bool TablePainter::wantsActiveLook() const
{
    const QWidget *focus = QApplication::focusWidget();
    return hasFocus() || m_keepActiveLook || (focus && q->viewport()->isAncestorOf(focus))
        || !q->style()->styleHint(QStyle::SH_ItemView_ChangeHighlightOnFocus, nullptr, q);
}

/// Whether painting there can show. A drag exposes the two strips of an angle at a time, whose
/// bounding rectangle is the whole block.
bool TablePainter::isExposed(const QRect &rect) const
{
    return m_exposed.rectCount() < 2 || m_exposed.intersects(rect);
}

/// What the style says of the grid's colour, -1 for nothing. Styles answer with the palette's
/// colour only when they are given an option.
int TablePainter::gridHint() const
{
    QStyleOptionViewItem option;
    option.initFrom(q);
    return q->style()->styleHint(QStyle::SH_Table_GridLineColor, &option, q);
}
