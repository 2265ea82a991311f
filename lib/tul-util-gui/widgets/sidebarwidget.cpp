#include <tul-util-gui/widgets/flatcolours_p.h>
#include <tul-util-gui/widgets/painterguard_p.h>
#include <tul-util-gui/widgets/sidebarwidget.h>

#include <QLine>
#include <QPainter>

namespace
{

// By design: lines end at the width or height, one pixel beyond the edge, where they are clipped.
QLine rule(SideBarWidget::LinePosition position, int width, int height)
{
    switch (position) {
    case SideBarWidget::North:
        return {0, 0, width, 0};
    case SideBarWidget::South:
        return {0, height - 1, width, height - 1};
    case SideBarWidget::West:
        return {0, 0, 0, height};
    case SideBarWidget::East:
        return {width - 1, 0, width - 1, height};
    }
    return {}; // a null line
}

} // namespace

SideBarWidget::SideBarWidget(QWidget *parent)
    : QWidget(parent)
{
}

SideBarWidget::LinePosition SideBarWidget::linePosition() const
{
    return m_linePosition;
}

void SideBarWidget::setLinePosition(LinePosition position)
{
    m_linePosition = position;
}

QColor SideBarWidget::backgroundColour() const
{
    return m_backgroundColour;
}

void SideBarWidget::setBackgroundColour(const QColor &colour)
{
    m_backgroundColour = colour;
}

QColor SideBarWidget::lineColour() const
{
    return m_lineColour;
}

void SideBarWidget::setLineColour(const QColor &colour)
{
    m_lineColour = colour;
}

void SideBarWidget::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    QPainter painter(this);
    const tul::PainterGuard guard(painter);
    if (m_backgroundColour.isValid())
        painter.fillRect(0, 0, width(), height(), m_backgroundColour);
    const QLine line = rule(m_linePosition, width(), height());
    if (!line.isNull())
        tul::drawRule(painter, m_lineColour, line);
}
