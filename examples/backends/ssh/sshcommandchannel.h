#pragma once

#include <QByteArray>
#include <QMutex>

#include <functional>
#include <libssh/libssh.h>

class SshCommand;

/// What a command and the thread that carries its bytes have in common.
class SshCommandChannel
{
public:
    SshCommandChannel(const QByteArray &commandLine, int columns, int rows,
                      std::function<void()> wake);

    // The command's side.
    void attach(SshCommand *command); ///< null: nobody listens any more
    void write(const QByteArray &bytes);
    void resize(int columns, int rows);

    // The side of the thread that carries the bytes.
    /// Carries on without waiting. False when the command is over and was told so.
    bool serve(ssh_session session);
    /// Ends the command's life on this side, with the session or before it.
    void end(int exitStatus);

private:
    enum class Step { Open, Terminal, Execute, Run };

    int start(ssh_session session);
    bool sendInput();
    bool receive();
    void deliver(const QByteArray &bytes);

    const QByteArray m_commandLine;
    const std::function<void()> m_wake;

    QMutex m_mutex; // guards the following, up to the channel
    SshCommand *m_command = nullptr;
    bool m_detached = false;
    QByteArray m_input;
    int m_columns;
    int m_rows;
    bool m_resized = false;
    int m_undelivered = 0; // bytes on their way to the command's thread

    ssh_channel m_channel = nullptr;
    Step m_step = Step::Open;
};
