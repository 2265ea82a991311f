#include <tul-util-gui/widgets/flatcolours_p.h>

#include <QLine>
#include <QPainter>
#include <QPen>

#include <algorithm>

namespace tul
{

FlatFace flatFace(const FlatColours &colours, QStyle::State state)
{
    const bool sunken = state.testFlag(QStyle::State_Sunken);
    const bool on = state.testFlag(QStyle::State_On);
    const bool mouseOver = state.testFlag(QStyle::State_MouseOver);
    const auto orRaised
        = [&](const QColor &colour) { return colour.isValid() ? colour : colours.raised; };

    if (sunken && mouseOver && !on && colours.pressed.isValid())
        return {colours.pressed, true};
    // By design: also when it is unset, and also on a disabled button. What is on looks so.
    if (sunken || on)
        return {colours.sunken, true};
    if (!state.testFlag(QStyle::State_Enabled))
        return {orRaised(colours.disabled), false};
    // By design: the rule alone tells of the mouse when there is no colour for it.
    if (mouseOver)
        return {orRaised(colours.hover), true};
    return {colours.raised, false};
}

QPoint pressShift(const QStyle &style)
{
    // Without option and widget: the shift belongs to the style as a whole.
    return {std::max(1, style.pixelMetric(QStyle::PM_ButtonShiftHorizontal)),
            std::max(1, style.pixelMetric(QStyle::PM_ButtonShiftVertical))};
}

void drawRule(QPainter &painter, const QColor &colour, const QLine &line)
{
    if (!colour.isValid())
        return;
    QPen pen(colour);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.drawLine(line);
}

} // namespace tul
