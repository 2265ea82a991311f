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
#include <QMenu>
#include <QProxyStyle>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTimer>

#include <limits>
#include <memory>

namespace
{

// A widget at an open terminal whose process, cat, is not started: what is written is collected.
class View : public TerminalWidget
{
public:
    Terminal terminal;
    int paints = 0;

    explicit View(int columns = 80)
        : TerminalWidget()
    {
        setFont(findGoodFont(10));
        terminal.openMaster();
        terminal.setWindowSize(columns, 12);
        setTerminal(&terminal);
        resize(700, 300);
    }

    ~View() override { setTerminal(nullptr); }

    void push(const QByteArray &bytes) { terminal.pushBytes(bytes); }
    QString shown() const { return toPlainText(); }
    void paintEvent(QPaintEvent *event) override
    {
        ++paints;
        TerminalWidget::paintEvent(event);
    }
};

class GapStyle : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override
    {
        return hint == SH_ScrollView_FrameOnlyAroundContents
            || QProxyStyle::styleHint(hint, option, widget, data);
    }
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        return metric == PM_ScrollView_ScrollBarSpacing
            ? 5
            : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

// The same display in the toolkit's own means, one insertion a run.
class PlainView : public QTextEdit, public TerminalSink
{
public:
    TerminalInterpreter interpreter;
    QTextCursor output{document()};

    explicit PlainView(const View &model)
    {
        setWordWrapMode(QTextOption::WrapAnywhere);
        setLineWrapMode(QTextEdit::FixedColumnWidth);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        setReadOnly(true);
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
        return QStringLiteral("text");
    for (const auto function : {&QTextEdit::verticalScrollBar, &QTextEdit::horizontalScrollBar}) {
        QScrollBar *const barA = (a.*function)();
        QScrollBar *const barB = (b.*function)();
        // The toolkit lays out bit by bit.
        if (!QTest::qWaitFor([&] { return barA->maximum() == barB->maximum(); }))
            return QStringLiteral("scroll range %1, %2").arg(barA->maximum()).arg(barB->maximum());
        barA->setValue(barA->maximum() / 2);
        barB->setValue(barB->maximum() / 2);
    }
    QVector<int> heights{-100000, 100000};
    for (int position = 0; position < a.document()->characterCount(); position += 3) {
        QTextCursor inA(a.document());
        QTextCursor inB(b.document());
        inA.setPosition(position);
        inB.setPosition(position);
        if (a.cursorRect(inA) != b.cursorRect(inB))
            return QStringLiteral("cursor at %1").arg(position);
        heights.append(a.cursorRect(inA).center().y());
    }
    for (const int y : qAsConst(heights)) {
        const QPoint point(y * 7 % 300, y);
        const int hitA = a.cursorForPosition(point).position();
        const int hitB = b.cursorForPosition(point).position();
        if (hitA != hitB)
            return QStringLiteral("hit at %1: %2, %3").arg(y).arg(hitA).arg(hitB);
    }
    if (a.viewport()->grab().toImage() != b.viewport()->grab().toImage())
        return QStringLiteral("picture");
    return {};
}

QByteArray randomBytes(QRandomGenerator &random, const QByteArray &likely, int length)
{
    QByteArray bytes(length, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = likely.at(random.bounded(likely.size()));
    return bytes;
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
    void outputGoesWhereATextEditWouldPutIt();
    void looksScrollsAndSelectsLikeATextEdit_data();
    void looksScrollsAndSelectsLikeATextEdit();
    void lineThatNeverEndsIsShownInColumns();
    void messagesStandBetweenTheOutputs();
    void muchAtOnceIsShownBitByBitAndInOrder();
    void viewFollowsTheOutputOnlyAtTheBottom();
    void oldBlocksAreRemovedAboveTheView();
    void clearForgetsWhatHasArrived();
    void outputPositionIsPainted();
    void pictureIsNotRenewedForEachRead();
    void sizeHintHoldsTheWindowOfTheTerminal();
    void keysAreWrittenAsBytes();
    void pasteStandsAfterCopyInTheMenu();
    void replacedTerminalIsHeardButNotRead();
    void anyOrderOfDestructionIsSafe();
};

// Blanks, line ends and backspaces around the ends of wrapped lines.
void TestTerminalWidget::outputGoesWhereATextEditWouldPutIt()
{
    QRandomGenerator random(7);
    for (int i = 0; i < 300; ++i) {
        View view(10);
        PlainView plain(view);
        plain.show();
        for (int read = 0; read < 4; ++read) {
            QByteArray bytes = randomBytes(random, "abcdefghi   \b\b\b\bK\n\r", 60);
            bytes.replace("K", "\x1b[K");
            view.push(bytes);
            plain.push(bytes);
        }
        QCOMPARE(view.shown(), plain.toPlainText());
    }
}

void TestTerminalWidget::looksScrollsAndSelectsLikeATextEdit_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QByteArray>("letters");
    QTest::addColumn<QString>("started");
    const auto add = [](const char *name, int columns, const char *letters,
                        const char *family = "DejaVu Sans Mono", const char *started = "") {
        QTest::newRow(name) << QString::fromLatin1(family) << columns << QByteArray(letters)
                            << QString::fromUtf8(started);
    };
    add("lines", 80, "abcdef    \n");
    add("wrapped", 10, "abcdefghijklmno    \n");
    add("single column", 1, "ab \n");
    add("no columns", -3, "ab \n");
    add("wide", 300, "abcdefghijklmno ");
    add("ligatures", 10, "fffffiiillll  \n", "DejaVu Sans");
    add("other characters", 10, "abcdefghijklmno  \n", "DejaVu Sans Mono",
        "h\u00e9 \t e\u0301e\u0301e\u0301e\u0301\u2028x \u00e4\u00f6\u00fc\u00df.....");
}

void TestTerminalWidget::looksScrollsAndSelectsLikeATextEdit()
{
    QFETCH(const QString, family);
    QFETCH(const int, columns);
    QFETCH(const QByteArray, letters);
    QFETCH(const QString, started);
    QRandomGenerator random(3);
    View view(columns);
    view.setFont(QFont(family, 10));
    PlainView plain(view);
    const auto select = [](QTextEdit &edit, int from, int to) {
        QTextCursor cursor(edit.document());
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        edit.setTextCursor(cursor);
    };
    plain.setCursorWidth(0);
    view.setCursorWidth(0); // the output cursor of the one has no counterpart in the other
    view.show();
    plain.show();
    if (!started.isEmpty()) {
        QMetaObject::invokeMethod(&view, "processStarted", Q_ARG(QString, started));
        plain.output.insertText(started + QLatin1Char('\n'));
    }
    for (const int length : {0, 2000, 100}) {
        const QByteArray bytes = randomBytes(random, letters, length);
        view.push(bytes);
        plain.push(bytes);
        QCOMPARE(difference(view, plain), QString());
    }
    const int count = view.document()->characterCount();
    select(view, count / 4, count / 4 * 3);
    select(plain, count / 4, count / 4 * 3);
    QCOMPARE(difference(view, plain), QString());
    QCOMPARE(view.textCursor().selectedText(), plain.textCursor().selectedText());
    view.zoomIn(3);
    plain.zoomIn(3);
    QCOMPARE(difference(view, plain), QString());
    view.terminal.setWindowSize(30, 12);
    plain.setLineWrapColumnOrWidth(30);
    QCOMPARE(difference(view, plain), QString());
    view.resize(300, 200);
    plain.resize(300, 200);
    QCOMPARE(difference(view, plain), QString());
}

void TestTerminalWidget::lineThatNeverEndsIsShownInColumns()
{
    View view(10);
    view.show();
    for (int i = 0; i < 30; ++i)
        view.push(QByteArray(1000, char('a' + i % 26)));
    QScrollBar *const bar = view.verticalScrollBar();
    const int line = view.fontMetrics().lineSpacing();
    QVERIFY(qAbs(bar->maximum() + view.viewport()->height() - 3000 * line) < 2 * line);
    QCOMPARE(bar->value(), bar->maximum());
    // The last line that is drawn and hit is the last of the text, and erasing stays within it.
    const QPoint corner(view.viewport()->width() - 1, view.viewport()->height() - 1);
    QCOMPARE(view.cursorForPosition(corner).position(), 30000);
    view.selectAll();
    const QColor highlight = view.palette().color(QPalette::Highlight);
    QCOMPARE(view.viewport()->grab().toImage().pixelColor(QPoint(5, corner.y() - 5)), highlight);
    view.push(QByteArray(15, '\b') + "\x1b[K|");
    QCOMPARE(view.shown().right(12), QStringLiteral("d|dddddddddd"));
}

void TestTerminalWidget::messagesStandBetweenTheOutputs()
{
    View view;
    TerminalProcess process(&view.terminal);
    connect(&process, &QProcess::readyRead, this, [&] { view.push(process.readAll()); });
    for (const QString &script : {QStringLiteral("exit 2"), QStringLiteral("echo x; kill -9 $$")}) {
        process.start(QStringLiteral("sh"), {QStringLiteral("-c"), script});
        QVERIFY(process.waitForFinished());
    }
    QCOMPARE(view.shown(),
             QStringLiteral("sh  -c \"exit 2\"\n\n[process exited with exit code 2]\n"
                            "sh  -c \"echo x; kill -9 $$\"\nx\n"
                            "\n[process exited abnormally]\n"));
}

void TestTerminalWidget::muchAtOnceIsShownBitByBitAndInOrder()
{
    View view;
    const QByteArray first = numberedLines(0, 50000);
    view.push(first);
    const int atOnce = view.document()->blockCount();
    QVERIFY(atOnce > 1000);
    QVERIFY(atOnce < 25000);
    QMetaObject::invokeMethod(&view, "processStarted", Q_ARG(QString, QStringLiteral("message")));
    view.push("last");
    QTRY_COMPARE(view.shown(), QString::fromLatin1(first + "message\nlast"));
}

void TestTerminalWidget::viewFollowsTheOutputOnlyAtTheBottom()
{
    View view;
    QScrollBar *const bar = view.verticalScrollBar();
    for (const bool isShown : {false, true}) {
        view.setVisible(isShown);
        view.push(numberedLines(0, 500));
        QVERIFY(bar->maximum() > 5000);
        QCOMPARE(bar->value(), bar->maximum());
        bar->setValue(bar->maximum() - 1);
        view.push("x\n");
        QCOMPARE(bar->value(), bar->maximum());
        bar->setValue(bar->maximum() - 2);
        const int value = bar->value();
        view.push("x\n");
        QCOMPARE(bar->value(), value);
        bar->setValue(bar->maximum());
    }
}

void TestTerminalWidget::oldBlocksAreRemovedAboveTheView()
{
    View view;
    view.setMaximumBlockCount(-1);
    QCOMPARE(view.maximumBlockCount(), 0);
    view.push(numberedLines(0, 900));
    view.setMaximumBlockCount(500);
    QCOMPARE(view.document()->firstBlock().text(), QStringLiteral("401"));
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() / 2);
    const auto top = [&] { return view.cursorForPosition(QPoint(0, 5)).block().text(); };
    const QString before = top();
    view.push(numberedLines(0, 50));
    QCOMPARE(top(), before);
    QCOMPARE(view.document()->blockCount(), 500);
    view.push(numberedLines(0, 2000)); // what was shown has gone
    QCOMPARE(view.verticalScrollBar()->value(), 0);
    QCOMPARE(view.shown(), QString::fromLatin1(numberedLines(1501, 2000)));
}

void TestTerminalWidget::clearForgetsWhatHasArrived()
{
    View view;
    view.push(numberedLines(0, 50000) + "\x1b[");
    view.clear();
    QCOMPARE(view.shown(), QString());
    QCOMPARE(view.verticalScrollBar()->maximum(), 0);
    view.push("Kab\bc");
    QCoreApplication::processEvents();
    QCOMPARE(view.shown(), QStringLiteral("acb"));
}

void TestTerminalWidget::outputPositionIsPainted()
{
    View view;
    view.setTextInteractionFlags(Qt::NoTextInteraction);
    const int width = view.fontMetrics().horizontalAdvance(QLatin1Char('M'));
    QCOMPARE(view.cursorWidth(), width);
    view.push("  \n  \b");
    const int line = view.fontMetrics().lineSpacing();
    const QImage image = view.viewport()->grab().toImage();
    const QColor base = view.palette().color(QPalette::Base);
    for (int column = 0; column < 3; ++column) {
        const QPoint place(4 + width * column + width / 2, 4 + line + line / 2);
        QCOMPARE(image.pixelColor(place) != base, column == 1);
    }
    view.zoomIn(20);
    QCOMPARE(view.cursorWidth(), view.fontMetrics().horizontalAdvance(QLatin1Char('M')));
    view.setCursorWidth(1);
    view.zoomOut(20);
    QCOMPARE(view.cursorWidth(), 1);
}

void TestTerminalWidget::pictureIsNotRenewedForEachRead()
{
    View view;
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCoreApplication::processEvents();
    view.paints = 0;
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 500; ++i) {
        view.push("some text\n");
        QCoreApplication::processEvents();
    }
    QVERIFY(view.paints > 0);
    QVERIFY2(view.paints <= 2 + clock.elapsed() / 15, qPrintable(QString::number(view.paints)));
    view.paints = 0; // what came last is painted as well
    view.push("the end");
    QTRY_VERIFY(view.paints > 0);
}

void TestTerminalWidget::sizeHintHoldsTheWindowOfTheTerminal()
{
    TerminalWidget widget;
    const QSize cell(widget.fontMetrics().horizontalAdvance(QLatin1Char('M')),
                     widget.fontMetrics().height());
    const int bar = widget.verticalScrollBar()->sizeHint().width();
    widget.document()->setDocumentMargin(3.9);
    const QSize edges(2 * widget.frameWidth() + bar + 6, 2 * widget.frameWidth() + 6);
    QCOMPARE(widget.sizeHint(), edges + QSize(80 * cell.width(), 12 * cell.height()));
    QCOMPARE(widget.minimumSizeHint(), widget.sizeHint());
    Terminal terminal;
    widget.setTerminal(&terminal);
    terminal.setWindowSize(20, 4);
    QCOMPARE(widget.lineWrapColumnOrWidth(), 20);
    const QSize plain = edges + QSize(20 * cell.width(), 4 * cell.height());
    QCOMPARE(widget.sizeHint(), plain);
    GapStyle style;
    widget.setStyle(&style);
    QCOMPARE(widget.sizeHint(), plain + QSize(5, 5));
    widget.setFrameStyle(QFrame::NoFrame);
    QCOMPARE(widget.sizeHint(), QSize(bar + 6 + 20 * cell.width(), 6 + 4 * cell.height()));
    terminal.setWindowSize(std::numeric_limits<int>::max(), std::numeric_limits<int>::min());
    QCOMPARE(widget.sizeHint(), QSize(QWIDGETSIZE_MAX, 0));
}

void TestTerminalWidget::keysAreWrittenAsBytes()
{
    QApplication::clipboard()->setText(QStringLiteral("p\u00e4ste"));
    View view;
    TerminalProcess process(&view.terminal);
    process.start(QStringLiteral("cat"));
    QVERIFY(process.waitForStarted());
    const QSignalSpy returned(&view, &TerminalWidget::returnPressed);
    QByteArray all;
    const auto press
        = [&](int key, Qt::KeyboardModifiers modifiers, const char *text, const char *written) {
              QKeyEvent event(QEvent::KeyPress, key, modifiers, QString::fromUtf8(text));
              QCoreApplication::sendEvent(&view, &event);
              all += written;
          };
    press(Qt::Key_A, {}, "a", "a");
    press(Qt::Key_Eacute, {}, "\u00e9", "\u00e9");
    press(Qt::Key_Backspace, {}, "\b", "\x7f");
    press(Qt::Key_C, Qt::MetaModifier, "c", "\3");
    press(Qt::Key_C, Qt::MetaModifier | Qt::ShiftModifier, "C", "C");
    press(Qt::Key_D, Qt::ControlModifier, "\4", "\4");
    press(Qt::Key_V, Qt::ControlModifier, "\x16", "p\u00e4ste");
    press(Qt::Key_C, Qt::ControlModifier, "\3", "");
    press(Qt::Key_X, Qt::ControlModifier, "\x18", "");
    press(Qt::Key_A, Qt::ControlModifier, "\1", "");
    press(Qt::Key_Up, {}, "", "");
    QCOMPARE(returned.size(), 0);
    press(Qt::Key_Return, {}, "\r", "\n");
    press(Qt::Key_Enter, Qt::KeypadModifier, "\r", "\n");
    press(Qt::Key_J, Qt::ControlModifier, "\n", "\n");
    QCOMPARE(returned.size(), 3);
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAll(), all);
    view.clear();
    view.push("some text"); // for the keys that are left to the text edit
    press(Qt::Key_A, Qt::ControlModifier, "\1", "");
    press(Qt::Key_C, Qt::ControlModifier, "\3", "");
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("some text"));

    TerminalWidget unattached;
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier);
    QCoreApplication::sendEvent(&unattached, &event);
    QVERIFY(!event.isAccepted());
    QMetaObject::invokeMethod(&unattached, "pasteFromClipboard"); // does nothing
}

void TestTerminalWidget::pasteStandsAfterCopyInTheMenu()
{
    View view;
    for (const bool hasCopy : {true, false}) {
        QStringList texts;
        QTimer::singleShot(0, this, [&] {
            auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            for (const QAction *action : menu->actions())
                texts += action->text().section(QLatin1Char('\t'), 0, 0);
            if (hasCopy)
                menu->close();
            else
                delete menu;
        });
        view.setTextInteractionFlags(hasCopy ? Qt::TextSelectableByMouse : Qt::TextEditable);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5));
        QCoreApplication::sendEvent(view.viewport(), &event);
        const int place = texts.indexOf(QStringLiteral("&Paste"));
        QVERIFY(place > 0);
        QCOMPARE(texts.at(place - 1), QStringLiteral("&Copy"));
    }
}

void TestTerminalWidget::replacedTerminalIsHeardButNotRead()
{
    View view;
    Terminal other;
    QVERIFY(other.openMaster());
    view.setTerminal(&other);
    view.push("not read");
    TerminalProcess process(&view.terminal);
    process.start(QString());
    QCOMPARE(view.shown(), QStringLiteral("\n"));
    view.setTerminal(&view.terminal); // connected for the second time
    process.start(QStringLiteral("/no/such"));
    process.waitForFinished();
    QCOMPARE(view.shown(), QStringLiteral("\n/no/such\n/no/such\n"));
    view.push("");
    QCOMPARE(view.shown().section(QLatin1Char('\n'), -1), QStringLiteral("not read"));
    view.terminal.setWindowSize(50, 1);
    other.setWindowSize(40, 1);
    QCOMPARE(view.lineWrapColumnOrWidth(), 40);
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
    terminal->pushBytes(numberedLines(0, 50000));
    widget.reset();
    terminal->pushBytes("x");
    QCoreApplication::processEvents();

    TerminalWidget another;
    another.setDocument(new QTextDocument(&another));
    another.setTerminal(terminal.get());
    terminal->pushBytes("x\b\x1b[K");
    another.grab();
}

QTEST_MAIN(TestTerminalWidget)

#include "tst_terminalwidget.moc"
