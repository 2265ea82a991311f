#pragma once

#include <backends/ssh/sftppackets.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QHash>
#include <QMutex>
#include <QString>
#include <QWaitCondition>

#include <functional>
#include <memory>

/// A request on its way: what SftpClient::send() gives and SftpClient::wait() takes. It may be
/// dropped at any time; the answer is then thrown away.
class SftpPending;
using SftpPendingPointer = std::shared_ptr<SftpPending>;

/// What a server answered: a status, or the fields of the packet that was asked for.
struct SftpAnswer {
    SftpStatus status = SftpStatus::ConnectionLost;
    QByteArray fields; ///< of Handle, Data, Names and Attributes, then with status Ok

    bool ok() const { return status == SftpStatus::Ok; }
};

/// The requests and answers of one SFTP connection, free of the library that carries the bytes.
///
/// Any number of threads ask at the same time: each waits for its own answer only, so that a long
/// listing on one thread costs another one no more than its own round trip. Whoever has several
/// questions sends all before waiting for the first, and pays for one round trip.
///
/// *Threads*: any thread, but takeOutput(), feed(), isStalled() and ping() belong to the thread
/// that carries the bytes.
///
/// *Errors*: a wait lasts for timeout() at the longest. Then the connection counts as lost: that
/// wait and all others end with ConnectionLost, and so does every later one at once.
class SftpClient
{
    Q_DECLARE_TR_FUNCTIONS(SftpClient)

public:
    /// `wake` is called on any thread when there is output to be sent, or when the connection was
    /// given up and the thread that carries it is to end.
    SftpClient(int timeout, std::function<void()> wake);
    ~SftpClient();
    SftpClient(const SftpClient &) = delete;
    SftpClient &operator=(const SftpClient &) = delete;

    int timeout() const { return m_timeout; } ///< in milliseconds

    // What everything below is made of.
    SftpPendingPointer send(SftpRequest request, const SftpWriter &fields);
    SftpPendingPointer sendPath(SftpRequest request, const QByteArray &path);
    SftpAnswer wait(const SftpPendingPointer &pending);

    /// Whether wait() would return at once.
    bool isAnswered(const SftpPendingPointer &pending) const;

    // One request each.
    SftpStatus ask(SftpRequest request, const SftpWriter &fields);
    SftpStatus askPath(SftpRequest request, const QByteArray &path);
    SftpStatus attributes(SftpRequest request, const QByteArray &pathOrHandle,
                          SftpAttributes *attributes);
    SftpStatus name(SftpRequest request, const QByteArray &path, QByteArray *name);

    /// Asks to forget a handle, without waiting for the answer.
    void closeHandle(const QByteArray &handle);

    /// Whether the server copies data within a file system by itself.
    bool copiesData() const;

    /// The user and the group that own the login directory, which are taken for those that the
    /// server works as. Set once, before the client is handed out.
    void setIdentity(quint32 user, quint32 group);
    quint32 user() const { return m_user; }
    quint32 group() const { return m_group; }

    /// Gives the connection up: each wait ends with ConnectionLost.
    void giveUp(const QString &reason);

    /// Why the connection was given up; empty while it stands.
    QString lossReason() const;

    /// How many requests were sent and how many waits had to wait, from any thread: the latter are
    /// the round trips that were paid for.
    struct Statistics {
        int requests = 0;
        int waits = 0;
    };
    Statistics statistics() const;

    // The thread that carries the bytes.
    /// Begins the conversation; false when the server does not speak the protocol.
    void sendGreeting();
    bool waitsForGreeting() const;
    QByteArray takeOutput();
    void feed(const char *data, int size);
    /// Whether the server has been silent for timeout() though it was asked something.
    bool isStalled() const;
    /// Asks for nothing, so that a dead connection is found out before somebody needs it.
    void ping();

private:
    void takePacket(const QByteArray &packet);
    void giveUpLocked(const QString &reason);

    struct Private;

    const int m_timeout;
    const std::function<void()> m_wake;
    quint32 m_user = 0;
    quint32 m_group = 0;
    const std::unique_ptr<Private> d;
};
