#include <support/testcase.h>
#include <workbench/arrayslice.h>

#include <QTest>

#include <limits>

namespace
{

using Dimensions = QVector<int>;
using Extents = QVector<long long>;

constexpr long long most = std::numeric_limits<long long>::max();

/// The coordinates of the number at `index` of a box, the last coordinate fastest.
QVector<long long> coordinatesInBox(const ArrayBox &box, int index)
{
    QVector<long long> result = box.start;
    for (int i = result.size() - 1; i >= 0; --i) {
        result[i] += index % box.count.at(i);
        index /= static_cast<int>(box.count.at(i));
    }
    return result;
}

} // namespace

class TestArraySlice : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void lastTwoDimensionsBecomeColumnsAndRows();
    void sectionsCountThroughTheirDimensionsLikeDigits();
    void partsCoverEachCellOnceAtItsCoordinates_data();
    void partsCoverEachCellOnceAtItsCoordinates();
    void onlyPermutationsAreAccepted();
    void hostileExtentsNeverOverflow();
};

void TestArraySlice::lastTwoDimensionsBecomeColumnsAndRows()
{
    const ArraySlice four({2, 3, 4, 5});
    QCOMPARE(four.dimensions(ArraySlice::Rows), Dimensions{2});
    QCOMPARE(four.dimensions(ArraySlice::Columns), Dimensions{3});
    QCOMPARE(four.dimensions(ArraySlice::Fixed), (Dimensions{0, 1}));
    const ArraySlice one({7});
    QCOMPARE(one.numRows(), 7LL);
    QCOMPARE(one.numColumns(), 1LL);
}

void TestArraySlice::sectionsCountThroughTheirDimensionsLikeDigits()
{
    ArraySlice slice({2, 3, 4, 5});
    QVERIFY(slice.arrange({2, 0}, {1}, {3}));
    slice.setIndex(3, 99); // limited to 4
    QCOMPARE(slice.numRows(), 8LL);
    QCOMPARE(slice.coordinates(0, 2), (Extents{0, 2, 0, 4}));
    QCOMPARE(slice.coordinates(1, 0), (Extents{1, 0, 0, 4})); // dimension 0 is the fastest
    QCOMPARE(slice.coordinates(7, 1), (Extents{1, 1, 3, 4}));
}

void TestArraySlice::partsCoverEachCellOnceAtItsCoordinates_data()
{
    QTest::addColumn<Extents>("extents");
    QTest::addColumn<Dimensions>("rows");
    QTest::addColumn<Dimensions>("columns");
    QTest::addColumn<int>("mostParts"); // for all cells at once

    QTest::newRow("in order") << Extents{6, 7} << Dimensions{0} << Dimensions{1} << 1;
    QTest::newRow("transposed") << Extents{6, 7} << Dimensions{1} << Dimensions{0} << 1;
    QTest::newRow("all fixed") << Extents{6, 7} << Dimensions{} << Dimensions{} << 1;
    QTest::newRow("columns only") << Extents{3, 4} << Dimensions{} << Dimensions{0, 1} << 3;
    QTest::newRow("two and two") << Extents{2, 3, 4, 5} << Dimensions{3, 0} << Dimensions{2, 1}
                                 << 20;
    QTest::newRow("three rows") << Extents{2, 3, 4, 5} << Dimensions{0, 2, 1} << Dimensions{3} << 8;
    QTest::newRow("extents of 1") << Extents{1, 5, 1, 6} << Dimensions{1, 2} << Dimensions{3, 0}
                                  << 1;
}

void TestArraySlice::partsCoverEachCellOnceAtItsCoordinates()
{
    QFETCH(Extents, extents);
    QFETCH(Dimensions, rows);
    QFETCH(Dimensions, columns);
    QFETCH(int, mostParts);

    Dimensions fixed;
    for (int dimension = 0; dimension < extents.size(); ++dimension) {
        if (!rows.contains(dimension) && !columns.contains(dimension))
            fixed.append(dimension);
    }
    ArraySlice slice(extents);
    QVERIFY(slice.arrange(rows, columns, fixed));
    for (const int dimension : qAsConst(fixed))
        slice.setIndex(dimension, 1);
    const int numRows = static_cast<int>(slice.numRows());
    const int numColumns = static_cast<int>(slice.numColumns());
    QVERIFY(slice.parts(0, 0, numRows, numColumns).size() <= mostParts);

    // Every range of cells, so that parts begin and end anywhere.
    for (int firstRow = 0; firstRow < numRows; ++firstRow) {
        for (int firstColumn = 0; firstColumn < numColumns; ++firstColumn) {
            const int rowCount = numRows - firstRow;
            const int columnCount = numColumns - firstColumn;
            QVector<int> seen(rowCount * columnCount, 0);
            for (const ArraySlicePart &part :
                 slice.parts(firstRow, firstColumn, rowCount, columnCount)) {
                for (int cell = 0; cell < part.rows * part.columns; ++cell) {
                    const int row = cell / part.columns;
                    const int column = cell % part.columns;
                    ++seen[(part.firstRow + row) * columnCount + part.firstColumn + column];
                    QCOMPARE(coordinatesInBox(part.box, part.indexInBox(row, column)),
                             slice.coordinates(firstRow + part.firstRow + row,
                                               firstColumn + part.firstColumn + column));
                }
            }
            QCOMPARE(seen.count(1), seen.size());
        }
    }
}

void TestArraySlice::onlyPermutationsAreAccepted()
{
    ArraySlice slice({2, 3, 4});
    QVERIFY(!slice.arrange({0}, {1}, {})); // one is missing
    QVERIFY(!slice.arrange({0, 1}, {1}, {2})); // one is there twice
    QVERIFY(!slice.arrange({0}, {1}, {1}));
    QVERIFY(!slice.arrange({0}, {1}, {3}));
    QVERIFY(!slice.arrange({0}, {1, -1}, {2}));
    QCOMPARE(slice.dimensions(ArraySlice::Rows), Dimensions{1});
    QVERIFY(slice.arrange({}, {2, 0, 1}, {}));
    QCOMPARE(slice.numColumns(), 24LL);
}

void TestArraySlice::hostileExtentsNeverOverflow()
{
    ArraySlice slice({most, most, 3});
    QVERIFY(slice.arrange({0, 1}, {2}, {}));
    QCOMPARE(slice.numRows(), most);
    QCOMPARE(slice.coordinates(most - 1, 2), (Extents{0, most - 1, 2}));
    const QVector<ArraySlicePart> parts = slice.parts(most - 4, 0, 4, 3);
    QCOMPARE(parts.size(), 1);
    QCOMPARE(parts.first().box.start, (Extents{0, most - 4, 0}));

    // No numbers at all: a saturated product must not hide that.
    ArraySlice empty({most, most, 0});
    QVERIFY(empty.arrange({0, 1, 2}, {}, {}));
    QCOMPARE(empty.numRows(), 0LL);
    QVERIFY(empty.arrange({0}, {1}, {2}));
    QCOMPARE(empty.numRows(), 0LL);
    QCOMPARE(empty.numColumns(), 0LL);
}

QTEST_APPLESS_MAIN(TestArraySlice)
#include "tst_arrayslice.moc"
