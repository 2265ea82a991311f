#include <backends/ssh/sshconnection.h>

#include <backends/ssh/remotename.h>
#include <backends/ssh/sshcommand.h>
#include <backends/ssh/sshcommandchannel.h>
#include <backends/ssh/sshthread.h>

SshConnection::SshConnection(const SshTarget &target, const SshSettings &settings,
                             SshPrompt *prompt, QObject *parent)
    : QObject(parent)
    , m_target(target)
    , m_settings(settings)
    , m_prompt(prompt)
{
}

SshConnection::~SshConnection() = default;

void SshConnection::open()
{
    if (m_state == State::Connecting || m_state == State::Open)
        return;
    m_state = State::Connecting;
    m_thread = std::make_unique<SshThread>(this, ++m_attempt, m_target, m_settings, m_prompt);
    m_thread->start();
}

void SshConnection::close()
{
    m_thread.reset();
    ++m_attempt;
    m_state = State::Closed;
}

SshCommand *SshConnection::run(const QString &commandLine, int columns, int rows, QObject *parent)
{
    const bool isOpen = m_state == State::Open;
    const auto channel = std::make_shared<SshCommandChannel>(
        tul::remoteNameToBytes(commandLine), columns, rows,
        isOpen ? std::function<void()>([waker = m_thread->waker()] { waker->wake(); })
               : std::function<void()>([] {}));
    auto *const command = new SshCommand(channel, parent);
    if (isOpen)
        m_thread->add(channel);
    else
        channel->end(-1);
    return command;
}

void SshConnection::takeOpened(int attempt, const QString &home)
{
    if (attempt != m_attempt)
        return; // closed in the meantime
    m_state = State::Open;
    m_homeDirectory = home;
    m_client = m_thread->client();
    Q_EMIT opened();
}

void SshConnection::takeEnd(int attempt, const QString &message)
{
    if (attempt != m_attempt)
        return;
    const bool wasOpen = m_state == State::Open;
    m_state = wasOpen ? State::Lost : State::Closed;
    m_thread->wait();
    if (wasOpen)
        Q_EMIT lost(message);
    else
        Q_EMIT failed(message);
}
