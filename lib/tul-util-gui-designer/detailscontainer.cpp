#include "detailscontainer.h"

#include <tul-util-gui/widgets/detailswidget.h>

#include <QExtensionManager>

DetailsContainer::DetailsContainer(DetailsWidget *panel, QObject *parent)
    : QObject(parent)
    , m_panel(panel)
{
}

int DetailsContainer::count() const
{
    return m_panel->widget() ? 1 : 0;
}

QWidget *DetailsContainer::widget(int index) const
{
    return index == 0 ? m_panel->widget() : nullptr;
}

int DetailsContainer::currentIndex() const
{
    return count() - 1;
}

void DetailsContainer::setCurrentIndex(int /*index*/) { }

void DetailsContainer::addWidget(QWidget *widget)
{
    if (canAddWidget())
        m_panel->setWidget(widget);
}

void DetailsContainer::insertWidget(int /*index*/, QWidget *widget)
{
    addWidget(widget);
}

bool DetailsContainer::canAddWidget() const
{
    return count() == 0;
}

void DetailsContainer::remove(int /*index*/) { }

bool DetailsContainer::canRemove(int /*index*/) const
{
    return false;
}

DetailsContainerFactory::DetailsContainerFactory(QExtensionManager *parent)
    : QExtensionFactory(parent)
{
}

QObject *DetailsContainerFactory::createExtension(QObject *object, const QString &iid,
                                                  QObject *parent) const
{
    auto *const panel = qobject_cast<DetailsWidget *>(object);
    if (!panel || iid != QLatin1String(Q_TYPEID(QDesignerContainerExtension)))
        return nullptr;
    return new DetailsContainer(panel, parent);
}
