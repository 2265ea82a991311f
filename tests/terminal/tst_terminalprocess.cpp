#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalprocess.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>
#include <vector>

namespace
{

// A terminal and a process as a host puts them together; the test reads what arrives.
struct Session {
    explicit Session(bool pseudoTerminal = false)
    {
        terminal->setPseudoTerminalEnabled(pseudoTerminal);
        opened = terminal->openMaster();
        QObject::connect(terminal.get(), &Terminal::processStarted,
                         [this](const QString &line) { log += "<" + line.toUtf8() + ">"; });
        QObject::connect(terminal.get(), &Terminal::processFinished,
                         [this](int code, QProcess::ExitStatus status) {
                             log += status == QProcess::CrashExit ? "crash" : "exit";
                             log += QByteArray::number(code);
                         });
        QObject::connect(terminal.get(), &QIODevice::readyRead,
                         [this] { log += terminal->readAll(); });
        process->setProcessChannelMode(QProcess::MergedChannels);
        QObject::connect(process.get(), &QProcess::readyRead, terminal.get(),
                         [this] { terminal->pushBytes(process->readAll()); });
    }

    // Runs `script` in a shell; `steps` are bytes to wait for and what to write then.
    QByteArray run(const char *script, const QVector<QPair<QByteArray, QByteArray>> &steps = {})
    {
        log.clear();
        process->start("/bin/sh"_s, {"-c"_s, QString::fromLatin1(script)});
        log.clear();
        for (const auto &step : steps) {
            if (!QTest::qWaitFor([&] { return log.contains(step.first); }))
                return "missing " + step.first + " in " + log;
            terminal->write(step.second);
        }
        if (!QTest::qWaitFor([&] { return process->state() == QProcess::NotRunning; }, 20000))
            return "running: " + log;
        return log.replace("\r\n", "\n");
    }

    std::unique_ptr<Terminal> terminal = std::make_unique<Terminal>();
    std::unique_ptr<TerminalProcess> process = std::make_unique<TerminalProcess>(terminal.get());
    QByteArray log;
    bool opened = false;
};

} // namespace

class TestTerminalProcess : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void everyStartIsAnnouncedEvenIfItFails();
    void scriptsGoToTheCommandInterpreter();
    void laterProcessIsAttachedAndEitherDetaches();
    void anyOrderOfDestructionIsSafe();
    void programsInAPseudoTerminalFindATerminal();
};

void TestTerminalProcess::everyStartIsAnnouncedEvenIfItFails()
{
    Session session;
    TerminalProcess &process = *session.process;
    const auto announced = [&](const std::function<void()> &start) {
        session.log.clear();
        start();
        process.waitForFinished();
        return session.log;
    };
    QCOMPARE(announced([&] { process.start("/no/such"_s, {"a b"_s}); }),
             QByteArray("<\\no\\such  \"a b\">"));
    QCOMPARE(announced([&] { process.start(QString()); }), QByteArray("<>"));
    QCOMPARE(process.error(), QProcess::FailedToStart);
    QCOMPARE(announced([&] { process.start("sh -c  \"exit 3\""_s); }),
             QByteArray("<sh -c  \"exit 3\">exit3"));
    process.setArguments({"-c"_s, "echo x"_s});
    QCOMPARE(announced([&] { process.start(); }), QByteArray("<sh  -c \"echo x\">x\nexit0"));
    announceWarning("QProcess::start: Process is already running"_s);
    QCOMPARE(announced([&] {
                 // Once: while it runs there is nothing to open.
                 QVERIFY(process.open() && !process.open());
             }),
             QByteArray("<sh  -c \"echo x\">x\nexit0"));
    QCOMPARE(session.run("echo go; read x; echo $x >&2; kill -9 $$", {{"go", "typed\n"}}),
             QByteArray("go\ntyped\ncrash9"));
}

void TestTerminalProcess::scriptsGoToTheCommandInterpreter()
{
    const QTemporaryDir directory;
    QFile script(directory.filePath("CMD.EXE"_s));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s|' \"$@\"\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(directory.path()) + ":" + path);

    Session session;
    session.process->startScript("C:/Tools/run.bat"_s, {"-x"_s, "a b"_s});
    QTRY_COMPARE(session.log,
                 QByteArray("<CMD.EXE /Q /C \" C:\\Tools\\run.bat  -x \"a b\" \">"
                            "/Q|/C| C:\\Tools\\run.bat  -x a|b |exit0"));
    qputenv("PATH", path);
}

void TestTerminalProcess::laterProcessIsAttachedAndEitherDetaches()
{
    Session session;
    TerminalProcess later(session.terminal.get());
    later.start("cat"_s);
    QCOMPARE(session.terminal->write("to the later"), qint64(12));
    later.closeWriteChannel();
    QVERIFY(later.waitForFinished());
    QCOMPARE(later.readAll(), QByteArray("to the later"));
    session.process.reset();
    QCOMPARE(session.terminal->write("to nobody"), qint64(0));
    QCOMPARE(later.terminal(), session.terminal.get());
}

void TestTerminalProcess::anyOrderOfDestructionIsSafe()
{
    for (const bool hasPseudoTerminal : {false, true}) {
        Session session(hasPseudoTerminal);
        session.process->start("cat"_s);
        announceWarning("QProcess: Destroyed while process (\"cat\") is still running."_s);
        session.log.clear();
        session.process.reset();
        QCOMPARE(session.log, QByteArray()); // the end of a killed process is no news
        QCOMPARE(session.terminal->write("to nobody"), qint64(0));

        Session other(hasPseudoTerminal);
        other.process->start("sleep 0.1"_s);
        other.terminal.reset();
        QVERIFY(!other.process->terminal());
        QVERIFY(other.process->waitForFinished());

        Session third(hasPseudoTerminal);
        connect(third.terminal.get(), &Terminal::processStarted, this,
                [&] { third.process.reset(); });
        third.process->start("true"_s);
        QVERIFY(!third.process);
    }
}

void TestTerminalProcess::programsInAPseudoTerminalFindATerminal()
{
    const auto openFiles = [] { return QDir("/proc/self/fd"_s).count(); };
    Session(true).run("true"); // what the toolkit opens once
    const uint before = openFiles();
    Session session(true);
    QCOMPARE(session.opened, Terminal::isPseudoTerminalSupported());
    if (!session.opened)
        return;
    struct Case {
        const char *script;
        QVector<QPair<QByteArray, QByteArray>> steps;
        QByteArray result;
    };
    QByteArray numbers; // all of them come before the end is told
    for (int i = 1; i <= 20000; ++i)
        numbers += QByteArray::number(i) + '\n';
    const std::vector<Case> rows{
        {"test -t 0 -a -t 1 -a -t 2 && stty size", {}, "12 80\nexit0"},
        {"tty | sed s/[0-9]*$//", {}, "/dev/pts/\nexit0"},
        {"exec cat", {{"", "one\n"}, {"one\r\none", "\3"}}, "one\none\n^Ccrash2"},
        {"stty noflsh; echo go; exec sleep 20",
         {{"go", "unread\n"}, {"unread\r\n", "\3"}},
         "go\nunread\n^Ccrash2"},
        {"ls -l /proc/self/fd | grep -c ptmx", {}, "0\nexit1"},
        {"read x; echo $x", {{"", "ab\x7f"}, {"\x1b[K", "c\n"}}, "ab\b\x1b[Kc\nac\nexit0"},
        {"stty raw -echo; echo go; head -c 200000 | tr -d x | wc -c",
         {{"go", QByteArray(199999, 'x') + "y"}},
         "go\n1\nexit0"},
        {"stty raw -echo; printf '\\b'; sleep .1; printf ' '; sleep .1; printf '\\b \\b \\b x'",
         {},
         "\b\x1b[K\x1b[K\x1b[K xexit0"}, // however the reads are cut
        {"printf 'ab\\b '", {}, "ab\b exit0"},
        {"seq 20000", {}, numbers + "exit0"},
    };
    for (const Case &row : rows) {
        for (int round = 0; round < 2; ++round) // the next program finds it as the first one did
            QCOMPARE(session.run(row.script, row.steps), row.result);
        QCOMPARE(session.terminal->write("late\n"), qint64(0)); // which is not for the next one
    }
    connect(session.terminal.get(), &QIODevice::readyRead, this, [&] {
        if (session.log.contains("ready"))
            session.terminal->setWindowSize(1 << 20, -5);
        else if (session.log.contains("last words"))
            session.terminal->close();
    });
    QCOMPARE(session.run("trap 'stty size; exit' WINCH; echo ready; while :; do sleep 0.05; done"),
             QByteArray("ready\n0 65535\nexit0"));
    QCOMPARE(session.run("echo last words; exec sleep 20"), QByteArray("last words\ncrash1"));
    session.process.reset();
    QCOMPARE(openFiles(), before);
}

QTEST_GUILESS_MAIN(TestTerminalProcess)

#include "tst_terminalprocess.moc"
