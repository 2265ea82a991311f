#include <tul-util-gui/mdatable/cellstore_p.h>

#include <tul-util-gui/mdatable/mdatableitem.h>
#include <tul-util-gui/mdatable/saturated_p.h>

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
    if (m_sparse)
        return m_sparseItems.take(index);
    if (index < 0 || index >= m_dense.size())
        return nullptr;
    MDATableItem *item = m_dense.at(static_cast<int>(index));
    m_dense[static_cast<int>(index)] = nullptr;
    return item;
}

bool CellStore::isInPlace(const MDATableItem *item, long long columns) const
{
    if (item->row() < 0 || item->col() < 0 || item->col() >= columns)
        return false;
    const long long index = indexOf(item->row(), item->col(), columns);
    if (m_sparse)
        return m_sparseItems.value(index, nullptr) == item;
    return index >= 0 && index < m_dense.size() && m_dense.at(static_cast<int>(index)) == item;
}

void CellStore::releaseItem(const MDATableItem *item, long long columns)
{
    if (removeFromMap(item, columns))
        return;
    const int slot = slotOf(item, columns);
    if (slot != -1)
        m_dense[slot] = nullptr;
}

void CellStore::removeItem(const MDATableItem *item, long long columns)
{
    if (m_sparse) {
        releaseItem(item, columns);
        const auto key = m_sparseItems.key(const_cast<MDATableItem *>(item), -1);
        if (key != -1)
            m_sparseItems.remove(key);
        return;
    }
    // Searched for where it is not in its place: the caller will delete it.
    const int found = slotOf(item, columns);
    const int slot = found != -1 ? found : m_dense.indexOf(const_cast<MDATableItem *>(item));
    if (slot == -1)
        return;
    m_dense.remove(slot);
    m_shifted = true;
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
    m_sparseItems.clear();
    m_shifted = false;
    for (int slot = 0; slot < saved.size(); ++slot) {
        const MDATableItem *item = saved.at(slot);
        if (item && indexOf(item->row(), item->col(), columns) != slot)
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
    m_shifted = false;
    qDeleteAll(sparseItems);
    qDeleteAll(dense);
}

bool CellStore::removeFromMap(const MDATableItem *item, long long columns)
{
    const long long index = indexOf(item->row(), item->col(), columns);
    if (m_sparseItems.value(index, nullptr) != item)
        return false;
    m_sparseItems.remove(index);
    return true;
}

/// The dense slot of an item, also of one left behind in a table that has become sparse; -1 when it
/// is in none.
int CellStore::slotOf(const MDATableItem *item, long long columns) const
{
    const long long index = indexOf(item->row(), item->col(), columns);
    if (index >= 0 && index < m_dense.size() && m_dense.at(static_cast<int>(index)) == item)
        return static_cast<int>(index);
    return m_shifted ? m_dense.indexOf(const_cast<MDATableItem *>(item)) : -1;
}
