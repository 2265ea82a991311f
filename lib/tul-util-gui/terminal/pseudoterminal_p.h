#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class QSocketNotifier;

/// The master side of a pseudo-terminal, and what a child process does to make the other side its
/// controlling terminal. Where the platform has none, open() fails and nothing else is called.
///
/// The other side is opened by the child alone. Once no process has it open any more, the system
/// reports a hang-up again and again: the master is then not watched until resume().
class PseudoTerminal : public QObject
{
    Q_OBJECT

public:
    PseudoTerminal();
    ~PseudoTerminal() override;

    static bool isSupported();

    bool open();
    const QString &errorString() const { return m_error; }

    /// Takes all of it, and sends it as the program's side makes room. -1 when that fails.
    qint64 write(const char *data, qint64 size);

    /// In cells; what the system cannot hold becomes the nearest that it can.
    void setSize(int columns, int rows);

    /// Watches the master again, for the next process.
    void resume();

    /// Forgets what has been written and not been read, which was for the process that has ended.
    void forgetInput();

    /// Emits what a process that has ended left behind; not more than once round the system's
    /// buffers, should another process still be printing.
    void drain();

    /// Makes the terminal that of the calling process, with no more than what is allowed between
    /// fork and exec. Ends the process when that fails.
    void attachChild() const;

Q_SIGNALS:
    /// Emitted when the program has printed something.
    void arrived(const QByteArray &bytes);

private:
    enum class Reading : char { More, Nothing, HungUp };
    enum class Echo : char { None, Backspace, Blank }; // how much of that of an erasure

    Reading readOnce();
    QByteArray withErasures(const char *data, int length);
    void readSome();
    void writeSome();

    int m_master = -1;
    QByteArray m_childName; // the path of the other side
    QByteArray m_unsent;
    int m_sent = 0; // of these already
    Echo m_echo = Echo::None; // what was read last; a blank that counts is not passed on yet
    QSocketNotifier *m_readNotifier = nullptr;
    QSocketNotifier *m_writeNotifier = nullptr;
    QString m_error;
};
