// Listing a remote directory with all attributes through the file engine, beside the SSH library's
// own loop on the same server in the same run; and how many round trips either waits for. The
// second argument is the delay that is added to each round trip, in milliseconds.

#include <backends/ssh/sftpdirectory.h>
#include <backends/ssh/sshfileengine.h>
#include <support/sshserver.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>

#include <fcntl.h>
#include <libssh/libssh.h>
#include <libssh/sftp.h>
#include <unistd.h>

namespace
{

SshServer *server = nullptr;

/// A directory with that many files, made once.
QString directoryOf(int count)
{
    const QString directory = server->home() + QLatin1Char('/') + QString::number(count);
    if (QFileInfo::exists(directory))
        return directory;
    QDir().mkpath(directory);
    for (int index = 0; index < count; ++index) {
        const QString name = QStringLiteral("%1/file%2.txt").arg(directory).arg(index);
        ::close(::creat(name.toLocal8Bit().constData(), 0644));
    }
    return directory;
}

/// The library's own session and loop, without anything of ours.
class PlainSession
{
public:
    explicit PlainSession(int delay)
        : m_session(ssh_new())
    {
        const SshSettings settings = server->settings(delay);
        const SshTarget target = server->target();
        const bool no = false;
        ssh_options_set(m_session, SSH_OPTIONS_HOST, target.host.toLocal8Bit().constData());
        ssh_options_set(m_session, SSH_OPTIONS_USER, target.user.toLocal8Bit().constData());
        ssh_options_set(m_session, SSH_OPTIONS_PROCESS_CONFIG, &no);
        ssh_options_set(m_session, SSH_OPTIONS_SSH_DIR,
                        settings.directory.toLocal8Bit().constData());
        ssh_options_set(m_session, SSH_OPTIONS_PROXYCOMMAND,
                        settings.proxyCommand.toLocal8Bit().constData());
        ssh_connect(m_session);
        ssh_userauth_publickey_auto(m_session, nullptr, nullptr);
        m_sftp = sftp_new(m_session);
        if (m_sftp)
            sftp_init(m_sftp);
    }
    ~PlainSession()
    {
        sftp_free(m_sftp);
        ssh_disconnect(m_session);
        ssh_free(m_session);
    }
    PlainSession(const PlainSession &) = delete;
    PlainSession &operator=(const PlainSession &) = delete;

    int list(const QString &path) const
    {
        int count = 0;
        sftp_dir const directory = sftp_opendir(m_sftp, path.toLocal8Bit().constData());
        while (directory) {
            sftp_attributes const attributes = sftp_readdir(m_sftp, directory);
            if (!attributes)
                break;
            ++count;
            sftp_attributes_free(attributes);
        }
        if (directory)
            sftp_closedir(directory);
        return count;
    }

private:
    ssh_session m_session;
    sftp_session m_sftp = nullptr;
};

void listPlainly(benchmark::State &state)
{
    const int count = static_cast<int>(state.range(0));
    const QString directory = directoryOf(count);
    const PlainSession session(static_cast<int>(state.range(1)));
    for (auto _ : state) {
        if (session.list(directory) != count + 2)
            state.SkipWithError("entries are missing");
    }
}
BENCHMARK(listPlainly)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Args({1000, 0})
    ->Args({20000, 0})
    ->Args({20000, 50});

/// All that a file system model wants to know of each entry.
void listThroughEngine(benchmark::State &state)
{
    const int count = static_cast<int>(state.range(0));
    const QString path = QStringLiteral("remote:") + directoryOf(count);
    const auto connection = server->connect(server->settings(static_cast<int>(state.range(1))));
    const auto files = std::make_shared<SshFileSystem>(QStringLiteral("remote:"));
    files->setClient(connection->client());
    const SshFileEngineHandler handler(files);
    int firstRows = 0;
    const SftpClient::Statistics before = connection->client()->statistics();
    for (auto _ : state) {
        int found = 0;
        const int waits = connection->client()->statistics().waits;
        QDirIterator iterator(path, QDir::AllEntries | QDir::Hidden | QDir::System);
        while (iterator.hasNext()) {
            iterator.next();
            const QFileInfo info = iterator.fileInfo();
            benchmark::DoNotOptimize(info.isDir() && info.isSymLink() && info.size() > 0
                                     && info.lastModified().isValid() && info.isReadable());
            if (found++ == 0)
                firstRows = connection->client()->statistics().waits - waits;
        }
        if (found != count + 2)
            state.SkipWithError("entries are missing");
    }
    const SftpClient::Statistics after = connection->client()->statistics();
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["requests"] = (after.requests - before.requests) / rounds;
    state.counters["waits"] = (after.waits - before.waits) / rounds;
    state.counters["waits to first row"] = firstRows;
}
BENCHMARK(listThroughEngine)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Args({1000, 0})
    ->Args({20000, 0})
    ->Args({20000, 50})
    ->Args({20000, 200});

void readThroughEngine(benchmark::State &state)
{
    const int size = 16 * 1024 * 1024;
    const QString path = server->home() + QStringLiteral("/big");
    QFile local(path);
    if (local.open(QIODevice::WriteOnly))
        local.write(QByteArray(size, 'x'));
    local.close();
    const auto connection = server->connect(server->settings(static_cast<int>(state.range(0))));
    const auto files = std::make_shared<SshFileSystem>(QStringLiteral("remote:"));
    files->setClient(connection->client());
    const SshFileEngineHandler handler(files);
    for (auto _ : state) {
        QFile file(QStringLiteral("remote:") + path);
        if (!file.open(QIODevice::ReadOnly) || file.readAll().size() != size)
            state.SkipWithError("bytes are missing");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * size);
}
BENCHMARK(readThroughEngine)->Unit(benchmark::kMillisecond)->UseRealTime()->Arg(0)->Arg(50);

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    SshServer remote;
    server = &remote;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
