#include <tul-util-gui/mdatable/cellstore_p.h>

#include <tul-util-gui/mdatable/mdatableitem.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <algorithm>
#include <limits>

CellStore::~CellStore()
{
    clear();
}

long long CellStore::indexOf(long long row, long long col, long long columns)
{
    return static_cast<long long>(static_cast<unsigned long long>(columns)
                                      * static_cast<unsigned long long>(row)
                                  + static_cast<unsigned long long>(col));
}

MDATableItem *CellStore::find(long long row, long long col, long long rows, long long columns) const
{
    const long long index = indexOf(row, col, columns);
    if (m_sparse) {
        MDATableItem *item = m_sparseItems.value(index, nullptr);
        const bool unique
            = tul::saturatedMul(rows, columns) < std::numeric_limits<long long>::max();
        return item && (unique || (item->row() == row && item->col() == col)) ? item : nullptr;
    }
    // By design: the product of the two indices counts, not the linear index. It is below the size
    // for every cell once the store is sized, and for none while it is empty.
    if (tul::saturatedMul(row, col) >= m_dense.size())
        return nullptr;
    if (index < 0 || index >= m_dense.size())
        return nullptr;
    return m_dense.at(static_cast<int>(index));
}

void CellStore::put(long long row, long long col, long long columns, MDATableItem *item)
{
    const long long index = indexOf(row, col, columns);
    item->m_placed = 1;
    if (m_sparse) {
        // Another cell of the same index, in a table of more than 2^64 cells, gives way.
        const MDATableItem *evicted = m_sparseItems.value(index, nullptr);
        m_sparseItems.insert(index, item);
        delete evicted;
    } else if (index >= 0 && index < m_dense.size()) {
        m_dense[static_cast<int>(index)] = item;
    }
}

MDATableItem *CellStore::release(long long row, long long col, long long columns)
{
    const long long index = indexOf(row, col, columns);
    MDATableItem *item = nullptr;
    if (m_sparse)
        item = m_sparseItems.take(index);
    else if (index >= 0 && index < m_dense.size())
        std::swap(item, m_dense[static_cast<int>(index)]);
    if (item)
        item->m_placed = 0;
    return item;
}

void CellStore::releaseItem(MDATableItem *item, long long columns)
{
    const int slot = takeOut(item, columns);
    if (slot != -1)
        m_dense[slot] = nullptr;
}

void CellStore::removeItem(MDATableItem *item, long long columns)
{
    const int slot = takeOut(item, columns);
    if (slot == -1)
        return;
    if (m_sparse)
        m_dense[slot] = nullptr;
    else
        m_dense.remove(slot);
}

void CellStore::resizeDense(int size)
{
    if (size > m_dense.size()) {
        m_dense.reserve(size);
        m_dense.resize(size);
    }
    // Taken out first: the destructor of an item may call back into the table.
    while (m_dense.size() > size)
        delete m_dense.takeLast();
}

QVector<MDATableItem *> CellStore::saveDense(long long columns)
{
    QVector<MDATableItem *> saved;
    saved.swap(m_dense);
    for (MDATableItem *item : qAsConst(m_sparseItems))
        item->m_placed = 0;
    m_sparseItems.clear();
    for (int slot = 0; slot < saved.size(); ++slot) {
        MDATableItem *item = saved.at(slot);
        if (!item || indexOf(item->row(), item->col(), columns) == slot)
            continue;
        item->m_placed = 0;
        saved[slot] = nullptr;
    }
    return saved;
}

void CellStore::restoreDense(const QVector<MDATableItem *> &saved, long long columns)
{
    for (MDATableItem *item : saved) {
        if (!item)
            continue;
        const long long index
            = tul::saturatedAdd(tul::saturatedMul(item->row(), columns), item->col());
        const bool kept = index >= 0 && index < m_dense.size() && index / columns == item->row()
            && index % columns == item->col() && !m_dense.at(static_cast<int>(index));
        if (kept)
            m_dense[static_cast<int>(index)] = item;
        else
            delete item;
    }
}

void CellStore::moveSparseToDense(long long columns)
{
    QMap<long long, MDATableItem *> moved;
    moved.swap(m_sparseItems);
    for (auto entry = moved.cbegin(); entry != moved.cend(); ++entry) {
        const long long index = entry.key();
        if (index < 0 || index >= m_dense.size() || columns == 0) {
            delete entry.value();
            continue;
        }
        const MDATableItem *leftover = m_dense.at(static_cast<int>(index));
        m_dense[static_cast<int>(index)] = entry.value();
        delete leftover;
    }
}

void CellStore::clear()
{
    QMap<long long, MDATableItem *> sparseItems;
    sparseItems.swap(m_sparseItems);
    QVector<MDATableItem *> dense;
    dense.swap(m_dense);
    qDeleteAll(sparseItems);
    qDeleteAll(dense);
}

/// Erases the map entry of an item, or returns the dense slot that it is in, -1 for none. It is
/// looked for where its row and column say, then everywhere: they may have been changed, slots may
/// have moved up, and a table that has become sparse keeps its dense items. Items that are in no
/// store, as most that come to be placed, cost nothing.
int CellStore::takeOut(MDATableItem *item, long long columns)
{
    if (!item->m_placed)
        return -1;
    const long long index = indexOf(item->row(), item->col(), columns);
    if (m_sparseItems.value(index, nullptr) == item) {
        m_sparseItems.remove(index);
        item->m_placed = 0;
        return -1;
    }
    int slot = -1;
    if (index >= 0 && index < m_dense.size() && m_dense.at(static_cast<int>(index)) == item)
        slot = static_cast<int>(index);
    else
        slot = m_dense.indexOf(item);
    if (slot == -1) {
        const auto isItem = [item](const MDATableItem *held) { return held == item; };
        const auto found = std::find_if(m_sparseItems.begin(), m_sparseItems.end(), isItem);
        if (found == m_sparseItems.end())
            return -1; // in another table
        m_sparseItems.erase(found);
    }
    item->m_placed = 0;
    return slot;
}
