#include <tul-util-gui/terminal/terminalbacklog_p.h>
#include <tul-util-gui/terminal/terminalinterpreter_p.h>

#include <algorithm>
#include <utility>

namespace
{

constexpr int pieceSize = 4096;

/// Takes bytes that are not to be shown any more.
class NoSink : public TerminalSink
{
public:
    void plainBytes(const char *, int) override { }
    void moveLeft() override { }
    void eraseToEndOfLine() override { }
};

/// How many new lines some bytes begin, whatever comes before and after them.
qint64 newLinesIn(const QByteArray &bytes)
{
    const auto lineFeeds = std::count(bytes.begin(), bytes.end(), '\n');
    // Each may have its line feed behind it, the last one in the next piece.
    const auto returns = std::count(bytes.begin(), bytes.end() - 1, '\r');
    return std::max(lineFeeds, returns);
}

} // namespace

void TerminalBacklog::addBytes(const QByteArray &bytes)
{
    for (qint64 at = 0; at < bytes.size(); at += pieceSize) {
        const QByteArray piece = bytes.mid(static_cast<int>(at), pieceSize);
        m_pieces.push_back({piece, {}, newLinesIn(piece)});
        m_newLines += m_pieces.back().newLines;
    }
}

void TerminalBacklog::addMessage(const QString &message)
{
    m_pieces.push_back({{}, message, message.count(QLatin1Char('\n'))});
    m_newLines += m_pieces.back().newLines;
}

TerminalBacklog::Piece TerminalBacklog::takeFirst()
{
    Piece first = std::move(m_pieces.front());
    m_pieces.pop_front();
    m_newLines -= first.newLines;
    return first;
}

void TerminalBacklog::putBack(const QByteArray &bytes)
{
    m_pieces.push_front({bytes, {}, newLinesIn(bytes)});
    m_newLines += m_pieces.front().newLines;
}

void TerminalBacklog::skipOld(TerminalInterpreter &interpreter, int lines)
{
    while (!m_pieces.empty() && m_newLines - m_pieces.front().newLines >= lines)
        skipFirst(interpreter);
}

void TerminalBacklog::skipAll(TerminalInterpreter &interpreter)
{
    while (!m_pieces.empty())
        skipFirst(interpreter);
}

void TerminalBacklog::skipFirst(TerminalInterpreter &interpreter)
{
    const Piece first = takeFirst();
    NoSink nothing;
    if (first.bytes.isEmpty())
        interpreter.interrupt();
    else
        interpreter.interpret(first.bytes, nothing);
}
