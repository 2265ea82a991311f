#include <support/testcase.h>
#include <workbench/widgetcard.h>
#include <workbench/widgetspage.h>

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
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
    ShownPage shown;
    const auto *const tabs = shown.page.findChild<QTabWidget *>();
    const QStringList shots = shown.page.shots();
    for (const QString &shot : shots) {
        shown.page.prepareShot(shot);
        const QWidget *const group = tabs->currentWidget();
        const auto boxes = group->findChildren<QComboBox *>();
        for (QComboBox *const box : boxes) {
            for (int i = 0; i < box->count(); ++i)
                box->setCurrentIndex(i);
        }
        const auto checks = group->findChildren<QCheckBox *>();
        for (QCheckBox *const check : checks)
            check->toggle();
        QCoreApplication::processEvents();
    }
    for (int i = 0; i < 6; ++i) // one more than there are
        ShownPage::press(shown.card("FixedHeightListWidget"),
                         QStringLiteral("Remove the last one"));
    ShownPage::press(shown.card("DockWidgetTabMovedHelper"),
                     QStringLiteral("Last tab to the front"));
    ShownPage::press(shown.card("DockWidgetTabMovedHelper"), QStringLiteral("Restore it"));
}

QTEST_MAIN(TestWidgetsPage)

#include "tst_widgetspage.moc"
