#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/dockwidgettabmovedhelper.h>

#include <QCoreApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QRandomGenerator>
#include <QTabBar>
#include <QTest>

namespace
{

/// The letters of the tabs of a bar; none for no bar.
QString letters(const QTabBar *bar)
{
    QString result;
    for (int tab = 0; bar && tab < bar->count(); ++tab)
        result += bar->tabText(tab);
    return result;
}

/// A window with groups of docks: one in the left area, one in the right one, and one, as a nested
/// group, below the left one. Titles are letters; each group has its own.
struct DockWindow : QMainWindow {
    DockWidgetTabMovedHelper helper{this};

    explicit DockWindow(const QStringList &groups)
    {
        resize(700, 500);
        for (int group = 0; group < groups.size(); ++group)
            addDockWidget(group == 1 ? Qt::RightDockWidgetArea : Qt::LeftDockWidgetArea,
                          newDock(groups.at(group).at(0)));
        for (const QString &group : groups) {
            const QString others = group.mid(1);
            for (const QChar letter : others)
                tabifyDockWidget(findChild<QDockWidget *>(group.at(0)), newDock(letter));
        }
        show();
        QCoreApplication::processEvents();
    }

    QDockWidget *newDock(QChar letter)
    {
        auto *const dock = new QDockWidget(letter, this);
        dock->setObjectName(letter);
        return dock;
    }

    /// The bar that shows a tab for one of these docks, or null.
    QTabBar *bar(const QString &group) const
    {
        const auto bars = findChildren<QTabBar *>(QString(), Qt::FindDirectChildrenOnly);
        for (QTabBar *const bar : bars) {
            if (bar->isVisible() && bar->count() > 0 && group.contains(bar->tabText(0)))
                return bar;
        }
        return nullptr;
    }

    void setOpen(const QString &docks, bool open)
    {
        for (const QChar letter : docks)
            findChild<QDockWidget *>(letter)->setVisible(open);
        QCoreApplication::processEvents();
    }
};

/// Whether a second window that restores the state shows the tabs in the same order, also when then
/// some docks are opened in both.
bool isRestored(DockWindow &window, const QStringList &groups, const QString &opened = {})
{
    DockWindow second(groups);
    bool same = second.restoreState(window.saveState());
    second.setOpen(opened, true);
    window.setOpen(opened, true);
    for (const QString &group : groups)
        same = same && letters(second.bar(group)) == letters(window.bar(group));
    return same;
}

} // namespace

class TestDockWidgetTabMovedHelper : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void layoutKeepsTheOrderOfTheTabs()
    {
        moveAtRandom({"AB"_s}, false);
        moveAtRandom({"ABCDE"_s}, true);
        moveAtRandom({"ABCD"_s, "EFG"_s, "HIJK"_s}, false);
        moveAtRandom({"ABCD"_s, "EFG"_s, "HIJK"_s}, true);
    }

    void movesOfOtherBarsChangeNoDocks()
    {
        DockWindow docks({"ABC"_s});
        auto *const other = new QTabBar(&docks);
        for (const int tab : {0, 1, 2})
            other->setTabData(other->addTab(QString::number(tab)),
                              qulonglong(tab + 1)); // no dock's
        other->show();
        QCoreApplication::processEvents();
        QVERIFY(other->isMovable());
        other->moveTab(2, 0);
        QCOMPARE(letters(other), "201"_s);
        // Nobody sent the signal.
        QVERIFY(QMetaObject::invokeMethod(&docks.helper, "tabMoved", Q_ARG(int, 0), Q_ARG(int, 1)));
        QCOMPARE(letters(docks.bar("A"_s)), "ABC"_s);
    }

private:
    /// With `closing` docks come and go between the moves.
    static void moveAtRandom(const QStringList &groups, bool closing)
    {
        DockWindow docks(groups);
        QRandomGenerator random(7);
        for (int step = 0; step < 30; ++step) {
            const QString &group = groups.at(random.bounded(groups.size()));
            if (closing) {
                docks.setOpen(group, true);
                for (int close = random.bounded(3); close > 0; --close)
                    docks.setOpen(group.at(random.bounded(group.size())), false);
            }
            QTabBar *const bar = docks.bar(group);
            QString wanted = letters(bar);
            if (wanted.size() < 2)
                continue;
            QVERIFY(bar->isMovable());
            const int from = random.bounded(wanted.size());
            const int to = random.bounded(wanted.size());
            bar->setCurrentIndex(random.bounded(wanted.size()));
            const QString current = bar->tabText(bar->currentIndex());
            const QChar moved = wanted.at(from);
            wanted.remove(from, 1).insert(to, moved);

            bar->moveTab(from, to);
            QCoreApplication::processEvents();
            const QTabBar *const now = docks.bar(group);
            QCOMPARE(letters(now), wanted);
            QCOMPARE(now->tabText(now->currentIndex()), current);
            QVERIFY(isRestored(docks, groups));
            if (step % 8 == 7) // where closed docks stand is the same, too
                QVERIFY(isRestored(docks, groups, group));
        }
    }
};

QTEST_MAIN(TestDockWidgetTabMovedHelper)
#include "tst_dockwidgettabmovedhelper.moc"
