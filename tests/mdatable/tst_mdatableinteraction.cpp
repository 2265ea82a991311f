#include <support/counteditem.h>
#include <support/recordingtable.h>
#include <support/testcase.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QCursor>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMetaEnum>
#include <QPointer>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <utility>

using Action = std::function<void(MDATable *)>;
Q_DECLARE_METATYPE(Action)

namespace
{

const long long billion = 1000000000LL;
const long long trillion = 1000 * billion;

// Current cell and blocks: "1,2 [0,0-1,2] (3,3)*" has an active block and an inactive single cell,
// which is the current block.
QString state(const MDATable &table)
{
    QString result = QStringLiteral("%1,%2").arg(table.currentRow()).arg(table.currentColumn());
    for (int i = 0; i < table.numSelections(); ++i) {
        const MDATableSelection block = table.selection(i);
        QString cells = QStringLiteral("%1,%2").arg(block.topRow()).arg(block.leftCol());
        if (block.topRow() != block.bottomRow() || block.leftCol() != block.rightCol())
            cells += QStringLiteral("-%1,%2").arg(block.bottomRow()).arg(block.rightCol());
        result += (block.isActive() ? QStringLiteral(" [%1]") : QStringLiteral(" (%1)")).arg(cells);
        if (i == table.currentSelection())
            result += QLatin1Char('*');
    }
    return result;
}

#define COMPARE_STATE(table, expected) QCOMPARE(state(table), QStringLiteral(expected))

void showWithViewport(RecordingTable *table, const QSize &size)
{
    QVERIFY(table->showSettled(size));
    table->resize(table->size() + size - table->viewport()->size());
    RecordingTable::settle();
    QCOMPARE(table->viewport()->size(), size);
}

QPoint middleOf(const MDATable &table, long long row, long long col)
{
    return table.cellGeometry(row, col).center();
}

void sendKey(QWidget *widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(widget, &event);
}

/// One mouse event at a position of the viewport, with the pointer there.
void sendMouse(MDATable *table, QEvent::Type type, const QPoint &pos, Qt::MouseButton button,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const QPoint global = table->viewport()->mapToGlobal(pos);
    QCursor::setPos(global);
    const Qt::MouseButtons held
        = type == QEvent::MouseButtonRelease ? Qt::MouseButtons() : Qt::MouseButtons(button);
    QMouseEvent event(type, pos, global, type == QEvent::MouseMove ? Qt::NoButton : button, held,
                      modifiers);
    QApplication::sendEvent(table->viewport(), &event);
}

void press(MDATable *table, const QPoint &pos, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    sendMouse(table, QEvent::MouseButtonPress, pos, Qt::LeftButton, modifiers);
}

void drag(MDATable *table, const QPoint &pos)
{
    sendMouse(table, QEvent::MouseMove, pos, Qt::LeftButton);
}

void release(MDATable *table, const QPoint &pos)
{
    sendMouse(table, QEvent::MouseButtonRelease, pos, Qt::LeftButton);
}

void click(MDATable *table, long long row, long long col,
           Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const QPoint pos = middleOf(*table, row, col);
    press(table, pos, modifiers);
    release(table, pos);
}

bool autoScrollWaits(const MDATable &table)
{
    const QList<QTimer *> timers = table.findChildren<QTimer *>();
    return std::any_of(timers.begin(), timers.end(), [](const QTimer *timer) {
        return timer->isActive() && timer->interval() == 100;
    });
}

QString copied(MDATable *table)
{
    QApplication::clipboard()->setText(QStringLiteral("as before"));
    sendKey(table, Qt::Key_C, Qt::ControlModifier);
    return QApplication::clipboard()->text();
}

void disable(MDATable *table, long long row, long long col)
{
    table->setText(row, col, QStringLiteral("disabled"));
    table->item(row, col)->setEnabled(false);
}

// Serves its cells instead of keeping them, as large arrays are shown.
class ServingTable : public RecordingTable
{
public:
    ServingTable(long long numRows, long long numCols)
    {
        setSparse(true);
        setNumRows(numRows);
        setNumCols(numCols);
    }

    MDATableItem *item(long long row, long long col) const override
    {
        ++served;
        m_item.setText(QStringLiteral("%1:%2").arg(row).arg(col));
        return &m_item;
    }

    mutable int served = 0;

private:
    mutable CountedItem m_item;
};

} // namespace

class TestMDATableInteraction : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void currentCellIsLimitedAtTheEndAndAnnouncedWhenItChanges()
    {
        RecordingTable table(10, 6);
        const QSignalSpy changed(&table, &MDATable::currentChanged);
        table.setCurrentCell(trillion, 3);
        table.setCurrentCell(9, 3);
        table.setCurrentCell(9, trillion);
        COMPARE_STATE(table, "9,5 (9,5)*");
        table.setCurrentCell(-1, -1); // no cell, no block
        COMPARE_STATE(table, "-1,-1");
        table.setCurrentCell(-5, 3);
        QCOMPARE(table.currentRow(), -5LL);
        const QList<QVariantList> announced{{9LL, 3LL}, {9LL, 5LL}, {-1LL, -1LL}, {-5LL, 3LL}};
        QCOMPARE(QList<QVariantList>(changed), announced);
        table.setCurrentCell(-1, -1);
        for (const int key : {Qt::Key_Down, Qt::Key_Home, Qt::Key_PageUp, Qt::Key_Tab,
                              Qt::Key_Backtab, Qt::Key_Return}) {
            sendKey(&table, key);
            sendKey(&table, key, Qt::ShiftModifier);
        }
        COMPARE_STATE(table, "-1,-1");
    }

    void currentCellInsideABlockKeepsTheBlocks()
    {
        RecordingTable table(10, 6);
        table.selectCells(1, 1, 3, 3);
        table.selectRow(8);
        COMPARE_STATE(table, "0,0 (0,0) [1,1-3,3] [8,0-8,5]*");
        QVERIFY(table.isSelected(2, 2) && !table.isSelected(4, 2));
        QVERIFY(table.isSelected(0, 0)); // the current cell counts as long as there are blocks
        table.setCurrentCell(2, 2);
        COMPARE_STATE(table, "2,2 (0,0) [1,1-3,3] [8,0-8,5]*");
        QVERIFY(!table.isSelected(0, 0));
        const QSignalSpy changed(&table, &MDATable::selectionChanged);
        table.setCurrentCell(0, 0); // its block is not active
        COMPARE_STATE(table, "0,0 (0,0)*");
        QCOMPARE(changed.count(), 1);
        table.clearSelection();
        table.clearSelection();
        QCOMPARE(changed.count(), 2);
        QVERIFY(!table.isSelected(0, 0));
    }

    void keysMoveTheCurrentCell_data()
    {
        QTest::addColumn<QPoint>("from"); // row, column
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("endsHidden");
        QTest::addColumn<QString>("expected");
        // Key, from, to. Rows 4, 5 and column 2 are hidden, five rows fit into the viewport. By
        // design Tab ends at the last column, hidden or disabled as it may be, and Backtab loses
        // the column. "only": no block comes into being.
        const QString moves[] = {
            QStringLiteral(
                "Home 7,3 0,3|End 1,3 9,3|Left 6,3 6,1|Left 6,0 6,0|Right 6,1 6,3"
                "|Right 6,5 6,5|Up 6,1 3,1|Up 0,1 0,1|Down 3,1 6,1|Down 9,1 9,1|Down 1,2 2,2"
                "|Down 4,2 6,2|Left 4,2 4,1|PageDown 0,1 7,1|PageDown 6,1 9,1|PageDown 9,1 9,1"
                "|PageUp 9,1 2,1|PageUp 2,1 0,1|PageUp 0,1 0,1|Tab 6,1 6,3|Tab 1,1 1,5"
                "|Tab 2,4 2,5|Tab 6,5 6,5 only|Backtab 6,3 6,1|Backtab 1,5 1,0"
                "|Backtab 6,0 6,0 only"),
            // The first and the last row and column are hidden, too.
            QStringLiteral(
                "Home 7,3 7,3|End 7,3 7,3|Up 1,3 1,3|Down 8,3 8,3|Left 6,1 6,1|Right 6,4 6,4"
                "|PageUp 2,1 2,1|PageDown 6,1 6,1|Tab 6,4 6,5|Backtab 6,1 6,-1 only"),
        };
        for (const bool endsHidden : {false, true}) {
            for (const QString &move : moves[endsHidden].split(QLatin1Char('|'))) {
                const QStringList parts = move.split(QLatin1Char(' '));
                const QStringList from = parts.at(1).split(QLatin1Char(','));
                const QString to = parts.at(2);
                const QByteArray key = "Key_" + parts.at(0).toLatin1();
                QTest::addRow("%s%s", qPrintable(move), endsHidden ? ", ends hidden" : "")
                    << QPoint(from.at(0).toInt(), from.at(1).toInt())
                    << QMetaEnum::fromType<Qt::Key>().keyToValue(key.constData()) << endsHidden
                    << (parts.size() > 3 ? to : QStringLiteral("%1 (%1)*").arg(to));
            }
        }
    }

    void keysMoveTheCurrentCell()
    {
        QFETCH(QPoint, from);
        QFETCH(int, key);
        QFETCH(bool, endsHidden);
        QFETCH(QString, expected);
        RecordingTable table(10, 6);
        table.setRowHeight(20);
        for (const QPoint &cell : {QPoint(1, 1), QPoint(1, 3), QPoint(1, 4), QPoint(2, 5)})
            disable(&table, cell.x(), cell.y());
        table.hideRows(4, 5);
        table.hideColumn(2);
        if (endsHidden) {
            table.hideRow(0);
            table.hideRow(9);
            table.hideColumn(0);
            table.hideColumn(5);
        }
        showWithViewport(&table, QSize(300, 100));
        table.setCurrentCell(from.x(), from.y());
        table.clearSelection();
        const QSignalSpy selected(&table, &MDATable::selectionChanged);
        QTest::keyClick(&table, Qt::Key(key));
        QCOMPARE(state(table), expected);
        // One announcement for the whole change; Tab makes blocks without one.
        const bool isTab = key == Qt::Key_Tab || key == Qt::Key_Backtab;
        QCOMPARE(selected.count(), isTab ? 0 : 1);
    }

    void tabStaysInTheTable()
    {
        QWidget window;
        auto *table = new RecordingTable(3, 2, &window);
        new QLineEdit(&window); // would get the focus
        table->setGeometry(0, 30, 300, 200);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        table->setFocus();
        QTest::keyClick(table, Qt::Key_Tab);
        COMPARE_STATE(*table, "0,1 (0,1)*");
        QTest::keyClick(table, Qt::Key_Tab); // at the end
        QTest::keyClick(table, Qt::Key_Tab, Qt::ShiftModifier);
        COMPARE_STATE(*table, "0,0 (0,0)*");
        QTest::keyClick(table, Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), table);
    }

    void otherKeysGoToTheParent()
    {
        RecordingTable table(3, 3);
        const auto isAccepted = [&table](int key, Qt::KeyboardModifiers modifiers) {
            QKeyEvent event(QEvent::KeyPress, key, modifiers);
            QApplication::sendEvent(&table, &event);
            return event.isAccepted();
        };
        QVERIFY(isAccepted(Qt::Key_C, Qt::ControlModifier));
        QVERIFY(isAccepted(Qt::Key_Down, Qt::NoModifier));
        QVERIFY(!isAccepted(Qt::Key_C, Qt::NoModifier));
        QVERIFY(!isAccepted(Qt::Key_A, Qt::NoModifier));
        QVERIFY(!isAccepted(Qt::Key_Escape, Qt::NoModifier));
    }

    void shiftAndMoveKeysGrowTheBlockFromItsAnchor()
    {
        RecordingTable table(10, 6);
        table.fill();
        table.clearSelection();
        const QSignalSpy selected(&table, &MDATable::selectionChanged);
        sendKey(&table, Qt::Key_Down, Qt::ShiftModifier);
        COMPARE_STATE(table, "1,0 [0,0-1,0]*");
        sendKey(&table, Qt::Key_Right, Qt::ShiftModifier);
        COMPARE_STATE(table, "1,1 [0,0-1,1]*");
        QCOMPARE(copied(&table), QStringLiteral("00,01\n10,11"));
        sendKey(&table, Qt::Key_Home, Qt::ShiftModifier);
        sendKey(&table, Qt::Key_Up, Qt::ShiftModifier); // changes nothing, is announced
        COMPARE_STATE(table, "0,1 [0,0-0,1]*");
        QCOMPARE(selected.count(), 4);
        sendKey(&table, Qt::Key_Left); // the target is selected
        COMPARE_STATE(table, "0,0 [0,0-0,1]*");
        QCOMPARE(selected.count(), 4);
        sendKey(&table, Qt::Key_Down);
        COMPARE_STATE(table, "1,0 (1,0)*");
        sendKey(&table, Qt::Key_End, Qt::ShiftModifier); // from the inactive block
        COMPARE_STATE(table, "9,0 [1,0-9,0]*");
        sendKey(&table, Qt::Key_PageUp, Qt::ShiftModifier);
        COMPARE_STATE(table, "0,0 [0,0-1,0]*");
        QCOMPARE(selected.count(), 7);
    }

    void returnStepsDownAndRoundBlocks_data()
    {
        QTest::addColumn<QVector<int>>("block"); // empty for none
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QString>("expected");
        const QVector<int> none;
        QTest::newRow("down") << none << QPoint(1, 1) << "2,1 (2,1)*";
        QTest::newRow("over hidden rows") << none << QPoint(2, 1) << "4,1 (4,1)*";
        QTest::newRow("next column") << none << QPoint(6, 1) << "1,3 (1,3)*";
        QTest::newRow("to the beginning") << none << QPoint(6, 4) << "1,1 (1,1)*";
        QTest::newRow("leaves a lone cell")
            << QVector<int>{1, 1, 1, 1} << QPoint(1, 1) << "2,1 (2,1)*";
        const QVector<int> middle{1, 1, 4, 3};
        QTest::newRow("in block") << middle << QPoint(2, 3) << "4,3 [1,1-4,3]*";
        // By design: the column advances only after the table's last row.
        QTest::newRow("block's end") << middle << QPoint(4, 1) << "1,1 [1,1-4,3]*";
        QTest::newRow("block's last cell") << middle << QPoint(4, 3) << "1,1 [1,1-4,3]*";
        const QVector<int> bottom{4, 1, 6, 3};
        QTest::newRow("table's end") << bottom << QPoint(6, 1) << "4,3 [4,1-6,3]*";
        QTest::newRow("table's end, last column") << bottom << QPoint(6, 3) << "4,1 [4,1-6,3]*";
    }

    void returnStepsDownAndRoundBlocks()
    {
        QFETCH(QVector<int>, block);
        QFETCH(QPoint, from);
        QFETCH(QString, expected);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            RecordingTable table(7, 5);
            table.hideRow(3);
            table.hideRow(0);
            table.hideColumn(2);
            table.hideColumn(0);
            table.setCurrentCell(from.x(), from.y());
            if (!block.isEmpty()) {
                table.clearSelection();
                table.selectCells(block[0], block[1], block[2], block[3]);
            }
            QTest::keyClick(&table, key);
            QCOMPARE(state(table), expected);
        }
    }

    void billionsOfHiddenSectionsAreSteppedOverAtOnce()
    {
        RecordingTable table;
        table.setSparse(true);
        table.setNumCols(trillion);
        table.setNumRows(trillion);
        QVERIFY(table.showSettled());
        QElapsedTimer timer;
        timer.start();
        table.hideRows(6, 5 + billion);
        table.hideColumns(6, 5 + billion);
        table.setCurrentCell(5, 5);
        const auto keyLeadsTo = [&table](Qt::Key key, long long row, long long col) {
            sendKey(&table, key);
            return table.currentRow() == row && table.currentColumn() == col;
        };
        const long long far = 6 + billion;
        QVERIFY(keyLeadsTo(Qt::Key_Down, far, 5) && keyLeadsTo(Qt::Key_Up, 5, 5));
        QVERIFY(keyLeadsTo(Qt::Key_Right, 5, far) && keyLeadsTo(Qt::Key_Left, 5, 5));
        QVERIFY(keyLeadsTo(Qt::Key_Tab, 5, far) && keyLeadsTo(Qt::Key_Backtab, 5, 5));
        QVERIFY(keyLeadsTo(Qt::Key_Return, far, 5));
        QVERIFY(keyLeadsTo(Qt::Key_End, trillion - 1, 5));
        QVERIFY(keyLeadsTo(Qt::Key_Return, 0, far));
        table.showColumns(0, trillion);
        QVERIFY(keyLeadsTo(Qt::Key_Backtab, 0, far - 1));
        table.hideRows(10, trillion);
        press(&table, QPoint(10, table.viewport()->height() - 1)); // below the last visible row
        QCOMPARE(table.currentRow(), 5LL);
        table.selectCells(0, 0, trillion, trillion);
        RecordingTable::settle();
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }

    void clickedCellIsCopiedAndOneReachedByKeyIsNot()
    {
        RecordingTable table(5, 5);
        table.fill();
        QVERIFY(table.showSettled());
        const QSignalSpy pressed(&table, &MDATable::pressed);
        const QSignalSpy clicked(&table, &MDATable::clicked);
        const QSignalSpy selected(&table, &MDATable::selectionChanged);
        const QSignalSpy current(&table, &MDATable::currentChanged);
        const QPoint pos = middleOf(table, 1, 2);
        QTest::mouseClick(table.viewport(), Qt::LeftButton, Qt::NoModifier, pos);
        COMPARE_STATE(table, "1,2 [1,2]*");
        const QVariantList cell{1LL, 2LL, int(Qt::LeftButton), pos};
        QCOMPARE(QList<QVariantList>(pressed), QList<QVariantList>{cell});
        QCOMPARE(QList<QVariantList>(clicked), QList<QVariantList>{cell});
        QVERIFY(selected.count() == 1 && current.count() == 1);
        QCOMPARE(copied(&table), QStringLiteral("12"));
        // By design: the block at a cell reached by a key is not active yet.
        sendKey(&table, Qt::Key_Down);
        COMPARE_STATE(table, "2,2 (2,2)*");
        QCOMPARE(copied(&table), QStringLiteral("as before"));
        click(&table, 3, 3);
        click(&table, 1, 1, Qt::ShiftModifier);
        COMPARE_STATE(table, "1,1 [1,1-3,3]*");
        table.clearSelection();
        click(&table, 2, 4, Qt::ShiftModifier); // from the current cell
        COMPARE_STATE(table, "2,4 [1,1-2,4]*");
    }

    void pressOnASelectedCellKeepsTheBlocksUntilMoveOrRelease()
    {
        RecordingTable table(8, 8);
        QVERIFY(table.showSettled());
        const QSignalSpy clicked(&table, &MDATable::clicked);
        const auto selectAndPress = [&table] {
            table.clearSelection();
            table.selectCells(0, 0, 3, 3);
            press(&table, middleOf(table, 1, 1));
        };
        selectAndPress();
        COMPARE_STATE(table, "1,1 [0,0-3,3]*");
        release(&table, middleOf(table, 1, 1) + QPoint(2, 2));
        COMPARE_STATE(table, "1,1 (1,1)*"); // by design inactive
        QCOMPARE(clicked.count(), 1);
        selectAndPress();
        drag(&table, middleOf(table, 2, 1));
        COMPARE_STATE(table, "2,1 [2,1]*");
        drag(&table, middleOf(table, 4, 3));
        release(&table, middleOf(table, 4, 3));
        COMPARE_STATE(table, "4,3 [2,1-4,3]*");
        QCOMPARE(clicked.count(), 1); // pressed and released over different cells
        selectAndPress();
        release(&table, middleOf(table, 6, 6)); // without a move in between
        COMPARE_STATE(table, "1,1 (6,6)*");
    }

    void onlyTheLeftButtonSelectsByMoving()
    {
        RecordingTable table(8, 8);
        QVERIFY(table.showSettled());
        table.clearSelection();
        table.selectCells(0, 0, 3, 3);
        const QSignalSpy clicked(&table, &MDATable::clicked);
        const QPoint pos = middleOf(table, 2, 2);
        sendMouse(&table, QEvent::MouseButtonPress, pos, Qt::RightButton);
        sendMouse(&table, QEvent::MouseMove, pos + QPoint(1, 1), Qt::RightButton);
        sendMouse(&table, QEvent::MouseMove, middleOf(table, 5, 5), Qt::RightButton);
        sendMouse(&table, QEvent::MouseButtonRelease, pos, Qt::RightButton);
        sendMouse(&table, QEvent::MouseMove, middleOf(table, 5, 5), Qt::NoButton); // tracking
        press(&table, pos);
        sendMouse(&table, QEvent::MouseButtonPress, pos, Qt::RightButton); // ends the left one
        release(&table, pos);
        COMPARE_STATE(table, "2,2 [0,0-3,3]*");
        QCOMPARE(QList<QVariantList>(clicked),
                 QList<QVariantList>({{2LL, 2LL, int(Qt::RightButton), pos},
                                      {2LL, 2LL, int(Qt::LeftButton), pos}}));
        sendMouse(&table, QEvent::MouseButtonPress, middleOf(table, 6, 6), Qt::RightButton);
        COMPARE_STATE(table, "6,6 [6,6]*");
    }

    void pressOnADisabledCellIsAnnouncedOnly()
    {
        RecordingTable table(6, 6);
        disable(&table, 2, 2);
        QVERIFY(table.showSettled());
        click(&table, 0, 0);
        const QSignalSpy pressed(&table, &MDATable::pressed);
        const QSignalSpy clicked(&table, &MDATable::clicked);
        const QSignalSpy doubleClicked(&table, &MDATable::doubleClicked);
        click(&table, 2, 2);
        click(&table, 2, 2, Qt::ShiftModifier);
        sendMouse(&table, QEvent::MouseButtonDblClick, middleOf(table, 2, 2), Qt::LeftButton);
        COMPARE_STATE(table, "0,0 [0,0]*");
        QVERIFY(pressed.count() == 2 && clicked.isEmpty() && doubleClicked.isEmpty());
        press(&table, middleOf(table, 2, 2));
        drag(&table, middleOf(table, 3, 1)); // by design: grows the earlier block
        COMPARE_STATE(table, "3,1 [0,0-3,1]*");
        sendKey(&table, Qt::Key_Down); // keys step on disabled cells
        sendKey(&table, Qt::Key_Right);
        sendKey(&table, Qt::Key_Up);
        sendKey(&table, Qt::Key_Up);
        COMPARE_STATE(table, "2,2 (2,2)*");
    }

    void pressInEmptySpaceMeansTheNearestVisibleCell()
    {
        RecordingTable table(5, 4);
        disable(&table, 3, 2); // but the pressed place is no cell
        table.hideRow(4);
        table.hideColumn(3);
        QVERIFY(table.showSettled());
        const QSignalSpy pressed(&table, &MDATable::pressed);
        const QSignalSpy clicked(&table, &MDATable::clicked);
        const QPoint corner(300, 250);
        press(&table, corner);
        COMPARE_STATE(table, "3,2 [3,2]*");
        release(&table, corner);
        press(&table, QPoint(middleOf(table, 0, 1).x(), 250));
        COMPARE_STATE(table, "3,1 [3,1]*");
        QCOMPARE(pressed.value(0), (QVariantList{3LL, 2LL, int(Qt::LeftButton), corner}));
        QVERIFY(pressed.count() == 2 && clicked.isEmpty());
        table.hideRows(0, 4);
        press(&table, corner); // no visible row: the current one stays
        QCOMPARE(table.currentRow(), 3LL);
        table.setNumRows(0);
        QCOMPARE(table.currentRow(), -1LL);
        press(&table, corner);
        drag(&table, corner + QPoint(5, 5));
        release(&table, corner);
        sendMouse(&table, QEvent::MouseButtonDblClick, corner, Qt::LeftButton);
        QVERIFY(pressed.count() == 3 && clicked.isEmpty());
        COMPARE_STATE(table, "-1,-1");
    }

    void doubleClicksAndContextMenusTellTheCellUnderThePointer()
    {
        RecordingTable table(6, 6);
        QVERIFY(table.showSettled());
        const QSignalSpy doubleClicked(&table, &MDATable::doubleClicked);
        const QSignalSpy menus(&table, &MDATable::contextMenuRequested);
        const QPoint pos = middleOf(table, 4, 2);
        const QPoint beside(350, pos.y());
        const QPoint outside(350, 250);
        for (const QPoint &each : {pos, beside, outside}) {
            sendMouse(&table, QEvent::MouseButtonDblClick, each, Qt::RightButton);
            sendMouse(&table, QEvent::MouseButtonDblClick, each, Qt::LeftButton);
            QContextMenuEvent menu(QContextMenuEvent::Mouse, each,
                                   table.viewport()->mapToGlobal(each));
            QApplication::sendEvent(table.viewport(), &menu);
            QVERIFY(menu.isAccepted());
        }
        const int left = Qt::LeftButton;
        QCOMPARE(QList<QVariantList>(doubleClicked),
                 QList<QVariantList>({{4LL, 2LL, left, pos}, {4LL, -1LL, left, beside}}));
        COMPARE_STATE(table, "0,0 (0,0)*"); // none of them selects
        table.setCurrentCell(3, 1);
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(1, 1));
        QApplication::sendEvent(&table, &menu);
        const auto global = [&table](const QPoint &p) { return table.viewport()->mapToGlobal(p); };
        QCOMPARE(QList<QVariantList>(menus),
                 QList<QVariantList>({{4LL, 2LL, global(pos)},
                                      {4LL, -1LL, global(beside)},
                                      {-1LL, -1LL, global(outside)},
                                      {3LL, 1LL, global(table.cellGeometry(3, 1).bottomLeft())}}));
        QCOMPARE(table.inputMethodQuery(Qt::ImCursorRectangle).toRect().size(),
                 table.cellRect(3, 1).size());
    }

    void draggingSelectsAndScrollsWhileThePointerIsOutside()
    {
        RecordingTable table(200, 100);
        QVERIFY(table.showSettled());
        const QSignalSpy selected(&table, &MDATable::selectionChanged);
        press(&table, middleOf(table, 2, 2));
        drag(&table, middleOf(table, 2, 2) + QPoint(1, 1));
        QCOMPARE(selected.count(), 1); // moves within the cell are no change
        drag(&table, middleOf(table, 4, 5));
        COMPARE_STATE(table, "4,5 [2,2-4,5]*");
        QVERIFY(selected.count() == 2 && !autoScrollWaits(table));

        const QPoint below(middleOf(table, 0, 5).x(), table.viewport()->height() + 15);
        drag(&table, below);
        const int first = table.verticalScrollBar()->value();
        QVERIFY(first > 0 && autoScrollWaits(table));
        QTRY_VERIFY(table.verticalScrollBar()->value() > first + 2 * table.rowHeight());
        const MDATableSelection grown = table.getCurrentSelection();
        QCOMPARE(grown.bottomRow(), table.currentRow());
        QVERIFY(grown.topRow() == 2 && grown.leftCol() == 2 && grown.rightCol() == 5);
        drag(&table, QPoint(5, 5));
        QVERIFY(!autoScrollWaits(table));
        drag(&table, QPoint(-20, -20));
        QTRY_COMPARE(table.verticalScrollBar()->value(), 0);
        QVERIFY(table.getCurrentSelection().topRow() <= 2);
        release(&table, QPoint(-20, -20));
        QVERIFY(!autoScrollWaits(table));
    }

    void autoScrollEndsWithTheDrag_data()
    {
        QTest::addColumn<Action>("end");
        QTest::newRow("hidden") << Action([](MDATable *table) { table->hide(); });
        QTest::newRow("other window") << Action([](MDATable *table) {
            QWidget other;
            other.show();
            other.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&other));
            QVERIFY(!table->isActiveWindow());
        });
        QTest::newRow("right release does not count") << Action([](MDATable *table) {
            sendMouse(table, QEvent::MouseButtonRelease, QPoint(5, 400), Qt::RightButton);
            QVERIFY(autoScrollWaits(*table));
            release(table, QPoint(5, 400));
        });
    }

    void autoScrollEndsWithTheDrag()
    {
        QFETCH(Action, end);
        RecordingTable table(100000, 10);
        QVERIFY(table.showSettled());
        table.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&table));
        press(&table, QPoint(5, 5));
        drag(&table, QPoint(5, 400));
        QVERIFY(autoScrollWaits(table));
        end(&table);
        QVERIFY(!autoScrollWaits(table));
    }

    void blocksAreAddedAndRemoved()
    {
        RecordingTable table(10, 6);
        table.clearSelection();
        const QSignalSpy changed(&table, &MDATable::selectionChanged);
        MDATableSelection inactive;
        inactive.init(1, 1);
        QCOMPARE(table.addSelection(inactive), -1);
        QCOMPARE(table.addSelection(MDATableSelection(20, 9, 8, 2)), 0); // upwards
        QCOMPARE(table.addSelection(MDATableSelection(8, 2, 20, 9)), 1);
        COMPARE_STATE(table, "0,0 [8,2-9,5] [8,2-9,5]*");
        QVERIFY(table.selection(0).anchorRow() == 20 && table.selection(0).anchorCol() == 9);
        QVERIFY(changed.count() == 2 && table.getCurrentSelection().anchorRow() == 8);
        table.removeSelection(MDATableSelection(9, 5, 8, 2)); // the anchor plays no part
        QCOMPARE(table.selection(0).anchorRow(), 8LL);
        table.removeSelection(inactive);
        table.removeSelection(1);
        table.removeSelection(-1);
        QCOMPARE(changed.count(), 3);
        table.addSelection(table.selection(0));
        table.removeSelection(1); // the current one
        QVERIFY(changed.count() == 5 && table.currentSelection() == -1);
        QVERIFY(table.getCurrentSelection() == MDATableSelection());
        QVERIFY(table.selection(7) == MDATableSelection() && table.selection(-1).isEmpty());
        sendKey(&table, Qt::Key_Down, Qt::ShiftModifier); // starts another one
        COMPARE_STATE(table, "1,0 [8,2-9,5] [0,0-1,0]*");
    }

    void rowsAndColumnsOutsideAreSelectedDifferently()
    {
        RecordingTable table(10, 6);
        table.clearSelection();
        table.selectRow(-1);
        COMPARE_STATE(table, "0,0");
        table.selectColumn(-1); // by design, unlike rows
        COMPARE_STATE(table, "0,0 [0,-1-9,-1]*");
        QVERIFY(!table.isSelected(3, 0) && !table.isColumnSelected(0) && !table.isRowSelected(0));
        table.clearSelection();
        table.selectRow(trillion);
        table.selectColumn(trillion);
        COMPARE_STATE(table, "0,0 [9,0-9,5] [0,5-9,5]*");
        table.clearSelection();
        table.addSelection(MDATableSelection(20, 0, 30, 3)); // begins behind the end
        QVERIFY(!table.isSelected(9, 0) && !table.isRowSelected(9) && !table.isColumnSelected(0));
        RecordingTable::settle();
        sendKey(&table, Qt::Key_Return);
        COMPARE_STATE(table, "1,0 (1,0)*");
    }

    void rowsAndColumnsAreSelectedInPartOrFull()
    {
        RecordingTable table(10, 6);
        table.addSelection(MDATableSelection(2, 0, 2, 5));
        table.addSelection(MDATableSelection(4, 0, 6, 2));
        table.addSelection(MDATableSelection(4, 3, 6, 5)); // not combined with the one before
        table.addSelection(MDATableSelection(0, 3, 9, 3));
        QVERIFY(table.isRowSelected(2, true) && table.isRowSelected(5) && table.isRowSelected(0));
        QVERIFY(!table.isRowSelected(5, true) && !table.isRowSelected(-1)
                && !table.isRowSelected(10));
        QVERIFY(table.isColumnSelected(3, true) && table.isColumnSelected(0));
        QVERIFY(!table.isColumnSelected(0, true) && !table.isColumnSelected(6));
        table.clearSelection();
        table.setCurrentCell(1, 1); // an inactive block does not count
        QVERIFY(!table.isRowSelected(1) && !table.isColumnSelected(1));
    }

    void blocksThatBeginBeforeTheFirstColumnCoverItsCells()
    {
        RecordingTable table(4, 3);
        table.fill();
        table.clearSelection();
        table.addSelection(MDATableSelection(1, -1, 2, 2));
        QVERIFY(table.isSelected(1, 0) && table.isSelected(2, 2));
        QVERIFY(table.isRowSelected(1) && table.isRowSelected(1, true));
        QVERIFY(table.isColumnSelected(0));
        QCOMPARE(copied(&table), QStringLiteral(",10,11,12\n,20,21,22"));
        table.selectColumn(-1); // has empty texts only
        QCOMPARE(copied(&table), QStringLiteral("\n\n\n"));
    }

    void currentBlockIsCopied()
    {
        RecordingTable table(4, 4);
        table.clearSelection();
        QCOMPARE(copied(&table), QStringLiteral("as before"));
        const QString letters = QStringLiteral("abcdef");
        for (int i = 0; i < 6; ++i)
            table.setText(1 + i / 3, 1 + i % 3, letters.mid(i, 1));
        table.selectCells(0, 0, 0, 0);
        table.selectCells(1, 1, 2, 3);
        QCOMPARE(copied(&table), QStringLiteral("a,b,c\nd,e,f"));
        table.selectCells(0, 0, 1, 1);
        table.hideRow(0); // hidden cells too
        QCOMPARE(copied(&table), QStringLiteral(",\n,a"));
        table.removeSelection(table.currentSelection());
        QCOMPARE(copied(&table), QStringLiteral("as before"));
    }

    void blocksTooLargeForATextAreNotCopied()
    {
        RecordingTable table;
        table.setSparse(true);
        table.setNumCols(1000);
        table.setNumRows(trillion);
        table.selectCells(0, 0, trillion, 1000);
        announceWarning(QStringLiteral("copy: selection too large: 1000000000000000 cells"));
        QCOMPARE(copied(&table), QStringLiteral("as before"));
        table.setNumCols(trillion);
        table.selectCells(0, 0, trillion, trillion);
        announceWarning(QStringLiteral("copy: selection too large: 9223372036854775807 cells"));
        QCOMPARE(copied(&table), QStringLiteral("as before"));
    }

    void signalsBlockedByTheHostStayBlocked()
    {
        RecordingTable table(5, 5);
        QVERIFY(table.showSettled());
        const QSignalSpy changed(&table, &MDATable::selectionChanged);
        const QSignalBlocker blocker(&table);
        click(&table, 2, 2);
        sendKey(&table, Qt::Key_Down);
        QVERIFY(table.signalsBlocked() && changed.isEmpty());
    }

    void hostMayChangeTheTableWhenItIsTold_data()
    {
        QTest::addColumn<Action>("answer");
        QTest::newRow("clear the selections")
            << Action([](MDATable *table) { table->clearSelection(); });
        QTest::newRow("move") << Action([](MDATable *table) { table->setCurrentCell(4, 4); });
        QTest::newRow("select") << Action([](MDATable *table) { table->selectRow(3); });
        QTest::newRow("shrink") << Action([](MDATable *table) {
            table->setNumRows(1);
            table->setNumCols(1);
        });
        QTest::newRow("hide") << Action([](MDATable *table) { table->hideRows(0, 9); });
        QTest::newRow("empty") << Action([](MDATable *table) { table->clear(); });
        QTest::newRow("delete") << Action([](MDATable *table) { delete table; });
    }

    void hostMayChangeTheTableWhenItIsTold()
    {
        QFETCH(Action, answer);
        using Signal = std::function<void(MDATable *, const std::function<void()> &)>;
        const QVector<Signal> signalsOfTable{
            [](MDATable *t, const auto &slot) { connect(t, &MDATable::currentChanged, t, slot); },
            [](MDATable *t, const auto &slot) { connect(t, &MDATable::selectionChanged, t, slot); },
            [](MDATable *t, const auto &slot) { connect(t, &MDATable::pressed, t, slot); },
            [](MDATable *t, const auto &slot) { connect(t, &MDATable::clicked, t, slot); },
            [](MDATable *t, const auto &slot) { connect(t, &MDATable::doubleClicked, t, slot); },
        };
        const QPoint from(75, 30);
        const QPoint to(105, 70);
        const QVector<Action> steps{
            [&](MDATable *t) { press(t, from); },
            [&](MDATable *t) { press(t, to, Qt::ShiftModifier); },
            [&](MDATable *t) { drag(t, to); },
            [&](MDATable *t) { drag(t, QPoint(50, 500)); },
            [&](MDATable *t) { release(t, QPoint(50, 500)); },
            [&](MDATable *t) { t->selectCells(0, 0, 5, 5); },
            [&](MDATable *t) { press(t, from); },
            [&](MDATable *t) { release(t, from); },
            [&](MDATable *t) { t->selectCells(0, 0, 5, 5); },
            [&](MDATable *t) { press(t, from); },
            [&](MDATable *t) { drag(t, to); },
            [&](MDATable *t) { sendMouse(t, QEvent::MouseButtonDblClick, from, Qt::LeftButton); },
            [&](MDATable *t) { t->setCurrentCell(7, 2); },
            [&](MDATable *t) { sendKey(t, Qt::Key_Down); },
            [&](MDATable *t) { sendKey(t, Qt::Key_End, Qt::ShiftModifier); },
            [&](MDATable *t) { sendKey(t, Qt::Key_Backtab); },
            [&](MDATable *t) { sendKey(t, Qt::Key_Tab); },
            [&](MDATable *t) { sendKey(t, Qt::Key_Return); },
            [&](MDATable *t) { t->removeSelection(0); },
        };
        // The answer comes at each step and to each signal, from a fresh table each time.
        for (const Signal &connectTo : signalsOfTable) {
            int answers = 0;
            for (int answered = 0; answered < steps.size(); ++answered) {
                const QPointer<RecordingTable> table = new RecordingTable(10, 10);
                table->fill();
                table->resize(400, 300);
                table->show();
                int step = 0;
                bool done = false;
                connectTo(table, [&] {
                    if (step != answered || std::exchange(done, true))
                        return;
                    ++answers;
                    answer(table);
                });
                for (; step < steps.size() && table; ++step)
                    steps.at(step)(table);
                if (!table)
                    continue;
                QVERIFY(table->currentRow() < table->numRows());
                QVERIFY(table->currentColumn() < table->numCols());
                RecordingTable::settle();
                delete table;
            }
            QVERIFY(answers > 0);
        }
        CountedItem::takeDeleted();
        CountedItem::takePaintings();
        QCOMPARE(CountedItem::live(), 0);
    }

    void trillionsOfServedCellsAreHandledLikeAFew()
    {
        QElapsedTimer timer;
        timer.start();
        ServingTable table(trillion, 1000);
        QVERIFY(table.showSettled());
        QScrollBar *bar = table.verticalScrollBar();
        bar->setValue(bar->maximum());
        RecordingTable::settle();
        const long long bottom = table.rowAt(table.viewport()->height() - 1);
        QVERIFY(bottom * table.rowHeight() > 2147450879LL - 2 * table.rowHeight());

        click(&table, bottom - 3, 1);
        click(&table, bottom - 2, 2, Qt::ShiftModifier);
        const auto cell = [&](long long up, int col) {
            return QStringLiteral("%1:%2").arg(bottom - up).arg(col);
        };
        QCOMPARE(
            copied(&table),
            QStringLiteral("%1,%2\n%3,%4").arg(cell(3, 1), cell(3, 2), cell(2, 1), cell(2, 2)));

        press(&table, middleOf(table, bottom - 5, 1));
        drag(&table, QPoint(table.viewport()->width() + 5, -5));
        QTRY_VERIFY(table.currentRow() < bottom - 8 && table.horizontalScrollBar()->value() > 0);
        release(&table, QPoint(5, 5));
        const MDATableSelection block = table.getCurrentSelection();
        QCOMPARE(block.bottomRow(), bottom - 5);
        QCOMPARE(copied(&table).count(QLatin1Char('\n')), int(block.numRows() - 1));

        const long long current = table.currentRow();
        table.hideRows(1000, 999 + billion);
        QCOMPARE(table.currentRow(), 1000 + billion);
        sendKey(&table, Qt::Key_Up);
        QCOMPARE(table.currentRow(), 999LL);
        RecordingTable::settle();
        table.showRows(1000, 999 + billion);
        QVERIFY(!table.isRowHidden(current));
        sendKey(&table, Qt::Key_End);
        sendKey(&table, Qt::Key_PageUp, Qt::ShiftModifier);
        RecordingTable::settle();
        QVERIFY2(table.served < 100000, qPrintable(QString::number(table.served)));
        QVERIFY2(timer.elapsed() < 15000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_MAIN(TestMDATableInteraction)
#include "tst_mdatableinteraction.moc"
