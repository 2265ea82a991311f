#include <backends/ssh/sshfileengine.h>
#include <backends/ssh/sshfileinfogatherer.h>
#include <support/sshserver.h>
#include <support/testcase.h>

#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <sys/time.h>

namespace
{

constexpr int longEnough = 20000;

} // namespace

class TestSshFileInfoGatherer : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void shownDirectoriesFollowTheServer();
    void theModelCostsFewRoundTrips();

private:
    QString local(const char *name) const
    {
        return m_server.home() + QLatin1Char('/') + QLatin1String(name);
    }
    bool make(const char *name) const { return QDir().mkdir(local(name)); }
    QStringList names(const RemoteFileSystemModel &model) const;

    SshServer m_server;
    std::unique_ptr<SshConnection> m_connection;
    std::shared_ptr<SshFileSystem> m_files
        = std::make_shared<SshFileSystem>(QStringLiteral("remote:"));
    SshFileEngineHandler m_engines{m_files};
    SshFileInfoGathererHandler m_gatherers{m_files};
};

QStringList TestSshFileInfoGatherer::names(const RemoteFileSystemModel &model) const
{
    const QModelIndex root = model.index(model.rootPath());
    QStringList result;
    for (int row = 0; row < model.rowCount(root); ++row)
        result.append(model.fileName(model.index(row, 0, root)));
    result.sort();
    return result;
}

void TestSshFileInfoGatherer::initTestCase()
{
    QCOMPARE(m_server.fault(), QString());
    m_connection = m_server.connect(m_server.settings());
    QVERIFY(m_connection);
    m_files->setClient(m_connection->client());
    RemoteFileSystemModel::setRemoteFileInfoGathererHandler(&m_gatherers);
}

void TestSshFileInfoGatherer::shownDirectoriesFollowTheServer()
{
    QVERIFY(make("a"));
    QWidget window;
    RemoteFileSystemModel model(&window);
    auto *const gatherer = model.findChild<SshFileInfoGatherer *>();
    QVERIFY(gatherer);
    model.setRootPath(QStringLiteral("remote:") + m_server.home());
    QTRY_COMPARE_WITH_TIMEOUT(names(model), QStringList{QStringLiteral("a")}, longEnough);

    // A directory's own time counts in seconds: it is set, as if some had gone by.
    const auto change = [&](const char *name) {
        const timeval times[2] = {{1000, 0}, {1000, 0}};
        return make(name) && ::utimes(m_server.home().toLocal8Bit().constData(), times) == 0;
    };
    const int before = m_connection->client()->statistics().requests;
    gatherer->poll();
    QCOMPARE(m_connection->client()->statistics().requests, before); // hidden, so nobody looks
    window.show();
    QVERIFY(change("b"));
    const QStringList both{QStringLiteral("a"), QStringLiteral("b")};
    const auto follows = [&] {
        gatherer->poll();
        return names(model) == both;
    };
    QTRY_VERIFY_WITH_TIMEOUT(follows(), longEnough);

    // Another directory is shown: the first is not asked about any more.
    model.setRootPath(QStringLiteral("remote:") + local("b"));
    QSignalSpy loaded(&model, &RemoteFileSystemModel::directoryLoaded);
    QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, longEnough);
    gatherer->poll();
    const auto askedOnce = [&] {
        const int asked = m_connection->client()->statistics().requests;
        gatherer->poll();
        return m_connection->client()->statistics().requests == asked + 1;
    };
    QVERIFY(QTest::qWaitFor(askedOnce, longEnough));
}

void TestSshFileInfoGatherer::theModelCostsFewRoundTrips()
{
    QVERIFY(QDir(m_server.home()).mkpath(QStringLiteral("deep/er/still")));
    for (int index = 0; index < 1000; ++index)
        QVERIFY(QDir(local("deep/er/still")).mkdir(QString::number(index)));
    m_files->forgetAll();
    RemoteFileSystemModel model;
    const SftpClient::Statistics before = m_connection->client()->statistics();
    const int elements = m_server.home().count(QLatin1Char('/')) + 4;
    model.setRootPath(QStringLiteral("remote:") + local("deep/er/still"));
    QTRY_COMPARE_WITH_TIMEOUT(model.rowCount(model.index(model.rootPath())), 1000, longEnough);
    const SftpClient::Statistics after = m_connection->client()->statistics();
    // The elements of the path and eleven answers with names, of which as many are asked ahead.
    const int all = after.requests - before.requests;
    QVERIFY2(all <= 2 * elements + 4 + 11 + 20, qPrintable(QString::number(all)));
}

QTEST_MAIN(TestSshFileInfoGatherer)
#include "tst_sshfileinfogatherer.moc"
