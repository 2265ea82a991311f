#include <tul-util-gui/terminal/terminalbacklog_p.h>
#include <tul-util-gui/terminal/terminalinterpreter_p.h>

#include <algorithm>
#include <utility>

namespace
{

constexpr int pieceSize = 4096;
constexpr char escape = 27;

/// Takes bytes that are not to be shown any more.
class NoSink : public TerminalSink
{
public:
    void plainBytes(const char * /*bytes*/, int /*size*/) override { }
    void moveLeft() override { }
    void eraseToEndOfLine() override { }
};

/// Whether the byte at `at` may be the end of an escape sequence, or of a new line that the bytes
/// before these have begun.
bool mayBeSwallowed(const QByteArray &bytes, int at)
{
    if (at == 0 || bytes.at(at - 1) == escape)
        return true;
    return bytes.at(at - 1) == '[' && (at == 1 || bytes.at(at - 2) == escape);
}

/// How many new lines some bytes begin at least, whatever comes before and after them. What is
/// skipped for so many that follow would have been removed by them.
qint64 newLinesIn(const QByteArray &bytes)
{
    qint64 lineFeeds = 0;
    qint64 returns = 0;
    for (int at = 0; at < bytes.size(); ++at) {
        const char byte = bytes.at(at);
        if ((byte != '\n' && byte != '\r') || mayBeSwallowed(bytes, at))
            continue;
        if (byte == '\n')
            ++lineFeeds;
        else if (at + 1 < bytes.size()) // or its line feed is the first of the next bytes
            ++returns;
    }
    // Each return may have its line feed behind it.
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
