#pragma once

#include <QColor>
#include <QImage>

namespace tul
{

/// Whether the display shows enough colours, at least 16 bits of them, for translucent painting and
/// for animations to look right.
bool displayHasManyColours();

/// What a display of few colours shows in place of a translucent `colour` over an opaque `base`.
QColor blended(const QColor &colour, const QColor &base);

/// How translucent colours are painted: as they are, or blended beforehand.
class ColourBlend
{
public:
    ColourBlend(bool translucent, const QColor &base)
        : m_translucent(translucent)
        , m_base(base)
    {
    }

    /// What the picture begins with.
    QColor background() const { return m_translucent ? QColor(Qt::transparent) : m_base; }
    void setBase(const QColor &base) { m_base = base; }

    QColor operator()(const QColor &colour) const
    {
        return m_translucent ? colour : blended(colour, m_base);
    }
    QColor white(int alpha) const { return (*this)(QColor(255, 255, 255, alpha)); }
    QColor black(int alpha) const { return (*this)(QColor(0, 0, 0, alpha)); }

private:
    const bool m_translucent;
    QColor m_base;
};

/// The number of device pixels for `size` logical ones.
QSize devicePixels(const QSize &size, qreal ratio);

/// An image of `size` logical pixels to paint on, filled with `background`; null when the size is
/// empty or beyond all memory.
QImage blankImage(const QSize &size, qreal ratio, const QColor &background);

} // namespace tul
