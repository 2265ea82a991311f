#include <support/recordingstyle.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/fixedheightlistwidget.h>

#include <QApplication>
#include <QTest>

#include <limits>

class TestFixedHeightListWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hintHugsTheItemsAcrossTheFlow()
    {
        auto *const style = new RecordingStyle;
        QApplication::setStyle(style);
        style->metrics = {{QStyle::PM_DefaultFrameWidth, 2},
                          {QStyle::PM_ScrollBarExtent, 10},
                          {QStyle::PM_ScrollBarSliderMin, 7}, // makes the bar 27 wide
                          {QStyle::PM_ScrollView_ScrollBarSpacing, 5}};
        const QVector<QSize> two{{30, 12}, {20, 40}};
        const auto right = QListView::LeftToRight;
        const auto down = QListView::TopToBottom;
        const struct {
            QListView::Flow flow;
            bool framed;
            int spaced;
            QVector<QSize> items;
            // Two frames, 1, the items, the holder of the bar, the horizontal bar, and the spacing.
            int across;
        } rows[] = {{right, true, 0, {}, 4 + 1 + 1 + 10 + 10},
                    {right, true, 1, two, 4 + 1 + 40 + 10 + 10 + 5},
                    {right, true, 0, {{20, std::numeric_limits<int>::max()}}, QWIDGETSIZE_MAX + 25},
                    {down, true, 0, two, 4 + 1 + 30 + 10 + 27},
                    {down, false, 1, two, 1 + 30 + 10 + 27}};
        for (const auto &row : rows) {
            FixedHeightListWidget list;
            style->hints[QStyle::SH_ScrollView_FrameOnlyAroundContents] = row.spaced;
            list.setFlow(row.flow);
            if (!row.framed)
                list.setFrameStyle(QFrame::NoFrame);
            for (const QSize &size : row.items) {
                auto *const item = new QListWidgetItem(&list);
                item->setSizeHint(size);
                item->setHidden(size.width() == 20); // counts all the same
            }
            QSize expected = list.QAbstractScrollArea::minimumSizeHint();
            (row.flow == right ? expected.rheight() : expected.rwidth()) = row.across;
            QCOMPARE(list.minimumSizeHint(), expected);
            QCOMPARE(list.sizeHint(), expected);
        }
    }
};

QTEST_MAIN(TestFixedHeightListWidget)

#include "tst_fixedheightlistwidget.moc"
