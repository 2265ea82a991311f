#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QList>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QStandardItemModel>
#include <QTimer>
#include <QUrl>
#include <QVector>

class QDragEnterEvent;
class RemoteFileSystemModel;

/// The places of a side bar, one row each: directories, here or on a remote machine, and the level
/// of the drives ("My Computer"), whose URL has an empty path.
///
/// Names, icons and whether a place exists come from a RemoteFileSystemModel. The rows follow what
/// happens there: a place that goes away is marked and keeps its row, one that comes back is a
/// place again. Until a file system model is set, nothing can be added.
///
/// A place stands in the list only once, whatever slashes its path is written with.
///
/// *Ownership*: the file system model remains the caller's, and may go first; the places then stay
/// as they were.
///
/// *Threads*: the GUI thread. Each place that is added is looked up on its disk once.
///
/// *By design*: a place that does not exist can still be selected. The URLs of remote places have
/// the scheme "file", as QUrl::fromLocalFile() makes them of prefixed paths; others are not added.
class TUL_UTIL_GUI_EXPORT RemoteUrlModel : public QStandardItemModel
{
    Q_OBJECT

public:
    enum Roles {
        UrlRole = Qt::UserRole + 1, ///< the QUrl of the place
        EnabledRole = Qt::UserRole + 2 ///< whether its directory exists; unset for the drives
    };

    explicit RemoteUrlModel(QObject *parent = nullptr);

    RemoteFileSystemModel *fileSystemModel() const;
    void setFileSystemModel(RemoteFileSystemModel *model);

    /// Whether places show their whole path, with "/" on every system, instead of their name; false
    /// by default.
    bool showFullPath() const { return m_showFullPath; }
    void setShowFullPath(bool show);

    QList<QUrl> urls() const;
    void setUrls(const QList<QUrl> &urls);

    /// Adds places before a row, or at the end with -1, in the given order. One that is there
    /// already moves to its new row, or stays where it is if `move` is false.
    void addUrls(const QList<QUrl> &urls, int row = -1, bool move = true);

    /// Makes a row the place `url`, whose directory in the file system model is `dirIndex`; an
    /// invalid one for a directory that does not exist.
    void setUrl(const QModelIndex &index, const QUrl &url, const QModelIndex &dirIndex);

    /// Looks all places up again, and reads their texts again.
    void refresh();

    /// Whether what is dragged is nothing but directories.
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
    /// A place that exists, and its directory in the file system model.
    struct Found {
        QPersistentModelIndex place;
        QPersistentModelIndex directory;
    };

    QModelIndex directoryOf(const QUrl &url) const;
    int rowOf(const QUrl &url) const;
    void directoriesInserted(const QModelIndex &parent);
    void directoriesRemoved();
    void note(const QModelIndex &place, const QUrl &url, const QModelIndex &directory);
    void show(const QModelIndex &place, const QString &text, const QIcon &icon);

    QPointer<RemoteFileSystemModel> m_fileSystemModel;
    QVector<Found> m_found;
    QList<QUrl> m_invalidUrls; // of places whose directory was not found
    QTimer m_refreshTimer; // folds what asks for a refresh in one turn of the event loop
    bool m_showFullPath = false;
};
