#pragma once

#include <QVector>

/// A block of an array: the coordinates of its first number and its extent in each dimension.
struct ArrayBox {
    QVector<long long> start;
    QVector<long long> count;
};

/// A block of cells that is one block of the array too, and where it lies among the cells asked
/// for.
struct ArraySlicePart {
    ArrayBox box;
    int firstRow;
    int firstColumn;
    int rows;
    int columns;
    bool transposed; ///< the array holds the block column by column

    /// The place of a cell of this part in the block, which is stored in the array's order.
    int indexInBox(int row, int column) const
    {
        return transposed ? column * rows + row : row * columns + column;
    }
};

/// A two-dimensional look at an array: which dimensions run along the rows, which along the
/// columns, and at which index the others are fixed.
///
/// Several dimensions on one axis are counted through like digits: the last one changes with every
/// row, the first one most slowly. An axis without a dimension has one section.
class ArraySlice
{
public:
    enum Axis { Rows, Columns, Fixed };
    static constexpr int axisCount = 3;

    ArraySlice() = default;

    /// The usual look at an array of these extents: the last dimension along the columns, the one
    /// before along the rows, all others fixed at 0. A single dimension runs along the rows.
    explicit ArraySlice(const QVector<long long> &extents);

    const QVector<long long> &extents() const { return m_extents; }

    /// The dimensions of an axis, the slowest first.
    const QVector<int> &dimensions(Axis axis) const { return m_dimensions[axis]; }

    /// Deals out the dimensions anew. Returns false and changes nothing unless each dimension is
    /// named exactly once.
    bool arrange(const QVector<int> &rows, const QVector<int> &columns, const QVector<int> &fixed);

    /// Where a dimension is fixed; remembered while it runs along an axis. Limited to its extent.
    long long index(int dimension) const { return m_indices.at(dimension); }
    void setIndex(int dimension, long long index);

    /// How many cells there are. A product that no 64-bit number holds counts as the largest one:
    /// what lies beyond cannot be reached.
    long long numRows() const { return sectionCount(Rows); }
    long long numColumns() const { return sectionCount(Columns); }

    /// The coordinates of a cell in the array, which must exist.
    QVector<long long> coordinates(long long row, long long column) const;

    /// Cuts a range of existing cells into parts that are blocks of the array.
    QVector<ArraySlicePart> parts(long long row, long long column, int rows, int columns) const;

private:
    /// Sections along which only `dimension` changes; -1 for a single section.
    struct Run {
        long long section;
        int count;
        int dimension;
    };

    long long sectionCount(Axis axis) const;
    void setCoordinates(Axis axis, long long section, QVector<long long> &coordinates) const;
    QVector<Run> runs(Axis axis, long long section, int count) const;

    QVector<long long> m_extents;
    QVector<long long> m_indices;
    QVector<int> m_dimensions[axisCount];
};
