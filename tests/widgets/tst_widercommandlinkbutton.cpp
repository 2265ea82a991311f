#include <support/testcase.h>
#include <tul-util-gui/widgets/widercommandlinkbutton.h>

#include <QTest>
#include <QtMath>

class TestWiderCommandLinkButton : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hintIsWideEnoughForTheDescription_data();
    void hintIsWideEnoughForTheDescription();
    void fontKeepsItsSizeButFollowsTheFamily();
};

void TestWiderCommandLinkButton::hintIsWideEnoughForTheDescription_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<int>("icon");
    QTest::newRow("none") << QString() << 20;
    QTest::newRow("long") << QString(80, QLatin1Char('m')) << 20;
    QTest::newRow("long, no icon") << QString(80, QLatin1Char('m')) << 0;
}

void TestWiderCommandLinkButton::hintIsWideEnoughForTheDescription()
{
    QFETCH(const QString, description);
    QFETCH(const int, icon);
    WiderCommandLinkButton button(QStringLiteral("Title"), description);
    button.setIcon(icon ? QIcon(QPixmap(icon, icon)) : QIcon());
    QCommandLinkButton plain(button.text(), description);
    plain.setFont(button.font());
    plain.setIcon(button.icon());
    const QSize base = static_cast<const QWidget &>(plain).sizeHint();
    const int text = qCeil(QFontMetricsF(button.font()).horizontalAdvance(description));
    const bool isLong = description.size() > 1;
    QCOMPARE(button.sizeHint(), isLong ? QSize(text + icon + 17, base.height()) : base);
    QVERIFY(!isLong || button.sizeHint().width() > base.width());
}

void TestWiderCommandLinkButton::fontKeepsItsSizeButFollowsTheFamily()
{
    for (const bool inPixels : {false, true}) {
        QWidget parent;
        QFont font = parent.font();
        inPixels ? font.setPixelSize(17) : font.setPointSizeF(10.5);
        parent.setFont(font);
        const WiderCommandLinkButton button(&parent);
        QFont other(QStringLiteral("DejaVu Sans Mono"));
        other.setPointSize(30);
        parent.setFont(other);
        QCOMPARE(button.font().pixelSize(), font.pixelSize());
        QCOMPARE(button.font().pointSizeF(), font.pointSizeF());
        QCOMPARE(button.font().family(), other.family());
    }
}

QTEST_MAIN(TestWiderCommandLinkButton)

#include "tst_widercommandlinkbutton.moc"
