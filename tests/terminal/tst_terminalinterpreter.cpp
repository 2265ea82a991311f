#include <support/testcase.h>
#include <tul-util-gui/terminal/terminalinterpreter_p.h>

#include <QRandomGenerator>
#include <QTest>

namespace
{

// A line editor that does as told, in the simplest way. New lines are shown as "\n".
class TextSink : public TerminalSink
{
public:
    QByteArray text;
    int place = 0;

    void plainBytes(const char *data, int length) override
    {
        QByteArray bytes(data, length);
        bytes.replace("\r\n", "\n").replace('\r', '\n');
        text.insert(place, bytes);
        place += bytes.size();
    }

    void moveLeft() override { place = qMax(place - 1, 0); }

    void eraseToEndOfLine() override
    {
        const int end = text.indexOf('\n', place);
        text.remove(place, (end == -1 ? text.size() : end) - place);
    }
};

QByteArray textOf(const QVector<QByteArray> &reads, int pendingLimit = 2)
{
    TextSink sink;
    TerminalInterpreter interpreter;
    for (const QByteArray &read : reads) {
        interpreter.interpret(read, sink);
        if (interpreter.pendingSize() > pendingLimit)
            return "too much is kept waiting";
    }
    return sink.text;
}

} // namespace

class TestTerminalInterpreter : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void onlyFewControlBytesAreObeyed();
    void textOfAnotherSourceSeparatesReturnAndLineFeed();
    void splitsMakeNoDifference();
};

void TestTerminalInterpreter::onlyFewControlBytesAreObeyed()
{
    const QVector<QPair<QByteArray, QByteArray>> rows{
        {"ab\bc", "acb"},
        {"ab\x7f\x7f\x7f"
         "c",
         "cab"},
        {"x\ty", "xy"},
        {QByteArray("a\0b\x01\x1a\x1c\x1f~\x80\xc3\xa9\xff ", 13), "ab~ "},
        {"a\rb\r\nc\n\rd", "a\nb\nc\n\nd"},
        {"ab\b\x1b[Kc\n", "ac\n"},
        {"\x1b]0;t", "0;t"},
        {"\x1b[31m", "1m"},
        {"ab\b\b\x1b[2Kc", "Kcab"},
        {"\x1b\x1b[K\x1b[\x1bK", "[KK"},
        {"a\x1b\rb\x1b[\nc", "abc"},
        {"a\r\t\nb", "a\n\nb"},
        {"a\r\x1b[K\nb", "a\n\nb"},
    };
    for (const auto &row : rows)
        QCOMPARE(textOf({row.first}), row.second);
}

void TestTerminalInterpreter::textOfAnotherSourceSeparatesReturnAndLineFeed()
{
    for (const bool interrupts : {false, true}) {
        TextSink sink;
        TerminalInterpreter interpreter;
        interpreter.interpret("a\r", sink);
        interpreter.interpret({}, sink);
        if (interrupts)
            interpreter.interrupt();
        interpreter.interpret("\nb", sink);
        QCOMPARE(sink.text, interrupts ? QByteArray("a\n\nb") : QByteArray("a\nb"));
    }
}

// TUL_FUZZ_INPUTS sets the number of inputs, for longer runs.
void TestTerminalInterpreter::splitsMakeNoDifference()
{
    const QByteArray likely("\x1b\x1b\x1b[[[KKm2\r\r\n\n\n\b\x7f\tab \xe9");
    const int inputs = qEnvironmentVariableIntValue("TUL_FUZZ_INPUTS");
    QRandomGenerator random(20);
    for (int i = 0; i < qMax(inputs, 20000); ++i) {
        QByteArray bytes(random.bounded(1, 48), Qt::Uninitialized);
        for (char &byte : bytes)
            byte = char(random.bounded(8) ? likely.at(random.bounded(likely.size()))
                                          : random.bounded(256));
        QVector<QByteArray> reads;
        for (int at = 0; at < bytes.size(); at += reads.last().size())
            reads += bytes.mid(at, random.bounded(1, 7));
        const QByteArray whole = textOf({bytes});
        if (textOf(reads) != whole || whole.contains('\t'))
            QFAIL(qPrintable(
                QStringLiteral("input %1: %2").arg(i).arg(QString::fromLatin1(bytes.toHex()))));
    }
}

QTEST_GUILESS_MAIN(TestTerminalInterpreter)

#include "tst_terminalinterpreter.moc"
