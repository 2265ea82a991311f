#include "widgetcollection.h"

#include "customwidget.h"
#include "detailscontainer.h"

#include <tul-util-gui/widgets/closebutton.h>
#include <tul-util-gui/widgets/detailswidget.h>
#include <tul-util-gui/widgets/fadingpanel.h>
#include <tul-util-gui/widgets/fixedheightlistwidget.h>
#include <tul-util-gui/widgets/flatbutton.h>
#include <tul-util-gui/widgets/flatcommandlinkbutton.h>
#include <tul-util-gui/widgets/sidebarwidget.h>

#include <QExtensionManager>
#include <QtDesigner/QDesignerFormEditorInterface>

namespace
{

// With a page, and expanded, so that it can be filled: what is seen is what the form makes.
const char detailsContents[] = "<property name=\"geometry\">"
                               "<rect><width>320</width><height>160</height></rect></property>"
                               "<property name=\"summaryText\"><string>Summary</string></property>"
                               "<property name=\"state\"><enum>DetailsWidget::Expanded</enum>"
                               "</property><widget class=\"QWidget\" name=\"details\"/>";
const char sideBarContents[] = "<property name=\"geometry\">"
                               "<rect><width>80</width><height>240</height></rect></property>";
const char textContents[] = "<property name=\"text\"><string>%1</string></property>";

template<typename Widget> QWidget *create(QWidget *parent, bool /*inDesigner*/)
{
    return new Widget(parent);
}

void addDetailsContainers(QDesignerFormEditorInterface *core)
{
    QExtensionManager *const manager = core->extensionManager();
    manager->registerExtensions(new DetailsContainerFactory(manager),
                                QLatin1String(Q_TYPEID(QDesignerContainerExtension)));
}

QWidget *createFadingPanel(QWidget *parent, bool inDesigner)
{
    auto *const panel = new FadingPanel(parent);
    if (inDesigner)
        panel->setOpacity(1.0); // one that is faded out cannot be filled
    return panel;
}

} // namespace

WidgetCollection::WidgetCollection(QObject *parent)
    : QObject(parent)
{
    const auto contents = [](const char *text) { return QString::fromLatin1(text); };
    const auto titled
        = [&](const char *text) { return contents(textContents).arg(contents(text)); };
    const CustomWidgetDescription descriptions[] = {
        {QStringLiteral("CloseButton"), tr("The cross with which the style closes tabs"), QString(),
         false, QString(), create<CloseButton>, nullptr},
        {QStringLiteral("DetailsWidget"), tr("A panel with details that can be shown and hidden"),
         contents(detailsContents), true, QStringLiteral("setWidget"), create<DetailsWidget>,
         addDetailsContainers},
        {QStringLiteral("FadingPanel"), tr("A panel whose contents fade in and out"), QString(),
         true, QString(), createFadingPanel, nullptr},
        {QStringLiteral("FixedHeightListWidget"), tr("A list that hugs its entries"), QString(),
         false, QString(), create<FixedHeightListWidget>, nullptr},
        {QStringLiteral("FlatButton"), tr("A tool button with a colour for each state"),
         titled("FlatButton"), false, QString(), create<FlatButton>, nullptr},
        {QStringLiteral("FlatCommandLinkButton"),
         tr("A command-link button with a colour for each state"), titled("FlatCommandLinkButton"),
         false, QString(), create<FlatCommandLinkButton>, nullptr},
        {QStringLiteral("SideBarWidget"), tr("A panel with a rule along one edge"),
         contents(sideBarContents), true, QString(), create<SideBarWidget>, nullptr},
    };
    for (const CustomWidgetDescription &description : descriptions)
        m_widgets.append(new CustomWidget(description, this));
}

QList<QDesignerCustomWidgetInterface *> WidgetCollection::customWidgets() const
{
    return m_widgets;
}
