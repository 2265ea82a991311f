// Makes a model, lists, stops watching and destroys it, again and again, while the directories
// change under it: for tools that look for data races and for misuse of memory.

#include <support/faultyfolder.h>
#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileIconProvider>

#include <cstdio>

namespace
{

const int defaultRounds = 200;

// Makes and removes some files of each directory, which its watcher reports.
void churn(const FaultyFolder &folder, int round)
{
    for (const char *const directory : {"a/", "a/b/", "c/"}) {
        const QString base = QString::fromLatin1(directory);
        for (int i = 0; i < 4; ++i)
            folder.make(base + QString::number(round * 4 + i), "x");
        QFile::remove(folder.local(base + QString::number(round * 4 - 2)));
    }
}

void pass(int milliseconds)
{
    QElapsedTimer time;
    time.start();
    do {
        QCoreApplication::processEvents();
    } while (!time.hasExpired(milliseconds));
}

void runRound(const FaultyFolder &folder, int round)
{
    RemoteFileSystemModel model;
    auto *const gatherer = model.findChild<RemoteFileInfoGatherer *>();
    gatherer->setIconProvider(nullptr); // icons want a window system
    model.setRootPath(folder.local(QStringLiteral("a")));
    model.fetchMore(model.index(folder.local(QStringLiteral("a/b"))));
    churn(folder, round);
    pass(round % 7);
    gatherer->removePath(folder.local(QStringLiteral("a")));
    gatherer->list(folder.local(QStringLiteral("c")));
    gatherer->list(QStringLiteral("remote:/c"));
    churn(folder, round);
    pass(round % 3);
    gatherer->clear();
    model.setRootPath(QStringLiteral("remote:"));
    model.refresh(model.index(QStringLiteral("remote:/a")));
    if (round % 2 == 0)
        pass(3);
    gatherer->list(folder.local(QStringLiteral("a")));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const FaultyFolder folder;
    folder.make(QStringLiteral("a/b/"));
    folder.make(QStringLiteral("c/"));
    const int rounds = argc > 1 ? QByteArray(argv[1]).toInt() : defaultRounds;
    for (int round = 0; round < rounds; ++round)
        runRound(folder, round);
    std::printf("%d rounds\n", rounds);
    return 0;
}
