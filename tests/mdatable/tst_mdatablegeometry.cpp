#include <support/counteditem.h>
#include <support/recordingtable.h>
#include <support/testcase.h>
#include <tul-util-gui/mdatable/globalstrut_p.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>

#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <limits>

namespace
{

const int lowest = std::numeric_limits<int>::min();
const int highest = std::numeric_limits<int>::max();
const long long trillion = 1000000000000LL;
const int pixelLimit = 2147450879;

using Rects = QVector<QRect>;

// Calls back from within a cell's geometry.
class CallingTable : public RecordingTable
{
public:
    using RecordingTable::RecordingTable;
    std::function<void()> whenAsked;

    QRect cellGeometry(long long row, long long col) const override
    {
        if (whenAsked)
            whenAsked();
        return RecordingTable::cellGeometry(row, col);
    }
};

void setGlobalStrut(const QSize &strut)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QApplication::setGlobalStrut(strut);
    QT_WARNING_POP
}

QPoint barMaxima(const MDATable &table)
{
    return {table.horizontalScrollBar()->maximum(), table.verticalScrollBar()->maximum()};
}

} // namespace

class TestMDATableGeometry : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        TestCase::cleanup();
        QApplication::setLayoutDirection(Qt::LeftToRight);
        setGlobalStrut(QSize(0, 0));
    }

    void cellsLieInAGridThatScrolls()
    {
        RecordingTable table(100, 50);
        table.setColumnWidth(30);
        QVERIFY(table.showSettled());
        QCOMPARE(table.cellGeometry(3, 4), QRect(120, 60, 30, 20));
        QCOMPARE(table.cellRect(3, 4), QRect(0, 0, 30, 20));
        table.horizontalScrollBar()->setValue(100);
        table.verticalScrollBar()->setValue(45);
        QCOMPARE(table.cellGeometry(3, 4), QRect(20, 15, 30, 20));
        QVERIFY(table.rowPos(0) == -45 && table.columnPos(0) == -100);
        QVERIFY(table.rowAt(15) == 3 && table.rowAt(14) == 2 && table.rowAt(-46) == -1);
        QVERIFY(table.columnAt(20) == 4 && table.columnAt(1400) == -1);
        QVERIFY(table.rowAt(highest) == -1 && table.columnAt(lowest) == -1);
        table.horizontalScrollBar()->setValue(0);
        table.verticalScrollBar()->setValue(0);
        table.hideRows(2, 4);
        table.hideColumn(1);
        QCOMPARE(table.cellGeometry(3, 0), QRect(0, 40, 30, 0));
        QCOMPARE(table.cellGeometry(5, 1), QRect(30, 40, 0, 20));
        QCOMPARE(table.cellRect(2, 1), QRect(0, 0, 0, 0));
    }

    void cellsBeforeTheFirstHaveNegativePositions()
    {
        RecordingTable table(100, 100);
        QVERIFY(table.showSettled());
        QCOMPARE(table.cellGeometry(-1, -3), QRect(-60, -20, 20, 20));
        QVERIFY(table.rowPos(std::numeric_limits<long long>::min()) < 0);
        table.setCurrentCell(-5, 3); // is not limited at that end
        RecordingTable::settle();
        QCOMPARE(table.paintedFocus.last(), QRect(60, -100, 20, 20));
    }

    void sizeChangesAreAnnouncedAndResetWithTheDimensions()
    {
        RecordingTable table(10, 10);
        table.setRowHeight(20); // as it is
        QVERIFY(table.calls.isEmpty());
        table.setRowHeight(25);
        table.setColumnWidth(-3);
        QVERIFY(table.countOf("rowHeightChanged") == 1 && table.countOf("columnWidthChanged") == 1);
        QVERIFY(table.columnWidth() == 0 && table.columnAt(0) == -1 && table.showSettled());
        table.setNumRows(10);
        table.setNumCols(10);
        QVERIFY(table.rowHeight() == std::max(20, table.fontMetrics().height() + 6));
        QCOMPARE(table.columnWidth(), 30);
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
        setGlobalStrut(strut);
        QCOMPARE(table.item(0, 1)->sizeHint(), strut);
        table.adjustColumnWidth();
        table.setNumRows(2);
        QCOMPARE(QSize(table.columnWidth(), table.rowHeight()), strut);
    }

    void scrollBarsCoverWhatDoesNotFit()
    {
        RecordingTable table(100, 50);
        QVERIFY(table.showSettled());
        const QSize view = table.viewport()->size();
        QCOMPARE(barMaxima(table), QPoint(50 * 20 - view.width(), 100 * 20 - view.height()));
        table.setColumnWidth(30);
        QCOMPARE(table.horizontalScrollBar()->singleStep(), 30);
        QCOMPARE(table.verticalScrollBar()->pageStep(), 200);
        const QSignalSpy spy(table.verticalScrollBar(), &QScrollBar::rangeChanged);
        for (int row = 0; row < 50; ++row)
            table.hideRow(row);
        QCOMPARE(barMaxima(table), QPoint(50 * 30 - view.width(), 50 * 20 - view.height()));
        RecordingTable::settle();
        QCOMPARE(spy.value(spy.count() - 1).value(1), QVariant(barMaxima(table).y()));
        table.resize(800, 600);
        RecordingTable::settle();
        const QSize larger = table.viewport()->size();
        QCOMPARE(barMaxima(table), QPoint(50 * 30 - larger.width(), 50 * 20 - larger.height()));
        table.setRowHeight(highest);
        QCOMPARE(table.verticalScrollBar()->pageStep(), highest);
    }

    // Bars that are there take the room without which they were not needed.
    void scrollBarsGoWhenTheContentsFitWithoutThem()
    {
        RecordingTable table(20, 20);
        const int frame = table.frameWidth();
        QVERIFY(table.showSettled(QSize(380 + 2 * frame, 300 + 2 * frame)));
        QVERIFY(barMaxima(table).x() > 0 && barMaxima(table).y() > 0);
        table.setColumnWidth(19);
        table.setRowHeight(15);
        RecordingTable::settle();
        QCOMPARE(barMaxima(table), QPoint(0, 0));
        QCOMPARE(table.viewport()->size(), QSize(380, 300));
        table.setColumnWidth(20);
        RecordingTable::settle();
        QCOMPARE(barMaxima(table).x(), 400 - table.viewport()->width());
        QVERIFY(barMaxima(table).y() > 0); // the horizontal bar takes their room
    }

    void hugeTablesScrollToThePixelLimit()
    {
        RecordingTable table(trillion, trillion);
        QVERIFY(table.showSettled());
        const QSize view = table.viewport()->size();
        QCOMPARE(barMaxima(table), QPoint(pixelLimit - view.width(), pixelLimit - view.height()));
        table.verticalScrollBar()->setValue(highest);
        table.horizontalScrollBar()->setValue(highest);
        RecordingTable::settle();
        QCOMPARE(table.rowAt(view.height() - 1), 107372543LL);
        QCOMPARE(table.columnAt(view.width() - 1), 107372543LL);
        QVERIFY(!table.paintedCells.isEmpty() && table.paintedCells.size() < 1000);
        const RecordingTable::PaintedCell cell = table.paintedCells.last();
        QCOMPARE(cell.rect, table.cellGeometry(cell.row, cell.col));
        // Cells beyond can be addressed.
        QCOMPARE(table.cellGeometry(trillion - 1, trillion - 1).topLeft(),
                 QPoint(view.width(), view.height()));
        table.setCurrentCell(trillion - 1, trillion - 1);
        table.setRowHeight(highest);
        table.setColumnWidth(40000);
        for (const int value : {highest, 0, 1000000}) {
            table.verticalScrollBar()->setValue(value);
            table.horizontalScrollBar()->setValue(value);
            RecordingTable::settle();
            QVERIFY(table.rowAt(0) >= 0 && table.columnAt(0) >= 0);
        }
        QVERIFY(table.cellGeometry(trillion - 1, trillion - 1).isValid());
    }

    void shrinkingContentsPullBackTheView()
    {
        RecordingTable table(200, 100);
        QVERIFY(table.showSettled());
        table.horizontalScrollBar()->setValue(highest);
        table.verticalScrollBar()->setValue(highest);
        table.setNumCols(50);
        table.hideRows(1, 100);
        RecordingTable::settle();
        QCOMPARE(table.columnPos(50), table.viewport()->width());
        QCOMPARE(table.rowPos(200), table.viewport()->height());
        table.setNumCols(2);
        table.setNumRows(0);
        RecordingTable::settle();
        QVERIFY(table.columnPos(0) == 0 && table.leftHeader()->offset() == 0);
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
        QCOMPARE(table.countOf("updateGeometries"), 0);
        RecordingTable::settle();
        QCOMPARE(table.countOf("updateGeometries"), 1);
        QCOMPARE(table.paintEvents.size(), 1);
    }

    void headersStandBesideTheViewport_data()
    {
        QTest::addColumn<Qt::LayoutDirection>("application");
        QTest::addColumn<Qt::LayoutDirection>("widget");
        QTest::newRow("left to right") << Qt::LeftToRight << Qt::LeftToRight;
        QTest::newRow("right to left") << Qt::RightToLeft << Qt::RightToLeft;
        QTest::newRow("only the table right to left") << Qt::LeftToRight << Qt::RightToLeft;
    }

    void headersStandBesideTheViewport()
    {
        QFETCH(Qt::LayoutDirection, application);
        QFETCH(Qt::LayoutDirection, widget);
        QApplication::setLayoutDirection(application);
        RecordingTable table(10, 5);
        table.setLayoutDirection(widget);
        table.setLeftHeaderLines(2);
        table.setTopHeaderLines(1);
        const int left = table.leftHeader()->fixedExtent();
        const int top = table.topHeader()->fixedExtent();
        QCOMPARE(table.sizeHint(),
                 QSize(left + 5 * table.columnWidth() + 5, top + 10 * table.rowHeight() + 5));
        table.setNumCols(100);
        QVERIFY(table.showSettled());
        const int frame = table.frameWidth();
        const bool mirrored = widget == Qt::RightToLeft;
        const QRect view = table.viewport()->geometry();
        const QRect rows(mirrored ? table.width() - frame - left : frame, top + frame, left,
                         view.height());
        const QRect columns(mirrored ? rows.x() - view.width() : left + frame, frame, view.width(),
                            top);
        QCOMPARE(table.leftHeader()->geometry(), rows);
        QCOMPARE(table.topHeader()->geometry().size(), columns.size());
        if (application == widget) { // else the margin is not where the header is
            QCOMPARE(table.topHeader()->geometry(), columns);
            QCOMPARE(view.topLeft(), QPoint(columns.x(), rows.y()));
        }
        QVERIFY(table.columnPos(1) > table.columnPos(0)); // cells are not mirrored
        table.setLeftHeaderLines(0);
        QCOMPARE(table.leftHeader()->width(), 0);
        QCOMPARE(table.viewport()->width(), view.width() + left);
        table.setTopMargin(44);
        QVERIFY(table.viewport()->y() == 44 + frame && table.topHeader()->height() == 44);
    }

    void onlyOneLayoutRunsAtATime()
    {
        RecordingTable table(100, 100);
        RecordingTable other(100, 100);
        table.setNumRows(100);
        QVERIFY(table.showSettled() && other.showSettled());
        table.verticalScrollBar()->setValue(highest);
        // The pull back of the layout asks for a layout of the other table, which is dropped.
        connect(table.verticalScrollBar(), &QScrollBar::valueChanged, &other,
                [&other] { other.setLeftMargin(50); });
        table.leftHeader()->setCount(20);
        table.updateGeometries();
        QCOMPARE(table.rowPos(20), table.viewport()->height());
        QCOMPARE(other.leftHeader()->width(), 0);
        other.updateGeometries();
        QCOMPARE(other.leftHeader()->width(), 50);
    }

    void updatedCellIsPaintedWithTwoPixelsAround()
    {
        CallingTable table(10, 10);
        RecordingTable other(10, 10);
        QVERIFY(other.showSettled() && table.showSettled());
        other.clearRecords(); // it has lost the focus
        table.whenAsked = [&] { // dropped, whichever table it is for
            table.updateCell(5, 5);
            other.updateCell(5, 5);
        };
        table.updateCell(2, 3);
        table.whenAsked = nullptr;
        table.updateCell(-1, 3);
        table.updateCell(3, -1);
        table.updateCell(trillion, trillion);
        QVERIFY(table.paintEvents.isEmpty()); // queued
        RecordingTable::settle();
        QCOMPARE(table.paintEvents, Rects{QRect(58, 38, 24, 24)});
        QVERIFY(other.paintEvents.isEmpty());
        other.updateCell(5, 5); // works again
        RecordingTable::settle();
        QCOMPARE(other.paintEvents.size(), 1);
    }

    void clearedAndTakenCellsArePaintedAtOnceAndTheGridOnce()
    {
        RecordingTable table(1000, 10);
        QVERIFY(table.showSettled());
        CountedItem item;
        table.setItem(2, 4, &item);
        QCOMPARE(table.paintEvents, Rects{QRect(80, 40, 20, 20)});
        RecordingTable::settle();
        table.clearRecords();
        table.takeItem(&item);
        table.clearCell(900, 3); // out of sight
        QCOMPARE(table.paintEvents, Rects{QRect(80, 40, 20, 20)});
        for (int i = 0; i < 2; ++i) {
            table.setShowGrid(false); // repaints once
            RecordingTable::settle();
        }
        QCOMPARE(table.paintEvents.mid(1), Rects{table.viewport()->rect()});
    }

    void largeTablesAskForTheirHeadersAndSomeContents()
    {
        RecordingTable table(10, 12);
        QCOMPARE(table.sizeHint(), QSize(12 * 20 + 5, 10 * 20 + 5));
        table.setLeftHeaderLines(1);
        table.setTopHeaderLines(1);
        const int top = table.topHeader()->fixedExtent();
        table.setRowHeight(49);
        QCOMPARE(table.sizeHint().height(), 490 + top + 5);
        const QSize base = QScrollArea().sizeHint();
        table.setRowHeight(50);
        QCOMPARE(table.sizeHint(), base + QSize(40, top));
        table.leftHeader()->hide();
        QCOMPARE(table.sizeHint(), base + QSize(0, top));
    }

    void activationRepaintsWhenItChangesTheColours()
    {
        RecordingTable table(10, 10);
        QVERIFY(table.showSettled());
        for (const bool differs : {false, true}) {
            QPalette palette = table.palette();
            palette.setColor(QPalette::Active, QPalette::Window, Qt::gray);
            palette.setColor(QPalette::Inactive, QPalette::Window, differs ? Qt::red : Qt::gray);
            table.setPalette(palette);
            RecordingTable::settle();
            table.clearRecords();
            QEvent activation(QEvent::ActivationChange);
            QCoreApplication::sendEvent(&table, &activation);
            RecordingTable::settle();
            QCOMPARE(table.paintEvents, Rects(differs ? 1 : 0, table.viewport()->rect()));
        }
    }

    // However many cells it has and however many of them are hidden.
    void selectionIsRepaintedWhereItIsSeen()
    {
        RecordingTable table(10000000000LL, 10);
        table.hideRows(3, 9000000000LL);
        table.hideColumn(4);
        QVERIFY(table.showSettled());
        table.selectCells(1, 2, 10000000000LL, 4);
        RecordingTable::settle();
        QCOMPARE(table.paintEvents, Rects{QRect(0, 0, 82, table.viewport()->height())});
    }
};

QTEST_MAIN(TestMDATableGeometry)
#include "tst_mdatablegeometry.moc"
