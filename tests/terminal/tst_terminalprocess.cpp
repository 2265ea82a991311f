#include <support/testcase.h>
#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalprocess.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

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
        process->start(QStringLiteral("/bin/sh"),
                       {QStringLiteral("-c"), QString::fromLatin1(script)});
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
    void inputAndOutputAndTheEndPassThroughTheTerminal();
    void laterProcessIsAttachedAndEitherDetaches();
    void anyOrderOfDestructionIsSafe();
    void programsInAPseudoTerminalFindATerminal_data();
    void programsInAPseudoTerminalFindATerminal();
    void pseudoTerminalTellsOfNewSizes();
    void pseudoTerminalOfAClosedDeviceIsGone();
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
    QCOMPARE(announced([&] { process.start(QStringLiteral("/no/such"), {QStringLiteral("a b")}); }),
             QByteArray("<\\no\\such  \"a b\">"));
    QCOMPARE(announced([&] { process.start(QString()); }), QByteArray("<>"));
    QCOMPARE(process.error(), QProcess::FailedToStart);
    QCOMPARE(announced([&] { process.start(QStringLiteral("sh -c  \"exit 3\"")); }),
             QByteArray("<sh -c  \"exit 3\">exit3"));
    process.setArguments({QStringLiteral("-c"), QStringLiteral("echo x")});
    QCOMPARE(announced([&] { process.start(); }), QByteArray("<sh  -c \"echo x\">x\nexit0"));
}

void TestTerminalProcess::scriptsGoToTheCommandInterpreter()
{
    const QTemporaryDir directory;
    QFile script(directory.filePath(QStringLiteral("CMD.EXE")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s|' \"$@\"\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(directory.path()) + ":" + path);

    Session session;
    session.process->startScript(QStringLiteral("dir"));
    QTRY_COMPARE(session.log, QByteArray("<CMD.EXE /Q /C \" dir \">/Q|/C| dir |exit0"));
    session.log.clear();
    session.process->startScript(QStringLiteral("C:/Tools/run.bat"),
                                 {QStringLiteral("-x"), QStringLiteral("a b")});
    QTRY_COMPARE(session.log,
                 QByteArray("<CMD.EXE /Q /C \" C:\\Tools\\run.bat  -x \"a b\" \">"
                            "/Q|/C| C:\\Tools\\run.bat  -x a|b |exit0"));
    qputenv("PATH", path);
}

void TestTerminalProcess::inputAndOutputAndTheEndPassThroughTheTerminal()
{
    Session session;
    QCOMPARE(session.run("echo go; read x; echo $x >&2; exit 7", {{"go", "typed\n"}}),
             QByteArray("go\ntyped\nexit7"));
    QCOMPARE(session.run("kill -9 $$"), QByteArray("crash9"));
}

void TestTerminalProcess::laterProcessIsAttachedAndEitherDetaches()
{
    Session session;
    auto later = std::make_unique<TerminalProcess>(session.terminal.get());
    later->start(QStringLiteral("cat"));
    QCOMPARE(session.terminal->write("to the later"), qint64(12));
    later->closeWriteChannel();
    QVERIFY(later->waitForFinished());
    QCOMPARE(later->readAll(), QByteArray("to the later"));
    session.process.reset();
    QCOMPARE(session.terminal->write("to nobody"), qint64(0));
    QCOMPARE(later->terminal(), session.terminal.get());
}

void TestTerminalProcess::anyOrderOfDestructionIsSafe()
{
    Session session;
    session.process->start(QStringLiteral("cat"));
    announceWarning(
        QStringLiteral("QProcess: Destroyed while process (\"cat\") is still running."));
    session.log.clear();
    session.process.reset();
    QCOMPARE(session.log, QByteArray()); // the end of a killed process is no news
    QCOMPARE(session.terminal->write("to nobody"), qint64(0));

    Session other;
    other.process->start(QStringLiteral("sleep 0.1"));
    other.terminal.reset();
    QVERIFY(!other.process->terminal());
    QVERIFY(other.process->waitForFinished());
    other.process->start(QStringLiteral("true"));
    QVERIFY(other.process->waitForFinished());

    Session third;
    connect(third.terminal.get(), &Terminal::processStarted, this, [&] { third.process.reset(); });
    third.process->start(QStringLiteral("true"));
    QVERIFY(!third.process);
}

void TestTerminalProcess::programsInAPseudoTerminalFindATerminal_data()
{
    using Steps = QVector<QPair<QByteArray, QByteArray>>;
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<QByteArray>("result");
    const auto add = [](const char *script, const Steps &steps, const QByteArray &result) {
        QTest::newRow(script) << QByteArray(script) << steps << result;
    };
    add("test -t 0 -a -t 1 -a -t 2 && stty size", {}, "12 80\nexit0");
    add("tty | sed s/[0-9]*$//", {}, "/dev/pts/\nexit0");
    add("exec cat", {{"", "one\n"}, {"one\r\none", "\3"}}, "one\none\n^Ccrash2");
    add("read x; echo $x", {{"", "ab\x7f"}, {"\x1b[K", "c\n"}}, "ab\b\x1b[Kc\nac\nexit0");
    add("stty raw -echo; echo go; head -c 200000 | tr -d x | wc -c",
        {{"go", QByteArray(199999, 'x') + "y"}}, "go\n1\nexit0");
    add("seq 20000", {}, {}); // all of it before the end is told
}

void TestTerminalProcess::programsInAPseudoTerminalFindATerminal()
{
    QFETCH(const QByteArray, script);
    using Steps = QVector<QPair<QByteArray, QByteArray>>;
    QFETCH(const Steps, steps);
    QFETCH(QByteArray, result);
    if (result.isEmpty()) {
        for (int i = 1; i <= 20000; ++i)
            result += QByteArray::number(i) + '\n';
        result += "exit0";
    }
    Session session(true);
    if (!Terminal::isPseudoTerminalSupported()) {
        QVERIFY(!session.opened);
        return;
    }
    QVERIFY(session.opened);
    for (int round = 0; round < 3; ++round) // the next program finds it as the first one did
        QCOMPARE(session.run(script.constData(), steps), result);
}

void TestTerminalProcess::pseudoTerminalTellsOfNewSizes()
{
    Session session(true);
    if (!Terminal::isPseudoTerminalSupported())
        return;
    connect(session.terminal.get(), &QIODevice::readyRead, this, [&] {
        if (session.log.contains("ready"))
            session.terminal->setWindowSize(1 << 20, -5);
    });
    QCOMPARE(session.run("trap 'stty size; exit' WINCH; echo ready; while :; do sleep 0.05; done"),
             QByteArray("ready\n0 65535\nexit0"));
}

void TestTerminalProcess::pseudoTerminalOfAClosedDeviceIsGone()
{
    Session session(true);
    if (!Terminal::isPseudoTerminalSupported())
        return;
    connect(session.terminal.get(), &QIODevice::readyRead, this, [&] {
        if (session.log.contains("ready"))
            session.terminal->close();
    });
    QCOMPARE(session.run("echo ready; exec sleep 20"), QByteArray("ready\ncrash1"));
    session.terminal->setPseudoTerminalEnabled(false);
    QVERIFY(session.terminal->openMaster());
    QCOMPARE(session.run("test -t 0 || echo plain"), QByteArray("plain\nexit0"));
}

QTEST_GUILESS_MAIN(TestTerminalProcess)

#include "tst_terminalprocess.moc"
