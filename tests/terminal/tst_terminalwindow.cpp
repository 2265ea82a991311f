#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalprocess.h>
#include <tul-util-gui/terminal/terminalwidget.h>
#include <tul-util-gui/terminal/terminalwindow.h>

#include <QLayout>
#include <QSignalSpy>
#include <QTest>

#include <memory>

class TestTerminalWindow : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void titleAndSizeFollowTheTerminal();
};

void TestTerminalWindow::titleAndSizeFollowTheTerminal()
{
    auto terminal = std::make_unique<Terminal>();
    QVERIFY(terminal->openMaster());
    auto window = std::make_unique<TerminalWindow>();
    window->setTerminal(terminal.get());
    TerminalProcess process(terminal.get());
    process.start("sh"_s, {"-c"_s, "exit 2"_s});
    QCOMPARE(window->windowTitle(), "sh  -c \"exit 2\""_s);
    QVERIFY(process.waitForFinished());
    QCOMPARE(window->windowTitle(), "sh  -c \"exit 2\" [finished]"_s);
    terminal->setWindowSize(30, 5);
    window->layout()->activate();
    QCOMPARE(window->size(), window->findChild<TerminalWidget *>()->sizeHint());

    // The program of a window that goes may end with it, or run on.
    process.start("cat"_s);
    const auto end = [&] { Q_EMIT terminal->processFinished(0, QProcess::NormalExit); };
    connect(new QObject(window.get()), &QObject::destroyed, terminal.get(), end);
    QSignalSpy titles(window.get(), &QWidget::windowTitleChanged);
    window.reset();
    QCOMPARE(titles.size(), 0);
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
