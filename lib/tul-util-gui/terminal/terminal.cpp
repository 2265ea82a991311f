#include <tul-util-gui/terminal/pseudoterminal_p.h>
#include <tul-util-gui/terminal/terminal.h>

#include <QPointer>

namespace
{

constexpr int chunkSize = 4096;

} // namespace

Terminal::Terminal(QObject *parent)
    : QIODevice(parent)
    , m_buffer(chunkSize)
{
    // For queued connections to processFinished().
    qRegisterMetaType<QProcess::ExitStatus>("QProcess::ExitStatus");
}

Terminal::~Terminal() = default;

bool Terminal::openMaster()
{
    if (m_pseudoTerminalEnabled && !isOpen()) {
        auto pseudoTerminal = std::make_unique<PseudoTerminal>();
        if (!pseudoTerminal->open()) {
            setErrorString(pseudoTerminal->errorString());
            return false;
        }
        connect(pseudoTerminal.get(), &PseudoTerminal::arrived, this, &Terminal::pushBytes);
        m_pseudoTerminal = std::move(pseudoTerminal);
        winch();
    }
    return open(QIODevice::ReadWrite);
}

void Terminal::close()
{
    QIODevice::close();
    m_pseudoTerminal.reset();
}

void Terminal::setPseudoTerminalEnabled(bool enabled)
{
    m_pseudoTerminalEnabled = enabled;
}

bool Terminal::isPseudoTerminalSupported()
{
    return PseudoTerminal::isSupported();
}

void Terminal::setWindowSize(int columns, int rows)
{
    m_rows = rows;
    m_columns = columns;
    // By design: no comparison with the old size. A display that was attached meanwhile relies on
    // being told.
    const QPointer<Terminal> self(this);
    Q_EMIT windowSizeChanged(columns, rows);
    if (self)
        winch();
}

bool Terminal::isSequential() const
{
    return true;
}

bool Terminal::atEnd() const
{
    return m_buffer.isEmpty() && QIODevice::atEnd();
}

qint64 Terminal::bytesAvailable() const
{
    return m_buffer.size() + QIODevice::bytesAvailable();
}

void Terminal::pushBytes(const QByteArray &bytes)
{
    m_buffer.append(bytes);
    Q_EMIT readyRead();
}

qint64 Terminal::readData(char *data, qint64 maxSize)
{
    return m_buffer.readData(data, maxSize);
}

qint64 Terminal::writeData(const char *data, qint64 maxSize)
{
    if (!m_process)
        return 0;
    if (!m_pseudoTerminal)
        return m_process->write(data, maxSize);
    // The system would keep it for the next program.
    if (m_process->state() == QProcess::NotRunning)
        return 0;
    return m_pseudoTerminal->write(data, maxSize);
}

void Terminal::setProcess(QProcess *process)
{
    m_process = process;
}

void Terminal::emitProcessStarted(const QString &commandLine)
{
    Q_EMIT processStarted(commandLine);
}

void Terminal::emitProcessFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    Q_EMIT processFinished(exitCode, exitStatus);
}

void Terminal::winch()
{
    if (m_pseudoTerminal)
        m_pseudoTerminal->setSize(m_columns, m_rows);
}
