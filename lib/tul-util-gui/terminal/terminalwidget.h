#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QProcess>
#include <QTextEdit>

#include <memory>

class Terminal;

/// Shows what arrives in a Terminal, and sends what the user types and pastes back into it.
///
/// For the output of programs that print lines and ask questions, such as compilers, debuggers and
/// interpreters. It obeys only backspace and delete, which move the place of the output one
/// character to the left, and the escape sequence that erases the rest of a line; it is no
/// emulation for programs that paint the screen. Text can be selected and copied as in any text
/// edit; all other keys belong to the program, and so does text from input methods. What is typed
/// without Ctrl, Alt and Meta never triggers the host's shortcuts, and the tab keys do not move the
/// focus unless tabChangesFocus is set: the keyboard leaves by shortcuts with such a modifier. A
/// child widget that a host lays over the text, to search for example, has its own keys; those
/// that it leaves alone are not typed. The font is that which the widget inherits: findGoodFont()
/// offers one of a fixed pitch.
///
/// Much output is shown at once, but no more than can be done without a noticeable delay; the rest
/// follows from the event loop, in order. The picture is renewed 60 times a second at most, and
/// scrolls along while the view is at the bottom. The costs of output do not grow with the text
/// that is there already, of which each character takes about five bytes; maximumBlockCount limits
/// it.
///
/// *Units*: the size hint holds the window size of the terminal, in cells as wide as an "M"; 80
/// columns and 12 rows without a terminal.
///
/// *Ownership*: the terminal is not owned. Terminal and widget may be destroyed in any order; what
/// has arrived stays to be read.
///
/// *Threads*: GUI thread only.
///
/// *Errors*: without a terminal typed keys are ignored, and pasting does nothing. Control bytes
/// that have no meaning here, tabs and the bytes from 128 to 255 leave no trace. The document and
/// its layout belong to the widget; with another document it shows no output any more.
///
/// *By design*: a carriage return begins a new line, and with a line feed after it only one, even
/// if they arrive separately. Text that comes after a backspace is inserted, not written over what
/// is there. An escape sequence is three bytes long, whatever it was meant to be. A terminal that
/// has been replaced is no longer read, but its starts and finishes are still shown.
class TUL_UTIL_GUI_EXPORT TerminalWidget : public QTextEdit
{
    Q_OBJECT
    Q_PROPERTY(int maximumBlockCount READ maximumBlockCount WRITE setMaximumBlockCount)

public:
    explicit TerminalWidget(QWidget *parent = nullptr);
    explicit TerminalWidget(Terminal *terminal, QWidget *parent = nullptr);
    ~TerminalWidget() override;

    /// The terminal that is read and written, or null. What waits in it already is read together
    /// with what arrives next. Setting the same one again shows its starts and finishes once more
    /// each time.
    Terminal *terminal() const;
    void setTerminal(Terminal *terminal);

    /// How many lines of output, wrapped or not, are kept; older ones are removed. 0, the default,
    /// keeps all. A view that is not at the bottom stays with the lines that it shows, while they
    /// last. Of what a program prints faster than it can be shown, lines that would be too old by
    /// then are left out. Without a limit all of it waits in memory: a host that must bound that
    /// reads the program's output in portions, with QProcess::setReadBufferSize() set, so that the
    /// program waits.
    int maximumBlockCount() const;
    void setMaximumBlockCount(int count);

    /// The size of the terminal's window with the margins, the frame and the scroll bar. Both are
    /// the same.
    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

public Q_SLOTS:
    /// Removes all that has arrived so far, also what is not shown yet. The next output begins at
    /// the top. QTextEdit::clear(), which this hides, leaves what is not shown yet.
    void clear();

Q_SIGNALS:
    /// Emitted when the user typed a return or enter key, before it is written to the terminal.
    void returnPressed();

protected:
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    bool event(QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private Q_SLOTS:
    void windowSizeChanged(int columns, int rows);
    void terminalReadyRead();
    void processFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void processStarted(const QString &commandLine);
    void pasteFromClipboard();

private:
    class Output;

    void init();
    void appendBytes(const char *bytes, int length);
    void appendString(const QString &text);
    void appendMessage(const QString &text);
    void showSome();
    void showNext(Output *output);
    void backlogGrew();
    void skipOld();
    void removeOldBlocks(bool isFollowing);
    void renewPicture();

    const std::unique_ptr<class TerminalWidgetPrivate> d;
};
