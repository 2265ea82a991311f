#include <backends/ssh/sshthread.h>

#include <backends/ssh/remotename.h>
#include <backends/ssh/sftpclient.h>
#include <backends/ssh/sshcommandchannel.h>
#include <backends/ssh/sshsession.h>

#include <QElapsedTimer>
#include <QMutexLocker>
#include <QWaitCondition>

#include <algorithm>
#include <csignal>
#include <pthread.h>
#include <utility>

namespace
{

// How long a connection may lie idle before it is tried, so that a dead one is found out in the
// background rather than by who needs it.
constexpr int idleTime = 15000;
// How often the thread looks at the clock.
constexpr int tick = 1000;

} // namespace

/// A question on its way to the person and back.
struct SshThread::Question {
    QMutex mutex; // guards the others
    QWaitCondition answered;
    bool done = false;
    SshPrompt::Answer answer = SshPrompt::Answer::Refuse;
    bool given = false;
    QByteArray secret;
};

SshThread::SshThread(SshConnection *connection, int attempt, const SshTarget &target,
                     const SshSettings &settings, SshPrompt *prompt)
    : m_connection(connection)
    , m_attempt(attempt)
    , m_target(target)
    , m_settings(settings)
    , m_prompt(prompt)
    , m_waker(std::make_shared<SshWaker>())
    , m_client(std::make_shared<SftpClient>(settings.timeout, [waker = m_waker] { waker->wake(); }))
{
}

SshThread::~SshThread()
{
    m_waker->stop();
    m_client->giveUp(SshConnection::tr("The connection was closed."));
    wait();
}

void SshThread::add(const std::shared_ptr<SshCommandChannel> &command)
{
    {
        const QMutexLocker locker(&m_mutex);
        m_commands.append(command);
    }
    m_waker->wake();
}

void SshThread::run()
{
    // A write to a proxy command that has ended would otherwise end the whole program.
    sigset_t broken;
    sigemptyset(&broken);
    sigaddset(&broken, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &broken, nullptr);

    const QString message = work();
    m_client->giveUp(message);
    QMetaObject::invokeMethod(
        m_connection,
        [connection = m_connection, attempt = m_attempt, message] {
            connection->takeEnd(attempt, message);
        },
        Qt::QueuedConnection);
}

/// Returns why the session ended.
QString SshThread::work()
{
    SshQuestions questions;
    questions.hostKey = [this](const SshPrompt::HostKey &key) {
        const auto state = std::make_shared<Question>();
        const bool done = ask(
            [prompt = m_prompt, key](Question *question) {
                const SshPrompt::Answer answer = prompt->askHostKey(key);
                const QMutexLocker locker(&question->mutex);
                question->answer = answer;
            },
            state);
        return done ? state->answer : SshPrompt::Answer::Refuse;
    };
    questions.secret = [this](const QString &text, bool echo, QByteArray *secret) {
        const auto state = std::make_shared<Question>();
        const bool done = ask(
            [prompt = m_prompt, text, echo](Question *question) {
                QByteArray answer;
                const bool given = prompt->askSecret(text, echo, &answer);
                const QMutexLocker locker(&question->mutex);
                question->given = given;
                question->secret.swap(answer);
            },
            state);
        if (done)
            secret->swap(state->secret);
        return done && state->given;
    };

    SshSession session(m_target, m_settings, questions, m_waker.get());
    QString message = session.open();
    QString home;
    if (message.isEmpty())
        message = startSftp(&session, &home);
    if (message.isEmpty()) {
        QMetaObject::invokeMethod(
            m_connection,
            [connection = m_connection, attempt = m_attempt, home] {
                connection->takeOpened(attempt, home);
            },
            Qt::QueuedConnection);
        QElapsedTimer idle;
        idle.start();
        int requests = 0;
        while (cycle(&session, tick)) {
            const int now = m_client->statistics().requests;
            if (std::exchange(requests, now) != now)
                idle.start();
            else if (idle.hasExpired(idleTime))
                m_client->ping();
        }
        message = m_client->lossReason();
        if (message.isEmpty())
            message = SshConnection::tr("The connection to %1 was lost: %2")
                          .arg(m_target.displayName(), session.errorText());
    }
    m_client->giveUp(message);
    endCommands();
    return message;
}

/// Has the question asked on the connection's thread; false when the wait was cut short.
bool SshThread::ask(const std::function<void(Question *)> &question,
                    const std::shared_ptr<Question> &state)
{
    QMetaObject::invokeMethod(
        m_connection,
        [question, state] {
            question(state.get());
            const QMutexLocker locker(&state->mutex);
            state->done = true;
            state->answered.wakeAll();
        },
        Qt::QueuedConnection);
    constexpr unsigned long nap = 50; // until the thread is told to stop
    const QMutexLocker locker(&state->mutex);
    while (!state->done && !m_waker->stopped())
        state->answered.wait(&state->mutex, nap);
    return state->done;
}

/// Begins to speak SFTP and finds out where and as whom. Returns what went wrong.
QString SshThread::startSftp(SshSession *session, QString *home)
{
    const QString failure = SshConnection::tr("%1 offers no files: %2");
    m_channel = session->openSftp();
    if (!m_channel)
        return failure.arg(m_target.displayName(), session->errorText());
    QElapsedTimer time;
    time.start();
    const auto goOn = [&] { return cycle(session, 100) && !time.hasExpired(m_settings.timeout); };
    const auto text = [&] {
        const QString reason = m_client->lossReason();
        return failure.arg(m_target.displayName(),
                           reason.isEmpty() ? session->errorText() : reason);
    };
    m_client->sendGreeting();
    while (m_client->waitsForGreeting()) {
        if (!goOn())
            return text();
    }
    const QByteArray here = QByteArrayLiteral(".");
    const SftpPendingPointer path = m_client->sendPath(SftpRequest::RealPath, here);
    const SftpPendingPointer owner = m_client->sendPath(SftpRequest::Attributes, here);
    while (!m_client->isAnswered(path) || !m_client->isAnswered(owner)) {
        if (!goOn())
            return text();
    }
    const SftpAnswer name = m_client->wait(path);
    if (!name.ok())
        return text();
    SftpReader reader(name.fields);
    reader.number32();
    *home = tul::remoteNameFromBytes(reader.string());
    const SftpAnswer attributes = m_client->wait(owner);
    const SftpAttributes identity = SftpReader(attributes.fields).attributes();
    m_client->setIdentity(identity.user, identity.group);
    return {};
}

/// Moves what can be moved, then waits for more; false when the session is over.
bool SshThread::cycle(SshSession *session, int milliseconds)
{
    if (m_waker->stopped() || !m_client->lossReason().isEmpty())
        return false;
    if (m_client->isStalled()) {
        m_client->giveUp(SshConnection::tr("%1 has been silent for %2 s.")
                             .arg(m_target.displayName())
                             .arg((m_settings.timeout + 999) / 1000));
        return false;
    }
    if (!sendOutput() || !receive())
        return false;
    serveCommands(session->handle());
    // What came while a command was served would not wake the wait.
    if (!receive())
        return false;
    session->wait(milliseconds);
    return true;
}

bool SshThread::sendOutput()
{
    for (;;) {
        if (m_sent == m_unsent.size()) {
            m_unsent = m_client->takeOutput();
            m_sent = 0;
            if (m_unsent.isEmpty())
                return true;
        }
        const int sent = ssh_channel_write(m_channel, m_unsent.constData() + m_sent,
                                           static_cast<uint32_t>(m_unsent.size() - m_sent));
        if (sent == SSH_AGAIN || sent == 0)
            return true; // until the server takes more
        if (sent < 0)
            return false;
        m_sent += sent;
    }
}

bool SshThread::receive()
{
    static constexpr int bufferSize = 64 * 1024;
    QByteArray buffer(bufferSize, Qt::Uninitialized);
    for (;;) {
        const int count = ssh_channel_read_nonblocking(m_channel, buffer.data(), bufferSize, 0);
        if (count > 0) {
            m_client->feed(buffer.constData(), count);
            continue;
        }
        return count == 0 && !ssh_channel_is_closed(m_channel);
    }
}

void SshThread::serveCommands(ssh_session session)
{
    QVector<std::shared_ptr<SshCommandChannel>> commands;
    {
        const QMutexLocker locker(&m_mutex);
        commands = m_commands;
    }
    for (const std::shared_ptr<SshCommandChannel> &command : std::as_const(commands)) {
        if (command->serve(session))
            continue;
        const QMutexLocker locker(&m_mutex);
        m_commands.removeOne(command);
    }
}

void SshThread::endCommands()
{
    const QMutexLocker locker(&m_mutex);
    for (const std::shared_ptr<SshCommandChannel> &command : std::as_const(m_commands))
        command->end(-1);
    m_commands.clear();
}
