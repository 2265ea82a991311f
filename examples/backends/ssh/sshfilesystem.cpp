#include <backends/ssh/sshfilesystem.h>

#include <backends/ssh/remotename.h>

#include <QMutexLocker>
#include <QVector>

#include <algorithm>
#include <utility>

namespace
{

// Of those that are told apart; beyond, all that was asked for before is distrusted once.
constexpr int mostChanges = 1000;

bool isWithin(const QByteArray &path, const QByteArray &tree)
{
    return path.startsWith(tree) && (path.size() == tree.size() || path.at(tree.size()) == '/');
}

} // namespace

SshFileSystem::SshFileSystem(const QString &prefix)
    : m_prefix(prefix)
{
    m_age.start();
}

void SshFileSystem::setClient(std::shared_ptr<SftpClient> client)
{
    forgetAll();
    const QMutexLocker locker(&m_mutex);
    m_client = std::move(client);
}

std::shared_ptr<SftpClient> SshFileSystem::client() const
{
    const QMutexLocker locker(&m_mutex);
    return m_client;
}

QByteArray SshFileSystem::remotePath(const QString &fileName) const
{
    QByteArray path = tul::remoteNameToBytes(fileName.mid(m_prefix.size()));
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    return path.isEmpty() ? QByteArrayLiteral("/") : path;
}

QString SshFileSystem::fileName(const QByteArray &remotePath) const
{
    return m_prefix + tul::remoteNameFromBytes(remotePath);
}

SftpEntry SshFileSystem::entry(const QByteArray &remotePath)
{
    SftpEntry result;
    const std::shared_ptr<SftpClient> client = this->client();
    if (!client) {
        result.status = SftpStatus::NoConnection;
        return result;
    }
    QVector<std::pair<QByteArray, SftpEntryRequest>> requests;
    quint32 changes = 0;
    {
        const QMutexLocker locker(&m_mutex);
        if (knownLocked(remotePath, &result))
            return result;
        changes = m_changes;
    }
    QByteArray path = remotePath;
    for (;;) {
        requests.append({path, SftpEntryRequest(client.get(), path)});
        const QByteArray above = tul::remoteDirectoryOf(path);
        SftpEntry ignored;
        if (above == path || above == "." || known(above, &ignored))
            break;
        path = above;
    }
    QVector<std::pair<QByteArray, SftpEntry>> entries;
    for (const auto &[asked, request] : std::as_const(requests))
        entries.append({asked, request.entry(client.get())});

    const QMutexLocker locker(&m_mutex);
    // What was lost on the way is not known to be missing.
    if (entries.first().second.status != SftpStatus::ConnectionLost) {
        for (const auto &[asked, entry] : std::as_const(entries))
            rememberLocked(asked, entry, changes);
    }
    return entries.first().second;
}

bool SshFileSystem::known(const QByteArray &remotePath, SftpEntry *entry) const
{
    const QMutexLocker locker(&m_mutex);
    return knownLocked(remotePath, entry);
}

bool SshFileSystem::knownLocked(const QByteArray &remotePath, SftpEntry *entry) const
{
    ageLocked();
    const auto young = m_young.constFind(remotePath);
    if (young != m_young.constEnd()) {
        *entry = *young;
        return true;
    }
    const auto old = m_old.constFind(remotePath);
    if (old == m_old.constEnd())
        return false;
    *entry = *old;
    return true;
}

void SshFileSystem::remember(const QByteArray &remotePath, const SftpEntry &entry, quint32 changes)
{
    const QMutexLocker locker(&m_mutex);
    rememberLocked(remotePath, entry, changes);
}

void SshFileSystem::rememberLocked(const QByteArray &remotePath, const SftpEntry &entry,
                                   quint32 changes)
{
    ageLocked();
    if (!wasChangedLocked(remotePath, changes))
        m_young.insert(remotePath, entry);
}

quint32 SshFileSystem::changeCount() const
{
    const QMutexLocker locker(&m_mutex);
    return m_changes;
}

void SshFileSystem::ageLocked() const
{
    if (!m_age.hasExpired(freshness))
        return;
    m_old = m_age.hasExpired(2 * freshness) ? QHash<QByteArray, SftpEntry>()
                                            : std::exchange(m_young, {});
    m_young.clear();
    m_age.start();
}

bool SshFileSystem::wasChangedLocked(const QByteArray &remotePath, quint32 changes) const
{
    if (changes == m_changes)
        return false;
    if (m_allChanged > changes || m_changed.value(remotePath) > changes)
        return true;
    return std::any_of(m_changedTrees.keyValueBegin(), m_changedTrees.keyValueEnd(),
                       [&](const std::pair<QByteArray, quint32> &tree) {
                           return tree.second > changes && isWithin(remotePath, tree.first);
                       });
}

void SshFileSystem::distrust(const QByteArray &remotePath)
{
    const QMutexLocker locker(&m_mutex);
    m_young.remove(remotePath);
    m_old.remove(remotePath);
}

void SshFileSystem::forget(const QByteArray &remotePath)
{
    const QMutexLocker locker(&m_mutex);
    ++m_changes;
    if (m_changed.size() > mostChanges) {
        m_changed.clear();
        m_allChanged = m_changes;
    }
    for (const QByteArray &path : {remotePath, tul::remoteDirectoryOf(remotePath)}) {
        m_changed.insert(path, m_changes);
        m_young.remove(path);
        m_old.remove(path);
    }
}

void SshFileSystem::forgetTree(const QByteArray &remotePath)
{
    forget(remotePath);
    const QMutexLocker locker(&m_mutex);
    if (m_changedTrees.size() > mostChanges) {
        m_changedTrees.clear();
        m_allChanged = m_changes;
    }
    m_changedTrees.insert(remotePath, m_changes);
    for (auto *const generation : {&m_young, &m_old}) {
        for (auto entry = generation->begin(); entry != generation->end();) {
            if (isWithin(entry.key(), remotePath))
                entry = generation->erase(entry);
            else
                ++entry;
        }
    }
}

void SshFileSystem::forgetAll()
{
    const QMutexLocker locker(&m_mutex);
    m_allChanged = ++m_changes;
    m_changed.clear();
    m_changedTrees.clear();
    m_young.clear();
    m_old.clear();
}
