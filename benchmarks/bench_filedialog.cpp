// The file dialog beside the toolkit's own one: making and showing it, entering a large directory
// and typing a name in it. The first dialog of a process is measured by a run of its own:
//   bench_filedialog --benchmark_filter='first.*Remote'
#include <tul-util-gui/filedialog/remotefiledialogbase.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <memory>

namespace
{

constexpr int manyFiles = 20000;

/// A folder with many files, made once, and an empty one.
struct Folders {
    Folders()
    {
        const QDir dir(folder.path());
        dir.mkdir(QStringLiteral("large"));
        dir.mkdir(QStringLiteral("empty"));
        for (int i = 0; i < manyFiles; ++i) {
            QFile file(
                dir.filePath(QStringLiteral("large/file%1.txt").arg(i, 5, 10, QLatin1Char('0'))));
            file.open(QIODevice::WriteOnly);
        }
    }
    QString large() const { return folder.filePath(QStringLiteral("large")); }
    QString empty() const { return folder.filePath(QStringLiteral("empty")); }

    const QTemporaryDir folder;
};

const Folders &folders()
{
    static const Folders made;
    return made;
}

template<class Dialog> std::unique_ptr<Dialog> made(const QString &directory)
{
    auto dialog = std::make_unique<Dialog>(nullptr, QString(), directory);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    return dialog;
}

template<class Dialog> void firstDialog(benchmark::State &state)
{
    for (auto _ : state) {
        const auto dialog = made<Dialog>(QDir::rootPath());
        dialog->show();
        QCoreApplication::processEvents();
    }
}

template<class Dialog> void constructDialog(benchmark::State &state)
{
    for (auto _ : state) {
        auto dialog = made<Dialog>(folders().empty());
        state.PauseTiming();
        dialog.reset();
        state.ResumeTiming();
    }
}

template<class Dialog> void constructAndShowDialog(benchmark::State &state)
{
    for (auto _ : state) {
        auto dialog = made<Dialog>(folders().empty());
        dialog->show();
        QCoreApplication::processEvents();
        state.PauseTiming();
        dialog.reset();
        state.ResumeTiming();
    }
}

template<class Dialog> int rowCount(const Dialog &dialog)
{
    const auto *const view = dialog.template findChild<QListView *>(QStringLiteral("listView"));
    return view->model()->rowCount(view->rootIndex());
}

/// Waits until all rows are there and nothing is left to do; the longest time in which no event got
/// its turn, in milliseconds.
template<class Dialog> double waitForRows(const Dialog &dialog)
{
    QElapsedTimer sinceTurn;
    QTimer turns;
    qint64 longest = 0;
    QObject::connect(&turns, &QTimer::timeout, [&] {
        longest = qMax(longest, sinceTurn.nsecsElapsed());
        sinceTurn.restart();
    });
    sinceTurn.start();
    turns.start(0);
    QElapsedTimer sinceAll;
    while (!sinceAll.isValid() || sinceAll.elapsed() < 300) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (!sinceAll.isValid() && rowCount(dialog) == manyFiles)
            sinceAll.start();
    }
    return static_cast<double>(longest) / 1e6;
}

template<class Dialog> void enterLargeDirectory(benchmark::State &state)
{
    double longest = 0;
    for (auto _ : state) {
        const auto dialog = made<Dialog>(folders().empty());
        dialog->setViewMode(static_cast<QFileDialog::ViewMode>(state.range(0)));
        dialog->show();
        QCoreApplication::processEvents();
        dialog->setDirectory(folders().large());
        longest = qMax(longest, waitForRows(*dialog));
    }
    state.counters["longest_gap_ms"] = longest;
}

template<class Dialog> void typeIntoNameEdit(benchmark::State &state)
{
    const auto dialog = made<Dialog>(folders().large());
    dialog->show();
    waitForRows(*dialog);
    auto *const edit = dialog->template findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    edit->setFocus();
    const QString name = QStringLiteral("file12345");
    int typed = 0;
    qint64 longest = 0;
    for (auto _ : state) {
        if (typed == name.size()) {
            edit->clear();
            typed = 0;
        }
        const QElapsedTimer timer = [] {
            QElapsedTimer t;
            t.start();
            return t;
        }();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QString(name.at(typed++)));
        QCoreApplication::sendEvent(edit, &press);
        longest = qMax(longest, timer.nsecsElapsed());
    }
    state.counters["longest_ms"] = static_cast<double>(longest) / 1e6;
}

} // namespace

BENCHMARK_TEMPLATE(firstDialog, RemoteFileDialogBase)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(firstDialog, QFileDialog)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(constructDialog, RemoteFileDialogBase)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(constructDialog, QFileDialog)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(constructAndShowDialog, RemoteFileDialogBase)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(constructAndShowDialog, QFileDialog)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(enterLargeDirectory, RemoteFileDialogBase)
    ->ArgName("list")
    ->Arg(1)
    ->Arg(0)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(enterLargeDirectory, QFileDialog)
    ->ArgName("list")
    ->Arg(1)
    ->Arg(0)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(typeIntoNameEdit, RemoteFileDialogBase)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(typeIntoNameEdit, QFileDialog)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    folders(); // not within the first benchmark
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
