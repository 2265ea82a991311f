#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdatable.h>
#include <tul-util-gui/mdatable/mdatableselection.h>

#include <QTest>

#include <limits>

const long long highest = std::numeric_limits<long long>::max();

using Extent = QVector<long long>;

class TestMDATableSelection : public TestCase
{
    Q_OBJECT

    static Extent extent(const MDATableSelection &block)
    {
        return {block.topRow(), block.leftCol(), block.bottomRow(), block.rightCol()};
    }

private Q_SLOTS:
    void blockGrowsFromItsAnchorInAnyDirection()
    {
        MDATableSelection block;
        block.expandTo(3, 4); // not before init()
        QCOMPARE(extent(block), Extent(4, -1));
        block.init(10, 10);
        QVERIFY(!block.isActive() && block.isSingleElement() && !block.isEmpty());
        for (const Extent &step :
             {Extent{3, 20, 3, 10, 10, 20}, Extent{0, 0, 0, 0, 10, 10},
              Extent{highest, -1, 10, -1, highest, 10}, Extent{10, 10, 10, 10, 10, 10}}) {
            block.expandTo(step.at(0), step.at(1));
            QCOMPARE(extent(block), step.mid(2));
            QVERIFY(block.isActive() && block.anchorRow() == 10 && block.anchorCol() == 10);
        }
        QVERIFY(MDATableSelection(1, 2, 3, 4) == MDATableSelection(3, 4, 1, 2)); // other anchor
    }

    void countsStickToTheLargestNumberAndMayBeNegative()
    {
        const MDATableSelection all(0, highest, highest, 0);
        QVERIFY(all.numRows() == highest && all.numCols() == highest && !all.isEmpty());
        QCOMPARE(MDATableSelection(-highest - 1, -2, highest, 5).numRows(), 0LL);
        MDATable table(3, 3); // limits the end of a block, so that it may lie before its start
        const auto inverted = table.selection(table.addSelection({5, 2, 8, 9}));
        QCOMPARE(extent(inverted), (Extent{5, 2, 2, 2}));
        QVERIFY(inverted.numRows() == -2 && !inverted.isEmpty() && inverted.anchorRow() == 5);
    }
};

QTEST_MAIN(TestMDATableSelection)
#include "tst_mdatableselection.moc"
