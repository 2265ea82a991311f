#include <support/testcase.h>
#include <tul-util-gui/widgets/sidebarwidget.h>

#include <QImage>
#include <QTest>

class TestSideBarWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void ruleRunsAlongOneEdge()
    {
        const QRect rules[] = {{0, 0, 9, 1}, {0, 6, 9, 1}, {0, 0, 1, 7}, {8, 0, 1, 7}, {}};
        for (int i = 0; i < 10;
             ++i) { // each position, and one that is none, with and without a fill
            const QColor fill = i % 2 ? QColor(Qt::yellow) : QColor();
            SideBarWidget bar;
            bar.resize(9, 7);
            bar.setPalette(Qt::white);
            bar.setLineColour(Qt::red);
            bar.setBackgroundColour(fill);
            QCOMPARE(bar.linePosition(), SideBarWidget::East);
            bar.setProperty("linePosition", i / 2);
            const QImage picture = bar.grab().toImage();
            const QColor around = fill.isValid() ? fill : bar.palette().color(QPalette::Window);
            for (int pixel = 0; pixel < 9 * 7; ++pixel) {
                const QPoint at(pixel % 9, pixel / 9);
                QCOMPARE(picture.pixelColor(at),
                         rules[i / 2].contains(at) ? QColor(Qt::red) : around);
            }
        }
    }
};

QTEST_MAIN(TestSideBarWidget)

#include "tst_sidebarwidget.moc"
