#pragma once

#include <tul-util/tul_util_export.h>

#include <QByteArray>

#include <deque>
#include <memory>

/// A queue of bytes: appended at the tail, read and removed at the head, in the same order. For a
/// device between a producer and a consumer that come at different times.
///
/// The bytes lie in chunks of one size, so that an append never moves what is already held and
/// memory is given back as the bytes are read. Each operation costs time in proportion to the bytes
/// that it copies, however many are held; an emptied buffer keeps one chunk.
///
/// *Threads*: none of its own and no lock; whoever shares one locks.
class TUL_UTIL_EXPORT TULRingBuffer
{
public:
    /// An empty buffer, with no memory yet. `chunkSize` is in bytes; a value outside 1 to 1 MiB is
    /// replaced by the nearer limit.
    explicit TULRingBuffer(int chunkSize);
    ~TULRingBuffer();
    TULRingBuffer(const TULRingBuffer &) = delete;
    TULRingBuffer &operator=(const TULRingBuffer &) = delete;

    bool isEmpty() const;

    /// How many bytes are held; INT_MAX when there are more than an int can count. They can all be
    /// read nevertheless.
    int size() const;

    /// Adds a copy of `bytes` at the tail.
    void append(const QByteArray &bytes);

    /// Moves up to `maxLength` bytes from the head to `data` and returns how many there were: 0
    /// when the buffer is empty, `maxLength` is not above 0, or `data` is null.
    qint64 readData(char *data, qint64 maxLength);

private:
    int m_chunkSize;
    std::deque<std::unique_ptr<char[]>> m_chunks;
    int m_head = 0; // first byte held, in the first chunk
    int m_tail = 0; // end of the bytes held, in the last chunk
    qint64 m_size = 0;
};
