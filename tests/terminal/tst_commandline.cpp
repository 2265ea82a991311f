#include <support/testcase.h>
#include <tul-util-gui/terminal/commandline.h>

#include <QTest>

class TestCommandLine : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void programAndArgumentsAreQuotedForWindows();
    void textIsSplitAtBlanksOutsideOfQuotes();
};

// The program, the arguments and the command line, separated by bars.
void TestCommandLine::programAndArgumentsAreQuotedForWindows()
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
void TestCommandLine::textIsSplitAtBlanksOutsideOfQuotes()
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

QTEST_GUILESS_MAIN(TestCommandLine)

#include "tst_commandline.moc"
