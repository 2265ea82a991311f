#include <support/counteditem.h>
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
using Hiding = std::array<long long, 4>; // the current section, from, to, the expected section
Q_DECLARE_METATYPE(Hiding)

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
    const bool sparse = how == QLatin1String("setSparse");
    MDATable table(100000, sparse ? highest : 100000);
    table.setSparse(sparse);
    sparse ? table.setSparse(false) : table.setText(0, 0, QStringLiteral("x"));
    return EXIT_SUCCESS;
}

} // namespace

class TestMDATable : public TestCase
{
    Q_OBJECT

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
            table.setText(1, 2, QStringLiteral("new"));
            QVERIFY(table.item(1, 2) == item);
            table.clearCell(1, 2);
            table.setText(1, 2, QStringLiteral("made"));
            QCOMPARE(table.item(1, 2)->rtti(), MDATableItem::RTTI);
            table.setItem(1, 1, new CountedItem(QStringLiteral("other")));
            table.setItem(0, 0, nullptr);
            QCOMPARE(takeDeleted(), QStringLiteral("new 11"));
            CountedItem kept;
            for (const Cell &cell : {Cell(-1, 0), Cell(0, -1), Cell(0, 3), Cell(2, 0), Cell(0, 4),
                                     Cell(highest, highest), Cell(lowest, lowest)}) {
                table.setItem(cell.first, cell.second, &kept);
                table.setText(cell.first, cell.second, QStringLiteral("x"));
                table.clearCell(cell.first, cell.second);
                QVERIFY(!table.item(cell.first, cell.second));
            }
            QVERIFY(!kept.table());
            QCOMPARE(table.contents(), QStringLiteral("00 01 02/10 other made"));
        }
    }

    void placedItemMayBePlacedAgainAndTaken()
    {
        for (const bool sparse : {false, true}) {
            CountedItem::takeDeleted();
            RecordingTable table(2, 2);
            table.setSparse(sparse);
            table.fill();
            const std::unique_ptr<MDATableItem> item(table.item(0, 1));
            table.setItem(0, 1, item.get());
            table.setItem(1, 0, item.get());
            QCOMPARE(takeDeleted(), QStringLiteral("10"));
            QCOMPARE(table.contents(), QStringLiteral("00 -/01 11"));
            item->setRow(0); // behind the table's back
            table.takeItem(item.get());
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
        QCOMPARE(table.contents(), QStringLiteral("00 02 10/11 12 -"));
        table.takeItem(kept[1]); // sits in another slot than its cell's
        QCOMPARE(table.contents(), QStringLiteral("00 10 11/12 - -"));
        table.takeItem(kept[2]); // its slot is gone
        QCOMPARE(table.contents(), QStringLiteral("00 10 11/- - -"));
        table.setNumRows(2); // drops what is not in its slot
        QCOMPARE(table.contents(), QStringLiteral("00 - -/- - -"));
        qDeleteAll(kept);
    }

    // Only the product of row and column is compared with the size of the store: the lookup must
    // not read beyond it all the same.
    void shortStoresAndStrayItemsAreSafe()
    {
        RecordingTable table(2, 4);
        table.fill();
        table.resizeData(5);
        QCOMPARE(table.contents(), QStringLiteral("00 01 02 03/10 - - -"));
        QCOMPARE(takeDeleted(), QStringLiteral("13 12 11"));
        table.resizeData(-3);
        table.setText(1, 3, QStringLiteral("x")); // sizes it again
        QCOMPARE(table.contents(), QStringLiteral("- - - -/- - - x"));
        auto *item = new CountedItem;
        table.setItem(0, 3, item);
        item->setRow(1); // by its row and column it is in no cell
        item->setCol(-1);
        table.setNumCols(0);
        QCOMPARE(CountedItem::live(), 0);
    }

    void changedDimensionsKeepTheCellsThatRemain()
    {
        using Step = QPair<Cell, QString>;
        for (const Step &step :
             {Step({3, 1}, QStringLiteral("00/10/20")), Step({1, 2}, QStringLiteral("00 01")),
              Step({3, 0}, QStringLiteral("//")),
              Step({4, 3}, QStringLiteral("00 01 -/10 11 -/20 21 -/- - -")),
              Step({-5, lowest}, QStringLiteral("00 01/10 11/20 21"))}) {
            RecordingTable table(3, 2);
            table.fill();
            table.setNumCols(step.first.second);
            table.setNumRows(step.first.first);
            QCOMPARE(table.contents(), step.second);
            QCOMPARE(CountedItem::live(), step.second.count(QRegExp(QStringLiteral("\\d\\d"))));
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
        table.setText(1, 0, QStringLiteral("sparse"));
        table.setSparse(false);
        QCOMPARE(table.contents(), QStringLiteral("00 01/sparse 11"));
        QCOMPARE(takeDeleted(), QStringLiteral("10"));
        table.setSparse(true);
        const std::unique_ptr<MDATableItem> dropped(new CountedItem);
        table.setItem(0, 0, dropped.get());
        table.setNumRows(1); // drops the sparse items without deleting them
        QVERIFY(!table.item(0, 0));
        QCOMPARE(takeDeleted(), QStringLiteral("00 01 11"));
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
        for (const auto deletion : {+[](MDATable &table) { table.clearCell(1, 1); },
                                    +[](MDATable &table) { table.setNumCols(1); },
                                    +[](MDATable &table) { table.clearData(); }}) {
            RecordingTable table(2, 2);
            table.fill();
            auto *item = new CountedItem;
            item->whenDeleted = [&] {
                QVERIFY(table.item(1, 1) != item);
                table.clearCell(1, 1);
                table.setText(0, 0, QStringLiteral("set"));
            };
            table.setItem(1, 1, item);
            deletion(table);
            QCOMPARE(table.text(0, 0), QStringLiteral("set"));
        }
    }

    void denseTableTooLargeForTheStoreEndsTheProcess()
    {
        using Way = QPair<const char *, QByteArray>;
        for (const Way &way :
             {Way("setText", "10000000000"), Way("setSparse", "9223372036854775807")}) {
            QProcess child;
            child.start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--overfill"), QLatin1String(way.first)});
            QVERIFY(child.waitForFinished());
            QVERIFY(child.readAllStandardError().endsWith("resizeData called with len > INT_MAX: "
                                                          + way.second));
            QCOMPARE(child.exitCode(), fatal);
        }
    }

    void hugeTablesWorkWithoutAStore()
    {
        MDATable dense(trillion, trillion);
        for (const long long i : {0LL, 1LL, 1LL << 32, trillion - 1, highest})
            QVERIFY(!dense.item(i, i));
        QVERIFY(!dense.grab().isNull());
        RecordingTable sparse(trillion, 1LL << 32);
        sparse.setSparse(true);
        sparse.setText(trillion - 1, 999, QStringLiteral("end"));
        QCOMPARE(sparse.text(trillion - 1, 999), QStringLiteral("end"));
        // With more cells than 64-bit numbers, several of them share an index.
        QCOMPARE(sparse.indexOf(1LL << 32, 5), sparse.indexOf(0, 5));
        sparse.setText(0, 5, QStringLiteral("here"));
        QVERIFY(!sparse.item(1LL << 32, 5));
        sparse.clearCell(1LL << 32, 5);
        QCOMPARE(sparse.text(0, 5), QStringLiteral("here"));
    }

    void hidingTheCurrentCellMovesIt_data()
    {
        QTest::addColumn<Hiding>("hiding");
        QTest::newRow("over the hidden ones") << Hiding{2, 2, 6, 7};
        QTest::newRow("back from the last one") << Hiding{9, 9, 9, 8};
        QTest::newRow("back when none follows") << Hiding{7, 5, 9, 4};
        QTest::newRow("not when others are hidden") << Hiding{4, 5, 9, 4};
        QTest::newRow("nowhere without a visible one") << Hiding{3, 0, highest, 3};
        QTest::newRow("not for an inverted range") << Hiding{4, 5, 3, 4};
        QTest::newRow("not for sections outside") << Hiding{9, 10, 10, 9};
        QTest::newRow("within a range cut to the table") << Hiding{1, lowest, 2, 3};
    }

    void hidingTheCurrentCellMovesIt()
    {
        QFETCH(Hiding, hiding);
        const auto [current, from, to, expected] = hiding;
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
