#include <tul-util-gui/terminal/commandline.h>
#include <tul-util-gui/terminal/nativearguments_p.h>
#include <tul-util-gui/terminal/pseudoterminal_p.h>
#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalprocess.h>

TerminalProcess::TerminalProcess(Terminal *terminal, QObject *parent)
    : QProcess(parent)
    , m_terminal(terminal)
{
    if (m_terminal)
        m_terminal->setProcess(this);
    connect(this, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &TerminalProcess::processFinished);
    connect(this, &QProcess::started, this, &TerminalProcess::processRuns);
}

TerminalProcess::~TerminalProcess()
{
    // The base destructor kills a process that runs and emits finished() of what is no longer one
    // of these.
    disconnect(this, nullptr, this, nullptr);
    forgetInput();
    // By design: whichever process is attached, so that nothing is ever written to one that goes.
    if (m_terminal)
        m_terminal->setProcess(nullptr);
}

void TerminalProcess::start(const QString &program, const QStringList &arguments,
                            QIODevice::OpenMode mode)
{
    if (announce(qt_create_commandline(program, arguments)))
        QProcess::start(program, arguments, mode);
}

void TerminalProcess::start(QIODevice::OpenMode mode)
{
    start(program(), arguments(), mode);
}

bool TerminalProcess::open(OpenMode mode)
{
    if (state() != NotRunning)
        return QProcess::open(mode);
    const QPointer<TerminalProcess> self(this);
    start(mode);
    return self && isOpen();
}

void TerminalProcess::start(const QString &command, QIODevice::OpenMode mode)
{
    if (announce(command))
        startCommand(command, mode);
}

void TerminalProcess::startScript(const QString &program, const QStringList &arguments,
                                  QIODevice::OpenMode mode)
{
    startScript(qt_create_commandline(program, arguments), mode);
}

void TerminalProcess::startScript(const QString &script, QIODevice::OpenMode mode)
{
    const QString command = QLatin1String("CMD.EXE /Q /C \" ") + script + QLatin1String(" \"");
    if (!announce(command))
        return;
    const QPointer<TerminalProcess> self(this);
    tul::setNativeArguments(this, command);
    startCommand(command, mode);
    // By design: not those that the host had set. They were replaced, and the next start, of some
    // other program, must not get those of this one.
    if (self)
        tul::setNativeArguments(this, {});
}

void TerminalProcess::setupChildProcess()
{
    if (m_terminal && m_terminal->m_pseudoTerminal)
        m_terminal->m_pseudoTerminal->attachChild();
}

void TerminalProcess::processFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    // What the process printed comes before the news of its end.
    if (m_terminal && m_terminal->m_pseudoTerminal) {
        const QPointer<TerminalProcess> self(this);
        m_terminal->m_pseudoTerminal->drain();
        if (!self)
            return;
    }
    forgetInput();
    if (m_terminal)
        m_terminal->emitProcessFinished(exitCode, exitStatus);
}

/// What has been written for this process and not been read is not for the next one.
void TerminalProcess::forgetInput()
{
    if (m_terminal && m_terminal->m_pseudoTerminal && m_terminal->m_process == this)
        m_terminal->m_pseudoTerminal->forgetInput();
}

/// False when this process was deleted by a slot.
bool TerminalProcess::announce(const QString &commandLine)
{
    const QPointer<TerminalProcess> self(this);
    if (m_terminal)
        m_terminal->emitProcessStarted(commandLine);
    return self;
}

/// Split here as the toolkit splits it, whose own function for that is deprecated.
void TerminalProcess::startCommand(const QString &command, QIODevice::OpenMode mode)
{
    QStringList words = splitCommand(command);
    const QString program = words.isEmpty() ? QString() : words.takeFirst();
    QProcess::start(program, words, mode);
}

void TerminalProcess::processRuns()
{
    if (m_terminal && m_terminal->m_pseudoTerminal)
        m_terminal->m_pseudoTerminal->resume();
}
