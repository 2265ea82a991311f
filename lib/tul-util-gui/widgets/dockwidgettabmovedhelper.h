#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QObject>
#include <QPointer>
#include <QVector>

class QMainWindow;
class QTabBar;

/// Lets the user put dock widgets that a main window shows stacked as tabs into another order, and
/// keeps the window's own record in step, so that QMainWindow::saveState() saves the order that is
/// seen. Tabs may also be moved by QTabBar::moveTab(), over any number of places.
///
/// Make one for the main window before the first docks are tabified: a tab bar is taken care of
/// when it becomes a direct child of the window, and earlier ones are not. Nested groups of docks
/// count as well; tab bars inside the contents of a dock are left alone. Where a closed dock comes
/// to stand among the others of its group is left to the toolkit.
///
/// *Ownership*: the helper belongs to the window and ends with it.
///
/// *By design*: every tab bar that is a direct child of the window becomes movable, also one that
/// shows no docks. A bar that shows docks is rebuilt, within the move, only when the toolkit's own
/// record of the order is not right, which is when a tab was moved over several places at once.
class TUL_UTIL_GUI_EXPORT DockWidgetTabMovedHelper : public QObject
{
    Q_OBJECT

public:
    explicit DockWidgetTabMovedHelper(QMainWindow *mainWindow);

    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    void tabMoved(int from, int to);

private:
    QVector<QPointer<QTabBar>> m_tabBars; // those already handled; entries are never removed
};
