#include <support/counteditem.h>
#include <support/literal.h>
#include <support/recordingtable.h>
#include <support/testcase.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <utility>

using Block = MDATableSelection;

namespace
{

const long long billion = 1000000000LL;
const long long trillion = 1000 * billion;

// Current cell and blocks: "1,2 [0,0-1,2] (3,3)*" has an active block and an inactive single cell,
// which is the current block.
QString state(const MDATable &table)
{
    QString result = "%1,%2"_s.arg(table.currentRow()).arg(table.currentColumn());
    for (int i = 0; i < table.numSelections(); ++i) {
        const MDATableSelection block = table.selection(i);
        QString cells = "%1,%2"_s.arg(block.topRow()).arg(block.leftCol());
        if (block.topRow() != block.bottomRow() || block.leftCol() != block.rightCol())
            cells += "-%1,%2"_s.arg(block.bottomRow()).arg(block.rightCol());
        result += (block.isActive() ? " [%1]"_s : " (%1)"_s).arg(cells);
        if (i == table.currentSelection())
            result += QLatin1Char('*');
    }
    return result;
}

bool sendKey(QWidget *widget, const QString &keys)
{
    const int key = QKeySequence(keys)[0];
    const int modifiers = key & int(Qt::KeyboardModifierMask);
    QKeyEvent event(QEvent::KeyPress, key & ~modifiers, Qt::KeyboardModifiers(modifiers));
    QApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

/// One step of a script: "press 1,2" in the middle of a cell, "press 1,2,3" three pixels beside it,
/// "press @30,40" at a position of the viewport, "Shift-press", "right-press"; "select 0,0,3,3";
/// or a key like "Shift+Down". The step may delete the table.
void play(MDATable *table, const QString &step)
{
    const QString verb = step.section(QLatin1Char(' '), 0, 0);
    QString rest = step.section(QLatin1Char(' '), 1);
    const bool isPosition = rest.startsWith(QLatin1Char('@'));
    QVector<long long> n;
    for (const QString &number : rest.remove(QLatin1Char('@')).split(QLatin1Char(',')))
        n.append(number.toLongLong());
    static const QHash<QString, std::function<void(MDATable *, const QVector<long long> &)>> calls{
        {"at"_s, [](auto t, auto a) { t->setCurrentCell(a[0], a[1]); }},
        {"clear"_s, [](auto t, auto) { t->clearSelection(); }},
        {"select"_s, [](auto t, auto a) { t->selectCells(a[0], a[1], a[2], a[3]); }},
        {"add"_s, [](auto t, auto a) { t->addSelection(Block(a[0], a[1], a[2], a[3])); }},
        {"remove"_s, [](auto t, auto a) { t->removeSelection(int(a[0])); }},
        {"row"_s, [](auto t, auto a) { t->selectRow(a[0]); }},
        {"column"_s, [](auto t, auto a) { t->selectColumn(a[0]); }},
        {"rows"_s, [](auto t, auto a) { t->setNumRows(a[0]); }},
        {"columns"_s, [](auto t, auto a) { t->setNumCols(a[0]); }},
        {"hideRows"_s, [](auto t, auto a) { t->hideRows(a[0], a[1]); }},
        {"hideColumn"_s, [](auto t, auto a) { t->hideColumn(a[0]); }},
        {"disable"_s, [](auto t, auto a) { t->item(a[0], a[1])->setEnabled(false); }},
        {"empty"_s, [](auto t, auto) { t->clear(); }},
        {"delete"_s, [](auto t, auto) { delete t; }},
    };
    static const QHash<QString, QEvent::Type> mouse{{"press"_s, QEvent::MouseButtonPress},
                                                    {"drag"_s, QEvent::MouseMove},
                                                    {"release"_s, QEvent::MouseButtonRelease},
                                                    {"double"_s, QEvent::MouseButtonDblClick},
                                                    {"menu"_s, QEvent::ContextMenu}};
    const QEvent::Type type = mouse.value(verb.section(QLatin1Char('-'), -1), QEvent::None);
    if (type == QEvent::None) {
        calls.contains(verb) ? calls.value(verb)(table, n) : void(sendKey(table, step));
        return;
    }
    const QPoint pos = isPosition
        ? QPoint(int(n[0]), int(n[1]))
        : table->cellGeometry(n[0], n.value(1)).center() + QPoint(1, 1) * int(n.value(2));
    const QPoint global = table->viewport()->mapToGlobal(pos);
    QCursor::setPos(global);
    if (type == QEvent::ContextMenu) {
        const bool byKey = verb.startsWith(QLatin1String("key-"));
        QContextMenuEvent menu(byKey ? QContextMenuEvent::Keyboard : QContextMenuEvent::Mouse, pos,
                               global);
        QApplication::sendEvent(byKey ? table : table->viewport(), &menu);
        return;
    }
    const auto button = verb.startsWith(QLatin1String("right-")) ? Qt::RightButton : Qt::LeftButton;
    const bool isShift = verb.startsWith(QLatin1String("Shift-"));
    QMouseEvent event(type, pos, global, type == QEvent::MouseMove ? Qt::NoButton : button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button,
                      isShift ? Qt::ShiftModifier : Qt::NoModifier);
    QApplication::sendEvent(table->viewport(), &event);
}

// Whether the current cell and what blocks hold are in the table.
bool isInside(const MDATable &table)
{
    bool inside = table.currentRow() < table.numRows() && table.currentColumn() < table.numCols();
    for (int i = 0; i < table.numSelections(); ++i) {
        const Block block = table.selection(i);
        inside = inside && table.isSectionValid(block.topRow(), block.leftCol())
            && table.isSectionValid(block.bottomRow(), block.rightCol());
    }
    return inside;
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
    QApplication::clipboard()->setText("as before"_s);
    sendKey(table, "Ctrl+C"_s);
    return QApplication::clipboard()->text().replace(QLatin1Char('\n'), QLatin1Char('/'));
}

/// Plays steps separated by "|"; behind " > " stands the state, copied text or log they lead to.
void playAll(MDATable *table, const QString &script, QStringList *log = nullptr)
{
    for (const QString &step : script.split(QLatin1Char('|'))) {
        const QString action = step.section(QLatin1String(" > "), 0, 0);
        QString result;
        if (action == QLatin1String("log")) {
            log->sort(); // the order among the signals is free
            result = std::exchange(*log, {}).join(QLatin1String(", "));
        } else if (action == QLatin1String("copy")) {
            result = copied(table);
        } else {
            play(table, action);
            result = state(*table);
        }
        if (step != action)
            QCOMPARE("%1 > %2"_s.arg(action, result), step);
    }
}

// Serves its cells instead of keeping them, as large arrays are shown.
class ServingTable : public RecordingTable
{
public:
    using RecordingTable::RecordingTable;
    MDATableItem *item(long long row, long long col) const override
    {
        ++served;
        servedOutside += !isSectionValid(row, col);
        m_item.setText("%1:%2"_s.arg(row).arg(col));
        return &m_item;
    }

    mutable int served = 0;
    mutable int servedOutside = 0;
    mutable CountedItem m_item;
};

} // namespace

class TestMDATableInteraction : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void keysMoveTheCurrentCell()
    {
        // Key, from, to. Rows 4, 5 and column 2 are hidden, five rows fit into the viewport. By
        // design Tab ends at the last column, hidden or disabled as it may be, and Backtab loses
        // the column. "only": no block comes into being. "ends": hides first and last sections.
        const QString moves
            = "Home 7,3 0,3|End 1,3 9,3|Left 6,3 6,1|Left 6,0 6,0|Right 6,1 6,3|Right 6,5 6,5"
              "|Up 6,1 3,1|Up 0,1 0,1|Down 3,1 6,1|Down 9,1 9,1|Down 1,2 2,2|Down 4,2 6,2"
              "|Left 4,2 4,1|PgDown 0,1 7,1|PgDown 6,1 9,1|PgDown 9,1 9,1|PgUp 9,1 2,1"
              "|PgUp 2,1 0,1|PgUp 0,1 0,1|Tab 6,1 6,3|Tab 1,1 1,5|Tab 2,4 2,5|Tab 6,5 6,5 only"
              "|Backtab 6,3 6,1|Backtab 1,5 1,0|Backtab 6,0 6,0 only|ends"
              "|Home 7,3 7,3|End 7,3 7,3|Up 1,3 1,3|Down 8,3 8,3|Left 6,1 6,1|Right 6,4 6,4"
              "|PgUp 2,1 2,1|PgDown 6,1 6,1|Tab 6,4 6,5|Backtab 6,1 6,-1 only"_s;
        RecordingTable table(10, 6);
        table.setRowHeight(20);
        table.fill();
        playAll(&table,
                "disable 1,1|disable 1,3|disable 1,4|disable 2,5|hideRows 4,5|hideColumn 2"_s);
        const QSize size(300, 100);
        QVERIFY(table.showSettled(size));
        table.resize(table.size() + size - table.viewport()->size());
        RecordingTable::settle();
        QCOMPARE(table.viewport()->size(), size);
        for (const QString &move : moves.split(QLatin1Char('|'))) {
            const QStringList parts = move.split(QLatin1Char(' '));
            if (parts.size() == 1) {
                playAll(&table, "hideRows 0,0|hideRows 9,9|hideColumn 0|hideColumn 5"_s);
                continue;
            }
            playAll(&table, "at %1|clear"_s.arg(parts.at(1)));
            const QSignalSpy selected(&table, &MDATable::selectionChanged);
            play(&table, parts.at(0));
            const QString block = parts.size() > 3 ? QString() : " (%1)*"_s.arg(parts.at(2));
            QCOMPARE(move + state(table), move + parts.at(2) + block);
            // One announcement for the whole change; Tab makes blocks without one.
            QCOMPARE(selected.count(), move.contains(QLatin1String("ab ")) ? 0 : 1);
        }
    }

    void onlyCtrlAndTabLeaveTheTable()
    {
        QWidget window;
        auto *table = new RecordingTable(3, 2, &window);
        auto *other = new QLineEdit(&window); // would get the focus
        table->setGeometry(0, 30, 300, 200);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        table->setFocus();
        playAll(table, "Tab > 0,1 (0,1)*|Tab|Shift+Tab > 0,0 (0,0)*|Shift+Backtab"_s);
        QCOMPARE(QApplication::focusWidget(), table);
        for (const QString &key : {"Ctrl+Tab"_s, "Ctrl+Shift+Backtab"_s}) {
            table->setFocus();
            playAll(table, key + " > 0,0 (0,0)*"_s);
            QCOMPARE(QApplication::focusWidget(), other);
        }

        QTabWidget pages;
        for (const QString &name : {"a"_s, "b"_s})
            pages.addTab(new RecordingTable(3, 2), name);
        pages.show();
        pages.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&pages));
        for (const int page : {1, 0, 1}) { // one page on each time
            pages.currentWidget()->setFocus();
            QTest::keyClick(pages.windowHandle(), Qt::Key_Tab, Qt::ControlModifier);
            QCOMPARE(pages.currentIndex(), page);
        }
        pages.currentWidget()->setFocus();
        connect(&pages, &QTabWidget::currentChanged, [&] { delete pages.widget(1); });
        QTest::keyClick(pages.windowHandle(), Qt::Key_Backtab,
                        Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(pages.count(), 1);
    }

    void stepsLeadToBlocks_data()
    {
        QTest::addColumn<QString>("script"); // steps and, behind ">", what they lead to
        QTest::newRow("current cell is limited at the end and announced when it changes")
            << "at 1000000000000,3|log > current 9,3, selected|at 9,3|log"
               "|at 9,1000000000000 > 9,5 (9,5)*|log > current 9,5, selected"
               "|at -5,3|log > current -5,3, selected|at -1,-1|log > current -1,-1, selected"
               "|Down|Home|PgUp|Tab|Backtab|Return|Shift+Down|Shift+Return > -1,-1"
               "|at -9223372036854775808,0|Up > 0,0 (0,0)*|at 0,-9223372036854775808"
               "|Left > 0,0 (0,0)*";
        // By design: in a block, the column advances only after the table's last row.
        QTest::newRow("Return steps down and round blocks")
            << "rows 7|hideRows 3,3|hideRows 0,0|hideColumn 2|hideColumn 0|hideColumn 5"
               "|at 2,1|Return > 4,1 (4,1)*|at 6,1|Enter > 1,3 (1,3)*|at 6,4|Return > 1,1 (1,1)*"
               "|at 1,1|clear|select 1,1,1,1|Return > 2,1 (2,1)*"
               "|at 2,3|clear|select 1,1,4,3|Return > 4,3 [1,1-4,3]*|Enter > 1,1 [1,1-4,3]*"
               "|at 4,1|Return > 1,1 [1,1-4,3]*"
               "|at 6,1|clear|select 4,1,6,3|Return > 4,3 [4,1-6,3]*|at 6,3|Enter > 4,1 [4,1-6,3]*"
               "|clear|add 20,0,30,3|Return > 5,1 (5,1)*";
        QTest::newRow("double clicks tell the cell under the pointer")
            << "log|right-double 4,2|double 4,2 > 0,0 (0,0)*|log > doubleClicked 4,2 left"
               "|rows 3|clear|log|double @150,250|log";
        QTest::newRow("context menus tell the cell, and a place in the viewport")
            << "at 3,1|log|menu 4,2|menu @350,250|key-menu|at -5,3|key-menu"
               "|log > current -5,3, menu -1,-1 at 350,250, menu -5,3 at 60,0, "
               "menu 3,1 at 20,79, menu 4,2 at 49,89, selected";
        QTest::newRow("current cell inside a block keeps the blocks")
            << "select 1,1,3,3|row 8 > 0,0 (0,0) [1,1-3,3] [8,0-8,5]*|log > selected, selected"
               "|at 2,2 > 2,2 (0,0) [1,1-3,3] [8,0-8,5]*|log > current 2,2"
               "|at 0,0 > 0,0 (0,0)*|log > current 0,0, selected|clear|clear|log > selected";
        QTest::newRow("Shift and a key grow the block from its anchor")
            << "clear|log|Shift+Down > 1,0 [0,0-1,0]*|Shift+Right > 1,1 [0,0-1,1]*"
               "|copy > 00,01/10,11|Shift+Home|log"
               "|Shift+Up > 0,1 [0,0-0,1]*|log > selected" // changes nothing, is announced
               "|Left > 0,0 [0,0-0,1]*|log > current 0,0" // the target is selected
               "|Down > 1,0 (1,0)*|Shift+End > 9,0 [1,0-9,0]*" // from the inactive block
               "|Shift+PgUp > 0,0 [0,0-1,0]*";
        // By design: the block at a cell reached by a key is not active yet.
        QTest::newRow("clicked cell is copied and one reached by key is not")
            << "press 1,2|release 1,2 > 1,2 [1,2]*"
               "|log > clicked 1,2 left, current 1,2, pressed 1,2 left, selected|copy > 12"
               "|Down > 2,2 (2,2)*|copy > as before|press 3,3|release 3,3"
               "|Shift-press 1,1 > 1,1 [1,1-3,3]*|release 1,1|clear"
               "|Shift-press 2,4 > 2,4 [1,1-2,4]*"; // from the current cell
        // By design: inactive after the release.
        QTest::newRow("press on a selected cell waits for a release")
            << "clear|select 0,0,3,3|press 1,1 > 1,1 [0,0-3,3]*|log|release 1,1,2 > 1,1 "
               "(1,1)*|clear|select 0,0,3,3|press 1,1|log"
               "|release 6,5 > 1,1 (6,5)*";
        QTest::newRow("press on a selected cell waits for a move")
            << "clear|select 0,0,3,3|press 1,1|drag 2,1 > 2,1 [2,1]*|drag 4,3|log"
               "|release 4,3 > 4,3 [2,1-4,3]*|log"; // pressed and released over different cells
        QTest::newRow("only the left button selects by moving")
            << "clear|select 0,0,3,3|log|right-press 2,2|right-drag 2,2,1|right-drag 5,5"
               "|right-release 2,2|log > clicked 2,2 right, current 2,2, pressed 2,2 right"
               "|press 2,2|right-press 2,2|log|release 2,2 > 2,2 [0,0-3,3]*" // ends the left one
               "|log > clicked 2,2 left|right-press 6,5 > 6,5 [6,5]*";
        // By design: a drag from a disabled cell grows the earlier block; keys step on such cells.
        QTest::newRow("press on a disabled cell is announced only")
            << "disable 2,2|press 0,0|release 0,0|log|press 2,2|release 2,2|double 2,2"
               "|Shift-press 2,2 > 0,0 [0,0]*|log > pressed 2,2 left, pressed 2,2 left"
               "|drag 3,1 > 3,1 [0,0-3,1]*|at 1,2|Down > 2,2 (2,2)*";
        QTest::newRow("press in empty space means the nearest visible cell")
            << "disable 3,2|rows 5|hideRows 4,4|hideColumn 3|hideColumn 4|hideColumn 5|log"
               "|press @300,250 > 3,2 [3,2]*|release @300,250|log > current 3,2, pressed 3,2 left, "
               "selected|press @5,250 > 3,0 [3,0]*|release @5,250|hideRows 0,4"
               "|press @300,250 > 3,2 [3,2]*|log > current 3,0, current 3,2, pressed 3,0 left, "
               "pressed 3,2 left, selected, selected"
               "|rows 0|log > current -1,-1, selected|press @300,250|drag @305,255|release @300,250"
               "|double @300,250 > -1,2|log > current -1,2, pressed -1,2 left"
               "|columns 0|log > current -1,-1|press @300,250 > -1,-1|log > ";
        QTest::newRow("blocks are added and removed")
            << "clear|log|add 20,9,8,2|add 8,2,20,9 > 0,0 [8,2-9,5] [8,2-9,5]*|remove -1|remove 2"
               "|log > selected, selected|remove 1 > 0,0 [8,2-9,5]|log > selected"
               "|Shift+Down > 1,0 [8,2-9,5] [0,0-1,0]*" // starts another one
               "|clear|add 8,2,20,9|Shift+Right > 1,1 [1,1-8,2]*"; // from its anchor
        // By design, columns unlike rows: selectColumn(-1) selects empty texts.
        QTest::newRow("rows and columns outside are selected differently")
            << "clear|row -1 > 0,0|column -1 > 0,0 [0,-1-9,-1]*|rows 3|column -1|copy > //"
               "|clear|row 1000000000000|column 1000000000000 > 0,0 [2,0-2,5] [0,5-2,5]*";
        QTest::newRow("current block is copied, hidden cells too")
            << "clear|copy > as before|select 0,0,0,0|select 1,1,2,3|copy > 11,12,13/21,22,23"
               "|hideRows 1,1|copy > 11,12,13/21,22,23|remove 1|copy > as before"
               "|add 1,-1,2,1|copy > ,10,11/,20,21";
    }

    void stepsLeadToBlocks()
    {
        QFETCH(QString, script);
        RecordingTable table(10, 6);
        table.fill();
        QVERIFY(table.showSettled());
        QStringList log;
        const auto logMouse = [&](auto signal, const QString &name) {
            connect(&table, signal, [&, name](long long row, long long col, int button, QPoint p) {
                log += "%1 %2,%3 "_s.arg(name).arg(row).arg(col)
                    + (table.viewport()->mapToGlobal(p) != QCursor::pos() ? "elsewhere"_s
                           : button == Qt::LeftButton                     ? "left"_s
                                                                          : "right"_s);
            });
        };
        logMouse(&MDATable::pressed, "pressed"_s);
        logMouse(&MDATable::clicked, "clicked"_s);
        logMouse(&MDATable::doubleClicked, "doubleClicked"_s);
        connect(&table, &MDATable::contextMenuRequested,
                [&](long long row, long long col, const QPoint &pos) {
                    const QPoint place = table.viewport()->mapFromGlobal(pos);
                    log += "menu %1,%2 at %3,%4"_s.arg(row).arg(col).arg(place.x()).arg(place.y());
                });
        connect(&table, &MDATable::currentChanged,
                [&](long long row, long long col) { log += "current %1,%2"_s.arg(row).arg(col); });
        connect(&table, &MDATable::selectionChanged, [&] { log += "selected"_s; });
        playAll(&table, script, &log);
    }

    void draggingSelectsAndScrollsWhileThePointerIsOutside()
    {
        RecordingTable table(200, 100);
        QVERIFY(table.showSettled());
        const QScrollBar *bar = table.verticalScrollBar();
        const QSignalSpy selected(&table, &MDATable::selectionChanged);
        playAll(&table, "press 2,2|drag 2,2,1"_s);
        QCOMPARE(selected.count(), 1); // moves within the cell are no change
        playAll(&table, "drag 4,5 > 4,5 [2,2-4,5]*"_s);
        QVERIFY(selected.count() == 2 && !autoScrollWaits(table));
        const int x = table.cellGeometry(0, 5).center().x();
        play(&table, "drag @%1,%2"_s.arg(x).arg(table.viewport()->height() + 15));
        const int first = bar->value();
        QVERIFY(first > 0 && autoScrollWaits(table));
        QTRY_VERIFY(bar->value() > first + 2 * table.rowHeight());
        QCOMPARE(state(table), "%1,5 [2,2-%1,5]*"_s.arg(table.currentRow()));
        playAll(&table, "drag @5,5"_s);
        QVERIFY(!autoScrollWaits(table));
        playAll(&table, "drag @-20,-20"_s);
        QTRY_COMPARE(bar->value(), 0);
        playAll(&table, "release @-20,-20"_s);
        QVERIFY(!autoScrollWaits(table));
    }

    void autoScrollEndsWithTheDrag()
    {
        QWidget other;
        const std::function<void(QWidget *)> ends[] = {
            [](QWidget *table) { table->hide(); },
            [](QWidget *table) { table->setEnabled(false); },
            [&other](QWidget *) { other.show(); },
        };
        for (const auto &end : ends) {
            RecordingTable table(100000, 10);
            QVERIFY(table.showSettled());
            table.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&table));
            playAll(&table, "press @5,5|drag @5,400|right-release @5,400"_s);
            QVERIFY(autoScrollWaits(table)); // the right button does not count
            end(&table);
            other.activateWindow();
            QTRY_VERIFY(!autoScrollWaits(table));
        }
    }

    void cellsRowsAndColumnsAreSelectedInPartOrFull()
    {
        RecordingTable table(10, 6);
        // The blocks of rows 4 to 6 are not combined.
        playAll(&table, "add 2,-1,2,5|add 4,0,6,2|add 4,3,6,5|add 0,3,9,3"_s);
        QVERIFY(table.isRowSelected(2, true) && table.isRowSelected(5) && table.isRowSelected(0));
        QVERIFY(!table.isRowSelected(5, true));
        QVERIFY(!table.isRowSelected(-1) && !table.isRowSelected(10));
        QVERIFY(table.isColumnSelected(3, true) && table.isColumnSelected(0));
        QVERIFY(!table.isColumnSelected(0, true) && !table.isColumnSelected(6));
        QVERIFY(table.isSelected(0, 0)); // the current cell counts as long as there are blocks
        QVERIFY(table.isSelected(2, 0) && table.isSelected(2, 5) && !table.isSelected(3, 2));
        // An inactive block, one of no column and one behind the end do not count.
        playAll(&table, "clear|at 1,1|column -1|add 20,0,30,3"_s);
        QVERIFY(!table.isRowSelected(1) && !table.isRowSelected(9) && !table.isColumnSelected(0));
        QVERIFY(!table.isSelected(9, 0));
        playAll(&table, "clear"_s);
        QVERIFY(!table.isSelected(1, 1));
    }

    void blocksTooLargeForATextAreNotCopied()
    {
        RecordingTable table(0, 1000);
        table.setSparse(true);
        table.setNumRows(trillion);
        announceWarning("copy: selection too large: 1000000000000000 cells"_s);
        playAll(&table, "select 0,0,1000000000000,1000|copy > as before"_s);
        announceWarning("copy: selection too large: 9223372036854775807 cells"_s);
        playAll(&table,
                "columns 1000000000000|select 0,0,1000000000000,1000000000000"
                "|copy > as before"_s);
    }

    void signalsBlockedByTheHostStayBlockedAndOtherKeysGoToTheParent()
    {
        RecordingTable table(5, 5);
        QVERIFY(table.showSettled());
        const QSignalSpy changed(&table, &MDATable::selectionChanged);
        const QSignalBlocker blocker(&table);
        playAll(&table, "press 2,2|release 2,2|Down"_s);
        QVERIFY(table.signalsBlocked() && changed.isEmpty());
        for (const QString &key : {"Ctrl+C"_s, "Down"_s, "C"_s, "Esc"_s})
            QCOMPARE(sendKey(&table, key), key.size() > 3);
    }

    void hostMayChangeTheTableWhenItIsTold()
    {
        const QStringList steps
            = "press @75,30|Shift-press @105,70|drag @105,70|drag @50,500"
              "|release @50,500|press @5,5|Shift-press @110,110|press @75,30|release @75,30"
              "|press @5,5|Shift-press @110,110|press @75,30|drag @105,70|double @75,30|at 7,2|Down"
              "|Shift+End|at 7,0|clear|Shift+Down|Backtab|Tab|Return|remove 0"_s.split(
                  QLatin1Char('|'));
        for (const QString &answer : {"clear"_s, "at 4,4"_s, "row 3"_s, "rows 1"_s, "columns 1"_s,
                                      "hideRows 0,9"_s, "empty"_s, "delete"_s}) {
            // To each signal in turn, from a fresh table each time.
            int emitted = 0;
            for (int answered = 1; emitted >= answered - 1; ++answered) {
                emitted = 0;
                const QPointer<RecordingTable> table = new RecordingTable(10, 10);
                table->fill();
                table->resize(400, 300);
                table->show();
                const auto reply = [&] {
                    if (++emitted == answered)
                        play(table, answer);
                };
                connect(table, &MDATable::currentChanged, table, reply);
                connect(table, &MDATable::selectionChanged, table, reply);
                connect(table, &MDATable::pressed, table, reply);
                connect(table, &MDATable::clicked, table, reply);
                connect(table, &MDATable::doubleClicked, table, reply);
                for (int step = 0; step < steps.size() && table; ++step) {
                    play(table, steps.at(step));
                    QVERIFY2(!table || isInside(*table), qPrintable(steps.at(step)));
                }
                if (!table)
                    continue;
                RecordingTable::settle();
                delete table;
            }
            QVERIFY(emitted > 0);
        }
        CountedItem::takeDeleted();
        QCOMPARE(CountedItem::live(), 0);
    }

    void trillionsOfServedCellsAreHandledLikeAFew()
    {
        ServingTable table(0, 1);
        table.setSparse(true);
        table.setNumRows(trillion);
        table.setNumCols(trillion);
        QVERIFY(table.showSettled());
        table.verticalScrollBar()->setValue(table.verticalScrollBar()->maximum());
        const int height = table.viewport()->height();
        const long long bottom = table.rowAt(height - 1);
        const QString script
            = "press %1,1|release %1,1|Shift-press %2,2|release %2,2|copy > %1:1,%1:2/%2:1,%2:2"_s;
        playAll(&table, script.arg(bottom - 3).arg(bottom - 2));
        table.hideRows(6, 5 + billion);
        table.hideColumns(6, 5 + billion);
        // Row and column 6 + billion come next.
        playAll(&table,
                "at 5,5|clear|Down > 1000000006,5 (1000000006,5)*|Up > 5,5 (5,5)*"
                "|Right > 5,1000000006 (5,1000000006)*|Backtab > 5,5 (5,5)*"
                "|Return > 1000000006,5 (1000000006,5)*|End"
                "|Return > 0,1000000006 (0,1000000006)*|add 1,-1,1,0|copy > ,1:0"_s);
        table.hideRows(10, trillion);
        play(&table, "press @10,%1"_s.arg(height - 1)); // below all rows
        QCOMPARE(table.currentRow(), 5LL);
        table.selectCells(0, 0, trillion, trillion);
        RecordingTable::settle();
        QCOMPARE(table.servedOutside, 0);
        QVERIFY2(table.served < 100000, qPrintable(QString::number(table.served)));
    }
};

QTEST_MAIN(TestMDATableInteraction)
#include "tst_mdatableinteraction.moc"
