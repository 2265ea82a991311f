#include <support/literal.h>
#include <support/recordingstyle.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/flatcommandlinkbutton.h>

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QTest>

namespace
{

struct DrawnText {
    QString text;
    QRect rect;
    int flags;
    QColor colour;
    QFont font;
};

/// Records the texts instead of drawing them.
class TextStyle : public RecordingStyle
{
public:
    mutable QVector<DrawnText> texts;

    void drawItemText(QPainter *painter, const QRect &rect, int flags, const QPalette &palette,
                      bool /*enabled*/, const QString &text,
                      QPalette::ColorRole role) const override
    {
        texts.append({text, rect, flags, palette.color(role), painter->font()});
    }
};

/// 200 x 60 pixels on white, with an icon of 20 x 20.
struct Fixture {
    TextStyle style;
    FlatCommandLinkButton button;

    Fixture()
    {
        button.setStyle(&style);
        button.resize(200, 60);
        button.setPalette(Qt::white);
        button.setText("&Title"_s);
        button.setDescription("What it does"_s);
        setIcon(20);
    }

    void setIcon(int size)
    {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::blue);
        button.setIconSize(pixmap.size());
        button.setIcon(pixmap);
    }

    QImage picture() { return button.grab().toImage(); }
};

} // namespace

class TestFlatCommandLinkButton : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void stateIsShownByItsColourAndTheRule()
    {
        Fixture fixture;
        FlatCommandLinkButton &button = fixture.button;
        button.setRaisedColour(Qt::yellow);
        button.setPressedColour(Qt::magenta);
        button.setLineColour(Qt::red);
        button.setAttribute(Qt::WA_UnderMouse);
        for (const int pressed : {0, 1}) { // everything is shifted by a pixel while it is
            fixture.style.texts.clear();
            button.setDown(pressed == 1);
            const QColor fill = pressed ? Qt::magenta : Qt::yellow; // there is no hover colour
            const QImage picture = fixture.picture();
            QCOMPARE(picture.pixelColor(0, 0), fill);
            QCOMPARE(picture.pixelColor(199, 58), fill);
            QCOMPARE(picture.pixelColor(199, 59), QColor(Qt::red));
            QCOMPARE(picture.pixelColor(6 + pressed, 9 + pressed), fill);
            QCOMPARE(picture.pixelColor(7 + pressed, 10 + pressed), QColor(Qt::blue));
            QCOMPARE(picture.pixelColor(26 + pressed, 29 + pressed), QColor(Qt::blue));
            QCOMPARE(fixture.style.texts.at(0).rect.left(), 20 + 13 + pressed);
            QCOMPARE(fixture.style.texts.at(1).rect.left(), 20 + 13 + pressed);
        }
    }

    void unsetColoursLeaveOnlyTexts()
    {
        Fixture fixture;
        fixture.button.setIcon(QIcon());
        fixture.button.setDown(true);
        QImage picture = fixture.picture();
        const QImage before = picture;
        picture.fill(fixture.button.palette().color(QPalette::Window));
        QCOMPARE(picture, before);
        fixture.button.setTitleColour(Qt::red); // stays for a description without a colour
        fixture.picture();
        fixture.button.setDescriptionColour(Qt::green);
        fixture.picture();
        const QColor own = fixture.button.palette().color(QPalette::ButtonText);
        const QColor colours[] = {own, own, Qt::red, Qt::red, Qt::red, Qt::green};
        for (int i = 0; i < 6; ++i)
            QCOMPARE(fixture.style.texts.at(i).colour, colours[i]);

        fixture.button.setDown(false);
        fixture.button.setCheckable(true);
        fixture.button.click();
        QVERIFY(!fixture.button.isChecked()); // that is for the owner
    }

    void textsStandBesideTheIcon()
    {
        for (const int icon : {0, 20, 40}) {
            const bool alone = icon == 40; // without a description, below the top of a high icon
            const bool underline = icon > 0;
            Fixture fixture;
            fixture.setIcon(icon);
            if (alone)
                fixture.button.setDescription(QString());
            fixture.style.hints.insert(QStyle::SH_UnderlineShortcut, underline ? 1 : 0);
            fixture.picture();

            QFont font = fixture.button.font();
            font.setPointSizeF(9.0);
            QFont bold = font;
            bold.setWeight(QFont::Bold);
            const int line = QFontMetrics(bold).height();
            const int left = icon + 13;
            const int mnemonic = Qt::TextShowMnemonic | (underline ? 0 : Qt::TextHideMnemonic);
            const DrawnText &title = fixture.style.texts.at(0);
            QCOMPARE(title.text, fixture.button.text());
            QCOMPARE(title.rect.topLeft(), QPoint(left, alone ? 10 + (icon - line) / 2 : 10));
            QCOMPARE(title.rect.bottomRight(), QPoint(195, 59));
            QCOMPARE(title.flags, mnemonic);
            QCOMPARE(title.font, bold);
            const DrawnText &description = fixture.style.texts.at(1);
            QCOMPARE(description.text, fixture.button.description());
            QCOMPARE(description.rect, QRect(QPoint(left, line + 10), QPoint(195, 54)));
            QCOMPARE(description.flags, mnemonic | Qt::AlignLeft | Qt::TextWordWrap);
            QCOMPARE(description.font, font);
        }
    }
};

QTEST_MAIN(TestFlatCommandLinkButton)
#include "tst_flatcommandlinkbutton.moc"
