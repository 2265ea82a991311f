#include <support/testcase.h>
#include <tul-util-gui/widgets/sidebarwidget.h>

#include <QImage>
#include <QTest>

class TestSideBarWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void ruleRunsAlongOneEdge_data();
    void ruleRunsAlongOneEdge();
};

void TestSideBarWidget::ruleRunsAlongOneEdge_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QRect>("rule"); // in a widget of 9 x 7
    QTest::newRow("north") << 0 << QRect(0, 0, 9, 1);
    QTest::newRow("south") << 1 << QRect(0, 6, 9, 1);
    QTest::newRow("west") << 2 << QRect(0, 0, 1, 7);
    QTest::newRow("east") << 3 << QRect(8, 0, 1, 7);
    QTest::newRow("nowhere") << 7 << QRect();
}

void TestSideBarWidget::ruleRunsAlongOneEdge()
{
    QFETCH(const int, position);
    QFETCH(const QRect, rule);
    for (const QColor &fill : {QColor(), QColor(Qt::yellow)}) {
        SideBarWidget bar;
        bar.resize(9, 7);
        QPalette palette;
        palette.setColor(QPalette::Window, Qt::white);
        bar.setPalette(palette);
        bar.setLineColour(Qt::red);
        bar.setBackgroundColour(fill);
        QCOMPARE(bar.linePosition(), SideBarWidget::East);
        bar.setProperty("linePosition", position);
        const QImage picture = bar.grab().toImage();
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 9; ++x) {
                const QColor around = fill.isValid() ? fill : QColor(Qt::white);
                QCOMPARE(picture.pixelColor(x, y), rule.contains(x, y) ? QColor(Qt::red) : around);
            }
        }
    }
}

QTEST_MAIN(TestSideBarWidget)

#include "tst_sidebarwidget.moc"
