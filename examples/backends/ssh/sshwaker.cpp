#include <backends/ssh/sshwaker.h>

#include <array>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

SshWaker::SshWaker()
    : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

SshWaker::~SshWaker()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

void SshWaker::wake()
{
    const std::uint64_t one = 1;
    // It fails only when enough calls are pending to wake the thread anyway.
    [[maybe_unused]] const auto written = ::write(m_descriptor, &one, sizeof one);
}

void SshWaker::stop()
{
    m_stopped = true;
    wake();
}

void SshWaker::wait(int socket, bool toWrite, int milliseconds)
{
    const short writing = toWrite ? POLLOUT : 0;
    std::array<pollfd, 2> descriptors{
        {{m_descriptor, POLLIN, 0}, {socket, static_cast<short>(POLLIN | writing), 0}}};
    ::poll(descriptors.data(), descriptors.size(), milliseconds);
    std::uint64_t calls = 0;
    [[maybe_unused]] const auto count = ::read(m_descriptor, &calls, sizeof calls);
}
