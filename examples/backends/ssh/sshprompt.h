#pragma once

#include <QByteArray>
#include <QString>

/// What a connection asks the person while it is made. The host implements it, usually with message
/// boxes.
///
/// *Threads*: called on the thread that the SshConnection lives in, from its event loop; an
/// implementation may run an event loop of its own, and the connection may be closed meanwhile.
/// It must outlive the connection.
class SshPrompt
{
public:
    enum class KeyKind {
        Unknown, ///< the machine was never seen before
        Changed, ///< it showed another key before: somebody may be in between
    };
    struct HostKey {
        KeyKind kind;
        QString host;
        QString type; ///< such as "ssh-ed25519"
        QString fingerprint; ///< such as "SHA256:..."
    };
    enum class Answer {
        Refuse,
        AcceptOnce,
        AcceptAndRemember, ///< written to known_hosts; as AcceptOnce for a changed key, whose old
                           ///< line the person has to take out of that file
    };

    SshPrompt() = default;
    virtual ~SshPrompt() = default;
    SshPrompt(const SshPrompt &) = delete;
    SshPrompt &operator=(const SshPrompt &) = delete;

    virtual Answer askHostKey(const HostKey &key) = 0;

    /// Asks for a password, a passphrase or what else the server wants to know; `echo` says whether
    /// the text may be seen while it is typed. Returns false when the person gave up. The engine
    /// overwrites the secret once it has been sent, and keeps no copy.
    virtual bool askSecret(const QString &question, bool echo, QByteArray *secret) = 0;
};
