#include <tul-util-gui/widgets/detailswidgetlabel_p.h>

#include <QMouseEvent>
#include <QPointer>

DetailsWidgetLabel::DetailsWidgetLabel(QWidget *parent)
    : QLabel(parent)
{
    connect(this, &QLabel::linkActivated, this, [this] { m_linkActivated = true; });
}

void DetailsWidgetLabel::mouseReleaseEvent(QMouseEvent *event)
{
    const QPointer<DetailsWidgetLabel> self(this);
    m_linkActivated = false;
    QLabel::mouseReleaseEvent(event);
    // Whoever followed the link may have deleted the panel.
    if (self && !m_linkActivated && event->button() == Qt::LeftButton)
        Q_EMIT labelBackgroundClicked();
}
