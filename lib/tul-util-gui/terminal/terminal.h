#pragma once

#include <tul-util-gui/tul_util_gui_export.h>
#include <tul-util/tulringbuffer.h>

#include <QIODevice>
#include <QProcess>

#include <memory>

class PseudoTerminal;

/// The byte device between a program that runs in a terminal and the display that shows it.
///
/// What the program prints is pushed in with pushBytes() and read by the display; what the display
/// writes is forwarded to the process that is attached, a TerminalProcess. The device also carries
/// the window size and tells the display when programs start and finish, so that a display needs to
/// know no process:
///
///     auto *terminal = new Terminal(this);
///     terminal->openMaster();
///     auto *process = new TerminalProcess(terminal, this);
///     process->setProcessChannelMode(QProcess::MergedChannels);
///     connect(process, &QProcess::readyRead, terminal,
///             [=] { terminal->pushBytes(process->readAll()); });
///     view->setTerminal(terminal);
///     process->start(program, arguments);
///
/// A Unix host that wants programs to find a real terminal asks for a pseudo-terminal before
/// openMaster(). The output then arrives by itself, from the event loop, and pushBytes() is not
/// needed. A program that prints more than the system's buffer holds, some kilobytes, waits for
/// that loop: QProcess::waitForFinished(), which does without it, then only ends by its timeout.
///
/// *Units*: window sizes are in character cells.
///
/// *Ownership*: the process is not owned. It attaches itself when it is constructed and detaches
/// when it is destroyed; of two that are constructed on one device the later one is attached, and
/// the destruction of either detaches. Device and process may be destroyed in any order.
///
/// *Threads*: GUI thread only. pushBytes() is a slot, so that a producer in another thread reaches
/// it by a queued connection.
///
/// *Errors*: only openMaster() reports any. Without a process nothing can be written, and write()
/// answers 0. A process that does not run answers for itself, with 0 or -1; in a pseudo-terminal
/// the answer is 0, and what the program has not read when it ends is lost. A closed device
/// yields nothing.
class TUL_UTIL_GUI_EXPORT Terminal : public QIODevice
{
    Q_OBJECT

public:
    /// A closed device of 80 columns and 12 rows, with no process.
    explicit Terminal(QObject *parent = nullptr);
    ~Terminal() override;

    /// Opens the device for reading and writing; nothing can be read before. False when a
    /// pseudo-terminal was asked for and the system has none; errorString() says why.
    bool openMaster();

    /// Also gives up a pseudo-terminal. A program that still runs in it is told that the line hung
    /// up.
    void close() override;

    /// Whether openMaster() makes a pseudo-terminal, off by default. A TerminalProcess on this
    /// device then gets a controlling terminal as its standard streams: it line-edits and echoes,
    /// byte 3 interrupts it, and it learns of each new window size. Effective with the next
    /// openMaster() of a closed device.
    ///
    /// The line editing of the system wipes out a character by writing over it, which the display
    /// does not do: it is read here as an erasure of the rest of the line, to the same effect.
    /// Programs with a line editor of their own expect a display with more abilities than
    /// TerminalWidget has, unless the environment says TERM=dumb.
    bool isPseudoTerminalEnabled() const { return m_pseudoTerminalEnabled; }
    void setPseudoTerminalEnabled(bool enabled);

    /// Whether the platform has pseudo-terminals: Unix does.
    static bool isPseudoTerminalSupported();

    /// The window size. Setting it announces it always, also when it is the same as before, and
    /// then tells a program in a pseudo-terminal. Any numbers are taken.
    int columns() const { return m_columns; }
    int rows() const { return m_rows; }
    void setWindowSize(int columns, int rows);

    bool isSequential() const override;
    bool atEnd() const override;
    qint64 bytesAvailable() const override;

public Q_SLOTS:
    /// Adds `bytes` to what can be read and emits readyRead(), even if there are none. Takes time
    /// in proportion to the bytes, however many wait already.
    void pushBytes(const QByteArray &bytes);

Q_SIGNALS:
    /// Emitted when setWindowSize() is called, changed or not.
    void windowSizeChanged(int columns, int rows);

    /// Emitted when the attached process is about to start, with its command line; the start may
    /// fail yet.
    void processStarted(const QString &commandLine);

    /// Emitted when a process on this device has finished.
    void processFinished(int exitCode, QProcess::ExitStatus exitStatus);

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 maxSize) override;

private:
    friend class TerminalProcess;

    void setProcess(QProcess *process);
    void emitProcessStarted(const QString &commandLine);
    void emitProcessFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void winch();

    QProcess *m_process = nullptr;
    TULRingBuffer m_buffer;
    int m_columns = 80;
    int m_rows = 12;
    bool m_pseudoTerminalEnabled = false;
    std::unique_ptr<PseudoTerminal> m_pseudoTerminal; // null unless open with one
};
