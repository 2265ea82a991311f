#include <support/testcase.h>
#include <workbench/mainwindow.h>
#include <workbench/page.h>
#include <workbench/pagebar.h>

#include <tul-util-gui/widgets/flatbutton.h>

#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QTest>

class TestMainWindow : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void buttonsSwitchThePages();
    void faultsAreQueuedAndListed();
};

void TestMainWindow::buttonsSwitchThePages()
{
    MainWindow window(MainWindow::Reporting::StandardError);
    const auto buttons = window.findChild<PageBar *>()->findChildren<FlatButton *>();
    QCOMPARE(buttons.size(), window.pages().size());
    for (int i = buttons.size() - 1; i >= 0; --i) {
        buttons.at(i)->click();
        QCOMPARE(window.currentPage(), window.pages().at(i));
        for (int other = 0; other < buttons.size(); ++other)
            QCOMPARE(buttons.at(other)->isChecked(), other == i);
        const auto *const advice = window.findChild<QDockWidget *>(QStringLiteral("advice"));
        QCOMPARE(advice->findChild<QLabel *>()->text(), window.currentPage()->advice());
    }
}

void TestMainWindow::faultsAreQueuedAndListed()
{
    MainWindow window(MainWindow::Reporting::MessageBoxes);
    const QString fault = QStringLiteral("cannot read \"<b>\"");
    Q_EMIT window.currentPage()->failed(fault);
    QCOMPARE(window.faultCount(), 1);
    const auto *const box = window.findChild<QMessageBox *>();
    QVERIFY(box);
    QVERIFY(!box->isVisible()); // a page may be in the middle of its work
    const auto *const faults
        = window.findChild<QDockWidget *>(QStringLiteral("faults"))->findChild<QListWidget *>();
    QCOMPARE(faults->item(0)->text(), fault);
    // The name of a file is no markup.
    QVERIFY(!box->text().contains(QStringLiteral("<b>")));
}

QTEST_MAIN(TestMainWindow)

#include "tst_mainwindow.moc"
