#include <support/testcase.h>
#include <tul-util-gui/mdatable/celltext_p.h>

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPicture>
#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <functional>

using Prepare = std::function<void(QPainter *)>;
Q_DECLARE_METATYPE(Prepare)
using DrawOn = std::function<void(QImage *, bool plain)>;

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

// Whether the picture is that of the toolkit; tells what differs.
bool isDrawnAlike(const Scene &scene, const DrawOn &draw = {})
{
    QImage images[2];
    for (const bool plain : {false, true}) {
        images[plain] = newImage(scene);
        if (draw) {
            draw(&images[plain], plain);
        } else {
            QPainter painter(&images[plain]);
            drawOn(&painter, scene, plain);
        }
    }
    if (images[0] == images[1])
        return true;
    qWarning() << scene.text << scene.rect << scene.flags << scene.shift << scene.ratio
               << scene.format << scene.colors.background << scene.namesBackground;
    return false;
}

template<typename T> T oneOf(QRandomGenerator &random, std::initializer_list<T> values)
{
    return values.begin()[random.bounded(static_cast<int>(values.size()))];
}

QString randomNumber(QRandomGenerator &random)
{
    const double value = (random.generateDouble() - 0.5) * std::pow(10, random.bounded(-6, 12));
    const QString texts[] = {
        QString::number(static_cast<long long>(value)),
        QString::number(value, 'e', random.bounded(6)),
        QString::number(value, 'f', 2).replace(QLatin1Char('.'), QLatin1Char(',')),
        QString::number(value, 'f', random.bounded(4)),
    };
    return texts[random.bounded(4)];
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

    void textIsMeasuredAndDrawnAsByTheToolkit_data()
    {
        QTest::addColumn<QFont>("font");
        for (const char *family : {"DejaVu Sans", "DejaVu Sans Mono", "DejaVu Serif"}) {
            for (const int points : {7, 9, 12})
                QTest::addRow("%s %d", family, points)
                    << QFont(QString::fromLatin1(family), points);
            QTest::addRow("%s italic", family)
                << QFont(QString::fromLatin1(family), 12, QFont::Normal, true);
        }
        using F = QFont &;
        const auto addFont = [](const char *name, const std::function<void(F)> &change) {
            QFont font(QStringLiteral("DejaVu Sans"), 10);
            change(font);
            QTest::newRow(name) << font;
        };
        addFont("bold", [](F f) { f.setBold(true); });
        addFont("underlined", [](F f) { f.setUnderline(true); });
        addFont("small capitals", [](F f) { f.setCapitalization(QFont::SmallCaps); });
        addFont("spaced wide", [](F f) { f.setLetterSpacing(QFont::AbsoluteSpacing, 6); });
        addFont("narrowed", [](F f) { f.setLetterSpacing(QFont::PercentageSpacing, 80); });
        addFont("overlapping", [](F f) { f.setLetterSpacing(QFont::AbsoluteSpacing, -3); });
        addFont("stretched", [](F f) { f.setStretch(140); });
        addFont("unhinted", [](F f) { f.setHintingPreference(QFont::PreferNoHinting); });
        addFont("not smoothed", [](F f) { f.setStyleStrategy(QFont::NoAntialias); });
        addFont("fractional", [](F f) { f.setPointSizeF(9.3); });
    }

    void textIsMeasuredAndDrawnAsByTheToolkit()
    {
        QFETCH(QFont, font);
        const QFontMetrics metrics(font);
        const auto isMeasuredAlike = [&](const QString &text) {
            return tul::textSize(font, text)
                == QSize(metrics.horizontalAdvance(text), metrics.height());
        };
        for (const char *text : {"", "a word", "1 000", "e-e-e"})
            QVERIFY2(isMeasuredAlike(QString::fromLatin1(text)), text);
        QVERIFY(isMeasuredAlike(QString(200, QLatin1Char('8'))));
        QRandomGenerator random(3);
        Scene scene;
        scene.font = font;
        for (int i = 0; i < 200; ++i) {
            scene.colors = oneOf<Colors>(
                random, {{Qt::black, Qt::white}, {QColor(230, 240, 250), QColor(35, 38, 41)}});
            scene.ratio = oneOf(random, {1.0, 1.5, 2.0});
            scene.format
                = oneOf(random, {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied});
            scene.text = randomNumber(random);
            QVERIFY2(isMeasuredAlike(scene.text), qPrintable(scene.text));
            scene.namesBackground = i % 3 != 0;
            // Ink reaches out of the rectangle, where the background may be another one.
            scene.margin = oneOf(random, {0, 2});
            // From too low and too narrow up, and as wide as the text.
            const int wide = oneOf(random, {10, 40, 62, 80, metrics.horizontalAdvance(scene.text)});
            scene.rect = QRect(7, 5, wide, random.bounded(6, 32));
            scene.flags = oneOf<int>(
                random,
                {leftCentred, rightCentred, Qt::AlignLeft, Qt::AlignHCenter | Qt::AlignVCenter});
            scene.shift
                = oneOf<QPointF>(random, {{0, 0}, {3, 8}, {-30, -12}, {45, 25}, {0.5, 0.25}});
            QVERIFY(isDrawnAlike(scene));
        }
    }

    void unusualPaintersDrawAsTheyDoOtherwise_data()
    {
        QTest::addColumn<Prepare>("prepare");
        using P = QPainter *;
        const auto addRow = [](const char *name, const Prepare &p) { QTest::newRow(name) << p; };
        addRow("right to left", [](P p) { p->setLayoutDirection(Qt::RightToLeft); });
        addRow("translucent", [](P p) { p->setOpacity(0.4); });
        addRow("translucent pen", [](P p) { p->setPen(QColor(200, 0, 0, 100)); });
        addRow("adding", [](P p) { p->setCompositionMode(QPainter::CompositionMode_Multiply); });
        addRow("opaque", [](P p) { p->setBackgroundMode(Qt::OpaqueMode); });
        addRow("not smoothed", [](P p) { p->setRenderHint(QPainter::TextAntialiasing, false); });
        addRow("clipped",
               [](P p) { p->setClipRegion(QRegion(20, 8, 20, 9) + QRect(50, 12, 6, 9)); });
        addRow("round", [](P p) { p->setClipRegion(QRegion(30, 5, 35, 20, QRegion::Ellipse)); });
        addRow("twice as large", [](P p) { p->scale(2, 2); });
        addRow("mirrored", [](P p) { p->setTransform(QTransform(-1, 0, 0, 1, 80, 0)); });
        addRow("rotated", [](P p) { p->rotate(10); });
        addRow("window upside down", [](P p) { showWindow(p, QRect(0, 40, 90, -40)); });
        addRow("window of a quarter", [](P p) { showWindow(p, QRect(0, 0, 45, 20)); });
        addRow("own font", [](P p) { p->setFont(QFont(QStringLiteral("DejaVu Serif"), 8)); });
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
                QVERIFY(isDrawnAlike(scene));
            }
        }
    }

    void otherDevicesAreDrawnOnAsOtherwise()
    {
        Scene scene;
        for (const QImage::Format format :
             {QImage::Format_ARGB32, QImage::Format_RGB16, QImage::Format_Grayscale8,
              QImage::Format_RGB30, QImage::Format_Mono}) {
            scene.format = format;
            QVERIFY(isDrawnAlike(scene));
        }
        scene.format = QImage::Format_RGB32;
        QVERIFY(isDrawnAlike(scene, [&scene](QImage *fine, bool plain) {
            fine->setDotsPerMeterX(2 * fine->dotsPerMeterX());
            fine->setDotsPerMeterY(2 * fine->dotsPerMeterY());
            QPainter painter(fine);
            drawOn(&painter, scene, plain);
        }));
        QVERIFY(isDrawnAlike(scene, [&scene](QImage *image, bool plain) {
            QPicture picture;
            QPainter recorder(&picture);
            drawOn(&recorder, scene, plain);
            recorder.end();
            QPainter(image).drawPicture(0, 0, picture);
        }));
    }

    void colorsAndFontsMayAlternate()
    {
        // More of each than are kept at a time, and back again.
        QRandomGenerator random(4);
        Scene scene;
        for (int i = 0; i < 60; ++i) {
            scene.font = QFont(QStringLiteral("DejaVu Sans"), 6 + i % 11);
            scene.colors.text = QColor::fromHsv(i % 10 * 30, 255, 120);
            scene.colors.background = QColor::fromHsv(i % 3 * 90, 60, 250);
            scene.text = randomNumber(random);
            QVERIFY(isDrawnAlike(scene));
        }
    }
};

QTEST_MAIN(TestCellText)
#include "tst_celltext.moc"
