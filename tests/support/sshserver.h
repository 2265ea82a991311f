#pragma once

#include <backends/ssh/sftpclient.h>
#include <backends/ssh/sshconnection.h>
#include <backends/ssh/sshprompt.h>

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

/// A prompt that answers as it was told and records what it was asked.
class TestPrompt : public SshPrompt
{
public:
    Answer askHostKey(const HostKey &key) override;
    bool askSecret(const QString &question, bool echo, QByteArray *secret) override;

    Answer keyAnswer = Answer::Refuse;
    QByteArrayList secrets; ///< given one after the other; none left: the person gives up
    QList<HostKey> keys;
    QStringList questions;
};

/// OpenSSH's server on keys, configuration and files of its own, all of which goes with the object.
/// It runs once per connection, without a port, as a proxy command.
class SshServer
{
public:
    /// Who logs in: whoever runs the test, or, when that is root, somebody who is refused things.
    enum class User { Same, Unprivileged };

    explicit SshServer(User user = User::Same);
    ~SshServer();
    SshServer(const SshServer &) = delete;
    SshServer &operator=(const SshServer &) = delete;

    /// What went wrong while it was set up; empty when it is ready.
    QString fault() const { return m_fault; }

    /// The local directory that is the remote home directory.
    QString home() const { return path("home"); }
    /// The directory with the client's key, and known_hosts.
    QString clientDirectory() const { return path("client"); }
    QByteArray hostKeyLine() const; ///< as known_hosts has it

    /// How to reach it, with a delay added to each round trip.
    SshTarget target() const;
    SshSettings settings(int delay = 0) const;

    /// Listens on a loopback port until the object is destroyed; 0 when that fails.
    int listen();

    void swallowBytes(); ///< from now on, of all connections
    void kill(); ///< all connections
    void restore(); ///< for new connections

    /// Opens a connection and waits for it; null when that fails.
    std::unique_ptr<SshConnection> connect(const SshSettings &settings);

    /// Generates a key pair; false when that fails.
    static bool makeKey(const QString &fileName, const QString &passphrase = QString());

    TestPrompt prompt;

private:
    QString path(const char *name) const;
    bool setUp(User user);

    const QTemporaryDir m_directory;
    QString m_user;
    QString m_fault;
    QProcess m_listener;
};
