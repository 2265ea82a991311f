// The array table beside the toolkit's table view (or table widget) on the same work in the same
// run: a 1280 x 800 viewport of 16 x 40 cells of short numbers, with labels for rows and columns.

#include <tul-util-gui/mdatable/mdatable.h>
#include <tul-util-gui/mdatable/mdatableitem.h>

#include <benchmark/benchmark.h>

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTableView>
#include <QTableWidget>

#include <malloc.h>

namespace
{

const int cellHeight = 20;
const int cellWidth = 80;
const int columns = 1000;

QString numberAt(long long row, long long col)
{
    return QString::number((row * 7919 + col * 104729) % 10000);
}

/// The least a model can be.
class NumberModel : public QAbstractTableModel
{
public:
    explicit NumberModel(int rows, int cols = columns)
        : m_rows(rows)
        , m_columns(cols)
    {
    }

    int rowCount(const QModelIndex &) const override { return m_rows; }
    int columnCount(const QModelIndex &) const override { return m_columns; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Qt::DisplayRole)
            return numberAt(index.row(), index.column());
        if (role == Qt::TextAlignmentRole)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    }

private:
    const int m_rows;
    const int m_columns;
};

/// The least a host can be: one item serves all cells.
class NumberTable : public MDATable
{
public:
    explicit NumberTable(long long rows, long long cols = columns)
        : MDATable(0, 0, nullptr, "table")
        , m_item(this)
    {
        setSparse(true);
        setNumRows(rows);
        setNumCols(cols);
        setLeftHeaderLines(1);
        setLeftHeaderLineNameAndBounds(0, QStringLiteral("i"), 0, rows - 1);
        setTopHeaderLines(1);
        setTopHeaderLineNameAndBounds(0, QStringLiteral("j"), 0, cols - 1);
        setRowHeight(cellHeight);
        setColumnWidth(cellWidth);
    }

    MDATableItem *item(long long row, long long col) const override
    {
        m_item.setText(numberAt(row, col));
        return &m_item;
    }

private:
    mutable MDATableItem m_item;
};

/// Gives the viewport, not the widget, the size that all comparisons use.
void showWithViewport(QAbstractScrollArea &area)
{
    area.resize(1280, 800);
    area.show();
    QCoreApplication::processEvents();
    area.resize(area.size() + QSize(1280, 800) - area.viewport()->size());
    QCoreApplication::processEvents();
}

struct View {
    explicit View(int rows, int cols = columns)
        : model(rows, cols)
    {
        view.verticalHeader()->setDefaultSectionSize(cellHeight);
        view.verticalHeader()->setMinimumSectionSize(1);
        view.horizontalHeader()->setDefaultSectionSize(cellWidth);
        view.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        view.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
        view.setModel(&model);
    }

    NumberModel model;
    QTableView view;
};

double usedMiB()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / (1 << 20);
}

template<typename Make> void constructAndShow(benchmark::State &state, Make make)
{
    double used = 0;
    for (auto _ : state) {
        const double before = usedMiB();
        auto table = make(state.range(0));
        table->show();
        QCoreApplication::processEvents();
        state.PauseTiming();
        used = usedMiB() - before;
        table.reset();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["MiB"] = used;
}

void showTable(benchmark::State &state)
{
    constructAndShow(state, [](long long rows) {
        auto table = std::make_unique<NumberTable>(rows);
        table->resize(1280, 800);
        return table;
    });
}
BENCHMARK(showTable)->Arg(100)->Arg(1000000)->Arg(1000000000000)->Unit(benchmark::kMillisecond);

struct OwningView : QTableView {
    explicit OwningView(int rows)
        : model(rows)
    {
        verticalHeader()->setDefaultSectionSize(cellHeight);
        setModel(&model);
        resize(1280, 800);
    }
    ~OwningView() override { setModel(nullptr); }
    NumberModel model;
};

void showView(benchmark::State &state)
{
    constructAndShow(
        state, [](long long rows) { return std::make_unique<OwningView>(static_cast<int>(rows)); });
}
BENCHMARK(showView)->Arg(100)->Arg(1000000)->Unit(benchmark::kMillisecond);

/// A frame at another place of the table each time.
void jump(benchmark::State &state, QAbstractScrollArea &area)
{
    showWithViewport(area);
    QScrollBar *bar = area.verticalScrollBar();
    const int step = bar->maximum() / 997;
    int place = 0;
    for (auto _ : state) {
        place = (place + 1) % 900;
        bar->setValue(place * step);
        QCoreApplication::processEvents();
    }
}

void jumpTable(benchmark::State &state)
{
    NumberTable table(1000000);
    jump(state, table);
}
BENCHMARK(jumpTable)->Unit(benchmark::kMicrosecond);

void jumpView(benchmark::State &state)
{
    View view(1000000);
    jump(state, view.view);
}
BENCHMARK(jumpView)->Unit(benchmark::kMicrosecond);

void scroll(benchmark::State &state, QAbstractScrollArea &area)
{
    showWithViewport(area);
    QScrollBar *bar = area.verticalScrollBar();
    int value = 5000;
    for (auto _ : state) {
        value = value > bar->maximum() - 2 * cellHeight ? 5000 : value + cellHeight;
        bar->setValue(value);
        QCoreApplication::processEvents();
    }
}

void scrollTable(benchmark::State &state)
{
    NumberTable table(1000000);
    scroll(state, table);
}
BENCHMARK(scrollTable)->Unit(benchmark::kMicrosecond);

void scrollView(benchmark::State &state)
{
    View view(1000000);
    scroll(state, view.view);
}
BENCHMARK(scrollView)->Unit(benchmark::kMicrosecond);

/// Hides every other of 10^6 rows of a shown table, row by row.
void hideEveryOtherTable(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        NumberTable table(1000000, 10);
        showWithViewport(table);
        state.ResumeTiming();
        for (long long row = 1; row < 1000000; row += 2)
            table.hideRow(row);
        QCoreApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * 500000);
}
BENCHMARK(hideEveryOtherTable)->Unit(benchmark::kMillisecond)->Iterations(3);

/// The same for as many calls as are bearable.
void hideEveryOtherView(benchmark::State &state)
{
    const int calls = 1000;
    for (auto _ : state) {
        state.PauseTiming();
        View view(1000000, 10);
        showWithViewport(view.view);
        state.ResumeTiming();
        for (int call = 0; call < calls; ++call)
            view.view.hideRow(2 * call + 1);
        QCoreApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * calls);
}
BENCHMARK(hideEveryOtherView)->Unit(benchmark::kMillisecond)->Iterations(1);

void hideOneRange(benchmark::State &state)
{
    NumberTable table(1000000000000, 10);
    showWithViewport(table);
    const double before = usedMiB();
    for (auto _ : state) {
        table.hideRows(10, state.range(0));
        QCoreApplication::processEvents();
        state.PauseTiming();
        table.showRows(10, state.range(0));
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["MiB"] = usedMiB() - before;
}
BENCHMARK(hideOneRange)->Arg(100000000)->Arg(999999999999)->Unit(benchmark::kMicrosecond);

/// The call alone, without the frame that follows.
void hideOneRangeCall(benchmark::State &state)
{
    NumberTable table(1000000000000, 10);
    showWithViewport(table);
    for (auto _ : state) {
        table.hideRows(10, state.range(0));
        table.showRows(10, state.range(0));
    }
}
BENCHMARK(hideOneRangeCall)->Arg(100000000)->Arg(999999999999)->Unit(benchmark::kMicrosecond);

void lookupWithHidden(benchmark::State &state)
{
    NumberTable table(1000000, 10);
    const double before = usedMiB();
    for (long long row = 1; row < 1000000; row += 2)
        table.hideRow(row);
    QCoreApplication::processEvents();
    const double used = usedMiB() - before;
    unsigned random = 1;
    for (auto _ : state) {
        random = random * 1664525U + 1013904223U;
        const long long row = random % 1000000U;
        if (state.range(0) == 0)
            benchmark::DoNotOptimize(table.rowPos(row));
        else
            benchmark::DoNotOptimize(table.rowAt(static_cast<int>(row) * 10));
    }
    state.counters["MiB"] = used;
}
BENCHMARK(lookupWithHidden)->ArgName("posOrAt")->Arg(0)->Arg(1);

void copyTable(benchmark::State &state)
{
    NumberTable table(1000000);
    showWithViewport(table);
    table.selectCells(0, 0, 999, 999);
    for (auto _ : state)
        table.copy();
}
BENCHMARK(copyTable)->Unit(benchmark::kMillisecond);

/// The same with the items stored in the table.
void copyFilledTable(benchmark::State &state)
{
    MDATable table(1000, 1000, nullptr, "table");
    for (int row = 0; row < 1000; ++row) {
        for (int col = 0; col < 1000; ++col)
            table.setText(row, col, numberAt(row, col));
    }
    showWithViewport(table);
    table.selectCells(0, 0, 999, 999);
    for (auto _ : state)
        table.copy();
}
BENCHMARK(copyFilledTable)->Unit(benchmark::kMillisecond);

/// What programs do for want of a copy in the view: over the selected indexes, or over the model by
/// those that know that a rectangle is selected.
void copyView(benchmark::State &state)
{
    View view(1000, 1000);
    showWithViewport(view.view);
    view.view.selectAll();
    for (auto _ : state) {
        QString text;
        const auto append = [&text](const QModelIndex &index) {
            text += index.data().toString();
            text += index.column() == 999 ? QLatin1Char('\n') : QLatin1Char(',');
        };
        if (state.range(0) == 0) {
            const QModelIndexList indexes = view.view.selectionModel()->selectedIndexes();
            for (const QModelIndex &index : indexes)
                append(index);
        } else {
            for (int row = 0; row < 1000; ++row) {
                for (int col = 0; col < 1000; ++col)
                    append(view.model.index(row, col));
            }
        }
        QApplication::clipboard()->setText(text);
    }
}
BENCHMARK(copyView)->ArgName("direct")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void drag(benchmark::State &state, QAbstractScrollArea &area)
{
    showWithViewport(area);
    QWidget *viewport = area.viewport();
    const auto send = [viewport](QEvent::Type type, const QPoint &pos, Qt::MouseButtons buttons) {
        QMouseEvent event(type, pos, viewport->mapToGlobal(pos), Qt::LeftButton, buttons,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    };
    send(QEvent::MouseButtonPress, QPoint(40, 10), Qt::LeftButton);
    int step = 0;
    for (auto _ : state) {
        ++step;
        // Back and forth: a person drags from cell to cell.
        const int row = step % 76 < 38 ? step % 76 : 76 - step % 76;
        const QPoint pos(40 + 5 * cellWidth, 10 + cellHeight * row);
        QCursor::setPos(viewport->mapToGlobal(pos));
        send(QEvent::MouseMove, pos, Qt::LeftButton);
        QCoreApplication::processEvents();
    }
    send(QEvent::MouseButtonRelease, QPoint(40, 10), Qt::NoButton);
}

void dragTable(benchmark::State &state)
{
    NumberTable table(1000000);
    drag(state, table);
}
BENCHMARK(dragTable)->Unit(benchmark::kMicrosecond);

void dragView(benchmark::State &state)
{
    View view(1000000);
    drag(state, view.view);
}
BENCHMARK(dragView)->Unit(benchmark::kMicrosecond);

void fillTable(benchmark::State &state)
{
    double used = 0;
    for (auto _ : state) {
        const double before = usedMiB();
        MDATable table(1000, 1000, nullptr, "table");
        table.show();
        for (int row = 0; row < 1000; ++row) {
            for (int col = 0; col < 1000; ++col)
                table.setItem(row, col, new MDATableItem(&table, numberAt(row, col)));
        }
        state.PauseTiming();
        used = usedMiB() - before;
        table.clear();
        state.ResumeTiming();
    }
    state.counters["MiB"] = used;
}
BENCHMARK(fillTable)->Unit(benchmark::kMillisecond);

void fillWidget(benchmark::State &state)
{
    double used = 0;
    for (auto _ : state) {
        const double before = usedMiB();
        QTableWidget table(1000, 1000);
        table.show();
        for (int row = 0; row < 1000; ++row) {
            for (int col = 0; col < 1000; ++col)
                table.setItem(row, col, new QTableWidgetItem(numberAt(row, col)));
        }
        state.PauseTiming();
        used = usedMiB() - before;
        table.clear();
        state.ResumeTiming();
    }
    state.counters["MiB"] = used;
}
BENCHMARK(fillWidget)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
