#include "gathererresults_p.h"

#include "fileoperations_p.h"
#include "remotefilesystemmodel_p.h"

#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>

#include <QElapsedTimer>
#include <QPointer>

#include <algorithm>
#include <utility>
#include <vector>

namespace
{

const int sliceLength = 8; // milliseconds; a frame of a moving picture has 16
const int leastFiles = 8192; // in a slice
const int leastPart = 4; // of the rows, in a slice: a view lays out all its rows again for each

/// The permissions that come with a file's status. Those of the user in person would cost a call
/// each on this machine's file systems.
QFileDevice::Permissions statusPermissions(const QFileInfo &info)
{
    QFileDevice::Permissions permissions;
    for (const QFileDevice::Permission permission :
         {QFileDevice::ReadOwner, QFileDevice::WriteOwner, QFileDevice::ExeOwner,
          QFileDevice::ReadGroup, QFileDevice::WriteGroup, QFileDevice::ExeGroup,
          QFileDevice::ReadOther, QFileDevice::WriteOther, QFileDevice::ExeOther})
        permissions.setFlag(permission, info.permission(permission));
    return permissions;
}

bool isSame(const RemoteExtendedInformation &a, const RemoteExtendedInformation &b)
{
    return a.type() == b.type() && a.size() == b.size() && a.isSymLink() == b.isSymLink()
        && a.mFileInfo.isHidden() == b.mFileInfo.isHidden()
        && statusPermissions(a.mFileInfo) == statusPermissions(b.mFileInfo)
        && a.lastModified() == b.lastModified();
}

} // namespace

struct GathererResults::Changes {
    std::vector<FileNode *> appearing;
    std::vector<FileNode *> vanishing;
    std::vector<FileNode *> removed; // among them such without rows
    std::vector<FileNode *> changed;
    std::vector<std::pair<FileNode *, QFileInfo>> replaced; // were directories with children
    std::vector<FileNode *> relisted; // were listed before, and have changed since
    bool changesKind = false; // of some: a file has become a directory or the other way round
};

void GathererResults::addList(const QString &directory, const QStringList &names)
{
    add({Result::List, directory, names, {}});
}

void GathererResults::addUpdates(const QString &directory, const Updates &updates)
{
    add({Result::Files, directory, {}, updates});
}

void GathererResults::addLoaded(const QString &directory)
{
    add({Result::Loaded, directory, {}, {}});
}

void GathererResults::add(const Result &result)
{
    m_results.push_back(result);
    // With a slice still to come, the order asks for waiting.
    if (!m_sliceTimer.isActive())
        workSlice();
}

void GathererResults::timeOut(int timerId)
{
    if (timerId != m_sliceTimer.timerId())
        return;
    m_sliceTimer.stop();
    workSlice();
}

void GathererResults::workSlice()
{
    QElapsedTimer sliceTime;
    sliceTime.start();
    const QPointer<RemoteFileSystemModel> guard(m_model.q);
    while (!m_results.empty()) {
        Result &result = m_results.front();
        if (result.kind == Result::Files && result.next < result.updates.size()) {
            applyUpdates(result, sliceTime);
        } else {
            // Taken out first: a receiver of the signals may run an event loop.
            const Result whole = std::move(result);
            m_results.pop_front();
            if (whole.kind == Result::List)
                applyList(whole.directory, whole.names);
            else if (whole.kind == Result::Loaded)
                applyLoaded(whole.directory);
        }
        if (!guard)
            return;
        if (!m_results.empty() && sliceTime.hasExpired(sliceLength)) {
            m_sliceTimer.start(0, m_model.q);
            return;
        }
    }
    m_model.sortSoon();
}

/// Removes the nodes whose names are not in the list of a directory any more.
void GathererResults::applyList(const QString &directory, const QStringList &names)
{
    const FileTree::Keeper keeper(m_model.tree);
    FileNode *const parent = m_model.tree->findPath(directory);
    if (!parent || parent == m_model.tree->root() || !parent->directory)
        return;
    const bool isServed = parent->hasInfo && !parent->info.isNativePath();
    for (const QString &name : names) {
        if (FileNode *const node = FileTree::findFile(parent, name, isServed)) {
            node->isListed = true;
            node->isOwn = false;
        }
    }
    std::vector<FileNode *> missing;
    for (FileNode *const node : parent->directory->children) {
        if (std::exchange(node->isListed, false))
            continue;
        // What was asked for by its path may exist without being listed, and what the model has
        // made may be younger than the listing.
        const bool mayExist = node->bypassesFilters || node->isOwn;
        if (!mayExist || !tul::isTaken(RemoteFileSystemModelPrivate::requestPath(node)))
            missing.push_back(node);
    }
    static_cast<void>(m_model.removeNodes(parent, missing)); // nothing comes after
}

void GathererResults::applyLoaded(const QString &directory)
{
    // Its watch came with the listing, maybe after the model had left the directory.
    const FileNode *const node = m_model.tree->findPath(directory);
    if (!node || !node->populatedChildren)
        m_model.gatherer->removePath(directory);
    Q_EMIT m_model.q->directoryLoaded(directory);
}

void GathererResults::applyUpdates(Result &result, const QElapsedTimer &sliceTime)
{
    const FileTree::Keeper keeper(m_model.tree);
    FileNode *const parent = m_model.tree->findPath(result.directory);
    if (!parent) { // gone since it was asked for
        result.next = result.updates.size();
        return;
    }
    const std::size_t rows = parent->directory ? parent->directory->visible.size() : 0;
    const int least = std::max(leastFiles, static_cast<int>(rows) / leastPart);
    if (result.updates.size() >= leastFiles) // have different names, so all of them are there soon
        FileTree::reserve(parent, result.updates.size());
    Changes changes;
    int done = 0;
    while (result.next < result.updates.size()) {
        const QPair<QString, QFileInfo> &file = result.updates.at(result.next);
        ++result.next;
        applyFile(parent, file.first, file.second, changes);
        ++done;
        if (done >= least && sliceTime.hasExpired(sliceLength))
            break;
    }
    const bool isPart = result.next < result.updates.size();
    if (announce(parent, changes) && isPart && !parent->isRemoved)
        m_model.sortAhead(parent);
}

void GathererResults::applyFile(FileNode *parent, const QString &reportedName,
                                const QFileInfo &info, Changes &changes)
{
    const bool isTop = parent == m_model.tree->root();
    QString name = reportedName;
    if (isTop && name.size() > 1 && name.endsWith(QLatin1Char('/')))
        name.chop(1); // a drive is an element like others
    const bool isUnixRoot = isTop && name == QLatin1String("/");
    if (name.isEmpty() || (!isUnixRoot && name.contains(QLatin1Char('/'))))
        return; // could not be found again by its path

    FileNode *node = FileTree::findFile(parent, name, !info.isNativePath());
    if (!info.exists() && !info.isSymLink()) {
        if (node)
            changes.removed.push_back(node);
        return;
    }
    if (!node) {
        node = FileTree::add(parent, name, info);
        if (m_model.filter.accepts(*node))
            changes.appearing.push_back(node);
        return;
    }
    if (node->directory && node->isDirectory() && !info.isDir())
        changes.replaced.emplace_back(node, info);
    else
        updateNode(node, info, changes);
}

/// Takes over what is known now of a file that was known before.
void GathererResults::updateNode(FileNode *node, const QFileInfo &info, Changes &changes)
{
    const bool isChanged
        = !isSame(RemoteExtendedInformation(node->info), RemoteExtendedInformation(info));
    if (node->isDirectory() != info.isDir())
        changes.changesKind = true;
    if (isChanged && node->populatedChildren)
        changes.relisted.push_back(node);
    if (isChanged)
        node->setInfo(info);
    else
        node->info = info; // may know more by heart
    const bool isAccepted = m_model.filter.accepts(*node);
    if (isAccepted && !node->isVisible())
        changes.appearing.push_back(node);
    else if (!isAccepted && node->isVisible())
        changes.vanishing.push_back(node);
    else if (isAccepted && isChanged)
        changes.changed.push_back(node);
}

/// False when a receiver has deleted the model, and this object with it.
bool GathererResults::announce(FileNode *parent, Changes &changes)
{
    // A file has no rows: they go while it still passes for a directory.
    for (const auto &[node, info] : changes.replaced) {
        if (!m_model.removeNodes(node, FileTree::children(node)))
            return false;
        if (!node->isRemoved)
            updateNode(node, info, changes);
    }
    const bool isAlive = m_model.removeNodes(parent, changes.removed)
        && m_model.hideNodes(parent, changes.vanishing)
        && m_model.announceChanged(parent, changes.changed, changes.changesKind)
        && m_model.showNodes(parent, changes.appearing);
    if (!isAlive)
        return false;
    // It may be another one of the same name, of which the watch knows nothing.
    for (FileNode *const node : changes.relisted) {
        if (node->isRemoved)
            continue;
        if (node->isDirectory()) {
            m_model.listAnew(node);
        } else {
            m_model.unwatch(node);
            node->populatedChildren = false;
        }
    }
    return true;
}
