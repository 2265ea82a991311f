#include <support/literal.h>
#include <support/testcase.h>
#include <workbench/mainwindow.h>
#include <workbench/page.h>
#include <workbench/pagebar.h>

#include <tul-util-gui/widgets/flatbutton.h>

#include <QDockWidget>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QTest>

class TestMainWindow : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void buttonsSwitchThePages()
    {
        MainWindow window(MainWindow::Reporting::StandardError);
        const auto *const advice = window.findChild<QDockWidget *>("advice"_s);
        const auto buttons = window.findChild<PageBar *>()->findChildren<FlatButton *>();
        QCOMPARE(buttons.size(), window.pages().size());
        for (int i = buttons.size() - 1; i >= 0; --i) {
            buttons.at(i)->click();
            QCOMPARE(window.currentPage(), window.pages().at(i));
            for (int other = 0; other < buttons.size(); ++other)
                QCOMPARE(buttons.at(other)->isChecked(), other == i);
            QCOMPARE(advice->findChild<QLabel *>()->text(), window.currentPage()->advice());
        }
    }

    void faultsAreQueuedAndListed()
    {
        MainWindow window(MainWindow::Reporting::MessageBoxes);
        const QString fault = "cannot read \"<b>\""_s;
        Q_EMIT window.currentPage()->failed(fault);
        QCOMPARE(window.faultCount(), 1);
        const auto *const faults = window.findChild<QDockWidget *>("faults"_s);
        QCOMPARE(faults->findChild<QListWidget *>()->item(0)->text(), fault);
        const auto *const box = window.findChild<QMessageBox *>();
        QVERIFY(box && !box->isVisible()); // a page may be in the middle of its work
        QVERIFY(!box->text().contains("<b>"_s)); // the name of a file is no markup
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
