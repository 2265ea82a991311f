#include <support/counteditem.h>
#include <support/recordingtable.h>
#include <support/testcase.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QCursor>
#include <QElapsedTimer>
#include <QKeySequence>
#include <QLineEdit>
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

void sendMouse(MDATable *table, QEvent::Type type, const QPoint &pos,
               Qt::MouseButton button = Qt::LeftButton,
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
        {QStringLiteral("at"), [](auto t, auto a) { t->setCurrentCell(a[0], a[1]); }},
        {QStringLiteral("clear"), [](auto t, auto) { t->clearSelection(); }},
        {QStringLiteral("select"), [](auto t, auto a) { t->selectCells(a[0], a[1], a[2], a[3]); }},
        {QStringLiteral("add"),
         [](auto t, auto a) { t->addSelection(MDATableSelection(a[0], a[1], a[2], a[3])); }},
        {QStringLiteral("remove"), [](auto t, auto a) { t->removeSelection(int(a[0])); }},
        {QStringLiteral("row"), [](auto t, auto a) { t->selectRow(a[0]); }},
        {QStringLiteral("column"), [](auto t, auto a) { t->selectColumn(a[0]); }},
        {QStringLiteral("rows"), [](auto t, auto a) { t->setNumRows(a[0]); }},
        {QStringLiteral("hideRows"), [](auto t, auto a) { t->hideRows(a[0], a[1]); }},
        {QStringLiteral("hideColumn"), [](auto t, auto a) { t->hideColumn(a[0]); }},
        {QStringLiteral("disable"), [](auto t, auto a) { t->item(a[0], a[1])->setEnabled(false); }},
    };
    static const QHash<QString, QEvent::Type> mouse{
        {QStringLiteral("press"), QEvent::MouseButtonPress},
        {QStringLiteral("drag"), QEvent::MouseMove},
        {QStringLiteral("release"), QEvent::MouseButtonRelease},
        {QStringLiteral("double"), QEvent::MouseButtonDblClick},
    };
    const QString type = verb.section(QLatin1Char('-'), -1);
    if (calls.contains(verb)) {
        calls.value(verb)(table, n);
    } else if (mouse.contains(type)) {
        const QPoint pos = isPosition
            ? QPoint(int(n[0]), int(n[1]))
            : table->cellGeometry(n[0], n[1]).center() + QPoint(1, 1) * int(n.value(2));
        const bool isRight = verb.startsWith(QLatin1String("right-"));
        const bool isShift = verb.startsWith(QLatin1String("Shift-"));
        sendMouse(table, mouse.value(type), pos, isRight ? Qt::RightButton : Qt::LeftButton,
                  isShift ? Qt::ShiftModifier : Qt::NoModifier);
    } else {
        sendKey(table, step);
    }
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
    sendKey(table, QStringLiteral("Ctrl+C"));
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
            QCOMPARE(QStringLiteral("%1 > %2").arg(action, result), step);
    }
}

void playAll(MDATable *table, const char *script)
{
    playAll(table, QString::fromLatin1(script));
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
    void keysMoveTheCurrentCell()
    {
        // Key, from, to. Rows 4, 5 and column 2 are hidden, five rows fit into the viewport. By
        // design Tab ends at the last column, hidden or disabled as it may be, and Backtab loses
        // the column. "only": no block comes into being. "ends": hides first and last sections.
        const QString moves = QStringLiteral(
            "Home 7,3 0,3|End 1,3 9,3|Left 6,3 6,1|Left 6,0 6,0|Right 6,1 6,3|Right 6,5 6,5"
            "|Up 6,1 3,1|Up 0,1 0,1|Down 3,1 6,1|Down 9,1 9,1|Down 1,2 2,2|Down 4,2 6,2"
            "|Left 4,2 4,1|PgDown 0,1 7,1|PgDown 6,1 9,1|PgDown 9,1 9,1|PgUp 9,1 2,1"
            "|PgUp 2,1 0,1|PgUp 0,1 0,1|Tab 6,1 6,3|Tab 1,1 1,5|Tab 2,4 2,5|Tab 6,5 6,5 only"
            "|Backtab 6,3 6,1|Backtab 1,5 1,0|Backtab 6,0 6,0 only|ends"
            "|Home 7,3 7,3|End 7,3 7,3|Up 1,3 1,3|Down 8,3 8,3|Left 6,1 6,1|Right 6,4 6,4"
            "|PgUp 2,1 2,1|PgDown 6,1 6,1|Tab 6,4 6,5|Backtab 6,1 6,-1 only");
        RecordingTable table(10, 6);
        table.setRowHeight(20);
        table.fill();
        playAll(&table,
                "disable 1,1|disable 1,3|disable 1,4|disable 2,5|hideRows 4,5|hideColumn 2");
        const QSize size(300, 100);
        QVERIFY(table.showSettled(size));
        table.resize(table.size() + size - table.viewport()->size());
        RecordingTable::settle();
        QCOMPARE(table.viewport()->size(), size);
        for (const QString &move : moves.split(QLatin1Char('|'))) {
            const QStringList parts = move.split(QLatin1Char(' '));
            if (parts.size() == 1) {
                playAll(&table, "hideRows 0,0|hideRows 9,9|hideColumn 0|hideColumn 5");
                continue;
            }
            play(&table, QStringLiteral("at ") + parts.at(1));
            table.clearSelection();
            const QSignalSpy selected(&table, &MDATable::selectionChanged);
            play(&table, parts.at(0));
            const QString expected
                = parts.size() > 3 ? parts.at(2) : QStringLiteral("%1 (%1)*").arg(parts.at(2));
            QCOMPARE(move + state(table), move + expected);
            // One announcement for the whole change; Tab makes blocks without one.
            QCOMPARE(selected.count(), move.contains(QLatin1String("ab ")) ? 0 : 1);
        }
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
        playAll(table, "Tab > 0,1 (0,1)*|Tab|Shift+Tab > 0,0 (0,0)*|Shift+Backtab");
        QCOMPARE(QApplication::focusWidget(), table);
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
        // Billions in between: row and column 6 + billion come next.
        playAll(
            &table,
            "Down > 1000000006,5 (1000000006,5)*|Up > 5,5 (5,5)*|Right > 5,1000000006 "
            "(5,1000000006)*|Left > 5,5 (5,5)*|Tab > 5,1000000006 (5,1000000006)*|Backtab > 5,5 "
            "(5,5)*|Return > 1000000006,5 (1000000006,5)*|End|Return > 0,1000000006 "
            "(0,1000000006)*");
        table.showColumns(0, trillion);
        playAll(&table, "Backtab > 0,1000000005 (0,1000000005)*");
        table.hideRows(10, trillion);
        sendMouse(&table, QEvent::MouseButtonPress,
                  QPoint(10, table.viewport()->height() - 1)); // below the last visible row
        QCOMPARE(table.currentRow(), 5LL);
        table.selectCells(0, 0, trillion, trillion);
        RecordingTable::settle();
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }

    void stepsLeadToBlocks_data()
    {
        QTest::addColumn<QString>("script"); // steps and, behind ">", what they lead to
        QTest::newRow("current cell is limited at the end and announced when it changes")
            << "at 1000000000000,3|log > current 9,3, selected|at 9,3|log"
               "|at 9,1000000000000 > 9,5 (9,5)*|log > current 9,5, selected"
               "|at -5,3|log > current -5,3, selected|at -1,-1|log > current -1,-1, selected"
               "|Down|Home|PgUp|Tab|Backtab|Return|Shift+Down|Shift+Return > -1,-1";
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
               "|double @300,250 > -1,-1|log > ";
        QTest::newRow("blocks are added and removed")
            << "clear|log|add 20,9,8,2|add 8,2,20,9 > 0,0 [8,2-9,5] [8,2-9,5]*|remove -1|remove 2"
               "|log > selected, selected|remove 1 > 0,0 [8,2-9,5]|log > selected"
               "|Shift+Down > 1,0 [8,2-9,5] [0,0-1,0]*"; // starts another one
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
        const auto logMouse = [&](auto signal, const char *name) {
            connect(&table, signal,
                    [&, name](long long row, long long col, int button, QPoint pos) {
                        const bool isThere = table.viewport()->mapToGlobal(pos) == QCursor::pos();
                        log += QStringLiteral("%1 %2,%3 %4%5")
                                   .arg(QLatin1String(name))
                                   .arg(row)
                                   .arg(col)
                                   .arg(QLatin1String(button == Qt::LeftButton ? "left" : "right"))
                                   .arg(QLatin1String(isThere ? "" : " elsewhere"));
                    });
        };
        logMouse(&MDATable::pressed, "pressed");
        logMouse(&MDATable::clicked, "clicked");
        logMouse(&MDATable::doubleClicked, "doubleClicked");
        connect(&table, &MDATable::currentChanged, [&](long long row, long long col) {
            log += QStringLiteral("current %1,%2").arg(row).arg(col);
        });
        connect(&table, &MDATable::selectionChanged, [&] { log += QStringLiteral("selected"); });
        playAll(&table, script, &log);
    }

    void contextMenusTellTheCellUnderThePointer()
    {
        RecordingTable table(6, 6);
        QVERIFY(table.showSettled());
        const QSignalSpy menus(&table, &MDATable::contextMenuRequested);
        const QPoint pos = table.cellGeometry(4, 2).center();
        const QPoint beside(350, pos.y());
        const QPoint outside(350, 250);
        const auto global = [&table](const QPoint &p) { return table.viewport()->mapToGlobal(p); };
        for (const QPoint &each : {pos, beside, outside}) {
            QContextMenuEvent menu(QContextMenuEvent::Mouse, each, global(each));
            QApplication::sendEvent(table.viewport(), &menu);
            QVERIFY(menu.isAccepted());
        }
        table.setCurrentCell(3, 1);
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(1, 1));
        QApplication::sendEvent(&table, &menu);
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
        playAll(&table, "press 2,2|drag 2,2,1");
        QCOMPARE(selected.count(), 1); // moves within the cell are no change
        playAll(&table, "drag 4,5 > 4,5 [2,2-4,5]*");
        QVERIFY(selected.count() == 2 && !autoScrollWaits(table));

        const int x = table.cellGeometry(0, 5).center().x();
        sendMouse(&table, QEvent::MouseMove, QPoint(x, table.viewport()->height() + 15));
        const int first = table.verticalScrollBar()->value();
        QVERIFY(first > 0 && autoScrollWaits(table));
        QTRY_VERIFY(table.verticalScrollBar()->value() > first + 2 * table.rowHeight());
        const MDATableSelection grown = table.getCurrentSelection();
        QCOMPARE(grown.bottomRow(), table.currentRow());
        QVERIFY(grown.topRow() == 2 && grown.leftCol() == 2 && grown.rightCol() == 5);
        playAll(&table, "drag @5,5");
        QVERIFY(!autoScrollWaits(table));
        playAll(&table, "drag @-20,-20");
        QTRY_COMPARE(table.verticalScrollBar()->value(), 0);
        playAll(&table, "release @-20,-20");
        QVERIFY(!autoScrollWaits(table));
    }

    void autoScrollEndsWithTheDrag()
    {
        const QVector<Action> ends{
            [](MDATable *table) { table->hide(); },
            [](MDATable *table) {
                QWidget other;
                other.show();
                other.activateWindow();
                QVERIFY(QTest::qWaitForWindowActive(&other) && !table->isActiveWindow());
            },
            [](MDATable *table) {
                playAll(table, "right-release @5,400"); // does not count
                QVERIFY(autoScrollWaits(*table));
                playAll(table, "release @5,400");
            },
        };
        for (const Action &end : ends) {
            RecordingTable table(100000, 10);
            QVERIFY(table.showSettled());
            table.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&table));
            playAll(&table, "press @5,5|drag @5,400");
            QVERIFY(autoScrollWaits(table));
            end(&table);
            QVERIFY(!autoScrollWaits(table));
        }
    }

    void cellsRowsAndColumnsAreSelectedInPartOrFull()
    {
        RecordingTable table(10, 6);
        // The blocks of rows 4 to 6 are not combined.
        playAll(&table, "add 2,-1,2,5|add 4,0,6,2|add 4,3,6,5|add 0,3,9,3");
        QVERIFY(table.isSelected(0, 0)); // the current cell counts as long as there are blocks
        QVERIFY(table.isSelected(2, 0) && table.isSelected(2, 5) && !table.isSelected(3, 2));
        QVERIFY(table.isRowSelected(2, true) && table.isRowSelected(5) && table.isRowSelected(0));
        QVERIFY(!table.isRowSelected(5, true) && !table.isRowSelected(-1)
                && !table.isRowSelected(10));
        QVERIFY(table.isColumnSelected(3, true) && table.isColumnSelected(0));
        QVERIFY(!table.isColumnSelected(0, true) && !table.isColumnSelected(6));
        // An inactive block, one of no column and one behind the end do not count.
        playAll(&table, "clear|at 1,1|column -1|add 20,0,30,3");
        QVERIFY(!table.isRowSelected(1) && !table.isRowSelected(9) && !table.isColumnSelected(0));
        QVERIFY(!table.isSelected(9, 0));
        playAll(&table, "clear");
        QVERIFY(!table.isSelected(1, 1));
    }

    void blocksKeepTheirAnchorsAndAreRemovedWithoutThem()
    {
        RecordingTable table(10, 6);
        table.clearSelection();
        MDATableSelection inactive;
        inactive.init(1, 1);
        QCOMPARE(table.addSelection(inactive), -1);
        QCOMPARE(table.addSelection(MDATableSelection(20, 9, 8, 2)), 0); // upwards
        QCOMPARE(table.addSelection(MDATableSelection(8, 2, 20, 9)), 1);
        QVERIFY(table.selection(0).anchorRow() == 20 && table.selection(0).anchorCol() == 9);
        QCOMPARE(table.getCurrentSelection().anchorRow(), 8LL);
        table.removeSelection(inactive);
        table.removeSelection(MDATableSelection(9, 5, 8, 2));
        QVERIFY(table.numSelections() == 1 && table.selection(0).anchorRow() == 8);
        table.removeSelection(0);
        QVERIFY(table.getCurrentSelection() == MDATableSelection());
        QVERIFY(table.selection(7) == MDATableSelection() && table.selection(-1).isEmpty());
    }

    void blocksTooLargeForATextAreNotCopied()
    {
        RecordingTable table;
        table.setSparse(true);
        table.setNumCols(1000);
        table.setNumRows(trillion);
        announceWarning(QStringLiteral("copy: selection too large: 1000000000000000 cells"));
        playAll(&table, "select 0,0,1000000000000,1000|copy > as before");
        table.setNumCols(trillion);
        announceWarning(QStringLiteral("copy: selection too large: 9223372036854775807 cells"));
        playAll(&table, "select 0,0,1000000000000,1000000000000|copy > as before");
    }

    void signalsBlockedByTheHostStayBlockedAndOtherKeysGoToTheParent()
    {
        RecordingTable table(5, 5);
        QVERIFY(table.showSettled());
        const QSignalSpy changed(&table, &MDATable::selectionChanged);
        const QSignalBlocker blocker(&table);
        playAll(&table, "press 2,2|release 2,2|Down");
        QVERIFY(table.signalsBlocked() && changed.isEmpty());
        QVERIFY(sendKey(&table, QStringLiteral("Ctrl+C")));
        QVERIFY(sendKey(&table, QStringLiteral("Down")));
        QVERIFY(!sendKey(&table, QStringLiteral("C")) && !sendKey(&table, QStringLiteral("Esc")));
    }

    void hostMayChangeTheTableWhenItIsTold()
    {
        const QVector<Action> hostAnswers{
            [](auto t) { playAll(t, "clear"); }, [](auto t) { playAll(t, "at 4,4"); },
            [](auto t) { playAll(t, "row 3"); }, [](auto t) { t->setNumRows(1); },
            [](auto t) { t->setNumCols(1); },    [](auto t) { playAll(t, "hideRows 0,9"); },
            [](auto t) { t->clear(); },          [](auto t) { delete t; },
        };
        using Slot = std::function<void()>;
        using Signal = std::function<void(MDATable *, const Slot &)>;
        const auto to = [](auto signal) -> Signal {
            return [signal](MDATable *t, const Slot &slot) { connect(t, signal, t, slot); };
        };
        const QVector<Signal> signalsOfTable{
            to(&MDATable::currentChanged), to(&MDATable::selectionChanged), to(&MDATable::pressed),
            to(&MDATable::clicked), to(&MDATable::doubleClicked)};
        const QStringList steps
            = QStringLiteral("press @75,30|Shift-press @105,70|drag @105,70|drag @50,500"
                             "|release @50,500|select 0,0,5,5|press @75,30|release @75,30"
                             "|select 0,0,5,5|press @75,30|drag @105,70|double @75,30|at 7,2|Down"
                             "|Shift+End|Backtab|Tab|Return|remove 0")
                  .split(QLatin1Char('|'));
        // The answer comes at each step and to each signal, from a fresh table each time.
        for (const Action &answer : hostAnswers) {
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
                        play(table, steps.at(step));
                    if (!table)
                        continue;
                    QVERIFY(table->currentRow() < table->numRows());
                    QVERIFY(table->currentColumn() < table->numCols());
                    RecordingTable::settle();
                    delete table;
                }
                QVERIFY(answers > 0);
            }
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

        playAll(&table,
                QStringLiteral("press %1,1|release %1,1|Shift-press %2,2|release %2,2"
                               "|copy > %1:1,%1:2/%2:1,%2:2|press %3,1")
                    .arg(bottom - 3)
                    .arg(bottom - 2)
                    .arg(bottom - 5));
        sendMouse(&table, QEvent::MouseMove, QPoint(table.viewport()->width() + 5, -5));
        QTRY_VERIFY(table.currentRow() < bottom - 8 && table.horizontalScrollBar()->value() > 0);
        playAll(&table, "release @5,5");
        const MDATableSelection block = table.getCurrentSelection();
        QCOMPARE(block.bottomRow(), bottom - 5);
        QCOMPARE(copied(&table).count(QLatin1Char('/')), int(block.numRows() - 1));

        const long long current = table.currentRow();
        table.hideRows(1000, 999 + billion);
        QCOMPARE(table.currentRow(), 1000 + billion);
        playAll(&table, "Up");
        QCOMPARE(table.currentRow(), 999LL);
        RecordingTable::settle();
        table.showRows(1000, 999 + billion);
        QVERIFY(!table.isRowHidden(current));
        playAll(&table, "End|Shift+PgUp");
        RecordingTable::settle();
        QVERIFY2(table.served < 100000, qPrintable(QString::number(table.served)));
        QVERIFY2(timer.elapsed() < 15000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_MAIN(TestMDATableInteraction)
#include "tst_mdatableinteraction.moc"
