#pragma once

#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalprocess.h>

#include <QObject>

/// A terminal and the process that runs in it, put together as a host does it: what the process
/// prints on either channel is pushed into the terminal. One program at a time.
class TerminalSession : public QObject
{
    Q_OBJECT

public:
    explicit TerminalSession(QObject *parent = nullptr);

    /// Ends the program that still runs.
    ~TerminalSession() override;

    Terminal *terminal() { return &m_terminal; }
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }

    /// Whether the next program gets a pseudo-terminal.
    void setPseudoTerminal(bool enabled);

    /// Starts a command as a user types it, with double quotes around words with blanks.
    void start(const QString &command);

    /// Asks the program to end; makes it, when it was asked before.
    void stop();

    /// Tells the program that there is no more input.
    void endInput();

Q_SIGNALS:
    /// Emitted when a program runs or does not run any more.
    void runningChanged();

    /// Emitted when a command cannot be started, with a sentence for the user.
    void failed(const QString &message);

private:
    void reportError(QProcess::ProcessError error);

    Terminal m_terminal;
    TerminalProcess m_process{&m_terminal};
    bool m_wasAsked = false;
};
