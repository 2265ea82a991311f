#include <support/recordingtable.h>
#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>
#include <tul-util-gui/mdatable/mdatableitem.h>

#include <QApplication>
#include <QScrollBar>
#include <QTest>

#include <limits>
#include <tuple>

const int highest = std::numeric_limits<int>::max();
const long long trillion = 1000000000000LL;
const int pixelLimit = 2147450879;

using Rects = QVector<QRect>;

class TestMDATableGeometry : public TestCase
{
    Q_OBJECT

    static QPoint barMaxima(const MDATable &table)
    {
        return {table.horizontalScrollBar()->maximum(), table.verticalScrollBar()->maximum()};
    }

    static void setStrut(const QSize &size)
    {
        QT_WARNING_PUSH
        QT_WARNING_DISABLE_DEPRECATED
        QApplication::setGlobalStrut(size);
        QT_WARNING_POP
    }

    static void scrollTo(const MDATable &table, int x, int y)
    {
        table.horizontalScrollBar()->setValue(x);
        table.verticalScrollBar()->setValue(y);
        RecordingTable::settle();
    }

private Q_SLOTS:
    void cleanup()
    {
        TestCase::cleanup();
        QApplication::setLayoutDirection(Qt::LeftToRight);
        setStrut(QSize(0, 0));
    }

    void cellsLieInAGridThatScrolls()
    {
        RecordingTable table(100, 50);
        table.setColumnWidth(30);
        QVERIFY(table.showSettled());
        QCOMPARE(table.cellRect(3, 4), QRect(0, 0, 30, 20));
        scrollTo(table, 100, 45);
        QCOMPARE(table.cellGeometry(3, 4), QRect(20, 15, 30, 20));
        QVERIFY(table.rowAt(15) == 3 && table.rowAt(14) == 2 && table.rowAt(-46) == -1);
        QVERIFY(table.columnAt(20) == 4 && table.columnAt(1400) == -1);
        QVERIFY(table.rowAt(highest) == -1 && table.columnAt(-highest - 1) == -1);
        scrollTo(table, 0, 0);
        QCOMPARE(table.cellGeometry(-1, -3), QRect(-90, -20, 30, 20));
        table.hideRows(2, 4);
        table.hideColumn(1);
        QCOMPARE(table.cellGeometry(3, 0), QRect(0, 40, 30, 0));
        QCOMPARE(table.cellGeometry(5, 1), QRect(30, 40, 0, 20));
        QCOMPARE(table.cellRect(2, 1), QRect(0, 0, 0, 0));
    }

    void columnsFitTheWidestItemSinceTheLastClear()
    {
        MDATable table;
        table.adjustColumnWidth();
        QCOMPARE(table.columnWidth(), 20);
        table.setNumRows(1);
        table.setNumCols(2);
        table.setText(0, 0, QString(40, QLatin1Char('M')));
        const int widest = table.item(0, 0)->sizeHint().width();
        table.clearCell(0, 0);
        table.adjustColumnWidth();
        QCOMPARE(table.columnWidth(), widest);
        table.clearData();
        table.setText(0, 1, QStringLiteral("MMMMMMMM"));
        table.adjustColumnWidth();
        QCOMPARE(table.columnWidth(), table.item(0, 1)->sizeHint().width());
        const QSize strut(widest + 50, 70);
        setStrut(strut);
        QCOMPARE(table.item(0, 1)->sizeHint(), strut);
        table.adjustColumnWidth();
        table.setNumRows(2);
        QCOMPARE(QSize(table.columnWidth(), table.rowHeight()), strut);
    }

    void sizeHintHoldsSmallTablesAndIsUsualForLargeOnes()
    {
        MDATable table(20, 24); // cells of 20 x 20
        table.setTopMargin(7);
        table.setLeftMargin(11);
        QCOMPARE(table.sizeHint(), QSize(11 + 480 + 5, 7 + 400 + 5));
        table.setNumCols(25);
        QCOMPARE(table.sizeHint(), QScrollArea().sizeHint() + QSize(11, 7));
    }

    void scrollBarsCoverWhatDoesNotFit()
    {
        RecordingTable table(70, 20);
        const int frame = table.frameWidth();
        table.hideRows(1, 25);
        for (int row = 26; row < 50; ++row)
            table.hideRow(row);
        QVERIFY(table.showSettled(QSize(380 + 2 * frame, 300 + 2 * frame)));
        const QSize view = table.viewport()->size();
        QCOMPARE(barMaxima(table), QPoint(400 - view.width(), 420 - view.height()));
        QCOMPARE(table.verticalScrollBar()->pageStep(), 200);
        // Bars that are there take the room without which they were not needed.
        table.setColumnWidth(19);
        table.setRowHeight(14);
        RecordingTable::settle();
        QCOMPARE(barMaxima(table), QPoint(0, 0));
        QCOMPARE(table.viewport()->size(), QSize(380, 300));
        table.setRowHeight(15);
        RecordingTable::settle();
        QVERIFY(barMaxima(table).x() > 0); // the vertical bar takes its room
        QCOMPARE(barMaxima(table).y(), 315 - table.viewport()->height());
        QCOMPARE(table.horizontalScrollBar()->singleStep(), 19);
        table.setRowHeight(highest);
        QCOMPARE(table.verticalScrollBar()->pageStep(), highest);
    }

    void hugeTablesScrollToThePixelLimit()
    {
        RecordingTable table(trillion, trillion);
        QVERIFY(table.showSettled());
        const QSize view = table.viewport()->size();
        QCOMPARE(barMaxima(table), QPoint(pixelLimit - view.width(), pixelLimit - view.height()));
        scrollTo(table, highest, highest);
        QCOMPARE(table.rowAt(view.height() - 1), 107372543LL);
        QCOMPARE(table.columnAt(view.width() - 1), 107372543LL);
        QVERIFY(!table.paintedCells.isEmpty() && table.paintedCells.size() < 1000);
        // Cells beyond can be addressed.
        QCOMPARE(table.cellGeometry(trillion - 1, trillion - 1).topLeft(),
                 QPoint(view.width(), view.height()));
        table.setCurrentCell(trillion - 1, trillion - 1);
        table.setRowHeight(highest);
        table.setColumnWidth(40000);
        for (const int value : {highest, 0, 1000000}) {
            scrollTo(table, value, value);
            QVERIFY(table.rowAt(0) >= 0 && table.columnAt(0) >= 0);
        }
        scrollTo(table, highest, highest); // and what becomes shorter pulls back the view
        table.setSparse(true);
        table.setNumCols(50);
        table.hideRows(1, trillion - 3);
        RecordingTable::settle();
        QCOMPARE(table.columnPos(50), table.viewport()->width());
        QCOMPARE(table.verticalScrollBar()->value(), barMaxima(table).y());
    }

    void delayedLayoutIsDoneOnceForManyChanges()
    {
        RecordingTable table(1000, 10);
        QVERIFY(table.showSettled());
        for (int i = 0; i < 10; ++i) {
            table.hideRow(2 * i + 1);
            table.setRowHeight(30 + i);
            table.setColumnWidth(10 + i);
        }
        RecordingTable::settle();
        QCOMPARE(table.countOf("updateGeometries"), 1);
        QCOMPARE(table.paintEvents.size(), 1);
    }

    void headersStandBesideTheViewportAlsoWhenTheDirectionChanges()
    {
        QApplication::setLayoutDirection(Qt::RightToLeft);
        RecordingTable table(10, 100);
        table.setLeftHeaderLines(2);
        table.setTopHeaderLines(1);
        const int left = table.leftHeader()->fixedExtent();
        const int top = table.topHeader()->fixedExtent();
        QVERIFY(table.showSettled());
        for (const auto direction : {Qt::RightToLeft, Qt::LeftToRight, Qt::RightToLeft}) {
            QApplication::setLayoutDirection(direction);
            RecordingTable::settle();
            const int frame = table.frameWidth();
            const QRect view = table.viewport()->geometry();
            const int x = direction == Qt::LeftToRight ? frame : table.width() - frame - left;
            QCOMPARE(view.x(), direction == Qt::LeftToRight ? frame + left : x - view.width());
            QCOMPARE(table.leftHeader()->geometry(), QRect(x, top + frame, left, view.height()));
            QCOMPARE(table.topHeader()->geometry(), QRect(view.x(), frame, view.width(), top));
            QVERIFY(table.columnPos(1) > table.columnPos(0)); // cells are not mirrored
        }
        const int width = table.viewport()->width();
        table.setLeftHeaderLines(0);
        QCOMPARE(table.viewport()->width(), width + left);
        QApplication::setLayoutDirection(Qt::LeftToRight);
        table.setLayoutDirection(Qt::RightToLeft); // on its own
        table.setLeftMargin(50);
        QCOMPARE(table.viewport()->geometry().right() + 1, table.leftHeader()->x());
    }

    void cellMadeCurrentBeforeTheFirstShowIsInViewThen()
    {
        // Row, where the host scrolls to afterwards, whether the row is in view, and where then.
        for (const auto &[row, scrolled, inView, value] :
             {std::tuple{5000, -1, true, 100020}, {2, -1, true, 0}, {5000, 70, false, 70}}) {
            QWidget window;
            RecordingTable table(100000, 3, &window);
            table.setCurrentCell(row, 0);
            if (scrolled != -1)
                table.verticalScrollBar()->setValue(scrolled);
            table.setGeometry(0, 0, 200, 200 + 2 * table.frameWidth());
            window.show();
            QCOMPARE(table.viewport()->rect().contains(table.cellGeometry(row, 0)), inView);
            QCOMPARE(table.verticalScrollBar()->value(), value - (row > 10 && inView ? 200 : 0));
        }
    }

    // A header that is wider than its rows are long goes back to the start when it is resized.
    void barsFollowTheHeaders()
    {
        RecordingTable table(5, 3);
        table.setLeftMargin(297);
        QVERIFY(table.showSettled(QSize(400, 80)));
        scrollTo(table, 0, 15);
        QCOMPARE(table.rowPos(0), -15);
        table.resize(400, 70);
        QCOMPARE(table.verticalScrollBar()->value(), -table.rowPos(0));
        scrollTo(table, 0, 15);
        QCOMPARE(table.rowPos(0), -15);
    }

    void onlyWhatChangedIsPaintedAnew()
    {
        RecordingTable table(10000000000LL, 10);
        table.setSparse(true);
        table.hideRows(5, 9000000000LL);
        QVERIFY(table.showSettled());
        table.setItem(2, 4, new MDATableItem(&table)); // at once
        QCOMPARE(table.paintEvents, Rects{QRect(80, 40, 20, 20)});
        RecordingTable::settle();
        table.clearRecords();
        table.updateCell(trillion, trillion);
        table.updateCell(-1, 3);
        table.updateCell(2, 3);
        RecordingTable::settle();
        QCOMPARE(table.paintEvents, Rects{QRect(58, 38, 24, 24)});
        table.clearRecords();
        table.selectCells(1, 2, 10000000000LL, 3); // however many cells, most of them hidden
        RecordingTable::settle();
        QCOMPARE(table.paintEvents, Rects{QRect(0, 0, 82, table.viewport()->height())});
        RecordingTable small(3, 3);
        QVERIFY(small.showSettled());
        small.setSparse(true); // its items are not found any more
        RecordingTable::settle();
        QCOMPARE(small.paintEvents, Rects{small.viewport()->rect()});
    }
};

QTEST_MAIN(TestMDATableGeometry)
#include "tst_mdatablegeometry.moc"
