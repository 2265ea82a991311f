#include <support/testcase.h>
#include <workbench/arrayslice.h>

#include <QTest>

#include <algorithm>
#include <limits>

namespace
{

using Extents = QVector<long long>;

constexpr long long most = std::numeric_limits<long long>::max();

/// The coordinates of the number at `index` of a box, the last coordinate fastest.
Extents coordinatesInBox(const ArrayBox &box, long long index)
{
    Extents result = box.start;
    for (int i = result.size() - 1; i >= 0; index /= box.count.at(i--))
        result[i] += index % box.count.at(i);
    return result;
}

} // namespace

class TestArraySlice : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void sectionsCountThroughTheirDimensionsLikeDigits()
    {
        ArraySlice slice({2, 3, 4, 5});
        QCOMPARE(slice.coordinates(2, 3), (Extents{0, 0, 2, 3}));
        QVERIFY(slice.arrange({2, 0}, {1}, {3}));
        QVERIFY(!slice.arrange({2}, {1}, {3})); // one is missing
        QVERIFY(!slice.arrange({2}, {1, 2}, {0, 3})); // one is there twice
        QVERIFY(!slice.arrange({2}, {0, 1}, {4}));
        slice.setIndex(3, 99); // limited to 4
        QCOMPARE(slice.numRows(), 8LL);
        QCOMPARE(slice.coordinates(1, 0), (Extents{1, 0, 0, 4})); // dimension 0 is the fastest
        QCOMPARE(slice.coordinates(6, 1), (Extents{0, 1, 3, 4}));
        QCOMPARE(ArraySlice({7}).numRows(), 7LL);
    }

    void partsCoverEachCellOnceAtItsCoordinates()
    {
        ArraySlice flat({6, 7});
        QCOMPARE(flat.parts(0, 0, 6, 7).size(), 1); // not a read for each cell
        QVERIFY(flat.arrange({1}, {0}, {}));
        QCOMPARE(flat.parts(0, 0, 7, 6).size(), 1);

        // Each way to deal out the dimensions, and parts that begin anywhere.
        QVector<int> order{0, 1, 2, 3};
        do {
            for (int rowsEnd = 0; rowsEnd <= 4; ++rowsEnd) {
                for (int columnsEnd = rowsEnd; columnsEnd <= 4; ++columnsEnd) {
                    ArraySlice slice({2, 1, 3, 2});
                    slice.setIndex(2, 1);
                    QVERIFY(slice.arrange(order.mid(0, rowsEnd),
                                          order.mid(rowsEnd, columnsEnd - rowsEnd),
                                          order.mid(columnsEnd)));
                    for (int row = 0; row < slice.numRows(); ++row) {
                        for (int column = 0; column < slice.numColumns(); ++column)
                            checkParts(slice, row, column);
                    }
                }
            }
        } while (std::next_permutation(order.begin(), order.end()));
    }

    void hostileExtentsNeverOverflow()
    {
        ArraySlice slice({most, most, 3});
        QVERIFY(slice.arrange({0, 1}, {2}, {}));
        QCOMPARE(slice.numRows(), most);
        QCOMPARE(slice.coordinates(most - 1, 2), (Extents{0, most - 1, 2}));
        QCOMPARE(slice.parts(most - 4, 0, 4, 3).constFirst().box.start, (Extents{0, most - 4, 0}));

        // No numbers at all: a saturated product must not hide that.
        ArraySlice empty({most, most, 0});
        QVERIFY(empty.arrange({0, 1, 2}, {}, {}));
        QCOMPARE(empty.numRows(), 0LL);
        QVERIFY(empty.arrange({0}, {1}, {2}));
        QCOMPARE(empty.numColumns(), 0LL);
    }

private:
    void checkParts(const ArraySlice &slice, int firstRow, int firstColumn)
    {
        const int rows = static_cast<int>(slice.numRows()) - firstRow;
        const int columns = static_cast<int>(slice.numColumns()) - firstColumn;
        QVector<int> seen(rows * columns, 0);
        const auto parts = slice.parts(firstRow, firstColumn, rows, columns);
        for (const ArraySlicePart &part : parts) {
            for (int cell = 0; cell < part.rows * part.columns; ++cell) {
                const int row = part.firstRow + cell / part.columns;
                const int column = part.firstColumn + cell % part.columns;
                ++seen[row * columns + column];
                const int index = part.indexInBox(row - part.firstRow, column - part.firstColumn);
                QCOMPARE(coordinatesInBox(part.box, index),
                         slice.coordinates(firstRow + row, firstColumn + column));
            }
        }
        QCOMPARE(seen.count(1), seen.size());
    }
};

QTEST_APPLESS_MAIN(TestArraySlice)
#include "tst_arrayslice.moc"
