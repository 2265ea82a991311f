#include <support/sshserver.h>

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const char sshd[] = "/usr/sbin/sshd"; // started anew for each connection, by its full path
constexpr int longEnough = 20000;

bool writeFile(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

SshPrompt::Answer TestPrompt::askHostKey(const HostKey &key)
{
    keys.append(key);
    return keyAnswer;
}

bool TestPrompt::askSecret(const QString &question, bool echo, QByteArray *secret)
{
    Q_UNUSED(echo)
    questions.append(question);
    if (secrets.isEmpty())
        return false;
    *secret = secrets.takeFirst();
    return true;
}

SshServer::SshServer(User user)
{
    if (m_directory.isValid() && setUp(user))
        return;
    m_fault = QStringLiteral("cannot prepare the server in %1").arg(m_directory.path());
}

SshServer::~SshServer()
{
    kill();
    m_listener.kill();
    m_listener.waitForFinished();
}

QString SshServer::path(const char *name) const
{
    return m_directory.filePath(QLatin1String(name));
}

bool SshServer::makeKey(const QString &fileName, const QString &passphrase)
{
    return QProcess::execute(QStringLiteral("ssh-keygen"),
                             {QStringLiteral("-q"), QStringLiteral("-t"), QStringLiteral("ed25519"),
                              QStringLiteral("-N"), passphrase, QStringLiteral("-f"), fileName})
        == 0;
}

bool SshServer::setUp(User user)
{
    const QDir directory(m_directory.path());
    for (const char *const name : {"home", "client", "control"}) {
        if (!directory.mkdir(QLatin1String(name)))
            return false;
    }
    const bool changes = user == User::Unprivileged && ::getuid() == 0;
    const passwd *const account = changes ? ::getpwnam("nobody") : ::getpwuid(::getuid());
    if (!account)
        return false;
    m_user = QString::fromLocal8Bit(account->pw_name);
    if (changes) {
        // It reads its keys as that user.
        const QByteArray home = path("home").toLocal8Bit();
        if (::chmod(m_directory.path().toLocal8Bit().constData(), 0755) != 0
            || ::chown(home.constData(), account->pw_uid, account->pw_gid) != 0)
            return false;
    }
    // Wanted by a server that is started as root; the system's own start script makes it too.
    QDir(QStringLiteral("/run")).mkdir(QStringLiteral("sshd"));
    if (!makeKey(path("host_key")) || !makeKey(path("client/id_ed25519")))
        return false;
    const QByteArray in = m_directory.path().toLocal8Bit();
    const QByteArray configuration = "HostKey " + in + "/host_key\nAuthorizedKeysFile " + in
        + "/client/id_ed25519.pub\nStrictModes no\nUsePAM no\nPasswordAuthentication no\n"
          "KbdInteractiveAuthentication no\nPubkeyAuthentication yes\nPidFile none\n"
          "ListenAddress 127.0.0.1\nSubsystem sftp internal-sftp -d "
        + in + "/home\n";
    return writeFile(path("sshd_config"), configuration)
        && writeFile(path("client/known_hosts"), hostKeyLine());
}

QByteArray SshServer::hostKeyLine() const
{
    return "testhost " + readFile(path("host_key.pub"));
}

SshTarget SshServer::target() const
{
    SshTarget target;
    target.host = QStringLiteral("testhost");
    target.user = m_user;
    return target;
}

SshSettings SshServer::settings(int delay) const
{
    SshSettings settings;
    settings.directory = clientDirectory();
    settings.proxyCommand
        = QStringLiteral("exec %1 %2 %3 %4 -i -e -f %5 2>>%6")
              .arg(QStringLiteral(BYTE_PROXY), QString::number(delay), path("control"),
                   QLatin1String(sshd), path("sshd_config"), path("log"));
    return settings;
}

int SshServer::listen()
{
    QTcpServer finder;
    if (!finder.listen(QHostAddress::LocalHost))
        return 0;
    const int port = finder.serverPort();
    finder.close();
    m_listener.start(QLatin1String(sshd),
                     {QStringLiteral("-D"), QStringLiteral("-p"), QString::number(port),
                      QStringLiteral("-f"), path("sshd_config"), QStringLiteral("-E"),
                      path("log")});
    const auto answers = [port] {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(port));
        return socket.waitForConnected(1000);
    };
    return QTest::qWaitFor(answers, longEnough) ? port : 0;
}

void SshServer::swallowBytes()
{
    writeFile(path("control/swallow"), QByteArray());
}

void SshServer::kill()
{
    writeFile(path("control/kill"), QByteArray());
}

void SshServer::restore()
{
    QFile::remove(path("control/swallow"));
    QFile::remove(path("control/kill"));
}

std::unique_ptr<SshConnection> SshServer::connect(const SshSettings &settings)
{
    auto connection = std::make_unique<SshConnection>(target(), settings, &prompt);
    QSignalSpy opened(connection.get(), &SshConnection::opened);
    QSignalSpy failed(connection.get(), &SshConnection::failed);
    connection->open();
    const auto isDecided = [&] { return !opened.isEmpty() || !failed.isEmpty(); };
    if (QTest::qWaitFor(isDecided, longEnough) && !opened.isEmpty())
        return connection;
    qWarning("no connection: %s",
             qPrintable(failed.isEmpty() ? QString() : failed.first().first().toString()));
    return nullptr;
}
