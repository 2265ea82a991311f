#pragma once

#include <QByteArray>
#include <QString>

#include <deque>

class TerminalInterpreter;

/// What has arrived to be shown and waits for it, in its order: pieces of the terminal's bytes, and
/// messages of the display's own.
class TerminalBacklog
{
public:
    /// Bytes unless they are empty, else a message.
    struct Piece {
        QByteArray bytes;
        QString message;
        qint64 newLines = 0; // that it begins, or fewer
    };

    bool isEmpty() const { return m_pieces.empty(); }

    void addBytes(const QByteArray &bytes);
    void addMessage(const QString &message);

    Piece takeFirst();
    /// The rest of a piece that was taken.
    void putBack(const QByteArray &bytes);

    /// Removes what stands before the last `lines` new lines, or a little less. The interpreter
    /// reads it, for an escape sequence may begin there and end in what is left.
    void skipOld(TerminalInterpreter &interpreter, int lines);
    void skipAll(TerminalInterpreter &interpreter);

private:
    void skipFirst(TerminalInterpreter &interpreter);

    std::deque<Piece> m_pieces;
    qint64 m_newLines = 0; // in these
};
