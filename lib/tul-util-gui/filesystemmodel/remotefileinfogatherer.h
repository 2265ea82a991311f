#pragma once

#include <tul-util-gui/filesystemmodel/remoteextendedinformation.h>
#include <tul-util-gui/tul_util_gui_export.h>

#include <QList>
#include <QPair>
#include <QStringList>
#include <QThread>

#include <memory>

class QElapsedTimer;
class QFileIconProvider;
class RemoteFileInfoGathererPrivate;

/// Lists directories and inspects files on a thread of its own, and reports by signal.
///
/// Each RemoteFileSystemModel has one. A host derives from it to list or watch in another way, and
/// has its class made by a RemoteFileInfoGathererHandler.
///
/// Paths are local or carry a prefix that a file-engine handler of the host serves: both go as they
/// are to the toolkit's file classes. Every path that is built here is joined by "/".
///
/// Requests are served in order, on a thread of low priority that starts with the object. Results
/// come in batches: at most 101 entries first, so that a view soon has something to show, then what
/// has gathered whenever more than a second has passed, and the rest in the end. What a reported
/// QFileInfo tells was asked for on the gatherer's thread, so that whoever receives it causes no
/// access to a remote machine; to the local disk only for the permissions, which cost more than all
/// the rest.
///
/// A directory that is listed is watched as well, where the system can: it is listed again when it
/// changes. The toolkit cannot watch files that a handler serves.
///
/// *Threads*: the owner's thread calls the operations and the icon provider. The gatherer's thread
/// runs run(), getFileInfos() and fetch(), calls addPath(), and emits updates(), newListOfFiles()
/// and directoryLoaded(). The watcher itself works on the owner's thread only.
///
/// *Ownership*: neither the icon provider nor the receiver of the signals is owned. Destruction
/// waits, without limit, for the file operation that is under way: a file engine must not need the
/// thread that destroys the gatherer. A class derived from this one calls stop() first in its
/// destructor, because its overrides are gone afterwards; the model stops its gatherer anyway.
///
/// *By design*: links are never resolved. A request that equals the oldest one in the queue is
/// queued again. Paths that begin with "//" are listed but not watched.
class TUL_UTIL_GUI_EXPORT RemoteFileInfoGatherer : public QThread
{
    Q_OBJECT

public:
    /// Starts the thread.
    explicit RemoteFileInfoGatherer(QObject *parent = nullptr);
    ~RemoteFileInfoGatherer() override;

    /// Ends the thread: the request under way is cut short at its next file and still reports what
    /// it has, queued ones are dropped. Returns when the thread has ended. May be called again.
    void stop();

    /// Stops watching everything.
    virtual void clear();

    /// Stops watching one directory or file.
    virtual void removePath(const QString &path);

    /// Watches a directory or file. Called on the gatherer's thread, before it lists a directory
    /// that is not watched yet, and by the model on the owner's thread for a directory of this
    /// machine that may have been replaced; may be called on any thread. What a handler serves, and
    /// what is missing or unreadable, is passed over in silence and comes here again at its next
    /// listing. The toolkit warns when the system refuses for another reason, as when it has no
    /// more watches to give.
    virtual void addPath(const QString &path);

    /// How a file is shown, by the icon provider. Without a provider the record has no type text
    /// and no icon.
    RemoteExtendedInformation getInfo(const QFileInfo &fileInfo) const;

public Q_SLOTS:
    /// Queues a request: to list the directory `path` when `files` is empty, or else to inspect the
    /// files of these names in it. The empty path stands for the level of the drives; the names are
    /// whole paths there.
    virtual void fetchExtendedInformation(const QString &path, const QStringList &files);

    /// Queues the listing of a directory.
    void list(const QString &directoryPath);

    /// Queues the inspection of one file, given with its path.
    void updateFile(const QString &filePath);

    /// By design: does nothing, and resolveSymlinks() stays false.
    void setResolveSymlinks(bool enable);
    bool resolveSymlinks() const;

    /// The source of icons and type texts; the toolkit's own by default. It must outlive its use.
    void setIconProvider(QFileIconProvider *provider);
    QFileIconProvider *iconProvider() const;

Q_SIGNALS:
    /// Emitted when a batch of entries of `directory` is ready, as (name, information). For the
    /// empty directory there is one emission a drive, the last drive first, and the name is its
    /// whole path. On the gatherer's thread.
    void updates(const QString &directory, const QList<QPair<QString, QFileInfo>> &updatedFiles);

    /// Emitted when a directory has been listed and has at least one entry, with the names of all,
    /// "." and ".." among them. On the gatherer's thread.
    void newListOfFiles(const QString &directory, const QStringList &listOfFiles);

    /// Emitted when the target of a link was resolved; by this class never.
    void nameResolved(const QString &fileName, const QString &resolvedName);

    /// Emitted when a request is done or was cut short, except for the level of the drives. On the
    /// gatherer's thread.
    void directoryLoaded(const QString &path);

protected:
    /// Serves requests until stop(). Not to be overridden: the thread starts before a derived class
    /// is there.
    void run() override;

    /// Serves one request.
    void getFileInfos(const QString &path, const QStringList &files);

    /// Adds an entry to the batch `updatedFiles`, and reports the batch when it is time. `base` is
    /// when the last batch went out or the request began, `firstTime` whether none has gone out.
    void fetch(const QFileInfo &fileInfo, QElapsedTimer &base, bool &firstTime,
               QList<QPair<QString, QFileInfo>> &updatedFiles, const QString &path);

private:
    void getDriveInfos(const QStringList &files);
    static QString translateDriveName(const QFileInfo &drive);

    const std::unique_ptr<RemoteFileInfoGathererPrivate> d;
};
