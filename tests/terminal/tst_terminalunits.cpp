#include <support/testcase.h>
#include <tul-util-gui/terminal/commandline.h>
#include <tul-util-gui/terminal/fontchoice_p.h>
#include <tul-util-gui/terminal/terminalinterpreter_p.h>

#include <QMap>
#include <QRandomGenerator>
#include <QTest>

namespace
{

// Writes down what it is told: "<" for a step to the left, "|" for an erasure, "\n" for a new line.
class Record : public TerminalSink
{
public:
    QByteArray log;

    void plainBytes(const char *data, int length) override
    {
        log += QByteArray(data, length).replace("\r\n", "\n").replace('\r', '\n');
    }
    void moveLeft() override { log += '<'; }
    void eraseToEndOfLine() override { log += '|'; }
};

QByteArray recordOf(const QVector<QByteArray> &reads)
{
    Record record;
    TerminalInterpreter interpreter;
    for (const QByteArray &read : reads) {
        interpreter.interpret(read, record);
        if (interpreter.pendingSize() > 2)
            return "too much is kept waiting";
    }
    return record.log;
}

// Families as "Name:flags;...": F fixed, S smoothly scalable, s scalable, A smooth at the size,
// b bold, i italic, - unusable.
FontFamilies families(const QString &text)
{
    FontFamilies result;
    QMap<QString, QString> flags;
    for (const QString &family : text.split(QLatin1Char(';'))) {
        result.names += family.section(QLatin1Char(':'), 0, 0);
        flags[result.names.last()] = family.section(QLatin1Char(':'), 1);
    }
    result.isUsable = [=](const QString &name) { return !flags[name].contains(QLatin1Char('-')); };
    result.traits = [=](const QString &name) {
        const auto has = [&](char flag) { return flags[name].contains(QLatin1Char(flag)); };
        return FontFamilyTraits{has('F'), has('S'), has('s'), has('A'), has('b'), has('i')};
    };
    return result;
}

} // namespace

class TestTerminalUnits : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void programAndArgumentsAreQuotedForWindows();
    void textIsSplitAtBlanksOutsideOfQuotes();
    void interpreterObeysFewControlBytes();
    void splitsMakeNoDifference();
    void lastPreferredOrBestScoredFamilyIsChosen();
};

// The program, the arguments and the command line, separated by bars.
void TestTerminalUnits::programAndArgumentsAreQuotedForWindows()
{
    for (const char *const row : {
             R"(|)",
             R"(make|make )",
             R"(C:/Program Files/x.exe|a|"C:\Program Files\x.exe"  a)",
             R"("C:/a b/x.exe"|"C:\a b\x.exe" )",
             R"(a b"|a b" )",
             R"(|a|b| a b)",
             R"(p|say "hi"|a\"b|x\\|dir x\|p  "say \"hi\"" a\\\"b x\\ "dir x"\)",
             "p||a\tb|c/d|p  \"\" \"a\tb\" c/d",
             R"(|\"| | \\\" " ")",
             R"(|\ | "\ ")",
         }) {
        QStringList parts = QString::fromLatin1(row).split(QLatin1Char('|'));
        const QString expected = parts.takeLast();
        const QString program = parts.takeFirst();
        QCOMPARE(qt_create_commandline(program, parts), expected);
    }
}

// The text, and the words that come out of it, separated by bars.
void TestTerminalUnits::textIsSplitAtBlanksOutsideOfQuotes()
{
    for (const char *const row : {
             R"()",
             "  \t\n",
             R"(a "b c" """d|a|b c|"d)",
             R"(a""b|ab)",
             R"("" a ""|a)",
             R"("a b|a b)",
             R"(a"""|a")",
             R"(a b"|a|b)",
             R"("a b" c"d e"f|a b|cd ef)",
             R"(a """"b c""" d|a|"b c" d)",
             "a\tb\u00a0c\nd|a|b|c|d",
         }) {
        QStringList parts = QString::fromUtf8(row).split(QLatin1Char('|'));
        const QString text = parts.takeFirst();
        QCOMPARE(parseCombinedArgString(text), parts);
    }
}

void TestTerminalUnits::interpreterObeysFewControlBytes()
{
    const QVector<QPair<QByteArray, QByteArray>> rows{
        {"ab\b\x7f\x1b[Kc\n", "ab<<|c\n"},
        {QByteArray("a\0b\x01\x1a\x1c\x1f~\x80\xc3\xa9\xff ", 13), "ab~ "},
        {"a\rb\r\nc\n\rd", "a\nb\nc\n\nd"},
        {"\x1b]0;t", "0;t"},
        {"\x1b[31m", "1m"},
        {"\x1b[2Kc", "Kc"},
        {"\x1b\x1b[K\x1b[\x1bK", "[KK"},
        {"a\x1b\rb\x1b[\nc", "abc"},
        {"a\r\t\nb", "a\n\nb"},
        {"a\r\x1b[K\nb", "a\n|\nb"},
    };
    for (const auto &row : rows)
        QCOMPARE(recordOf({row.first}), row.second);
}

// TUL_FUZZ_INPUTS sets the number of inputs, for longer runs.
void TestTerminalUnits::splitsMakeNoDifference()
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
        const QByteArray whole = recordOf({bytes});
        if (recordOf(reads) != whole || whole.contains('\t'))
            QFAIL(qPrintable(
                QStringLiteral("input %1: %2").arg(i).arg(QString::fromLatin1(bytes.toHex()))));
    }
}

void TestTerminalUnits::lastPreferredOrBestScoredFamilyIsChosen()
{
    const QVector<QPair<const char *, const char *>> rows{
        {"Terminus:;Courier New:;Monospace:", "Terminus"},
        {"Courier New:;Other:FSAbi", "Courier New"},
        {"Courier New:;Terminus:-;FreeMono:;Monospace:", "FreeMono"},
        {"LucidaTypewriter:;Lucidatypewriter:", "LucidaTypewriter"},
        {"courier new:;A:F", "A"}, // not the same name
        {"A:SAbi;B:F", "B"}, // 432, 512
        {"A:SsA;B:sAb;C:Sbi;D:A", "A"}, // 384, 352, 176, 256
        {"A:Fb;B:Fi;C:Fs", "C"}, // 544, 528, 576
        {"A:Fb;B:Fb", "A"}, // the earlier of equals
        {"A:FSAbi-;B:i;C:-", "B"},
        {"Monospace:-;A:", ""}, // nothing speaks for it
        {"A:FSAbi-", ""},
    };
    for (const auto &row : rows)
        QCOMPARE(tul::chooseFontFamily(families(QString::fromLatin1(row.first))),
                 QString::fromLatin1(row.second));
}

QTEST_GUILESS_MAIN(TestTerminalUnits)

#include "tst_terminalunits.moc"
