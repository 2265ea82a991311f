#include <tul-util-gui/terminal/terminalinterpreter_p.h>

namespace
{

constexpr char backspace = 8;
constexpr char lineFeed = 10;
constexpr char carriageReturn = 13;
constexpr char escape = 27;
constexpr char deletion = 127;

constexpr bool isPlain(char byte)
{
    return (byte >= 32 && byte < deletion) || byte == lineFeed || byte == carriageReturn;
}

/// Obeys the control byte at `at`. Returns where to go on, or -1 when the bytes end within an
/// escape sequence.
int obey(const QByteArray &bytes, int at, TerminalSink &sink)
{
    const char byte = bytes.at(at);
    if (byte == backspace || byte == deletion)
        sink.moveLeft();
    if (byte != escape)
        return at + 1;
    if (at + 1 == bytes.size())
        return -1;
    if (bytes.at(at + 1) != '[')
        return at + 2;
    if (at + 2 == bytes.size())
        return -1;
    if (bytes.at(at + 2) == 'K')
        sink.eraseToEndOfLine();
    return at + 3;
}

} // namespace

int TerminalInterpreter::interpret(const QByteArray &read, TerminalSink &sink)
{
    if (read.isEmpty())
        return 0;
    const int pendingCount = m_pending.size();
    const QByteArray bytes = m_pending.isEmpty() ? read : m_pending + read;
    m_pending.clear();
    const int size = bytes.size();

    // A carriage return and a line feed are one new line. When the read was cut between them, the
    // new line is there already.
    int start = m_endsInReturn && bytes.at(0) == lineFeed ? 1 : 0;
    m_endsInReturn = false;
    int at = start;
    while (true) {
        while (at < size && isPlain(bytes.at(at)))
            ++at;
        if (at > start)
            sink.plainBytes(bytes.constData() + start, at - start);
        if (at == size)
            break;
        start = obey(bytes, at, sink);
        if (start == -1) {
            m_pending = bytes.mid(at);
            return read.size();
        }
        if (sink.isFull())
            return start - pendingCount;
        at = start;
    }
    m_endsInReturn = bytes.at(size - 1) == carriageReturn && start < size;
    return read.size();
}
