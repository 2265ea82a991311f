#pragma once

#include <backends/ssh/sftpclient.h>
#include <backends/ssh/sftpdirectory.h>

#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QMutex>
#include <QString>

#include <memory>

/// The files of the remote machine as the engines of all threads see them: which paths are remote,
/// over which connection they are reached, and what was just learnt of them.
///
/// What is known of a path is good for `freshness` milliseconds up to twice that, so that the many
/// questions of the toolkit's classes about one file cost one round trip. A change made through an
/// engine is seen at once, a change by somebody else after that time.
///
/// *Threads*: any.
class SshFileSystem
{
public:
    static constexpr int freshness = 1500;

    /// The prefix is the one that is given to the library too, such as "remote:".
    explicit SshFileSystem(const QString &prefix);

    const QString &prefix() const { return m_prefix; }

    /// The connection from now on; null for none. Files that are open stay with the old one.
    void setClient(std::shared_ptr<SftpClient> client);
    std::shared_ptr<SftpClient> client() const;

    /// The path on the remote machine of a prefixed name, and the other way round. The bare prefix
    /// is the root directory.
    QByteArray remotePath(const QString &fileName) const;
    QString fileName(const QByteArray &remotePath) const;

    /// What is known of a path, asked for unless it is fresh. In the same round trip come the
    /// directories above, which the toolkit and the library's model tend to ask for next.
    SftpEntry entry(const QByteArray &remotePath);

    /// Whether the path is known and fresh; then sets `entry`.
    bool known(const QByteArray &remotePath, SftpEntry *entry) const;

    /// Remembers what a listing told of a path, unless that was changed since changeCount() was
    /// `changes`, when the listing began.
    void remember(const QByteArray &remotePath, const SftpEntry &entry, quint32 changes);
    quint32 changeCount() const;

    /// Has the path asked for anew when it is needed next; nothing was changed.
    void distrust(const QByteArray &remotePath);

    /// Forgets a path that was changed, and the directory that it is in; or all that is below it
    /// as well; or everything.
    void forget(const QByteArray &remotePath);
    void forgetTree(const QByteArray &remotePath);
    void forgetAll();

private:
    bool knownLocked(const QByteArray &remotePath, SftpEntry *entry) const;
    void rememberLocked(const QByteArray &remotePath, const SftpEntry &entry, quint32 changes);
    void ageLocked() const;
    bool wasChangedLocked(const QByteArray &remotePath, quint32 changes) const;

    const QString m_prefix;
    mutable QMutex m_mutex; // guards what follows
    std::shared_ptr<SftpClient> m_client;
    // Two generations: entries are dropped by the thousand instead of looking at each one's age.
    mutable QHash<QByteArray, SftpEntry> m_young;
    mutable QHash<QByteArray, SftpEntry> m_old;
    mutable QElapsedTimer m_age; // of the young generation
    // When what was changed, by number. Never a reason to distrust other paths: a long listing
    // would have to ask for each of its files.
    quint32 m_changes = 0;
    quint32 m_allChanged = 0;
    QHash<QByteArray, quint32> m_changed;
    QHash<QByteArray, quint32> m_changedTrees;
};
