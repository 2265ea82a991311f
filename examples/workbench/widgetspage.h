#pragma once

#include <workbench/page.h>

class QTabWidget;
class WidgetCard;

/// Shows the small widgets of the library, each on a card with what it can be made to do. Three
/// groups on tabs: buttons, panels and lists, dialogs and docks.
class WidgetsPage : public WorkbenchPage
{
    Q_OBJECT

public:
    explicit WidgetsPage(QWidget *parent = nullptr);

    QString title() const override;
    QString advice() const override;
    QStringList shots() const override;
    void prepareShot(const QString &shot) override;

private:
    void addGroup(const QString &title, const QVector<WidgetCard *> &cards);

    QTabWidget *m_groups;
};
