#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdadimensionlistwidget.h>

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QProxyStyle>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <functional>
#include <memory>
#include <tuple>

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

    explicit DimensionList(const QString &names, int x = 20)
    {
        for (const QChar name : names) {
            auto *const entry = new QListWidgetItem(name, this);
            entry->setFlags(entry->flags().setFlag(Qt::ItemIsDragEnabled, name.isUpper()));
        }
        setDragDropMode(QAbstractItemView::DragDrop);
        setSelectionMode(QAbstractItemView::ExtendedSelection);
        setGeometry(x, 20, 200, 200);
    }

    void handle(QDragMoveEvent *event) { dragMoveEvent(event); }
    void handle(QDropEvent *event) { dropEvent(event); }

    QString names() const
    {
        QString result;
        for (int row = 0; row < count(); ++row)
            result += item(row)->text();
        return result;
    }

    void showWith(const QString &selected)
    {
        for (const QChar name : selected)
            item(names().indexOf(name))->setSelected(true);
        show();
        QVERIFY(QTest::qWaitForWindowExposed(this));
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
};

// Whether `list` takes an event of a drag that comes from elsewhere and carries the entry X.
template<class Event> bool takes(DimensionList &list, QChar target)
{
    DimensionList source("X"_s);
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
    const auto add = [&](QTest::MouseAction action, DimensionList &list, QPoint point) {
        const QPoint global = list.viewport()->mapToGlobal(point);
        const auto modifiers
            = &list == &to && point == to.at(target) ? dropModifiers : Qt::NoModifier;
        steps.append([=, window = list.windowHandle()] {
            QCursor::setPos(global);
            QTest::mouseEvent(action, window, Qt::LeftButton, modifiers,
                              window->mapFromGlobal(global));
        });
    };
    add(QTest::MousePress, from, from.at(name));
    for (const int distance : {QApplication::startDragDistance() + 1, 30})
        add(QTest::MouseMove, from, from.at(name) + QPoint(distance, 0));
    add(QTest::MouseMove, to, to.at(target));
    if (meanwhile)
        steps.append(meanwhile);
    add(QTest::MouseRelease, to, to.at(target));

    // Each step takes a turn of whatever event loop runs, the toolkit's own one during the drag.
    int done = 0;
    QObject context;
    const std::function<void(int)> play = [&](int step) {
        if (step == steps.size())
            return;
        QTimer::singleShot(0, &context, [&, step] {
            play(step + 1);
            steps.at(step)();
            ++done;
        });
    };
    play(0);
    QTRY_COMPARE(done, steps.size());
}

} // namespace

class TestMdaDimensionListWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void dropsAreRefusedOverFixedEntries()
    {
        // Entries, where X is dropped, and what comes of it.
        for (const QString &row :
             {"aBc B aXBc"_s, "AbC b AbC"_s, "abC - abCX"_s, "ABc - ABc"_s, " - X"_s}) {
            DimensionList list(row.section(QLatin1Char(' '), 0, 0));
            const QChar target = row.section(QLatin1Char(' '), 1, 1).at(0);
            const QString result = row.section(QLatin1Char(' '), 2);
            const bool allowed = result != list.names();
            IndicatorStyle style;
            list.setStyle(&style);
            QCOMPARE(takes<QDragMoveEvent>(list, target), allowed);
            list.grab();
            QCOMPARE(style.painted > 0, allowed);
            QCOMPARE(takes<QDropEvent>(list, target), allowed);
            QCOMPARE(list.names(), result);
        }
    }

    // The list widget moves the rows of a drag of its own by itself; the end of the drag must not
    // remove them once more.
    void dragLosesNoEntry()
    {
        const auto inside = QAbstractItemView::InternalMove;
        const auto anywhere = QAbstractItemView::DragDrop;
        // Mode, entries that are dragged, above which entry; what both lists become.
        using Case = std::tuple<QAbstractItemView::DragDropMode, Qt::KeyboardModifiers, QString,
                                char, QString, QString>;
        const auto copy = Qt::ControlModifier;
        for (const auto &[mode, modifiers, selected, target, result, otherResult] :
             {Case{inside, {}, "CD"_s, 'A', "CDABf"_s, "XYZ"_s},
              Case{anywhere, {}, "A"_s, 'D', "BCADf"_s, "XYZ"_s},
              Case{anywhere, {}, "Cf"_s, 'A', "CfABD"_s, "XYZ"_s},
              Case{anywhere, {}, "A"_s, 'f', "ABCDf"_s, "XYZ"_s},
              Case{anywhere, copy, "C"_s, 'A', "CABCDf"_s, "XYZ"_s},
              Case{anywhere, {}, "Bf"_s, 'Y', "ACD"_s, "XBfYZ"_s},
              Case{anywhere, copy, "C"_s, 'Y', "ABCDf"_s, "XCYZ"_s}}) {
            DimensionList list("ABCDf"_s);
            DimensionList other("XYZ"_s, 320);
            list.setDragDropMode(mode);
            list.showWith(selected);
            other.showWith({});
            drag(list, selected.at(0), target == 'Y' ? other : list, QLatin1Char(target),
                 modifiers);
            QCOMPARE(list.names(), result);
            QCOMPARE(other.names(), otherResult);
        }
    }

    void dragThatIsCancelledOrCannotStartRemovesNothing()
    {
        DimensionList list("ABC"_s);
        list.startDrag(Qt::MoveAction); // of nothing
        list.showWith("C"_s);
        drag(list, QLatin1Char('C'), list, QLatin1Char('A'), {},
             [&] { QTest::keyClick(list.windowHandle(), Qt::Key_Escape); });
        list.hasMimeData = false;
        list.startDrag(Qt::MoveAction);
        QCOMPARE(list.names(), "ABC"_s);
    }

    void entriesThatWentDuringTheDragAreNotRemovedAgain()
    {
        DimensionList list("ABC"_s);
        DimensionList other("XY"_s, 320);
        list.showWith("AB"_s);
        other.showWith({});
        drag(list, QLatin1Char('A'), other, QLatin1Char('Y'), {}, [&] { delete list.takeItem(0); });
        QCOMPARE(list.names() + other.names(), "CXABY"_s);
    }

    void listThatGoesEndsItsDrag()
    {
        auto list = std::make_unique<DimensionList>("ABC"_s);
        list->showWith("B"_s);
        QTimer::singleShot(0, this, [&] { list.reset(); });
        list->startDrag(Qt::MoveAction); // returns at all
        QVERIFY(!list);
    }
};

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
