#pragma once

#include <atomic>

/// Wakes a thread that waits for a socket, from any other thread; and tells it to stop.
class SshWaker
{
public:
    SshWaker();
    ~SshWaker();
    SshWaker(const SshWaker &) = delete;
    SshWaker &operator=(const SshWaker &) = delete;

    void wake();
    void stop();
    bool stopped() const { return m_stopped; }

    /// Waits until `socket` can be read from (or written to, if wanted), wake() was called or the
    /// time is over. A socket of -1 is left out.
    void wait(int socket, bool toWrite, int milliseconds);

private:
    const int m_descriptor;
    std::atomic<bool> m_stopped{false};
};
