#include "watchlist_p.h"

#include <QDateTime>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QMutexLocker>
#include <QStringList>
#include <QThread>

WatchList::WatchList(QObject *gatherer)
    : QObject(gatherer)
    , m_watcher(new QFileSystemWatcher(gatherer))
{
    // What has vanished is not watched any more when these come.
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, [this](const QString &path) {
        forgetUnless(path, m_watcher->directories().contains(path));
        Q_EMIT directoryChanged(path);
    });
    connect(m_watcher, &QFileSystemWatcher::fileChanged, this, [this](const QString &path) {
        forgetUnless(path, m_watcher->files().contains(path));
        Q_EMIT fileChanged(path);
    });
}

bool WatchList::has(const QString &path) const
{
    const QMutexLocker locker(&m_mutex);
    return m_watched.contains(path) || m_pending.contains(path);
}

void WatchList::add(const QString &path)
{
    // Asked here: the watcher would ask a handler's engine, and wait for it, on its own thread, and
    // warn of what must not be read.
    const QFileInfo info(path);
    if (path.isEmpty() || !info.isNativePath() || !info.isReadable())
        return;
    {
        const QMutexLocker locker(&m_mutex);
        m_pending.insert(path);
    }
    if (thread() == QThread::currentThread())
        watch(path);
    else
        QMetaObject::invokeMethod(
            this, [this, path, time = info.lastModified()] { watchLate(path, time); },
            Qt::QueuedConnection);
}

void WatchList::remove(const QString &path)
{
    if (path.isEmpty())
        return;
    m_watcher->removePath(path);
    const QMutexLocker locker(&m_mutex);
    m_pending.remove(path);
    m_watched.remove(path);
}

void WatchList::clear()
{
    const QStringList files = m_watcher->files();
    if (!files.isEmpty())
        m_watcher->removePaths(files);
    const QStringList directories = m_watcher->directories();
    if (!directories.isEmpty())
        m_watcher->removePaths(directories);
    const QMutexLocker locker(&m_mutex);
    m_pending.clear();
    m_watched.clear();
}

void WatchList::watch(const QString &path)
{
    {
        const QMutexLocker locker(&m_mutex);
        if (!m_pending.contains(path)) // removed since
            return;
    }
    const bool isWatched = m_watcher->addPath(path);
    const QMutexLocker locker(&m_mutex);
    m_pending.remove(path);
    if (isWatched)
        m_watched.insert(path);
}

/// Watches what was last changed at that time when it was to be watched. What has changed since may
/// have been listed before, and nobody else would tell of it.
void WatchList::watchLate(const QString &path, const QDateTime &time)
{
    watch(path);
    const QFileInfo info(path);
    if (!has(path) || info.lastModified() == time)
        return;
    if (info.isDir())
        Q_EMIT directoryChanged(path);
    else
        Q_EMIT fileChanged(path);
}

void WatchList::forgetUnless(const QString &path, bool isWatched)
{
    if (isWatched)
        return;
    const QMutexLocker locker(&m_mutex);
    m_watched.remove(path);
}
