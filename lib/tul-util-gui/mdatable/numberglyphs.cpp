#include <tul-util-gui/mdatable/numberglyphs_p.h>

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QGuiApplication>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

const std::size_t keptFonts = 8;
const std::size_t keptPictures = 8; // of one font
const int blockSize = 4; // pixels

QString alphabet()
{
    return QStringLiteral("0123456789+-.,e");
}

/// The place of a character in the alphabet, -1 for others.
int alphabetIndex(QChar character)
{
    const ushort code = character.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    switch (code) {
    case '+':
        return 10;
    case '-':
        return 11;
    case '.':
        return 12;
    case ',':
        return 13;
    case 'e':
        return 14;
    default:
        return -1;
    }
}

QList<QGlyphRun> laidOut(const QString &text, const QFont &font)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    return layout.glyphRuns();
}

/// The element for which `isWanted` holds, moved to the front of a short list of what was used
/// last; made by `make` when there is none, at the cost of the one used longest ago.
template<typename List, typename IsWanted, typename Make>
auto &usedLast(List &list, std::size_t kept, IsWanted isWanted, Make make)
{
    if (!list.empty() && isWanted(list.front()))
        return *list.front();
    const auto found = std::find_if(list.begin(), list.end(), isWanted);
    if (found == list.end()) {
        if (list.size() == kept)
            list.pop_back();
        list.insert(list.begin(), make());
    } else {
        std::rotate(list.begin(), found, found + 1);
    }
    return *list.front();
}

const QRgb *constPixels(const QImage &image, int row)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(row));
}

/// Smallest rectangle around what is not background.
QRect inkOf(const QImage &image, QRgb background)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb *row = constPixels(image, y);
        for (int x = 0; x < image.width(); ++x) {
            if (row[x] != background)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

/// Whether `image` is `original` moved by so many pixels.
bool isShifted(const QImage &image, const QImage &original, int x, int y)
{
    const QSize size = image.size() - QSize(x, y);
    return image.copy(QRect(QPoint(x, y), size)) == original.copy(QRect(QPoint(0, 0), size));
}

/// Copies rows of as many blocks; the compiler unrolls the inner loop.
template<int blocks, typename Block>
void copyRows(const Block *from, QRgb *to, int rows, int stride)
{
    for (int row = 0; row < rows; ++row) {
        for (int block = 0; block < blocks; ++block)
            std::memcpy(to + block * blockSize, from++, sizeof(Block));
        to += stride;
    }
}

/// The fonts used last. They are dropped before the application goes, of which a process may have
/// several one after the other, and when other fonts were installed.
class FontCache
{
public:
    static FontCache &get()
    {
        static FontCache cache;
        if (!cache.m_context)
            cache.attach();
        return cache;
    }

    std::vector<std::unique_ptr<NumberFont>> fonts;

private:
    FontCache() = default;
    // Also run when the library is unloaded while the application goes on.
    ~FontCache() { qRemovePostRoutine(&FontCache::detach); }

    void attach()
    {
        qAddPostRoutine(&FontCache::detach);
        m_context = std::make_unique<QObject>();
        QObject::connect(qGuiApp, &QGuiApplication::fontDatabaseChanged, m_context.get(),
                         [this] { fonts.clear(); });
    }

    static void detach()
    {
        get().fonts.clear();
        get().m_context.reset();
    }

    std::unique_ptr<QObject> m_context; // ends the connection to it
};

} // namespace

NumberPictures::NumberPictures(const QRawFont &font, const QVector<quint32> &glyphs,
                               const QVector<qreal> &advances, QRgb text, QRgb background,
                               QImage::Format format, qreal ratio)
    : m_font(font)
    , m_text(text)
    , m_background(background)
    , m_format(format)
    , m_ratio(ratio)
{
    if (glyphs.isEmpty() || !roundsRows(glyphs.constFirst()))
        return;
    const std::vector<int> variants = findVariants(glyphs.constFirst());
    std::vector<std::vector<QImage>> images;
    std::vector<std::vector<QRect>> inks;
    QRect rows;
    for (const int fraction : variants) {
        images.emplace_back();
        inks.emplace_back();
        for (const quint32 glyph : glyphs) {
            images.back().push_back(drawn(glyph, QPointF(qreal(fraction) / fractions, 0)));
            const QRect ink = inkOf(images.back().back(), background);
            inks.back().push_back(ink);
            rows |= QRect(0, ink.top(), 1, ink.height());
        }
    }
    m_rows = rows.height();
    m_widestGap = 1;
    int largestLeft = 0;
    for (std::size_t i = 0; i < inks.front().size(); ++i) {
        const int origin = images.front()[i].width() / 2;
        const QRect &ink = inks.front()[i];
        const int advance = static_cast<int>(std::ceil(advances.at(static_cast<int>(i)) * ratio));
        m_widestGap = std::max(m_widestGap, origin + advance - ink.right());
        largestLeft = std::max(largestLeft, ink.left() - origin);
    }
    m_widestGap += largestLeft;
    for (std::size_t variant = 0; variant < variants.size(); ++variant) {
        m_pictures.emplace_back();
        for (std::size_t i = 0; i < images[variant].size(); ++i) {
            const QImage &image = images[variant][i];
            const QRect &ink = inks[variant][i];
            m_top = rows.top() - image.height() / 2;
            Picture picture{ink.left() - image.width() / 2, ink.width(), 0, {}};
            picture.blocks = (ink.width() + m_widestGap + blockSize - 1) / blockSize;
            for (int row = 0; row < m_rows; ++row) {
                const QRgb *from = constPixels(image, rows.top() + row) + ink.left();
                for (int x = 0; x < picture.blocks * blockSize; ++x) {
                    if (x % blockSize == 0)
                        picture.rows.emplace_back();
                    picture.rows.back()[static_cast<std::size_t>(x % blockSize)]
                        = x < ink.width() ? from[x] : background;
                }
            }
            m_pictures.back().push_back(std::move(picture));
        }
    }
}

bool NumberPictures::draw(QPainter *painter, const QRect &rect, const QPointF &baseline,
                          const NumberGlyphs &glyphs)
{
    if (m_pictures.empty() || glyphs.count == 0)
        return false;
    const QTransform transform = painter->deviceTransform();
    const qreal x = transform.dx() + m_ratio * baseline.x();
    const int y
        = static_cast<int>(std::floor(transform.dy() + m_ratio * baseline.y() + 0.5)) + m_top;

    struct Part {
        int start;
        const Picture *picture;
        int end() const { return start + picture->width; }
    };
    std::array<Part, NumberGlyphs::capacity> parts{};
    const auto count = static_cast<std::size_t>(glyphs.count);
    for (std::size_t i = 0; i < count; ++i) {
        const qreal position = x + m_ratio * glyphs.positions[i].x();
        const qreal pixel = std::floor(position);
        const Placement &placement
            = m_placements[static_cast<std::size_t>((position - pixel) * fractions)];
        const Picture &picture
            = m_pictures[placement.variant][static_cast<std::size_t>(glyphs.characters[i])];
        parts[i] = {static_cast<int>(pixel) + placement.shift + picture.left, &picture};
        const int gap = i > 0 ? parts[i].start - parts[i - 1].end() : 0;
        if (gap < 0 || gap > m_widestGap)
            return false; // the ink of neighbours overlaps, or is unusually far apart
    }

    const int start = parts[0].start;
    const int width = parts[count - 1].end() - start;
    if (start < transform.dx() + m_ratio * rect.left()
        || start + width > transform.dx() + m_ratio * (rect.left() + rect.width()))
        return false; // the ink lies partly on something else
    growComposed(width);
    // In this order: each picture is wider than its ink and ends behind the start of the next one.
    for (std::size_t i = 0; i < count; ++i)
        compose(*parts[i].picture, parts[i].start - start);
    painter->drawImage(QPointF((start - transform.dx()) / m_ratio, (y - transform.dy()) / m_ratio),
                       m_composed, QRectF(0, 0, width, m_rows));
    return true;
}

void NumberPictures::growComposed(int width)
{
    if (width <= m_composedWidth)
        return;
    m_composedWidth = width;
    m_composed = QImage(width + m_widestGap + blockSize, m_rows, m_format);
    m_composed.setDevicePixelRatio(m_ratio);
    // clazy:exclude=detaching-member
    m_composedPixels = reinterpret_cast<QRgb *>(m_composed.bits());
}

void NumberPictures::compose(const Picture &picture, int offset)
{
    QRgb *to = m_composedPixels + offset;
    const Block *from = picture.rows.data();
    const int stride = m_composed.width();
    switch (picture.blocks) {
    case 1:
        return copyRows<1>(from, to, m_rows, stride);
    case 2:
        return copyRows<2>(from, to, m_rows, stride);
    case 3:
        return copyRows<3>(from, to, m_rows, stride);
    case 4:
        return copyRows<4>(from, to, m_rows, stride);
    default:
        for (int row = 0; row < m_rows; ++row, from += picture.blocks, to += stride)
            std::memcpy(to, from, static_cast<std::size_t>(picture.blocks) * sizeof(Block));
    }
}

/// A glyph on background, its origin in the middle, shifted by less than a pixel.
QImage NumberPictures::drawn(quint32 glyph, const QPointF &shift) const
{
    const QRectF ink = m_font.boundingRect(glyph);
    const qreal reach = std::max({std::abs(ink.left()), std::abs(ink.right()), std::abs(ink.top()),
                                  std::abs(ink.bottom()), m_font.pixelSize()});
    const int half = static_cast<int>(std::ceil((reach + 2) * m_ratio));
    QImage image(2 * half, 2 * half, m_format);
    image.setDevicePixelRatio(m_ratio);
    image.fill(m_background);
    QPainter painter(&image);
    painter.setPen(QColor::fromRgba(m_text));
    const QPointF origin(0, 0);
    QGlyphRun run;
    run.setRawFont(m_font);
    run.setRawData(&glyph, &origin, 1);
    painter.drawGlyphRun((QPointF(half, half) + shift) / m_ratio, run);
    return image;
}

/// Whether glyphs are drawn on whole rows, the nearest ones.
bool NumberPictures::roundsRows(quint32 glyph) const
{
    const QImage image = drawn(glyph, QPointF());
    return drawn(glyph, QPointF(0, 0.5 - 1.0 / fractions)) == image
        && isShifted(drawn(glyph, QPointF(0, 0.5)), image, 0, 1);
}

/// Tries all positions within a pixel: fills in the placements and returns, for each picture that
/// the engine has, the first position that shows it. Empty when there are too many.
std::vector<int> NumberPictures::findVariants(quint32 glyph)
{
    const std::size_t mostVariants = 4;
    std::vector<int> variants;
    std::vector<QImage> images;
    for (int fraction = 0; fraction < fractions; ++fraction) {
        const QImage image = drawn(glyph, QPointF(qreal(fraction) / fractions, 0));
        Placement &placement = m_placements[static_cast<std::size_t>(fraction)];
        const auto found = std::find(images.begin(), images.end(), image);
        if (found != images.end()) {
            placement.variant = static_cast<std::size_t>(found - images.begin());
        } else if (!images.empty() && isShifted(image, images.front(), 1, 0)) {
            placement.shift = 1;
        } else if (variants.size() == mostVariants) {
            return {};
        } else {
            placement.variant = variants.size();
            variants.push_back(fraction);
            images.push_back(image);
        }
    }
    return variants;
}

NumberFont &NumberFont::of(const QFont &font, int dpi)
{
    return usedLast(
        FontCache::get().fonts, keptFonts,
        [&](const auto &known) { return known->isFor(font, dpi); },
        [&] { return std::make_unique<NumberFont>(font, dpi); });
}

NumberFont::NumberFont(const QFont &font, int dpi)
    : m_font(font)
    , m_dpi(dpi)
{
    const QFontMetricsF metrics(font);
    m_height = qRound(metrics.height());
    m_ascent = qRound(metrics.ascent());
    const QString characters = alphabet();
    for (const QChar character : characters)
        m_advances.append(metrics.horizontalAdvance(character));
    const bool stretched
        = font.stretch() != QFont::AnyStretch && font.stretch() != QFont::Unstretched;
    const bool plain = !font.underline() && !font.overline() && !font.strikeOut() && !stretched
        && font.capitalization() == QFont::MixedCase;
    m_usable = plain && readGlyphs() && placesPairsLikeSingles();
}

qreal NumberFont::width(const QString &text) const
{
    if (!m_usable)
        return -1;
    qreal width = 0;
    for (const QChar character : text) {
        const int index = alphabetIndex(character);
        if (index < 0)
            return -1;
        width += m_advances.at(index);
    }
    return width;
}

bool NumberFont::lookUp(const QString &text, NumberGlyphs &glyphs) const
{
    if (!m_usable || text.size() > NumberGlyphs::capacity)
        return false;
    for (const QChar character : text) {
        const int index = alphabetIndex(character);
        if (index < 0)
            return false;
        const auto place = static_cast<std::size_t>(glyphs.count++);
        glyphs.characters[place] = index;
        glyphs.indices[place] = m_indices.at(index);
        glyphs.positions[place] = QPointF(glyphs.width, 0);
        glyphs.width += m_advances.at(index);
    }
    return true;
}

NumberPictures &NumberFont::pictures(QRgb text, QRgb background, QImage::Format format, qreal ratio)
{
    return usedLast(
        m_pictures, keptPictures,
        [&](const auto &known) { return known->isFor(text, background, format, ratio); },
        [&] {
            return std::make_unique<NumberPictures>(m_rawFont, m_indices, m_advances, text,
                                                    background, format, ratio);
        });
}

bool NumberFont::isFor(const QFont &font, int dpi) const
{
    return m_dpi == dpi && (m_font.isCopyOf(font) || m_font == font);
}

bool NumberFont::readGlyphs()
{
    const QList<QGlyphRun> runs = laidOut(alphabet(), m_font);
    if (runs.size() != 1)
        return false;
    m_rawFont = runs.constFirst().rawFont();
    m_indices = runs.constFirst().glyphIndexes();
    if (m_indices.size() != m_advances.size())
        return false;
    for (int i = 0; i < m_indices.size(); ++i) {
        const QRectF ink = m_rawFont.boundingRect(m_indices.at(i));
        m_overhangs = m_overhangs || ink.left() < 0 || ink.right() > m_advances.at(i);
        m_inkAscent = std::max(m_inkAscent, 1 - ink.top());
        m_inkDescent = std::max(m_inkDescent, 1 + ink.bottom());
    }
    return true;
}

/// Kerning and ligatures make a pair of characters something else than the two side by side: lays
/// out every pair and compares.
bool NumberFont::placesPairsLikeSingles() const
{
    QString pairs;
    const QString characters = alphabet();
    for (const QChar first : characters) {
        for (const QChar second : characters)
            pairs.append(first).append(second);
    }
    const QList<QGlyphRun> runs = laidOut(pairs, m_font);
    if (runs.size() != 1)
        return false;
    const QVector<quint32> indices = runs.constFirst().glyphIndexes();
    const QVector<QPointF> positions = runs.constFirst().positions();
    if (indices.size() != pairs.size())
        return false;
    qreal x = 0;
    for (int i = 0; i < pairs.size(); ++i) {
        const int index = alphabetIndex(pairs.at(i));
        if (indices.at(i) != m_indices.at(index) || std::abs(positions.at(i).x() - x) > 1.0 / 128)
            return false;
        x += m_advances.at(index);
    }
    return true;
}
