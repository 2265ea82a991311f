#pragma once

#include <QString>
#include <Qt>

#include <vector>

struct FileNode;

/// The children of a node by name: a hash table that is threaded through the nodes themselves, so
/// that it takes some ten bytes a file. Owns nothing.
class ChildTable
{
public:
    /// Goes through all children, in no particular order.
    class Iterator
    {
    public:
        Iterator(const ChildTable &table, std::size_t bucket);
        FileNode *operator*() const { return m_node; }
        Iterator &operator++();
        bool operator!=(const Iterator &other) const { return m_node != other.m_node; }

    private:
        void skipEmptyBuckets();

        const ChildTable &m_table;
        std::size_t m_bucket; // the one after that of the node
        FileNode *m_node = nullptr;
    };

    explicit ChildTable(Qt::CaseSensitivity sensitivity)
        : m_sensitivity(sensitivity)
    {
    }

    int size() const { return m_size; }

    /// The child of a name, or null. One of exactly this name goes before one that only the table's
    /// case sensitivity takes for it.
    FileNode *find(const QString &name) const;

    /// The child of exactly this name, or null.
    FileNode *findExact(const QString &name) const;

    /// Makes room for this many children in all at once: growing step by step sorts them into new
    /// buckets each time.
    void reserve(int count);

    void insert(FileNode *node);
    void remove(FileNode *node);

    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, m_buckets.size()}; }

private:
    std::size_t bucketOf(const QString &name) const;

    Qt::CaseSensitivity m_sensitivity;
    int m_size = 0;
    std::vector<FileNode *> m_buckets; // the first nodes of chains; a power of two, or none
};
