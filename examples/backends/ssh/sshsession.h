#pragma once

#include <backends/ssh/sshconnection.h>
#include <backends/ssh/sshprompt.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QString>

#include <functional>
#include <libssh/callbacks.h>
#include <libssh/libssh.h>

class SshWaker;

/// What a session asks while it is made; the thread that it runs on passes it on to the person.
struct SshQuestions {
    std::function<SshPrompt::Answer(const SshPrompt::HostKey &)> hostKey;
    std::function<bool(const QString &, bool, QByteArray *)> secret;
};

/// A session of libssh that is never left to wait by itself, so that each step ends when its time
/// is over or the waker says stop.
///
/// *Threads*: one, its own.
class SshSession
{
    Q_DECLARE_TR_FUNCTIONS(SshSession)

public:
    SshSession(const SshTarget &target, const SshSettings &settings, SshQuestions questions,
               SshWaker *waker);
    ~SshSession();
    SshSession(const SshSession &) = delete;
    SshSession &operator=(const SshSession &) = delete;

    /// Connects, checks the host's key and logs in. Returns a sentence for the user when that
    /// fails; empty when all went well.
    QString open();

    /// Opens a channel on which the server speaks SFTP; null when that fails.
    ssh_channel openSftp();

    ssh_session handle() const { return m_session; }
    QString errorText() const;

    /// Waits until the server sent something, the waker was called or the time is over.
    void wait(int milliseconds);

private:
    int settle(int again, const std::function<int()> &step);
    bool set(ssh_options_e option, const QString &value);
    bool setOptions();
    QString checkHost();
    QString logIn();
    int tryKeys();
    int tryQuestions();
    int tryPassword();
    bool ask(const QString &question, bool echo, QByteArray *secret);
    static int askPassphrase(const char *prompt, char *buffer, size_t size, int echo, int verify,
                             void *self);

    const SshTarget m_target;
    const SshSettings m_settings;
    const SshQuestions m_questions;
    SshWaker *const m_waker;
    ssh_session m_session;
    ssh_callbacks_struct m_callbacks{};
    QElapsedTimer m_step; // since the present step began, without the person's time
    bool m_timedOut = false;
    bool m_cancelled = false; // by the person
};
