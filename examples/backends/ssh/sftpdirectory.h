#pragma once

#include <backends/ssh/sftpclient.h>

#include <QByteArray>

#include <deque>
#include <memory>
#include <vector>

/// What is known of a file, a directory or a link without asking again.
struct SftpEntry {
    QByteArray name;
    SftpStatus status = SftpStatus::Ok; ///< NoSuchFile and its kin for what is not there
    SftpAttributes own; ///< of the name itself
    SftpStatus targetStatus = SftpStatus::Ok; ///< not Ok: a link that leads nowhere
    SftpAttributes target; ///< of what a link leads to; for anything else as `own`
};

/// Asks for the attributes of a path: the own ones and, without a further round trip, those of a
/// link's target.
struct SftpEntryRequest {
    SftpEntryRequest(SftpClient *client, const QByteArray &path);
    SftpEntry entry(SftpClient *client) const; ///< waits for the answers

    SftpPendingPointer own;
    SftpPendingPointer target;
};

/// Reads a directory of the remote machine: one round trip until it is open, one more until the
/// first names come. Further names are asked for ahead, so that a long listing is bound by the line
/// and not by its delay. The attributes come with the names; only links cost a further round trip,
/// one for all that arrived together.
class SftpDirectory
{
public:
    SftpDirectory(std::shared_ptr<SftpClient> client, const QByteArray &path);
    ~SftpDirectory();
    SftpDirectory(const SftpDirectory &) = delete;
    SftpDirectory &operator=(const SftpDirectory &) = delete;

    /// Fetches the next entry, "." and ".." included; false at the end and after a failure.
    bool next(SftpEntry *entry);

    /// EndOfFile when the directory was read to its end; else what went wrong.
    SftpStatus status() const { return m_status; }

private:
    bool fetch();
    void askAhead();
    bool take(const QByteArray &fields);
    void followLinks();

    const std::shared_ptr<SftpClient> m_client;
    const QByteArray m_path;
    QByteArray m_handle;
    SftpStatus m_status = SftpStatus::Ok;
    std::deque<SftpPendingPointer> m_asked;
    std::size_t m_depth = 2; // the names of a small directory, and that there are no more
    std::vector<SftpEntry> m_entries;
    std::size_t m_position = 0;
};
