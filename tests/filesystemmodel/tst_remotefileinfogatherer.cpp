#include <support/faultyfolder.h>
#include <support/testcase.h>
#include <support/testgatherer.h>
#include <tul-util-gui/filesystemmodel/requestqueue_p.h>

#include <QDir>
#include <QFile>
#include <QFileIconProvider>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using Updates = QList<QPair<QString, QFileInfo>>;

namespace
{

// The signals of a gatherer as they come, one line each: "updates DIR N", "list DIR N", "loaded
// DIR".
class SignalLog : public QObject
{
    Q_OBJECT

public:
    explicit SignalLog(RemoteFileInfoGatherer *gatherer)
    {
        qRegisterMetaType<Updates>("QList<QPair<QString,QFileInfo> >");
        connect(gatherer, &RemoteFileInfoGatherer::updates, this,
                [this](const QString &directory, const Updates &files) {
                    lines += QStringLiteral("updates %1 %2").arg(directory).arg(files.size());
                    for (const auto &file : files)
                        infos.append(file);
                });
        connect(gatherer, &RemoteFileInfoGatherer::newListOfFiles, this,
                [this](const QString &directory, const QStringList &names) {
                    lines += QStringLiteral("list %1 %2").arg(directory).arg(names.size());
                });
        connect(gatherer, &RemoteFileInfoGatherer::nameResolved, this,
                [this] { lines += QStringLiteral("resolved"); });
        connect(
            gatherer, &RemoteFileInfoGatherer::directoryLoaded, this,
            [this](const QString &directory) { lines += QStringLiteral("loaded ") + directory; });
    }

    bool hasLoaded(int count = 1) const
    {
        return lines.filter(QStringLiteral("loaded")).size() >= count;
    }

    QStringList lines;
    Updates infos;
};

void makeFiles(const QString &folder, int count)
{
    for (int i = 0; i < count; ++i) {
        QFile file(QStringLiteral("%1/f%2").arg(folder).arg(i));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
}

} // namespace

class tst_RemoteFileInfoGatherer : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void equalRequestsAreFoldedUnlessOnlyTheOldestIsEqual();
    void aListingComesInBatchesThenItsNamesThenItsEnd_data();
    void aListingComesInBatchesThenItsNamesThenItsEnd();
    void aBatchGoesOutWhenASecondHasPassed();
    void drivesComeOneByOneFromTheLast();
    void requestsForFilesInspectOnlyThese();
    void updateFileSplitsAtTheLastSlash_data();
    void updateFileSplitsAtTheLastSlash();
    void listedDirectoriesAreWatchedOnceUntilRemoved();
    void aWatchRemovedWhileItIsBeingAddedStaysRemoved();
    void doubleSlashesAreListedButNotWatched();
    void linksAreNeverResolved();
    void recordsComeFromTheIconProvider();
    void servedFilesAreFullyKnownWhenReported();
    void stoppingCutsTheListingShortAndDropsTheQueue();
};

void tst_RemoteFileInfoGatherer::equalRequestsAreFoldedUnlessOnlyTheOldestIsEqual()
{
    RequestQueue queue;
    const QString a = QStringLiteral("a");
    QVERIFY(queue.add(a, {}));
    QVERIFY(queue.add(a, {})); // the oldest is not compared
    QVERIFY(!queue.add(a, {}));
    QVERIFY(queue.add(a, {QStringLiteral("x"), QStringLiteral("y")}));
    QVERIFY(queue.add(a, {QStringLiteral("y"), QStringLiteral("x")}));
    QVERIFY(!queue.add(a, {QStringLiteral("x"), QStringLiteral("y")}));
    QVERIFY(queue.take().files.isEmpty());
    QVERIFY(queue.add(a, {})); // the second has become the oldest
    QVERIFY(!queue.add(a, {}));
    QVERIFY(queue.take().files.isEmpty());
    QCOMPARE(queue.take().files.first(), QStringLiteral("x"));
}

void tst_RemoteFileInfoGatherer::aListingComesInBatchesThenItsNamesThenItsEnd_data()
{
    QTest::addColumn<bool>("isServed");
    QTest::addColumn<int>("files");
    QTest::addColumn<QStringList>("expected"); // with D for the directory

    // "." and ".." count as well.
    QTest::newRow("of this machine")
        << false << 248
        << QStringList{QStringLiteral("updates D 101"), QStringLiteral("list D 250"),
                       QStringLiteral("updates D 149"), QStringLiteral("loaded D")};
    QTest::newRow("just below a batch")
        << false << 98
        << QStringList{QStringLiteral("list D 100"), QStringLiteral("updates D 100"),
                       QStringLiteral("loaded D")};
    QTest::newRow("just a batch") << false << 99
                                  << QStringList{QStringLiteral("updates D 101"),
                                                 QStringLiteral("list D 101"),
                                                 QStringLiteral("loaded D")};
    QTest::newRow("served") << true << 1
                            << QStringList{QStringLiteral("list D 3"),
                                           QStringLiteral("updates D 3"),
                                           QStringLiteral("loaded D")};
    QTest::newRow("missing") << false << -1 << QStringList{QStringLiteral("loaded D")};
    QTest::newRow("served, missing") << true << -1 << QStringList{QStringLiteral("loaded D")};
}

void tst_RemoteFileInfoGatherer::aListingComesInBatchesThenItsNamesThenItsEnd()
{
    QFETCH(bool, isServed);
    QFETCH(int, files);
    QFETCH(QStringList, expected);
    const FaultyFolder folder;
    makeFiles(folder.local(), files);
    const QString directory = (isServed ? QStringLiteral("remote:") : folder.local())
        + (files < 0 ? QStringLiteral("/none") : QString());

    RemoteFileInfoGatherer gatherer;
    const SignalLog log(&gatherer);
    gatherer.list(directory);
    QTRY_VERIFY(log.hasLoaded());
    QCOMPARE(log.lines, expected.replaceInStrings(QStringLiteral("D"), directory));
}

void tst_RemoteFileInfoGatherer::aBatchGoesOutWhenASecondHasPassed()
{
    TestGatherer gatherer{QString()};
    const SignalLog log(&gatherer);
    Updates waiting;
    bool isFirst = true;
    QElapsedTimer base; // one that has run since the machine started
    base.start();
    const auto fetch = [&] {
        gatherer.fetch(QFileInfo(QStringLiteral("/")), base, isFirst, waiting, QStringLiteral("p"));
    };
    fetch();
    QCOMPARE(waiting.size(), 1);
    QTRY_VERIFY(base.hasExpired(1001));
    fetch();
    QCOMPARE(waiting.size(), 0);
    QVERIFY(!isFirst);
    QVERIFY(!base.hasExpired(1000));
    for (int i = 0; i < 150; ++i)
        fetch();
    QCOMPARE(waiting.size(), 150); // only the first batch goes by size
    QCOMPARE(log.lines, QStringList(QStringLiteral("updates p 2")));
}

void tst_RemoteFileInfoGatherer::drivesComeOneByOneFromTheLast()
{
    RemoteFileInfoGatherer gatherer;
    const SignalLog log(&gatherer);
    gatherer.fetchExtendedInformation(QString(), {QStringLiteral("/usr"), QStringLiteral("/tmp")});
    gatherer.list(QString());
    QTRY_COMPARE(log.infos.size(), 2 + QDir::drives().size());
    QCOMPARE(log.infos.at(0).first, QStringLiteral("/tmp"));
    QCOMPARE(log.infos.at(1).first, QStringLiteral("/usr"));
    QCOMPARE(log.infos.last().first, QDir::drives().constFirst().absoluteFilePath());
    QVERIFY(!log.hasLoaded());
    QCOMPARE(log.lines.first(), QStringLiteral("updates  1"));
}

void tst_RemoteFileInfoGatherer::requestsForFilesInspectOnlyThese()
{
    const QTemporaryDir folder;
    makeFiles(folder.path(), 3);
    TestGatherer gatherer(folder.path());
    const SignalLog log(&gatherer);
    gatherer.fetchExtendedInformation(folder.path(),
                                      {QStringLiteral("f2"), QStringLiteral("none")});
    QTRY_VERIFY(log.hasLoaded());
    QCOMPARE(log.lines,
             (QStringList{QStringLiteral("updates %1 2").arg(folder.path()),
                          QStringLiteral("loaded ") + folder.path()}));
    QCOMPARE(log.infos.at(0).second.filePath(), folder.path() + QStringLiteral("/f2"));
    QVERIFY(!log.infos.at(1).second.exists());
    QCOMPARE(gatherer.added.available(), 0);
}

void tst_RemoteFileInfoGatherer::updateFileSplitsAtTheLastSlash_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("request");
    QTest::newRow("served") << "remote:/a/b.txt"
                            << "remote:/a|b.txt";
    QTest::newRow("backslash") << "/a\\b/c"
                               << "/a\\b|c";
    QTest::newRow("no slash") << "remote:"
                              << "remote:|";
    QTest::newRow("top") << "/x"
                         << "|x";
}

void tst_RemoteFileInfoGatherer::updateFileSplitsAtTheLastSlash()
{
    QFETCH(QString, path);
    TestGatherer gatherer{QString()};
    gatherer.works = false;
    gatherer.updateFile(path);
    QTEST(gatherer.requests.value(0), "request");
}

void tst_RemoteFileInfoGatherer::listedDirectoriesAreWatchedOnceUntilRemoved()
{
    const QTemporaryDir folder;
    TestGatherer gatherer(folder.path());
    const SignalLog log(&gatherer);
    int loads = 0;
    const auto listAgain = [&] {
        gatherer.list(folder.path());
        ++loads;
        QTRY_VERIFY(log.hasLoaded(loads));
    };
    listAgain();
    listAgain();
    QCOMPARE(gatherer.added.available(), 1);

    makeFiles(folder.path(), 1); // seen by the watch
    QTRY_VERIFY(log.hasLoaded(loads + 1));
    QCOMPARE(log.infos.last().second.path(), folder.path());
    loads = log.lines.filter(QStringLiteral("loaded")).size();

    gatherer.removePath(folder.path());
    gatherer.removePath(QString()); // not worth a warning
    listAgain();
    QCOMPARE(gatherer.added.available(), 2);
    gatherer.clear();
    gatherer.clear();
    listAgain();
    QCOMPARE(gatherer.added.available(), 3);
}

void tst_RemoteFileInfoGatherer::aWatchRemovedWhileItIsBeingAddedStaysRemoved()
{
    const QTemporaryDir folder;
    TestGatherer gatherer(folder.path());
    const SignalLog log(&gatherer);
    gatherer.list(folder.path());
    QVERIFY(gatherer.added.tryAcquire(1, 5000));
    gatherer.list(folder.path() + QStringLiteral("/none"));
    QVERIFY(gatherer.added.tryAcquire(1, 5000)); // the first is on its way to this thread
    gatherer.removePath(folder.path());
    QTRY_VERIFY(log.hasLoaded(2));
    gatherer.list(folder.path());
    QTRY_VERIFY(log.hasLoaded(3));
    QCOMPARE(gatherer.added.available(), 1); // was not watched
}

void tst_RemoteFileInfoGatherer::doubleSlashesAreListedButNotWatched()
{
    const QTemporaryDir folder;
    makeFiles(folder.path(), 1);
    TestGatherer gatherer{QString()};
    const SignalLog log(&gatherer);
    gatherer.list(QLatin1Char('/') + folder.path());
    QTRY_VERIFY(log.hasLoaded());
    QCOMPARE(log.infos.size(), 3);
    QCOMPARE(gatherer.added.available(), 0);
}

void tst_RemoteFileInfoGatherer::linksAreNeverResolved()
{
    const QTemporaryDir folder;
    QVERIFY(QFile::link(QStringLiteral("/usr"), folder.filePath(QStringLiteral("link"))));
    RemoteFileInfoGatherer gatherer;
    const SignalLog log(&gatherer);
    gatherer.setResolveSymlinks(true);
    QVERIFY(!gatherer.resolveSymlinks());
    QCOMPARE(gatherer.getInfo(QFileInfo(folder.filePath(QStringLiteral("link")))).type(),
             RemoteExtendedInformation::Dir);
    QVERIFY(log.lines.isEmpty());
}

void tst_RemoteFileInfoGatherer::recordsComeFromTheIconProvider()
{
    RemoteFileInfoGatherer gatherer;
    const QFileInfo root(QStringLiteral("/"));
    QCOMPARE(gatherer.getInfo(root).displayType, QFileIconProvider().type(root));
    QCOMPARE(gatherer.getInfo(root).size(), 0);
    QCOMPARE(gatherer.getInfo(QFileInfo(QStringLiteral("/none"))).type(),
             RemoteExtendedInformation::System);
    gatherer.setIconProvider(nullptr);
    QVERIFY(!gatherer.iconProvider());
    QCOMPARE(gatherer.getInfo(root).displayType, QString());
    QVERIFY(gatherer.getInfo(root).icon.isNull());
}

void tst_RemoteFileInfoGatherer::servedFilesAreFullyKnownWhenReported()
{
    FaultyFolder folder;
    makeFiles(folder.local(), 5);
    RemoteFileInfoGatherer gatherer;
    const SignalLog log(&gatherer);
    gatherer.list(QStringLiteral("remote:"));
    QTRY_VERIFY(log.hasLoaded());
    folder.forgetCalls();
    for (const auto &[name, info] : log.infos) {
        const RemoteExtendedInformation record(info);
        QCOMPARE(record.type() == RemoteExtendedInformation::File,
                 name.size() == 2 && name != QLatin1String(".."));
        QVERIFY(record.lastModified().isValid());
        QVERIFY(record.permissions() != QFileDevice::Permissions());
        QVERIFY(!record.isSymLink() && !info.isNativePath() && record.size() == 0);
        QCOMPARE(info.isHidden(), name.startsWith(QLatin1Char('.')));
    }
    QCOMPARE(folder.calls(), 0);
}

void tst_RemoteFileInfoGatherer::stoppingCutsTheListingShortAndDropsTheQueue()
{
    FaultyFolder folder;
    folder.endless = true;
    folder.delayMilliseconds = 1;
    RemoteFileInfoGatherer gatherer;
    const SignalLog log(&gatherer);
    gatherer.list(QStringLiteral("remote:"));
    gatherer.list(folder.local());
    QTRY_VERIFY(!log.lines.isEmpty());
    gatherer.stop();
    gatherer.stop();
    QVERIFY(gatherer.isFinished());
    gatherer.list(folder.local());
    QTRY_VERIFY(log.hasLoaded());
    QCOMPARE(log.lines.last(), QStringLiteral("loaded remote:"));
}

QTEST_MAIN(tst_RemoteFileInfoGatherer)

#include "tst_remotefileinfogatherer.moc"
