#include <tul-util-gui/widgets/detailsbuttonlook_p.h>

#include <QLinearGradient>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

using tul::ColourBlend;
using tul::DetailsButtonLook;

namespace
{

QBrush panelBrush(const DetailsButtonLook &look, const ColourBlend &blend)
{
    if (!look.gradient)
        return Qt::NoBrush;
    QLinearGradient gradient(0, 0, 0, 1);
    gradient.setCoordinateMode(QGradient::ObjectBoundingMode);
    gradient.setColorAt(0, look.checked ? blend.white(0) : blend.black(10));
    gradient.setColorAt(1, look.checked ? blend.white(50) : blend.black(16));
    return gradient;
}

void drawStates(QPainter &painter, const DetailsButtonLook &look, ColourBlend &blend)
{
    if (look.hover) {
        const QColor highlighted = blend.white(look.highlight);
        painter.fillRect(look.bounds.adjusted(1, 1, -2, -2), highlighted);
        blend.setBase(highlighted);
    }
    if (look.down) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(blend.black(20));
        painter.drawRoundedRect(look.bounds.adjusted(1, 1, -1, -1), 1, 1);
    }
}

void drawPanel(QPainter &painter, const DetailsButtonLook &look, const ColourBlend &blend)
{
    const int width = look.size.width();
    const int height = look.size.height();
    painter.setBrush(panelBrush(look, blend));
    painter.setPen(blend.white(140));
    painter.drawRoundedRect(1, 1, width - 3, height - 3, 1, 1);
    painter.setPen(blend.black(40));
    painter.drawLine(0, 1, 0, height - 2);
    if (look.checked)
        painter.drawLine(1, height - 1, width - 1, height - 1);
}

void drawText(QPainter &painter, const DetailsButtonLook &look)
{
    painter.setFont(look.font);
    painter.setPen(look.textColour);
    const QSize textSize = painter.fontMetrics().boundingRect(look.text).size();
    QRect rect(QPoint(), textSize + QSize(15, 4));
    rect.moveCenter(look.bounds.center());
    painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter, look.text);
}

void drawArrow(QPainter &painter, const DetailsButtonLook &look)
{
    QStyleOption option;
    option.rect = QRect(look.size.width() - 21, look.size.height() / 2 - 7, 15, 15);
    option.palette = QPalette(Qt::black);
    option.state = QStyle::State_Enabled;
    look.style->drawPrimitive(look.checked ? QStyle::PE_IndicatorArrowUp
                                           : QStyle::PE_IndicatorArrowDown,
                              &option, &painter);
}

} // namespace

QImage tul::renderDetailsButton(const DetailsButtonLook &look)
{
    ColourBlend blend(look.translucent, look.background);
    QImage image = blankImage(look.size, look.ratio, blend.background());
    if (image.isNull())
        return image;
    QPainter painter(&image);
    drawStates(painter, look, blend);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0.5, 0.5);
    drawPanel(painter, look, blend);
    drawText(painter, look);
    if (look.arrow && look.style)
        drawArrow(painter, look);
    return image;
}
