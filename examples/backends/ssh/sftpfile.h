#pragma once

#include <backends/ssh/sftpclient.h>

#include <QByteArray>

#include <deque>
#include <memory>

/// An open file on the remote machine, read and written in a stream: what follows is asked for
/// before it is needed, and what is written is not waited for until the queue is full.
///
/// *Errors*: a write that the server refuses fails the next write(), flush() or close(). So a file
/// is safe when close() gave Ok, and not before.
class SftpFile
{
public:
    enum OpenFlag : quint32 {
        Read = 0x01,
        Write = 0x02,
        Append = 0x04,
        Create = 0x08,
        Truncate = 0x10,
        Exclusive = 0x20,
    };

    explicit SftpFile(std::shared_ptr<SftpClient> client);
    ~SftpFile();
    SftpFile(const SftpFile &) = delete;
    SftpFile &operator=(const SftpFile &) = delete;

    /// Opens a file; a new one gets `mode`, less what the server masks.
    SftpStatus open(const QByteArray &path, quint32 flags, quint32 mode = 0666);
    bool isOpen() const { return !m_handle.isEmpty(); }
    bool isWritten() const { return m_wasWritten; }
    SftpStatus close();

    /// As known here: what others do to the file meanwhile is not seen.
    qint64 size() const { return m_size; }
    SftpStatus setSize(qint64 size);
    qint64 position() const { return m_position; }
    void seek(qint64 position);

    /// `most` bytes, fewer where the file ends; -1 after a failure.
    qint64 read(char *data, qint64 most);
    /// `size`, or -1 after a failure.
    qint64 write(const char *data, qint64 size);
    /// Waits until all is written.
    SftpStatus flush();

    /// What went wrong last.
    SftpStatus status() const { return m_status; }

    const std::shared_ptr<SftpClient> &client() const { return m_client; }
    const QByteArray &handle() const { return m_handle; }

private:
    struct ReadRequest {
        int size;
        SftpPendingPointer pending;
    };

    void askAhead();
    void forgetReading();
    bool fetch();
    void settleWrites(std::size_t most);

    const std::shared_ptr<SftpClient> m_client;
    QByteArray m_handle;
    SftpStatus m_status = SftpStatus::Ok;
    qint64 m_size = 0;
    qint64 m_position = 0;
    bool m_wasWritten = false;

    QByteArray m_buffer; // what follows m_position, from m_bufferStart on
    int m_bufferStart = 0;
    std::deque<ReadRequest> m_reads; // in the order of the file, without gaps
    qint64 m_askedUpTo = 0;
    std::size_t m_depth = 1;

    std::deque<SftpPendingPointer> m_writes;
};
