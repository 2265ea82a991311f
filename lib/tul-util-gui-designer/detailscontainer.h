#pragma once

#include <QExtensionFactory>
#include <QtDesigner/QDesignerContainerExtension>

class DetailsWidget;

/// Lets Qt Designer fill a DetailsWidget: its details are the one page of a container.
class DetailsContainer : public QObject, public QDesignerContainerExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerContainerExtension)

public:
    DetailsContainer(DetailsWidget *panel, QObject *parent);

    int count() const override;
    QWidget *widget(int index) const override;
    int currentIndex() const override;
    void setCurrentIndex(int index) override;
    void addWidget(QWidget *widget) override;
    void insertWidget(int index, QWidget *widget) override;
    bool canAddWidget() const override;

    /// The page stays as long as the panel, which would delete what it gives up.
    void remove(int index) override;
    bool canRemove(int index) const override;

private:
    DetailsWidget *m_panel;
};

/// Makes the container of each DetailsWidget that is asked for one.
class DetailsContainerFactory : public QExtensionFactory
{
    Q_OBJECT

public:
    explicit DetailsContainerFactory(QExtensionManager *parent);

protected:
    QObject *createExtension(QObject *object, const QString &iid, QObject *parent) const override;
};
