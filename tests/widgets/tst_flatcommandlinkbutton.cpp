#include <support/recordingstyle.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/flatcommandlinkbutton.h>

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QSignalSpy>
#include <QTest>

namespace
{

const QColor background(Qt::white);

struct DrawnText {
    QString text;
    QRect rect;
    int flags;
    QColor colour;
    bool enabled;
    QFont font;
};

/// Records the texts instead of drawing them.
class TextStyle : public RecordingStyle
{
public:
    mutable QVector<DrawnText> texts;

    void drawItemText(QPainter *painter, const QRect &rect, int flags, const QPalette &palette,
                      bool enabled, const QString &text, QPalette::ColorRole role) const override
    {
        texts.append({text, rect, flags, palette.color(role), enabled, painter->font()});
    }
};

/// 200 x 60 pixels, with an icon of 20 x 20, a colour each for the states, and nothing for texts.
struct Fixture {
    TextStyle style;
    FlatCommandLinkButton button;

    Fixture()
    {
        button.setStyle(&style);
        button.resize(200, 60);
        QPalette palette;
        palette.setColor(QPalette::Window, background);
        palette.setColor(QPalette::ButtonText, Qt::black);
        button.setPalette(palette);
        QPixmap pixmap(20, 20);
        pixmap.fill(Qt::blue);
        button.setIconSize(pixmap.size());
        button.setIcon(pixmap);
        button.setText(QStringLiteral("&Title"));
        button.setDescription(QStringLiteral("What it does"));
    }

    void setColours()
    {
        button.setSunkenColour(Qt::darkGreen);
        button.setRaisedColour(Qt::yellow);
        button.setHoverColour(Qt::cyan);
        button.setPressedColour(Qt::magenta);
        button.setDisabledColour(Qt::gray);
        button.setLineColour(Qt::red);
    }

    QImage picture()
    {
        style.texts.clear();
        return button.grab().toImage();
    }
};

} // namespace

class TestFlatCommandLinkButton : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void stateIsShownByItsColourAndTheRule_data();
    void stateIsShownByItsColourAndTheRule();
    void unsetColoursLeaveOnlyIconAndTexts();
    void textsStandBesideTheIcon_data();
    void textsStandBesideTheIcon();
    void titleColourStaysForADescriptionWithoutOne();
    void clicksAreTheOwnersToAnswer();
};

void TestFlatCommandLinkButton::stateIsShownByItsColourAndTheRule_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QColor>("fill");
    QTest::addColumn<bool>("hasRule");
    const auto row = [](const char *state, const QColor &fill, bool hasRule) {
        QTest::newRow(state) << QString::fromLatin1(state) << fill << hasRule;
    };
    row("raised", Qt::yellow, false);
    row("hover", Qt::cyan, true);
    row("hover down", Qt::magenta, true);
    row("down", Qt::darkGreen, true);
    row("hover checked", Qt::darkGreen, true);
    row("disabled", Qt::gray, false);
    row("disabled checked", Qt::darkGreen, true);
}

void TestFlatCommandLinkButton::stateIsShownByItsColourAndTheRule()
{
    QFETCH(const QString, state);
    QFETCH(const QColor, fill);
    QFETCH(const bool, hasRule);
    Fixture fixture;
    fixture.setColours();
    FlatCommandLinkButton &button = fixture.button;
    button.setCheckable(true);
    button.setAttribute(Qt::WA_UnderMouse, state.contains(QLatin1String("hover")));
    button.setDown(state.contains(QLatin1String("down")));
    button.setChecked(state.contains(QLatin1String("checked")));
    button.setDisabled(state.contains(QLatin1String("disabled")));

    const QImage picture = fixture.picture();
    const int shift = button.isDown() ? 1 : 0;
    QCOMPARE(picture.pixelColor(0, 0), fill);
    QCOMPARE(picture.pixelColor(199, 58), fill);
    QCOMPARE(picture.pixelColor(0, 59), hasRule ? QColor(Qt::red) : fill);
    QCOMPARE(picture.pixelColor(199, 59), hasRule ? QColor(Qt::red) : fill);
    QCOMPARE(picture.pixelColor(6 + shift, 9 + shift), fill);
    if (button.isEnabled()) {
        QCOMPARE(picture.pixelColor(7 + shift, 10 + shift), QColor(Qt::blue));
        QCOMPARE(picture.pixelColor(26 + shift, 29 + shift), QColor(Qt::blue));
    }
    QCOMPARE(fixture.style.texts.size(), 2);
    for (const DrawnText &drawn : qAsConst(fixture.style.texts)) {
        QCOMPARE(drawn.enabled, button.isEnabled());
        QCOMPARE(drawn.rect.left(), 20 + 13 + shift);
    }
}

void TestFlatCommandLinkButton::unsetColoursLeaveOnlyIconAndTexts()
{
    Fixture fixture;
    fixture.button.setIcon(QIcon());
    fixture.button.setDown(true);
    const QImage picture = fixture.picture();
    QImage empty = picture;
    empty.fill(background);
    QCOMPARE(picture, empty);
    QCOMPARE(fixture.style.texts.size(), 2);
    QCOMPARE(fixture.style.texts.at(0).colour, QColor(Qt::black));
}

void TestFlatCommandLinkButton::textsStandBesideTheIcon_data()
{
    QTest::addColumn<int>("icon");
    QTest::addColumn<bool>("hasDescription");
    QTest::addColumn<bool>("underline");
    QTest::newRow("both texts") << 20 << true << true;
    QTest::newRow("no icon") << 0 << true << false;
    QTest::newRow("title alone, high icon") << 40 << false << true;
    QTest::newRow("title alone, low icon") << 8 << false << false;
}

void TestFlatCommandLinkButton::textsStandBesideTheIcon()
{
    QFETCH(const int, icon);
    QFETCH(const bool, hasDescription);
    QFETCH(const bool, underline);
    Fixture fixture;
    FlatCommandLinkButton &button = fixture.button;
    button.setIconSize(QSize(icon, icon));
    button.setIcon(icon ? QIcon(QPixmap(icon, icon)) : QIcon());
    if (!hasDescription)
        button.setDescription(QString());
    fixture.style.hints.insert(QStyle::SH_UnderlineShortcut, underline ? 1 : 0);
    fixture.picture();

    QFont font = button.font();
    font.setPointSizeF(9.0);
    QFont bold = font;
    bold.setWeight(QFont::Bold);
    const int line = QFontMetrics(bold).height();
    const int left = icon + 13;
    const int top = hasDescription ? 10 : 10 + qMax(0, (icon - line) / 2);
    const int mnemonic = Qt::TextShowMnemonic | (underline ? 0 : Qt::TextHideMnemonic);
    const DrawnText &title = fixture.style.texts.at(0);
    QCOMPARE(title.text, button.text());
    QCOMPARE(title.rect, QRect(QPoint(left, top), QPoint(195, 59)));
    QCOMPARE(title.flags, mnemonic);
    QCOMPARE(title.font, bold);
    const DrawnText &description = fixture.style.texts.at(1);
    QCOMPARE(description.text, button.description());
    QCOMPARE(description.rect, QRect(QPoint(left, line + 10), QPoint(195, 54)));
    QCOMPARE(description.flags, mnemonic | Qt::AlignLeft | Qt::TextWordWrap);
    QCOMPARE(description.font, font);
}

void TestFlatCommandLinkButton::titleColourStaysForADescriptionWithoutOne()
{
    Fixture fixture;
    fixture.button.setTitleColour(Qt::red);
    fixture.picture();
    QCOMPARE(fixture.style.texts.at(0).colour, QColor(Qt::red));
    QCOMPARE(fixture.style.texts.at(1).colour, QColor(Qt::red));
    fixture.button.setDescriptionColour(Qt::green);
    fixture.picture();
    QCOMPARE(fixture.style.texts.at(0).colour, QColor(Qt::red));
    QCOMPARE(fixture.style.texts.at(1).colour, QColor(Qt::green));
}

void TestFlatCommandLinkButton::clicksAreTheOwnersToAnswer()
{
    Fixture fixture;
    fixture.button.setCheckable(true);
    const QSignalSpy clicked(&fixture.button, &QAbstractButton::clicked);
    QTest::mouseClick(&fixture.button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
    QVERIFY(!fixture.button.isChecked());
}

QTEST_MAIN(TestFlatCommandLinkButton)

#include "tst_flatcommandlinkbutton.moc"
