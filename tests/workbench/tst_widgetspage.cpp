#include <support/literal.h>
#include <support/testcase.h>
#include <workbench/widgetcard.h>
#include <workbench/widgetspage.h>

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QTest>

class TestWidgetsPage : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void everyCardGivesAdviceAndEveryKnobCanBeTurned()
    {
        WidgetsPage page;
        page.resize(1100, 700);
        page.show();
        int cards = 0;
        const QStringList shots = page.shots();
        for (const QString &shot : shots) {
            page.prepareShot(shot);
            const auto all = page.findChildren<WidgetCard *>();
            for (WidgetCard *const card : all) {
                if (!card->isVisible())
                    continue;
                ++cards;
                QVERIFY2(!card->additionalSummaryText().isEmpty(), qPrintable(card->name()));
                QCOMPARE(card->state(), DetailsWidget::Expanded);
                const auto boxes = card->findChildren<QComboBox *>();
                for (QComboBox *const box : boxes) {
                    for (int i = 0; i < box->count(); ++i)
                        box->setCurrentIndex(i);
                }
                const auto checks = card->findChildren<QCheckBox *>();
                for (QCheckBox *const check : checks)
                    check->toggle();
                QCoreApplication::processEvents();
            }
        }
        QCOMPARE(cards, 13);
        const auto press = [&](const QString &text) {
            const auto buttons = page.findChildren<QPushButton *>();
            for (QPushButton *const button : buttons) {
                if (button->text() == text)
                    button->click();
            }
        };
        for (int i = 0; i < 6; ++i) // one more than there are
            press("Remove the last one"_s);
        press("Last tab to the front"_s);
        press("Restore it"_s);
    }
};

QTEST_MAIN(TestWidgetsPage)
#include "tst_widgetspage.moc"
