#pragma once

#include <QFont>
#include <QImage>
#include <QPointF>
#include <QRawFont>
#include <QVector>

#include <array>
#include <memory>
#include <vector>

class QPainter;

/// The glyphs of a short text and how far apart they stand, in logical pixels from the first.
struct NumberGlyphs {
    static constexpr int capacity = 24;

    std::array<int, capacity> characters; ///< indices into the alphabet of numbers
    std::array<quint32, capacity> indices; ///< of the glyphs in the font
    std::array<QPointF, capacity> positions;
    int count = 0;
    qreal width = 0;
};

/// Pictures of the characters of numbers in one font and colour on one background, from which a
/// number is put together by copying: blending its glyphs one by one costs several times as much.
class NumberPictures
{
public:
    NumberPictures(const QRawFont &font, const QVector<quint32> &glyphs,
                   const QVector<qreal> &advances, QRgb text, QRgb background,
                   QImage::Format format, qreal ratio);

    bool isFor(QRgb text, QRgb background, QImage::Format format, qreal ratio) const
    {
        return m_text == text && m_background == background && m_format == format
            && m_ratio == ratio;
    }

    /// Draws the text with its origin at `baseline` into a rectangle that has nothing but
    /// background (logical pixels). False when that cannot give the pixels that the toolkit's own
    /// drawing gives.
    bool draw(QPainter *painter, const QRect &rect, const QPointF &baseline,
              const NumberGlyphs &glyphs);

private:
    /// Which picture of a character stands for a horizontal position between two pixels. Engines
    /// round to whole pixels, or have a few pictures for positions in between.
    struct Placement {
        std::size_t variant = 0;
        int shift = 0; // 1 where the position is rounded to the next pixel
    };
    /// Rows are copied by blocks of pixels: one processor instruction each way.
    using Block = std::array<QRgb, 4>;
    struct Picture {
        int left = 0; // pixels from the origin of the glyph to its ink
        int width = 0; // of the ink
        int blocks = 0; // of each row, which background fills up
        std::vector<Block> rows;
    };
    static constexpr int fractions = 64; // of a pixel: what the toolkit distinguishes

    void growComposed(int width);
    void compose(const Picture &picture, int offset);
    QImage drawn(quint32 glyph, const QPointF &shift) const;
    bool roundsRows(quint32 glyph) const;
    std::vector<int> findVariants(quint32 glyph);

    const QRawFont m_font;
    const QRgb m_text;
    const QRgb m_background;
    const QImage::Format m_format;
    const qreal m_ratio;
    int m_top = 0; // rows from the baseline to the first row of ink
    int m_rows = 0;
    int m_widestGap = 0; // pixels between the ink of two neighbours
    std::array<Placement, fractions> m_placements;
    std::vector<std::vector<Picture>> m_pictures; // by variant and place in the alphabet
    QImage m_composed; // the text that is being put together
    QRgb *m_composedPixels = nullptr; // its pixels; nobody shares them
    int m_composedWidth = 0;
};

/// What is known of the characters of numbers in one font: a text made of them is measured and
/// drawn without laying it out, with the same result.
class NumberFont
{
public:
    /// The one for a font at a resolution (dots per inch of the paint device; 0 for the screen's).
    /// It stays valid until the next call. GUI thread only.
    static NumberFont &of(const QFont &font, int dpi);

    NumberFont(const QFont &font, int dpi);

    int height() const { return m_height; }
    int ascent() const { return m_ascent; }

    /// What the glyphs reach above and below the baseline, with a pixel to spare.
    qreal inkAscent() const { return m_inkAscent; }
    qreal inkDescent() const { return m_inkDescent; }

    /// Whether glyphs reach out of their advance widths.
    bool overhangs() const { return m_overhangs; }

    const QRawFont &rawFont() const { return m_rawFont; }

    /// The width of a text made of the characters of numbers, -1 for others.
    qreal width(const QString &text) const;

    /// Looks up the glyphs of such a text; false for others and longer ones.
    bool lookUp(const QString &text, NumberGlyphs &glyphs) const;

    /// The pictures for these colours, which stay valid until the next call.
    NumberPictures &pictures(QRgb text, QRgb background, QImage::Format format, qreal ratio);

private:
    bool isFor(const QFont &font, int dpi) const;
    bool readGlyphs();
    bool placesPairsLikeSingles() const;

    const QFont m_font;
    const int m_dpi;
    int m_height;
    int m_ascent;
    qreal m_inkAscent = 0;
    qreal m_inkDescent = 0;
    bool m_overhangs = false;
    QRawFont m_rawFont;
    QVector<quint32> m_indices;
    QVector<qreal> m_advances;
    std::vector<std::unique_ptr<NumberPictures>> m_pictures; // the one used last in front
    bool m_usable; // glyphs neither depend on their neighbours nor come from several fonts
};
