#include <backends/ssh/sshcommand.h>
#include <backends/ssh/sshconnection.h>
#include <workbench/remoteterminal.h>

RemoteTerminal::RemoteTerminal(SshConnection *connection, const QString &commandLine,
                               QObject *parent)
    : Terminal(parent)
    , m_command(connection->run(commandLine, columns(), rows()))
{
    openMaster();
    connect(m_command.get(), &SshCommand::output, this, &Terminal::pushBytes);
    connect(this, &Terminal::windowSizeChanged, m_command.get(), &SshCommand::resize);
    connect(m_command.get(), &SshCommand::finished, this, [this](int exitStatus) {
        m_isRunning = false;
        const QString end = exitStatus < 0 ? tr("The command was cut short.")
                                           : tr("Exit status %1.").arg(exitStatus);
        pushBytes("\r\n" + end.toUtf8() + "\r\n");
    });
}

RemoteTerminal::~RemoteTerminal() = default;

qint64 RemoteTerminal::writeData(const char *data, qint64 maxSize)
{
    if (!m_isRunning)
        return 0;
    m_command->write(QByteArray(data, static_cast<int>(maxSize)));
    return maxSize;
}
