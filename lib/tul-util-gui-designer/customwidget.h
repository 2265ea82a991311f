#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <functional>

/// What Qt Designer is told about one class of widgets.
struct CustomWidgetDescription {
    QString name; ///< of the class
    QString toolTip;
    QString properties; ///< of a new widget, and its children: the inside of its element
    bool isContainer = false;
    QString addPageMethod; ///< with which generated code hands over a child; empty: as a parent
    std::function<QWidget *(QWidget *parent, bool inDesigner)> create;
    std::function<void(QDesignerFormEditorInterface *core)> initialize; ///< may be empty
};

/// A class of widgets in the widget box of Qt Designer, and for QUiLoader.
class CustomWidget : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    CustomWidget(CustomWidgetDescription description, QObject *parent);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override;
    QWidget *createWidget(QWidget *parent) override;
    QString domXml() const override;

    /// Called by Qt Designer only, and not by QUiLoader.
    bool isInitialized() const override;
    void initialize(QDesignerFormEditorInterface *core) override;

private:
    const CustomWidgetDescription m_description;
    bool m_isInitialized = false;
};
