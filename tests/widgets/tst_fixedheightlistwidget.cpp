#include <support/testcase.h>
#include <tul-util-gui/widgets/fixedheightlistwidget.h>

#include <QApplication>
#include <QProxyStyle>
#include <QTest>

#include <limits>

namespace
{

// Frame 2, vertical bar 10 wide, horizontal bar 27 x 10, and 5 between frame and bars if asked.
class FixedMetrics : public QProxyStyle
{
public:
    static bool s_frameOnlyAroundContents;

    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        switch (metric) {
        case PM_DefaultFrameWidth:
            return 2;
        case PM_ScrollBarExtent:
            return 10;
        case PM_ScrollBarSliderMin:
            return 7;
        case PM_ScrollView_ScrollBarSpacing:
            return 5;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override
    {
        if (hint == SH_ScrollView_FrameOnlyAroundContents)
            return s_frameOnlyAroundContents;
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

bool FixedMetrics::s_frameOnlyAroundContents = false;

} // namespace

class TestFixedHeightListWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new FixedMetrics); }
    void hintHugsTheItemsAcrossTheFlow_data();
    void hintHugsTheItemsAcrossTheFlow();
    void hiddenItemsCountAndLaterOnesToo();
};

void TestFixedHeightListWidget::hintHugsTheItemsAcrossTheFlow_data()
{
    QTest::addColumn<QListView::Flow>("flow");
    QTest::addColumn<QVector<QSize>>("items");
    QTest::addColumn<bool>("framed");
    QTest::addColumn<bool>("frameOnlyAroundContents");
    QTest::addColumn<int>("across");

    const QVector<QSize> none;
    const QVector<QSize> two{{30, 12}, {20, 40}};
    const QVector<QSize> flat{{0, 0}};
    const int most = std::numeric_limits<int>::max();
    const QVector<QSize> huge{{most, most}};
    const auto right = QListView::LeftToRight;
    const auto down = QListView::TopToBottom;

    // Two frames, 1, the items, the holder of the bar, the horizontal bar, and the spacing.
    QTest::newRow("row, empty") << right << none << true << false << 4 + 1 + 1 + 10 + 10;
    QTest::newRow("row") << right << two << true << false << 4 + 1 + 40 + 10 + 10;
    QTest::newRow("row, spaced") << right << two << true << true << 4 + 1 + 40 + 10 + 10 + 5;
    QTest::newRow("row, no frame") << right << two << false << true << 1 + 40 + 10 + 10;
    QTest::newRow("row, flat") << right << flat << true << false << 4 + 1 + 1 + 10 + 10;
    QTest::newRow("row, huge") << right << huge << true << false << QWIDGETSIZE_MAX + 25;
    QTest::newRow("column, empty") << down << none << true << false << 4 + 1 + 1 + 10 + 27;
    QTest::newRow("column") << down << two << true << false << 4 + 1 + 30 + 10 + 27;
    QTest::newRow("column, spaced") << down << two << true << true << 4 + 1 + 30 + 10 + 27 + 5;
    QTest::newRow("column, no frame") << down << two << false << true << 1 + 30 + 10 + 27;
}

void TestFixedHeightListWidget::hintHugsTheItemsAcrossTheFlow()
{
    QFETCH(const QListView::Flow, flow);
    QFETCH(const QVector<QSize>, items);
    QFETCH(const bool, framed);
    QFETCH(const bool, frameOnlyAroundContents);
    QFETCH(const int, across);

    FixedMetrics::s_frameOnlyAroundContents = frameOnlyAroundContents;
    FixedHeightListWidget list;
    list.setFlow(flow);
    if (!framed)
        list.setFrameStyle(QFrame::NoFrame);
    for (const QSize &size : items)
        (new QListWidgetItem(&list))->setSizeHint(size);

    QSize expected = list.QAbstractScrollArea::minimumSizeHint();
    if (flow == QListView::LeftToRight)
        expected.setHeight(across);
    else
        expected.setWidth(across);
    QCOMPARE(list.minimumSizeHint(), expected);
    QCOMPARE(list.sizeHint(), expected);
}

void TestFixedHeightListWidget::hiddenItemsCountAndLaterOnesToo()
{
    FixedHeightListWidget list;
    list.setFlow(QListView::LeftToRight);
    const int empty = list.sizeHint().height();
    auto *const item = new QListWidgetItem(&list);
    item->setSizeHint(QSize(10, 31));
    item->setHidden(true);
    QCOMPARE(list.sizeHint().height(), empty + 30);
    delete item;
    QCOMPARE(list.sizeHint().height(), empty);
}

QTEST_MAIN(TestFixedHeightListWidget)

#include "tst_fixedheightlistwidget.moc"
