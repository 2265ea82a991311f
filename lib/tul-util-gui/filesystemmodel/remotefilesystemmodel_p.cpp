#include "remotefilesystemmodel_p.h"

#include "fileoperations_p.h"
#include "filesystempaths_p.h"
#include "sizetext_p.h"

#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>
#include <tul-util-gui/filesystemmodel/remotefileinfogathererhandler.h>

#include <QDateTime>
#include <QFileIconProvider>
#include <QLocale>

#include <algorithm>
#include <utility>

namespace
{

// With more pieces than this, removing them one by one takes longer than a new layout.
const std::size_t mostRanges = 32;

struct Range {
    int first;
    int last;
};

/// The rows of the nodes that have one, neighbours together, in ascending order.
std::vector<Range> rangesOf(const std::vector<FileNode *> &nodes)
{
    std::vector<int> rows;
    rows.reserve(nodes.size());
    for (const FileNode *const node : nodes) {
        if (node->isVisible())
            rows.push_back(node->row);
    }
    std::sort(rows.begin(), rows.end());
    std::vector<Range> ranges;
    for (const int row : rows) {
        if (!ranges.empty() && row <= ranges.back().last + 1)
            ranges.back().last = row;
        else
            ranges.push_back({row, row});
    }
    return ranges;
}

} // namespace

RemoteFileSystemModelPrivate::RemoteFileSystemModelPrivate(RemoteFileSystemModel *model)
    : q(model)
    , gatherer(makeGatherer())
    , appearance(*gatherer)
    , results(*this)
{
    delayedSortTimer.setSingleShot(true);
}

RemoteFileSystemModelPrivate::~RemoteFileSystemModelPrivate()
{
    gatherer->stop();
    QObject::disconnect(gatherer, nullptr, q, nullptr);
    if (gatherer->parent() == q)
        delete gatherer;
}

RemoteFileInfoGatherer *RemoteFileSystemModelPrivate::makeGatherer() const
{
    RemoteFileInfoGathererHandler *const handler
        = RemoteFileSystemModel::remoteFileInfoGathererHandler();
    RemoteFileInfoGatherer *const made = handler ? handler->createGatherer(q) : nullptr;
    return made ? made : new RemoteFileInfoGatherer(q);
}

FileNode *RemoteFileSystemModelPrivate::node(const QModelIndex &index) const
{
    if (!index.isValid() || index.model() != q)
        return tree.root();
    return static_cast<FileNode *>(index.internalPointer());
}

FileNode *RemoteFileSystemModelPrivate::node(const QString &path, bool fetch)
{
    FileNode *const root = tree.root();
    if (path.isEmpty() || path == q->myComputer().toString() || path.startsWith(QLatin1Char(':')))
        return root;
    const QString absolutePath
        = path == rootDir.path() ? rootDir.absolutePath() : QDir(path).absolutePath();
    const FileTree::Keeper keeper(tree);
    FileNode *found = root;
    QString elementPath;
    bool isKnown = false; // that the path exists
    const QStringList elements = tul::splitPath(absolutePath);
    for (int i = 0; i < elements.size(); ++i) {
        if (i > 0)
            elementPath += QLatin1Char('/');
        elementPath += elements.at(i);
        // Nothing is made on the way to what does not exist.
        if (!isKnown && !FileTree::find(found, elements.at(i))) {
            if (!QFileInfo::exists(tul::requestPath(absolutePath)))
                return root;
            isKnown = true;
        }
        found = child(found, elements.at(i), elementPath, fetch);
        if (!found)
            return root;
    }
    return found;
}

/// One step of the walk along a path; null where it ends.
FileNode *RemoteFileSystemModelPrivate::child(FileNode *parent, const QString &name,
                                              const QString &path, bool fetch)
{
    FileNode *found = FileTree::find(parent, name);
    if (found && found->isVisible())
        return found;
    if (!found) {
        const QFileInfo info(tul::requestPath(path));
        if (!info.exists())
            return nullptr;
        found = FileTree::add(parent, name, info);
    } else if (!fetch) {
        return nullptr;
    }
    found->bypassesFilters = true;
    showNodes(parent, {found});
    return found->isRemoved ? nullptr : found;
}

QModelIndex RemoteFileSystemModelPrivate::index(const FileNode *node, int column) const
{
    if (!node->isVisible())
        return {};
    return q->createIndex(node->row, column, const_cast<FileNode *>(node));
}

QString RemoteFileSystemModelPrivate::filePath(const FileNode *node)
{
    return QDir::fromNativeSeparators(FileTree::path(node));
}

QString RemoteFileSystemModelPrivate::resolvedPath(const FileNode *node) const
{
    const QString path = filePath(node);
    if (!q->resolveSymlinks() || !node->isSymLink() || !node->isDirectory())
        return path;
    return resolvedSymLinks.value(path, path);
}

QString RemoteFileSystemModelPrivate::requestPath(const FileNode *node)
{
    return tul::requestPath(filePath(node));
}

const RemoteExtendedInformation &RemoteFileSystemModelPrivate::record(FileNode *node)
{
    static const RemoteExtendedInformation none;
    if (!node->hasInfo)
        return none;
    if (!node->record) {
        auto record = std::make_unique<RemoteExtendedInformation>(node->info);
        appearance.fill(*record);
        node->record = std::move(record);
    }
    return *node->record;
}

QString RemoteFileSystemModelPrivate::typeText(FileNode *node)
{
    if (node->record || !node->hasInfo || !appearance.isShared())
        return record(node).displayType;
    return appearance.typeText(RemoteExtendedInformation(node->info));
}

QVariant RemoteFileSystemModelPrivate::icon(FileNode *node)
{
    const QIcon &own = record(node).icon;
    if (!own.isNull() || !gatherer->iconProvider())
        return own;
    return gatherer->iconProvider()->icon(node->isDirectory() ? QFileIconProvider::Folder
                                                              : QFileIconProvider::File);
}

void RemoteFileSystemModelPrivate::forgetAppearances()
{
    appearance.clear();
    for (const FileNode *const directory : directories()) {
        for (FileNode *const child : directory->directory->children)
            child->record.reset();
    }
}

QString RemoteFileSystemModelPrivate::sizeText(const FileNode *node)
{
    return node->isDirectory() ? QString() : tul::sizeText(node->size(), QLocale());
}

QString RemoteFileSystemModelPrivate::dateText(const FileNode *node)
{
    return QLocale::system().toString(node->lastModified(), QLocale::ShortFormat);
}

void RemoteFileSystemModelPrivate::list(FileNode *node)
{
    node->populatedChildren = true;
    gatherer->list(requestPath(node));
}

void RemoteFileSystemModelPrivate::listOnce(FileNode *node)
{
    if (!node->populatedChildren)
        list(node);
}

void RemoteFileSystemModelPrivate::listPath(const QString &path)
{
    FileNode *const node = tree.findPath(path);
    if (node && node->populatedChildren)
        list(node);
}

void RemoteFileSystemModelPrivate::showNodes(FileNode *parent, const Nodes &nodes)
{
    // What the gatherer reports may name a file twice.
    Nodes fresh;
    fresh.reserve(nodes.size());
    for (FileNode *const node : nodes) {
        if (!node->isVisible() && !node->isRemoved && !std::exchange(node->isListed, true))
            fresh.push_back(node);
    }
    for (FileNode *const node : fresh)
        node->isListed = false;
    if (fresh.empty() || parent->isRemoved)
        return;
    if (!tree.isShown(parent)) {
        tree.appendRows(parent, fresh);
    } else {
        const auto first
            = parent->directory ? static_cast<int>(parent->directory->visible.size()) : 0;
        q->beginInsertRows(index(parent), first, first + static_cast<int>(fresh.size()) - 1);
        tree.appendRows(parent, fresh);
        q->endInsertRows();
    }
    sortSoon();
}

void RemoteFileSystemModelPrivate::hideNodes(FileNode *parent, const Nodes &nodes)
{
    const std::vector<Range> ranges = rangesOf(nodes);
    const bool isShown = tree.isShown(parent);
    if (isShown && ranges.size() > mostRanges) {
        changeLayout(QAbstractItemModel::NoLayoutChangeHint, [&] {
            for (FileNode *const node : nodes)
                node->row = -1;
            Nodes rows;
            for (FileNode *const node : parent->directory->visible) {
                if (node->isVisible())
                    rows.push_back(node);
            }
            FileTree::setRows(parent, std::move(rows));
            // The first row out of order may be another one now.
            int &dirty = parent->directory->dirtyChildrenIndex;
            dirty = std::min(dirty, ranges.front().first);
        });
        return;
    }
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        if (isShown)
            q->beginRemoveRows(index(parent), range->first, range->last);
        FileTree::removeRows(parent, range->first, range->last);
        if (isShown)
            q->endRemoveRows();
    }
}

void RemoteFileSystemModelPrivate::removeNodes(FileNode *parent, const Nodes &nodes)
{
    const FileTree::Keeper keeper(tree);
    hideNodes(parent, nodes);
    for (FileNode *const node : nodes) {
        if (node->isRemoved)
            continue;
        unwatch(node);
        tree.remove(node);
    }
}

/// For a directory and all below it. Of one that was moved away the watch would stay, and keep from
/// being watched what comes to its path later.
void RemoteFileSystemModelPrivate::unwatch(const FileNode *node)
{
    if (node->populatedChildren)
        gatherer->removePath(requestPath(node));
    if (!node->directory)
        return;
    for (const FileNode *const child : node->directory->children)
        unwatch(child);
}

void RemoteFileSystemModelPrivate::announceChanged(FileNode *parent, const Nodes &nodes,
                                                   bool changesKind)
{
    const std::vector<Range> ranges = rangesOf(nodes);
    if (ranges.empty() || parent->isRemoved)
        return;
    if (sortColumn != RemoteFileSystemModel::NameColumn || changesKind) {
        tree.markDirty(parent, ranges.front().first);
        parent->directory->sorted = {};
        sortSoon();
    }
    for (const Range &range : ranges) {
        if (!tree.isShown(parent))
            return;
        const QModelIndex parentIndex = index(parent);
        Q_EMIT q->dataChanged(
            q->index(range.first, 0, parentIndex),
            q->index(range.last, RemoteFileSystemModel::ColumnCount - 1, parentIndex));
    }
}

void RemoteFileSystemModelPrivate::filterSoon()
{
    forceSort = true;
    mustFilter = true;
    sortSoon();
}

void RemoteFileSystemModelPrivate::sortSoon()
{
    // Rows that still arrive are sorted when all are there.
    const bool isNeeded = forceSort || tree.hasDirty();
    if (isNeeded && results.isEmpty() && !delayedSortTimer.isActive())
        delayedSortTimer.start(0);
}

void RemoteFileSystemModelPrivate::sortAhead(FileNode *parent)
{
    if (parent->directory)
        sorter().sortAhead(*parent->directory);
}

void RemoteFileSystemModelPrivate::sortNow()
{
    if (!results.isEmpty())
        return; // comes again when they are done
    if (mustFilter) {
        sortAll();
        return;
    }
    const bool all = std::exchange(forceSort, false);
    const Nodes dirty = tree.takeDirty();
    sortDirectories(all ? directories() : dirty, all);
}

/// Sorts, and tells of it only where rows really move.
void RemoteFileSystemModelPrivate::sortDirectories(const Nodes &nodes, bool all)
{
    const NodeSorter order = sorter();
    std::vector<std::pair<FileNode *, Nodes>> moved;
    for (FileNode *const node : nodes) {
        FileDirectory &directory = *node->directory;
        Nodes rows = order.inOrder(directory, all);
        directory.dirtyChildrenIndex = -1;
        if (rows != directory.visible)
            moved.emplace_back(node, std::move(rows));
    }
    if (moved.empty())
        return;
    changeLayout(QAbstractItemModel::VerticalSortHint, [&] {
        for (auto &[node, rows] : moved)
            FileTree::setRows(node, std::move(rows));
    });
}

void RemoteFileSystemModelPrivate::sortAll()
{
    const auto hint = mustFilter ? QAbstractItemModel::NoLayoutChangeHint
                                 : QAbstractItemModel::VerticalSortHint;
    changeLayout(hint, [this] {
        const NodeSorter order = sorter();
        for (FileNode *const node : directories()) {
            if (mustFilter)
                FileTree::setRows(node, acceptedRows(node));
            node->directory->sorted = {};
            FileTree::setRows(node, order.inOrder(*node->directory, true));
            node->directory->dirtyChildrenIndex = -1;
        }
        tree.takeDirty();
        forceSort = false;
        mustFilter = false;
    });
}

NodeSorter RemoteFileSystemModelPrivate::sorter()
{
    return {sortColumn, sortOrder, [this](FileNode *node) { return typeText(node); }};
}

/// All nodes with children.
RemoteFileSystemModelPrivate::Nodes RemoteFileSystemModelPrivate::directories() const
{
    Nodes found;
    if (tree.root()->directory)
        found.push_back(tree.root());
    for (std::size_t i = 0; i < found.size(); ++i) {
        for (FileNode *const child : found[i]->directory->children) {
            if (child->directory)
                found.push_back(child);
        }
    }
    return found;
}

/// The children that the filters let pass, those with rows first.
RemoteFileSystemModelPrivate::Nodes
RemoteFileSystemModelPrivate::acceptedRows(const FileNode *directory) const
{
    Nodes rows;
    for (FileNode *const node : directory->directory->visible) {
        if (filter.accepts(*node))
            rows.push_back(node);
    }
    for (FileNode *const node : directory->directory->children) {
        if (!node->isVisible() && filter.accepts(*node))
            rows.push_back(node);
    }
    return rows;
}

/// Announces a change of many rows, after which persistent indexes are where their files are.
void RemoteFileSystemModelPrivate::changeLayout(QAbstractItemModel::LayoutChangeHint hint,
                                                const std::function<void()> &change)
{
    Q_EMIT q->layoutAboutToBeChanged({}, hint);
    change();
    const QModelIndexList before = q->persistentIndexList();
    QModelIndexList now;
    now.reserve(before.size());
    for (const QModelIndex &old : before) {
        const FileNode *const node = this->node(old);
        now.append(tree.isShown(node) ? index(node, old.column()) : QModelIndex());
    }
    q->changePersistentIndexList(before, now);
    Q_EMIT q->layoutChanged({}, hint);
}

QModelIndex RemoteFileSystemModelPrivate::makeDirectory(FileNode *parent, const QString &name)
{
    const FileTree::Keeper keeper(tree);
    const QDir dir(requestPath(parent));
    if (name.isEmpty() || !dir.mkdir(name))
        return {};
    const QString path = dir.absolutePath() + QLatin1Char('/') + name;
    if (name.contains(QLatin1Char('/')))
        return q->index(path);
    FileNode *made = FileTree::find(parent, name);
    if (!made)
        made = FileTree::add(parent, name, QFileInfo(path));
    adopt(made, QFileInfo(path));
    showNodes(parent, {made});
    return made->isRemoved ? QModelIndex() : index(made);
}

bool RemoteFileSystemModelPrivate::removeDirectory(const FileNode *node)
{
    if (!node->parent || !node->parent->parent)
        return false; // a drive or the root of a machine
    const QString path = requestPath(node);
    gatherer->removePath(path);
    const bool isRemoved = tul::removeDirectory(path);
    if (isRemoved)
        list(node->parent);
    else
        listPath(path); // is watched again
    return isRemoved;
}

bool RemoteFileSystemModelPrivate::removeTree(const FileNode *node)
{
    const bool isDots
        = node->fileName == QLatin1String(".") || node->fileName == QLatin1String("..");
    if (!node->parent || isDots)
        return false; // the directory that is shown, or more, and not an entry of it
    const QString path = requestPath(node);
    gatherer->removePath(path);
    const tul::RemovedTree removed = tul::removeTree(path);
    for (const QString &directory : removed.directories)
        gatherer->removePath(directory);
    // Whatever could not be removed has changed all the same, and is not watched any more.
    for (const QString &directory : removed.kept)
        listPath(directory);
    if (removed.anyRemoved)
        list(node->parent);
    return removed.anyRemoved;
}

/// Puts a node that was renamed on disk under its new name.
void RemoteFileSystemModelPrivate::adoptNewName(FileNode *node, const QString &newName)
{
    const FileTree::Keeper keeper(tree);
    FileNode *const parent = node->parent;
    gatherer->removePath(requestPath(node));
    // One that was there before is gone from the disk, but its listing has not come yet.
    FileNode *const stale = FileTree::find(parent, newName);
    if (stale && stale != node)
        removeNodes(parent, {stale});
    // What is below has other paths now.
    removeNodes(node, FileTree::children(node));
    if (node->isRemoved)
        return;
    FileTree::rename(node, newName);
    adopt(node, QFileInfo(QDir(requestPath(parent)), newName));
    if (!parent->isRemoved)
        list(parent); // a listing under way may bring the old name
}

/// Makes a node that of a file or directory which the model itself has put on the disk.
void RemoteFileSystemModelPrivate::adopt(FileNode *node, const QFileInfo &info)
{
    removeNodes(node, FileTree::children(node)); // of one that was there before
    node->setInfo(info);
    node->isOwn = true;
    if (node->isRemoved)
        return;
    if (std::exchange(node->populatedChildren, false))
        list(node);
    announceChanged(node->parent, {node}, true);
}
