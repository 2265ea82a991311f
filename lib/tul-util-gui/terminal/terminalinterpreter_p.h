#pragma once

#include <QByteArray>

/// What the interpreter finds, in the order of the bytes. Each call must leave the interpreter
/// alone.
class TerminalSink
{
public:
    TerminalSink() = default;
    virtual ~TerminalSink() = default;
    TerminalSink(const TerminalSink &) = delete;
    TerminalSink &operator=(const TerminalSink &) = delete;

    /// A run of carriage returns, line feeds and bytes from 32 to 126; never empty.
    virtual void plainBytes(const char *data, int length) = 0;
    /// The place where text goes moves one character to the left.
    virtual void moveLeft() = 0;
    virtual void eraseToEndOfLine() = 0;
    /// Whether to take no more for now; asked after each control byte.
    virtual bool isFull() const { return false; }
};

/// Finds the runs of plain bytes and the few control bytes that a terminal display obeys, and drops
/// all others. Where one read ends and the next begins makes no difference to the text.
///
/// *By design*: an escape sequence is "escape", "[" and one byte, whatever a larger terminal would
/// make of the bytes that follow; only "K" as that byte has an effect. Tabs and the bytes from 128
/// to 255 are dropped.
class TerminalInterpreter
{
public:
    /// Returns how many of the bytes it took: all of them, unless the sink was full before. The
    /// others are to be given again.
    int interpret(const QByteArray &bytes, TerminalSink &sink);

    /// How many bytes of a cut escape sequence wait for the next read: at most two.
    int pendingSize() const { return m_pending.size(); }

    /// To be called when text of another source comes in between: a line feed after it is one of
    /// its own, even if the last byte before was a carriage return.
    void interrupt() { m_endsInReturn = false; }

private:
    QByteArray m_pending;
    bool m_endsInReturn = false; // the last read, in its last plain byte
};
