#pragma once

#include <backends/ssh/sshconnection.h>
#include <backends/ssh/sshprompt.h>
#include <backends/ssh/sshwaker.h>

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QThread>
#include <QVector>

#include <functional>
#include <libssh/libssh.h>
#include <memory>

class SshCommandChannel;
class SshSession;

/// The thread of a connection: makes the session, carries the bytes of files and commands, and ends
/// with the session. All of libssh happens here.
///
/// *Threads*: run() and what it calls are on the thread itself, the public operations on that of
/// the connection.
class SshThread : public QThread
{
    Q_OBJECT

public:
    SshThread(SshConnection *connection, int attempt, const SshTarget &target,
              const SshSettings &settings, SshPrompt *prompt);
    ~SshThread() override; ///< stops and waits

    const std::shared_ptr<SftpClient> &client() const { return m_client; }
    const std::shared_ptr<SshWaker> &waker() const { return m_waker; }
    void add(const std::shared_ptr<SshCommandChannel> &command);

protected:
    void run() override;

private:
    struct Question;

    QString work();
    QString startSftp(SshSession *session, QString *home);
    bool cycle(SshSession *session, int milliseconds);
    bool sendOutput();
    bool receive();
    void serveCommands(ssh_session session);
    void endCommands();
    bool ask(const std::function<void(Question *)> &question,
             const std::shared_ptr<Question> &state);

    SshConnection *const m_connection;
    const int m_attempt; // tells the connection who reports
    const SshTarget m_target;
    const SshSettings m_settings;
    SshPrompt *const m_prompt;
    const std::shared_ptr<SshWaker> m_waker;
    const std::shared_ptr<SftpClient> m_client;

    ssh_channel m_channel = nullptr;
    QByteArray m_unsent;
    int m_sent = 0; // of m_unsent

    QMutex m_mutex; // guards m_commands
    QVector<std::shared_ptr<SshCommandChannel>> m_commands;
};
