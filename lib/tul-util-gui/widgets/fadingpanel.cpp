#include <tul-util-gui/widgets/fadingpanel.h>

#include <tul-util-gui/widgets/translucency_p.h>

#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>

#include <cmath>

FadingPanel::FadingPanel(QWidget *parent)
    : QWidget(parent)
    , m_opacityEffect(new QGraphicsOpacityEffect(this))
    , m_animationEnabled(tul::displayHasManyColours())
{
    m_opacityEffect->setOpacity(0);
    setGraphicsEffect(m_opacityEffect);

    QPalette transparent;
    transparent.setBrush(QPalette::All, QPalette::Window, QBrush(Qt::transparent));
    setPalette(transparent);
}

void FadingPanel::fadeTo(float value)
{
    if (!m_animationEnabled) {
        setOpacity(value);
        return;
    }
    if (!m_opacityEffect || std::isnan(value))
        return;
    auto *const animation = new QPropertyAnimation(m_opacityEffect, "opacity", m_opacityEffect);
    animation->setDuration(200);
    animation->setEndValue(static_cast<qreal>(value));
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void FadingPanel::setOpacity(qreal value)
{
    if (m_opacityEffect && !std::isnan(value))
        m_opacityEffect->setOpacity(value);
}
