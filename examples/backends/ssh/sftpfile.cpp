#include <backends/ssh/sftpfile.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{

// Each server takes packets of this size. Sixteen of them keep a line busy, and are little enough
// for those who wait for their own answers behind them.
constexpr int chunk = 32 * 1024;
constexpr std::size_t deepest = 16;

} // namespace

SftpFile::SftpFile(std::shared_ptr<SftpClient> client)
    : m_client(std::move(client))
{
}

SftpFile::~SftpFile()
{
    if (isOpen())
        m_client->closeHandle(m_handle);
}

SftpStatus SftpFile::open(const QByteArray &path, quint32 flags, quint32 mode)
{
    SftpAttributes attributes;
    if (flags & Create) {
        attributes.fields = SftpAttributes::Mode;
        attributes.mode = mode;
    }
    const SftpAnswer opened = m_client->wait(m_client->send(
        SftpRequest::Open, SftpWriter().string(path).number32(flags).attributes(attributes)));
    m_status = opened.status;
    if (!opened.ok())
        return m_status;
    m_handle = SftpReader(opened.fields).string();
    if ((flags & Truncate) && !(flags & Read))
        return m_status;

    const SftpPendingPointer size = m_client->sendPath(SftpRequest::HandleAttributes, m_handle);
    if (flags & Read)
        askAhead(); // who opens a file to read it begins at its front
    const SftpAnswer answer = m_client->wait(size);
    m_status = answer.status;
    const SftpAttributes found = SftpReader(answer.fields).attributes();
    m_size = static_cast<qint64>(found.size);
    if (answer.ok() && found.isDirectory())
        m_status = SftpStatus::Failure;
    if (m_status != SftpStatus::Ok)
        m_client->closeHandle(std::exchange(m_handle, QByteArray()));
    else if (flags & Append)
        m_position = m_size;
    return m_status;
}

SftpStatus SftpFile::close()
{
    if (!isOpen())
        return m_status;
    const QByteArray handle = std::exchange(m_handle, QByteArray());
    m_reads.clear();
    if (!m_wasWritten) {
        m_client->closeHandle(handle);
        return m_status;
    }
    const SftpPendingPointer closed = m_client->sendPath(SftpRequest::Close, handle);
    settleWrites(0);
    const SftpStatus status = m_client->wait(closed).status;
    if (m_status == SftpStatus::Ok)
        m_status = status;
    return m_status;
}

SftpStatus SftpFile::setSize(qint64 size)
{
    settleWrites(0);
    forgetReading();
    SftpAttributes attributes;
    attributes.fields = SftpAttributes::Size;
    attributes.size = static_cast<quint64>(size);
    const SftpStatus status = m_client->ask(SftpRequest::SetHandleAttributes,
                                            SftpWriter().string(m_handle).attributes(attributes));
    if (status == SftpStatus::Ok)
        m_size = size;
    return status;
}

void SftpFile::seek(qint64 position)
{
    if (position == m_position)
        return;
    forgetReading();
    m_position = position;
}

void SftpFile::forgetReading()
{
    m_reads.clear();
    m_buffer.clear();
    m_bufferStart = 0;
    m_depth = 1;
}

void SftpFile::askAhead()
{
    if (m_reads.empty())
        m_askedUpTo = m_position + m_buffer.size();
    while (m_reads.size() < m_depth) {
        const auto offset = static_cast<quint64>(m_askedUpTo);
        m_reads.push_back(
            {chunk,
             m_client->send(SftpRequest::Read,
                            SftpWriter().string(m_handle).number64(offset).number32(chunk))});
        m_askedUpTo += chunk;
    }
}

/// Waits for the bytes at the position. False at the end of the file and after a failure.
bool SftpFile::fetch()
{
    m_buffer.clear();
    m_bufferStart = 0;
    askAhead();
    const ReadRequest request = m_reads.front();
    m_reads.pop_front();
    const SftpAnswer answer = m_client->wait(request.pending);
    m_status = answer.status;
    if (answer.ok()) {
        m_buffer = SftpReader(answer.fields).string();
        m_status = m_buffer.isEmpty() ? SftpStatus::BadMessage : SftpStatus::Ok;
    }
    // After a short answer what was asked for lies beyond a gap.
    if (m_buffer.size() < request.size)
        m_reads.clear();
    if (m_status != SftpStatus::Ok)
        return false;
    m_depth = std::min(2 * m_depth, deepest);
    if (m_askedUpTo < m_size)
        askAhead();
    return true;
}

qint64 SftpFile::read(char *data, qint64 most)
{
    if (!m_writes.empty())
        settleWrites(0);
    qint64 done = 0;
    while (done < most) {
        if (m_bufferStart == m_buffer.size() && !fetch())
            break;
        const qint64 count = std::min<qint64>(most - done, m_buffer.size() - m_bufferStart);
        std::memcpy(data + done, m_buffer.constData() + m_bufferStart,
                    static_cast<std::size_t>(count));
        m_bufferStart += static_cast<int>(count);
        m_position += count;
        done += count;
    }
    if (m_status == SftpStatus::EndOfFile)
        m_status = SftpStatus::Ok;
    // Part of the bytes and no word of the failure would pass for the end of the file.
    return m_status == SftpStatus::Ok ? done : -1;
}

qint64 SftpFile::write(const char *data, qint64 size)
{
    forgetReading();
    m_wasWritten = true;
    for (qint64 done = 0; done < size && m_status == SftpStatus::Ok;) {
        const int part = static_cast<int>(std::min<qint64>(chunk, size - done));
        m_writes.push_back(m_client->send(SftpRequest::Write,
                                          SftpWriter()
                                              .string(m_handle)
                                              .number64(static_cast<quint64>(m_position))
                                              .string(QByteArray::fromRawData(data + done, part))));
        done += part;
        m_position += part;
        settleWrites(deepest);
    }
    m_size = std::max(m_size, m_position);
    return m_status == SftpStatus::Ok ? size : -1;
}

SftpStatus SftpFile::flush()
{
    settleWrites(0);
    return m_status;
}

/// Waits until no more than `most` writes are under way.
void SftpFile::settleWrites(std::size_t most)
{
    while (m_writes.size() > most) {
        const SftpStatus status = m_client->wait(m_writes.front()).status;
        m_writes.pop_front();
        if (status != SftpStatus::Ok && m_status == SftpStatus::Ok)
            m_status = status;
    }
}
