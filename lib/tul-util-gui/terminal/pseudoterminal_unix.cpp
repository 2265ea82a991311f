#include <tul-util-gui/terminal/pseudoterminal_p.h>

#include <QPointer>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

constexpr std::size_t readSize = 1 << 16;
constexpr int drainRounds = 16;

template<class Call> auto retried(Call call)
{
    decltype(call()) result;
    do
        result = call();
    while (result == -1 && errno == EINTR);
    return result;
}

unsigned short cellCount(int count)
{
    return static_cast<unsigned short>(
        std::clamp<int>(count, 0, std::numeric_limits<unsigned short>::max()));
}

// Leaves the master open only here: a child that held it would keep its own terminal alive.
int openPseudoMaster()
{
    const int master = retried([] { return ::posix_openpt(O_RDWR | O_NOCTTY); });
    if (master == -1)
        return -1;
    const bool good = ::fcntl(master, F_SETFD, FD_CLOEXEC) == 0
        && ::fcntl(master, F_SETFL, O_NONBLOCK) == 0 && ::grantpt(master) == 0
        && ::unlockpt(master) == 0;
    if (good)
        return master;
    const int error = errno;
    ::close(master);
    errno = error;
    return -1;
}

} // namespace

PseudoTerminal::PseudoTerminal() = default;

PseudoTerminal::~PseudoTerminal()
{
    delete m_readNotifier;
    delete m_writeNotifier;
    if (m_master != -1)
        ::close(m_master);
}

bool PseudoTerminal::isSupported()
{
    return true;
}

bool PseudoTerminal::open()
{
    m_master = openPseudoMaster();
    const char *const name = m_master == -1 ? nullptr : ::ptsname(m_master);
    if (!name) {
        m_error = tr("Cannot make a pseudo-terminal: %1").arg(qt_error_string(errno));
        return false;
    }
    m_childName = name;
    m_readNotifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
    m_writeNotifier = new QSocketNotifier(m_master, QSocketNotifier::Write, this);
    m_writeNotifier->setEnabled(false);
    connect(m_readNotifier, &QSocketNotifier::activated, this, &PseudoTerminal::readSome);
    connect(m_writeNotifier, &QSocketNotifier::activated, this, &PseudoTerminal::writeSome);
    return true;
}

qint64 PseudoTerminal::write(const char *data, qint64 size)
{
    const qint64 room = std::numeric_limits<int>::max() / 2 - m_unsent.size();
    const qint64 taken = std::min(size, room);
    if (taken <= 0)
        return size > 0 ? -1 : 0;
    m_unsent.append(data, static_cast<int>(taken));
    writeSome();
    return taken;
}

void PseudoTerminal::writeSome()
{
    while (!m_unsent.isEmpty()) {
        const auto length = static_cast<std::size_t>(m_unsent.size());
        const ssize_t sent
            = retried([&] { return ::write(m_master, m_unsent.constData(), length); });
        if (sent == -1 && errno == EAGAIN)
            break;
        if (sent == -1)
            m_unsent.clear(); // nobody is there to read it
        else
            m_unsent.remove(0, static_cast<int>(sent));
    }
    m_writeNotifier->setEnabled(!m_unsent.isEmpty());
}

void PseudoTerminal::setSize(int columns, int rows)
{
    winsize size = {};
    size.ws_col = cellCount(columns);
    size.ws_row = cellCount(rows);
    ::ioctl(m_master, TIOCSWINSZ, &size); // sends SIGWINCH as well
}

void PseudoTerminal::resume()
{
    m_readNotifier->setEnabled(true);
}

void PseudoTerminal::readSome()
{
    if (readOnce() == Reading::HungUp)
        m_readNotifier->setEnabled(false);
}

void PseudoTerminal::drain()
{
    const QPointer<PseudoTerminal> self(this);
    Reading last = Reading::More;
    for (int round = 0; round < drainRounds && last == Reading::More; ++round) {
        last = readOnce();
        if (!self)
            return;
    }
}

/// By whoever hears of the bytes, the object may have been deleted afterwards: not when HungUp.
PseudoTerminal::Reading PseudoTerminal::readOnce()
{
    std::vector<char> room(readSize);
    const ssize_t length = retried([&] { return ::read(m_master, room.data(), room.size()); });
    if (length <= 0)
        return length == -1 && errno == EAGAIN ? Reading::Nothing : Reading::HungUp;
    QByteArray bytes(room.data(), static_cast<int>(length));
    // The echo of an erased character.
    bytes.replace(QByteArrayLiteral("\b \b"), QByteArrayLiteral("\b\x1b[K"));
    Q_EMIT arrived(bytes);
    return Reading::More;
}

void PseudoTerminal::attachChild() const
{
    ::setsid();
    const int terminal = ::open(m_childName.constData(), O_RDWR);
    const bool good = terminal != -1 && ::ioctl(terminal, TIOCSCTTY, 0) == 0
        && ::dup2(terminal, STDIN_FILENO) != -1 && ::dup2(terminal, STDOUT_FILENO) != -1
        && ::dup2(terminal, STDERR_FILENO) != -1;
    if (!good)
        ::_exit(EXIT_FAILURE);
    if (terminal > STDERR_FILENO)
        ::close(terminal);
}
