#include <tul-util-gui/widgets/translucency_p.h>

#include <QColormap>

bool tul::displayHasManyColours()
{
    return QColormap::instance().depth() >= 16;
}

QColor tul::blended(const QColor &colour, const QColor &base)
{
    const int alpha = colour.alpha();
    const auto channel
        = [alpha](int over, int under) { return (over * alpha + under * (255 - alpha)) / 255; };
    return {channel(colour.red(), base.red()), channel(colour.green(), base.green()),
            channel(colour.blue(), base.blue())};
}

QSize tul::devicePixels(const QSize &size, qreal ratio)
{
    return (QSizeF(size) * ratio).toSize();
}

QImage tul::blankImage(const QSize &size, qreal ratio, const QColor &background)
{
    const QSize pixels = devicePixels(size, ratio);
    if (pixels.isEmpty())
        return {};
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.setDevicePixelRatio(ratio);
    image.fill(background);
    return image;
}
