#include <support/testcase.h>
#include <workbench/colourbox.h>
#include <workbench/widgetcard.h>
#include <workbench/widgetspage.h>

#include <tul-util-gui/widgets/sidebarwidget.h>

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>

namespace
{

struct ShownPage {
    WidgetsPage page;

    ShownPage()
    {
        page.resize(1100, 700);
        page.show();
    }

    WidgetCard *card(const char *name) const
    {
        return page.findChild<WidgetCard *>(QString::fromLatin1(name));
    }

    static void press(const WidgetCard *card, const QString &text)
    {
        const auto buttons = card->findChildren<QPushButton *>();
        for (QPushButton *const button : buttons) {
            if (button->text() == text)
                button->click();
        }
    }
};

} // namespace

class TestWidgetsPage : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void everyWidgetHasACardWithAdvice();
    void everyKnobCanBeTurned();
    void answersOfQueuedBoxesAreTold();
    void shotsShowTheGroups();
};

void TestWidgetsPage::everyWidgetHasACardWithAdvice()
{
    const ShownPage shown;
    for (const char *const name :
         {"CloseButton", "DetailsButton", "DetailsWidget", "DockWidgetTabMovedHelper",
          "FadingPanel", "FixedHeightListWidget", "FlatButton", "FlatCommandLinkButton",
          "QQueuedMessageBox", "SideBarWidget", "StringListEditDialog", "TipLabel",
          "WiderCommandLinkButton"}) {
        const WidgetCard *const card = shown.card(name);
        QVERIFY2(card, name);
        QVERIFY2(!card->additionalSummaryText().isEmpty(), name);
        QCOMPARE(card->state(), DetailsWidget::Expanded);
    }
}

void TestWidgetsPage::everyKnobCanBeTurned()
{
    const ShownPage shown;
    const auto *const tabs = shown.page.findChild<QTabWidget *>();
    for (const QString &shot : shown.page.shots()) {
        const_cast<WidgetsPage &>(shown.page).prepareShot(shot);
        const QWidget *const group = tabs->currentWidget();
        const auto boxes = group->findChildren<QComboBox *>();
        for (QComboBox *const box : boxes) {
            for (int i = 0; i < box->count(); ++i)
                box->setCurrentIndex(i);
        }
        const auto checks = group->findChildren<QCheckBox *>();
        for (QCheckBox *const check : checks) {
            check->toggle();
            check->toggle();
        }
        const auto edits = group->findChildren<QLineEdit *>();
        for (QLineEdit *const edit : edits) {
            edit->clear();
            edit->setText(QStringLiteral("<i>rich</i>\ntext"));
        }
        QCoreApplication::processEvents();
    }
    QCOMPARE(shown.card("SideBarWidget")->findChild<SideBarWidget *>()->linePosition(),
             SideBarWidget::East);
    for (int i = 0; i < 6; ++i) // one more than there are
        ShownPage::press(shown.card("FixedHeightListWidget"),
                         QStringLiteral("Remove the last one"));
    ShownPage::press(shown.card("DockWidgetTabMovedHelper"),
                     QStringLiteral("Last tab to the front"));
    ShownPage::press(shown.card("DockWidgetTabMovedHelper"), QStringLiteral("Restore it"));
}

void TestWidgetsPage::answersOfQueuedBoxesAreTold()
{
    const ShownPage shown;
    const QSignalSpy status(&shown.page, &WorkbenchPage::statusChanged);
    ShownPage::press(shown.card("QQueuedMessageBox"), QStringLiteral("Question"));
    QCOMPARE(status.count(), 1); // the call has returned
    QVERIFY(!QApplication::activeModalWidget());
    const QMetaObject::Connection yes
        = connect(qApp, &QGuiApplication::focusWindowChanged, this, [] {
              auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
              if (box)
                  box->button(QMessageBox::Yes)->click();
          });
    QTRY_COMPARE(status.count(), 2);
    disconnect(yes);
    QCOMPARE(status.last().first().toString(), QStringLiteral("QQueuedMessageBox: yes"));
}

void TestWidgetsPage::shotsShowTheGroups()
{
    ShownPage shown;
    const auto *const tabs = shown.page.findChild<QTabWidget *>();
    const QStringList shots = shown.page.shots();
    QCOMPARE(shots.size(), tabs->count());
    for (int i = shots.size() - 1; i >= 0; --i) {
        shown.page.prepareShot(shots.at(i));
        QCOMPARE(tabs->currentIndex(), i);
    }
}

QTEST_MAIN(TestWidgetsPage)

#include "tst_widgetspage.moc"
