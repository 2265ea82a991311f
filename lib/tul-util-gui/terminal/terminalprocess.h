#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QPointer>
#include <QProcess>

class Terminal;

/// A process that is bound to one Terminal: what is written to the terminal reaches the process,
/// and each start and finish is announced through the terminal's signals. With a terminal that has
/// a pseudo-terminal, the process runs in it.
///
/// Its output is not moved into the terminal, because only the host knows how it wants the channels
/// merged; see Terminal for the usual connection.
///
/// *Ownership*: the terminal is not owned. It should outlive the process; should it go first, the
/// process runs on with nobody to announce to.
///
/// *Threads*: GUI thread only.
///
/// *Errors*: a start that fails has been announced all the same, and is reported by the process's
/// errorOccurred() alone.
///
/// *By design*: each start is announced before it is tried. QProcess::start() is not virtual, so
/// that a start through a pointer to QProcess is not announced.
class TUL_UTIL_GUI_EXPORT TerminalProcess : public QProcess
{
    Q_OBJECT

public:
    /// Attaches itself to `terminal`, in place of a process that is attached.
    explicit TerminalProcess(Terminal *terminal, QObject *parent = nullptr);

    /// Detaches whatever process is attached to the terminal. The end of a process that is killed
    /// by this is not announced.
    ~TerminalProcess() override;

    /// Null once the terminal has been destroyed.
    Terminal *terminal() const { return m_terminal; }

    /// Announces qt_create_commandline(program, arguments) and starts the program; without
    /// arguments here, that of setProgram() and setArguments().
    void start(const QString &program, const QStringList &arguments,
               QIODevice::OpenMode mode = QIODevice::ReadWrite);
    void start(QIODevice::OpenMode mode = QIODevice::ReadWrite);

    /// Does the same as the start without arguments, and tells whether the device is open. False,
    /// with a warning and nothing announced, when the process runs already.
    bool open(OpenMode mode = ReadWrite) override;

    /// Announces the command as it stands and starts it, split at blanks outside of double quotes.
    void start(const QString &command, QIODevice::OpenMode mode = QIODevice::ReadWrite);

    /// Announces and starts `CMD.EXE /Q /C " ... "`, the Windows command interpreter, with the
    /// command line of a program or with a script in place of the dots.
    ///
    /// *By design*: on Windows the whole text is given twice, as the command to start and as its
    /// native arguments, so that the interpreter sees the command line as it was written. Native
    /// arguments that the host has set are replaced, and there are none afterwards.
    void startScript(const QString &program, const QStringList &arguments,
                     QIODevice::OpenMode mode = QIODevice::ReadWrite);
    void startScript(const QString &script, QIODevice::OpenMode mode = QIODevice::ReadWrite);

protected:
    void setupChildProcess() override;

private Q_SLOTS:
    void processFinished(int exitCode, QProcess::ExitStatus exitStatus);

private:
    void forgetInput();
    bool announce(const QString &commandLine);
    void startCommand(const QString &command, QIODevice::OpenMode mode);
    void processRuns();

    QPointer<Terminal> m_terminal;
};
