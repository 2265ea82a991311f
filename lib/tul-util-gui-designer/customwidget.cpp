#include "customwidget.h"

#include <QIcon>

#include <utility>

CustomWidget::CustomWidget(CustomWidgetDescription description, QObject *parent)
    : QObject(parent)
    , m_description(std::move(description))
{
}

QString CustomWidget::name() const
{
    return m_description.name;
}

QString CustomWidget::group() const
{
    return QStringLiteral("tul-util-gui");
}

QString CustomWidget::toolTip() const
{
    return m_description.toolTip;
}

QString CustomWidget::whatsThis() const
{
    return m_description.toolTip;
}

QString CustomWidget::includeFile() const
{
    return QStringLiteral("tul-util-gui/widgets/%1.h").arg(name().toLower());
}

QIcon CustomWidget::icon() const
{
    return {};
}

bool CustomWidget::isContainer() const
{
    return m_description.isContainer;
}

QWidget *CustomWidget::createWidget(QWidget *parent)
{
    return m_description.create(parent, m_isInitialized);
}

QString CustomWidget::domXml() const
{
    QString objectName = name();
    objectName.replace(0, 1, objectName.at(0).toLower());
    const QString widget = QStringLiteral("<widget class=\"%1\" name=\"%2\">%3</widget>")
                               .arg(name(), objectName, m_description.properties);
    QString classes;
    if (!m_description.addPageMethod.isEmpty())
        classes = QStringLiteral("<customwidgets><customwidget><class>%1</class>"
                                 "<extends>QWidget</extends><addpagemethod>%2</addpagemethod>"
                                 "</customwidget></customwidgets>")
                      .arg(name(), m_description.addPageMethod);
    return QStringLiteral("<ui language=\"c++\">%1%2</ui>").arg(widget, classes);
}

bool CustomWidget::isInitialized() const
{
    return m_isInitialized;
}

void CustomWidget::initialize(QDesignerFormEditorInterface *core)
{
    if (m_isInitialized)
        return;
    m_isInitialized = true;
    if (m_description.initialize)
        m_description.initialize(core);
}
