#pragma once

#include "fileappearance_p.h"
#include "filenode_p.h"
#include "gathererresults_p.h"
#include "nodefilter_p.h"
#include "nodesorter_p.h"

#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QDir>
#include <QHash>
#include <QTimer>

#include <functional>
#include <vector>

class RemoteFileInfoGatherer;

/// State of a model, and the only place where changes of rows are announced.
class RemoteFileSystemModelPrivate
{
public:
    using Nodes = std::vector<FileNode *>;

    explicit RemoteFileSystemModelPrivate(RemoteFileSystemModel *model);
    ~RemoteFileSystemModelPrivate();
    RemoteFileSystemModelPrivate(const RemoteFileSystemModelPrivate &) = delete;
    RemoteFileSystemModelPrivate &operator=(const RemoteFileSystemModelPrivate &) = delete;

    /// The node of an index; the root for one that is invalid or of another model.
    FileNode *node(const QModelIndex &index) const;

    /// The node of a path. Makes nodes for elements that exist on disk and shows them. The root for
    /// what does not exist, and for what the filters hide unless `fetch` is set. Null when a
    /// receiver of the signals has deleted the model.
    FileNode *node(const QString &path, bool fetch);

    /// Invalid for the root and for what has no row.
    QModelIndex index(const FileNode *node, int column = 0) const;

    /// The index of the node of a path, as node() gives it; invalid when there is no model left.
    QModelIndex indexOf(const QString &path, bool fetch, int column = 0);

    static QString filePath(const FileNode *node);
    QString resolvedPath(const FileNode *node) const;
    static QString requestPath(const FileNode *node);

    /// Type text and icon, made now if they have not been asked for before.
    const RemoteExtendedInformation &record(FileNode *node);
    QString typeText(FileNode *node);
    QVariant icon(FileNode *node);
    void forgetAppearances();
    static QString sizeText(const FileNode *node);
    static QString dateText(const FileNode *node);

    /// Lists a directory, at once or if that has not been done yet.
    void list(FileNode *node);
    void listOnce(FileNode *node);

    /// Lists a directory again, if it is in the tree and was listed before.
    void listPath(const QString &path);

    /// Lists a directory again that may be another one of the same name now, and is watched under
    /// that name no more. What was listed below it comes here in turn, when the listing shows it
    /// changed; only one of the same name and date escapes, and misses its watch.
    void listAnew(FileNode *node);

    /// Stops watching a directory and all below it. Of one that was moved away the watch would
    /// stay, and keep from being watched what comes to its path later.
    void unwatch(const FileNode *node);

    // All nodes are children of the parent. Receivers of the signals may change the tree, or delete
    // the model: whoever goes on using nodes holds a FileTree::Keeper, and when the answer is false
    // there is no model any more, and nothing of this object.
    [[nodiscard]] bool showNodes(FileNode *parent, const Nodes &nodes);
    [[nodiscard]] bool hideNodes(FileNode *parent, const Nodes &nodes);
    [[nodiscard]] bool removeNodes(FileNode *parent, const Nodes &nodes);
    [[nodiscard]] bool announceChanged(FileNode *parent, const Nodes &nodes, bool changesKind);
    [[nodiscard]] bool announceTexts();

    /// Arranges for filtering anew and for sorting.
    void filterSoon();
    void forgetBypasses();
    void sortSoon();
    void sortAhead(FileNode *parent);
    void sortNow();
    void sortAll();

    /// The file operations behind the public ones.
    QModelIndex makeDirectory(FileNode *parent, const QString &name);
    bool removeDirectory(const FileNode *node);
    bool removeTree(const FileNode *node);
    [[nodiscard]] bool adoptNewName(FileNode *node, const QString &newName);
    [[nodiscard]] bool adopt(FileNode *node, const QFileInfo &info);

    RemoteFileSystemModel *const q;
    const std::shared_ptr<FileTree> tree = std::make_shared<FileTree>();
    RemoteFileInfoGatherer *const gatherer;
    FileAppearance appearance;
    NodeFilter filter;
    GathererResults results;
    QDir rootDir{QString()};
    QTimer delayedSortTimer;
    QHash<QString, QString> resolvedSymLinks; ///< name of the link's target by path of the link
    int sortColumn = RemoteFileSystemModel::NameColumn;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    bool forceSort = true; ///< everything is to be sorted
    bool mustFilter = false; ///< and filtered
    bool readOnly = true;
    bool hasRootPath = false; ///< setRootPath() was called; nothing is listed before

private:
    RemoteFileInfoGatherer *makeGatherer() const;
    FileNode *child(FileNode *parent, const QString &name, const QString &path, bool fetch);
    NodeSorter sorter();
    Nodes directories() const;
    Nodes acceptedRows(const FileNode *directory) const;
    void sortDirectories(const Nodes &nodes, bool all);
    bool changeLayout(QAbstractItemModel::LayoutChangeHint hint,
                      const std::function<void()> &change);
};
