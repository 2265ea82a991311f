#include <tul-util-gui/widgets/dockwidgettabmovedhelper.h>

#include <QChildEvent>
#include <QDockWidget>
#include <QMainWindow>
#include <QTabBar>
#include <QVariant>

namespace
{

using Docks = QVector<QDockWidget *>;

/// The docks whose tabs a bar shows, from left to right; none when it is a bar of anything else.
/// The toolkit keeps the address of the dock in the data of its tab.
Docks docksOf(const QMainWindow &window, const QTabBar &bar)
{
    const auto all = window.findChildren<QDockWidget *>();
    Docks docks;
    for (int tab = 0; tab < bar.count(); ++tab) {
        const auto address = static_cast<quintptr>(bar.tabData(tab).toULongLong());
        for (QDockWidget *const dock : all) {
            if (reinterpret_cast<quintptr>(dock) == address)
                docks.append(dock);
        }
    }
    return docks.size() == bar.count() ? docks : Docks();
}

/// The order in which the layout keeps the group of the two or more docks that are `open`, closed
/// ones included. The toolkit tells it for each open dock with that one missing: two answers give
/// the whole, but for two docks side by side. A third answer tells which of them is the first;
/// where there is none, the toolkit keeps the order of the tabs itself.
Docks layoutOrder(const QMainWindow &window, const Docks &open)
{
    const auto without
        = [&](int missing) { return window.tabifiedDockWidgets(open.at(missing)).toVector(); };
    Docks order = without(0);
    int place = without(1).indexOf(open.at(0));
    const int next = order.indexOf(open.at(1));
    if (place < 0 || next < 0)
        return {};
    bool isBehind = next < place;
    if (next == place && open.size() > 2) {
        const Docks third = without(2);
        isBehind = third.indexOf(open.at(1)) < third.indexOf(open.at(0));
    }
    order.insert(place + (isBehind ? 1 : 0), open.at(0));
    return order;
}

/// `order` with the open docks among it in the order in which they are given.
Docks reordered(Docks order, const Docks &open)
{
    int next = 0;
    for (QDockWidget *&dock : order) {
        if (open.contains(dock))
            dock = open.at(next++);
    }
    return next == open.size() ? order : Docks();
}

} // namespace

DockWidgetTabMovedHelper::DockWidgetTabMovedHelper(QMainWindow *mainWindow)
    : QObject(mainWindow)
{
    if (mainWindow)
        mainWindow->installEventFilter(this);
}

bool DockWidgetTabMovedHelper::eventFilter(QObject * /*watched*/, QEvent *event)
{
    if (event->type() != QEvent::ChildPolished)
        return false;
    auto *const bar = qobject_cast<QTabBar *>(static_cast<QChildEvent *>(event)->child());
    if (!bar || m_tabBars.contains(bar))
        return false;
    m_tabBars.append(bar);
    bar->setMovable(true);
    connect(bar, &QTabBar::tabMoved, this, &DockWidgetTabMovedHelper::tabMoved);
    return false;
}

/// The toolkit has moved the item of the dock already, and rightly so where the tab went one place
/// on, past closed docks too. Moving it once more would put it back; so the two orders are compared
/// instead.
void DockWidgetTabMovedHelper::tabMoved(int /*from*/, int /*to*/)
{
    auto *const window = qobject_cast<QMainWindow *>(parent());
    const auto *const bar = qobject_cast<QTabBar *>(sender());
    if (!window || !bar)
        return;
    const Docks open = docksOf(*window, *bar);
    if (open.size() < 2)
        return;
    const Docks order = layoutOrder(*window, open);
    const Docks wanted = reordered(order, open);
    if (wanted.isEmpty() || wanted == order)
        return;

    QVector<QPointer<QDockWidget>> docks; // their signals may come meanwhile, and slots delete some
    for (QDockWidget *const dock : wanted)
        docks.append(dock);
    const QPointer<QDockWidget> current = open.value(bar->currentIndex());
    for (int i = 1; i < docks.size(); ++i) {
        if (docks.first() && docks.at(i))
            window->tabifyDockWidget(docks.first(), docks.at(i));
    }
    if (current)
        current->raise();
}
