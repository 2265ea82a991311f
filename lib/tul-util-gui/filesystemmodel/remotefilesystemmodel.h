#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QAbstractItemModel>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QPair>
#include <QStringList>

#include <memory>

class QFileIconProvider;
class RemoteFileInfoGathererHandler;
class RemoteFileSystemModelPrivate;

/// A tree of files for item views, of this machine and of any other whose files a file-engine
/// handler of the host serves.
///
/// Use it as the toolkit's own file system model: call setRootPath(), give the index that it
/// returns to the view, and listen to directoryLoaded(). A RemoteFileInfoGatherer lists and
/// inspects on a thread of its own, so that a slow disk or network never blocks the window; rows
/// arrive later, large directories in several pieces with the event loop in between.
///
/// Below the invalid index ("My Computer") stand the drives, "/" and the first elements of prefixed
/// paths. Paths take and give "/" on every system. Node, row and parent are found in constant time.
/// Columns: name, size, type, date of last change.
///
/// What changes on a local disk shows up by itself. Where the system cannot watch, as in files that
/// a handler serves, the model sees its own operations only; refresh() brings in the others.
///
/// Type texts and icons are made when a row's data is first asked for. With the toolkit's own icon
/// provider they are shared between the files of a type, and a served file is never opened for
/// them. A provider of the host is asked once for each row shown.
///
/// *Ownership*: the model owns its gatherer; icon provider and gatherer factory remain the host's.
///
/// *Threads*: one thread, the one that made the model. Destruction waits for the file operation
/// that the gatherer has under way.
///
/// *Errors*: a path that does not exist, or lies behind a row that the filters hide, has an invalid
/// index. Operations on the disk return false or an invalid index.
///
/// *By design*: filePath() of what lies below "/" begins with two slashes, as in "//usr/lib"; with
/// the prefix "remote:" the root of the remote machine is "remote:". Links are not resolved. A
/// prefix has at least two characters before its colon and no "/"; ".." does not lead above it. A
/// slot may delete the model, unless the signal announces a change of rows ahead: there,
/// deleteLater() is the way.
class TUL_UTIL_GUI_EXPORT RemoteFileSystemModel : public QAbstractItemModel
{
    Q_OBJECT
    Q_PROPERTY(bool resolveSymlinks READ resolveSymlinks WRITE setResolveSymlinks)
    Q_PROPERTY(bool readOnly READ isReadOnly WRITE setReadOnly)
    Q_PROPERTY(bool nameFilterDisables READ nameFilterDisables WRITE setNameFilterDisables)

public:
    enum Column { NameColumn, SizeColumn, TypeColumn, DateColumn, ColumnCount };
    Q_ENUM(Column)

    enum Roles {
        FileIconRole = Qt::DecorationRole,
        FilePathRole = Qt::UserRole + 1, ///< filePath()
        FileNameRole = Qt::UserRole + 2, ///< fileName()
        FilePermissions = Qt::UserRole + 3 ///< permissions() as an integer
    };
    Q_ENUM(Roles)

    explicit RemoteFileSystemModel(QObject *parent = nullptr);
    ~RemoteFileSystemModel() override;

    /// The factory of the gatherers of models made from now on; null, the default, for plain ones.
    /// Not owned, not locked.
    static void setRemoteFileInfoGathererHandler(RemoteFileInfoGathererHandler *handler);
    static RemoteFileInfoGathererHandler *remoteFileInfoGathererHandler();

    /// The directory that is shown: it is listed and watched in place of the one before, and its
    /// index returned. Empty, or the text of myComputer(), for the level of the drives, whose index
    /// is invalid. A path that does not exist changes nothing and returns the index of the root as
    /// it is. Nothing is ever listed before the first call.
    QModelIndex setRootPath(const QString &newPath);
    QString rootPath() const;

    /// The root with the filters of the model.
    QDir rootDirectory() const;

    /// Lists a directory again, the level of the drives for an invalid index. For files that cannot
    /// be watched; after its own operations the model does it by itself.
    void refresh(const QModelIndex &directory);

    /// The index of a path. Looks at the disk for elements that the tree does not have yet, and
    /// shows them, also those that the filters would hide.
    QModelIndex index(const QString &path, int column = 0) const;
    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    using QObject::parent;
    QModelIndex parent(const QModelIndex &child) const override;

    /// What is known of a file. An invalid index is a directory without name, path or size; what
    /// has not been inspected yet has neither type, date nor permissions.
    QString filePath(const QModelIndex &index) const;
    QString fileName(const QModelIndex &index) const;
    QFileInfo fileInfo(const QModelIndex &index) const;
    QIcon fileIcon(const QModelIndex &index) const;
    bool isDir(const QModelIndex &index) const;
    qint64 size(const QModelIndex &index) const;
    QString type(const QModelIndex &index) const;
    QDateTime lastModified(const QModelIndex &index) const;
    QFileDevice::Permissions permissions(const QModelIndex &index) const;

    /// Makes a directory and returns its index, whatever the filters say; an invalid one when that
    /// fails. An invalid parent is returned as it is.
    QModelIndex mkdir(const QModelIndex &parent, const QString &name);

    /// Removes an empty directory from the disk; the row goes when the parent has been listed
    /// again.
    bool rmdir(const QModelIndex &index) const;

    /// Removes a file, or a directory with all that it holds; of a link only the link. Refuses "."
    /// and "..".
    ///
    /// By design: true when anything at all was removed, and hidden files keep their directories.
    bool remove(const QModelIndex &index) const;

    /// Text and icon of the level of the drives.
    QVariant myComputer(int role = Qt::DisplayRole) const;

    /// Which entries have rows: kind, permissions, hidden and system entries, the dots. Without
    /// QDir::Hidden and the like nothing of that kind is shown. All entries but the dots by
    /// default.
    void setFilter(QDir::Filters filters);
    QDir::Filters filter() const;

    /// Wildcards of which a name must match one as a whole; all names pass an empty list, and all
    /// directories pass with QDir::AllDirs. Letters count by case with QDir::CaseSensitive only.
    ///
    /// The setter also ends what is shown only because its path was asked for, or because mkdir()
    /// made it: the filters decide on it again, except for the root and for directories to which
    /// somebody holds a persistent index.
    void setNameFilters(const QStringList &filters);
    QStringList nameFilters() const;

    /// Whether names that match no filter are shown greyed (default) or not at all.
    void setNameFilterDisables(bool enable);
    bool nameFilterDisables() const;

    /// Whether renaming and dropping are refused; true by default.
    void setReadOnly(bool enable);
    bool isReadOnly() const;

    /// By design: the setter does nothing; links are not resolved.
    void setResolveSymlinks(bool enable);
    bool resolveSymlinks() const;

    /// The source of icons and type texts, which must outlive its use. Setting another one makes
    /// the rows ask it.
    void setIconProvider(QFileIconProvider *provider);
    QFileIconProvider *iconProvider() const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /// Renames a file, given its new name in Qt::EditRole for column 0. A name that cannot be used,
    /// or is taken, is answered by a message box, in which an event loop runs, and by false.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// By name or size directories come first, by type or date they do not; names in the order of
    /// the locale, numbers by value where it can. Another column changes nothing.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;

    /// Copies, moves or links the dropped files into `parent`, wherever in it they were dropped.
    /// All are tried; true when all succeeded. Existing files are not replaced, directories not
    /// copied.
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;
    Qt::DropActions supportedDropActions() const override;

Q_SIGNALS:
    /// Emitted when setRootPath() has changed the root.
    void rootPathChanged(const QString &newPath);

    /// Emitted when setData() has renamed a file of the directory `path`.
    void fileRenamed(const QString &path, const QString &oldName, const QString &newName);

    /// Emitted when the listing of a directory is complete and its rows are there; again each time
    /// that it is listed again.
    void directoryLoaded(const QString &path);

protected:
    bool event(QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private Q_SLOTS:
    void _q_directoryChanged(const QString &directory, const QStringList &list);
    void _q_performDelayedSort();
    void _q_fileSystemChanged(const QString &path,
                              const QList<QPair<QString, QFileInfo>> &updatedFiles);
    void _q_resolvedName(const QString &fileName, const QString &resolvedName);

private:
    friend class RemoteFileSystemModelPrivate;

    const std::unique_ptr<RemoteFileSystemModelPrivate> d;
};
