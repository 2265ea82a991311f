#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/widercommandlinkbutton.h>

#include <QTest>

class TestWiderCommandLinkButton : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hintIsWideEnoughForTheDescription()
    {
        for (const int letters : {0, 1, 80}) {
            for (const int icon : {0, 20}) {
                WiderCommandLinkButton button("A title"_s, QString(letters, QLatin1Char('m')));
                button.setIcon(icon ? QIcon(QPixmap(icon, icon)) : QIcon());
                QCommandLinkButton plain(button.text(), button.description());
                plain.setFont(button.font());
                plain.setIcon(button.icon());
                const QSize base = static_cast<const QWidget &>(plain).sizeHint();
                const QFontMetrics metrics(button.font());
                const int needed = metrics.horizontalAdvance(button.description()) + icon + 17;
                const int width = letters ? qMax(needed, base.width()) : base.width();
                QCOMPARE(button.sizeHint(), QSize(width, base.height()));
                QCOMPARE(button.sizeHint().width() > base.width(), letters == 80);
            }
        }
    }

    void fontKeepsItsSizeButFollowsTheFamily()
    {
        for (const bool inPixels : {false, true}) {
            QWidget parent;
            QFont font = parent.font();
            inPixels ? font.setPixelSize(17) : font.setPointSizeF(10.5);
            parent.setFont(font);
            const WiderCommandLinkButton button(&parent);
            QFont other("DejaVu Sans Mono"_s);
            other.setPointSize(30);
            parent.setFont(other);
            QCOMPARE(button.font().pixelSize(), font.pixelSize());
            QCOMPARE(button.font().pointSizeF(), font.pointSizeF());
            QCOMPARE(button.font().family(), other.family());
        }
    }
};

QTEST_MAIN(TestWiderCommandLinkButton)
#include "tst_widercommandlinkbutton.moc"
