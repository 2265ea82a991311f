#pragma once

#include <QMap>
#include <QVector>

class MDATableItem;

/// Where the items of an MDATable are kept: one slot a cell, row by row (dense), or a map by linear
/// index (sparse). Owns what is in it. Knows nothing of the table's dimensions: callers pass the
/// number of columns.
///
/// Lookups never trust a linear index alone: it wraps round for tables of more than 2^63 cells, and
/// the dense vector may be shorter than the table.
class CellStore
{
public:
    CellStore() = default;
    ~CellStore();
    CellStore(const CellStore &) = delete;
    CellStore &operator=(const CellStore &) = delete;

    /// `columns` x `row` + `col`, modulo 2^64.
    static long long indexOf(long long row, long long col, long long columns);

    bool isSparse() const { return m_sparse; }
    void setSparse(bool sparse) { m_sparse = sparse; }
    int denseSize() const { return m_dense.size(); }

    /// The item of a cell inside the table, or null.
    MDATableItem *find(long long row, long long col, long long rows, long long columns) const;

    /// Puts an item into a cell that is empty. The dense store must have its full size.
    void put(long long row, long long col, long long columns, MDATableItem *item);

    /// Takes the item of a cell out of the store and leaves the cell empty; null for none.
    MDATableItem *release(long long row, long long col, long long columns);

    /// Takes an item out, wherever it is, and leaves its cell empty. Items of other tables stay
    /// where they are.
    void releaseItem(MDATableItem *item, long long columns);

    /// The same, but by design a dense store closes the gap: later slots move up by one.
    void removeItem(MDATableItem *item, long long columns);

    /// Sizes the dense store; the items of slots that go are deleted, from the last on.
    void resizeDense(int size);

    /// Empties both stores without deleting: the dense items that sit in their right slot are
    /// returned slot by slot, null elsewhere; all others are dropped.
    QVector<MDATableItem *> saveDense(long long columns);

    /// Puts saved items back into the slots that their cells have now; deletes those whose cells
    /// are gone or filled.
    void restoreDense(const QVector<MDATableItem *> &saved, long long columns);

    /// Moves the items of the map into the slots of their cells; deletes those that have none.
    void moveSparseToDense(long long columns);

    /// Deletes all items and empties both stores.
    void clear();

private:
    int takeOut(MDATableItem *item, long long columns);

    QVector<MDATableItem *> m_dense;
    QMap<long long, MDATableItem *> m_sparseItems;
    bool m_sparse = false;
};
