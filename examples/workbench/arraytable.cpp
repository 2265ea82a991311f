#include <workbench/arraytable.h>

#include <tul-util-gui/mdatable/mdatableitem.h>

#include <QCache>
#include <QEvent>
#include <QPainter>
#include <QPair>
#include <QPen>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>

namespace
{

constexpr int tileRows = 64;
constexpr int tileColumns = 16;

/// 4 MiB in all, and enough for a copy, which goes row by row, of 8192 columns to read each tile
/// once.
constexpr int mostTiles = 512;

/// What a column has room for before any cell was read.
constexpr int leastDigits = 6;

using TileKey = QPair<long long, long long>;

void setLines(MDATable *table, ArraySlice::Axis axis, const ArraySlice &slice,
              const QStringList &names)
{
    const bool rows = axis == ArraySlice::Rows;
    const QVector<int> &dimensions = slice.dimensions(axis);
    if (rows)
        table->setLeftHeaderLines(dimensions.size());
    else
        table->setTopHeaderLines(dimensions.size());
    // The fastest dimension stands next to the cells.
    for (int line = 0; line < dimensions.size(); ++line) {
        const int dimension = dimensions.at(dimensions.size() - 1 - line);
        const long long last = slice.extents().at(dimension) - 1;
        if (rows)
            table->setLeftHeaderLineNameAndBounds(line, names.value(dimension), 0, last);
        else
            table->setTopHeaderLineNameAndBounds(line, names.value(dimension), 0, last);
    }
}

} // namespace

struct ArrayTable::Private {
    explicit Private(ArrayTable *table);

    const ArrayNumbers *tile(const TileKey &key);
    ArrayNumbers *readTile(const TileKey &key);
    void noteText(const QString &text);
    int wantedWidth() const;
    void widenColumns();
    void measureFirstTile();
    void arrange();

    ArrayTable *const q;
    QStringList names;
    Reader reader;
    ArraySlice slice;
    long long rows = 0; ///< of the slice, as far as item() serves it
    long long columns = 0;
    QCache<TileKey, ArrayNumbers> tiles{mostTiles};
    bool failed = false; ///< reading failed and was reported
    QString longestText; ///< of the cells so far
    QTimer widenTimer;
    MDATableItem cell; ///< filled anew for each cell that is asked for
};

ArrayTable::Private::Private(ArrayTable *table)
    : q(table)
    , cell(table)
{
    widenTimer.setSingleShot(true);
    QObject::connect(&widenTimer, &QTimer::timeout, table, [this] { widenColumns(); });
}

/// The tile, read if need be; null when that fails.
const ArrayNumbers *ArrayTable::Private::tile(const TileKey &key)
{
    if (const ArrayNumbers *const known = tiles.object(key))
        return known;
    if (failed)
        return nullptr;
    std::unique_ptr<ArrayNumbers> read(readTile(key));
    if (!read)
        return nullptr;
    tiles.insert(key, read.release());
    return tiles.object(key);
}

ArrayNumbers *ArrayTable::Private::readTile(const TileKey &key)
{
    const long long row = key.first * tileRows;
    const long long column = key.second * tileColumns;
    const int rowCount = static_cast<int>(std::min<long long>(tileRows, rows - row));
    const int columnCount = static_cast<int>(std::min<long long>(tileColumns, columns - column));

    std::unique_ptr<ArrayNumbers> result;
    const QVector<ArraySlicePart> parts = slice.parts(row, column, rowCount, columnCount);
    for (const ArraySlicePart &part : parts) {
        ArrayNumbers numbers;
        const QString error = reader(part.box, &numbers);
        if (!error.isEmpty()) {
            failed = true;
            // Cells are read while they are painted, which is no time for the answers to a signal.
            QMetaObject::invokeMethod(
                q, [this, error] { Q_EMIT q->readFailed(error); }, Qt::QueuedConnection);
            return nullptr;
        }
        if (!result)
            result = std::make_unique<ArrayNumbers>(numbers.kind(), tileRows * tileColumns);
        for (int r = 0; r < part.rows; ++r) {
            for (int c = 0; c < part.columns; ++c) {
                result->set((part.firstRow + r) * tileColumns + part.firstColumn + c, numbers,
                            part.indexInBox(r, c));
            }
        }
    }
    return result.release();
}

void ArrayTable::Private::noteText(const QString &text)
{
    if (text.size() <= longestText.size())
        return;
    longestText = text;
    widenTimer.start(0); // not at once: this may be in the middle of painting
}

int ArrayTable::Private::wantedWidth() const
{
    return MDATableItem(q, longestText).sizeHint().width();
}

/// Makes room for the longest number so far: numbers that are cut off would look like others. The
/// columns never get narrower, so that scrolling on soon leaves them alone. The first visible
/// column stays where it is.
void ArrayTable::Private::widenColumns()
{
    if (wantedWidth() <= q->columnWidth())
        return;
    const long long first = q->columnAt(0);
    const int before = q->columnPos(first);
    q->setColumnWidth(wantedWidth());
    QScrollBar *const bar = q->horizontalScrollBar();
    if (first >= 0)
        bar->setValue(bar->value() + q->columnPos(first) - before);
}

/// Makes the columns fit before anything is painted; most often they then fit for good.
void ArrayTable::Private::measureFirstTile()
{
    if (rows == 0 || columns == 0)
        return;
    const ArrayNumbers *const first = tile({0, 0});
    for (int i = 0; first && i < first->count(); ++i)
        noteText(first->text(i));
}

void ArrayTable::Private::arrange()
{
    // In between the table and the slice do not go together.
    rows = 0;
    columns = 0;
    q->clear();
    rows = reader ? slice.numRows() : 0;
    columns = reader ? slice.numColumns() : 0;
    // Sparse before the dimensions are set: a dense table allocates its cells, and ends the process
    // when there are too many.
    q->setSparse(true);
    setLines(q, ArraySlice::Rows, slice, names);
    setLines(q, ArraySlice::Columns, slice, names);
    q->setNumRows(rows);
    q->setNumCols(columns);
    q->horizontalScrollBar()->setValue(0);
    q->verticalScrollBar()->setValue(0);
    measureFirstTile();
    widenColumns();
}

ArrayTable::ArrayTable(QWidget *parent)
    : MDATable(parent)
    , d(std::make_unique<Private>(this))
{
    setFocusStyle(SpreadSheet);
}

ArrayTable::~ArrayTable() = default;

void ArrayTable::setArray(const QStringList &names, const Reader &reader, const ArraySlice &slice)
{
    d->names = names;
    d->reader = reader;
    d->slice = slice;
    d->tiles.clear();
    d->failed = false;
    d->longestText.fill(QLatin1Char('0'), leastDigits);
    d->arrange();
}

void ArrayTable::setSlice(const ArraySlice &slice)
{
    const bool sameShape
        = slice.dimensions(ArraySlice::Rows) == d->slice.dimensions(ArraySlice::Rows)
        && slice.dimensions(ArraySlice::Columns) == d->slice.dimensions(ArraySlice::Columns);
    d->slice = slice;
    d->tiles.clear();
    if (sameShape)
        viewport()->update();
    else
        d->arrange();
}

const ArraySlice &ArrayTable::slice() const
{
    return d->slice;
}

MDATableItem *ArrayTable::item(long long row, long long col) const
{
    if (row < 0 || row >= d->rows || col < 0 || col >= d->columns)
        return nullptr;
    const ArrayNumbers *const tile = d->tile({row / tileRows, col / tileColumns});
    if (!tile)
        return nullptr;
    const int index = static_cast<int>((row % tileRows) * tileColumns + col % tileColumns);
    const QString text = tile->text(index);
    d->noteText(text);
    d->cell.setText(text);
    return &d->cell;
}

/// In the colour of the text and inside the cell: black would drown in a dark palette. Without the
/// focus it is fainter, but still tells which cell the line at the bottom of the window is about.
void ArrayTable::paintFocus(QPainter *painter, const QRect &cr)
{
    if (cr.isEmpty())
        return;
    const bool focused = hasFocus() || viewport()->hasFocus();
    const QPen before = painter->pen();
    painter->setPen(palette().color(focused ? QPalette::Text : QPalette::Mid));
    const QRect frame(0, 0, cr.width() - 1, cr.height() - 1);
    painter->drawRect(frame.adjusted(0, 0, -1, -1));
    painter->drawRect(frame.adjusted(1, 1, -2, -2));
    painter->setPen(before);
}

void ArrayTable::changeEvent(QEvent *event)
{
    MDATable::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        d->widenTimer.start(0);
}
