#include <support/literal.h>
#include <support/testcase.h>
#include <workbench/terminalpage.h>

#include <tul-util-gui/terminal/terminalwidget.h>

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <csignal>

class TestTerminalPage : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void programIsShownFromStartToEnd()
    {
        TerminalPage page;
        const QSignalSpy faults(&page, &WorkbenchPage::failed);
        page.run("sh -c \"read x; echo $x; exit 3\""_s);
        page.run("true"_s); // while the first one runs
        QCOMPARE(faults.size(), 1);
        QTest::keyClicks(page.terminalWidget(), "typed"_s);
        QTest::keyClick(page.terminalWidget(), Qt::Key_Return);
        QTRY_COMPARE(page.terminalWidget()->toPlainText(),
                     "sh  -c \"read x; echo $x; exit 3\"\ntyped\n\n"
                     "[process exited with exit code 3]\n"_s);
        page.run({});
        page.run("/no/such"_s);
        QTRY_COMPARE(faults.size(), 3);
    }

    void programOfAWindowGoesWithIt()
    {
        TerminalPage page;
        const QPointer<QWidget> window(page.runInWindow("sh -c \"echo $$; exec cat\""_s));
        const auto *const widget = window->findChild<TerminalWidget *>();
        QTRY_COMPARE(widget->toPlainText().count(QLatin1Char('\n')), 2);
        const int pid = widget->toPlainText().section(QLatin1Char('\n'), 1, 1).toInt();
        QCOMPARE(::kill(pid, 0), 0);
        window->close();
        QTRY_COMPARE(::kill(pid, 0), -1);
    }
};

QTEST_MAIN(TestTerminalPage)
#include "tst_terminalpage.moc"
