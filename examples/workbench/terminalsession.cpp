#include <workbench/terminalsession.h>

#include <tul-util-gui/terminal/commandline.h>

#include <QProcessEnvironment>

namespace
{

constexpr int killMilliseconds = 1000;
constexpr char endOfInput = 4; // as a terminal understands it

} // namespace

TerminalSession::TerminalSession(QObject *parent)
    : QObject(parent)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TERM"), QStringLiteral("dumb"));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    connect(&m_process, &QProcess::readyRead, &m_terminal,
            [this] { m_terminal.pushBytes(m_process.readAll()); });
    connect(&m_process, &QProcess::stateChanged, this, &TerminalSession::runningChanged);
    connect(&m_process, &QProcess::errorOccurred, this, &TerminalSession::reportError);
    m_terminal.openMaster();
}

TerminalSession::~TerminalSession()
{
    m_process.disconnect(this);
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished(killMilliseconds);
    }
}

void TerminalSession::setPseudoTerminal(bool enabled)
{
    if (isRunning() || enabled == m_terminal.isPseudoTerminalEnabled())
        return;
    m_terminal.close();
    m_terminal.setPseudoTerminalEnabled(enabled);
    if (m_terminal.openMaster())
        return;
    Q_EMIT failed(m_terminal.errorString());
    m_terminal.setPseudoTerminalEnabled(false);
    m_terminal.openMaster();
}

void TerminalSession::start(const QString &command)
{
    QStringList words = parseCombinedArgString(command);
    if (words.isEmpty()) {
        Q_EMIT failed(tr("There is no command to start."));
        return;
    }
    if (isRunning()) {
        Q_EMIT failed(tr("A program is running already."));
        return;
    }
    m_wasAsked = false;
    const QString program = words.takeFirst();
    m_process.start(program, words);
}

void TerminalSession::stop()
{
    if (m_wasAsked)
        m_process.kill();
    else
        m_process.terminate();
    m_wasAsked = true;
}

void TerminalSession::endInput()
{
    if (m_terminal.isPseudoTerminalEnabled())
        m_terminal.write(&endOfInput, 1);
    else
        m_process.closeWriteChannel();
}

void TerminalSession::reportError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        Q_EMIT failed(
            tr("\"%1\" cannot be started: %2.").arg(m_process.program(), m_process.errorString()));
}
