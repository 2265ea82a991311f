#pragma once

#include <QVector>

class QWidget;
class WorkbenchPage;

/// Makes all pages of the workbench, in the order in which they are listed. The first one gets the
/// arguments of the command line.
QVector<WorkbenchPage *> createPages(QWidget *parent);
