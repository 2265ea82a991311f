#include <support/faultyfolder.h>
#include <support/literal.h>
#include <support/testcase.h>
#include <support/testgatherer.h>
#include <tul-util-gui/filesystemmodel/requestqueue_p.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <filesystem>

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
                    lines += "updates %1 %2"_s.arg(directory).arg(files.size());
                    infos += files;
                });
        connect(gatherer, &RemoteFileInfoGatherer::newListOfFiles, this,
                [this](const QString &directory, const QStringList &names) {
                    lines += "list %1 %2"_s.arg(directory).arg(names.size());
                });
        connect(gatherer, &RemoteFileInfoGatherer::directoryLoaded, this,
                [this](const QString &directory) { lines += "loaded "_s + directory; });
    }

    bool hasLoaded(int count = 1) const { return lines.filter("loaded"_s).size() >= count; }

    QStringList lines;
    Updates infos;
};

void makeFiles(const QString &folder, int count)
{
    for (int i = 0; i < count; ++i) {
        QFile file("%1/f%2"_s.arg(folder).arg(i));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
}

} // namespace

class tst_RemoteFileInfoGatherer : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void equalRequestsAreFoldedUnlessOnlyTheOldestIsEqual();
    void aListingComesInBatchesThenItsNamesThenItsEnd();
    void aBatchGoesOutWhenASecondHasPassed();
    void drivesComeOneByOneFromTheLast();
    void filesAndDoubleSlashesAreNotWatched();
    void updateFileSplitsAtTheLastSlash();
    void listedDirectoriesAreWatchedOnceUntilRemoved();
    void whatChangesBeforeTheWatchIsThereIsListed();
    void stoppingCutsTheListingShortAndDropsTheQueue();
};

void tst_RemoteFileInfoGatherer::equalRequestsAreFoldedUnlessOnlyTheOldestIsEqual()
{
    RequestQueue queue;
    const QString a = "a"_s;
    QVERIFY(queue.add(a, {}) && queue.add(a, {})); // the oldest is not compared
    QVERIFY(!queue.add(a, {}));
    QVERIFY(queue.add(a, {"x"_s, "y"_s}) && queue.add(a, {"y"_s, "x"_s}));
    QVERIFY(!queue.add(a, {"x"_s, "y"_s}));
    QVERIFY(queue.take().files.isEmpty());
    QVERIFY(queue.add(a, {}) && !queue.add(a, {})); // the second has become the oldest
    QVERIFY(queue.take().files.isEmpty());
    QCOMPARE(queue.take().files.first(), "x"_s);
}

void tst_RemoteFileInfoGatherer::aListingComesInBatchesThenItsNamesThenItsEnd()
{
    const struct {
        bool isServed;
        int files; // besides "." and ".."; -1 for a missing directory
        const char *expected; // with D for the directory
    } cases[] = {{false, 248, "updates D 101,list D 250,updates D 149,loaded D"},
                 {false, 98, "list D 100,updates D 100,loaded D"},
                 {false, 99, "updates D 101,list D 101,loaded D"},
                 {true, 1, "list D 3,updates D 3,loaded D"},
                 {false, -1, "loaded D"},
                 {true, -1, "loaded D"}};
    for (const auto &each : cases) {
        const FaultyFolder folder;
        makeFiles(folder.local(), each.files);
        const QString directory
            = (each.isServed ? "remote:"_s : folder.local()) + (each.files < 0 ? "/none"_s : ""_s);
        RemoteFileInfoGatherer gatherer;
        const SignalLog log(&gatherer);
        gatherer.list(directory);
        QTRY_VERIFY(log.hasLoaded());
        QCOMPARE(log.lines.join(QLatin1Char(',')),
                 QString::fromUtf8(each.expected).replace(QLatin1Char('D'), directory));
    }
}

void tst_RemoteFileInfoGatherer::aBatchGoesOutWhenASecondHasPassed()
{
    TestGatherer gatherer{QString()};
    const SignalLog log(&gatherer);
    Updates waiting;
    bool isFirst = true;
    QElapsedTimer base; // one that has run since the machine started
    base.start();
    const auto fetch = [&] { gatherer.fetch(QFileInfo("/"_s), base, isFirst, waiting, "p"_s); };
    fetch();
    QTRY_VERIFY(base.hasExpired(1001));
    fetch();
    QVERIFY(waiting.isEmpty() && !isFirst && !base.hasExpired(1000));
    for (int i = 0; i < 150; ++i)
        fetch();
    QCOMPARE(waiting.size(), 150); // only the first batch goes by size
    QCOMPARE(log.lines, QStringList{"updates p 2"_s});
}

void tst_RemoteFileInfoGatherer::drivesComeOneByOneFromTheLast()
{
    RemoteFileInfoGatherer gatherer;
    const SignalLog log(&gatherer);
    gatherer.fetchExtendedInformation(QString(), {"/usr"_s, "/tmp"_s});
    gatherer.list(QString());
    QTRY_COMPARE(log.infos.size(), 2 + QDir::drives().size());
    QCOMPARE(log.infos.at(0).first + log.infos.at(1).first, "/tmp/usr"_s);
    QCOMPARE(log.infos.last().first, QDir::drives().constFirst().absoluteFilePath());
    QVERIFY(!log.hasLoaded());
    QCOMPARE(log.lines.first(), "updates  1"_s);
}

void tst_RemoteFileInfoGatherer::filesAndDoubleSlashesAreNotWatched()
{
    const QTemporaryDir folder;
    makeFiles(folder.path(), 3);
    TestGatherer gatherer(folder.path());
    const SignalLog log(&gatherer);
    gatherer.fetchExtendedInformation(folder.path(), {"f2"_s, "none"_s});
    QTRY_VERIFY(log.hasLoaded());
    QCOMPARE(log.lines,
             (QStringList{"updates %1 2"_s.arg(folder.path()), "loaded "_s + folder.path()}));
    QCOMPARE(log.infos.at(0).second.filePath(), folder.path() + "/f2"_s);
    QVERIFY(!log.infos.at(1).second.exists());
    gatherer.RemoteFileInfoGatherer::fetchExtendedInformation(QLatin1Char('/') + folder.path(), {});
    QTRY_VERIFY(log.hasLoaded(2));
    QCOMPARE(log.infos.size(), 2 + 5);
    QCOMPARE(gatherer.added.available(), 0);
}

void tst_RemoteFileInfoGatherer::updateFileSplitsAtTheLastSlash()
{
    TestGatherer gatherer{QString()};
    gatherer.works = false;
    for (const QString &path : {"remote:/a/b.txt"_s, "/a\\b/c"_s, "remote:"_s, "/x"_s})
        gatherer.updateFile(path);
    QCOMPARE(gatherer.requests,
             (QStringList{"remote:/a|b.txt"_s, "/a\\b|c"_s, "remote:|"_s, "|x"_s}));
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
    loads = log.lines.filter("loaded"_s).size();

    gatherer.removePath(folder.path());
    gatherer.removePath(QString()); // not worth a warning
    listAgain();
    QCOMPARE(gatherer.added.available(), 2);
    gatherer.clear();
    gatherer.clear();
    gatherer.list(folder.path());
    QVERIFY(gatherer.added.tryAcquire(3, 5000));
    gatherer.list(folder.path() + "/none"_s);
    QVERIFY(gatherer.added.tryAcquire(1, 5000)); // the first is on its way to this thread
    gatherer.removePath(folder.path());
    QTRY_VERIFY(log.hasLoaded(loads + 2));
    gatherer.list(folder.path());
    QTRY_VERIFY(log.hasLoaded(loads + 3));
    QCOMPARE(gatherer.added.available(), 1); // was not watched
}

void tst_RemoteFileInfoGatherer::whatChangesBeforeTheWatchIsThereIsListed()
{
    const QTemporaryDir folder;
    std::error_code error; // times of one moment may be equal
    std::filesystem::last_write_time(folder.path().toStdString(), {}, error);
    QVERIFY(!error);
    QSemaphore listed;
    RemoteFileInfoGatherer gatherer;
    const SignalLog log(&gatherer);
    connect(
        &gatherer, &RemoteFileInfoGatherer::directoryLoaded, &gatherer, [&] { listed.release(); },
        Qt::DirectConnection);
    gatherer.list(folder.path());
    QVERIFY(listed.tryAcquire(1, 5000));
    makeFiles(folder.path(), 1); // the event loop has not run since
    QTRY_VERIFY(log.hasLoaded(2));
    QCOMPARE(log.infos.size(), 2 + 3);
}

void tst_RemoteFileInfoGatherer::stoppingCutsTheListingShortAndDropsTheQueue()
{
    FaultyFolder folder;
    folder.endless = true;
    folder.delayMilliseconds = 1;
    RemoteFileInfoGatherer gatherer;
    const SignalLog log(&gatherer);
    gatherer.list("remote:"_s);
    gatherer.list(folder.local());
    QTRY_VERIFY(!log.lines.isEmpty());
    gatherer.setResolveSymlinks(true);
    QVERIFY(!gatherer.resolveSymlinks());
    gatherer.stop();
    gatherer.stop();
    QVERIFY(gatherer.isFinished());
    gatherer.list(folder.local());
    QTRY_VERIFY(log.hasLoaded());
    QCOMPARE(log.lines.last(), "loaded remote:"_s);
}

QTEST_MAIN(tst_RemoteFileInfoGatherer)

#include "tst_remotefileinfogatherer.moc"
