#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdatable.h>
#include <tul-util-gui/mdatable/mdatableselection.h>

#include <QTest>

#include <limits>

namespace
{

const long long highest = std::numeric_limits<long long>::max();

using Extent = QVector<long long>;

Extent extent(const MDATableSelection &block)
{
    return {block.topRow(), block.leftCol(), block.bottomRow(), block.rightCol()};
}

} // namespace

class TestMDATableSelection : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void blockIsInactiveUntilItIsExpanded()
    {
        MDATableSelection block;
        block.expandTo(3, 4); // not before init()
        QVERIFY(!block.isActive() && block.isEmpty() && !block.isSingleElement());
        QCOMPARE(extent(block), Extent(4, -1));
        QVERIFY(block.anchorRow() == -1 && block.anchorCol() == -1);
        block = MDATableSelection(1, 1, 3, 3);
        QVERIFY(block.isActive());
        block.init(5, 7);
        QVERIFY(!block.isActive() && block.isSingleElement() && !block.isEmpty());
        QCOMPARE(extent(block), (Extent{5, 7, 5, 7}));
    }

    void blockGrowsFromItsAnchorInAnyDirection()
    {
        MDATableSelection block(10, 10, 12, 11);
        QCOMPARE(extent(block), (Extent{10, 10, 12, 11}));
        for (const Extent &step :
             {Extent{3, 20, 3, 10, 10, 20}, Extent{0, 0, 0, 0, 10, 10},
              Extent{highest, -1, 10, -1, highest, 10}, Extent{10, 10, 10, 10, 10, 10}}) {
            const MDATableSelection copy = block; // carries anchor and flags
            block = copy;
            block.expandTo(step.at(0), step.at(1));
            QCOMPARE(extent(block), step.mid(2));
            QVERIFY(block.isActive() && block.anchorRow() == 10 && block.anchorCol() == 10);
        }
    }

    void equalityLooksAtExtentAndActivityOnly()
    {
        const MDATableSelection block(1, 2, 3, 4);
        QVERIFY(block == MDATableSelection(3, 4, 1, 2)); // other anchor
        QVERIFY(block != MDATableSelection(1, 2, 3, 5));
        MDATableSelection inactive;
        inactive.init(1, 2);
        QVERIFY(inactive != MDATableSelection(1, 2, 1, 2));
        inactive.init(-1, -1);
        QVERIFY(inactive == MDATableSelection()); // started or not makes no difference
    }

    void countsStickToTheLargestNumberAndMayBeNegative()
    {
        const MDATableSelection all(0, highest, highest, 0);
        QVERIFY(all.numRows() == highest && all.numCols() == highest && !all.isEmpty());
        const MDATableSelection unset(std::numeric_limits<long long>::min(), -2, highest, 5);
        QVERIFY(unset.numRows() == 0 && unset.numCols() == 0);
        MDATable table(3, 3); // limits the end of a block, so that it may lie before its start
        const int index = table.addSelection(MDATableSelection(5, 2, 8, 9));
        const MDATableSelection inverted = table.selection(index);
        QCOMPARE(extent(inverted), (Extent{5, 2, 2, 2}));
        QVERIFY(inverted.numRows() == -2 && !inverted.isEmpty() && inverted.anchorRow() == 5);
    }
};

QTEST_MAIN(TestMDATableSelection)
#include "tst_mdatableselection.moc"
