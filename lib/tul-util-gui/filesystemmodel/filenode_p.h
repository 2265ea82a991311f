#pragma once

#include "childtable_p.h"
#include "nodesorter_p.h"

#include <tul-util-gui/filesystemmodel/remoteextendedinformation.h>

#include <QSet>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

struct FileDirectory;

/// A file that the model has seen. Owned by the FileTree, like all that hangs on it.
struct FileNode {
    FileNode(const QString &name, FileNode *parentNode);
    FileNode(const QString &name, FileNode *parentNode, const QFileInfo &fileInfo);
    ~FileNode();
    FileNode(const FileNode &) = delete;
    FileNode &operator=(const FileNode &) = delete;

    bool isVisible() const { return row >= 0; }

    /// What has not been inspected is a directory if something has been found in it.
    bool isDirectory() const;
    RemoteExtendedInformation::Type type() const { return RemoteExtendedInformation(info).type(); }
    bool isHidden() const { return hasInfo && info.isHidden(); }
    bool isSymLink() const { return hasInfo && info.isSymLink(); }
    qint64 size() const { return hasInfo ? RemoteExtendedInformation(info).size() : 0; }
    QDateTime lastModified() const { return hasInfo ? info.lastModified() : QDateTime(); }
    QFileDevice::Permissions permissions() const;
    void setInfo(const QFileInfo &fileInfo);

    QString fileName; ///< the path element
    FileNode *const parent; ///< null for the root only
    FileNode *nextInTable = nullptr; ///< of the ChildTable
    std::unique_ptr<FileDirectory> directory; ///< null as long as there were no children
    QFileInfo info; ///< only with hasInfo
    std::unique_ptr<RemoteExtendedInformation> record; ///< null until type or icon are asked for
    int row = -1; ///< in the visible list of the parent; -1 when not shown
    bool hasInfo = false;
    bool populatedChildren = false; ///< the children were requested
    bool bypassesFilters = false; ///< is shown in any case, because its path was asked for
    bool isOwn = false; ///< put here by the model; a listing that began before may not have it
    bool isListed = false; ///< scratch: is in the list of names that has come
    bool isRemoved = false; ///< waits for its deletion
};

/// What a node with children has besides.
struct FileDirectory {
    explicit FileDirectory(Qt::CaseSensitivity sensitivity)
        : children(sensitivity)
    {
    }

    ChildTable children; ///< owned
    std::vector<FileNode *> visible; ///< in the order shown
    int dirtyChildrenIndex = -1; ///< the first row that may be out of order; -1 for none
    SortedRuns sorted; ///< the first rows in order, while a long listing arrives
};

/// The nodes of a model, and which of them have rows. Knows nothing of item models: whoever changes
/// rows here announces it around the call.
///
/// Lookup by name and row lookup take constant time. Names are compared as this machine's file
/// system does; below the root, where the drives are, case never counts, but an exact match goes
/// first.
class FileTree
{
public:
    FileTree();
    ~FileTree();
    FileTree(const FileTree &) = delete;
    FileTree &operator=(const FileTree &) = delete;

    FileNode *root() const { return m_root.get(); }

    /// The child of that name, or null.
    static FileNode *find(const FileNode *parent, const QString &name);

    /// The child that a file which exists under that name is, or null. Two names of a served
    /// directory are two files, however this machine compares names.
    static FileNode *findFile(const FileNode *parent, const QString &name, bool isServed);

    /// The node of a path as the model or a request gives it, or null. The empty path is the root.
    FileNode *findPath(const QString &path) const;

    /// Prepares for this many children in all.
    static void reserve(FileNode *parent, int count)
    {
        directoryOf(parent).children.reserve(count);
    }

    /// Adds a child, not shown; there must be none of that name.
    static FileNode *add(FileNode *parent, const QString &name, const QFileInfo &info);

    /// Renames a node within its parent; no other child may have the name.
    static void rename(FileNode *node, const QString &name);

    /// Takes a node, which is not shown, out of the tree with all below it. It is deleted when the
    /// last Keeper goes, or at once.
    void remove(FileNode *node);

    /// The path elements joined.
    static QString path(const FileNode *node);
    static std::vector<FileNode *> children(const FileNode *node);

    /// Adds rows at the end.
    void appendRows(FileNode *parent, const std::vector<FileNode *> &nodes);
    static void removeRows(FileNode *parent, int first, int last);

    /// Takes the rows from `row` on for out of order.
    void markDirty(FileNode *parent, int row);
    bool hasDirty() const { return !m_dirty.isEmpty(); }

    /// The nodes with rows out of order, which are looked after then.
    std::vector<FileNode *> takeDirty();

    /// Sets all rows anew: `rows` has the children to be shown, in order.
    static void setRows(FileNode *parent, std::vector<FileNode *> rows);

    /// Whether the node is in the tree and it and all above it have rows.
    bool isShown(const FileNode *node) const;

    /// While one lives, the tree and removed nodes can still be looked at: receivers of signals may
    /// remove nodes that the sender has in hand, or delete the model with all of them.
    class Keeper
    {
    public:
        explicit Keeper(std::shared_ptr<FileTree> tree)
            : m_tree(std::move(tree))
        {
            ++m_tree->m_keepers;
        }
        ~Keeper();
        Keeper(const Keeper &) = delete;
        Keeper &operator=(const Keeper &) = delete;

    private:
        const std::shared_ptr<FileTree> m_tree;
    };

private:
    static FileDirectory &directoryOf(FileNode *node);
    void markRemoved(FileNode *node);

    const std::unique_ptr<FileNode> m_root;
    std::vector<std::unique_ptr<FileNode>> m_removed; // and to be deleted
    QSet<FileNode *> m_dirty; // with rows out of order
    int m_keepers = 0;
};
