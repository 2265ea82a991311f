#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>

#include "requestqueue_p.h"
#include "watchlist_p.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileIconProvider>
#include <QMutex>
#include <QMutexLocker>
#include <QWaitCondition>

#include <atomic>

namespace
{

const int firstBatch = 100; // a batch goes out when it has more
const int batchInterval = 1000; // milliseconds

/// Asks for everything now, on the gatherer's thread, what the owner's thread will want to know:
/// the answers stay in the information and in its copies.
///
/// Of local files the permissions are left out. They cost three calls a file, more than all the
/// rest, and a model needs those of the few rows that it shows.
void askAhead(const QFileInfo &info, bool isLocal)
{
    info.exists();
    info.isSymLink();
    info.isDir();
    info.isFile();
    info.isHidden();
    info.size();
    if (isLocal)
        return;
    info.isNativePath();
    info.permissions();
    info.lastModified();
}

} // namespace

class RemoteFileInfoGathererPrivate
{
public:
    explicit RemoteFileInfoGathererPrivate(QObject *owner)
        : watches(new WatchList(owner))
    {
    }

    QMutex mutex; // guards the queue, setting abort, and the removal of watches
    QWaitCondition condition; // a request has come, or the end
    std::atomic<bool> abort{false}; // read without the lock between two files; never reset
    RequestQueue queue;
    WatchList *const watches; // a child of the gatherer
    bool isLocal = true; // whether the request under way is; of the gatherer's thread
    bool resolveSymlinks = false; // and stays so
    QFileIconProvider *iconProvider = &defaultProvider;
    QFileIconProvider defaultProvider;
};

RemoteFileInfoGatherer::RemoteFileInfoGatherer(QObject *parent)
    : QThread(parent)
    , d(std::make_unique<RemoteFileInfoGathererPrivate>(this))
{
    connect(d->watches, &WatchList::directoryChanged, this, &RemoteFileInfoGatherer::list);
    connect(d->watches, &WatchList::fileChanged, this, &RemoteFileInfoGatherer::updateFile);
    start(LowPriority);
}

RemoteFileInfoGatherer::~RemoteFileInfoGatherer()
{
    stop();
}

void RemoteFileInfoGatherer::stop()
{
    {
        const QMutexLocker locker(&d->mutex);
        d->abort = true;
        d->condition.wakeOne();
    }
    wait();
}

void RemoteFileInfoGatherer::clear()
{
    const QMutexLocker locker(&d->mutex);
    d->watches->clear();
}

void RemoteFileInfoGatherer::removePath(const QString &path)
{
    const QMutexLocker locker(&d->mutex);
    d->watches->remove(path);
}

void RemoteFileInfoGatherer::addPath(const QString &path)
{
    d->watches->add(path);
}

RemoteExtendedInformation RemoteFileInfoGatherer::getInfo(const QFileInfo &fileInfo) const
{
    RemoteExtendedInformation info(fileInfo);
    if (d->iconProvider) {
        info.icon = d->iconProvider->icon(fileInfo);
        info.displayType = d->iconProvider->type(fileInfo);
    }
    return info;
}

void RemoteFileInfoGatherer::fetchExtendedInformation(const QString &path, const QStringList &files)
{
    const QMutexLocker locker(&d->mutex);
    if (d->queue.add(path, files))
        d->condition.wakeAll();
}

void RemoteFileInfoGatherer::list(const QString &directoryPath)
{
    fetchExtendedInformation(directoryPath, QStringList());
}

void RemoteFileInfoGatherer::updateFile(const QString &filePath)
{
    const int slash = filePath.lastIndexOf(QLatin1Char('/'));
    // By design: a path without a slash is taken for a directory with one file without a name.
    const QString directory = slash < 0 ? filePath : filePath.left(slash);
    const QString name = slash < 0 ? QString() : filePath.mid(slash + 1);
    fetchExtendedInformation(directory, QStringList(name));
}

void RemoteFileInfoGatherer::setResolveSymlinks(bool enable)
{
    // By design: resolving would open files over the network for each link that is listed.
    Q_UNUSED(enable)
}

bool RemoteFileInfoGatherer::resolveSymlinks() const
{
    return d->resolveSymlinks;
}

void RemoteFileInfoGatherer::setIconProvider(QFileIconProvider *provider)
{
    d->iconProvider = provider;
}

QFileIconProvider *RemoteFileInfoGatherer::iconProvider() const
{
    return d->iconProvider;
}

void RemoteFileInfoGatherer::run()
{
    for (;;) {
        RequestQueue::Request request;
        {
            QMutexLocker locker(&d->mutex);
            if (d->abort)
                return;
            if (d->queue.isEmpty())
                d->condition.wait(&d->mutex);
            if (d->abort || d->queue.isEmpty())
                continue;
            request = d->queue.take();
        }
        getFileInfos(request.path, request.files);
    }
}

void RemoteFileInfoGatherer::getFileInfos(const QString &path, const QStringList &files)
{
    const bool listsAll = files.isEmpty();
    if (listsAll && !path.isEmpty() && !path.startsWith(QLatin1String("//"))
        && !d->watches->has(path))
        addPath(path);
    if (path.isEmpty()) {
        getDriveInfos(files);
        return;
    }

    d->isLocal = QFileInfo(path).isNativePath();
    QElapsedTimer base;
    base.start();
    bool firstTime = true;
    QList<QPair<QString, QFileInfo>> updatedFiles;
    if (listsAll) {
        QStringList allFiles;
        QDirIterator entries(QDir::fromNativeSeparators(path),
                             QDir::AllEntries | QDir::Hidden | QDir::System);
        while (!d->abort && entries.hasNext()) {
            entries.next();
            const QFileInfo entry = entries.fileInfo();
            allFiles.append(entry.fileName());
            fetch(entry, base, firstTime, updatedFiles, path);
        }
        if (!allFiles.isEmpty())
            Q_EMIT newListOfFiles(path, allFiles);
    }
    for (const QString &name : files) {
        if (d->abort)
            break;
        fetch(QFileInfo(path + QLatin1Char('/') + name), base, firstTime, updatedFiles, path);
    }
    if (!updatedFiles.isEmpty())
        Q_EMIT updates(path, updatedFiles);
    Q_EMIT directoryLoaded(path);
}

void RemoteFileInfoGatherer::getDriveInfos(const QStringList &files)
{
    QFileInfoList infos;
    if (files.isEmpty())
        infos = QDir::drives();
    for (const QString &file : files)
        infos.append(QFileInfo(file));
    for (int i = infos.size() - 1; i >= 0; --i) {
        const QFileInfo &info = infos.at(i);
        askAhead(info, info.isNativePath());
        Q_EMIT updates(QString(), {qMakePair(translateDriveName(info), info)});
    }
}

void RemoteFileInfoGatherer::fetch(const QFileInfo &fileInfo, QElapsedTimer &base, bool &firstTime,
                                   QList<QPair<QString, QFileInfo>> &updatedFiles,
                                   const QString &path)
{
    askAhead(fileInfo, d->isLocal);
    updatedFiles.append(qMakePair(fileInfo.fileName(), fileInfo));
    QElapsedTimer current;
    current.start();
    if ((!firstTime || updatedFiles.size() <= firstBatch) && base.msecsTo(current) <= batchInterval)
        return;
    Q_EMIT updates(path, updatedFiles);
    updatedFiles.clear();
    base = current;
    firstTime = false;
}

QString RemoteFileInfoGatherer::translateDriveName(const QFileInfo &drive)
{
    return drive.absoluteFilePath();
}
