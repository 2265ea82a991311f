#include <backends/ssh/sftpdirectory.h>

#include <backends/ssh/remotename.h>

#include <algorithm>
#include <utility>

namespace
{

// OpenSSH answers with 100 names or fewer. Others on the line wait for what was asked before, so
// this is no more than some 200 KiB.
constexpr std::size_t deepest = 16;

} // namespace

SftpEntryRequest::SftpEntryRequest(SftpClient *client, const QByteArray &path)
    : own(client->sendPath(SftpRequest::LinkAttributes, path))
    , target(client->sendPath(SftpRequest::Attributes, path))
{
}

SftpEntry SftpEntryRequest::entry(SftpClient *client) const
{
    SftpEntry entry;
    const SftpAnswer ownAnswer = client->wait(own);
    const SftpAnswer targetAnswer = client->wait(target);
    entry.status = ownAnswer.status;
    entry.targetStatus = targetAnswer.status;
    if (ownAnswer.ok())
        entry.own = SftpReader(ownAnswer.fields).attributes();
    if (targetAnswer.ok())
        entry.target = SftpReader(targetAnswer.fields).attributes();
    return entry;
}

SftpDirectory::SftpDirectory(std::shared_ptr<SftpClient> client, const QByteArray &path)
    : m_client(std::move(client))
    , m_path(path)
{
    const SftpAnswer answer
        = m_client->wait(m_client->sendPath(SftpRequest::OpenDirectory, m_path));
    m_status = answer.status;
    if (!answer.ok())
        return;
    m_handle = SftpReader(answer.fields).string();
    askAhead();
}

SftpDirectory::~SftpDirectory()
{
    if (!m_handle.isEmpty())
        m_client->closeHandle(m_handle);
}

bool SftpDirectory::next(SftpEntry *entry)
{
    while (m_position == m_entries.size()) {
        if (!fetch())
            return false;
    }
    *entry = m_entries[m_position++];
    return true;
}

void SftpDirectory::askAhead()
{
    while (m_asked.size() < m_depth)
        m_asked.push_back(m_client->sendPath(SftpRequest::ReadDirectory, m_handle));
}

/// Waits for the next names.
bool SftpDirectory::fetch()
{
    m_entries.clear();
    m_position = 0;
    if (m_status != SftpStatus::Ok)
        return false;
    const SftpAnswer answer = m_client->wait(m_asked.front());
    m_asked.pop_front();
    if (!answer.ok()) {
        m_status = answer.status;
        return false;
    }
    if (!take(answer.fields)) {
        m_status = SftpStatus::BadMessage;
        return false;
    }
    followLinks();
    return true;
}

bool SftpDirectory::take(const QByteArray &fields)
{
    SftpReader reader(fields);
    const quint32 count = reader.number32();
    for (quint32 index = 0; index < count && reader.ok(); ++index) {
        SftpEntry entry;
        entry.name = reader.string();
        reader.string(); // a line of "ls -l"
        entry.own = reader.attributes();
        entry.target = entry.own;
        // A name that leads out of the directory would be an attack.
        if (!entry.name.isEmpty() && !entry.name.contains('/') && !entry.name.contains('\0'))
            m_entries.push_back(entry);
    }
    return reader.ok();
}

/// Learns where the links of the names that just came lead to, asks for more names meanwhile.
void SftpDirectory::followLinks()
{
    std::vector<std::pair<SftpEntry *, SftpPendingPointer>> targets;
    for (SftpEntry &entry : m_entries) {
        if (entry.own.isLink())
            targets.emplace_back(
                &entry,
                m_client->sendPath(SftpRequest::Attributes, tul::remoteJoined(m_path, entry.name)));
    }
    m_depth = std::min(2 * m_depth, deepest);
    askAhead();
    for (const auto &[entry, pending] : targets) {
        const SftpAnswer answer = m_client->wait(pending);
        entry->targetStatus = answer.status;
        entry->target = answer.ok() ? SftpReader(answer.fields).attributes() : SftpAttributes();
    }
}
