#pragma once

#include <QPalette>
#include <QScrollArea>
#include <QVector>

#include <tul-util-gui/mdatable/mdatableselection.h>
#include <tul-util-gui/tul_util_gui_export.h>

#include <memory>

class MDATableHeader;
class MDATableItem;
class MDATablePrivate;
class QRegion;

/// A table for two-dimensional slices of multi-dimensional arrays, with 64-bit row and column
/// counts, hidden sections and headers of several lines that label one array dimension each.
///
/// Fill it with items (setItem(), setText()), or override item() and serve the cells that are
/// painted or copied from wherever they are kept: then a table of 10^12 rows costs no more than a
/// small one. All rows share one height, all columns one width. Cost follows what is visible, what
/// is stored and what changes. No operation walks the sections of the table except Tab, which asks
/// the cells of a row one by one until it finds an enabled one.
///
/// *Units*: row and column indices and counts are 64-bit, -1 means none. Positions and sizes are
/// pixels. Contents are limited to 2147450879 pixels in each direction: sections beyond can be
/// addressed, but not scrolled to; there is no scaling. At the default row height that is
/// 107,372,543 rows.
///
/// *Ownership*: the table owns the items placed in it and deletes them with their cell.
///
/// *Threads*: GUI thread only.
///
/// *Errors*: indices outside the table are ignored or answered with null, an empty text, false or
/// -1. One misuse ends the process: a dense table (see setSparse()) of more than 2147483647 cells.
/// It is fatal when the store is sized, by the first setItem(), setText(), clearCell(),
/// setNumRows(), setNumCols() or setSparse(false), with the message "resizeData called with len >
/// INT_MAX: %lld".
///
/// Signals may be answered by changing the table or its selections, and the mouse signals by
/// deleting it.
class TUL_UTIL_GUI_EXPORT MDATable : public QScrollArea
{
    Q_OBJECT
    Q_PROPERTY(long long numRows READ numRows WRITE setNumRows)
    Q_PROPERTY(long long numCols READ numCols WRITE setNumCols)
    Q_PROPERTY(bool sparse READ isSparse WRITE setSparse)
    Q_PROPERTY(bool showGrid READ showGrid WRITE setShowGrid)
    Q_PROPERTY(FocusStyle focusStyle READ focusStyle WRITE setFocusStyle)

public:
    /// How the current cell is marked while the table has the focus.
    enum FocusStyle {
        FollowStyle = 0, ///< by the focus frame of the widget style
        SpreadSheet = 1, ///< by a double black frame around a cell that is drawn unselected
    };
    Q_ENUM(FocusStyle)

    /// A table of 0 x 0 cells, or of the given counts (negative ones count as 0), named `name`
    /// (UTF-8, may be null). A non-empty table starts with (0, 0) as its current cell. The
    /// constructor does not size the cell store.
    explicit MDATable(QWidget *parent = nullptr, const char *name = nullptr);
    MDATable(long long numRows, long long numCols, QWidget *parent = nullptr,
             const char *name = nullptr);
    ~MDATable() override;

    // Dimensions

    /// The number of rows or columns, hidden ones included.
    virtual long long numRows() const;
    virtual long long numCols() const;

    /// Whether the row or column is hidden. Hidden sections survive a change of the count: those
    /// beyond the last one are hidden again when the table grows.
    bool isRowHidden(long long row) const;
    bool isColumnHidden(long long col) const;

    // Header lines

    /// Sets the number of lines of a header; negative counts are ignored. Line 0, next to the
    /// cells, labels the fastest-changing dimension. A new line has no name and the bounds 0..0.
    void setLeftHeaderLines(int lines);
    void setTopHeaderLines(int lines);

    /// Names the dimension that a line labels and gives its first and last index. Line i labels
    /// blocks of as many sections as the dimensions of the lines before it have cells together. A
    /// line whose last index is before its first is not painted, nor are the lines outside it.
    /// Lines that the header does not have are ignored. The thickness of the header, the row height
    /// (left header) and the least column width (top header) follow.
    void setLeftHeaderLineNameAndBounds(int line, const QString &name, long long min,
                                        long long max);
    void setTopHeaderLineNameAndBounds(int line, const QString &name, long long min, long long max);

    // Cells

    /// The item of a cell, null when it is empty or outside the table. The table reads its cells
    /// only through this function, and only those that it paints (twice each), copies, steps over
    /// with Tab or finds under a pressed mouse button. An override may return one item that it
    /// fills anew for each call.
    virtual MDATableItem *item(long long row, long long col) const;

    /// Places an item, deletes the one that was there, and takes ownership. An item that already
    /// sits elsewhere in this table moves; take it from another table with takeItem() first. Null
    /// items and cells outside the table are ignored: the item then stays with the caller. The
    /// widest size hint is remembered for adjustColumnWidth(). In a sparse table of more than 2^64
    /// cells, cells of the same indexOf() take each other's place.
    virtual void setItem(long long row, long long col, MDATableItem *item);

    /// Removes an item without deleting it and hands it to the caller. To empty a cell, use
    /// clearCell().
    ///
    /// By design: in a dense table the items of all later cells move up by one slot and stay there,
    /// each found in the cell before its own. Setting or clearing a cell deletes the item that has
    /// moved into it; a change of the dimensions drops the moved items without deleting them.
    virtual void takeItem(MDATableItem *item);

    /// Removes and deletes the item of a cell and repaints the cell at once.
    virtual void clearCell(long long row, long long col);

    /// The text of the cell's item, empty for an empty cell.
    virtual QString text(long long row, long long col) const;

    /// Sets the text of the cell's item, which is created when the cell is empty.
    virtual void setText(long long row, long long col, const QString &text);

    /// Whether cells are kept in a map (sparse) or in one slot a cell, row by row (dense, the
    /// default). Choose before filling the table, and before setting dimensions whose product is
    /// above 2147483647.
    ///
    /// By design: sparse to dense moves the items into their slots; dense to sparse moves nothing,
    /// the items reappear when the table is dense again. Changing the dimensions of a sparse table
    /// drops every item of the map without deleting it: refill the table, or keep the pointers.
    bool isSparse() const;
    void setSparse(bool sparse);

    /// Makes the table a dense one of 0 x 0 cells without items, selections, header lines, hidden
    /// sections, valid region and current cell. That there is no current cell any more is not
    /// announced.
    void clear();

    /// Deletes all items and forgets selections and valid region. Dimensions, hidden sections and
    /// storage mode stay.
    void clearData();

    /// Adds to the region whose cells belong to the array even where no item was set: there, empty
    /// cells are drawn as disabled. In cell coordinates: x is the column, y the row, one unit a
    /// cell. By design: coordinates have 32 bits, and cells beyond them wrap round.
    void addValidRegion(const QRegion &region);

    /// Whether the cell is inside the table; the valid region plays no part in it.
    bool isSectionValid(long long row, long long col) const;

    // Geometry

    /// The height of every row and width of every column, in pixels. Negative sizes count as 0; at
    /// 0 nothing is painted. Both begin with 20. setNumRows() and changes of the left header's
    /// lines set the row height from the font, setNumCols() and changes of the top header's lines
    /// call adjustColumnWidth(): set your own afterwards.
    virtual int rowHeight() const;
    virtual void setRowHeight(int height);
    virtual int columnWidth() const;
    virtual void setColumnWidth(int width);

    /// Where a row or column begins, in viewport coordinates. A hidden section begins where the
    /// next visible one does.
    virtual int rowPos(long long row) const;
    virtual int columnPos(long long col) const;

    /// The row or column at a position in viewport coordinates, -1 outside the sections.
    virtual long long rowAt(int y) const;
    virtual long long columnAt(int x) const;

    /// The rectangle of a cell in viewport coordinates; a hidden row or column has size 0.
    virtual QRect cellGeometry(long long row, long long col) const;

    /// The rectangle of a cell in its own coordinates: at (0, 0).
    virtual QRect cellRect(long long row, long long col) const;

    /// Queues a repaint of the cell and of 2 pixels around it. Negative indices are ignored, and so
    /// is a call from within another updateCell(), of any table.
    void updateCell(long long row, long long col);

    /// Whether lines are drawn between the cells; true by default.
    bool showGrid() const;

    QSize sizeHint() const override;

    // Current cell and selections

    /// The current cell, -1/-1 when there is none.
    long long currentRow() const;
    long long currentColumn() const;

    /// Makes a cell current, scrolls it into view and emits currentChanged() when it was not
    /// current before. Indices beyond the table are limited to the last row and column; -1 means
    /// none, and other negative ones are kept as they are. When the new cell is not selected, the
    /// selections are dropped and a new, still inactive one starts at the cell. A cell made current
    /// before the table is first shown is in view then, unless the host has scrolled meanwhile.
    virtual void setCurrentCell(long long row, long long col);

    /// Adds a block as the current selection, with its end limited to the table, repaints and emits
    /// selectionChanged(). Returns its index, or -1 for an inactive block, which changes nothing.
    virtual int addSelection(const MDATableSelection &selection);

    /// Adds the block from one cell to another, a whole row or a whole column as the current
    /// selection.
    ///
    /// By design: selectRow() ignores a negative row, selectColumn() adds a block that begins at
    /// the negative column.
    void selectCells(long long startRow, long long startCol, long long endRow, long long endCol);
    void selectRow(long long row);
    void selectColumn(long long col);

    /// Removes the first block equal to `selection` or the one at `index`, repaints and emits
    /// selectionChanged(). A block that is not there changes nothing.
    virtual void removeSelection(const MDATableSelection &selection);
    virtual void removeSelection(int index);

    /// The blocks in the order in which they were added; an index out of range gives an unset one.
    virtual int numSelections() const;
    virtual MDATableSelection selection(int index) const;

    /// The block that Shift moves and drags grow: its index or -1, and itself or an unset one.
    virtual int currentSelection() const;
    MDATableSelection getCurrentSelection() const;

    /// Whether the cell lies in an active block, or is the current cell while there are blocks,
    /// active or not: there always is one after the current cell was moved by key.
    virtual bool isSelected(long long row, long long col) const;

    /// Whether an active block touches the row or column or, with `full`, holds it whole. Blocks
    /// are not combined.
    virtual bool isRowSelected(long long row, bool full = false) const;
    virtual bool isColumnSelected(long long col, bool full = false) const;

    /// Puts the texts of the current selection on the clipboard: cells joined by ",", rows by "\n".
    /// Does nothing without an active current selection. A block whose text no string can hold is
    /// refused with the warning "copy: selection too large: %lld cells".
    void copy();

    // Painting

    /// How the current cell is marked; FollowStyle by default. A change repaints the viewport.
    FocusStyle focusStyle() const;
    void setFocusStyle(FocusStyle style);

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

public Q_SLOTS:
    /// Sets the number of rows or columns; negative counts are ignored. Drops the selections and,
    /// in a dense table, deletes the items whose cells are gone; see setSparse() for sparse ones.
    /// Sets the row height or the column width, see rowHeight(). Also an unchanged count does all
    /// this. The current cell stays inside the table.
    virtual void setNumRows(long long numRows);
    virtual void setNumCols(long long numCols);

    /// Hides or shows sections, both ends inclusive; what lies outside the table is ignored. The
    /// cost depends on how many runs of hidden sections are touched, not on their lengths. A
    /// current cell that gets hidden moves to the next visible row or column, or to the one before
    /// when the last one got hidden too; it stays when there is none.
    virtual void hideRow(long long row);
    virtual void hideColumn(long long col);
    virtual void showRow(long long row);
    virtual void showColumn(long long col);
    virtual void hideRows(long long from, long long to);
    virtual void hideColumns(long long from, long long to);
    virtual void showRows(long long from, long long to);
    virtual void showColumns(long long from, long long to);

    /// Room in pixels for the headers beside the viewport. The left margin becomes the right one
    /// while the layout direction is right-to-left. The table calls these when the header lines
    /// change.
    virtual void setLeftMargin(int margin);
    virtual void setTopMargin(int margin);

    /// Called when the thickness of a header changed, in pixels: sets its margin.
    void leftHeaderFixedExtentChanged(int extent);
    void topHeaderFixedExtentChanged(int extent);

    /// Sets the column width to what the widest item wanted since the last clear() or clearData()
    /// and the labels of the top header need, at least to 20 pixels.
    virtual void adjustColumnWidth();

    virtual void setShowGrid(bool show);

    /// Drops all blocks and emits selectionChanged() when there were any; repaints what they
    /// covered at once when `repaint` is true.
    virtual void clearSelection(bool repaint = true);

Q_SIGNALS:
    /// Emitted when another cell became current; -1/-1 for none. After Backtab has found no cell to
    /// go to, the column alone is -1; and so is, after a press on a table that has only rows or
    /// only columns, what it does not have.
    void currentChanged(long long row, long long col);

    /// pressed() is emitted when a mouse button goes down on the table, with the nearest visible
    /// cell for positions outside the cells and for disabled cells too; clicked() when it is
    /// released and the cell on which it went down is the current one; doubleClicked() when the
    /// left button is pressed twice on a cell. `button` is a Qt::MouseButton, `mousePos` is in
    /// viewport coordinates. Clicks on the headers are not reported.
    void clicked(long long row, long long col, int button, const QPoint &mousePos);
    void doubleClicked(long long row, long long col, int button, const QPoint &mousePos);
    void pressed(long long row, long long col, int button, const QPoint &mousePos);

    /// Emitted when blocks were added, removed or changed.
    void selectionChanged();

    /// For hosts that edit cells and want to announce it through the table, which never emits it.
    void valueChanged(long long row, long long col);

    /// Emitted when a context menu is asked for: by mouse with the cell under the pointer (-1
    /// outside), by key with the current cell and its lower left corner, or the nearest point of
    /// the viewport when that is scrolled out. `pos` is in global coordinates.
    void contextMenuRequested(long long row, long long col, const QPoint &pos);

protected:
    /// Moves to the next cell for Return and Enter: down the column, then on to the next one; round
    /// the current selection when it is larger than a cell.
    virtual void activateNextCell();

    /// The slot of a cell in a dense table and its key in a sparse one: numCols() x `row` + `col`,
    /// modulo 2^64.
    long long indexOf(long long row, long long col) const;

    /// Sizes the dense store, deleting the items of removed slots; negative lengths count as 0.
    /// Does nothing in a sparse table, ends the process above 2147483647.
    virtual void resizeData(long long len);

    /// Called when the row height, the column width or the hidden sections changed: recomputes the
    /// scroll bars, queues a repaint and a new layout of the headers.
    virtual void rowHeightChanged();
    virtual void columnWidthChanged();

    /// Lays out the headers and pulls back a view that is scrolled beyond the contents. A call from
    /// within another one, of any table, is ignored.
    virtual void updateGeometries();

    /// Draws all cells that meet `clip` (viewport coordinates), the focus frame and the area
    /// outside the table.
    ///
    /// Scrolling moves what is painted over the cells and paints only what comes into view. An
    /// override, of paintEvent() or a function below, that draws over the cells at a fixed place of
    /// the viewport needs a viewport()->update() at each valueChanged() of the scroll bars.
    void drawContents(QPainter *painter, const QRect &clip);

    /// Draws one cell: chooses the colour group and calls the overload that takes it. The painter's
    /// origin is the cell's upper left corner; `cr` is the cell in viewport coordinates.
    virtual void paintCell(QPainter *painter, long long row, long long col, const QRect &cr,
                           bool selected);
    virtual void paintCell(QPainter *painter, long long row, long long col, const QRect &cr,
                           bool selected, QPalette::ColorGroup group);

    /// Draws the focus frame of the current cell, whose upper left corner is the origin.
    virtual void paintFocus(QPainter *painter, const QRect &cr);

    /// Fills what lies outside the table in a rectangle of the viewport.
    ///
    /// By design: the table counts from the viewport's corner, however far it is scrolled.
    virtual void paintEmptyArea(QPainter *painter, int x, int y, int w, int h);

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    void updateGeometriesSlot();
    void doAutoScroll();

private:
    friend class MDATableHeader;
    friend class MDATablePrivate;
    friend class TableInteraction;
    friend class TableLayout;
    friend class TablePainter;

    void saveContents(QVector<MDATableItem *> &saved);
    void restoreContents(QVector<MDATableItem *> &saved);
    void setCurrentCell(long long row, long long col, bool updateSelections, bool ensureVisible);
    bool isSelected(long long row, long long col, bool countCurrent) const;
    void mousePressEventEx(QMouseEvent *event);
    QSize tableSize() const;
    QRect rangeGeometry(long long top, long long left, long long bottom, long long right,
                        bool &optimize) const;
    void repaintCell(long long row, long long col);
    void updateScrollBars();
    void delayedUpdateGeometries();

    const std::unique_ptr<MDATablePrivate> d;
};
