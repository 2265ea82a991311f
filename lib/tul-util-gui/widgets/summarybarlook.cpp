#include <tul-util-gui/widgets/summarybarlook_p.h>

#include <QLinearGradient>
#include <QPainter>

QImage tul::renderSummaryBar(const SummaryBarLook &look)
{
    const ColourBlend blend(look.translucent, look.background);
    QImage image = blankImage(look.size, look.ratio, blend.background());
    if (image.isNull())
        return image;
    const QRect whole(QPoint(), look.size);
    const QRect top(0, 0, look.size.width(), look.topHeight);
    QPainter painter(&image);
    painter.fillRect(whole, blend.white(40));
    if (look.gradient) {
        QLinearGradient gradient(top.topLeft(), QPoint(0, look.topHeight));
        gradient.setColorAt(0, blend.white(130));
        gradient.setColorAt(1, blend.white(0));
        painter.fillRect(top, gradient);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0.5, 0.5);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(blend.black(40));
    painter.drawRoundedRect(whole.adjusted(0, 0, -1, -1), 2, 2);
    painter.setPen(blend.white(140));
    painter.drawRoundedRect(whole.adjusted(1, 1, -2, -2), 2, 2);
    return image;
}
