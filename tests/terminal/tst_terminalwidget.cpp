#include <support/literal.h>
#include <support/recordingstyle.h>
#include <support/testcase.h>
#include <tul-util-gui/terminal/goodfont.h>
#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalinterpreter_p.h>
#include <tul-util-gui/terminal/terminalprocess.h>
#include <tul-util-gui/terminal/terminalwidget.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTimer>

#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace
{

// A widget at an open terminal that has no process.
class View : public TerminalWidget
{
public:
    Terminal terminal;
    QRegion painted;

    explicit View(int columns = 80)
    {
        setFont(findGoodFont(10));
        terminal.openMaster();
        terminal.setWindowSize(columns, 12);
        setTerminal(&terminal);
        resize(700, 300);
    }

    void push(const QByteArray &bytes) { terminal.pushBytes(bytes); }
    QString shown() const { return toPlainText(); }
    void paintEvent(QPaintEvent *event) override
    {
        painted += event->region();
        TerminalWidget::paintEvent(event);
    }
};

// What a host ends together with a display may have something to say then.
void addLastWords(QObject *display, Terminal *terminal)
{
    QObject::connect(new QObject(display), &QObject::destroyed, terminal, [terminal] {
        terminal->pushBytes("last words");
        Q_EMIT terminal->processFinished(0, QProcess::NormalExit);
    });
}

// The same display in the toolkit's own means, one insertion a run.
class PlainView : public QTextEdit, public TerminalSink
{
public:
    TerminalInterpreter interpreter;
    QTextCursor output{document()};

    explicit PlainView(const View &model)
    {
        setWordWrapMode(model.wordWrapMode());
        setLineWrapMode(model.lineWrapMode());
        setHorizontalScrollBarPolicy(model.horizontalScrollBarPolicy());
        setVerticalScrollBarPolicy(model.verticalScrollBarPolicy());
        setReadOnly(model.isReadOnly());
        setFont(model.font());
        setLineWrapColumnOrWidth(model.lineWrapColumnOrWidth());
        resize(model.size());
    }

    void push(const QByteArray &bytes) { interpreter.interpret(bytes, *this); }
    void plainBytes(const char *bytes, int length) override
    {
        output.insertText(QString::fromLatin1(bytes, length));
    }
    void moveLeft() override { output.movePosition(QTextCursor::Left); }
    void eraseToEndOfLine() override
    {
        QTextCursor rest(output);
        rest.movePosition(QTextCursor::EndOfLine, QTextCursor::KeepAnchor);
        rest.removeSelectedText();
    }
};

// Where two text edits differ in what they show; empty when they do not.
QString difference(QTextEdit &a, QTextEdit &b)
{
    if (a.toPlainText() != b.toPlainText())
        return "text"_s;
    for (const auto function : {&QTextEdit::verticalScrollBar, &QTextEdit::horizontalScrollBar}) {
        QScrollBar *const barA = (a.*function)();
        QScrollBar *const barB = (b.*function)();
        // The toolkit lays out bit by bit.
        if (!QTest::qWaitFor([&] { return barA->maximum() == barB->maximum(); }))
            return "scroll range"_s;
        barA->setValue(barA->maximum() / 2);
        barB->setValue(barB->maximum() / 2);
    }
    QTextCursor inA(a.document());
    QTextCursor inB(b.document());
    for (int position = 0; position < a.document()->characterCount(); position += 3) {
        inA.setPosition(position);
        inB.setPosition(position);
        const int y = a.cursorRect(inA).center().y();
        if (a.cursorRect(inA) != b.cursorRect(inB))
            return "cursor at %1"_s.arg(position);
        for (const QPoint point :
             {QPoint(y * 7 % 300, y), QPoint(y * 7 % 300, y < 0 ? -100000 : 100000)}) {
            if (a.cursorForPosition(point).position() != b.cursorForPosition(point).position())
                return "hit at %1"_s.arg(y);
        }
    }
    if (a.viewport()->grab().toImage() != b.viewport()->grab().toImage())
        return "picture"_s;
    return {};
}

// Some of the letters, and for each "K" the sequence that erases.
QByteArray randomBytes(QRandomGenerator &random, const QByteArray &letters, int length)
{
    QByteArray bytes;
    for (int i = 0; i < length; ++i)
        bytes += letters.at(random.bounded(letters.size()));
    return bytes.replace("K", "\x1b[K");
}

QByteArray numberedLines(int first, int last)
{
    QByteArray lines;
    for (int i = first; i < last; ++i)
        lines += QByteArray::number(i) + '\n';
    return lines;
}

} // namespace

class TestTerminalWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void looksScrollsAndSelectsLikeATextEdit();
    void lineThatNeverEndsIsShownInColumns();
    void lineThatIsNoLongerLongIsLaidOut();
    void erasingInAWideLineIsCountedAsWork();
    void messagesStandBetweenTheOutputs();
    void muchAtOnceIsShownBitByBitAndInOrder();
    void viewFollowsTheOutputOnlyAtTheBottom();
    void oldBlocksAreRemovedAboveTheView();
    void outputPositionIsPainted();
    void pictureIsNotRenewedForEachRead();
    void sizeHintHoldsTheWindowOfTheTerminal();
    void keysAreWrittenAsBytes();
    void typedKeysComeBeforeShortcutsAndFocus();
    void pasteStandsAfterCopyInTheMenu();
    void replacedTerminalIsHeardButNotRead();
    void anyOrderOfDestructionIsSafe();
};

void TestTerminalWidget::looksScrollsAndSelectsLikeATextEdit()
{
    struct Case {
        int columns;
        const char *letters;
        const char *family = "DejaVu Sans Mono";
        const char *started = "";
    };
    for (const Case &row : std::vector<Case>{
             {80, "abcdef    \n"},
             {10, "abcdefghijklmno    \n"},
             {10, "abcdefghi   \b\b\b\bK\n\r"},
             {1, "ab \n"},
             {-3, "ab \n"},
             {300, "abcdefghijklmno "},
             {10, "fffffiiillllfffffiiillll  \b\bK\n", "DejaVu Sans"}, // with ligatures
             {10, "abcdefghijklmno  \n", "DejaVu Sans Mono",
              "h\u00e9 \t e\u0301e\u0301e\u0301e\u0301\u2028x \u00e4\u00f6\u00fc\u00df....."},
         }) {
        QRandomGenerator random(3);
        View view(row.columns);
        view.setFont(QFont(QString::fromLatin1(row.family), 10));
        PlainView plain(view);
        const auto each = [&](const std::function<void(QTextEdit &)> &change) {
            change(view);
            change(plain);
            const QString found = difference(view, plain);
            return found.isEmpty() ? found : found + QString::fromLatin1(row.letters);
        };
        // The output cursor of the one has no counterpart in the other.
        QCOMPARE(each([](QTextEdit &edit) { edit.setCursorWidth(0), edit.show(); }), QString());
        if (*row.started) {
            const QString started = QString::fromUtf8(row.started);
            Q_EMIT view.terminal.processStarted(started);
            plain.output.insertText(started + QLatin1Char('\n'));
        }
        for (const int length : {2000, 100, 60}) {
            const QByteArray bytes = randomBytes(random, row.letters, length);
            view.push(bytes);
            plain.push(bytes);
            QCOMPARE(each([](QTextEdit &) {}), QString());
        }
        const auto select = [](QTextEdit &edit) {
            QTextCursor cursor(edit.document());
            cursor.setPosition(edit.document()->characterCount() / 4);
            cursor.setPosition(cursor.position() * 3, QTextCursor::KeepAnchor);
            edit.setTextCursor(cursor);
        };
        QCOMPARE(each(select), QString());
        QCOMPARE(view.textCursor().selectedText(), plain.textCursor().selectedText());
        QCOMPARE(each([](QTextEdit &edit) { edit.zoomIn(3); }), QString());
        QCOMPARE(each([](QTextEdit &edit) { edit.setLineWrapColumnOrWidth(30); }), QString());
        QCOMPARE(each([](QTextEdit &edit) { edit.resize(300, 200); }), QString());
    }
}

void TestTerminalWidget::lineThatNeverEndsIsShownInColumns()
{
    View view(10);
    view.show();
    QByteArray text;
    for (int i = 0; i < 3000; ++i)
        text += QByteArray::number(i).rightJustified(9, '0') + ' ';
    view.push(text);
    const QScrollBar *const bar = view.verticalScrollBar();
    const int line = view.fontMetrics().lineSpacing();
    QVERIFY(qAbs(bar->maximum() + view.viewport()->height() - 3000 * line) < 2 * line);
    QCOMPARE(bar->value(), bar->maximum());
    // The last line that is drawn and hit is the last of the text.
    const QPoint corner = view.viewport()->rect().bottomRight();
    QCOMPARE(view.cursorForPosition(corner).position(), 30000);
    view.selectAll();
    QCOMPARE(view.viewport()->grab().toImage().pixelColor(QPoint(5, corner.y() - 5)),
             view.palette().color(QPalette::Highlight));

    QCoreApplication::processEvents(); // paints what is new before the user comes
    view.painted = QRegion();
    view.moveCursor(QTextCursor::End);
    QTRY_VERIFY(view.painted.contains(QPoint(5, 60))); // deselected
    view.painted = QRegion();
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, {5, 50});
    QMouseEvent drag(QEvent::MouseMove, {50, 100}, {}, Qt::LeftButton, {});
    QCoreApplication::sendEvent(view.viewport(), &drag);
    QVERIFY(view.textCursor().hasSelection());
    QTRY_VERIFY(view.painted.contains(QPoint(5, 60)));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, {50, 100});
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, {20, corner.y() - 5});
    QCOMPARE(view.textCursor().selectedText(), "000002999"_s);
    QCOMPARE(bar->value(), bar->maximum());
    for (const int number : {2000, 10, 1000}) {
        view.moveCursor(QTextCursor::Start);
        QVERIFY(view.find(QString::number(number)));
        const int top = number * line - bar->value();
        QVERIFY(top >= 0 && top + line <= view.viewport()->height());
    }

    view.push(QByteArray(15, '\b') + "\x1b[K|"); // erasing stays within the line
    QCOMPARE(view.shown().right(16), "00000|000002999 "_s);
}

void TestTerminalWidget::lineThatIsNoLongerLongIsLaidOut()
{
    const QString odd = "e\u0301"_s.repeated(2100) + QString(4012, QLatin1Char('x'));
    const QByteArray back(31, '\b');
    for (const QByteArray &bytes : {back + "\x1b[K", back + "\n"}) {
        View view;
        PlainView plain(view);
        Q_EMIT view.terminal.processStarted(odd);
        plain.output.insertText(odd + QLatin1Char('\n'));
        view.push(bytes);
        plain.push(bytes);
        view.setCursorWidth(0); // that of the output has no counterpart
        plain.setCursorWidth(0);
        QCOMPARE(difference(view, plain), QString());
    }
}

void TestTerminalWidget::erasingInAWideLineIsCountedAsWork()
{
    View view;
    view.setFont(QFont("DejaVu Sans"_s, 10));
    view.push(QByteArray(8000, 'i') + QByteArray("x\b\x1b[K").repeated(100) + "end");
    QVERIFY(!view.shown().endsWith("end"_s));
    QTRY_COMPARE(view.shown(), QString(8000, QLatin1Char('i')) + "end"_s);
}

void TestTerminalWidget::messagesStandBetweenTheOutputs()
{
    View view;
    Q_EMIT view.terminal.processStarted("sh"_s);
    view.push("x\r");
    Q_EMIT view.terminal.processFinished(2, QProcess::NormalExit);
    view.push("\ny");
    Q_EMIT view.terminal.processFinished(9, QProcess::CrashExit);
    QCOMPARE(view.shown(),
             "sh\nx\n\n[process exited with exit code 2]\n"
             "\ny\n[process exited abnormally]\n"_s);
}

void TestTerminalWidget::muchAtOnceIsShownBitByBitAndInOrder()
{
    View view;
    const QByteArray first = numberedLines(0, 50000);
    view.push(first);
    const int atOnce = view.document()->blockCount();
    QVERIFY(atOnce > 1000);
    QVERIFY(atOnce < 25000);
    Q_EMIT view.terminal.processStarted("message"_s);
    view.push("last");
    const QByteArray all = first + "message\nlast";
    QTRY_COMPARE(view.shown(), QString::fromLatin1(all));
    // Each piece ends within a backspace's or an escape sequence's reach of the next one.
    view.push(QByteArray("ab\b\b\x1b[K").repeated(20000));
    QTRY_COMPARE(view.shown(), QString::fromLatin1(all));

    view.push(first + "\x1b[");
    view.clear(); // what waits as well, but not that a sequence has begun
    QCOMPARE(view.verticalScrollBar()->maximum(), 0);
    view.push("Kab\bc");
    QCoreApplication::processEvents();
    QCOMPARE(view.shown(), "acb"_s);
}

void TestTerminalWidget::viewFollowsTheOutputOnlyAtTheBottom()
{
    View view;
    QScrollBar *const bar = view.verticalScrollBar();
    view.push(numberedLines(0, 500));
    QVERIFY(bar->maximum() > 5000);
    for (const int above : {0, 1, 2}) {
        const int value = bar->maximum() - above;
        bar->setValue(value);
        view.push("x\n");
        QCOMPARE(bar->value(), above < 2 ? bar->maximum() : value);
    }
}

void TestTerminalWidget::oldBlocksAreRemovedAboveTheView()
{
    View view;
    view.push(numberedLines(0, 900));
    view.setMaximumBlockCount(500);
    QCOMPARE(view.document()->firstBlock().text(), "401"_s);
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() / 2);
    const auto top = [&] { return view.cursorForPosition(QPoint(0, 5)).block().text(); };
    const QString before = top();
    view.push(numberedLines(0, 50));
    QCOMPARE(top(), before);
    QCOMPARE(view.document()->blockCount(), 500);
    for (const char *const end : {"\n", "\r\n", "\r"}) {
        view.push(numberedLines(0, 99000).replace("\n", end)); // what was shown has gone
        QCOMPARE(view.verticalScrollBar()->value(), 0);
        // Lines that are too old already take no time at all.
        QCOMPARE(view.shown(), QString::fromLatin1(numberedLines(98501, 99000)));
    }
    // What ends a sequence, or a new line that began in the piece before, makes nothing too old.
    for (const QByteArray sequence : {"\r\n", "\x1b\n", "\x1b\r", "\x1b[\n", "\x1b[\r"}) {
        for (int length = 4092; length <= 4096; ++length) {
            const QByteArray bytes = QByteArray(length, 'x') + sequence + "last";
            View all, limited;
            limited.setMaximumBlockCount(1);
            for (View *const each : {&all, &limited}) {
                each->push("old");
                each->push(bytes);
            }
            QCOMPARE(limited.shown(), all.document()->lastBlock().text());
        }
    }
}

void TestTerminalWidget::outputPositionIsPainted()
{
    View view;
    view.setTextInteractionFlags(Qt::NoTextInteraction);
    view.push("  \n  \b");
    const QSize cell(view.cursorWidth(), view.fontMetrics().lineSpacing());
    const QImage image = view.viewport()->grab().toImage();
    for (int column = 0; column < 3; ++column) {
        const QPoint place(4 + cell.width() * column + cell.width() / 2, 4 + cell.height() * 3 / 2);
        QCOMPARE(image.pixelColor(place) != view.palette().color(QPalette::Base), column == 1);
    }
    view.zoomIn(20);
    QCOMPARE(view.cursorWidth(), view.fontMetrics().horizontalAdvance(QLatin1Char('M')));
    view.setCursorWidth(1); // the host's own
    view.zoomOut(20);
    QCOMPARE(view.cursorWidth(), 1);
}

void TestTerminalWidget::pictureIsNotRenewedForEachRead()
{
    View view;
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    int paints = 0;
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 500; ++i) {
        view.painted = QRegion();
        view.push("some text\n");
        QCoreApplication::processEvents();
        paints += view.painted.isEmpty() ? 0 : 1;
    }
    QVERIFY(paints > 0 && paints <= 2 + clock.elapsed() / 15);
    view.painted = QRegion(); // what came last is painted as well
    view.push("the end");
    QTRY_VERIFY(!view.painted.isEmpty());
}

void TestTerminalWidget::sizeHintHoldsTheWindowOfTheTerminal()
{
    TerminalWidget widget;
    const int width = widget.fontMetrics().horizontalAdvance(QLatin1Char('M'));
    const int height = widget.fontMetrics().height();
    widget.document()->setDocumentMargin(3.9);
    const QSize margins(widget.verticalScrollBar()->sizeHint().width() + 6, 6);
    const QSize frame(2 * widget.frameWidth(), 2 * widget.frameWidth());
    const QSize plain = margins + QSize(80 * width, 12 * height);
    QCOMPARE(widget.minimumSizeHint(), plain + frame);
    RecordingStyle style;
    style.hints[QStyle::SH_ScrollView_FrameOnlyAroundContents] = 1;
    style.metrics[QStyle::PM_ScrollView_ScrollBarSpacing] = 5;
    widget.setStyle(&style);
    const int edge = 2 * widget.frameWidth() + 5;
    QCOMPARE(widget.sizeHint() - plain, QSize(edge, edge));
    widget.setFrameStyle(QFrame::NoFrame);
    QCOMPARE(widget.sizeHint(), plain);
    Terminal terminal;
    widget.setTerminal(&terminal);
    terminal.setWindowSize(20, 4);
    QCOMPARE(widget.sizeHint(), margins + QSize(20 * width, 4 * height));
    terminal.setWindowSize(std::numeric_limits<int>::max(), std::numeric_limits<int>::min());
    QCOMPARE(widget.sizeHint(), QSize(QWIDGETSIZE_MAX, 0));
}

void TestTerminalWidget::keysAreWrittenAsBytes()
{
    View view;
    TerminalProcess process(&view.terminal);
    process.start("cat"_s);
    QVERIFY(process.waitForStarted());
    const QSignalSpy returned(&view, &TerminalWidget::returnPressed);
    struct Press {
        int key;
        Qt::KeyboardModifiers modifiers;
        const char *text;
        const char *written;
    };
    QByteArray all;
    for (const Press &row : std::vector<Press>{
             {Qt::Key_A, Qt::ControlModifier, "\1", ""}, // selects the command line
             {Qt::Key_C, Qt::ControlModifier, "\3", ""}, // and copies it
             {Qt::Key_V, Qt::ControlModifier, "\x16", "cat\n"},
             {Qt::Key_X, Qt::ControlModifier, "\x18", ""},
             {Qt::Key_A, {}, "a", "a"},
             {Qt::Key_Eacute, {}, "\u00e9", "\u00e9"},
             {Qt::Key_Backspace, {}, "\b", "\x7f"},
             {Qt::Key_C, Qt::MetaModifier, "c", "\3"},
             {Qt::Key_C, Qt::MetaModifier | Qt::ShiftModifier, "C", "C"},
             {Qt::Key_D, Qt::ControlModifier, "\4", "\4"},
             {Qt::Key_Up, {}, "", ""},
             {Qt::Key_Return, {}, "\r", "\n"},
             {Qt::Key_Enter, Qt::KeypadModifier, "\r", "\n"},
             {Qt::Key_J, Qt::ControlModifier, "\n", "\n"},
         }) {
        QKeyEvent event(QEvent::KeyPress, row.key, row.modifiers, QString::fromUtf8(row.text));
        QCoreApplication::sendEvent(&view, &event);
        all += row.written;
    }
    QCOMPARE(returned.size(), 3);
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QCoreApplication::sendEvent(&view, &query);
    QVERIFY(query.value(Qt::ImEnabled).toBool() && view.testAttribute(Qt::WA_InputMethodEnabled));
    QInputMethodEvent composed;
    composed.setCommitString("\u00ea"_s);
    QCoreApplication::sendEvent(&view, &composed);
    all += "\u00ea";
    QApplication::clipboard()->setText("p\u00e4ste"_s);
    QMetaObject::invokeMethod(&view, "pasteFromClipboard");
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAll(), all + "p\u00e4ste");

    view.setTerminal(nullptr);
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier);
    QCoreApplication::sendEvent(&view, &event);
    QVERIFY(!event.isAccepted());
    QMetaObject::invokeMethod(&view, "pasteFromClipboard"); // does nothing
}

void TestTerminalWidget::typedKeysComeBeforeShortcutsAndFocus()
{
    View view;
    QLineEdit other(&view);
    QAction action;
    action.setShortcuts({Qt::Key_S, Qt::CTRL + Qt::Key_S, Qt::Key_Escape, Qt::SHIFT + Qt::Key_X});
    view.addAction(&action);
    const QSignalSpy triggered(&action, &QAction::triggered);
    view.show();
    view.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    view.setFocus();
    QWindow *const window = view.windowHandle();
    for (const Qt::Key key : {Qt::Key_S, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_Backtab})
        QTest::keyClick(window, key);
    QTest::keyClick(window, Qt::Key_X, Qt::ShiftModifier);
    QVERIFY(view.hasFocus());
    QCOMPARE(triggered.size(), 0);
    QTest::keyClick(window, Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(triggered.size(), 1);
    view.setTabChangesFocus(true);
    QTest::keyClick(window, Qt::Key_Tab);
    QVERIFY(other.hasFocus());

    // What is laid over the display has its own keys, and those that it leaves are not typed.
    view.setTabChangesFocus(false);
    const QSignalSpy returned(&view, &TerminalWidget::returnPressed);
    QTest::keyClick(window, Qt::Key_Return);
    QTest::keyClick(window, Qt::Key_Escape);
    QCOMPARE(returned.size(), 0);
    QCOMPARE(triggered.size(), 2);
    QTest::keyClick(window, Qt::Key_Tab);
    QVERIFY(!other.hasFocus());
}

void TestTerminalWidget::pasteStandsAfterCopyInTheMenu()
{
    View view;
    QStringList texts;
    QTimer::singleShot(0, this, [&] {
        auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        for (const QAction *action : menu->actions())
            texts += action->text().section(QLatin1Char('\t'), 0, 0);
        delete menu; // as with its widget
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5));
    QCoreApplication::sendEvent(view.viewport(), &event);
    QCOMPARE(texts.value(texts.indexOf("&Paste"_s) - 1), "&Copy"_s);
}

void TestTerminalWidget::replacedTerminalIsHeardButNotRead()
{
    View view;
    Terminal other;
    view.setTerminal(&other);
    view.push("not read");
    Q_EMIT view.terminal.processStarted("once"_s);
    QCOMPARE(view.shown(), "once\n"_s);
    view.terminal.setWindowSize(50, 1);
    QCOMPARE(view.lineWrapColumnOrWidth(), 50);
    view.setTerminal(&view.terminal); // connected for the second time
    Q_EMIT view.terminal.processStarted("twice"_s);
    view.push({});
    QCOMPARE(view.shown(), "once\ntwice\ntwice\nnot read"_s);
}

void TestTerminalWidget::anyOrderOfDestructionIsSafe()
{
    auto terminal = std::make_unique<Terminal>();
    QVERIFY(terminal->openMaster());
    auto widget = std::make_unique<TerminalWidget>(terminal.get());
    connect(widget.get(), &TerminalWidget::returnPressed, this, [&] { terminal.reset(); });
    terminal->pushBytes(numberedLines(0, 50000));
    QTest::keyClick(widget.get(), Qt::Key_Return);
    QVERIFY(!widget->terminal());
    QTRY_COMPARE(widget->document()->blockCount(), 50001); // nothing that came is lost

    terminal = std::make_unique<Terminal>();
    QVERIFY(terminal->openMaster());
    widget->setTerminal(terminal.get());
    addLastWords(widget.get(), terminal.get());
    terminal->pushBytes(numberedLines(0, 50000));
    Terminal other;
    QVERIFY(other.openMaster());
    widget->setTerminal(&other); // no longer reads the first one, but still hears it
    addLastWords(widget.get(), &other);
    widget.reset();
    QCoreApplication::processEvents();

    TerminalWidget another;
    another.setDocument(new QTextDocument(&another));
    another.setMaximumBlockCount(1);
    another.setTerminal(terminal.get());
    terminal->pushBytes("x\b\x1b[K");
    another.setPlainText("a\nb"_s); // the host's own, which is not trimmed
    terminal->pushBytes("x");
    QCOMPARE(another.toPlainText(), "a\nb"_s);
    another.grab();
}

QTEST_MAIN(TestTerminalWidget)

#include "tst_terminalwidget.moc"
