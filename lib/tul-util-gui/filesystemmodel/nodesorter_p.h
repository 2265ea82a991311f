#pragma once

#include <QCollator>
#include <QString>
#include <Qt>

#include <functional>
#include <vector>

struct FileDirectory;
struct FileNode;

/// A file and what it is compared by, worked out once and not at each comparison.
struct SortEntry {
    FileNode *node;
    qint64 number; ///< compared first; what it is depends on the column
    QCollatorSortKey name;
};

/// Entries in runs, each of them in order and at least twice as long as the next: however many
/// pieces come, an entry takes part in few merges.
struct SortedRuns {
    std::vector<SortEntry> entries;
    std::vector<std::size_t> starts; ///< of the runs in the entries
};

/// Puts the rows of a directory in order by a column of the model, for one locale: the default one
/// at the time when it is made.
///
/// Names are compared without case, numbers in them by value where the locale can; the order of
/// what is equal then is that of the code points. Ascending, directories come first by name or
/// size. The descending order is exactly the reverse.
class NodeSorter
{
public:
    using TypeText = std::function<QString(FileNode *)>;

    /// `column` is one of RemoteFileSystemModel::Column, `typeText` gives the text of the type.
    NodeSorter(int column, Qt::SortOrder order, TypeText typeText);

    /// The visible nodes of a directory in order. With `all` false, those before the directory's
    /// dirtyChildrenIndex are taken to be in order already.
    std::vector<FileNode *> inOrder(FileDirectory &directory, bool all) const;

    /// Does a part of the work ahead, for the rows that have come since the last time: for a
    /// listing that arrives in pieces, so that the sort at its end is short.
    void sortAhead(FileDirectory &directory) const;

private:
    using Entries = std::vector<SortEntry>;

    bool isLess(const SortEntry &a, const SortEntry &b) const;
    QCollatorSortKey keyOf(const QString &text) const;
    SortEntry entryOf(FileNode *node) const;
    Entries sortedEntries(const FileDirectory &directory, std::size_t first) const;
    void mergeLastRuns(SortedRuns &runs) const;
    void rankTypes(Entries &entries) const;
    std::vector<FileNode *> merged(const FileDirectory &directory, std::size_t dirty) const;

    const int m_column;
    const Qt::SortOrder m_order;
    const TypeText m_typeText;
    QCollator m_collator;
};
