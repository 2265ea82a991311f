#include "remotefilesystemmodel_p.h"

#include "fileoperations_p.h"
#include "filesystempaths_p.h"
#include "rowranges_p.h"
#include "sizetext_p.h"

#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>
#include <tul-util-gui/filesystemmodel/remotefileinfogathererhandler.h>

#include <QDateTime>
#include <QFileIconProvider>
#include <QLocale>
#include <QPointer>

#include <algorithm>
#include <optional>
#include <utility>

namespace
{

// With more pieces than this, removing them one by one takes longer than a new layout.
const std::size_t mostRanges = 32;

/// Whether a node is an entry of a directory, and not the root or one of the dots.
bool isEntry(const FileNode *node)
{
    return node->parent && !tul::isDots(node->fileName);
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
        return tree->root();
    return static_cast<FileNode *>(index.internalPointer());
}

FileNode *RemoteFileSystemModelPrivate::node(const QString &path, bool fetch)
{
    FileNode *const root = tree->root();
    if (path.isEmpty() || path == q->myComputer().toString() || path.startsWith(QLatin1Char(':')))
        return root;
    // Cleaned before: ".." above the root of a remote machine would lead to this one.
    const QString absolutePath = path == rootDir.path() ? rootDir.absolutePath()
                                                        : QDir(tul::cleanPath(path)).absolutePath();
    const FileTree::Keeper keeper(tree);
    const QPointer<RemoteFileSystemModel> guard(q);
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
        if (!guard)
            return nullptr;
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
    return showNodes(parent, {found}) && !found->isRemoved ? found : nullptr;
}

QModelIndex RemoteFileSystemModelPrivate::index(const FileNode *node, int column) const
{
    if (!node->isVisible())
        return {};
    return q->createIndex(node->row, column, const_cast<FileNode *>(node));
}

QModelIndex RemoteFileSystemModelPrivate::indexOf(const QString &path, bool fetch, int column)
{
    const FileNode *const found = node(path, fetch);
    return found ? index(found, column) : QModelIndex();
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
    FileNode *const node = tree->findPath(path);
    if (node && node->populatedChildren)
        list(node);
}

void RemoteFileSystemModelPrivate::listAnew(FileNode *node)
{
    const QString path = requestPath(node);
    gatherer->removePath(path);
    // Watched from here: the gatherer's thread has to ask this one for it, and would list before.
    // Files made in between would never show. As there, names of machines are not watched.
    if (node->info.isNativePath() && !path.startsWith(QLatin1String("//")))
        gatherer->addPath(path);
    list(node);
}

bool RemoteFileSystemModelPrivate::showNodes(FileNode *parent, const Nodes &nodes)
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
        return true;
    if (!tree->isShown(parent)) {
        tree->appendRows(parent, fresh);
    } else {
        const auto first
            = parent->directory ? static_cast<int>(parent->directory->visible.size()) : 0;
        const QPointer<RemoteFileSystemModel> guard(q);
        q->beginInsertRows(index(parent), first, first + static_cast<int>(fresh.size()) - 1);
        tree->appendRows(parent, fresh);
        q->endInsertRows();
        if (!guard)
            return false;
    }
    sortSoon();
    return true;
}

bool RemoteFileSystemModelPrivate::hideNodes(FileNode *parent, const Nodes &nodes)
{
    const FileTree::Keeper keeper(tree);
    const std::vector<RowRange> ranges = tul::rowRanges(nodes);
    if (ranges.size() > mostRanges) {
        const auto hide = [&] {
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
        };
        if (tree->isShown(parent))
            return changeLayout(QAbstractItemModel::NoLayoutChangeHint, hide);
        hide();
        return true;
    }
    // One range at a time: the receivers may sort the rows that are left, or hide them.
    const QPointer<RemoteFileSystemModel> guard(q);
    Nodes left = nodes;
    while (const std::optional<RowRange> range = tul::takeLastRows(left)) {
        const bool isShown = tree->isShown(parent);
        if (isShown)
            q->beginRemoveRows(index(parent), range->first, range->last);
        FileTree::removeRows(parent, range->first, range->last);
        if (isShown)
            q->endRemoveRows();
        if (!guard)
            return false;
    }
    return true;
}

bool RemoteFileSystemModelPrivate::removeNodes(FileNode *parent, const Nodes &nodes)
{
    const FileTree::Keeper keeper(tree);
    if (!hideNodes(parent, nodes))
        return false;
    for (FileNode *const node : nodes) {
        if (node->isRemoved || node->isVisible()) // a receiver has brought it back
            continue;
        unwatch(node);
        tree->remove(node);
    }
    return true;
}

void RemoteFileSystemModelPrivate::unwatch(const FileNode *node)
{
    if (node->populatedChildren)
        gatherer->removePath(requestPath(node));
    if (!node->directory)
        return;
    for (const FileNode *const child : node->directory->children)
        unwatch(child);
}

bool RemoteFileSystemModelPrivate::announceChanged(FileNode *parent, const Nodes &nodes,
                                                   bool changesKind)
{
    const std::vector<RowRange> ranges = tul::rowRanges(nodes);
    if (ranges.empty() || parent->isRemoved)
        return true;
    if (sortColumn != RemoteFileSystemModel::NameColumn || changesKind) {
        tree->markDirty(parent, ranges.front().first);
        parent->directory->sorted = {};
        sortSoon();
    }
    const FileTree::Keeper keeper(tree);
    const QPointer<RemoteFileSystemModel> guard(q);
    for (const RowRange &range : ranges) {
        const QModelIndex parentIndex = index(parent);
        if (!tree->isShown(parent) || range.last >= q->rowCount(parentIndex))
            return true; // receivers have taken rows away
        Q_EMIT q->dataChanged(
            q->index(range.first, 0, parentIndex),
            q->index(range.last, RemoteFileSystemModel::ColumnCount - 1, parentIndex));
        if (!guard)
            return false;
    }
    return true;
}

/// For cells whose text is in another language now.
bool RemoteFileSystemModelPrivate::announceTexts()
{
    const FileTree::Keeper keeper(tree);
    const QPointer<RemoteFileSystemModel> guard(q);
    const Nodes nodes = directories();
    return std::all_of(nodes.begin(), nodes.end(), [&](const FileNode *node) {
        const auto rows = static_cast<int>(node->directory->visible.size());
        if (rows == 0 || !tree->isShown(node))
            return true;
        const QModelIndex parent = index(node);
        Q_EMIT q->dataChanged(q->index(0, RemoteFileSystemModel::SizeColumn, parent),
                              q->index(rows - 1, RemoteFileSystemModel::TypeColumn, parent));
        return !guard.isNull();
    });
}

void RemoteFileSystemModelPrivate::filterSoon()
{
    forceSort = true;
    mustFilter = true;
    sortSoon();
}

/// Lets the filters decide again on what was asked for by its path, except for the root and for
/// directories that somebody holds on to, with what leads to them.
void RemoteFileSystemModelPrivate::forgetBypasses()
{
    for (const FileNode *const directory : directories()) {
        for (FileNode *const child : directory->directory->children)
            child->bypassesFilters = false;
    }
    const auto keep = [](FileNode *node) {
        for (; node; node = node->parent)
            node->bypassesFilters = node->bypassesFilters || node->isDirectory();
    };
    keep(tree->findPath(rootDir.path().isEmpty() ? QString() : rootDir.absolutePath()));
    const QModelIndexList held = q->persistentIndexList();
    for (const QModelIndex &index : held)
        keep(node(index));
}

void RemoteFileSystemModelPrivate::sortSoon()
{
    // Rows that still arrive are sorted when all are there.
    const bool isNeeded = forceSort || tree->hasDirty();
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
    const Nodes dirty = tree->takeDirty();
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
        tree->takeDirty();
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
    if (tree->root()->directory)
        found.push_back(tree->root());
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

/// Announces a change of many rows, after which persistent indexes are where their files are. False
/// when a receiver has deleted the model.
bool RemoteFileSystemModelPrivate::changeLayout(QAbstractItemModel::LayoutChangeHint hint,
                                                const std::function<void()> &change)
{
    const QPointer<RemoteFileSystemModel> guard(q);
    Q_EMIT q->layoutAboutToBeChanged({}, hint);
    if (!guard)
        return false;
    change();
    const QModelIndexList before = q->persistentIndexList();
    QModelIndexList now;
    now.reserve(before.size());
    for (const QModelIndex &old : before) {
        const FileNode *const node = this->node(old);
        now.append(tree->isShown(node) ? index(node, old.column()) : QModelIndex());
    }
    q->changePersistentIndexList(before, now);
    Q_EMIT q->layoutChanged({}, hint);
    return !guard.isNull();
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
    const QFileInfo info(path);
    FileNode *made = FileTree::findFile(parent, name, !info.isNativePath());
    if (!made)
        made = FileTree::add(parent, name, info);
    made->bypassesFilters = true;
    if (!adopt(made, info) || !showNodes(parent, {made}))
        return {};
    return made->isRemoved ? QModelIndex() : index(made);
}

bool RemoteFileSystemModelPrivate::removeDirectory(const FileNode *node)
{
    const FileTree::Keeper keeper(tree);
    if (!isEntry(node) || !node->parent->parent)
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
    const FileTree::Keeper keeper(tree);
    if (!isEntry(node))
        return false; // the directory that is shown, or more
    const QString path = requestPath(node);
    gatherer->removePath(path);
    // Not after: the watch would report each directory as it goes.
    const tul::RemovedTree removed = tul::removeTree(
        path, [this](const QString &directory) { gatherer->removePath(directory); });
    // Whatever could not be removed has changed all the same, and is not watched any more.
    for (const QString &directory : removed.kept)
        listPath(directory);
    if (removed.anyRemoved)
        list(node->parent);
    return removed.anyRemoved;
}

/// Puts a node that was renamed on disk under its new name.
bool RemoteFileSystemModelPrivate::adoptNewName(FileNode *node, const QString &newName)
{
    const FileTree::Keeper keeper(tree);
    FileNode *const parent = node->parent;
    const QFileInfo info(QDir(requestPath(parent)), newName);
    gatherer->removePath(requestPath(node));
    // One that was there before is gone from the disk, but its listing has not come yet.
    FileNode *const stale = FileTree::findFile(parent, newName, !info.isNativePath());
    if (stale && stale != node && !removeNodes(parent, {stale}))
        return false;
    // What is below has other paths now.
    if (!removeNodes(node, FileTree::children(node)))
        return false;
    if (node->isRemoved)
        return true;
    FileTree::rename(node, newName);
    if (!adopt(node, info))
        return false;
    if (!parent->isRemoved)
        list(parent); // a listing under way may bring the old name
    return true;
}

/// Makes a node that of a file or directory which the model itself has put on the disk.
bool RemoteFileSystemModelPrivate::adopt(FileNode *node, const QFileInfo &info)
{
    if (!removeNodes(node, FileTree::children(node))) // of one that was there before
        return false;
    node->setInfo(info);
    node->isOwn = true;
    if (node->isRemoved)
        return true;
    if (std::exchange(node->populatedChildren, false))
        list(node);
    return announceChanged(node->parent, {node}, true);
}
