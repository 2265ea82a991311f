#include <support/testcase.h>
#include <tul-util-gui/widgets/dockwidgettabmovedhelper.h>

#include <QCoreApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QMouseEvent>
#include <QRandomGenerator>
#include <QTabBar>
#include <QTest>

namespace
{

QStringList titles(const QTabBar &bar)
{
    QStringList result;
    for (int tab = 0; tab < bar.count(); ++tab)
        result.append(bar.tabText(tab));
    return result;
}

/// A window with groups of docks: one in the left area, one in the right one, and one, as a nested
/// group, below the left one. Titles are letters; each group has its own.
struct DockWindow {
    QMainWindow window;
    DockWidgetTabMovedHelper *helper = new DockWidgetTabMovedHelper(&window);

    explicit DockWindow(const QStringList &groups)
    {
        window.resize(700, 500);
        const auto make = [this](QChar letter) {
            auto *const dock = new QDockWidget(letter, &window);
            dock->setObjectName(letter);
            return dock;
        };
        for (int group = 0; group < groups.size(); ++group)
            window.addDockWidget(group == 1 ? Qt::RightDockWidgetArea : Qt::LeftDockWidgetArea,
                                 make(groups.at(group).at(0))); // the third below the first
        for (const QString &group : groups) {
            for (const QChar letter : group.mid(1))
                window.tabifyDockWidget(dock(group.at(0)), make(letter));
        }
        window.show();
        QCoreApplication::processEvents();
    }

    QDockWidget *dock(QChar letter) const { return window.findChild<QDockWidget *>(letter); }

    /// The bar that shows a tab for one of these docks, or null.
    QTabBar *bar(const QString &letters) const
    {
        const auto bars = window.findChildren<QTabBar *>(QString(), Qt::FindDirectChildrenOnly);
        for (QTabBar *const bar : bars) {
            if (bar->isVisible() && bar->count() > 0 && letters.contains(bar->tabText(0)))
                return bar;
        }
        return nullptr;
    }

    /// The open docks among these, in the order of their tabs.
    QString shown(const QString &letters) const
    {
        const QTabBar *const shownBar = bar(letters);
        return shownBar ? titles(*shownBar).join(QString()) : QString();
    }

    void setOpen(const QString &letters, bool open)
    {
        for (const QChar letter : letters)
            dock(letter)->setVisible(open);
        QCoreApplication::processEvents();
    }
};

} // namespace

class TestDockWidgetTabMovedHelper : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void layoutKeepsTheOrderOfTheTabs_data();
    void layoutKeepsTheOrderOfTheTabs();
    void draggedTabTakesItsDockAlong();
    void movesOfOtherBarsChangeNoDocks();
};

void TestDockWidgetTabMovedHelper::layoutKeepsTheOrderOfTheTabs_data()
{
    QTest::addColumn<QStringList>("groups");
    QTest::addColumn<bool>("closing"); // docks come and go between the moves
    const QStringList single{QStringLiteral("ABCDE")};
    const QStringList several{QStringLiteral("ABCD"), QStringLiteral("EFG"),
                              QStringLiteral("HIJK")};
    QTest::newRow("two docks") << QStringList{QStringLiteral("AB")} << false;
    QTest::newRow("one group, closing") << single << true;
    QTest::newRow("three groups, one nested") << several << false;
    QTest::newRow("three groups, closing") << several << true;
}

void TestDockWidgetTabMovedHelper::layoutKeepsTheOrderOfTheTabs()
{
    QFETCH(const QStringList, groups);
    QFETCH(const bool, closing);
    DockWindow docks(groups);
    QRandomGenerator random(7);

    for (int step = 0; step < 30; ++step) {
        const QString &group = groups.at(random.bounded(groups.size()));
        if (closing) {
            docks.setOpen(group, true);
            for (int close = random.bounded(3); close > 0; --close)
                docks.setOpen(group.at(random.bounded(group.size())), false);
        }
        const QString before = docks.shown(group);
        if (before.size() < 2)
            continue;
        QTabBar *const bar = docks.bar(group);
        QVERIFY(bar->isMovable());
        const int from = random.bounded(before.size());
        const int to = random.bounded(before.size());
        QString wanted = before;
        wanted.remove(from, 1).insert(to, before.at(from));
        bar->setCurrentIndex(random.bounded(before.size()));
        const QString current = bar->tabText(bar->currentIndex());

        bar->moveTab(from, to);
        QCoreApplication::processEvents();
        QCOMPARE(docks.shown(group), wanted);
        QCOMPARE(docks.bar(group)->tabText(docks.bar(group)->currentIndex()), current);

        DockWindow second(groups);
        QVERIFY(second.window.restoreState(docks.window.saveState()));
        for (const QString &any : groups)
            QCOMPARE(second.shown(any), docks.shown(any));
        if (step % 8 == 7) { // where closed docks stand is the same, too
            second.setOpen(group, true);
            docks.setOpen(group, true);
            QCOMPARE(second.shown(group), docks.shown(group));
        }
    }
}

void TestDockWidgetTabMovedHelper::draggedTabTakesItsDockAlong()
{
    const QStringList groups{QStringLiteral("ABC")};
    DockWindow docks(groups);
    QTabBar *const bar = docks.bar(groups.first());
    QVERIFY(bar);
    const QPoint start = bar->tabRect(1).center();
    const QPoint end(2, start.y());
    QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, start);
    for (int part = 1; part <= 4; ++part) {
        const QPointF at = start + (end - start) * part / 4.0;
        QMouseEvent move(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(bar, &move);
    }
    QTest::mouseRelease(bar, Qt::LeftButton, Qt::NoModifier, end);
    QTRY_COMPARE(docks.shown(groups.first()), QStringLiteral("BAC"));
    DockWindow second(groups);
    QVERIFY(second.window.restoreState(docks.window.saveState()));
    QCOMPARE(second.shown(groups.first()), QStringLiteral("BAC"));
}

void TestDockWidgetTabMovedHelper::movesOfOtherBarsChangeNoDocks()
{
    const QStringList groups{QStringLiteral("ABC")};
    DockWindow docks(groups);
    auto *const other = new QTabBar(&docks.window);
    for (int tab = 0; tab < 3; ++tab) {
        other->addTab(QString::number(tab));
        other->setTabData(tab, qulonglong(tab + 1)); // not the address of a dock
    }
    other->show();
    QCoreApplication::processEvents();
    QVERIFY(other->isMovable());
    other->moveTab(2, 0);
    QCOMPARE(titles(*other).join(QString()), QStringLiteral("201"));
    // Nobody sent the signal.
    QVERIFY(QMetaObject::invokeMethod(docks.helper, "tabMoved", Q_ARG(int, 0), Q_ARG(int, 1)));
    QCOMPARE(docks.shown(groups.first()), groups.first());
}

QTEST_MAIN(TestDockWidgetTabMovedHelper)

#include "tst_dockwidgettabmovedhelper.moc"
