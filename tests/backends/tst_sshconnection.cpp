#include <backends/ssh/sshcommand.h>
#include <support/sshserver.h>
#include <support/testcase.h>

#include <QFile>
#include <QSignalSpy>
#include <QTest>

namespace
{

constexpr int longEnough = 20000;

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool overwrite(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestSshConnection : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void strangeKeysAreAskedAbout_data();
    void strangeKeysAreAskedAbout();
    void aPortOfTheNetworkIsReached();
    void eachAttemptIsToldOnce_data();
    void eachAttemptIsToldOnce();
    void aConnectionMayBeClosedAtAnyTime_data();
    void aConnectionMayBeClosedAtAnyTime();
    void commandsRunOnATerminal();
};

void TestSshConnection::strangeKeysAreAskedAbout_data()
{
    QTest::addColumn<QByteArray>("known"); // "%": the line of the right key
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("kind"); // -1: no question
    QTest::addColumn<bool>("opens");
    QTest::addColumn<bool>("remembered");

    const QByteArray other
        = "testhost ssh-ed25519 "
          "AAAAC3NzaC1lZDI1NTE5AAAAIJbFsFmYRjQtGTH9ZL4UZkWSqbDEkzIYmhF9MhEAPW3s\n";
    const int unknown = int(SshPrompt::KeyKind::Unknown);
    const int changed = int(SshPrompt::KeyKind::Changed);
    const int refuse = int(SshPrompt::Answer::Refuse);
    const int once = int(SshPrompt::Answer::AcceptOnce);
    const int always = int(SshPrompt::Answer::AcceptAndRemember);
    const QByteArray none;
    QTest::newRow("known") << QByteArray("%") << refuse << -1 << true << true;
    QTest::newRow("unknown, refused") << none << refuse << unknown << false << false;
    QTest::newRow("unknown, once") << none << once << unknown << true << false;
    QTest::newRow("unknown, for good") << none << always << unknown << true << true;
    QTest::newRow("changed, refused") << other << refuse << changed << false << false;
    QTest::newRow("changed, once") << other << once << changed << true << false;
    QTest::newRow("changed, for good") << other << always << changed << true << false;
}

void TestSshConnection::strangeKeysAreAskedAbout()
{
    QFETCH(QByteArray, known);
    QFETCH(int, answer);
    QFETCH(int, kind);
    QFETCH(bool, opens);
    QFETCH(bool, remembered);
    SshServer server;
    QCOMPARE(server.fault(), QString());
    const QString file = server.clientDirectory() + QStringLiteral("/known_hosts");
    QVERIFY(overwrite(file, known.replace("%", server.hostKeyLine())));
    server.prompt.keyAnswer = static_cast<SshPrompt::Answer>(answer);
    SshConnection connection(server.target(), server.settings(), &server.prompt);
    QSignalSpy opened(&connection, &SshConnection::opened);
    QSignalSpy failed(&connection, &SshConnection::failed);
    connection.open();
    QTRY_COMPARE_WITH_TIMEOUT(opened.size() + failed.size(), 1, longEnough);

    QCOMPARE(opened.size(), opens ? 1 : 0);
    QCOMPARE(server.prompt.keys.size(), kind < 0 ? 0 : 1);
    if (kind >= 0) {
        const SshPrompt::HostKey key = server.prompt.keys.first();
        QCOMPARE(int(key.kind), kind);
        QCOMPARE(key.type, QStringLiteral("ssh-ed25519"));
        QVERIFY(key.fingerprint.startsWith(QLatin1String("SHA256:")));
    }
    const QByteArray keyText = server.hostKeyLine().split(' ').at(2);
    QCOMPARE(contents(file).contains(keyText), remembered);
    QVERIFY(known.contains("%") || contents(file).contains(known));
}

void TestSshConnection::aPortOfTheNetworkIsReached()
{
    SshServer server;
    const int port = server.listen();
    QVERIFY(port > 0);
    SshTarget target = server.target();
    target.host = QStringLiteral("127.0.0.1");
    target.port = port;
    SshSettings settings = server.settings();
    settings.proxyCommand.clear();
    server.prompt.keyAnswer = SshPrompt::Answer::AcceptOnce;
    SshConnection connection(target, settings, &server.prompt);
    QSignalSpy opened(&connection, &SshConnection::opened);
    connection.open();
    QVERIFY(opened.wait(longEnough));
    QCOMPARE(connection.homeDirectory(), server.home());
    QCOMPARE(server.prompt.keys.first().host,
             QStringLiteral("%1@127.0.0.1:%2").arg(target.user).arg(port));
}

void TestSshConnection::eachAttemptIsToldOnce_data()
{
    QTest::addColumn<QString>("proxyCommand"); // "%": the server's; empty: a closed port
    QTest::addColumn<QString>("user"); // empty: the right one
    QTest::addColumn<QByteArrayList>("secrets");
    QTest::addColumn<bool>("opens");

    const QString server(QLatin1Char('%'));
    const QByteArrayList none;
    QTest::newRow("closed port") << QString() << QString() << none << false;
    QTest::newRow("no server") << QStringLiteral("false") << QString() << none << false;
    QTest::newRow("no SSH") << QStringLiteral("echo hello") << QString() << none << false;
    QTest::newRow("silent") << QStringLiteral("sleep 100") << QString() << none << false;
    QTest::newRow("unknown user") << server << QStringLiteral("who") << none << false;
    QTest::newRow("right passphrase") << server << QString() << QByteArrayList{"sesame"} << true;
    QTest::newRow("wrong passphrase") << server << QString() << QByteArrayList{"barley"} << false;
    QTest::newRow("no passphrase") << server << QString() << none << false;
    QTest::newRow("far too long passphrase")
        << server << QString() << QByteArrayList{QByteArray(100000, 'x')} << false;
}

void TestSshConnection::eachAttemptIsToldOnce()
{
    QFETCH(QString, proxyCommand);
    QFETCH(QString, user);
    QFETCH(QByteArrayList, secrets);
    QFETCH(bool, opens);
    SshServer server;
    const QString key = server.clientDirectory() + QStringLiteral("/id_ed25519");
    QVERIFY(QFile::remove(key) && QFile::remove(key + QStringLiteral(".pub")));
    QVERIFY(SshServer::makeKey(key, QStringLiteral("sesame")));
    server.prompt.secrets = secrets;
    SshTarget target = server.target();
    SshSettings settings = server.settings();
    settings.timeout = 3000;
    settings.proxyCommand = QString(proxyCommand).replace(QLatin1Char('%'), settings.proxyCommand);
    if (proxyCommand.isEmpty()) {
        target.host = QStringLiteral("127.0.0.1");
        target.port = 1;
    }
    if (!user.isEmpty())
        target.user = user;
    SshConnection connection(target, settings, &server.prompt);
    QSignalSpy opened(&connection, &SshConnection::opened);
    QSignalSpy failed(&connection, &SshConnection::failed);
    connection.open();
    QTRY_COMPARE_WITH_TIMEOUT(opened.size() + failed.size(), 1, longEnough);
    QCOMPARE(opened.size(), opens ? 1 : 0);
    QCOMPARE(connection.state(), opens ? SshConnection::State::Open : SshConnection::State::Closed);
    QVERIFY(opens || !failed.first().first().toString().isEmpty());
}

void TestSshConnection::aConnectionMayBeClosedAtAnyTime_data()
{
    QTest::addColumn<QString>("proxyCommand"); // "%": the server's
    QTest::addColumn<bool>("asks");

    QTest::newRow("while connecting")
        << QStringLiteral("sh -c 'touch started; exec sleep 100'") << false;
    QTest::newRow("while asking") << QStringLiteral("%") << true;
}

void TestSshConnection::aConnectionMayBeClosedAtAnyTime()
{
    QFETCH(QString, proxyCommand);
    QFETCH(bool, asks);
    // Closes its connection while the person thinks, as a window might that is closed.
    struct ClosingPrompt : TestPrompt {
        Answer askHostKey(const HostKey &key) override
        {
            connection.reset();
            return TestPrompt::askHostKey(key);
        }
        std::unique_ptr<SshConnection> connection;
    };
    SshServer server;
    QVERIFY(QFile::remove(server.clientDirectory() + QStringLiteral("/known_hosts")));
    SshSettings settings = server.settings();
    const QString started = server.home() + QStringLiteral("/started");
    settings.proxyCommand = proxyCommand.replace(QLatin1String("started"), started)
                                .replace(QLatin1Char('%'), settings.proxyCommand);
    ClosingPrompt prompt;
    prompt.connection = std::make_unique<SshConnection>(server.target(), settings, &prompt);
    QSignalSpy failed(prompt.connection.get(), &SshConnection::failed);
    prompt.connection->open();
    if (asks) {
        QTRY_VERIFY_WITH_TIMEOUT(!prompt.connection, longEnough);
    } else {
        QTRY_VERIFY(QFile::exists(started));
        prompt.connection->close();
    }
    QCOMPARE(failed.size(), 0);
    QCOMPARE(prompt.keys.size(), asks ? 1 : 0);
}

void TestSshConnection::commandsRunOnATerminal()
{
    SshServer server;
    const std::unique_ptr<SshConnection> connection = server.connect(server.settings());
    QVERIFY(connection);
    std::unique_ptr<SshCommand> command(connection->run(
        QStringLiteral("stty size; read x; stty size; echo \"<$x>\" >&2; exit 7"), 90, 30));
    QSignalSpy finished(command.get(), &SshCommand::finished);
    QByteArray output;
    connect(command.get(), &SshCommand::output, this,
            [&](const QByteArray &bytes) { output.append(bytes); });
    QTRY_VERIFY_WITH_TIMEOUT(output.contains("30 90"), longEnough);
    command->resize(70, 20);
    command->write("typed\n");
    QVERIFY(finished.wait(longEnough));
    QCOMPARE(finished.first().first().toInt(), 7);
    QVERIFY2(output.contains("20 70") && output.contains("<typed>"), output.constData());

    // More than is kept for a slow reader, and a command that is dropped at work.
    command.reset(connection->run(QStringLiteral("head -c 5000000 /dev/zero"), 80, 25));
    QSignalSpy finishedToo(command.get(), &SshCommand::finished);
    qint64 count = 0;
    connect(command.get(), &SshCommand::output, this,
            [&](const QByteArray &bytes) { count += bytes.size(); });
    QVERIFY(finishedToo.wait(longEnough));
    QCOMPARE(count, 5000000);
    command.reset(connection->run(QStringLiteral("yes"), 80, 25));
    QSignalSpy output2(command.get(), &SshCommand::output);
    QVERIFY(output2.wait(longEnough));
    command.reset();
    QCOMPARE(connection->client()->askPath(SftpRequest::RealPath, "."), SftpStatus::Ok);
}

QTEST_GUILESS_MAIN(TestSshConnection)
#include "tst_sshconnection.moc"
