#include "nodesorter_p.h"

#include "filenode_p.h"

#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QDateTime>
#include <QHash>
#include <QLocale>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace
{

// So many old rows to a new one make it cheaper to look for the place of the new one.
const std::size_t searchFactor = 32;

std::vector<FileNode *> nodesOf(const std::vector<SortEntry> &entries)
{
    std::vector<FileNode *> nodes;
    nodes.reserve(entries.size());
    for (const SortEntry &entry : entries)
        nodes.push_back(entry.node);
    return nodes;
}

} // namespace

NodeSorter::NodeSorter(int column, Qt::SortOrder order, TypeText typeText)
    : m_column(column)
    , m_order(order)
    , m_typeText(std::move(typeText))
    , m_collator(QLocale())
{
    m_collator.setNumericMode(true);
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
}

std::vector<FileNode *> NodeSorter::inOrder(FileDirectory &directory, bool all) const
{
    const std::size_t count = directory.visible.size();
    const auto dirty = static_cast<std::size_t>(std::max(directory.dirtyChildrenIndex, 0));
    if (!directory.sorted.entries.empty()) {
        sortAhead(directory);
        SortedRuns sorted = std::exchange(directory.sorted, {});
        while (sorted.starts.size() > 1)
            mergeLastRuns(sorted);
        return nodesOf(sorted.entries);
    }
    // The rank of a type depends on all types.
    const bool canMerge = !all && m_column != RemoteFileSystemModel::TypeColumn;
    if (canMerge && (count - dirty) * searchFactor < count)
        return merged(directory, dirty);
    return nodesOf(sortedEntries(directory, 0));
}

void NodeSorter::sortAhead(FileDirectory &directory) const
{
    if (m_column == RemoteFileSystemModel::TypeColumn)
        return;
    SortedRuns &sorted = directory.sorted;
    Entries fresh = sortedEntries(directory, sorted.entries.size());
    sorted.starts.push_back(sorted.entries.size());
    sorted.entries.insert(sorted.entries.end(), std::make_move_iterator(fresh.begin()),
                          std::make_move_iterator(fresh.end()));
    while (sorted.starts.size() > 1) {
        const std::size_t last = sorted.starts.back();
        const std::size_t before = sorted.starts[sorted.starts.size() - 2];
        if (last - before >= 2 * (sorted.entries.size() - last))
            break;
        mergeLastRuns(sorted);
    }
}

void NodeSorter::mergeLastRuns(SortedRuns &runs) const
{
    const auto at = [&runs](std::size_t position) {
        return runs.entries.begin() + static_cast<std::ptrdiff_t>(position);
    };
    const std::size_t last = runs.starts.back();
    runs.starts.pop_back();
    std::inplace_merge(at(runs.starts.back()), at(last), runs.entries.end(),
                       [this](const SortEntry &a, const SortEntry &b) { return isLess(a, b); });
}

bool NodeSorter::isLess(const SortEntry &a, const SortEntry &b) const
{
    const SortEntry &first = m_order == Qt::AscendingOrder ? a : b;
    const SortEntry &second = m_order == Qt::AscendingOrder ? b : a;
    if (first.number != second.number)
        return first.number < second.number;
    const int byName = first.name.compare(second.name);
    return byName != 0 ? byName < 0 : first.node->fileName < second.node->fileName;
}

QCollatorSortKey NodeSorter::keyOf(const QString &text) const
{
    // Keys of the plain locale would tell upper from lower case.
    const bool isPlain = m_collator.locale().language() == QLocale::C;
    return m_collator.sortKey(isPlain ? text.toCaseFolded() : text);
}

SortEntry NodeSorter::entryOf(FileNode *node) const
{
    qint64 number = 0;
    switch (m_column) {
    case RemoteFileSystemModel::NameColumn:
        number = node->isDirectory() ? 0 : 1;
        break;
    case RemoteFileSystemModel::SizeColumn:
        number = node->isDirectory() ? -1 : node->size();
        break;
    case RemoteFileSystemModel::DateColumn: {
        const QDateTime date = node->lastModified();
        number = date.isValid() ? date.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
        break;
    }
    default: // types are ranked together
        break;
    }
    return {node, number, keyOf(node->fileName)};
}

/// The entries of the rows from `first` on, in order.
NodeSorter::Entries NodeSorter::sortedEntries(const FileDirectory &directory,
                                              std::size_t first) const
{
    Entries entries;
    entries.reserve(directory.visible.size() - first);
    for (std::size_t row = first; row < directory.visible.size(); ++row)
        entries.push_back(entryOf(directory.visible[row]));
    if (m_column == RemoteFileSystemModel::TypeColumn)
        rankTypes(entries);
    std::sort(entries.begin(), entries.end(),
              [this](const SortEntry &a, const SortEntry &b) { return isLess(a, b); });
    return entries;
}

/// Numbers the types in their order, so that the many files of few types compare numbers.
void NodeSorter::rankTypes(Entries &entries) const
{
    QHash<QString, qint64> ranks;
    for (const SortEntry &entry : std::as_const(entries))
        ranks.insert(m_typeText(entry.node), 0);
    std::multimap<QCollatorSortKey, QString> types;
    for (auto it = ranks.cbegin(); it != ranks.cend(); ++it)
        types.emplace(keyOf(it.key()), it.key());
    qint64 rank = 0;
    const QCollatorSortKey *previous = nullptr;
    for (const auto &[key, type] : types) {
        if (previous && previous->compare(key) != 0)
            ++rank;
        previous = &key;
        ranks[type] = rank;
    }
    for (SortEntry &entry : entries)
        entry.number = ranks.value(m_typeText(entry.node));
}

/// The rows from `dirty` on put into those before, which are in order.
std::vector<FileNode *> NodeSorter::merged(const FileDirectory &directory, std::size_t dirty) const
{
    const std::vector<FileNode *> &visible = directory.visible;
    const Entries fresh = sortedEntries(directory, dirty);
    std::vector<FileNode *> result;
    result.reserve(visible.size());
    auto from = visible.begin();
    const auto end = visible.begin() + static_cast<std::ptrdiff_t>(dirty);
    for (const SortEntry &entry : fresh) {
        const auto place
            = std::upper_bound(from, end, entry, [this](const SortEntry &a, FileNode *b) {
                  return isLess(a, entryOf(b));
              });
        result.insert(result.end(), from, place);
        result.push_back(entry.node);
        from = place;
    }
    result.insert(result.end(), from, end);
    return result;
}
