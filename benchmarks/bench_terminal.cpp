// The terminal display beside the toolkit's text edits, fed with the same bytes in the same reads
// of 4 KiB, each followed by a turn of the event loop, in a window that is shown. The text edits
// are set up as simply as a host would: no undo, insertion at the end, and scrolled along.
//
// Counters: the longest turn in milliseconds, and how many bytes of memory each byte shown has
// taken, from the resident size of the process. Memory that is taken first is not given back, so
// that figures of memory are right when one case is run alone:
// --benchmark_filter='lines/TerminalWidget/10$'.

#include <tul-util-gui/terminal/goodfont.h>
#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalwidget.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

namespace
{

constexpr int readSize = 4096;
constexpr int columns = 80;

// Output of a program, one line after the other.
using LineMaker = QByteArray (*)(int number);

QByteArray numbered(int number)
{
    return QByteArray::number(number).rightJustified(8, '0')
        + " the quick brown fox jumps over the lazy dog again an"; // 60 characters
}

QByteArray plainLine(int number)
{
    return numbered(number) + '\n';
}

QByteArray returnedLine(int number)
{
    return numbered(number) + "\r\n";
}

QByteArray escapedLine(int number)
{
    QByteArray line = numbered(number);
    for (int at = 50; at > 0; at -= 10)
        line.insert(at, "\x1b[m");
    return line + "x\b\x1b[K\n";
}

class Display
{
public:
    Display() = default;
    virtual ~Display() = default;
    Display(const Display &) = delete;
    Display &operator=(const Display &) = delete;
    virtual QWidget *widget() = 0;
    virtual void read(const QByteArray &bytes) = 0;
};

class OurDisplay : public Display
{
public:
    OurDisplay()
    {
        m_terminal.openMaster();
        m_widget.setTerminal(&m_terminal);
    }
    QWidget *widget() override { return &m_widget; }
    void read(const QByteArray &bytes) override { m_terminal.pushBytes(bytes); }

private:
    Terminal m_terminal;
    TerminalWidget m_widget;
};

// The last blocks are dropped again as the lines are counted.
class LimitedDisplay : public OurDisplay
{
public:
    LimitedDisplay() { qobject_cast<TerminalWidget *>(widget())->setMaximumBlockCount(10000); }
};

template<class Edit> class EditDisplay : public Display
{
public:
    EditDisplay()
    {
        m_edit.setReadOnly(true);
        m_edit.setUndoRedoEnabled(false);
        m_edit.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        if constexpr (std::is_same_v<Edit, QTextEdit>) {
            m_edit.setWordWrapMode(QTextOption::WrapAnywhere);
            m_edit.setLineWrapMode(QTextEdit::FixedColumnWidth);
            m_edit.setLineWrapColumnOrWidth(columns);
        }
    }
    QWidget *widget() override { return &m_edit; }
    void read(const QByteArray &bytes) override
    {
        QScrollBar *const bar = m_edit.verticalScrollBar();
        const bool follows = bar->value() + 1 >= bar->maximum();
        QTextCursor cursor(m_edit.document());
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(QString::fromLocal8Bit(bytes));
        if (follows)
            bar->setValue(bar->maximum());
    }

private:
    Edit m_edit;
};

qint64 residentBytes()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

template<class Shown> void feed(benchmark::State &state, LineMaker line)
{
    const qint64 wanted = state.range(0) * 1000 * 1000;
    QVector<QByteArray> reads;
    QByteArray waiting;
    for (qint64 made = 0, number = 0; made < wanted; made += readSize) {
        while (waiting.size() < readSize)
            waiting += line(static_cast<int>(number++));
        reads += waiting.left(readSize);
        waiting.remove(0, readSize);
    }
    qint64 longest = 0;
    qint64 taken = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto display = std::make_unique<Shown>();
        QWidget *const widget = display->widget();
        widget->setFont(findGoodFont(10));
        widget->resize(720, 400);
        widget->show();
        QCoreApplication::processEvents();
        const qint64 before = residentBytes();
        state.ResumeTiming();
        for (const QByteArray &read : qAsConst(reads)) {
            QElapsedTimer turn;
            turn.start();
            display->read(read);
            QCoreApplication::processEvents();
            longest = std::max(longest, turn.nsecsElapsed());
        }
        state.PauseTiming();
        taken = residentBytes() - before;
        display.reset();
        state.ResumeTiming();
    }
    const qint64 bytes = static_cast<qint64>(reads.size()) * readSize;
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * bytes);
    state.counters["longest_ms"] = static_cast<double>(longest) / 1e6;
    state.counters["memory_per_byte"] = static_cast<double>(taken) / static_cast<double>(bytes);
}

template<class Shown> void addCases(const std::string &name)
{
    const auto add = [&](const std::string &output, LineMaker line, int megabytes) {
        benchmark::RegisterBenchmark((output + '/' + name).c_str(), feed<Shown>, line)
            ->Arg(megabytes)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    };
    add("lines", plainLine, 10);
    add("lines", plainLine, 50);
    add("returns", returnedLine, 10);
    add("escapes", escapedLine, 10);
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    addCases<OurDisplay>("TerminalWidget");
    addCases<LimitedDisplay>("TerminalWidget of 10000 lines");
    addCases<EditDisplay<QTextEdit>>("QTextEdit");
    addCases<EditDisplay<QPlainTextEdit>>("QPlainTextEdit");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
