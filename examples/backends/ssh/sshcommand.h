#pragma once

#include <QObject>

#include <memory>

class SshCommandChannel;
class SshConnection;

/// A command that runs on a remote machine, on a terminal there: see SshConnection::run().
///
/// *Threads*: the thread that it lives in. Destroying it hangs the command up.
class SshCommand : public QObject
{
    Q_OBJECT

public:
    ~SshCommand() override;

    /// Sends bytes to the command's standard input; never blocks.
    void write(const QByteArray &bytes);

    /// Tells the command that the terminal has another size, in characters.
    void resize(int columns, int rows);

Q_SIGNALS:
    /// Emitted when bytes came: standard output and error as the terminal mixes them.
    void output(const QByteArray &bytes);

    /// Emitted once, after all output, with the exit status; -1 when the command was killed, did
    /// not start or the connection was lost.
    void finished(int exitStatus);

private:
    friend class SshConnection;
    friend class SshCommandChannel;

    SshCommand(std::shared_ptr<SshCommandChannel> channel, QObject *parent);

    const std::shared_ptr<SshCommandChannel> m_channel;
};
