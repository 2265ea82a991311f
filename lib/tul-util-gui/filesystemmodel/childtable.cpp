#include "childtable_p.h"

#include "filenode_p.h"

#include <QHash>

#include <utility>

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

void ChildTable::insert(FileNode *node)
{
    if (static_cast<std::size_t>(m_size) >= m_buckets.size())
        grow();
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

void ChildTable::grow()
{
    const std::vector<FileNode *> nodes = [this] {
        std::vector<FileNode *> all;
        for (FileNode *const node : *this)
            all.push_back(node);
        return all;
    }();
    m_buckets.assign(m_buckets.empty() ? 8 : m_buckets.size() * 2, nullptr);
    for (FileNode *const node : nodes) {
        FileNode *&first = m_buckets[bucketOf(node->fileName)];
        node->nextInTable = std::exchange(first, node);
    }
}
