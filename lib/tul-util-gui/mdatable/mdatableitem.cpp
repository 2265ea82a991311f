#include <tul-util-gui/mdatable/mdatableitem.h>

#include <tul-util-gui/mdatable/celltext_p.h>
#include <tul-util-gui/mdatable/globalstrut_p.h>
#include <tul-util-gui/mdatable/mdatable.h>

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPalette>

#include <algorithm>

namespace
{

const int textMargin = 2; // pixels left and right of the painted text
const int widthReserve = 10; // pixels that the size hint adds to the text's width

} // namespace

const int MDATableItem::RTTI = 0;

MDATableItem::MDATableItem(MDATable *table)
    : MDATableItem(table, QString())
{
}

MDATableItem::MDATableItem(MDATable *table, const QString &text)
    : m_text(text)
    , m_table(table)
    , m_enabled(1)
    , m_placed(0)
{
}

MDATableItem::MDATableItem(const MDATableItem &other)
    : MDATableItem(other.m_table, other.m_text)
{
    *this = other;
}

MDATableItem &MDATableItem::operator=(const MDATableItem &other)
{
    if (this == &other)
        return *this;
    m_text = other.m_text;
    m_table = other.m_table;
    m_enabled = other.m_enabled;
    m_row = other.m_row;
    m_col = other.m_col;
    return *this;
}

MDATableItem::~MDATableItem() = default;

QString MDATableItem::text() const
{
    return m_text;
}

void MDATableItem::setText(const QString &text)
{
    m_text = text;
}

int MDATableItem::alignment() const
{
    return tul::isNumber(text()) ? Qt::AlignRight | Qt::AlignVCenter
                                 : Qt::AlignLeft | Qt::AlignVCenter;
}

QString MDATableItem::key() const
{
    return text();
}

QSize MDATableItem::sizeHint() const
{
    const QString shown = text();
    const QFont font = m_table ? m_table->font() : QApplication::font();
    QSize size;
    if (shown.contains(QLatin1Char('\n'))) {
        const int columnWidth = m_table ? m_table->columnWidth() : 0;
        const QRect bounding = QFontMetrics(font).boundingRect(
            QRect(textMargin, 0, columnWidth - 2 * textMargin, 0), alignment(), shown);
        size = QSize(std::max(bounding.width() + widthReserve, columnWidth), bounding.height());
    } else {
        size = tul::textSize(font, shown) + QSize(widthReserve, 0);
    }
    return size.expandedTo(tul::globalStrut());
}

void MDATableItem::setRow(long long row)
{
    m_row = row;
}

void MDATableItem::setCol(long long col)
{
    m_col = col;
}

void MDATableItem::paint(QPainter *painter, const QPalette &palette, const QRect &rect,
                         bool selected)
{
    const QBrush &background = palette.brush(selected ? QPalette::Highlight : QPalette::Base);
    painter->fillRect(QRect(0, 0, rect.width(), rect.height()), background);
    const QColor &colour = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    // Making a pen costs as much as looking up the text.
    const QPen &pen = painter->pen();
    if (pen.color() != colour || pen.widthF() != 1.0 || pen.style() != Qt::SolidLine
        || pen.brush().style() != Qt::SolidPattern)
        painter->setPen(colour);
    tul::drawText(painter, QRect(textMargin, 0, rect.width() - 2 * textMargin, rect.height()),
                  alignment(), text(),
                  background.style() == Qt::SolidPattern ? background.color() : QColor());
}

void MDATableItem::setEnabled(bool enabled)
{
    if (isEnabled() == enabled)
        return;
    m_enabled = enabled ? 1 : 0;
    if (m_table)
        m_table->updateCell(m_row, m_col);
}

int MDATableItem::rtti() const
{
    return RTTI;
}
