#include <support/recordingstyle.h>

#include <QStyleOptionFocusRect>

#include <utility>

namespace
{

RecordingStyle::Drawn record(int element, const QStyleOption *option, const QWidget *widget)
{
    RecordingStyle::Drawn drawn{element, option->state, option->rect, widget, QColor()};
    if (const auto *focus = qstyleoption_cast<const QStyleOptionFocusRect *>(option))
        drawn.focusBackground = focus->backgroundColor;
    if (const auto *header = qstyleoption_cast<const QStyleOptionHeader *>(option)) {
        drawn.section = header->section;
        drawn.position = header->position;
    }
    return drawn;
}

} // namespace

QVector<RecordingStyle::Drawn> RecordingStyle::take(QVector<Drawn> &all, int element)
{
    QVector<Drawn> taken;
    for (const Drawn &drawn : std::exchange(all, {})) {
        if (drawn.element == element)
            taken.append(drawn);
    }
    return taken;
}

void RecordingStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                   QPainter *painter, const QWidget *widget) const
{
    m_primitives.append(record(element, option, widget));
    if (!onlyRecords)
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void RecordingStyle::drawControl(ControlElement element, const QStyleOption *option,
                                 QPainter *painter, const QWidget *widget) const
{
    m_controls.append(record(element, option, widget));
    if (!onlyRecords)
        QProxyStyle::drawControl(element, option, painter, widget);
}

int RecordingStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                              QStyleHintReturn *returned) const
{
    return hints.contains(hint) ? hints.value(hint)
                                : QProxyStyle::styleHint(hint, option, widget, returned);
}

int RecordingStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                                const QWidget *widget) const
{
    return metrics.contains(metric) ? metrics.value(metric)
                                    : QProxyStyle::pixelMetric(metric, option, widget);
}
