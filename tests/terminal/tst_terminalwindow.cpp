#include <support/testcase.h>
#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalprocess.h>
#include <tul-util-gui/terminal/terminalwidget.h>
#include <tul-util-gui/terminal/terminalwindow.h>

#include <QLayout>
#include <QTest>

#include <memory>

class TestTerminalWindow : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void titleAndSizeFollowTheTerminal();
    void deletedWindowLeavesTheProcessAlone();
};

void TestTerminalWindow::titleAndSizeFollowTheTerminal()
{
    Terminal terminal;
    QVERIFY(terminal.openMaster());
    TerminalWindow window;
    window.setTerminal(nullptr);
    window.setTerminal(&terminal);
    QCOMPARE(window.terminal(), &terminal);
    TerminalProcess process(&terminal);
    process.start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("exit 2")});
    QCOMPARE(window.windowTitle(), QStringLiteral("sh  -c \"exit 2\""));
    QVERIFY(process.waitForFinished());
    QCOMPARE(window.windowTitle(), QStringLiteral("sh  -c \"exit 2\" [finished]"));
    for (const QSize cells : {QSize(30, 5), QSize(60, 10)}) {
        terminal.setWindowSize(cells.width(), cells.height());
        window.layout()->activate();
        QCOMPARE(window.size(), window.findChild<TerminalWidget *>()->sizeHint());
    }
}

void TestTerminalWindow::deletedWindowLeavesTheProcessAlone()
{
    auto terminal = std::make_unique<Terminal>();
    QVERIFY(terminal->openMaster());
    TerminalProcess process(terminal.get());
    auto window = std::make_unique<TerminalWindow>(terminal.get());
    process.start(QStringLiteral("cat"));
    window.reset();
    QCOMPARE(terminal->write("to cat"), qint64(6));
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAll(), QByteArray("to cat"));

    const TerminalWindow last(terminal.get());
    terminal.reset();
    QVERIFY(!last.terminal());
}

QTEST_MAIN(TestTerminalWindow)

#include "tst_terminalwindow.moc"
