#include <support/counteditem.h>
#include <support/recordingtable.h>
#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>

#include <QApplication>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <limits>
#include <memory>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

namespace
{

const long long lowest = std::numeric_limits<long long>::min();
const long long highest = std::numeric_limits<long long>::max();
const long long trillion = 1000000000000LL;

using Cell = QPair<long long, long long>;

Cell currentCell(const MDATable &table)
{
    return {table.currentRow(), table.currentColumn()};
}

// What the child process does: each way ends it with the fatal message.
int overfill(const QString &how)
{
#ifdef Q_OS_UNIX
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
#endif
    const long long side = how == QLatin1String("saturated") ? trillion : 100000;
    MDATable table(side, side);
    if (how == QLatin1String("setNumRows"))
        table.setNumRows(side);
    else if (how != QLatin1String("setSparse"))
        table.setText(0, 0, QStringLiteral("x"));
    table.setSparse(true);
    table.setSparse(false);
    return 0;
}

} // namespace

class TestMDATable : public TestCase
{
    Q_OBJECT

private:
    int m_liveBefore = 0;

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        CountedItem::takeDeleted();
        m_liveBefore = CountedItem::live();
    }

    // Tests delete the items that they keep: whatever lives on was lost by the table.
    void cleanup()
    {
        TestCase::cleanup();
        QCOMPARE(CountedItem::live(), m_liveBefore);
    }

    void newTableHasItsDefaults()
    {
        QWidget parent;
        const auto *table = new RecordingTable(3, 4, &parent, "näme");
        QVERIFY(table->objectName() == QStringLiteral("näme") && table->size() == QSize(640, 480));
        QVERIFY(table->viewport()->focusProxy() == table);
        QVERIFY(table->viewport()->focusPolicy() == Qt::WheelFocus);
        QVERIFY(!table->isSparse() && table->showGrid() && currentCell(*table) == Cell(0, 0));
        QVERIFY(table->leftHeader()->count() == 3 && table->topHeader()->count() == 4);
        QCOMPARE(currentCell(MDATable(3, 0)), Cell(-1, -1));
        const MDATable negative(lowest, -4);
        QVERIFY(negative.numRows() == 0 && negative.numCols() == 0);
    }

    void signalsCarry64BitIndices()
    {
        for (const char *signal :
             {"currentChanged(qlonglong,qlonglong)", "clicked(qlonglong,qlonglong,int,QPoint)",
              "doubleClicked(qlonglong,qlonglong,int,QPoint)", "selectionChanged()",
              "pressed(qlonglong,qlonglong,int,QPoint)", "valueChanged(qlonglong,qlonglong)",
              "contextMenuRequested(qlonglong,qlonglong,QPoint)"})
            QVERIFY2(MDATable::staticMetaObject.indexOfSignal(signal) != -1, signal);
    }

    void itemsAreFoundByTheirCell_data()
    {
        QTest::addColumn<bool>("sparse");
        QTest::newRow("dense") << false;
        QTest::newRow("sparse") << true;
    }

    void itemsAreFoundByTheirCell()
    {
        QFETCH(bool, sparse);
        RecordingTable table(2, 3);
        table.setSparse(sparse);
        QVERIFY(!table.item(0, 0));
        table.fill();
        const MDATableItem *item = table.item(1, 2);
        QVERIFY(item->row() == 1 && item->col() == 2 && item->table() == &table);
        table.setText(1, 2, QStringLiteral("new"));
        QVERIFY(table.item(1, 2) == item && table.text(1, 2) == QLatin1String("new"));
        table.clearCell(1, 2);
        QCOMPARE(table.text(1, 2), QString());
        table.setText(1, 2, QStringLiteral("made"));
        QCOMPARE(table.item(1, 2)->rtti(), MDATableItem::RTTI);
        table.setItem(1, 1, new CountedItem(QStringLiteral("other")));
        QCOMPARE(CountedItem::takeDeleted().join(QLatin1Char(' ')), QStringLiteral("new 11"));

        table.setItem(0, 0, nullptr);
        CountedItem kept;
        for (const Cell &cell : {Cell(-1, 0), Cell(0, -1), Cell(0, 3), Cell(2, 0), Cell(0, 4),
                                 Cell(highest, highest), Cell(lowest, lowest)}) {
            table.setItem(cell.first, cell.second, &kept);
            table.setText(cell.first, cell.second, QStringLiteral("x"));
            table.clearCell(cell.first, cell.second);
            QVERIFY(!table.item(cell.first, cell.second));
            QVERIFY(!table.isSectionValid(cell.first, cell.second));
        }
        QVERIFY(!kept.table() && table.isSectionValid(1, 2));
        QCOMPARE(table.contents(), QStringLiteral("00 01 02/10 other made"));
    }

    void placedItemMayBePlacedAgainAndTaken_data() { itemsAreFoundByTheirCell_data(); }

    void placedItemMayBePlacedAgainAndTaken()
    {
        QFETCH(bool, sparse);
        RecordingTable table(2, 2);
        table.setSparse(sparse);
        table.fill();
        MDATableItem *item = table.item(0, 1);
        table.setItem(0, 1, item);
        QVERIFY(CountedItem::takeDeleted().isEmpty());
        table.setItem(1, 0, item);
        QCOMPARE(CountedItem::takeDeleted(), QStringList{QStringLiteral("10")});
        QCOMPARE(table.contents(), QStringLiteral("00 -/01 11"));
        item->setRow(0); // behind the table's back
        table.takeItem(item);
        QCOMPARE(table.contents(),
                 sparse ? QStringLiteral("00 -/- 11") : QStringLiteral("00 -/11 -"));
        delete item;
    }

    void takenItemsBelongToTheCallerAndLaterCellsShift()
    {
        RecordingTable table(2, 3);
        table.fill();
        const QVector<MDATableItem *> taken{table.item(0, 1), table.item(0, 2), table.item(1, 2)};
        const QVector<MDATableItem *> shifted{table.item(1, 0), table.item(1, 1)};
        table.takeItem(nullptr);
        table.takeItem(taken[0]);
        QVERIFY(taken[0]->row() == -1 && taken[0]->col() == -1 && !taken[0]->table());
        table.takeItem(taken[0]); // in no cell any more
        QCOMPARE(table.contents(), QStringLiteral("00 02 10/11 12 -"));
        table.takeItem(taken[1]); // sits in another slot than its cell's
        QCOMPARE(table.contents(), QStringLiteral("00 10 11/12 - -"));
        table.takeItem(taken[2]); // its slot is gone
        QCOMPARE(table.contents(), QStringLiteral("00 10 11/- - -"));
        table.setNumRows(2); // drops what is not in its slot
        QCOMPARE(table.contents(), QStringLiteral("00 - -/- - -"));
        qDeleteAll(taken);
        qDeleteAll(shifted);
    }

    // Only the product of row and column is compared with the size of the store: the lookup must
    // not read beyond it all the same.
    void lookupsInAShortStoreFindNothing()
    {
        RecordingTable table(2, 4);
        table.fill();
        table.resizeData(5);
        QCOMPARE(table.contents(), QStringLiteral("00 01 02 03/10 - - -"));
        QCOMPARE(CountedItem::takeDeleted().join(QLatin1Char(' ')), QStringLiteral("13 12 11"));
        table.resizeData(-3);
        QCOMPARE(table.contents(), QStringLiteral("- - - -/- - - -"));
        table.setText(1, 3, QStringLiteral("x")); // sizes it again
        QCOMPARE(table.text(1, 3), QStringLiteral("x"));
    }

    void changedDimensionsKeepTheCellsThatRemain_data()
    {
        QTest::addColumn<long long>("rows");
        QTest::addColumn<long long>("columns");
        QTest::addColumn<int>("survivors");
        QTest::addColumn<QString>("contents");
        QTest::newRow("fewer columns") << 3LL << 1LL << 3 << QStringLiteral("00/10/20");
        QTest::newRow("fewer rows") << 1LL << 2LL << 2 << QStringLiteral("00 01");
        QTest::newRow("more") << 4LL << 3LL << 6 << QStringLiteral("00 01 -/10 11 -/20 21 -/- - -");
        QTest::newRow("same") << 3LL << 2LL << 6 << QStringLiteral("00 01/10 11/20 21");
        QTest::newRow("no columns") << 3LL << 0LL << 0 << QStringLiteral("//");
        QTest::newRow("negative") << -5LL << lowest << 6 << QStringLiteral("00 01/10 11/20 21");
    }

    void changedDimensionsKeepTheCellsThatRemain()
    {
        QFETCH(long long, rows);
        QFETCH(long long, columns);
        RecordingTable table(3, 2);
        table.fill();
        table.selectCells(0, 0, 0, 0);
        table.setNumCols(columns);
        table.setNumRows(rows);
        QTEST(table.contents(), "contents");
        QTEST(CountedItem::live() - m_liveBefore, "survivors");
        QCOMPARE(table.numSelections() == 0, rows >= 0); // dropped for the same counts too
    }

    void changedDimensionsKeepTheCurrentCellInside()
    {
        MDATable table(3, 4);
        table.setCurrentCell(2, 3);
        const QSignalSpy spy(&table, &MDATable::currentChanged);
        table.setNumCols(3);
        QCOMPARE(currentCell(table), Cell(2, 2));
        table.setNumRows(0);
        QCOMPARE(currentCell(table), Cell(-1, -1));
        QCOMPARE(table.numSelections(), 0);
        table.setNumRows(5);
        QCOMPARE(currentCell(table), Cell(0, 0));
        QCOMPARE(spy.count(), 3);
    }

    void sparseItemsMoveIntoTheirSlotsAndDenseOnesStay()
    {
        RecordingTable table(4, 5);
        table.setItem(1, 2, new CountedItem(QStringLiteral("in the way")));
        table.setText(3, 4, QStringLiteral("left over"));
        table.setSparse(true);
        QVERIFY(!table.item(1, 2) && table.indexOf(1, 2) == 7 && table.indexOf(2, 2) == 12);
        table.setText(1, 2, QStringLiteral("7"));
        table.setText(2, 2, QStringLiteral("12"));
        table.setSparse(false);
        QCOMPARE(table.contents(),
                 QStringLiteral("- - - - -/- - 7 - -/- - 12 - -/- - - - left over"));
        QCOMPARE(CountedItem::takeDeleted(), QStringList{QStringLiteral("in the way")});
        table.setItem(0, 0, new CountedItem);
        table.setSparse(true);
        table.setItem(0, 0, new CountedItem);
        table.clearData();
        QVERIFY(CountedItem::live() == m_liveBefore && table.isSparse());
    }

    void sparseDimensionChangeDropsTheItemsWithoutDeletingThem()
    {
        RecordingTable table(1, 2);
        table.fill();
        const std::unique_ptr<MDATableItem> taken(table.item(0, 0));
        const std::unique_ptr<MDATableItem> dropped(new CountedItem);
        table.setSparse(true);
        table.takeItem(taken.get()); // is still found among the dense ones
        table.setItem(0, 0, dropped.get());
        table.setNumRows(1);
        QVERIFY(!table.item(0, 0));
        QCOMPARE(CountedItem::takeDeleted(), QStringList{QStringLiteral("01")});
    }

    void clearDataEmptiesTheCellsOnly()
    {
        RecordingTable table(3, 3);
        table.fill();
        table.hideRow(1);
        table.addValidRegion(QRect(2, 0, 1, 1));
        QVERIFY(table.showSettled());
        table.clearCell(0, 2); // painted at once
        QCOMPARE(table.paintedCells.value(0).group, QPalette::Disabled);
        table.clearData();
        QCOMPARE(CountedItem::live(), m_liveBefore);
        QCOMPARE(table.contents(), QStringLiteral("- - -/- - -/- - -"));
        QVERIFY(table.isRowHidden(1) && currentCell(table) == Cell(0, 0));
        table.clearRecords();
        RecordingTable::settle();
        QCOMPARE(table.paintedCells.size(), 6);
        for (const RecordingTable::PaintedCell &cell : qAsConst(table.paintedCells))
            QVERIFY(cell.group != QPalette::Disabled);
    }

    void clearLeavesAnEmptyDenseTable()
    {
        RecordingTable table(3, 3);
        table.setTopHeaderLines(2);
        table.setLeftHeaderLines(1);
        table.fill();
        table.hideRow(1);
        table.setSparse(true);
        table.setItem(1, 1, new CountedItem);
        const QSignalSpy spy(&table, &MDATable::currentChanged);
        table.clear();
        QCOMPARE(CountedItem::live(), m_liveBefore);
        QVERIFY(table.numRows() == 0 && table.numCols() == 0 && !table.isSparse());
        QVERIFY(currentCell(table) == Cell(-1, -1) && spy.isEmpty());
        QCOMPARE(table.viewport()->pos(), QPoint(table.frameWidth(), table.frameWidth()));
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
            bool found = true;
            auto *item = new CountedItem(QStringLiteral("caller"));
            item->whenDeleted = [&] {
                found = table.text(1, 1) == QLatin1String("caller");
                table.clearCell(1, 1);
                table.setText(0, 0, QStringLiteral("set"));
            };
            table.setItem(1, 1, item);
            deletion(table);
            QVERIFY(!found && table.text(0, 0) == QLatin1String("set"));
        }
    }

    void hostMayEditCellsWhenSelectionsAreDropped()
    {
        RecordingTable table(2, 2);
        table.fill();
        table.selectCells(0, 0, 1, 1);
        connect(&table, &MDATable::selectionChanged, &table, [&] { table.clearCell(0, 0); });
        table.setNumRows(1);
        QCOMPARE(table.contents(), QStringLiteral("- 01"));
    }

    void denseTableTooLargeForTheStoreEndsTheProcess_data()
    {
        QTest::addColumn<QByteArray>("length");
        for (const char *how : {"setText", "setNumRows", "setSparse"})
            QTest::newRow(how) << QByteArray("10000000000");
        QTest::newRow("saturated") << QByteArray("9223372036854775807");
    }

    void denseTableTooLargeForTheStoreEndsTheProcess()
    {
        QFETCH(QByteArray, length);
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--overfill"), QString::fromLatin1(QTest::currentDataTag())});
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        const QByteArray message = "resizeData called with len > INT_MAX: " + length + '\n';
        QVERIFY2(child.readAllStandardError().endsWith(message), message.constData());
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
        QVERIFY(!sparse.item(trillion - 1, 998));
        // With more cells than 64-bit numbers, several of them share an index.
        QCOMPARE(sparse.indexOf(1LL << 32, 5), sparse.indexOf(0, 5));
        sparse.setText(0, 5, QStringLiteral("here"));
        QVERIFY(!sparse.item(1LL << 32, 5));
        sparse.clearCell(1LL << 32, 5);
        QCOMPARE(sparse.text(0, 5), QStringLiteral("here"));
    }

    void hidingTheCurrentCellMovesIt_data()
    {
        QTest::addColumn<long long>("current");
        QTest::addColumn<long long>("from");
        QTest::addColumn<long long>("to");
        QTest::addColumn<long long>("expected");
        QTest::newRow("to the next one") << 4LL << 4LL << 4LL << 5LL;
        QTest::newRow("over the hidden ones") << 2LL << 2LL << 6LL << 7LL;
        QTest::newRow("back from the last one") << 9LL << 9LL << 9LL << 8LL;
        QTest::newRow("back over hidden ones") << 9LL << 5LL << 9LL << 4LL;
        QTest::newRow("back when none follows") << 7LL << 5LL << 9LL << 4LL;
        QTest::newRow("not when others are hidden") << 4LL << 5LL << 9LL << 4LL;
        QTest::newRow("nowhere without a visible one") << 3LL << 0LL << highest << 3LL;
        QTest::newRow("not for an inverted range") << 4LL << 5LL << 3LL << 4LL;
        QTest::newRow("not for sections outside") << 9LL << 10LL << 10LL << 9LL;
        QTest::newRow("within a range cut to the table") << 1LL << lowest << 2LL << 3LL;
    }

    void hidingTheCurrentCellMovesIt()
    {
        QFETCH(long long, current);
        QFETCH(long long, from);
        QFETCH(long long, to);
        QFETCH(long long, expected);
        const int changes = from <= to && from < 10 ? 1 : 0;
        RecordingTable table(10, 10);
        table.setCurrentCell(current, 5);
        from == to ? table.hideRow(from) : table.hideRows(from, to);
        QCOMPARE(currentCell(table), Cell(expected, 5));
        for (long long row = -1; row <= 10; ++row)
            QCOMPARE(table.isRowHidden(row), from <= row && row <= to && row >= 0 && row < 10);
        QCOMPARE(table.countOf("rowHeightChanged"), changes);
        from == to ? table.showRow(from) : table.showRows(from, to);
        QCOMPARE(table.countOf("rowHeightChanged"), 2 * changes);
        QVERIFY(!table.isRowHidden(current) && !table.isRowHidden(5));

        table.setCurrentCell(5, current);
        from == to ? table.hideColumn(from) : table.hideColumns(from, to);
        QCOMPARE(currentCell(table), Cell(5, expected));
        QCOMPARE(table.countOf("columnWidthChanged"), changes);
        table.showColumns(lowest, highest);
        QVERIFY(!table.isColumnHidden(current) && !table.isColumnHidden(5));
    }

    void itemWhoseRowAndColumnAreNoCellIsDeletedWithTheOthers()
    {
        RecordingTable table(1, 4);
        auto *item = new CountedItem;
        table.setItem(0, 3, item);
        item->setRow(1); // by its index
        item->setCol(-1); // it still is in its slot
        table.setNumCols(0);
        QCOMPARE(CountedItem::live(), m_liveBefore);
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
