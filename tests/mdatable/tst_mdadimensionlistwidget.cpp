#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdadimensionlistwidget.h>

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QProxyStyle>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <functional>
#include <memory>

namespace
{

// Counts the drop indicators that are really painted.
class IndicatorStyle : public QProxyStyle
{
public:
    mutable int painted = 0;

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        painted += element == PE_IndicatorItemViewItemDrop;
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
};

// Entries of one letter each; those in lower case are fixed.
class DimensionList : public MdaDimensionListWidget
{
public:
    using MdaDimensionListWidget::startDrag;

    bool hasMimeData = true;
    bool movesOnly = false;

    explicit DimensionList(const QString &names)
    {
        for (const QChar name : names) {
            auto *const entry = new QListWidgetItem(name, this);
            entry->setFlags(entry->flags().setFlag(Qt::ItemIsDragEnabled, name.isUpper()));
        }
        setDragDropMode(QAbstractItemView::DragDrop);
        setSelectionMode(QAbstractItemView::ExtendedSelection);
        resize(200, 200);
    }

    void handle(QDragMoveEvent *event) { dragMoveEvent(event); }
    void handle(QDropEvent *event) { dropEvent(event); }

    bool showAt(int x)
    {
        move(x, 20);
        show();
        return QTest::qWaitForWindowExposed(this);
    }

    QString names() const
    {
        QString result;
        for (int row = 0; row < count(); ++row)
            result += item(row)->text();
        return result;
    }

    void select(const QString &selected)
    {
        for (int row = 0; row < count(); ++row)
            item(row)->setSelected(selected.contains(item(row)->text()));
    }

    /// A point in the upper part of an entry, or in the empty area for any other name.
    QPoint at(QChar name) const
    {
        const int row = names().indexOf(name);
        return row < 0 ? QPoint(30, 190) : visualItemRect(item(row)).topLeft() + QPoint(30, 1);
    }

protected:
    QMimeData *mimeData(const QList<QListWidgetItem *> items) const override
    {
        return hasMimeData ? MdaDimensionListWidget::mimeData(items) : nullptr;
    }

    Qt::DropActions supportedDropActions() const override
    {
        return movesOnly ? Qt::MoveAction : MdaDimensionListWidget::supportedDropActions();
    }
};

// Whether `list` takes an event of a drag that comes from elsewhere and carries the entry X.
template<class Event> bool takes(DimensionList &list, QChar target)
{
    DimensionList source(QStringLiteral("X"));
    const std::unique_ptr<QMimeData> data(source.model()->mimeData({source.model()->index(0, 0)}));
    Event event(list.at(target), Qt::CopyAction, data.get(), Qt::LeftButton, {});
    list.handle(&event);
    return event.isAccepted();
}

// Drags with the mouse, from an entry to just above another, and releases the button after
// `meanwhile`.
void drag(DimensionList &from, QChar name, DimensionList &to, QChar target,
          Qt::KeyboardModifiers dropModifiers = {}, const std::function<void()> &meanwhile = {})
{
    QVector<std::function<void()>> steps;
    const auto add = [&](QTest::MouseAction action, DimensionList &list, const QPoint &point,
                         Qt::KeyboardModifiers modifiers = {}) {
        const QPoint global = list.viewport()->mapToGlobal(point);
        QWindow *const window = list.windowHandle();
        steps.append([=] {
            QCursor::setPos(global);
            QTest::mouseEvent(action, window, Qt::LeftButton, modifiers,
                              window->mapFromGlobal(global));
        });
    };
    add(QTest::MousePress, from, from.at(name));
    for (const int distance :
         {QApplication::startDragDistance() / 2, QApplication::startDragDistance() + 1, 30})
        add(QTest::MouseMove, from, from.at(name) + QPoint(distance, 0));
    add(QTest::MouseMove, to, to.at(target), dropModifiers);
    if (meanwhile)
        steps.append(meanwhile);
    add(QTest::MouseRelease, to, to.at(target), dropModifiers);

    // Each step takes a turn of whatever event loop runs, the toolkit's own one during the drag. An
    // X server answers in a time of its own.
    const int pace = QGuiApplication::platformName() == QLatin1String("xcb") ? 20 : 0;
    int done = 0;
    QObject context;
    const std::function<void(int)> play = [&](int step) {
        if (step == steps.size())
            return;
        QTimer::singleShot(pace, &context, [&, step] {
            play(step + 1);
            steps.at(step)();
            ++done;
        });
    };
    play(0);
    QTRY_COMPARE(done, steps.size());
}

// Reaches a private member function: access is not checked in an explicit instantiation.
QModelIndexList selectedDraggableIndexes(const MdaDimensionListWidget &list);
template<auto function> struct Reach {
    friend QModelIndexList selectedDraggableIndexes(const MdaDimensionListWidget &list)
    {
        return (list.*function)();
    }
};
template struct Reach<&MdaDimensionListWidget::selectedDraggableIndexes>;

} // namespace

class TestMdaDimensionListWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void selectedEntriesHaveNoHighlightWhileEnabled();
    void dropsAreRefusedOverFixedEntries_data();
    void dropsAreRefusedOverFixedEntries();
    void indicatorIsPaintedOnlyWhereADropIsAllowed();
    void dragLosesNoEntry_data();
    void dragLosesNoEntry();
    void cancelledDragRemovesNothing();
    void dragWithNothingToDragDoesNotStart();
    void entriesThatWentDuringTheDragAreNotRemovedAgain();
    void listThatGoesEndsItsDrag();
    void selectedDraggableIndexesAreTheFixedOnes();
};

void TestMdaDimensionListWidget::selectedEntriesHaveNoHighlightWhileEnabled()
{
    const MdaDimensionListWidget list(nullptr);
    const QPalette &palette = list.palette();
    QCOMPARE(palette.brush(QPalette::Active, QPalette::Highlight).style(), Qt::NoBrush);
    QCOMPARE(palette.brush(QPalette::Inactive, QPalette::Highlight).style(), Qt::NoBrush);
    QCOMPARE(palette.brush(QPalette::Disabled, QPalette::Highlight).style(), Qt::SolidPattern);
    QVERIFY(!list.viewport()->autoFillBackground());
}

void TestMdaDimensionListWidget::dropsAreRefusedOverFixedEntries_data()
{
    QTest::addColumn<QString>("names");
    QTest::addColumn<QChar>("target");
    QTest::addColumn<QString>("result");

    const auto row = [](const char *title, const char *names, char target, const char *result) {
        QTest::newRow(title) << QString::fromLatin1(names) << QChar::fromLatin1(target)
                             << QString::fromLatin1(result);
    };
    row("movable", "aBc", 'B', "aXBc");
    row("fixed", "AbC", 'b', "AbC");
    row("below a movable one", "abC", '-', "abCX");
    row("below a fixed one", "ABc", '-', "ABc");
    row("empty list", "", '-', "X");
}

void TestMdaDimensionListWidget::dropsAreRefusedOverFixedEntries()
{
    QFETCH(const QString, names);
    QFETCH(const QChar, target);
    QFETCH(const QString, result);

    DimensionList list(names);
    const bool allowed = result != names;
    QCOMPARE(takes<QDragMoveEvent>(list, target), allowed);
    QCOMPARE(takes<QDropEvent>(list, target), allowed);
    QCOMPARE(list.names(), result);
}

void TestMdaDimensionListWidget::indicatorIsPaintedOnlyWhereADropIsAllowed()
{
    IndicatorStyle style;
    DimensionList list(QStringLiteral("AbC"));
    list.setStyle(&style);
    const auto isPainted = [&] {
        style.painted = 0;
        list.grab();
        return style.painted > 0;
    };
    QVERIFY(takes<QDragMoveEvent>(list, QLatin1Char('A')));
    QVERIFY(isPainted());
    QVERIFY(!takes<QDragMoveEvent>(list, QLatin1Char('b')));
    QVERIFY(!isPainted());
    QVERIFY(takes<QDragMoveEvent>(list, QLatin1Char('C')));
    QVERIFY(isPainted());
    QVERIFY(!takes<QDropEvent>(list, QLatin1Char('b')));
    QVERIFY(!isPainted());
}

void TestMdaDimensionListWidget::dragLosesNoEntry_data()
{
    QTest::addColumn<QAbstractItemView::DragDropMode>("mode");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QChar>("target");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("otherResult");

    const auto inside = QAbstractItemView::InternalMove;
    const auto anywhere = QAbstractItemView::DragDrop;
    const auto row = [](const char *title, QAbstractItemView::DragDropMode mode,
                        const char *selected, char target, Qt::KeyboardModifiers modifiers,
                        const char *result, const char *otherResult) {
        QTest::newRow(title) << mode << QString::fromLatin1(selected) << QChar::fromLatin1(target)
                             << modifiers << QString::fromLatin1(result)
                             << QString::fromLatin1(otherResult);
    };
    row("up, internal move", inside, "C", 'A', {}, "CABDf", "XYZ");
    row("down, drag and drop", anywhere, "A", 'D', {}, "BCADf", "XYZ");
    row("several", inside, "CD", 'A', {}, "CDABf", "XYZ");
    row("a fixed one in tow", anywhere, "Cf", 'A', {}, "CfABD", "XYZ");
    row("onto itself", anywhere, "C", 'C', {}, "ABCDf", "XYZ");
    row("onto a fixed one", anywhere, "A", 'f', {}, "ABCDf", "XYZ");
    row("copied", anywhere, "C", 'A', Qt::ControlModifier, "CABCDf", "XYZ");
    row("to another list", anywhere, "Bf", 'Y', {}, "ACD", "XBfYZ");
    row("copied to another list", anywhere, "C", 'Y', Qt::ControlModifier, "ABCDf", "XCYZ");
    row("to another list that is closed", inside, "C", 'Y', {}, "ABCDf", "XYZ");
}

// The list widget moves the rows of a drag of its own by itself; the end of the drag must not
// remove them once more.
void TestMdaDimensionListWidget::dragLosesNoEntry()
{
    QFETCH(const QAbstractItemView::DragDropMode, mode);
    QFETCH(const QString, selected);
    QFETCH(const QChar, target);
    QFETCH(const Qt::KeyboardModifiers, modifiers);
    QFETCH(const QString, result);
    QFETCH(const QString, otherResult);

    for (const bool movesOnly : {false, true}) {
        if (movesOnly && modifiers)
            continue;
        DimensionList list(QStringLiteral("ABCDf"));
        DimensionList other(QStringLiteral("XYZ"));
        list.movesOnly = movesOnly;
        list.setDragDropMode(mode);
        other.setDragDropMode(mode);
        QVERIFY(list.showAt(20) && other.showAt(320));
        list.select(selected);
        drag(list, selected.at(0), other.names().contains(target) ? other : list, target,
             modifiers);
        QCOMPARE(list.names(), result);
        QCOMPARE(other.names(), otherResult);
    }
}

void TestMdaDimensionListWidget::cancelledDragRemovesNothing()
{
    DimensionList list(QStringLiteral("ABC"));
    QVERIFY(list.showAt(20));
    list.select(QStringLiteral("C"));
    drag(list, QLatin1Char('C'), list, QLatin1Char('A'), {},
         [&] { QTest::keyClick(list.windowHandle(), Qt::Key_Escape); });
    QCOMPARE(list.names(), QStringLiteral("ABC"));
}

void TestMdaDimensionListWidget::dragWithNothingToDragDoesNotStart()
{
    DimensionList list(QStringLiteral("ABC"));
    QVERIFY(list.showAt(20));
    list.startDrag(Qt::MoveAction);
    QTimer cancel; // in case that it does start
    connect(&cancel, &QTimer::timeout, &QDrag::cancel);
    cancel.start(0);
    list.select(QStringLiteral("B"));
    list.hasMimeData = false;
    list.startDrag(Qt::MoveAction);
    QVERIFY(!list.findChild<QDrag *>());
}

void TestMdaDimensionListWidget::entriesThatWentDuringTheDragAreNotRemovedAgain()
{
    DimensionList list(QStringLiteral("ABC"));
    DimensionList other(QStringLiteral("XY"));
    QVERIFY(list.showAt(20) && other.showAt(320));
    list.select(QStringLiteral("AB"));
    drag(list, QLatin1Char('A'), other, QLatin1Char('Y'), {}, [&] { delete list.takeItem(0); });
    QCOMPARE(list.names(), QStringLiteral("C"));
    QCOMPARE(other.names(), QStringLiteral("XABY"));
}

void TestMdaDimensionListWidget::listThatGoesEndsItsDrag()
{
    auto list = std::make_unique<DimensionList>(QStringLiteral("ABC"));
    QVERIFY(list->showAt(20));
    list->select(QStringLiteral("B"));
    QTimer::singleShot(0, this, [&] { list.reset(); });
    list->startDrag(Qt::MoveAction); // returns at all
    QVERIFY(!list);
}

void TestMdaDimensionListWidget::selectedDraggableIndexesAreTheFixedOnes()
{
    DimensionList list(QStringLiteral("AbC"));
    list.selectAll();
    QCOMPARE(selectedDraggableIndexes(list), QModelIndexList{list.model()->index(1, 0)});
}

int main(int argc, char *argv[])
{
    // The offscreen platform refuses every drag; the minimal one, of the same package, runs them
    // without a display.
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen")
        qputenv("QT_QPA_PLATFORM", "minimal");
    QApplication application(argc, argv);
    QTEST_SET_MAIN_SOURCE_PATH
    TestMdaDimensionListWidget test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mdadimensionlistwidget.moc"
