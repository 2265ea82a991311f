#include <workbench/arraypage.h>
#include <workbench/filespage.h>
#include <workbench/pages.h>
#include <workbench/terminalpage.h>
#include <workbench/widgetspage.h>

QVector<WorkbenchPage *> createPages(QWidget *parent)
{
    return {
        new ArrayPage(parent),
        new FilesPage(parent),
        new WidgetsPage(parent),
        new TerminalPage(parent),
    };
}
