#include <backends/ssh/sshcommand.h>

#include <backends/ssh/sshcommandchannel.h>

#include <QMutexLocker>

#include <algorithm>
#include <array>
#include <utility>

namespace
{

// Output that the command's thread has not taken yet: beyond, the remote command is kept waiting.
constexpr int mostUndelivered = 1024 * 1024;

} // namespace

SshCommand::SshCommand(std::shared_ptr<SshCommandChannel> channel, QObject *parent)
    : QObject(parent)
    , m_channel(std::move(channel))
{
    m_channel->attach(this);
}

SshCommand::~SshCommand()
{
    m_channel->attach(nullptr);
}

void SshCommand::write(const QByteArray &bytes)
{
    m_channel->write(bytes);
}

void SshCommand::resize(int columns, int rows)
{
    m_channel->resize(columns, rows);
}

SshCommandChannel::SshCommandChannel(const QByteArray &commandLine, int columns, int rows,
                                     std::function<void()> wake)
    : m_commandLine(commandLine)
    , m_wake(std::move(wake))
    , m_columns(std::max(columns, 1))
    , m_rows(std::max(rows, 1))
{
}

void SshCommandChannel::attach(SshCommand *command)
{
    {
        const QMutexLocker locker(&m_mutex);
        m_command = command;
        m_detached = !command;
    }
    m_wake();
}

void SshCommandChannel::write(const QByteArray &bytes)
{
    {
        const QMutexLocker locker(&m_mutex);
        m_input.append(bytes);
    }
    m_wake();
}

void SshCommandChannel::resize(int columns, int rows)
{
    {
        const QMutexLocker locker(&m_mutex);
        m_columns = std::max(columns, 1);
        m_rows = std::max(rows, 1);
        m_resized = true;
    }
    m_wake();
}

bool SshCommandChannel::serve(ssh_session session)
{
    {
        const QMutexLocker locker(&m_mutex);
        if (m_detached) {
            if (m_channel)
                ssh_channel_free(std::exchange(m_channel, nullptr)); // hangs up
            return false;
        }
    }
    if (m_step != Step::Run) {
        const int result = start(session);
        if (result == SSH_AGAIN)
            return true;
        if (result != SSH_OK) {
            end(-1);
            return false;
        }
    }
    if (sendInput() && receive())
        return true;
    end(ssh_channel_get_exit_status(m_channel));
    return false;
}

/// Takes the steps until the command runs; each may have to be taken again when answers came.
int SshCommandChannel::start(ssh_session session)
{
    if (!m_channel)
        m_channel = ssh_channel_new(session);
    if (!m_channel)
        return SSH_ERROR;
    int result = SSH_OK;
    if (m_step == Step::Open) {
        result = ssh_channel_open_session(m_channel);
        if (result != SSH_OK)
            return result;
        m_step = Step::Terminal;
    }
    if (m_step == Step::Terminal) {
        const QMutexLocker locker(&m_mutex);
        // Abilities that the display does not have are not promised.
        result = ssh_channel_request_pty_size(m_channel, "dumb", m_columns, m_rows);
        // A server without terminals runs the command all the same.
        if (result == SSH_AGAIN)
            return result;
        m_step = Step::Execute;
    }
    result = ssh_channel_request_exec(m_channel, m_commandLine.constData());
    if (result == SSH_OK)
        m_step = Step::Run;
    return result;
}

bool SshCommandChannel::sendInput()
{
    const QMutexLocker locker(&m_mutex);
    if (std::exchange(m_resized, false))
        ssh_channel_change_pty_size(m_channel, m_columns, m_rows);
    if (m_input.isEmpty())
        return true;
    const int sent
        = ssh_channel_write(m_channel, m_input.constData(), static_cast<uint32_t>(m_input.size()));
    if (sent > 0)
        m_input.remove(0, sent);
    return sent >= 0 || sent == SSH_AGAIN;
}

/// Takes what came; false when the command is over.
bool SshCommandChannel::receive()
{
    std::array<char, 16 * 1024> buffer{};
    for (const int fromError : {0, 1}) {
        for (;;) {
            {
                const QMutexLocker locker(&m_mutex);
                if (m_undelivered > mostUndelivered)
                    return true;
            }
            const int count
                = ssh_channel_read_nonblocking(m_channel, buffer.data(), buffer.size(), fromError);
            if (count <= 0)
                break;
            deliver(QByteArray(buffer.data(), count));
        }
    }
    // The exit status comes between the end of the output and the closing of the channel.
    return !ssh_channel_is_closed(m_channel);
}

void SshCommandChannel::deliver(const QByteArray &bytes)
{
    const QMutexLocker locker(&m_mutex);
    if (!m_command)
        return;
    m_undelivered += bytes.size();
    SshCommand *const command = m_command;
    QMetaObject::invokeMethod(
        command,
        [command, bytes] {
            SshCommandChannel &channel = *command->m_channel;
            {
                const QMutexLocker taken(&channel.m_mutex);
                channel.m_undelivered -= bytes.size();
            }
            channel.m_wake();
            Q_EMIT command->output(bytes);
        },
        Qt::QueuedConnection);
}

void SshCommandChannel::end(int exitStatus)
{
    const QMutexLocker locker(&m_mutex);
    if (m_channel)
        ssh_channel_free(std::exchange(m_channel, nullptr));
    SshCommand *const command = std::exchange(m_command, nullptr);
    m_detached = true;
    if (!command)
        return;
    QMetaObject::invokeMethod(
        command, [command, exitStatus] { Q_EMIT command->finished(exitStatus); },
        Qt::QueuedConnection);
}
