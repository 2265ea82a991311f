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
#include <termios.h>
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

// Leaves the master open only here, even if another thread starts a program meanwhile: a child that
// held it would keep its own terminal alive.
int openPseudoMaster()
{
    const int master = retried([] { return ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC); });
    if (master == -1)
        return -1;
    const bool good = ::fcntl(master, F_SETFL, O_NONBLOCK) == 0 && ::grantpt(master) == 0
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
    while (m_sent < m_unsent.size()) {
        const auto length = static_cast<std::size_t>(m_unsent.size() - m_sent);
        const ssize_t sent
            = retried([&] { return ::write(m_master, m_unsent.constData() + m_sent, length); });
        if (sent == -1 && errno == EAGAIN) {
            m_writeNotifier->setEnabled(true);
            return;
        }
        // Without anybody to read it, the rest is lost.
        m_sent = sent == -1 ? m_unsent.size() : m_sent + static_cast<int>(sent);
    }
    m_unsent.clear();
    m_sent = 0;
    m_writeNotifier->setEnabled(false);
}

void PseudoTerminal::forgetInput()
{
    m_unsent.clear();
    m_sent = 0;
    m_writeNotifier->setEnabled(false);
    // What is sent already waits on the other side, and is flushed only there.
    const int child = retried(
        [this] { return ::open(m_childName.constData(), O_RDWR | O_NOCTTY | O_CLOEXEC); });
    if (child == -1)
        return;
    ::tcflush(child, TCIFLUSH);
    ::close(child);
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
    if (last == Reading::More)
        return;
    // No backspace follows that would make an erasure of a blank.
    const bool hasBlank = m_echo == Echo::Blank;
    m_echo = Echo::None;
    if (hasBlank)
        Q_EMIT arrived(QByteArrayLiteral(" "));
}

/// By whoever hears of the bytes, the object may have been deleted afterwards: not when HungUp.
PseudoTerminal::Reading PseudoTerminal::readOnce()
{
    std::vector<char> room(readSize);
    const ssize_t length = retried([&] { return ::read(m_master, room.data(), room.size()); });
    if (length <= 0)
        return length == -1 && errno == EAGAIN ? Reading::Nothing : Reading::HungUp;
    Q_EMIT arrived(withErasures(room.data(), static_cast<int>(length)));
    return Reading::More;
}

/// Makes an erasure of the backspace, blank and backspace that echo a wiped out character. The
/// system writes each of them by itself, so that a read may end between them: a blank after a
/// backspace waits for what follows it.
QByteArray PseudoTerminal::withErasures(const char *data, int length)
{
    QByteArray result;
    result.reserve(length + 1);
    for (const char *at = data; at != data + length; ++at) {
        if (m_echo == Echo::Blank)
            result += *at == '\b' ? "\x1b[K" : " ";
        if (*at == '\b') {
            if (m_echo != Echo::Blank)
                result += '\b';
            m_echo = Echo::Backspace;
        } else if (*at == ' ' && m_echo == Echo::Backspace) {
            m_echo = Echo::Blank;
        } else {
            result += *at;
            m_echo = Echo::None;
        }
    }
    return result;
}

void PseudoTerminal::attachChild() const
{
    ::setsid();
    const int terminal = retried([this] { return ::open(m_childName.constData(), O_RDWR); });
    const bool good = terminal != -1 && ::ioctl(terminal, TIOCSCTTY, 0) == 0
        && ::dup2(terminal, STDIN_FILENO) != -1 && ::dup2(terminal, STDOUT_FILENO) != -1
        && ::dup2(terminal, STDERR_FILENO) != -1;
    if (!good)
        ::_exit(EXIT_FAILURE);
    if (terminal > STDERR_FILENO)
        ::close(terminal);
}
