#include <support/testcase.h>
#include <tul-util-gui/widgets/fadingpanel.h>

#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>
#include <QTest>

#include <cmath>

class TestFadingPanel : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void opacityChangesAtOnceOrInTime()
    {
        FadingPanel panel;
        const auto opacity = [&] { return panel.graphicsEffect()->property("opacity").toReal(); };
        QCOMPARE(opacity(), 0.0);
        QCOMPARE(panel.palette().brush(QPalette::Disabled, QPalette::Window),
                 QBrush(Qt::transparent));
        panel.setOpacity(0.5);
        panel.setOpacity(std::nan(""));
        panel.fadeTo(std::nanf(""));
        QCOMPARE(opacity(), 0.5);
        panel.fadeTo(0);
        panel.fadeTo(0.25F); // takes the place of the one before
        QCOMPARE(opacity(), 0.5);
        QTRY_VERIFY(panel.findChildren<QPropertyAnimation *>().isEmpty());
        QCOMPARE(opacity(), 0.25);
        panel.fadeTo(2);
        QTRY_COMPARE(opacity(), 1.0);
        panel.setGraphicsEffect(nullptr);
        panel.fadeTo(0);
    }
};

QTEST_MAIN(TestFadingPanel)

#include "tst_fadingpanel.moc"
