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
    void titleTellsWhatRunsAndThatItHasFinished();
    void windowIsAsLargeAsTheTerminal();
    void closedOrDeletedWindowLeavesTheProcessAlone();
};

void TestTerminalWindow::titleTellsWhatRunsAndThatItHasFinished()
{
    Terminal terminal;
    QVERIFY(terminal.openMaster());
    TerminalWindow window(&terminal);
    QCOMPARE(window.terminal(), &terminal);
    TerminalProcess process(&terminal);
    process.start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("exit 2")});
    QCOMPARE(window.windowTitle(), QStringLiteral("sh  -c \"exit 2\""));
    QVERIFY(process.waitForFinished());
    QCOMPARE(window.windowTitle(), QStringLiteral("sh  -c \"exit 2\" [finished]"));
    const QString text = window.findChild<TerminalWidget *>()->toPlainText();
    QVERIFY(text.split(QLatin1Char('\n'))
                .contains(QStringLiteral("[process exited with exit code 2]")));
}

void TestTerminalWindow::windowIsAsLargeAsTheTerminal()
{
    Terminal terminal;
    TerminalWindow window;
    QVERIFY(!window.terminal());
    window.setTerminal(nullptr);
    window.setTerminal(&terminal);
    const auto *const widget = window.findChild<TerminalWidget *>();
    for (const QSize cells : {QSize(30, 5), QSize(60, 10)}) {
        terminal.setWindowSize(cells.width(), cells.height());
        window.layout()->activate();
        QCOMPARE(window.size(), widget->sizeHint());
    }
}

void TestTerminalWindow::closedOrDeletedWindowLeavesTheProcessAlone()
{
    Terminal terminal;
    QVERIFY(terminal.openMaster());
    TerminalProcess process(&terminal);
    auto window = std::make_unique<TerminalWindow>(&terminal);
    announceWarning(QStringLiteral("This plugin does not support propagateSizeHints()"));
    window->show();
    process.start(QStringLiteral("cat"));
    window->close();
    QCOMPARE(terminal.write("to cat"), qint64(6));
    window.reset();
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAll(), QByteArray("to cat"));

    auto other = std::make_unique<Terminal>();
    TerminalWindow last(other.get());
    other.reset();
    QVERIFY(!last.terminal());
}

QTEST_MAIN(TestTerminalWindow)

#include "tst_terminalwindow.moc"
