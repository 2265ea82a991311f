#include <support/testcase.h>
#include <tul-util-gui/mdatable/celltext_p.h>

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QPicture>
#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <functional>

using Prepare = std::function<void(QPainter *)>;
Q_DECLARE_METATYPE(Prepare)

namespace
{

const QRect cell(7, 5, 72, 26);
const int rightCentred = Qt::AlignRight | Qt::AlignVCenter;
const int leftCentred = Qt::AlignLeft | Qt::AlignVCenter;

struct Colors {
    QColor text;
    QColor background;
};

struct Scene {
    QFont font;
    QString text = QStringLiteral("-12.5e3");
    QRect rect = cell;
    int margin = 2; // of cells, left and right of their text
    int flags = rightCentred;
    Colors colors = {Qt::black, Qt::white};
    bool namesBackground = true;
    QImage::Format format = QImage::Format_ARGB32_Premultiplied;
    qreal ratio = 1;
    QPointF shift;
    Prepare prepare = [](QPainter *) {};
};

// Around the cell there is another colour, which neither way may touch unless both do.
QImage newImage(const Scene &scene)
{
    QImage image(QSize(90, 40) * scene.ratio, scene.format);
    image.setDevicePixelRatio(scene.ratio);
    image.fill(QColor(40, 160, 90));
    return image;
}

void drawOn(QPainter *painter, const Scene &scene, bool plain)
{
    painter->setFont(scene.font);
    painter->translate(scene.shift);
    painter->fillRect(scene.rect.adjusted(-scene.margin, 0, scene.margin, 0),
                      scene.colors.background);
    painter->setPen(scene.colors.text);
    scene.prepare(painter);
    if (plain)
        painter->drawText(scene.rect, scene.flags, scene.text);
    else
        tul::drawText(painter, scene.rect, scene.flags, scene.text,
                      scene.namesBackground ? scene.colors.background : QColor());
}

void showWindow(QPainter *painter, const QRect &window)
{
    painter->setWindow(window);
    painter->fillRect(cell.adjusted(-2, 0, 2, 0), Qt::white); // where it is now
}

QImage drawn(const Scene &scene, bool plain)
{
    QImage image = newImage(scene);
    QPainter painter(&image);
    drawOn(&painter, scene, plain);
    return image;
}

bool isDrawnAlike(const Scene &scene)
{
    return drawn(scene, false) == drawn(scene, true);
}

QString description(const Scene &scene)
{
    QString result;
    QDebug(&result) << scene.text << scene.rect << scene.flags << scene.shift << scene.ratio
                    << scene.format << scene.colors.background << scene.namesBackground;
    return result;
}

template<typename T> T oneOf(QRandomGenerator &random, std::initializer_list<T> values)
{
    return *(values.begin() + random.bounded(static_cast<int>(values.size())));
}

QString randomNumber(QRandomGenerator &random)
{
    const double value = (random.generateDouble() - 0.5) * std::pow(10, random.bounded(-6, 12));
    switch (random.bounded(4)) {
    case 0:
        return QString::number(static_cast<long long>(value));
    case 1:
        return QString::number(value, 'e', random.bounded(6));
    case 2:
        return QString::number(value, 'f', 2).replace(QLatin1Char('.'), QLatin1Char(','));
    default:
        return QString::number(value, 'f', random.bounded(4));
    }
}

void addFonts()
{
    QTest::addColumn<QFont>("font");
    for (const char *family : {"DejaVu Sans", "DejaVu Sans Mono", "DejaVu Serif"}) {
        for (const int points : {7, 9, 12}) {
            QFont font(QString::fromLatin1(family), points);
            QTest::addRow("%s %d", family, points) << font;
            font.setBold(points == 9);
            font.setItalic(points != 9);
            QTest::addRow("%s %d %s", family, points, points == 9 ? "bold" : "italic") << font;
        }
    }
    QFont font(QStringLiteral("DejaVu Sans"), 10);
    const auto addFont = [&font](const char *name, const std::function<void(QFont &)> &change) {
        QFont changed = font;
        change(changed);
        QTest::newRow(name) << changed;
    };
    addFont("underlined", [](QFont &f) { f.setUnderline(true); });
    addFont("struck out", [](QFont &f) { f.setStrikeOut(true); });
    addFont("small capitals", [](QFont &f) { f.setCapitalization(QFont::SmallCaps); });
    addFont("capitals", [](QFont &f) { f.setCapitalization(QFont::AllUppercase); });
    addFont("spaced", [](QFont &f) { f.setLetterSpacing(QFont::AbsoluteSpacing, 1.5); });
    addFont("spaced wide", [](QFont &f) { f.setLetterSpacing(QFont::AbsoluteSpacing, 6); });
    addFont("narrowed", [](QFont &f) { f.setLetterSpacing(QFont::PercentageSpacing, 80); });
    addFont("overlapping", [](QFont &f) { f.setLetterSpacing(QFont::AbsoluteSpacing, -3); });
    addFont("stretched", [](QFont &f) { f.setStretch(140); });
    addFont("unhinted", [](QFont &f) { f.setHintingPreference(QFont::PreferNoHinting); });
    addFont("not smoothed", [](QFont &f) { f.setStyleStrategy(QFont::NoAntialias); });
    addFont("in pixels", [](QFont &f) { f.setPixelSize(13); });
    addFont("fractional", [](QFont &f) { f.setPointSizeF(9.3); });
}

} // namespace

class TestCellText : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void textIsANumberWhenAParserTakesIt()
    {
        const auto isTaken = [](const QString &text) {
            bool asInteger = false;
            bool asDouble = false;
            text.toLongLong(&asInteger, 10);
            text.toDouble(&asDouble);
            return asInteger || asDouble;
        };
        const QString texts = QStringLiteral(
            "|-|5|-5|+5|--5| 12 |\t7\n|1 2|5.|.5|.|1.2.3|-.5|1e3|1E-3|1e|e5|1e400|-1e-400|inf|-inf"
            "|infinity|nan|NaN|0x10|1,000|3,5|007|123456789012345678|-9223372036854775808"
            "|99999999999999999999|1.00000000000000000000001|12 "
            "apples|\u0663|\uff15|\u22125|5\u00a0");
        for (const QString &text : texts.split(QLatin1Char('|')))
            QVERIFY2(tul::isNumber(text) == isTaken(text), qPrintable(text));
        QVERIFY(!tul::isNumber(QString(QStringLiteral("12").append(QChar(0)))));
        QRandomGenerator random(1);
        const QString characters = QStringLiteral("0123456789012345678901234567890--..+e, ");
        for (int i = 0; i < 20000; ++i) {
            QString text;
            for (int length = random.bounded(21); length > 0; --length)
                text.append(characters.at(random.bounded(characters.size())));
            QVERIFY2(tul::isNumber(text) == isTaken(text), qPrintable(text));
        }
    }

    void sizeIsThatOfTheFont_data() { addFonts(); }

    void sizeIsThatOfTheFont()
    {
        QFETCH(QFont, font);
        const QFontMetrics metrics(font);
        QStringList texts{QString(), QStringLiteral("a word"), QStringLiteral("1 000"),
                          QString(200, QLatin1Char('8')), QStringLiteral("e-e-e")};
        QRandomGenerator random(2);
        for (int i = 0; i < 200; ++i)
            texts.append(randomNumber(random));
        for (const QString &text : texts)
            QCOMPARE(tul::textSize(font, text),
                     QSize(metrics.horizontalAdvance(text), metrics.height()));
    }

    void pixelsAreThoseOfTheToolkit_data() { addFonts(); }

    void pixelsAreThoseOfTheToolkit()
    {
        QRandomGenerator random(3);
        Scene scene;
        QFETCH(QFont, font);
        scene.font = font;
        for (const Colors &colors :
             {Colors{Qt::black, Qt::white}, Colors{QColor(230, 240, 250), QColor(35, 38, 41)}}) {
            for (const qreal ratio : {1.0, 1.5, 2.0}) {
                for (const QImage::Format format :
                     {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
                    scene.colors = colors;
                    scene.ratio = ratio;
                    scene.format = format;
                    for (int i = 0; i < 16; ++i) {
                        scene.text = randomNumber(random);
                        scene.namesBackground = i % 3 != 0;
                        // From too low and too narrow up, and as wide as the text.
                        const int wide = oneOf(
                            random,
                            {10, 40, 62, 80, tul::textSize(scene.font, scene.text).width()});
                        scene.rect = QRect(7, 5, wide, random.bounded(6, 32));
                        scene.flags
                            = oneOf<int>(random,
                                         {leftCentred, rightCentred, rightCentred, Qt::AlignLeft,
                                          Qt::AlignHCenter | Qt::AlignVCenter});
                        scene.shift = oneOf<QPointF>(random,
                                                     {QPointF(), QPointF(3, 8), QPointF(-30, -12),
                                                      QPointF(45, 25), QPointF(0.5, 0.25)});
                        QVERIFY2(isDrawnAlike(scene), qPrintable(description(scene)));
                    }
                }
            }
        }
    }

    void unusualPaintersDrawAsTheyDoOtherwise_data()
    {
        QTest::addColumn<Prepare>("prepare");
        const auto addRow
            = [](const char *name, const Prepare &prepare) { QTest::newRow(name) << prepare; };
        addRow("right to left", [](QPainter *p) { p->setLayoutDirection(Qt::RightToLeft); });
        addRow("translucent", [](QPainter *p) { p->setOpacity(0.4); });
        addRow("translucent pen", [](QPainter *p) { p->setPen(QColor(200, 0, 0, 100)); });
        addRow("adding",
               [](QPainter *p) { p->setCompositionMode(QPainter::CompositionMode_Multiply); });
        addRow("replacing",
               [](QPainter *p) { p->setCompositionMode(QPainter::CompositionMode_Source); });
        addRow("opaque", [](QPainter *p) {
            p->setBackgroundMode(Qt::OpaqueMode);
            p->setBackground(Qt::yellow);
        });
        addRow("not smoothed",
               [](QPainter *p) { p->setRenderHint(QPainter::TextAntialiasing, false); });
        addRow("smoothing all", [](QPainter *p) {
            p->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        });
        addRow("clipped",
               [](QPainter *p) { p->setClipRegion(QRegion(20, 8, 20, 9) + QRect(50, 12, 6, 9)); });
        addRow("clipped round", [](QPainter *p) {
            QPainterPath path;
            path.addEllipse(30, 5, 35, 20);
            p->setClipPath(path);
        });
        addRow("scaled", [](QPainter *p) { p->scale(1.3, 1.1); });
        addRow("twice as large", [](QPainter *p) { p->scale(2, 2); });
        addRow("mirrored", [](QPainter *p) { p->setTransform(QTransform(-1, 0, 0, 1, 80, 0)); });
        addRow("rotated", [](QPainter *p) { p->rotate(10); });
        addRow("window upside down", [](QPainter *p) { showWindow(p, QRect(0, 40, 90, -40)); });
        addRow("window half as high", [](QPainter *p) { showWindow(p, QRect(0, 0, 90, 80)); });
        addRow("window of a quarter", [](QPainter *p) { showWindow(p, QRect(0, 0, 45, 20)); });
        addRow("own font",
               [](QPainter *p) { p->setFont(QFont(QStringLiteral("DejaVu Serif"), 8)); });
    }

    void unusualPaintersDrawAsTheyDoOtherwise()
    {
        QFETCH(Prepare, prepare);
        Scene scene;
        scene.prepare = prepare;
        for (const qreal ratio : {1.0, 2.0}) {
            for (const bool named : {true, false}) {
                scene.ratio = ratio;
                scene.namesBackground = named;
                QVERIFY2(isDrawnAlike(scene), qPrintable(description(scene)));
            }
        }
    }

    void otherDevicesAreDrawnOnAsOtherwise()
    {
        Scene scene;
        for (const QImage::Format format :
             {QImage::Format_ARGB32, QImage::Format_RGB16, QImage::Format_Grayscale8,
              QImage::Format_RGBA8888_Premultiplied, QImage::Format_RGB30, QImage::Format_Mono}) {
            scene.format = format;
            QVERIFY2(isDrawnAlike(scene), qPrintable(description(scene)));
        }
        scene.format = QImage::Format_RGB32;
        QImage results[2];
        for (const bool plain : {false, true}) {
            QImage &fine = results[plain];
            fine = newImage(scene);
            fine.setDotsPerMeterX(2 * fine.dotsPerMeterX());
            fine.setDotsPerMeterY(2 * fine.dotsPerMeterY());
            QPainter painter(&fine);
            drawOn(&painter, scene, plain);
        }
        QCOMPARE(results[0], results[1]);
        QVERIFY(results[0] != drawn(scene, true));
    }

    void recordedPicturesPlayAsOtherwise()
    {
        const Scene scene;
        QImage results[2];
        for (const bool plain : {false, true}) {
            QPicture picture;
            QPainter recorder(&picture);
            drawOn(&recorder, scene, plain);
            recorder.end();
            results[plain] = newImage(scene);
            QPainter player(&results[plain]);
            player.drawPicture(0, 0, picture);
        }
        QCOMPARE(results[0], results[1]);
    }

    void inkBesideTheRectangleIsBlended()
    {
        // Italics reach out of it, where the background may be another one.
        Scene scene;
        scene.margin = 0;
        for (const char *family : {"DejaVu Sans Mono", "DejaVu Serif"}) {
            scene.font = QFont(QString::fromLatin1(family), 12, QFont::Normal, true);
            for (const char *text : {"3", "4.4e", "777"}) {
                scene.text = QString::fromLatin1(text);
                for (const int flags : {leftCentred, rightCentred}) {
                    scene.flags = flags;
                    QVERIFY2(isDrawnAlike(scene), qPrintable(description(scene)));
                }
            }
        }
    }

    void colorsAndFontsMayAlternate()
    {
        // More of each than are kept at a time, and back again.
        QRandomGenerator random(4);
        Scene scene;
        for (int i = 0; i < 60; ++i) {
            scene.font = QFont(QStringLiteral("DejaVu Sans"), 6 + i % 11);
            scene.colors
                = {QColor::fromHsv(i % 10 * 30, 255, 120), QColor::fromHsv(i % 3 * 90, 60, 250)};
            scene.text = randomNumber(random);
            QVERIFY2(isDrawnAlike(scene), qPrintable(description(scene)));
        }
    }
};

QTEST_MAIN(TestCellText)
#include "tst_celltext.moc"
