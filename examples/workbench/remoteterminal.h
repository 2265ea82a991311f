#pragma once

#include <tul-util-gui/terminal/terminal.h>

#include <memory>

class SshCommand;
class SshConnection;

/// The device of a display that shows a command which runs on a remote machine: what the command
/// prints is pushed in, what the display writes goes to the command.
class RemoteTerminal : public Terminal
{
    Q_OBJECT

public:
    RemoteTerminal(SshConnection *connection, const QString &commandLine,
                   QObject *parent = nullptr);
    ~RemoteTerminal() override;

protected:
    qint64 writeData(const char *data, qint64 maxSize) override;

private:
    const std::unique_ptr<SshCommand> m_command;
    bool m_isRunning = true;
};
