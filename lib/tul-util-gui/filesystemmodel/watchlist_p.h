#pragma once

#include <QMutex>
#include <QObject>
#include <QSet>
#include <QString>

class QDateTime;
class QFileSystemWatcher;

/// What a gatherer watches: a file system watcher, a child of the gatherer that only ever works on
/// their thread, and a set of what it watches for other threads to read.
///
/// The watcher's notifications change its tables on its own thread at any time, so that a lock
/// around our calls alone would not let two threads use it.
class WatchList : public QObject
{
    Q_OBJECT

public:
    explicit WatchList(QObject *gatherer);

    /// Whether a file or directory is watched or about to be. Any thread.
    bool has(const QString &path) const;

    /// Watches a file or directory; in another thread than the watcher's a little later, unless it
    /// is removed before, and with a signal if it has changed by then. Passes over what the watcher
    /// cannot watch: what a handler serves, what is missing and what must not be read. Any thread.
    void add(const QString &path);

    // The rest is for the watcher's thread.
    void remove(const QString &path);
    void clear();

Q_SIGNALS:
    /// Emitted when entries of a watched directory came, went or were renamed.
    void directoryChanged(const QString &path);

    /// Emitted when a watched file was written to or removed.
    void fileChanged(const QString &path);

private:
    void watch(const QString &path);
    void watchLate(const QString &path, const QDateTime &time);
    void forgetUnless(const QString &path, bool isWatched);

    QFileSystemWatcher *const m_watcher;
    mutable QMutex m_mutex; // guards the two sets
    QSet<QString> m_watched; // what the watcher has
    QSet<QString> m_pending; // to be added when the watcher's thread gets to it
};
