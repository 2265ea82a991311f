#include <tul-util/tulringbuffer.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace
{

constexpr int maximumChunkSize = 1 << 20;

} // namespace

TULRingBuffer::TULRingBuffer(int chunkSize)
    : m_chunkSize(std::clamp(chunkSize, 1, maximumChunkSize))
{
}

TULRingBuffer::~TULRingBuffer() = default;

bool TULRingBuffer::isEmpty() const
{
    return m_size == 0;
}

int TULRingBuffer::size() const
{
    constexpr qint64 limit = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(m_size, limit));
}

void TULRingBuffer::append(const QByteArray &bytes)
{
    const char *source = bytes.constData();
    int left = bytes.size();
    while (left > 0) {
        if (m_chunks.empty() || m_tail == m_chunkSize) {
            // Not make_unique, which would clear the chunk first.
            const auto length = static_cast<std::size_t>(m_chunkSize);
            m_chunks.push_back(std::unique_ptr<char[]>(new char[length]));
            m_tail = 0;
        }
        const int length = std::min(left, m_chunkSize - m_tail);
        std::memcpy(m_chunks.back().get() + m_tail, source, static_cast<std::size_t>(length));
        m_tail += length;
        m_size += length;
        source += length;
        left -= length;
    }
}

qint64 TULRingBuffer::readData(char *data, qint64 maxLength)
{
    if (!data)
        return 0;
    const qint64 wanted = std::min(maxLength, m_size);
    qint64 copied = 0;
    while (copied < wanted) {
        const qint64 length = std::min<qint64>(wanted - copied, m_chunkSize - m_head);
        std::memcpy(data + copied, m_chunks.front().get() + m_head,
                    static_cast<std::size_t>(length));
        copied += length;
        m_size -= length;
        m_head += static_cast<int>(length);
        if (m_size == 0) {
            m_head = m_tail = 0; // the last chunk serves again
        } else if (m_head == m_chunkSize) {
            m_chunks.pop_front();
            m_head = 0;
        }
    }
    return copied;
}
