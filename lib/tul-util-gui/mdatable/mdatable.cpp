#include <tul-util-gui/mdatable/mdatable.h>

#include <tul-util-gui/mdatable/blocktext_p.h>
#include <tul-util-gui/mdatable/globalstrut_p.h>
#include <tul-util-gui/mdatable/mdatable_p.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>
#include <tul-util-gui/mdatable/mdatableitem.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>

#include <algorithm>
#include <limits>
#include <optional>

namespace
{

const int defaultColumnWidth = 20; // pixels; also the least

// Process-wide: a call for one table from within a call for another is dropped too.
bool updatingCell = false;

} // namespace

MDATable::MDATable(QWidget *parent, const char *name)
    : MDATable(0, 0, parent, name)
{
}

MDATable::MDATable(long long numRows, long long numCols, QWidget *parent, const char *name)
    : QScrollArea(parent)
    , d(std::make_unique<MDATablePrivate>(this))
{
    d->construct(numRows, numCols, name);
}

MDATable::~MDATable()
{
    d->store.clear(); // the destructors of items may still ask the table
}

long long MDATable::numRows() const
{
    return d->rows.header->count();
}

long long MDATable::numCols() const
{
    return d->columns.header->count();
}

bool MDATable::isRowHidden(long long row) const
{
    return d->rows.header->isSectionHidden(row);
}

bool MDATable::isColumnHidden(long long col) const
{
    return d->columns.header->isSectionHidden(col);
}

void MDATable::setLeftHeaderLines(int lines)
{
    d->rows.header->setLines(lines);
}

void MDATable::setTopHeaderLines(int lines)
{
    d->columns.header->setLines(lines);
}

void MDATable::setLeftHeaderLineNameAndBounds(int line, const QString &name, long long min,
                                              long long max)
{
    d->rows.header->setLineNameAndBounds(line, name, min, max);
}

void MDATable::setTopHeaderLineNameAndBounds(int line, const QString &name, long long min,
                                             long long max)
{
    d->columns.header->setLineNameAndBounds(line, name, min, max);
}

MDATableItem *MDATable::item(long long row, long long col) const
{
    const long long rows = numRows();
    const long long columns = numCols();
    if (row < 0 || col < 0 || row > rows - 1 || col > columns - 1)
        return nullptr;
    return d->store.find(row, col, rows, columns);
}

void MDATable::setItem(long long row, long long col, MDATableItem *item)
{
    d->setItem(row, col, item);
}

void MDATable::takeItem(MDATableItem *item)
{
    d->takeItem(item);
}

void MDATable::clearCell(long long row, long long col)
{
    d->clearCell(row, col);
}

QString MDATable::text(long long row, long long col) const
{
    // An override of item() is not asked for cells that are not there.
    const MDATableItem *shown = isSectionValid(row, col) ? item(row, col) : nullptr;
    return shown ? shown->text() : QString();
}

void MDATable::setText(long long row, long long col, const QString &text)
{
    if (!isSectionValid(row, col))
        return;
    if (MDATableItem *shown = item(row, col)) {
        shown->setText(text);
        updateCell(row, col);
    } else {
        setItem(row, col, new MDATableItem(this, text));
    }
}

bool MDATable::isSparse() const
{
    return d->store.isSparse();
}

void MDATable::setSparse(bool sparse)
{
    d->setSparse(sparse);
}

void MDATable::clear()
{
    d->clear();
}

void MDATable::clearData()
{
    d->clearData();
}

void MDATable::addValidRegion(const QRegion &region)
{
    d->validRegion += region;
}

bool MDATable::isSectionValid(long long row, long long col) const
{
    return row >= 0 && row < numRows() && col >= 0 && col < numCols();
}

long long MDATable::indexOf(long long row, long long col) const
{
    return CellStore::indexOf(row, col, numCols());
}

void MDATable::resizeData(long long len)
{
    if (d->store.isSparse())
        return;
    if (len > std::numeric_limits<int>::max())
        qFatal("resizeData called with len > INT_MAX: %lld", len);
    d->store.resizeDense(static_cast<int>(std::max(len, 0LL)));
}

void MDATable::saveContents(QVector<MDATableItem *> &saved)
{
    saved = d->store.saveDense(numCols());
}

void MDATable::restoreContents(QVector<MDATableItem *> &saved)
{
    d->store.restoreDense(saved, numCols());
    saved.clear();
}

void MDATable::setNumRows(long long numRows)
{
    d->setCount(d->rows, numRows);
}

void MDATable::setNumCols(long long numCols)
{
    d->setCount(d->columns, numCols);
}

void MDATable::hideRow(long long row)
{
    d->setHidden(d->rows, row, row, true);
}

void MDATable::hideColumn(long long col)
{
    d->setHidden(d->columns, col, col, true);
}

void MDATable::showRow(long long row)
{
    d->setHidden(d->rows, row, row, false);
}

void MDATable::showColumn(long long col)
{
    d->setHidden(d->columns, col, col, false);
}

void MDATable::hideRows(long long from, long long to)
{
    d->setHidden(d->rows, from, to, true);
}

void MDATable::hideColumns(long long from, long long to)
{
    d->setHidden(d->columns, from, to, true);
}

void MDATable::showRows(long long from, long long to)
{
    d->setHidden(d->rows, from, to, false);
}

void MDATable::showColumns(long long from, long long to)
{
    d->setHidden(d->columns, from, to, false);
}

int MDATable::rowHeight() const
{
    return d->rows.header->sectionSize();
}

void MDATable::setRowHeight(int height)
{
    d->rows.header->setSectionSize(height);
}

int MDATable::columnWidth() const
{
    return d->columns.header->sectionSize();
}

void MDATable::setColumnWidth(int width)
{
    d->columns.header->setSectionSize(width);
}

int MDATable::rowPos(long long row) const
{
    return tul::clampToInt(static_cast<long long>(d->rows.header->sectionPos(row))
                           - d->rows.header->offset());
}

int MDATable::columnPos(long long col) const
{
    return tul::clampToInt(static_cast<long long>(d->columns.header->sectionPos(col))
                           - d->columns.header->offset());
}

long long MDATable::rowAt(int y) const
{
    return d->rows.header->sectionAt(static_cast<long long>(y) + d->rows.header->offset());
}

long long MDATable::columnAt(int x) const
{
    return d->columns.header->sectionAt(static_cast<long long>(x) + d->columns.header->offset());
}

QRect MDATable::cellGeometry(long long row, long long col) const
{
    return d->layout.cellGeometry(row, col);
}

QRect MDATable::cellRect(long long row, long long col) const
{
    return {QPoint(0, 0), cellGeometry(row, col).size()};
}

void MDATable::updateCell(long long row, long long col)
{
    if (updatingCell || row < 0 || col < 0)
        return;
    const QScopedValueRollback<bool> guard(updatingCell, true);
    const QRect area = tul::grownForRepaint(cellGeometry(row, col));
    if (area.intersects(viewport()->rect()))
        viewport()->update(area);
}

void MDATable::repaintCell(long long row, long long col)
{
    if (row < 0 || col < 0)
        return;
    const QRect area = tul::grownForRepaint(cellGeometry(row, col));
    if (area.intersects(viewport()->rect()))
        viewport()->repaint(area);
}

bool MDATable::showGrid() const
{
    return d->showGrid;
}

void MDATable::setShowGrid(bool show)
{
    if (d->showGrid == show)
        return;
    d->showGrid = show;
    viewport()->update();
}

MDATable::FocusStyle MDATable::focusStyle() const
{
    return d->focusStyle;
}

void MDATable::setFocusStyle(FocusStyle style)
{
    if (d->focusStyle == style)
        return;
    d->focusStyle = style;
    viewport()->update();
}

QSize MDATable::tableSize() const
{
    return {d->columns.header->contentLength(), d->rows.header->contentLength()};
}

QRect MDATable::rangeGeometry(long long top, long long left, long long bottom, long long right,
                              bool &optimize) const
{
    optimize = true;
    return d->layout.visibleGeometry(top, left, bottom, right);
}

void MDATable::updateScrollBars()
{
    d->layout.updateScrollBars();
}

void MDATable::updateGeometries()
{
    d->layout.updateHeaders();
}

void MDATable::delayedUpdateGeometries()
{
    d->layout.queueUpdate();
}

void MDATable::updateGeometriesSlot()
{
    const QPointer<MDATable> self(this);
    d->layout.announceBarRanges();
    if (self)
        updateGeometries();
}

void MDATable::rowHeightChanged()
{
    d->contentSizeChanged();
}

void MDATable::columnWidthChanged()
{
    d->contentSizeChanged();
}

void MDATable::setLeftMargin(int margin)
{
    d->layout.setLeftMargin(margin);
}

void MDATable::setTopMargin(int margin)
{
    d->layout.setTopMargin(margin);
}

void MDATable::leftHeaderFixedExtentChanged(int extent)
{
    setLeftMargin(extent);
}

void MDATable::topHeaderFixedExtentChanged(int extent)
{
    setTopMargin(extent);
}

void MDATable::adjustColumnWidth()
{
    setColumnWidth(std::max({d->maxItemWidth, tul::globalStrut().width(), defaultColumnWidth}));
}

QSize MDATable::sizeHint() const
{
    ensurePolished();
    return d->layout.sizeHint(QScrollArea::sizeHint());
}

long long MDATable::currentRow() const
{
    return d->rows.current;
}

long long MDATable::currentColumn() const
{
    return d->columns.current;
}

void MDATable::setCurrentCell(long long row, long long col)
{
    setCurrentCell(row, col, true, true);
}

void MDATable::setCurrentCell(long long row, long long col, bool updateSelections,
                              bool ensureVisible)
{
    d->interaction.setCurrentCell(row, col, updateSelections, ensureVisible);
}

int MDATable::addSelection(const MDATableSelection &selection)
{
    if (!selection.isActive())
        return -1;
    const int index = d->selections.add(selection, numRows() - 1, numCols() - 1);
    d->repaintBlock(d->selections.at(index));
    Q_EMIT selectionChanged();
    return index;
}

void MDATable::selectCells(long long startRow, long long startCol, long long endRow,
                           long long endCol)
{
    addSelection(MDATableSelection(startRow, startCol, std::min(endRow, numRows() - 1),
                                   std::min(endCol, numCols() - 1)));
}

void MDATable::selectRow(long long row)
{
    row = std::min(row, numRows() - 1);
    if (row >= 0)
        addSelection(MDATableSelection(row, 0, row, numCols() - 1));
}

void MDATable::selectColumn(long long col)
{
    col = std::min(col, numCols() - 1);
    // By design: unlike selectRow(), negative columns are not refused.
    addSelection(MDATableSelection(0, col, numRows() - 1, col));
}

void MDATable::removeSelection(const MDATableSelection &selection)
{
    removeSelection(d->selections.indexOf(selection));
}

void MDATable::removeSelection(int index)
{
    if (index < 0 || index >= d->selections.count())
        return;
    const MDATableSelection removed = d->selections.at(index);
    d->selections.remove(index);
    d->repaintBlock(removed);
    Q_EMIT selectionChanged();
}

void MDATable::clearSelection(bool repaint)
{
    if (d->selections.isEmpty())
        return;
    const QRegion covered = d->takeSelections();
    if (repaint && !covered.isEmpty())
        viewport()->repaint(covered);
    Q_EMIT selectionChanged();
}

int MDATable::numSelections() const
{
    return d->selections.count();
}

MDATableSelection MDATable::selection(int index) const
{
    return d->selections.at(index);
}

int MDATable::currentSelection() const
{
    return d->selections.currentIndex();
}

MDATableSelection MDATable::getCurrentSelection() const
{
    return d->selections.at(d->selections.currentIndex());
}

bool MDATable::isSelected(long long row, long long col) const
{
    return isSelected(row, col, true);
}

bool MDATable::isSelected(long long row, long long col, bool countCurrent) const
{
    if (d->selections.isEmpty())
        return false;
    return d->selections.holds(row, col)
        || (countCurrent && row == d->rows.current && col == d->columns.current);
}

bool MDATable::isRowSelected(long long row, bool full) const
{
    return row >= 0 && row < numRows() && d->selections.holdsRow(row, full, numCols() - 1);
}

bool MDATable::isColumnSelected(long long col, bool full) const
{
    return col >= 0 && col < numCols() && d->selections.holdsColumn(col, full, numRows() - 1);
}

void MDATable::copy()
{
    const int index = currentSelection();
    if (index == -1)
        return;
    const MDATableSelection block = selection(index);
    if (!block.isActive())
        return;
    const std::optional<QString> text = tul::joinedTexts(
        block, [this](long long row, long long col) { return this->text(row, col); });
    if (text)
        QApplication::clipboard()->setText(*text, QClipboard::Clipboard);
}

void MDATable::activateNextCell()
{
    d->interaction.activateNextCell();
}

void MDATable::doAutoScroll()
{
    d->interaction.autoScroll();
}

void MDATable::drawContents(QPainter *painter, const QRect &clip)
{
    d->painter.drawContents(painter, clip);
}

void MDATable::paintCell(QPainter *painter, long long row, long long col, const QRect &cr,
                         bool selected)
{
    if (cr.width() != 0 && cr.height() != 0)
        paintCell(painter, row, col, cr, selected, d->painter.groupOf(row, col));
}

void MDATable::paintCell(QPainter *painter, long long row, long long col, const QRect &cr,
                         bool selected, QPalette::ColorGroup group)
{
    d->painter.drawCell(painter, row, col, cr, selected, group);
}

void MDATable::paintFocus(QPainter *painter, const QRect &cr)
{
    d->painter.drawFocus(painter, cr);
}

void MDATable::paintEmptyArea(QPainter *painter, int x, int y, int w, int h)
{
    d->painter.drawEmptyArea(painter, QRect(x, y, w, h));
}

void MDATable::paintEvent(QPaintEvent *event)
{
    QScrollArea::paintEvent(event);
    QPainter painter(viewport());
    d->painter.setExposed(event->region());
    drawContents(&painter, event->rect());
    d->painter.setExposed(QRegion());
}

void MDATable::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    updateScrollBars();
    updateGeometries();
}

void MDATable::showEvent(QShowEvent *event)
{
    QScrollArea::showEvent(event);
    updateScrollBars();
    updateGeometries();
    d->layout.tableShown();
}

void MDATable::hideEvent(QHideEvent *event)
{
    d->interaction.stopAutoScroll();
    QScrollArea::hideEvent(event);
}

void MDATable::changeEvent(QEvent *event)
{
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange) {
        d->layout.applyMargins();
        d->rows.header->update();
    }
    if (!isEnabled()) // nobody tells a disabled table that the drag has ended
        d->interaction.stopAutoScroll();
    if (event->type() != QEvent::ActivationChange || !isVisible())
        return;
    if (!isActiveWindow())
        d->interaction.stopAutoScroll();
    if (palette().color(QPalette::Inactive, QPalette::Window)
        != palette().color(QPalette::Active, QPalette::Window))
        viewport()->update();
}

void MDATable::keyPressEvent(QKeyEvent *event)
{
    d->interaction.keyPress(event);
}

void MDATable::mousePressEvent(QMouseEvent *event)
{
    mousePressEventEx(event);
}

void MDATable::mousePressEventEx(QMouseEvent *event)
{
    d->interaction.mousePress(event);
}

void MDATable::mouseMoveEvent(QMouseEvent *event)
{
    d->interaction.mouseMove(event);
}

void MDATable::mouseReleaseEvent(QMouseEvent *event)
{
    d->interaction.mouseRelease(event);
}

void MDATable::mouseDoubleClickEvent(QMouseEvent *event)
{
    d->interaction.mouseDoubleClick(event);
}

void MDATable::contextMenuEvent(QContextMenuEvent *event)
{
    d->interaction.contextMenu(event);
}

void MDATable::focusInEvent(QFocusEvent *event)
{
    QScrollArea::focusInEvent(event);
    d->updateSelectedLook();
}

void MDATable::focusOutEvent(QFocusEvent *event)
{
    QScrollArea::focusOutEvent(event);
    d->updateSelectedLook();
}

bool MDATable::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == this && event->type() == QEvent::KeyPress)
        return d->interaction.filterKey(static_cast<QKeyEvent *>(event));
    return QScrollArea::eventFilter(watched, event);
}

QVariant MDATable::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (query == Qt::ImCursorRectangle && d->hasCurrentCell())
        return cellGeometry(d->rows.current, d->columns.current)
            .translated(viewport()->geometry().topLeft());
    return QScrollArea::inputMethodQuery(query);
}
