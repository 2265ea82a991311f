#include <tul-util-gui/mdatable/celltext_p.h>

#include <tul-util-gui/mdatable/numberglyphs_p.h>

#include <QFontMetrics>
#include <QGlyphRun>
#include <QPaintEngine>
#include <QPainter>

#include <cmath>

namespace
{

/// Whether the characters are those of a number that every parser takes: an optional minus, digits,
/// an optional fraction.
bool isPlainNumber(const QString &text)
{
    const int longest = 18; // digits that fit into 64 bits
    const QChar *at = text.constData();
    const QChar *const end = at + text.size();
    const auto skipDigits = [&at, end] {
        const QChar *const start = at;
        while (at != end && at->unicode() >= '0' && at->unicode() <= '9')
            ++at;
        return at != start;
    };
    if (text.size() > longest)
        return false;
    if (at != end && at->unicode() == '-')
        ++at;
    if (!skipDigits())
        return false;
    if (at == end)
        return true;
    return (at++)->unicode() == '.' && skipDigits() && at == end;
}

/// The image that a painter draws on, null when it is something else or needs blending.
const QImage *targetImage(const QPainter *painter)
{
    const QPaintEngine *engine = painter->paintEngine();
    if (painter->opacity() < 1.0
        || painter->compositionMode() != QPainter::CompositionMode_SourceOver
        || !painter->testRenderHint(QPainter::TextAntialiasing))
        return nullptr;
    const QPaintDevice *device = engine->paintDevice();
    return device->devType() == QInternal::Image ? static_cast<const QImage *>(device) : nullptr;
}

bool drawPictures(QPainter *painter, const QRect &rect, const QPointF &baseline,
                  const NumberGlyphs &glyphs, const QColor &background, NumberFont &font)
{
    if (!background.isValid() || background.alpha() != 255)
        return false;
    const QImage *image = targetImage(painter);
    if (!image
        || (image->format() != QImage::Format_RGB32
            && image->format() != QImage::Format_ARGB32_Premultiplied))
        return false;
    // Other ratios put logical pixels between device pixels.
    const qreal ratio = painter->deviceTransform().m11();
    if (ratio != 1.0 && ratio != 2.0)
        return false;
    return font.pictures(painter->pen().color().rgba(), background.rgba(), image->format(), ratio)
        .draw(painter, rect, baseline, glyphs);
}

bool drawNumber(QPainter *painter, const QRect &rect, int flags, const QString &text,
                const QColor &background)
{
    const bool vertical = flags & Qt::AlignVCenter;
    const bool right = flags & Qt::AlignRight;
    const int known = Qt::AlignLeft | Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine;
    if ((flags & ~known) != 0 || painter->layoutDirection() == Qt::RightToLeft
        || painter->worldTransform().type() > QTransform::TxTranslate
        || painter->viewTransformEnabled() || painter->backgroundMode() != Qt::TransparentMode
        || painter->paintEngine()->type() != QPaintEngine::Raster)
        return false;
    NumberFont &font = NumberFont::of(painter->font(), painter->device()->logicalDpiY());
    NumberGlyphs glyphs;
    const qreal top = rect.y() + (vertical ? (rect.height() - font.height()) / 2.0 : 0.0);
    const qreal baseline = top + font.ascent();
    // What does not fit is clipped by the toolkit, also at the sides when it is too high.
    if (baseline - font.inkAscent() < rect.y()
        || baseline + font.inkDescent() > rect.y() + rect.height()
        || (font.height() > rect.height() && font.overhangs()) || !font.lookUp(text, glyphs)
        || glyphs.width > rect.width())
        return false;
    const QPointF origin(right ? rect.x() + rect.width() - glyphs.width : rect.x(), baseline);
    // Positions before the first pixel are rounded differently for texts and for glyphs.
    const QPointF onDevice = painter->deviceTransform().map(origin);
    if (onDevice.x() < 1 || onDevice.y() < 1)
        return false;
    if (drawPictures(painter, rect, origin, glyphs, background, font))
        return true;
    QGlyphRun run;
    run.setRawFont(font.rawFont());
    run.setRawData(glyphs.indices.data(), glyphs.positions.data(), glyphs.count);
    painter->drawGlyphRun(origin, run);
    return true;
}

} // namespace

bool tul::isNumber(const QString &text)
{
    if (isPlainNumber(text))
        return true;
    bool ok = false;
    text.toLongLong(&ok, 10);
    if (!ok)
        text.toDouble(&ok);
    return ok;
}

QSize tul::textSize(const QFont &font, const QString &text)
{
    const NumberFont &numbers = NumberFont::of(font, 0);
    const qreal width = numbers.width(text);
    return {width < 0 ? QFontMetrics(font).horizontalAdvance(text)
                      : static_cast<int>(std::floor(width + 0.5)),
            numbers.height()};
}

void tul::drawText(QPainter *painter, const QRect &rect, int flags, const QString &text,
                   const QColor &background)
{
    if (!drawNumber(painter, rect, flags, text, background))
        painter->drawText(rect, flags, text);
}
