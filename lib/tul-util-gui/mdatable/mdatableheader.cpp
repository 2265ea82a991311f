#include <tul-util-gui/mdatable/mdatableheader_p.h>

#include <tul-util-gui/mdatable/celltext_p.h>
#include <tul-util-gui/mdatable/globalstrut_p.h>
#include <tul-util-gui/mdatable/mdatable.h>
#include <tul-util-gui/mdatable/mdatable_p.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QWheelEvent>

#include <algorithm>

namespace
{

const int labelMargin = 6; // pixels added to the width of names and labels
const int bandReserve = 8; // pixels added to the height of a line of the top header
const int nameReserve = 4; // pixels by which a name's rectangle exceeds its band
const int minimumLineWidth = 40; // of the left header
const int minimumColumnWidth = 30;
// The style is given rectangles that end at most this far outside the header: it may draw one
// through a pixmap of its size, which a block of millions of pixels must not make it do. Single
// sections are whole unless they are huge, because a gradient follows the rectangle.
const int leastClipMargin = 16;
const int mostClipMargin = 1024;

} // namespace

MDATableHeader::MDATableHeader(MDATable *table, Qt::Orientation orientation, long long count,
                               QWidget *parent, const QString &objectName)
    : QWidget(parent)
    , m_table(table)
    , m_nameBand(fontMetrics().height())
    , m_count(std::max(count, 0LL))
    , m_orientation(orientation)
{
    setObjectName(objectName);
    setBackgroundRole(QPalette::Button);
    setAutoFillBackground(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    m_ready = true;
}

void MDATableHeader::setCount(long long count)
{
    m_count = std::max(count, 0LL);
    recomputeMetrics();
}

void MDATableHeader::setLines(int lines)
{
    if (lines < 0)
        return;
    m_lines.resize(lines);
    recomputeMetrics();
}

void MDATableHeader::setLineNameAndBounds(int line, const QString &name, long long min,
                                          long long max)
{
    if (line < 0 || line >= m_lines.size())
        return;
    HeaderLine &changed = m_lines[line]; // clazy:exclude=detaching-member
    changed.name = name;
    changed.min = min;
    changed.max = max;
    recomputeMetrics();
}

void MDATableHeader::setSectionSize(int size)
{
    const int newSize = std::max(size, 0);
    if (m_sectionSize == newSize)
        return;
    m_sectionSize = newSize;
    update();
    Q_EMIT sectionSizeChanged();
}

int MDATableHeader::sectionPos(long long section) const
{
    return tul::pixelProduct(m_hidden.visibleIndex(section), m_sectionSize);
}

long long MDATableHeader::sectionAt(long long pixel) const
{
    if (pixel < 0 || m_sectionSize == 0)
        return -1;
    const long long section = m_hidden.sectionOfVisibleIndex(pixel / m_sectionSize);
    return section < m_count ? section : -1;
}

int MDATableHeader::contentLength() const
{
    return sectionPos(m_count);
}

void MDATableHeader::hideSections(long long from, long long to)
{
    if (!clampRange(from, to) || !m_hidden.hide(from, to))
        return;
    updateFrom(from);
}

void MDATableHeader::showSections(long long from, long long to)
{
    if (!clampRange(from, to) || !m_hidden.show(from, to))
        return;
    updateFrom(from);
}

long long MDATableHeader::visibleFrom(long long section) const
{
    const long long visible = m_hidden.nextVisible(std::max(section, 0LL));
    return visible < m_count ? visible : -1;
}

long long MDATableHeader::visibleUpTo(long long section) const
{
    return section < 0 ? -1 : m_hidden.previousVisible(std::min(section, m_count - 1));
}

void MDATableHeader::reset()
{
    m_hidden.clear();
    m_lines.clear();
    m_count = 0;
    recomputeMetrics();
}

QSize MDATableHeader::sizeHint() const
{
    const QSize size = isHorizontal() ? QSize(contentLength(), fixedExtent())
                                      : QSize(fixedExtent(), contentLength());
    return size.expandedTo(tul::globalStrut());
}

void MDATableHeader::setOffset(int pos)
{
    const int oldOffset = m_offset;
    m_offset = contentLength() < length() ? 0 : pos;
    if (m_offset == oldOffset)
        return;
    // First of all: labels are repainted at once, and with them whatever else waits for it, as the
    // cells do where they will be.
    m_table->d->layout.scrollCells();
    scrollLabels(oldOffset);
}

void MDATableHeader::paintEvent(QPaintEvent *event)
{
    if (m_sectionSize == 0 || m_lines.isEmpty())
        return;
    const QRect clip = event->rect();
    const int edge = isHorizontal() ? clip.left() : clip.top();
    const int end = isHorizontal() ? clip.right() : clip.bottom();
    long long first = sectionAt(static_cast<long long>(m_offset) + edge);
    if (first == -1) {
        if (edge > 0)
            return;
        first = m_offset > 0 ? m_count : 0; // behind all blocks: only the names show
    }

    QPainter painter(this);
    painter.setLayoutDirection(Qt::LeftToRight); // labels are placed by the header, like the cells
    painter.setPen(palette().color(QPalette::ButtonText));
    QStyleOptionHeader option;
    option.palette = palette();
    option.orientation = m_orientation;
    option.state = QStyle::State_Off | QStyle::State_Raised;
    if (isHorizontal())
        option.state |= QStyle::State_Horizontal;
    if (isEnabled())
        option.state |= QStyle::State_Enabled;
    for (int line = 0; line < m_lines.size(); ++line) {
        paintLine(&painter, line, first, end, &option);
        paintName(&painter, line, &option);
    }
}

void MDATableHeader::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    // By design: the width counts for both orientations. A header of rows that is wider than its
    // rows are long together goes back to the start, and the table's scroll bar with it.
    if (contentLength() < width())
        m_offset = 0;
}

void MDATableHeader::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int pixel = isHorizontal() ? event->pos().x() : event->pos().y();
    m_pressed = sectionAt(static_cast<long long>(m_offset) + pixel);
    if (m_pressed != -1)
        Q_EMIT pressed(m_pressed);
}

void MDATableHeader::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int pixel = isHorizontal() ? event->pos().x() : event->pos().y();
    const long long section
        = rect().contains(event->pos()) ? sectionAt(static_cast<long long>(m_offset) + pixel) : -1;
    const bool isClick = section != -1 && section == m_pressed;
    m_pressed = -1;
    const QPointer<MDATableHeader> self(this);
    if (section != -1)
        Q_EMIT released(section);
    if (isClick && self)
        Q_EMIT clicked(section);
}

/// Scrolls the cells, as over them. Hosts that filter the viewport's events find the pointer where
/// it is.
void MDATableHeader::wheelEvent(QWheelEvent *event)
{
    QWidget *const viewport = m_table->viewport();
    const QPointF place
        = event->position() + mapTo(m_table, QPoint()) - viewport->mapTo(m_table, QPoint());
    QWheelEvent overCells(place, event->globalPosition(), event->pixelDelta(), event->angleDelta(),
                          event->buttons(), event->modifiers(), event->phase(), event->inverted(),
                          event->source());
    overCells.setTimestamp(event->timestamp());
    QCoreApplication::sendEvent(viewport, &overCells);
    event->setAccepted(overCells.isAccepted());
}

/// A rectangle from its extent along the header, clipped to what the style may be given, and across
/// it.
QRect MDATableHeader::rectAt(long long start, long long end, int crossStart, int crossLength) const
{
    const long long margin = std::clamp(m_sectionSize, leastClipMargin, mostClipMargin);
    const auto clipped = [this, margin](long long pixel) {
        return static_cast<int>(std::clamp(pixel, -margin, length() + margin));
    };
    const int from = clipped(start);
    const int to = clipped(end);
    return isHorizontal() ? QRect(from, crossStart, to - from, crossLength)
                          : mirrored(QRect(crossStart, from, crossLength, to - from));
}

/// The outer edge of the header of the rows is its right one in a right-to-left layout.
QRect MDATableHeader::mirrored(const QRect &rect) const
{
    return QStyle::visualRect(layoutDirection(), this->rect(), rect);
}

/// Limits a range of sections to those that there are; false when nothing remains.
bool MDATableHeader::clampRange(long long &from, long long &to) const
{
    from = std::max(from, 0LL);
    to = std::min(to, m_count - 1);
    return from <= to;
}

void MDATableHeader::updateFrom(long long section)
{
    const long long start = static_cast<long long>(sectionPos(section)) - m_offset;
    if (start >= length())
        return;
    const int from = static_cast<int>(std::max(start, 0LL));
    update(isHorizontal() ? QRect(from, 0, width() - from, height())
                          : QRect(0, from, width(), height() - from));
}

void MDATableHeader::recomputeMetrics()
{
    if (!m_ready)
        return;
    computeStrides(m_lines);
    const QFontMetrics metrics = fontMetrics();
    const auto labelWidth = [&metrics](const HeaderLine &line) {
        return metrics.horizontalAdvance(QString::number(line.max) + QLatin1Char('W'))
            + labelMargin;
    };
    int widestLabel = 0;
    m_nameWidth = 0;
    for (const HeaderLine &line : qAsConst(m_lines)) {
        widestLabel = std::max(widestLabel, labelWidth(line));
        m_nameWidth = std::max(m_nameWidth, metrics.horizontalAdvance(line.name) + labelMargin);
    }

    const long long lines = m_lines.size();
    if (isHorizontal()) {
        setFixedExtent(tul::clampToInt((m_nameBand + metrics.height() + bandReserve) * lines));
        int minimum = std::max(tul::globalStrut().width(), minimumColumnWidth);
        if (!m_lines.isEmpty())
            minimum = std::max(minimum, labelWidth(m_lines.constFirst()));
        m_table->d->raiseItemWidth(minimum);
        m_table->adjustColumnWidth();
    } else {
        setFixedExtent(
            tul::clampToInt(std::max((static_cast<long long>(m_nameWidth) + widestLabel) * lines,
                                     minimumLineWidth * lines)));
        setSectionSize(std::max({metrics.height() + 6, 20, tul::globalStrut().height()}));
    }
    update();
}

void MDATableHeader::setFixedExtent(int extent)
{
    m_bands.lines = m_lines.size();
    if (m_bands.extent == extent)
        return;
    m_bands.extent = extent;
    Q_EMIT fixedExtentChanged(extent);
}

/// Moves what is painted to the new offset. The names stand still, and with several lines the
/// blocks of the outer ones are painted anew: their labels stay in view while the block scrolls.
void MDATableHeader::scrollLabels(int oldOffset)
{
    const long long delta = static_cast<long long>(oldOffset) - m_offset;
    if (std::abs(delta) >= length()) {
        update();
        return;
    }
    // By design: the name beside the innermost line is not scrolled with its band. It stands still,
    // and moving it would leave a second one behind.
    const int by = static_cast<int>(delta);
    const int innerStart = m_bands.start(0);
    const int labelStart = innerStart + (isHorizontal() ? m_nameBand + nameReserve : m_nameWidth);
    if (isHorizontal())
        scroll(by, 0, QRect(0, labelStart, width(), height() - labelStart));
    else
        scroll(0, by, mirrored(QRect(labelStart, 0, m_bands.length() - m_nameWidth, height())));
    if (m_lines.size() < 2 || !isVisible())
        return;
    repaint(isHorizontal() ? QRect(0, 0, width(), innerStart)
                           : mirrored(QRect(0, 0, innerStart, height())));
}

MDATableHeader::Label MDATableHeader::blockLabel(const HeaderLine &line, long long block) const
{
    const long long first = line.firstSection(block);
    const long long last = line.lastSection(block);
    const long long start = static_cast<long long>(sectionPos(first)) - m_offset;
    const long long lastStart = static_cast<long long>(sectionPos(last)) - m_offset;
    // By design: a block is not cut at the last section; one that is incomplete ends where a whole
    // one would.
    const Span span{start, lastStart + (isSectionHidden(last) ? 0 : m_sectionSize)};
    QStyleOptionHeader::SectionPosition position = QStyleOptionHeader::Middle;
    if (m_count == 1)
        position = QStyleOptionHeader::OnlyOneSection;
    else if (first == 0)
        position = QStyleOptionHeader::Beginning;
    else if (last == m_count - 1)
        position = QStyleOptionHeader::End;
    return {QString::number(line.label(block)), first, span, lastStart, position};
}

void MDATableHeader::paintLine(QPainter *painter, int line, long long firstSection, int end,
                               QStyleOptionHeader *option)
{
    const HeaderLine &painted = m_lines.at(line);
    if (!painted.hasBlocks())
        return;
    const int nameExtent = isHorizontal() ? m_nameBand + nameReserve : m_nameWidth;
    const int crossStart = m_bands.start(line) + nameExtent;
    const int crossLength = m_bands.length() - nameExtent;
    const long long blocks = painted.blockCount(m_count);
    for (long long block = painted.blockOf(firstSection); block < blocks; ++block) {
        // Skips the blocks that are hidden whole; an incomplete one reaches beyond the last
        // section.
        block = painted.blockOf(m_hidden.nextVisible(painted.firstSection(block)));
        if (block >= blocks)
            return;
        const Label label = blockLabel(painted, block);
        paintLabel(painter, label, crossStart, crossLength, option);
        // Sections beyond the pixel limit share one position: nothing new would show.
        if (label.span.end > end || label.span.start + m_offset >= tul::pixelLimit)
            return;
    }
}

void MDATableHeader::paintName(QPainter *painter, int line, QStyleOptionHeader *option)
{
    const int extent = std::min(contentLength(), length() + nameReserve);
    if (m_nameWidth < 1 || m_nameBand < 1 || extent < 1)
        return;
    const Label label{m_lines.at(line).name, 0, {0, extent}, 0, QStyleOptionHeader::OnlyOneSection};
    paintLabel(painter, label, m_bands.start(line),
               isHorizontal() ? m_nameBand + nameReserve : m_nameWidth, option);
}

void MDATableHeader::paintLabel(QPainter *painter, const Label &label, int crossStart,
                                int crossLength, QStyleOptionHeader *option)
{
    option->rect = rectAt(label.span.start, label.span.end, crossStart, crossLength);
    if (option->rect.isEmpty())
        return;
    option->section = tul::clampToInt(label.section);
    option->position = static_cast<QStyleOptionHeader::SectionPosition>(label.position);
    style()->drawControl(QStyle::CE_HeaderSection, option, painter, this);

    // A block that is partly scrolled out keeps its label in view.
    QRect textRect = option->rect;
    const int start = tul::clampToInt(std::min(std::max(label.span.start, 0LL), label.lastStart));
    if (isHorizontal())
        textRect.setLeft(start);
    else
        textRect.setTop(start);
    const int margin = style()->pixelMetric(QStyle::PM_HeaderMargin, option, this);
    textRect.setRect(textRect.left() + margin, textRect.top() + 2, textRect.width() - 6,
                     textRect.height() - 4);
    painter->setPen(palette().color(QPalette::Text));
    tul::drawText(painter, textRect, Qt::AlignLeft | Qt::TextSingleLine, label.text);
}
