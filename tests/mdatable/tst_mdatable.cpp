#include <support/counteditem.h>
#include <support/literal.h>
#include <support/recordingtable.h>
#include <support/testcase.h>

#include <QApplication>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>

const long long lowest = std::numeric_limits<long long>::min();
const long long highest = std::numeric_limits<long long>::max();
const long long trillion = 1000000000000LL;
const int fatal = 42;

using Cell = QPair<long long, long long>;
namespace
{

Cell currentCell(const MDATable &table)
{
    return {table.currentRow(), table.currentColumn()};
}

QString takeDeleted()
{
    return CountedItem::takeDeleted().join(QLatin1Char(' '));
}

// What the child process does: each way ends it with the fatal message.
int overfill(const QString &how)
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        std::fputs(qPrintable(text), stderr);
        std::_Exit(type == QtFatalMsg ? fatal : EXIT_FAILURE);
    });
    const bool sparse = how.startsWith(QLatin1String("setSparse"));
    MDATable table(100000, sparse ? highest : 100000);
    table.setSparse(sparse);
    sparse ? table.setSparse(false) : table.setText(0, 0, "x"_s);
    return EXIT_SUCCESS;
}

} // namespace

class TestMDATable : public TestCase
{
    Q_OBJECT

    static void checkHiding(long long current, long long from, long long to, long long expected)
    {
        RecordingTable table(10, 10);
        table.setCurrentCell(current, 5);
        from == to ? table.hideRow(from) : table.hideRows(from, to);
        QCOMPARE(currentCell(table), Cell(expected, 5));
        for (long long row = -1; row <= 10; ++row)
            QCOMPARE(table.isRowHidden(row), from <= row && row <= to && row >= 0 && row < 10);
        QCOMPARE(table.countOf("rowHeightChanged"), from <= to && from < 10 ? 1 : 0);
        from == to ? table.showRow(from) : table.showRows(from, to);
        table.setCurrentCell(5, current);
        QVERIFY(!table.isRowHidden(current) && !table.isRowHidden(5));
        from == to ? table.hideColumn(from) : table.hideColumns(from, to);
        QCOMPARE(currentCell(table), Cell(5, expected));
    }

private Q_SLOTS:
    // Tests delete the items that they keep: whatever lives on was lost by the table.
    void cleanup()
    {
        TestCase::cleanup();
        CountedItem::takeDeleted();
        QCOMPARE(CountedItem::live(), 0);
    }

    void itemsAreFoundByTheirCell()
    {
        for (const bool sparse : {false, true}) {
            CountedItem::takeDeleted();
            RecordingTable table(2, 3);
            table.setSparse(sparse);
            table.fill();
            const MDATableItem *item = table.item(1, 2);
            QVERIFY(item->row() == 1 && item->col() == 2 && item->table() == &table);
            table.setText(1, 2, "new"_s);
            QVERIFY(table.item(1, 2) == item);
            table.clearCell(1, 2);
            table.setText(1, 2, "made"_s);
            QCOMPARE(table.item(1, 2)->rtti(), MDATableItem::RTTI);
            table.setItem(1, 1, new CountedItem("other"_s));
            table.setItem(0, 0, nullptr);
            QCOMPARE(takeDeleted(), "new 11"_s);
            CountedItem kept;
            for (const Cell &cell : {Cell(-1, 0), Cell(0, -1), Cell(0, 3), Cell(2, 0), Cell(0, 4),
                                     Cell(highest, highest), Cell(lowest, lowest)}) {
                table.setItem(cell.first, cell.second, &kept);
                table.setText(cell.first, cell.second, "x"_s);
                table.clearCell(cell.first, cell.second);
                QVERIFY(!table.item(cell.first, cell.second));
            }
            QVERIFY(!kept.table());
            QCOMPARE(table.contents(), "00 01 02/10 other made"_s);
        }
    }

    void itemMayBePlacedAgain()
    {
        for (const bool sparse : {false, true}) {
            RecordingTable table(2, 2);
            table.setSparse(sparse);
            table.fill();
            MDATableItem *item = table.item(0, 1);
            table.setItem(0, 1, item);
            table.setItem(1, 0, item);
            QCOMPARE(table.contents(), "00 -/01 11"_s);
            item->setRow(0); // behind the table's back
            table.takeItem(item);
            delete item;
            QCOMPARE(table.contents(), QLatin1String(sparse ? "00 -/- 11" : "00 -/11 -"));
        }
    }

    void takenItemsBelongToTheCallerAndLaterCellsShift()
    {
        RecordingTable table(2, 3);
        table.fill();
        const QVector<MDATableItem *> kept{table.item(0, 1), table.item(0, 2), table.item(1, 2),
                                           table.item(1, 0), table.item(1, 1)};
        table.takeItem(nullptr);
        table.takeItem(kept[0]);
        QVERIFY(kept[0]->row() == -1 && kept[0]->col() == -1 && !kept[0]->table());
        table.takeItem(kept[0]); // in no cell any more
        QCOMPARE(table.contents(), "00 02 10/11 12 -"_s);
        table.takeItem(kept[1]); // sits in another slot than its cell's
        QCOMPARE(table.contents(), "00 10 11/12 - -"_s);
        table.takeItem(kept[2]); // its slot is gone
        QCOMPARE(table.contents(), "00 10 11/- - -"_s);
        table.setNumRows(2); // drops what is not in its slot
        QCOMPARE(table.contents(), "00 - -/- - -"_s);
        qDeleteAll(kept);
    }

    // Only the product of row and column is compared with the size of the store: the lookup must
    // not read beyond it all the same.
    void shortStoresAreSafe()
    {
        RecordingTable table(2, 4);
        table.fill();
        table.resizeData(5);
        QCOMPARE(table.contents(), "00 01 02 03/10 - - -"_s);
        QCOMPARE(takeDeleted(), "13 12 11"_s);
        table.resizeData(-3);
        table.setText(1, 3, "x"_s); // sizes it again
        QCOMPARE(table.contents(), "- - - -/- - - x"_s);
    }

    void changedDimensionsKeepTheCellsThatRemain()
    {
        using Step = QPair<Cell, QString>;
        for (const auto &[size, contents] :
             {Step({3, 1}, "00/10/20"_s), Step({1, 2}, "00 01"_s), Step({3, 0}, "//"_s),
              Step({4, 3}, "00 01 -/10 11 -/20 21 -/- - -"_s),
              Step({-5, lowest}, "00 01/10 11/20 21"_s)}) {
            RecordingTable table(3, 2);
            table.fill();
            table.setNumCols(size.second);
            table.setNumRows(size.first);
            QCOMPARE(table.contents(), contents);
            QCOMPARE(CountedItem::live(), contents.count(QRegExp("\\d\\d"_s)));
        }
    }

    void changedDimensionsKeepTheCurrentCellInsideAndDropSelections()
    {
        RecordingTable table(3, 4);
        table.fill();
        table.setCurrentCell(2, 3);
        table.selectCells(0, 0, 1, 1);
        const QSignalSpy spy(&table, &MDATable::currentChanged);
        connect(&table, &MDATable::selectionChanged, &table, [&] { table.clearCell(0, 0); });
        table.setNumCols(3);
        QVERIFY(!table.item(0, 0) && currentCell(table) == Cell(2, 2));
        table.setNumRows(0);
        QVERIFY(table.numSelections() == 0 && currentCell(table) == Cell(-1, -1));
        table.setNumRows(5);
        QVERIFY(spy.count() == 3 && currentCell(table) == Cell(0, 0));
    }

    void sparseItemsMoveIntoTheirSlotsAndDenseOnesStay()
    {
        RecordingTable table(2, 2);
        table.fill();
        table.setSparse(true);
        QVERIFY(!table.item(1, 0));
        table.setText(1, 0, "sparse"_s);
        table.setSparse(false);
        QCOMPARE(table.contents(), "00 01/sparse 11"_s);
        QCOMPARE(takeDeleted(), "10"_s);
        table.setSparse(true);
        const std::unique_ptr<MDATableItem> dropped(new CountedItem);
        table.setItem(0, 0, dropped.get());
        table.setNumRows(1); // drops the sparse items without deleting them
        QVERIFY(!table.item(0, 0));
        QCOMPARE(takeDeleted(), "00 01 11"_s);
    }

    void clearingDeletesTheItemsOfBothStores()
    {
        RecordingTable table(3, 3);
        table.fill();
        table.hideRow(1);
        table.setSparse(true);
        table.setItem(1, 1, new CountedItem);
        table.clearData();
        QVERIFY(CountedItem::live() == 0 && table.isSparse() && table.isRowHidden(1));
        table.setItem(1, 1, new CountedItem);
        table.clear();
        QVERIFY(CountedItem::live() == 0 && !table.isSparse());
        QVERIFY(table.numCols() == 0 && currentCell(table) == Cell(-1, -1));
        table.setNumRows(3);
        QVERIFY(!table.isRowHidden(1));
    }

    void deletedItemsMayCallBackIntoTheTable()
    {
        RecordingTable table(2, 2);
        table.fill();
        auto *item = new CountedItem;
        item->whenDeleted = [&] {
            QVERIFY(table.item(1, 1) != item);
            table.clearCell(1, 1);
        };
        table.setItem(1, 1, item);
        table.setNumCols(1);
        QCOMPARE(table.contents(), "00/10"_s);
    }

    void denseTableTooLargeForTheStoreEndsTheProcess()
    {
        for (const QString &way : {"setText: 10000000000"_s, "setSparse: 9223372036854775807"_s}) {
            QProcess child;
            child.start(QCoreApplication::applicationFilePath(), {"--overfill"_s, way});
            QVERIFY(child.waitForFinished());
            const QByteArray text = child.readAllStandardError();
            QVERIFY(text.endsWith("resizeData called with len > INT_MAX"
                                  + way.mid(way.indexOf(QLatin1Char(':'))).toLatin1()));
            QCOMPARE(child.exitCode(), fatal);
        }
    }

    void hugeTablesWorkWithoutAStore()
    {
        const MDATable dense(trillion, trillion);
        for (const long long i : {0LL, 1LL, 1LL << 32, trillion - 1, highest})
            QVERIFY(!dense.item(i, i));
        RecordingTable sparse(trillion, 1LL << 32);
        sparse.setSparse(true);
        sparse.setText(trillion - 1, 999, "end"_s);
        QCOMPARE(sparse.text(trillion - 1, 999), "end"_s);
        // With more cells than 64-bit numbers, several of them share an index.
        QCOMPARE(sparse.indexOf(1LL << 32, 5), sparse.indexOf(0, 5));
        sparse.setText(0, 5, "here"_s);
        sparse.clearCell(1LL << 32, 5);
        QVERIFY(!sparse.item(1LL << 32, 5) && sparse.text(0, 5) == "here"_s);
    }

    void hidingTheCurrentCellMovesIt()
    {
        using Hiding = std::array<long long, 4>; // the current section, from, to, where it moves
        for (const auto &[current, from, to, expected] : {
                 Hiding{2, 2, 6, 7}, // over the hidden ones
                 Hiding{9, 9, 9, 8}, // back from the last one
                 Hiding{7, 5, 9, 4}, // back when none follows
                 Hiding{4, 5, 9, 4}, // not when others are hidden
                 Hiding{3, 0, highest, 3}, // nowhere without a visible one
                 Hiding{4, 5, 3, 4}, // not for an inverted range
                 Hiding{9, 10, 10, 9}, // not for sections outside
                 Hiding{1, lowest, 2, 3}, // within a range cut to the table
             })
            checkHiding(current, from, to, expected);
    }
};

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--overfill"))
        return overfill(arguments.value(2));
    TestMDATable test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mdatable.moc"
