#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QList>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QStandardItemModel>
#include <QTimer>
#include <QUrl>
#include <QVector>

#include <functional>

class QDragEnterEvent;
class RemoteFileSystemModel;

/// The places of a side bar, one row each: directories, here or on a remote machine, and the level
/// of the drives ("My Computer"), whose URL has an empty path.
///
/// Names, icons and whether a place exists come from a RemoteFileSystemModel, as its index() finds
/// the path: what its filters have hidden is missing. The rows follow what happens there: a place
/// that goes away is marked and keeps its row, one that comes back is a place again. Without a
/// file system model, nothing can be added or set.
///
/// A place stands in the list only once, whatever slashes its path is written with.
///
/// *Ownership*: the file system model remains the caller's, and may go first; the places then stay
/// as they were.
///
/// *Threads*: the GUI thread. A place is looked up on its disk when it is added and at refresh(),
/// and once more each time that the file system model loses it, or gets or shows the next directory
/// on the way to a missing one. What the model knows already costs no look at the disk.
///
/// *By design*: a place that does not exist can still be selected. The URLs of remote places have
/// the scheme "file", as QUrl::fromLocalFile() makes them of prefixed paths; others are not added.
class TUL_UTIL_GUI_EXPORT RemoteUrlModel : public QStandardItemModel
{
    Q_OBJECT

public:
    enum Roles {
        UrlRole = Qt::UserRole + 1, ///< the QUrl of the place
        EnabledRole = Qt::UserRole + 2 ///< whether its directory was found; unset for the drives
    };
    Q_ENUM(Roles)

    explicit RemoteUrlModel(QObject *parent = nullptr);

    RemoteFileSystemModel *fileSystemModel() const;
    void setFileSystemModel(RemoteFileSystemModel *model);

    /// Whether places show their whole path, with "/" on every system, instead of their name; false
    /// by default.
    bool showFullPath() const { return m_showFullPath; }
    void setShowFullPath(bool show);

    QList<QUrl> urls() const;
    void setUrls(const QList<QUrl> &urls);

    /// The row of a place, whatever slashes its path is written with; -1 when there is none. The
    /// empty URL stands for the level of the drives.
    int rowOf(const QUrl &url) const;

    /// Adds places before a row, or at the end with -1, in the given order. One that is there
    /// already moves to its new row, or stays where it is if `move` is false.
    void addUrls(const QList<QUrl> &urls, int row = -1, bool move = true);

    /// Makes a row the place `url`, whose directory in the file system model is `dirIndex`; an
    /// invalid one for a directory that does not exist.
    void setUrl(const QModelIndex &index, const QUrl &url, const QModelIndex &dirIndex);

    /// Looks all places up again, and reads their texts again.
    void refresh();

    /// Whether none of the dragged URLs is that of a file. What does not exist may be dropped, so
    /// that missing places can be put in another order; what has another scheme is not looked at.
    bool canDrop(const QDragEnterEvent *event) const;

    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;

    /// The URLs of the places, in the order of their rows.
    QMimeData *mimeData(const QModelIndexList &indexes) const override;

    /// Adds what is dropped. Files are told from directories before, by canDrop().
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    /// No moving: whoever takes a dragged place must not take the directory away.
    Qt::DropActions supportedDragActions() const override;

private Q_SLOTS:
    // Called for the signals of the file system model. clazy:excludeall=overridden-signal
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight);
    void layoutChanged();

private:
    /// A place other than the drives, and its directory in the file system model.
    struct Place {
        QPersistentModelIndex index;
        QPersistentModelIndex directory; // invalid when it is missing or lost
        QString path;
        bool wasFound;
        bool mayHaveCome; // though it was missing
        int shown = 0; // elements of the path that had rows before other rows were shown
    };

    QModelIndex directoryOf(const QString &path) const;
    int shownElements(const Place &place) const;
    bool isLost(const Place &place) const;
    void filteringBegins();
    void filteringEnds();
    void directoriesInserted(const QModelIndex &parent, int first, int last);
    void directoryRenamed(const QString &path, const QString &oldName, const QString &newName);
    void expect(const QString &directory, const std::function<bool(const QString &)> &hasCome);
    void directoriesRemoved();
    void follow();
    void forget(const QModelIndex &index);
    void show(const QModelIndex &place, const QString &text, const QIcon &icon);

    QPointer<RemoteFileSystemModel> m_fileSystemModel;
    QVector<Place> m_places;
    QTimer m_followTimer; // folds what happens in one turn of the event loop
    bool m_showFullPath = false;
};
