#include <workbench/arrayslice.h>

#include <algorithm>
#include <limits>

namespace
{

constexpr long long most = std::numeric_limits<long long>::max();

long long saturatedProduct(long long a, long long b)
{
    return a != 0 && b > most / a ? most : a * b;
}

} // namespace

ArraySlice::ArraySlice(const QVector<long long> &extents)
    : m_extents(extents)
    , m_indices(extents.size(), 0)
{
    const int rank = extents.size();
    for (int dimension = 0; dimension < rank; ++dimension) {
        const bool last = dimension == rank - 1;
        const bool rowLike = last ? rank == 1 : dimension == rank - 2;
        m_dimensions[rowLike ? Rows : (last ? Columns : Fixed)].append(dimension);
    }
}

bool ArraySlice::arrange(const QVector<int> &rows, const QVector<int> &columns,
                         const QVector<int> &fixed)
{
    QVector<int> all = rows + columns + fixed;
    std::sort(all.begin(), all.end());
    if (all.size() != m_extents.size())
        return false;
    for (int i = 0; i < all.size(); ++i) {
        if (all.at(i) != i)
            return false;
    }
    m_dimensions[Rows] = rows;
    m_dimensions[Columns] = columns;
    m_dimensions[Fixed] = fixed;
    return true;
}

void ArraySlice::setIndex(int dimension, long long index)
{
    const long long last = std::max(m_extents.at(dimension) - 1, 0LL);
    m_indices[dimension] = std::clamp(index, 0LL, last);
}

long long ArraySlice::sectionCount(Axis axis) const
{
    // A fixed dimension without numbers leaves nothing to show, whatever the axes.
    for (const int dimension : m_dimensions[Fixed]) {
        if (m_extents.at(dimension) == 0)
            return 0;
    }
    long long count = 1;
    for (const int dimension : m_dimensions[axis]) {
        if (m_extents.at(dimension) == 0)
            return 0; // a product that was saturated before must not survive it
        count = saturatedProduct(count, m_extents.at(dimension));
    }
    return count;
}

void ArraySlice::setCoordinates(Axis axis, long long section, QVector<long long> &coordinates) const
{
    const QVector<int> &dimensions = m_dimensions[axis];
    for (int i = dimensions.size() - 1; i >= 0; --i) {
        const long long extent = m_extents.at(dimensions.at(i));
        coordinates[dimensions.at(i)] = section % extent;
        section /= extent;
    }
}

QVector<long long> ArraySlice::coordinates(long long row, long long column) const
{
    QVector<long long> result = m_indices;
    setCoordinates(Rows, row, result);
    setCoordinates(Columns, column, result);
    return result;
}

QVector<ArraySlice::Run> ArraySlice::runs(Axis axis, long long section, int count) const
{
    // Dimensions of one number never change and do not end a run.
    const QVector<int> &dimensions = m_dimensions[axis];
    const auto fastest = std::find_if(dimensions.rbegin(), dimensions.rend(),
                                      [&](int dimension) { return m_extents.at(dimension) > 1; });
    if (fastest == dimensions.rend())
        return {{section, 1, -1}};

    QVector<Run> result;
    const long long extent = m_extents.at(*fastest);
    while (count > 0) {
        const long long left = extent - section % extent;
        const int length = static_cast<int>(std::min<long long>(left, count));
        result.append({section, length, *fastest});
        section += length;
        count -= length;
    }
    return result;
}

QVector<ArraySlicePart> ArraySlice::parts(long long row, long long column, int rows,
                                          int columns) const
{
    QVector<ArraySlicePart> result;
    const QVector<Run> columnRuns = runs(Columns, column, columns);
    const QVector<Run> rowRuns = runs(Rows, row, rows);
    for (const Run &rowRun : rowRuns) {
        for (const Run &columnRun : columnRuns) {
            ArrayBox box{coordinates(rowRun.section, columnRun.section),
                         QVector<long long>(m_extents.size(), 1)};
            if (rowRun.dimension >= 0)
                box.count[rowRun.dimension] = rowRun.count;
            if (columnRun.dimension >= 0)
                box.count[columnRun.dimension] = columnRun.count;
            result.append({box, static_cast<int>(rowRun.section - row),
                           static_cast<int>(columnRun.section - column), rowRun.count,
                           columnRun.count,
                           columnRun.dimension >= 0 && rowRun.dimension > columnRun.dimension});
        }
    }
    return result;
}
