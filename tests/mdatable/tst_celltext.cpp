#include <support/literal.h>
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

namespace
{

using Way = std::function<void(QPainter *)>;

const QRect cell(7, 5, 72, 26);
const int rightCentred = Qt::AlignRight | Qt::AlignVCenter;
const int leftCentred = Qt::AlignLeft | Qt::AlignVCenter;

struct Scene {
    QString text;
    QRect rect = cell;
    int margin = 2; // of cells, left and right of their text
    int flags = rightCentred;
    QColor color = Qt::black;
    QColor background = Qt::white;
    bool namesBackground = true;
    QImage::Format format = QImage::Format_ARGB32_Premultiplied;
    qreal ratio = 1;
    int fineness = 1; // of the image's dots
    bool isRecorded = false; // in a picture, which is then drawn
    QPointF shift;
};

Way inFont(const std::function<void(QFont &)> &change)
{
    return [change](QPainter *painter) {
        QFont font = painter->font();
        change(font);
        painter->setFont(font);
    };
}

void showWindow(QPainter *painter, const QRect &window)
{
    painter->setWindow(window);
    painter->fillRect(cell.adjusted(-2, 0, 2, 0), Qt::white); // where it is now
}

void drawOn(QPainter *painter, const Scene &scene, const Way &prepare, bool plain)
{
    painter->setFont(QFont("DejaVu Sans"_s, 10));
    painter->translate(scene.shift);
    painter->fillRect(scene.rect.adjusted(-scene.margin, 0, scene.margin, 0), scene.background);
    painter->setPen(scene.color);
    prepare(painter);
    if (plain)
        painter->drawText(scene.rect, scene.flags, scene.text);
    else
        tul::drawText(painter, scene.rect, scene.flags, scene.text,
                      scene.namesBackground ? scene.background : QColor());
}

// Around the cell there is another colour, which neither way may touch unless both do.
QImage drawn(const Scene &scene, const Way &prepare, bool plain)
{
    QImage image(QSize(90, 40) * scene.ratio, scene.format);
    image.setDevicePixelRatio(scene.ratio);
    image.setDotsPerMeterX(scene.fineness * image.dotsPerMeterX());
    image.setDotsPerMeterY(scene.fineness * image.dotsPerMeterY());
    image.fill(QColor(40, 160, 90));
    QPicture picture;
    QPainter painter;
    painter.begin(scene.isRecorded ? static_cast<QPaintDevice *>(&picture) : &image);
    drawOn(&painter, scene, prepare, plain);
    painter.end();
    if (scene.isRecorded)
        QPainter(&image).drawPicture(0, 0, picture);
    return image;
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
        QRandomGenerator random(1);
        const QString characters = "0123456789012345678901234567890--..+e, "_s;
        for (int i = 0; i < 20000; ++i) {
            QString text;
            for (int length = random.bounded(21); length > 0; --length)
                text.append(characters.at(random.bounded(characters.size())));
            QVERIFY2(tul::isNumber(text) == isTaken(text), qPrintable(text));
        }
    }

    void textIsMeasuredAndDrawnAsByTheToolkit()
    {
        using F = QFont &;
        using P = QPainter *;
        const QVector<Way> ways{
            [](P) {},
            inFont([](F f) { f.setPointSize(7); }),
            inFont([](F f) { f.setFamily("DejaVu Sans Mono"_s); }),
            inFont([](F f) { f = QFont("DejaVu Sans Mono"_s, 12, -1, true); }),
            inFont([](F f) { f = QFont("DejaVu Serif"_s, 12, -1, true); }),
            inFont([](F f) { f.setBold(true); }),
            inFont([](F f) { f.setUnderline(true); }),
            inFont([](F f) { f.setCapitalization(QFont::SmallCaps); }),
            inFont([](F f) { f.setLetterSpacing(QFont::AbsoluteSpacing, 6); }),
            inFont([](F f) { f.setLetterSpacing(QFont::AbsoluteSpacing, -3); }),
            inFont([](F f) { f.setStretch(140); }),
            inFont([](F f) { f.setHintingPreference(QFont::PreferNoHinting); }),
            inFont([](F f) { f.setStyleStrategy(QFont::NoAntialias); }),
            inFont([](F f) { f.setPointSizeF(9.3); }),
            [](P p) { p->setLayoutDirection(Qt::RightToLeft); },
            [](P p) { p->setOpacity(0.4); },
            [](P p) { p->setPen(QColor(200, 0, 0, 100)); },
            [](P p) { p->setCompositionMode(QPainter::CompositionMode_Multiply); },
            [](P p) { p->setBackgroundMode(Qt::OpaqueMode); },
            [](P p) { p->setRenderHint(QPainter::TextAntialiasing, false); },
            [](P p) { p->setClipRegion(QRegion(20, 8, 20, 9) + QRect(50, 12, 6, 9)); },
            [](P p) { p->setClipRegion(QRegion(30, 5, 35, 20, QRegion::Ellipse)); },
            [](P p) { p->scale(2, 2); },
            [](P p) { p->setTransform(QTransform(-1, 0, 0, 1, 80, 0)); },
            [](P p) { p->rotate(10); },
            [](P p) { showWindow(p, QRect(0, 40, 90, -40)); },
            [](P p) { showWindow(p, QRect(0, 0, 45, 20)); },
        };
        QRandomGenerator random(3);
        // Fonts and colours alternate, more of them than are kept at a time.
        for (int i = 0; i < 200 * ways.size(); ++i) {
            const Way &way = ways.at(i / 4 % ways.size());
            QImage image(1, 1, QImage::Format_RGB32);
            QPainter painter(&image);
            way(&painter);
            const QFontMetrics metrics(painter.font());
            const auto isMeasuredAlike = [&](const QString &text) {
                return tul::textSize(painter.font(), text)
                    == QSize(metrics.horizontalAdvance(text), metrics.height());
            };
            Scene scene;
            scene.text = randomNumber(random);
            for (const auto &text : {""_s, "1 000"_s, QString(200, QLatin1Char('8')), scene.text})
                QVERIFY2(isMeasuredAlike(text), qPrintable(text));
            const bool isDark = random.bounded(2) == 0;
            const int hue = i % 10 * 30;
            scene.color = isDark ? QColor(230, 240, 250) : QColor::fromHsv(hue, 255, i % 2 * 120);
            scene.background = isDark ? QColor(35, 38, 41) : QColor::fromHsv(hue, i % 3 * 30, 250);
            scene.namesBackground = i % 3 != 0;
            scene.ratio = oneOf(random, {1.0, 1.5, 2.0});
            scene.format = oneOf(random,
                                 {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied,
                                  QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied,
                                  QImage::Format_ARGB32, QImage::Format_RGB16,
                                  QImage::Format_Grayscale8, QImage::Format_Mono});
            scene.fineness = 1 + (i % 37 == 0);
            scene.isRecorded = i % 41 == 0;
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
            QVERIFY2(drawn(scene, way, false) == drawn(scene, way, true),
                     qPrintable("%1: %2"_s.arg(i).arg(scene.text)));
        }
    }
};

QTEST_MAIN(TestCellText)
#include "tst_celltext.moc"
