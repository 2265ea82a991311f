#include "childtable_p.h"

#include "filenode_p.h"

#include <QHash>

#include <algorithm>
#include <utility>

namespace
{

const std::size_t leastBuckets = 8;

} // namespace

ChildTable::Iterator::Iterator(const ChildTable &table, std::size_t bucket)
    : m_table(table)
    , m_bucket(bucket)
{
    skipEmptyBuckets();
}

ChildTable::Iterator &ChildTable::Iterator::operator++()
{
    m_node = m_node->nextInTable;
    skipEmptyBuckets();
    return *this;
}

void ChildTable::Iterator::skipEmptyBuckets()
{
    while (!m_node && m_bucket < m_table.m_buckets.size())
        m_node = m_table.m_buckets[m_bucket++];
}

FileNode *ChildTable::find(const QString &name) const
{
    FileNode *const exact = findExact(name);
    if (exact || m_sensitivity == Qt::CaseSensitive || m_buckets.empty())
        return exact;
    const QString lower = name.toLower();
    FileNode *node = m_buckets[bucketOf(name)];
    while (node && node->fileName.toLower() != lower)
        node = node->nextInTable;
    return node;
}

FileNode *ChildTable::findExact(const QString &name) const
{
    if (m_buckets.empty())
        return nullptr;
    FileNode *node = m_buckets[bucketOf(name)];
    while (node && node->fileName != name)
        node = node->nextInTable;
    return node;
}

void ChildTable::reserve(int count)
{
    std::size_t buckets = std::max(m_buckets.size(), leastBuckets);
    while (buckets < static_cast<std::size_t>(count))
        buckets *= 2;
    if (buckets == m_buckets.size())
        return;
    const std::vector<FileNode *> nodes = [this] {
        std::vector<FileNode *> all;
        for (FileNode *const node : *this)
            all.push_back(node);
        return all;
    }();
    m_buckets.assign(buckets, nullptr);
    for (FileNode *const node : nodes) {
        FileNode *&first = m_buckets[bucketOf(node->fileName)];
        node->nextInTable = std::exchange(first, node);
    }
}

void ChildTable::insert(FileNode *node)
{
    reserve(m_size + 1);
    ++m_size;
    FileNode *&first = m_buckets[bucketOf(node->fileName)];
    node->nextInTable = std::exchange(first, node);
}

void ChildTable::remove(FileNode *node)
{
    FileNode **link = &m_buckets[bucketOf(node->fileName)];
    while (*link != node)
        link = &(*link)->nextInTable;
    *link = std::exchange(node->nextInTable, nullptr);
    --m_size;
}

std::size_t ChildTable::bucketOf(const QString &name) const
{
    const bool isExact = m_sensitivity == Qt::CaseSensitive;
    return qHash(isExact ? name : name.toLower()) & (m_buckets.size() - 1);
}
