#include "watchlist_p.h"

#include <QFileSystemWatcher>
#include <QMutexLocker>
#include <QStringList>
#include <QThread>

WatchList::WatchList(QObject *parent)
    : QObject(parent)
    , m_watcher(new QFileSystemWatcher(this))
{
    // A directory that vanished is not watched any more when this comes.
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, [this](const QString &path) {
        updateDirectories();
        Q_EMIT directoryChanged(path);
    });
    connect(m_watcher, &QFileSystemWatcher::fileChanged, this, &WatchList::fileChanged);
}

bool WatchList::hasDirectory(const QString &path) const
{
    const QMutexLocker locker(&m_mutex);
    return m_directories.contains(path) || m_pending.contains(path);
}

void WatchList::add(const QString &path)
{
    if (path.isEmpty())
        return;
    {
        const QMutexLocker locker(&m_mutex);
        m_pending.insert(path);
    }
    if (thread() == QThread::currentThread())
        watch(path);
    else
        QMetaObject::invokeMethod(
            this, [this, path] { watch(path); }, Qt::QueuedConnection);
}

void WatchList::remove(const QString &path)
{
    {
        const QMutexLocker locker(&m_mutex);
        m_pending.remove(path);
    }
    if (path.isEmpty())
        return;
    m_watcher->removePath(path);
    updateDirectories();
}

void WatchList::clear()
{
    {
        const QMutexLocker locker(&m_mutex);
        m_pending.clear();
    }
    const QStringList files = m_watcher->files();
    if (!files.isEmpty())
        m_watcher->removePaths(files);
    const QStringList directories = m_watcher->directories();
    if (!directories.isEmpty())
        m_watcher->removePaths(directories);
    updateDirectories();
}

void WatchList::watch(const QString &path)
{
    {
        const QMutexLocker locker(&m_mutex);
        if (!m_pending.contains(path)) // removed since
            return;
    }
    m_watcher->addPath(path);
    updateDirectories();
    const QMutexLocker locker(&m_mutex);
    m_pending.remove(path);
}

void WatchList::updateDirectories()
{
    const QStringList directories = m_watcher->directories();
    const QSet<QString> set(directories.begin(), directories.end());
    const QMutexLocker locker(&m_mutex);
    m_directories = set;
}
