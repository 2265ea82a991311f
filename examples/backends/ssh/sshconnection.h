#pragma once

#include <backends/ssh/sshtarget.h>

#include <QObject>
#include <QString>

#include <memory>

class SftpClient;
class SshCommand;
class SshPrompt;
class SshThread;

/// How to connect, beyond the target.
struct SshSettings {
    /// The longest that anything waits for the network, in milliseconds. The person's time to
    /// answer questions does not count.
    int timeout = 10000;

    /// Where keys, known_hosts and the agent's socket ("agent") are. Empty: the user's own, as the
    /// SSH configuration says; with a directory that configuration is not read at all.
    QString directory;

    /// A shell command whose standard input and output are the connection, in place of a socket.
    QString proxyCommand;
};

/// A connection to a remote machine: made in the background, watched, and made anew on demand.
///
/// All bytes are carried by one thread of the connection's own, and nothing on the caller's thread
/// ever waits for it. Files are reached through client(), which is for any thread; commands are run
/// with run().
///
/// *Ownership*: the target, settings and client belong to the connection. The client is shared:
/// who still holds it when the connection is lost or gone gets ConnectionLost from each request.
///
/// *Threads*: the thread that it lives in, which needs an event loop. The destructor and close()
/// wait for the thread to end: a moment, or until the name of the machine was looked up.
///
/// *Errors*: each end is told by exactly one signal, with a sentence for the user.
class SshConnection : public QObject
{
    Q_OBJECT

public:
    enum class State { Closed, Connecting, Open, Lost };

    /// Nothing happens before open(). The prompt is not owned and must outlive the connection.
    SshConnection(const SshTarget &target, const SshSettings &settings, SshPrompt *prompt,
                  QObject *parent = nullptr);
    ~SshConnection() override;

    const SshTarget &target() const { return m_target; }
    State state() const { return m_state; }

    /// Begins to connect, also anew after the connection was lost; does nothing while it stands.
    void open();

    /// Ends the connection, or the attempt to make one. No signal follows.
    void close();

    /// What files are reached through; null before the first opened(). A new connection has a new
    /// one.
    std::shared_ptr<SftpClient> client() const { return m_client; }

    /// The directory in which the server puts who logs in, as a text of remoteNameFromBytes();
    /// known since opened().
    QString homeDirectory() const { return m_homeDirectory; }

    /// Runs a command line in the user's shell on the remote machine, on a terminal of that many
    /// characters. The result belongs to `parent`, or to the caller.
    SshCommand *run(const QString &commandLine, int columns, int rows, QObject *parent = nullptr);

Q_SIGNALS:
    /// Emitted when files can be reached.
    void opened();

    /// Emitted when no connection came about.
    void failed(const QString &message);

    /// Emitted once when an open connection broke: the network, the server, or a silence longer
    /// than the time-out.
    void lost(const QString &message);

private:
    friend class SshThread;

    void takeOpened(int attempt, const QString &home);
    void takeEnd(int attempt, const QString &message);

    const SshTarget m_target;
    const SshSettings m_settings;
    SshPrompt *const m_prompt;
    State m_state = State::Closed;
    int m_attempt = 0; // what earlier ones report comes too late
    QString m_homeDirectory;
    std::shared_ptr<SftpClient> m_client;
    std::unique_ptr<SshThread> m_thread;
};
