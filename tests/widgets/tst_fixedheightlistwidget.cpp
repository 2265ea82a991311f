#include <support/testcase.h>
#include <tul-util-gui/widgets/fixedheightlistwidget.h>

#include <QApplication>
#include <QHash>
#include <QProxyStyle>
#include <QTest>

#include <limits>

namespace
{

// Frame 2, vertical bar 10 wide, horizontal bar 27 x 10, and 5 between frame and bars if asked.
class FixedMetrics : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        const QHash<int, int> values{{PM_DefaultFrameWidth, 2},
                                     {PM_ScrollBarExtent, 10},
                                     {PM_ScrollBarSliderMin, 7},
                                     {PM_ScrollView_ScrollBarSpacing, 5}};
        return values.value(metric, QProxyStyle::pixelMetric(metric, option, widget));
    }

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override
    {
        return hint == SH_ScrollView_FrameOnlyAroundContents && widget
            ? widget->objectName().contains(QStringLiteral("spaced"))
            : QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

} // namespace

class TestFixedHeightListWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new FixedMetrics); }
    void hintHugsTheItemsAcrossTheFlow_data();
    void hintHugsTheItemsAcrossTheFlow();
};

void TestFixedHeightListWidget::hintHugsTheItemsAcrossTheFlow_data()
{
    QTest::addColumn<QListView::Flow>("flow");
    QTest::addColumn<QVector<QSize>>("items");
    QTest::addColumn<bool>("framed");
    QTest::addColumn<int>("across");
    const QVector<QSize> two{{30, 12}, {20, 40}};
    const QVector<QSize> huge{{20, std::numeric_limits<int>::max()}};
    const auto right = QListView::LeftToRight;
    const auto down = QListView::TopToBottom;

    // Two frames, 1, the items, the holder of the bar, the horizontal bar, and the spacing.
    QTest::newRow("row, empty") << right << QVector<QSize>() << true << 4 + 1 + 1 + 10 + 10;
    QTest::newRow("row, spaced") << right << two << true << 4 + 1 + 40 + 10 + 10 + 5;
    QTest::newRow("row, huge") << right << huge << true << QWIDGETSIZE_MAX + 25;
    QTest::newRow("column") << down << two << true << 4 + 1 + 30 + 10 + 27;
    QTest::newRow("column, spaced, no frame") << down << two << false << 1 + 30 + 10 + 27;
}

void TestFixedHeightListWidget::hintHugsTheItemsAcrossTheFlow()
{
    QFETCH(const QListView::Flow, flow);
    QFETCH(const QVector<QSize>, items);
    QFETCH(const bool, framed);
    QFETCH(const int, across);

    FixedHeightListWidget list;
    list.setObjectName(QString::fromLatin1(QTest::currentDataTag()));
    list.setFlow(flow);
    if (!framed)
        list.setFrameStyle(QFrame::NoFrame);
    for (const QSize &size : items) {
        auto *const item = new QListWidgetItem(&list);
        item->setSizeHint(size);
        item->setHidden(size.width() == 20); // counts all the same
    }

    QSize expected = list.QAbstractScrollArea::minimumSizeHint();
    (flow == QListView::LeftToRight ? expected.rheight() : expected.rwidth()) = across;
    QCOMPARE(list.minimumSizeHint(), expected);
    QCOMPARE(list.sizeHint(), expected);
}

QTEST_MAIN(TestFixedHeightListWidget)

#include "tst_fixedheightlistwidget.moc"
