// The file system model beside the toolkit's on the same directories in the same run, from setting
// the root path until all rows are there and sorted: files of this machine, alone and with a sorted
// tree view, and files behind an engine that takes a millisecond for each question.
//
// all_ms: until all rows are there. cpu_ms: of the GUI thread, until nothing is left to do.
// stall_ms: the longest time for which the event loop was kept from other events. calls: questions
// to the engine on the GUI thread. bytes: of memory for a file.

#include <backends/folder/folderengine.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <map>
#include <memory>

#include <malloc.h>

namespace
{

// Notes the longest delivery of one event.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        if (m_depth > 0 || QThread::currentThread() != thread())
            return QApplication::notify(receiver, event);
        ++m_depth;
        QElapsedTimer time;
        time.start();
        const bool result = QApplication::notify(receiver, event);
        longest = std::max(longest, time.nsecsElapsed());
        --m_depth;
        return result;
    }

    qint64 longest = 0; // nanoseconds

private:
    int m_depth = 0;
};

Application *application = nullptr;
std::atomic<int> guiCalls{0};

double threadMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// A folder with so many files, made once for all benchmarks.
QString folderOf(int files)
{
    static std::map<int, std::unique_ptr<QTemporaryDir>> folders;
    std::unique_ptr<QTemporaryDir> &folder = folders[files];
    if (folder)
        return folder->path();
    folder = std::make_unique<QTemporaryDir>();
    for (int i = 0; i < files; ++i) {
        const auto number = static_cast<int>(i * 7919LL % files);
        QFile file(folder->filePath(QStringLiteral("file %1.txt").arg(number)));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no room for the files");
    }
    return folder->path();
}

template<typename Ready> void runUntil(const Ready &isReady)
{
    while (!isReady())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// Until nothing has happened for a while.
void settle()
{
    QTimer quiet;
    quiet.setSingleShot(true);
    quiet.start(300);
    runUntil([&] { return !quiet.isActive(); });
}

template<typename Model>
void listOnce(benchmark::State &state, const QString &path, int files, bool hasView)
{
    settle();
    malloc_trim(0);
    const auto memoryBefore = static_cast<double>(mallinfo2().uordblks);
    const double cpuBefore = threadMilliseconds();
    application->longest = 0;
    guiCalls = 0;

    Model model;
    QTreeView view;
    if (hasView) {
        view.setModel(&model);
        view.setSortingEnabled(true);
        view.sortByColumn(0, Qt::AscendingOrder);
        view.show();
    }
    QElapsedTimer time;
    time.start();
    const QPersistentModelIndex root = model.setRootPath(path);
    if (hasView)
        view.setRootIndex(root);
    runUntil([&] { return model.rowCount(root) >= files; });
    const double seconds = static_cast<double>(time.nsecsElapsed()) / 1e9;
    settle();

    state.SetIterationTime(seconds);
    state.counters["all_ms"] = seconds * 1e3;
    state.counters["cpu_ms"] = threadMilliseconds() - cpuBefore;
    state.counters["stall_ms"] = static_cast<double>(application->longest) / 1e6;
    state.counters["calls"] = guiCalls.load();
    state.counters["bytes"] = (static_cast<double>(mallinfo2().uordblks) - memoryBefore) / files;
}

template<typename Model> void local(benchmark::State &state)
{
    const auto files = static_cast<int>(state.range(0));
    const QString path = folderOf(files);
    for (auto _ : state)
        listOnce<Model>(state, path, files, state.range(1) != 0);
}

template<typename Model> void served(benchmark::State &state)
{
    const auto files = static_cast<int>(state.range(0));
    const Qt::HANDLE guiThread = QThread::currentThreadId();
    FolderEngine::Hooks hooks;
    hooks.admit = [guiThread](FolderEngine::Call, const QString &) {
        if (QThread::currentThreadId() == guiThread)
            ++guiCalls;
        QThread::usleep(1000);
        return true;
    };
    const FolderEngine engine(folderOf(files), QStringLiteral("remote:"), hooks);
    for (auto _ : state)
        listOnce<Model>(state, QStringLiteral("remote:"), files, false);
}

// What reading the directory and the status of its files takes at least.
void readAndStat(benchmark::State &state)
{
    const QString path = folderOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QDirIterator files(path, QDir::AllEntries | QDir::Hidden | QDir::System);
        qint64 sum = 0;
        while (files.hasNext()) {
            files.next();
            sum += files.fileInfo().size();
        }
        benchmark::DoNotOptimize(sum);
    }
}

BENCHMARK(readAndStat)->Arg(20000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(local, QFileSystemModel)
    ->ArgNames({"files", "view"})
    ->ArgsProduct({{20000, 100000}, {0, 1}})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(local, RemoteFileSystemModel)
    ->ArgNames({"files", "view"})
    ->ArgsProduct({{20000, 100000}, {0, 1}})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(served, QFileSystemModel)
    ->Arg(1000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(served, RemoteFileSystemModel)
    ->Arg(1000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    Application app(argc, argv);
    application = &app;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
