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

QString WorkbenchPage::advice() const
{
    return {};
}

QWidget *WorkbenchPage::createOptions()
{
    return nullptr;
}

QStringList WorkbenchPage::shots() const
{
    return {};
}

void WorkbenchPage::prepareShot(const QString & /*shot*/) { }

void WorkbenchPage::setRemoteDirectory(const QString & /*directory*/) { }
