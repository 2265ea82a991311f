#include <workbench/page.h>

WorkbenchPage::WorkbenchPage(QWidget *parent)
    : QWidget(parent)
{
}

QString WorkbenchPage::openFilter() const
{
    return {};
}

void WorkbenchPage::open(const QStringList & /*arguments*/) { }

QStringList WorkbenchPage::shots() const
{
    return {};
}

void WorkbenchPage::prepareShot(const QString & /*shot*/) { }
