#include <tul-util-gui/widgets/detailswidgetlabel_p.h>

#include <QMouseEvent>
#include <QPointer>

#include <utility>

DetailsWidgetLabel::DetailsWidgetLabel(QWidget *parent)
    : QLabel(parent)
{
    connect(this, &QLabel::linkActivated, this, [this] { m_linkActivated = true; });
}

void DetailsWidgetLabel::mouseReleaseEvent(QMouseEvent *event)
{
    const QPointer<DetailsWidgetLabel> self(this);
    // Whoever follows the link may run an event loop in which the label is clicked again.
    const bool outer = std::exchange(m_linkActivated, false);
    QLabel::mouseReleaseEvent(event);
    if (!self) // or may have deleted the panel
        return;
    const bool followed = std::exchange(m_linkActivated, outer);
    if (!followed && event->button() == Qt::LeftButton)
        Q_EMIT labelBackgroundClicked();
}
