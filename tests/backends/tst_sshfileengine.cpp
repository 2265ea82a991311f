#include <backends/ssh/remotename.h>
#include <backends/ssh/sftpdirectory.h>
#include <backends/ssh/sshcommand.h>
#include <backends/ssh/sshfileengine.h>
#include <support/sshserver.h>
#include <support/testcase.h>

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const QDir::Filters everything = QDir::AllEntries | QDir::Hidden | QDir::System;

/// What a test sees of a server: a connection, and the engine installed for "remote:".
struct Remote {
    explicit Remote(SshServer *server, const SshSettings &settings)
        : connection(server->connect(settings))
    {
        if (connection)
            files->setClient(connection->client());
    }

    SftpClient &client() const { return *connection->client(); }

    std::unique_ptr<SshConnection> connection;
    std::shared_ptr<SshFileSystem> files
        = std::make_shared<SshFileSystem>(QStringLiteral("remote:"));
    SshFileEngineHandler handler{files};
};

/// What the code between two of them costs.
struct Cost {
    explicit Cost(const SftpClient &of)
        : client(of)
        , before(of.statistics())
    {
    }
    int requests() const { return client.statistics().requests - before.requests; }
    int waits() const { return client.statistics().waits - before.waits; }

    const SftpClient &client;
    const SftpClient::Statistics before;
};

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be opened");
}

bool write(const QString &fileName, const QByteArray &bytes,
           QIODevice::OpenMode mode = QIODevice::WriteOnly)
{
    QFile file(fileName);
    if (!file.open(mode) || file.write(bytes) != bytes.size())
        return false;
    file.close();
    return file.error() == QFile::NoError;
}

/// Bytes that differ from place to place.
QByteArray noise(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 1;
    for (char &byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

} // namespace

class TestSshFileEngine : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void namesAreBytes_data();
    void namesAreBytes();
    void pathsAreTakenApartByThePrefix();
    void linksAreFollowedAndTold();
    void filesAreReadAndWrittenInStreams();
    void openModesAreThoseOfLocalFiles();
    void nothingIsEverReplaced_data();
    void nothingIsEverReplaced();
    void directoriesComeAndGo();
    void attributesAreSet();
    void aListingCostsNoQuestionPerFile();
    void questionsAboutOnePathCostOneRoundTrip();
    void ownChangesAreSeenAtOnce();
    void whatOthersOwnIsRefused();
    void writesThatFailAreTold();
    void faultsEndEveryCall_data();
    void faultsEndEveryCall();

private:
    QString local(const QString &name) const { return m_server->home() + QLatin1Char('/') + name; }
    QString remote(const QString &name) const { return QStringLiteral("remote:") + local(name); }

    std::unique_ptr<SshServer> m_server;
    std::unique_ptr<Remote> m_remote;
};

void TestSshFileEngine::initTestCase()
{
    m_server = std::make_unique<SshServer>();
    QCOMPARE(m_server->fault(), QString());
    m_remote = std::make_unique<Remote>(m_server.get(), m_server->settings());
    QVERIFY(m_remote->connection);
}

void TestSshFileEngine::init()
{
    TestCase::init();
    QDir(m_server->home()).removeRecursively();
    QVERIFY(QDir().mkpath(m_server->home()));
    m_remote->files->forgetAll();
}

void TestSshFileEngine::namesAreBytes_data()
{
    QTest::addColumn<QByteArray>("name");

    for (const char *const name :
         {"with blank", " ", "line\nfeed", "100%25", "a:b", "C:\\x", "-rf", "remote:", ".hidden",
          "\xc3\xa4\xe2\x82\xac", "a\xcc\x88", "latin \xe4\xff", "\xf0\x9f\x98\x80", "\x01\x7f",
          "*?[", "tail~", "\xef\x9e\x80"})
        QTest::newRow(QByteArray(name).toPercentEncoding().constData()) << QByteArray(name);
}

void TestSshFileEngine::namesAreBytes()
{
    QFETCH(QByteArray, name);
    const QByteArray localPath = m_server->home().toLocal8Bit() + '/' + name;
    const QString path = remote(tul::remoteNameFromBytes(name));
    QVERIFY(write(path, "content"));
    QCOMPARE(::access(localPath.constData(), F_OK), 0);
    QCOMPARE(QDir(remote(QString())).entryList(everything | QDir::NoDotAndDotDot),
             QStringList{tul::remoteNameFromBytes(name)});
    QCOMPARE(contents(path), QByteArray("content"));
    QCOMPARE(QFileInfo(path).fileName(), tul::remoteNameFromBytes(name));
    QVERIFY(QFile::rename(path, path + QLatin1Char('2')));
    QCOMPARE(::access((localPath + '2').constData(), F_OK), 0);
    QVERIFY(QFile::remove(path + QLatin1Char('2')));
    QVERIFY(::access((localPath + '2').constData(), F_OK) != 0);
}

void TestSshFileEngine::pathsAreTakenApartByThePrefix()
{
    for (const auto &[path, directory] :
         {std::pair("remote:", "remote:"), std::pair("remote:/", "remote:"),
          std::pair("remote:/usr", "remote:"), std::pair("remote:/usr/bin", "remote:/usr")}) {
        const QFileInfo info(QString::fromLatin1(path));
        QCOMPARE(info.absolutePath(), QString::fromLatin1(directory));
        QCOMPARE(info.absoluteFilePath(), QString::fromLatin1(path));
        QVERIFY(info.isAbsolute() && info.isDir() && info.isReadable());
        QCOMPARE(info.isRoot(), !info.filePath().contains(QLatin1String("usr")));
    }
    QVERIFY(QFileInfo(QStringLiteral("remote:/ETC")) != QFileInfo(QStringLiteral("remote:/etc")));
    QVERIFY(!QFileInfo::exists(QStringLiteral("Remote:/")));
}

void TestSshFileEngine::linksAreFollowedAndTold()
{
    QVERIFY(write(local(QStringLiteral("file")), "12345"));
    QVERIFY(QDir(m_server->home()).mkdir(QStringLiteral("dir")));
    const auto link = [this](const char *target, const char *name) {
        return ::symlink(target, local(QLatin1String(name)).toLocal8Bit().constData()) == 0;
    };
    QVERIFY(link("file", "to file") && link("../home/dir", "to dir") && link("gone", "dangling")
            && link("/usr/bin", "absolute") && link("circle", "circle"));
    QStringList found;
    QDirIterator iterator(remote(QString()), everything | QDir::NoDotAndDotDot);
    while (iterator.hasNext()) {
        iterator.next();
        const QFileInfo info = iterator.fileInfo();
        found.append(QStringLiteral("%1: %2%3%4 %5 %6")
                         .arg(info.fileName(), QLatin1String(info.isSymLink() ? "L" : "-"),
                              QLatin1String(info.isDir() ? "D" : "-"),
                              QLatin1String(info.exists() ? "E" : "-"),
                              info.isFile() ? QString::number(info.size()) : QString(),
                              info.symLinkTarget().remove(m_server->home())));
    }
    found.sort();
    QCOMPARE(
        found,
        (QStringList{QStringLiteral("absolute: LDE  remote:/usr/bin"),
                     QStringLiteral("circle: L--  remote:/circle"),
                     QStringLiteral("dangling: L--  remote:/gone"), QStringLiteral("dir: -DE  "),
                     QStringLiteral("file: --E 5 "), QStringLiteral("to dir: LDE  remote:/dir"),
                     QStringLiteral("to file: L-E 5 remote:/file")}));
    QCOMPARE(QFileInfo(remote(QStringLiteral("to dir"))).canonicalFilePath(),
             remote(QStringLiteral("dir")));
    QCOMPARE(QFileInfo(remote(QStringLiteral("dangling"))).canonicalFilePath(), QString());

    QVERIFY(QFile::link(remote(QStringLiteral("file")), remote(QStringLiteral("made"))));
    QCOMPARE(QFileInfo(local(QStringLiteral("made"))).symLinkTarget(),
             local(QStringLiteral("file")));
    // A pipe would keep the server waiting for ever.
    QCOMPARE(::mkfifo(local(QStringLiteral("pipe")).toLocal8Bit().constData(), 0600), 0);
    QFile pipe(remote(QStringLiteral("pipe")));
    QVERIFY(pipe.exists() && !pipe.open(QIODevice::ReadOnly));
    QVERIFY(pipe.errorString().contains(QLatin1String("is no file")));
    // The link goes, not what it leads to.
    QVERIFY(QFile::remove(remote(QStringLiteral("made"))));
    QVERIFY(QFile::exists(local(QStringLiteral("file"))));
}

void TestSshFileEngine::filesAreReadAndWrittenInStreams()
{
    const QByteArray bytes = noise(3 * 1000 * 1000 + 7);
    const QString path = remote(QStringLiteral("big"));
    const Cost writing(m_remote->client());
    QVERIFY(write(path, bytes));
    QVERIFY(contents(local(QStringLiteral("big"))) == bytes);
    const Cost reading(m_remote->client());
    QVERIFY(contents(path) == bytes);
    QVERIFY2(reading.requests() < 130, qPrintable(QString::number(reading.requests())));

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QCOMPARE(file.size(), bytes.size());
    for (const int position : {2999999, 5, 32768, 1000000, 0}) {
        QVERIFY(file.seek(position));
        QVERIFY(file.read(100000) == bytes.mid(position, 100000));
    }
    QVERIFY(file.seek(70000));
    QCOMPARE(file.write("written"), 7);
    QCOMPARE(file.read(5), bytes.mid(70007, 5));
    QVERIFY(file.seek(69999));
    QCOMPARE(file.read(9), bytes.mid(69999, 1) + "written" + bytes.mid(70007, 1));
    QVERIFY(file.seek(file.size() + 10));
    QVERIFY(file.read(5).isEmpty());
    QVERIFY(file.resize(123456));
    QCOMPARE(file.size(), 123456);
    file.close();
    QCOMPARE(QFileInfo(local(QStringLiteral("big"))).size(), 123456);
    QCOMPARE(contents(QStringLiteral("remote:/proc/self/comm")).trimmed(), QByteArray("sshd"));
}

void TestSshFileEngine::openModesAreThoseOfLocalFiles()
{
    const auto outcome = [](const QString &path, int mode, bool exists) {
        QFile::remove(path);
        if (exists)
            write(path, "0123456789");
        QFile file(path);
        const int opened = file.open(QIODevice::OpenMode(mode)) ? 1 : 0;
        const QString state
            = QStringLiteral("%1 %2 %3").arg(opened).arg(file.size()).arg(file.pos());
        if (opened && file.isWritable())
            file.write("abc");
        file.close();
        return state + QString::fromLatin1(contents(path));
    };
    // ReadOnly, WriteOnly, Append, Truncate, NewOnly and ExistingOnly are bits; not the last two.
    for (int bits = 1; bits < 48; ++bits) {
        const int mode = (bits & 0xf) | ((bits & 0x30) << 2);
        if (!(mode & (QIODevice::ReadWrite | QIODevice::Append | QIODevice::NewOnly)))
            continue; // neither read nor written
        for (const bool exists : {false, true})
            QCOMPARE(outcome(remote(QStringLiteral("file")), mode, exists),
                     outcome(local(QStringLiteral("file")), mode, exists));
    }
}

void TestSshFileEngine::nothingIsEverReplaced_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    for (const char *const from : {"file", "dir", "link"}) {
        for (const char *const to : {"file2", "empty", "dangling", "free"})
            QTest::addRow("%s to %s", from, to)
                << QString::fromLatin1(from) << QString::fromLatin1(to);
    }
}

void TestSshFileEngine::nothingIsEverReplaced()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    const QByteArray home = m_server->home().toLocal8Bit();
    QVERIFY(write(local(QStringLiteral("file")), "1")
            && write(local(QStringLiteral("file2")), "2"));
    QVERIFY(QDir(m_server->home()).mkdir(QStringLiteral("dir")));
    QVERIFY(QDir(m_server->home()).mkdir(QStringLiteral("empty")));
    QCOMPARE(::symlink("file", (home + "/link").constData()), 0);
    QCOMPARE(::symlink("gone", (home + "/dangling").constData()), 0);
    const bool isFree = to == QLatin1String("free");
    struct stat before {
    };
    QCOMPARE(::lstat((home + '/' + from.toLatin1()).constData(), &before), 0);

    SshFileEngine engine(m_remote->files, remote(from));
    QCOMPARE(engine.rename(remote(to)), isFree);
    struct stat after {
    };
    const QByteArray now = home + '/' + (isFree ? to : from).toLatin1();
    QCOMPARE(::lstat(now.constData(), &after), 0);
    QCOMPARE(after.st_mode, before.st_mode);
    QCOMPARE(contents(local(QStringLiteral("file2"))), QByteArray("2"));
    QVERIFY(QFileInfo(local(QStringLiteral("dangling"))).isSymLink());

    // Copies follow links, and directories are not copied at all.
    const QString source = remote(isFree ? to : from);
    const QString copy = remote(isFree ? QStringLiteral("copy") : to);
    const bool copies = isFree && from != QLatin1String("dir");
    QCOMPARE(SshFileEngine(m_remote->files, source).copy(copy), copies);
    QCOMPARE(QFileInfo(local(QStringLiteral("copy"))).size(), copies ? 1 : 0);
    QCOMPARE(SshFileEngine(m_remote->files, source).link(copy), isFree && !copies);
}

void TestSshFileEngine::directoriesComeAndGo()
{
    const QDir home(remote(QString()));
    QVERIFY(home.mkdir(QStringLiteral("a")));
    QVERIFY(!home.mkdir(QStringLiteral("a")));
    QVERIFY(!home.mkdir(QStringLiteral("x/y")));
    QVERIFY(home.mkpath(QStringLiteral("a/b/c/d")));
    QVERIFY(home.mkpath(QStringLiteral("a/b")));
    QVERIFY(write(remote(QStringLiteral("a/b/file")), "1"));
    QVERIFY(!home.mkpath(QStringLiteral("a/b/file/e")));
    QVERIFY(!home.rmdir(QStringLiteral("a/b")));
    QVERIFY(home.rmpath(QStringLiteral("a/b/c/d")));
    QVERIFY(!QFileInfo::exists(local(QStringLiteral("a/b/c"))));
    QVERIFY(QFile::copy(remote(QStringLiteral("a/b/file")), remote(QStringLiteral("a/copy"))));
    QVERIFY(QFile::copy(remote(QStringLiteral("a/copy")), local(QStringLiteral("a/home"))));
    QCOMPARE(contents(local(QStringLiteral("a/home"))), QByteArray("1"));
    QVERIFY(QDir(remote(QStringLiteral("a"))).removeRecursively());
    QVERIFY(!QFileInfo::exists(local(QStringLiteral("a"))));
}

void TestSshFileEngine::attributesAreSet()
{
    const QString path = remote(QStringLiteral("file"));
    QVERIFY(write(path, "0123456789"));
    const QFile::Permissions permissions = QFile::ReadOwner | QFile::ExeOwner | QFile::WriteGroup
        | QFile::ReadOther | QFile::ExeOther;
    QVERIFY(QFile::setPermissions(path, permissions));
    struct stat status {
    };
    QCOMPARE(::stat(local(QStringLiteral("file")).toLocal8Bit().constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0525U);
    const QFile::Permissions user = QFile::ReadUser | QFile::WriteUser | QFile::ExeUser;
    QCOMPARE(QFileInfo(path).permissions() & ~user, permissions);
    QCOMPARE(QFileInfo(path).ownerId(), status.st_uid);

    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1234567890);
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
    QVERIFY(!file.setFileTime(time, QFileDevice::FileBirthTime));
    file.close();
    QCOMPARE(QFileInfo(path).lastModified(), time);
    QVERIFY(QFile::resize(path, 3));
    QCOMPARE(contents(path), QByteArray("012"));
}

void TestSshFileEngine::aListingCostsNoQuestionPerFile()
{
    const int count = 20000;
    const QByteArray home = m_server->home().toLocal8Bit() + '/';
    for (int index = 0; index < count; ++index)
        QCOMPARE(::mknod((home + QByteArray::number(index)).constData(), S_IFREG | 0644, 0), 0);
    QCOMPARE(::symlink("1", (home + "link").constData()), 0);

    const Cost cost(m_remote->client());
    std::set<QString> names;
    QDirIterator iterator(remote(QString()), everything | QDir::NoDotAndDotDot);
    QVERIFY(iterator.hasNext());
    QVERIFY2(cost.waits() <= 3, qPrintable(QString::number(cost.waits()))); // one for a link
    while (iterator.hasNext()) {
        iterator.next();
        const QFileInfo info = iterator.fileInfo();
        QVERIFY(info.exists() && info.isFile() && info.isReadable());
        QVERIFY(info.lastModified().isValid());
        names.insert(info.fileName());
    }
    QCOMPARE(names.size(), count + 1U);
    QVERIFY2(cost.requests() <= count / 100 + 40, qPrintable(QString::number(cost.requests())));
}

void TestSshFileEngine::questionsAboutOnePathCostOneRoundTrip()
{
    QVERIFY(QDir(m_server->home()).mkpath(QStringLiteral("a/b/c")));
    const QString path = remote(QStringLiteral("a/b/c"));
    const Cost cost(m_remote->client());
    QVERIFY(QDir(path).exists());
    QVERIFY(cost.waits() <= 12); // answers that come one by one, to questions asked at once
    const Cost more(m_remote->client());
    // What a model asks that walks down to the directory.
    for (QByteArray above = m_remote->files->remotePath(path); above != "/";
         above = tul::remoteDirectoryOf(above))
        QVERIFY(QFileInfo(m_remote->files->fileName(above)).isDir());
    QVERIFY(!QFileInfo(path).isSymLink() && QFileInfo(path).isReadable());
    QCOMPARE(more.requests(), 0);
    const Cost missing(m_remote->client());
    QVERIFY(!QFileInfo::exists(path + QStringLiteral("/x")));
    QVERIFY(!QFileInfo::exists(path + QStringLiteral("/x")));
    QCOMPARE(missing.requests(), 2);
}

void TestSshFileEngine::ownChangesAreSeenAtOnce()
{
    const QString path = remote(QStringLiteral("file"));
    const QString other = remote(QStringLiteral("other"));
    QVERIFY(!QFileInfo::exists(path));
    QVERIFY(write(path, "12"));
    QCOMPARE(QFileInfo(path).size(), 2);
    QVERIFY(write(path, "345", QIODevice::Append));
    QCOMPARE(QFileInfo(path).size(), 5);
    QVERIFY(QFile::rename(path, other));
    QVERIFY(!QFileInfo::exists(path) && QFileInfo::exists(other));
    QVERIFY(QFile::remove(other));
    QVERIFY(!QFileInfo::exists(other));

    // What a listing told before a change is not believed after it, but of that path only.
    QVERIFY(write(local(QStringLiteral("file")), "12"));
    QVERIFY(write(remote(QStringLiteral("other")), "12"));
    QDirIterator iterator(remote(QString()), everything | QDir::NoDotAndDotDot);
    QVERIFY(iterator.hasNext());
    QVERIFY(QFile::rename(path, path + QLatin1Char('2')));
    QVERIFY(iterator.hasNext());
    while (iterator.hasNext())
        iterator.next();
    QVERIFY(!QFileInfo::exists(path));
    const Cost cost(m_remote->client());
    QVERIFY(QFileInfo::exists(other));
    QCOMPARE(cost.requests(), 0);
}

void TestSshFileEngine::whatOthersOwnIsRefused()
{
    SshServer server(SshServer::User::Unprivileged);
    QCOMPARE(server.fault(), QString());
    m_remote.reset(); // two handlers for one prefix would be one too many
    {
        const Remote other(&server, server.settings());
        QVERIFY(other.connection);
        const QString home = QStringLiteral("remote:") + server.home();
        const QString closed = home + QStringLiteral("/closed");
        QVERIFY(QDir(server.home()).mkdir(QStringLiteral("closed")));
        QCOMPARE(::chmod((server.home() + QStringLiteral("/closed")).toLocal8Bit().constData(), 0),
                 0);
        QVERIFY(QFileInfo(closed).isDir() && !QFileInfo(closed).isReadable());
        QVERIFY(QDir(closed).entryList(everything).isEmpty());
        QVERIFY(!QDir(closed).mkdir(QStringLiteral("x")));
        SftpDirectory directory(other.connection->client(), other.files->remotePath(closed));
        QCOMPARE(directory.status(), SftpStatus::PermissionDenied);
        QFile file(closed + QStringLiteral("/x"));
        QVERIFY(!file.open(QIODevice::WriteOnly));
        QCOMPARE(file.error(), QFile::PermissionsError);
        QCOMPARE(file.errorString(), QStringLiteral("Permission denied"));
        QVERIFY(QFileInfo(home).isWritable());
        QVERIFY(write(home + QStringLiteral("/mine"), "1"));
        QCOMPARE(::rmdir((server.home() + QStringLiteral("/closed")).toLocal8Bit().constData()), 0);
    }
    m_remote = std::make_unique<Remote>(m_server.get(), m_server->settings());
}

void TestSshFileEngine::writesThatFailAreTold()
{
    m_remote.reset();
    {
        SshSettings settings = m_server->settings();
        // As if the disk were full after 512 KiB.
        settings.proxyCommand = QStringLiteral("sh -c 'trap \"\" XFSZ; ulimit -f 1024; %1'")
                                    .arg(settings.proxyCommand);
        const Remote limited(m_server.get(), settings);
        QVERIFY(limited.connection);
        const QByteArray bytes = noise(2 * 1024 * 1024);
        QFile file(remote(QStringLiteral("full")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), -1);
        QCOMPARE(file.error(), QFile::WriteError);
        QVERIFY(file.errorString().contains(QLatin1String("disk may be full")));
        file.close();
        QVERIFY(!write(remote(QStringLiteral("full2")), bytes.left(600 * 1024)));
        QVERIFY(write(remote(QStringLiteral("fits")), bytes.left(500 * 1024)));
        QVERIFY(write(local(QStringLiteral("big")), bytes));
        QVERIFY(!QFile::copy(remote(QStringLiteral("big")), remote(QStringLiteral("copy"))));
        QVERIFY(!QFileInfo::exists(remote(QStringLiteral("copy"))));
    }
    m_remote = std::make_unique<Remote>(m_server.get(), m_server->settings());
}

void TestSshFileEngine::faultsEndEveryCall_data()
{
    QTest::addColumn<bool>("killed");
    QTest::newRow("killed") << true;
    QTest::newRow("silent") << false;
}

void TestSshFileEngine::faultsEndEveryCall()
{
    QFETCH(bool, killed);
    QVERIFY(write(local(QStringLiteral("big")), noise(8 * 1000 * 1000)));
    for (int index = 0; index < 5000; ++index)
        QCOMPARE(
            ::mknod(local(QString::number(index)).toLocal8Bit().constData(), S_IFREG | 0644, 0), 0);
    m_remote.reset();
    {
        SshSettings settings = m_server->settings();
        settings.timeout = 2000;
        const Remote failing(m_server.get(), settings);
        QVERIFY(failing.connection);
        QSignalSpy lost(failing.connection.get(), &SshConnection::lost);
        const std::unique_ptr<SshCommand> command(
            failing.connection->run(QStringLiteral("cat"), 80, 25));
        QSignalSpy finished(command.get(), &SshCommand::finished);
        QFile reading(remote(QStringLiteral("big")));
        QFile writing(remote(QStringLiteral("new")));
        QVERIFY(reading.open(QIODevice::ReadOnly) && writing.open(QIODevice::WriteOnly));
        QCOMPARE(reading.read(100000).size(), 100000);
        QDirIterator listing(remote(QString()), everything);
        QVERIFY(listing.hasNext());
        if (killed)
            m_server->kill();
        else
            m_server->swallowBytes();

        QVERIFY(reading.readAll().size() < 7900000);
        QCOMPARE(reading.error(), QFile::ReadError);
        QVERIFY(!reading.errorString().isEmpty());
        writing.write(noise(1000000));
        QVERIFY(!writing.flush());
        writing.close();
        QCOMPARE(writing.error(), QFile::WriteError);
        int count = 0;
        for (; listing.hasNext(); ++count)
            listing.next();
        QVERIFY(count < 5000);
        failing.files->forgetAll();
        QVERIFY(!QFileInfo::exists(remote(QStringLiteral("big"))));
        QVERIFY(!QDir(remote(QString())).mkdir(QStringLiteral("x")));
        QVERIFY(!QFile::remove(remote(QStringLiteral("big"))));
        QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, 20000);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().first().toInt(), -1);
        m_server->restore();
        failing.files->setClient(nullptr);
        QVERIFY(!QFileInfo::exists(remote(QString())) && !writing.open(QIODevice::ReadOnly));

        // A new connection takes the place of the old one.
        QSignalSpy opened(failing.connection.get(), &SshConnection::opened);
        failing.connection->open();
        QVERIFY(opened.wait(20000));
        failing.files->setClient(failing.connection->client());
        QVERIFY(QFileInfo::exists(remote(QStringLiteral("big"))));
    }
    m_remote = std::make_unique<Remote>(m_server.get(), m_server->settings());
}

QTEST_GUILESS_MAIN(TestSshFileEngine)
#include "tst_sshfileengine.moc"
