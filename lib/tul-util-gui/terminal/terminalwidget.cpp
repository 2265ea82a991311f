#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalbacklog_p.h>
#include <tul-util-gui/terminal/terminalinterpreter_p.h>
#include <tul-util-gui/terminal/terminalwidget.h>
#include <tul-util-gui/terminal/textgridlayout_p.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QStyle>
#include <QTextBlock>
#include <QTextCodec>
#include <QTextCursor>
#include <QTextDecoder>
#include <QTimer>
#include <QVector>

#include <algorithm>

namespace
{

constexpr int defaultColumns = 80;
constexpr int defaultRows = 12;
constexpr int frameMilliseconds = 16;

// Work is counted in bytes: what comes once for a line or a control byte takes as long as some
// thirty bytes of text. One pass of the event loop shows this much, a few milliseconds' worth.
constexpr int stepCost = 32;
constexpr int passCost = 1 << 18;
constexpr int shapingCost = 4; // of a character

constexpr char interrupt = 3;
constexpr char deletion = 127;

int standardCellWidth(const QWidget *widget)
{
    return widget->fontMetrics().horizontalAdvance(QLatin1Char('M'));
}

bool isPlain(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) {
        const ushort code = character.unicode();
        return (code >= ' ' && code < deletion) || code == '\n' || code == '\r';
    });
}

bool isInterrupt(const QKeyEvent *event)
{
    return event->modifiers() == Qt::MetaModifier && event->key() == Qt::Key_C;
}

/// Whether a key is for the widget even if the host has a shortcut with it.
bool isBeforeShortcuts(QKeyEvent *event)
{
    constexpr Qt::KeyboardModifiers typing
        = Qt::ShiftModifier | Qt::KeypadModifier | Qt::GroupSwitchModifier;
    return (!event->text().isEmpty() && (event->modifiers() & ~typing) == 0) || isInterrupt(event)
        || event->matches(QKeySequence::Copy) || event->matches(QKeySequence::Paste)
        || event->matches(QKeySequence::SelectAll);
}

/// Whether keys are typed into a widget that a host has laid over the display, such as a field to
/// search with. What that one leaves alone comes here, and is no input of the program.
bool isForChild(const QWidget *display)
{
    const QWidget *const focus = QApplication::focusWidget();
    return focus && focus != display && display->isAncestorOf(focus);
}

} // namespace

class TerminalWidgetPrivate
{
public:
    TerminalInterpreter interpreter; // keeps the tail of an escape sequence that was cut off
    QTextCursor outputCursor; // where output goes; not that of the user
    QPointer<Terminal> terminal;
    QVector<QPointer<Terminal>> heard; // that one, and those that it has replaced
    const std::unique_ptr<QTextDecoder> decoder{QTextCodec::codecForLocale()->makeDecoder()};
    QPointer<QMenu> contextMenu; // while it is shown
    QAction *pasteAction = nullptr;

    QPointer<TextGridLayout> layout; // of the document
    int maximumBlockCount = 0; // 0 for no limit
    int standardCursorWidth = 0; // followed by the cursor width while nobody sets another one

    TerminalBacklog backlog; // not shown yet
    QTimer backlogTimer; // runs while some of it is left for the next pass
    bool isShowing = false;
    int outputDepth = 0; // of nested Output objects
    bool isOutputPlain = true; // as long as the first of them lives

    QTimer frameTimer; // runs for one frame after the picture was renewed
    bool isPictureOld = false;
};

/// The toolkit lays out, scrolls and repaints when the last of these is gone: output is added with
/// one of them alive. As a sink it counts what the output costs.
class TerminalWidget::Output : public TerminalSink
{
public:
    /// Takes bytes until they have cost `budget`.
    explicit Output(TerminalWidget *widget, int budget = passCost);
    ~Output() override;
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    int cost() const { return m_cost; }
    void addCost(int cost) { m_cost += cost; }

    void plainBytes(const char *data, int length) override;
    void moveLeft() override;
    void eraseToEndOfLine() override;
    bool isFull() const override { return m_cost >= m_budget; }

    /// To be called before the text is changed at the output cursor.
    void noteChange(bool isPlain = true);

private:
    TerminalWidget *const m_widget;
    TerminalWidgetPrivate *const d;
    const int m_budget;
    bool m_isFollowing = false;
    int m_cost = 0;
};

TerminalWidget::Output::Output(TerminalWidget *widget, int budget)
    : m_widget(widget)
    , d(widget->d.get())
    , m_budget(budget)
{
    if (d->outputDepth++ > 0)
        return;
    const QScrollBar *const bar = widget->verticalScrollBar();
    m_isFollowing = bar->value() + 1 >= bar->maximum();
    if (d->layout) {
        d->layout->setUpdatesHeld(true);
        d->layout->releaseLines();
    }
    d->isOutputPlain = true;
    d->outputCursor.beginEditBlock();
}

TerminalWidget::Output::~Output()
{
    if (d->outputDepth == 1) {
        if (d->layout)
            d->layout->setNextChangePlain(d->isOutputPlain);
        d->outputCursor.endEditBlock();
        if (d->layout)
            d->layout->setNextChangePlain(false);
        m_widget->removeOldBlocks(m_isFollowing);
        if (m_isFollowing)
            m_widget->verticalScrollBar()->setValue(m_widget->verticalScrollBar()->maximum());
        if (d->layout)
            d->layout->setUpdatesHeld(false);
        m_widget->renewPicture();
    }
    --d->outputDepth;
}

void TerminalWidget::Output::plainBytes(const char *data, int length)
{
    m_cost += stepCost * static_cast<int>(1 + std::count(data, data + length, '\n'));
    m_widget->appendBytes(data, length);
}

void TerminalWidget::Output::moveLeft()
{
    m_cost += stepCost;
    const int position = d->outputCursor.position() - 1;
    if (position < 0)
        return;
    // The toolkit lays out the block to find where the character before the cursor begins.
    const QChar character = m_widget->document()->characterAt(position);
    if (character < QLatin1Char(deletion) || character == QChar::ParagraphSeparator) {
        d->outputCursor.setPosition(position);
        return;
    }
    m_cost += shapingCost * d->outputCursor.block().length();
    d->outputCursor.movePosition(QTextCursor::Left);
}

void TerminalWidget::Output::eraseToEndOfLine()
{
    m_cost += stepCost;
    if (d->outputCursor.atBlockEnd() || !d->layout)
        return;
    QTextCursor rest = d->outputCursor;
    int shaped = 0;
    rest.setPosition(d->layout->lineEnd(rest.position(), &shaped), QTextCursor::KeepAnchor);
    m_cost += shapingCost * shaped;
    noteChange();
    rest.removeSelectedText();
}

void TerminalWidget::Output::noteChange(bool isPlain)
{
    // The layout does not know the characters of a long block, which may become a short one.
    if (!isPlain || TextGridLayout::isLong(d->outputCursor.block()))
        d->isOutputPlain = false;
}

TerminalWidget::TerminalWidget(QWidget *parent)
    : QTextEdit(parent)
    , d(std::make_unique<TerminalWidgetPrivate>())
{
    init();
}

TerminalWidget::TerminalWidget(Terminal *terminal, QWidget *parent)
    : TerminalWidget(parent)
{
    setTerminal(terminal);
}

TerminalWidget::~TerminalWidget()
{
    // A child of this widget may end a program when the base destructor deletes it.
    for (const QPointer<Terminal> &terminal : qAsConst(d->heard)) {
        if (terminal)
            disconnect(terminal, nullptr, this, nullptr);
    }
}

void TerminalWidget::init()
{
    setWordWrapMode(QTextOption::WrapAnywhere);
    setLineWrapMode(QTextEdit::FixedColumnWidth);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setReadOnly(true);
    setUndoRedoEnabled(false);
    d->layout = new TextGridLayout(this);
    document()->setDocumentLayout(d->layout);
    setAttribute(Qt::WA_InputMethodEnabled); // which the text edit wants only to be edited
    d->standardCursorWidth = standardCellWidth(this);
    setCursorWidth(d->standardCursorWidth); // kept by the layout
    setWindowTitle(tr("Terminal"));
    d->outputCursor = QTextCursor(document());

    d->pasteAction = new QAction(tr("&Paste"), this);
    d->pasteAction->setShortcuts(QKeySequence::Paste);
    connect(d->pasteAction, &QAction::triggered, this, &TerminalWidget::pasteFromClipboard);

    // In a long block, which has no text layout, the toolkit does not find where the selection is.
    // Output renews the picture anyway.
    connect(this, &QTextEdit::selectionChanged, this, [this] {
        if (d->outputDepth == 0)
            viewport()->update();
    });

    d->backlogTimer.setSingleShot(true);
    connect(&d->backlogTimer, &QTimer::timeout, this, &TerminalWidget::showSome);
    d->frameTimer.setSingleShot(true);
    d->frameTimer.setTimerType(Qt::PreciseTimer);
    connect(&d->frameTimer, &QTimer::timeout, this, [this] {
        if (d->isPictureOld)
            renewPicture();
    });
}

Terminal *TerminalWidget::terminal() const
{
    return d->terminal;
}

void TerminalWidget::setTerminal(Terminal *terminal)
{
    // By design: only reading ends. A host that swaps terminals still shows how the program in the
    // old one ends.
    if (d->terminal)
        disconnect(d->terminal, &Terminal::readyRead, this, &TerminalWidget::terminalReadyRead);
    d->terminal = terminal;
    updateMicroFocus();
    if (!terminal)
        return;
    d->heard.removeAll(nullptr);
    if (!d->heard.contains(terminal))
        d->heard.append(terminal);
    connect(terminal, &Terminal::windowSizeChanged, this, &TerminalWidget::windowSizeChanged);
    connect(terminal, &Terminal::readyRead, this, &TerminalWidget::terminalReadyRead);
    connect(terminal, &Terminal::processStarted, this, &TerminalWidget::processStarted);
    connect(terminal, &Terminal::processFinished, this, &TerminalWidget::processFinished);
    windowSizeChanged(terminal->columns(), terminal->rows());
}

int TerminalWidget::maximumBlockCount() const
{
    return d->maximumBlockCount;
}

void TerminalWidget::setMaximumBlockCount(int count)
{
    d->maximumBlockCount = std::max(count, 0);
    skipOld();
    const Output trimmed(this);
}

QSize TerminalWidget::minimumSizeHint() const
{
    ensurePolished();
    const int margins = 2 * static_cast<int>(document()->documentMargin());
    const long long columns = d->terminal ? d->terminal->columns() : defaultColumns;
    const long long rows = d->terminal ? d->terminal->rows() : defaultRows;
    int extra = 2 * frameWidth();
    // By design: in the height as well, although only the vertical scroll bar is shown.
    if (frameStyle() != 0
        && style()->styleHint(QStyle::SH_ScrollView_FrameOnlyAroundContents, nullptr, this))
        extra += style()->pixelMetric(QStyle::PM_ScrollView_ScrollBarSpacing, nullptr, this);

    // Kept within what a widget can be.
    const long long width = extra + verticalScrollBar()->sizeHint().width() + margins
        + standardCellWidth(this) * columns;
    const long long height = margins + extra + fontMetrics().height() * rows;
    return {static_cast<int>(std::clamp(width, 0LL, static_cast<long long>(QWIDGETSIZE_MAX))),
            static_cast<int>(std::clamp(height, 0LL, static_cast<long long>(QWIDGETSIZE_MAX)))};
}

QSize TerminalWidget::sizeHint() const
{
    return minimumSizeHint();
}

void TerminalWidget::clear()
{
    d->backlog.skipAll(d->interpreter);
    d->backlogTimer.stop();
    QTextEdit::clear();
}

void TerminalWidget::windowSizeChanged(int columns, int /*rows*/)
{
    setLineWrapColumnOrWidth(columns);
    updateGeometry();
}

void TerminalWidget::terminalReadyRead()
{
    if (!d->terminal)
        return;
    // One call ends at the longest byte array that there can be.
    for (QByteArray bytes = d->terminal->readAll(); !bytes.isEmpty();
         bytes = d->terminal->readAll())
        d->backlog.addBytes(bytes);
    backlogGrew();
}

void TerminalWidget::backlogGrew()
{
    skipOld();
    if (!d->backlogTimer.isActive())
        showSome();
}

/// What would be removed again as too old is not shown at all, nor kept until then.
void TerminalWidget::skipOld()
{
    if (d->maximumBlockCount > 0 && !d->isShowing)
        d->backlog.skipOld(d->interpreter, d->maximumBlockCount);
}

/// Shows what has arrived, in its order, and leaves to the next pass of the event loop what would
/// take too long.
void TerminalWidget::showSome()
{
    if (d->isShowing)
        return; // whoever was told of a change of the text has brought more
    d->isShowing = true;
    for (int budget = passCost; !d->backlog.isEmpty() && budget > 0;) {
        Output output(this, budget);
        while (!d->backlog.isEmpty() && !output.isFull())
            showNext(&output);
        budget -= output.cost();
    }
    d->isShowing = false;
    if (!d->backlog.isEmpty())
        d->backlogTimer.start(0);
}

/// Takes a piece of what has arrived, and shows as much of it as the output has room for.
void TerminalWidget::showNext(Output *output)
{
    const TerminalBacklog::Piece first = d->backlog.takeFirst();
    if (first.bytes.isEmpty()) {
        d->interpreter.interrupt();
        output->addCost(stepCost + first.message.size());
        appendString(first.message);
        return;
    }
    const int taken = d->interpreter.interpret(first.bytes, *output);
    output->addCost(taken);
    if (taken < first.bytes.size())
        d->backlog.putBack(first.bytes.mid(taken));
}

void TerminalWidget::appendBytes(const char *bytes, int length)
{
    const QString text = d->decoder->toUnicode(bytes, length);
    if (!text.isEmpty())
        appendString(text);
}

void TerminalWidget::appendString(const QString &text)
{
    Output output(this);
    output.noteChange(isPlain(text));
    d->outputCursor.insertText(text);
}

/// Messages keep their place among the bytes that have arrived before them.
void TerminalWidget::appendMessage(const QString &text)
{
    d->backlog.addMessage(text);
    backlogGrew();
}

void TerminalWidget::removeOldBlocks(bool isFollowing)
{
    const int tooMany = document()->blockCount() - d->maximumBlockCount;
    if (d->maximumBlockCount == 0 || tooMany <= 0 || !d->layout)
        return;
    QScrollBar *const bar = verticalScrollBar();
    const int value = bar->value();
    const qreal height = d->layout->blockTop(tooMany) - d->layout->blockTop(0);
    QTextCursor old(document());
    old.setPosition(document()->findBlockByNumber(tooMany).position(), QTextCursor::KeepAnchor);
    old.removeSelectedText();
    if (!isFollowing)
        bar->setValue(value - qRound(height));
}

void TerminalWidget::processStarted(const QString &commandLine)
{
    appendMessage(commandLine + QLatin1Char('\n'));
}

void TerminalWidget::processFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    const QString message = exitStatus == QProcess::NormalExit
        ? tr("[process exited with exit code %1]").arg(exitCode)
        : tr("[process exited abnormally]");
    appendMessage(QLatin1Char('\n') + message + QLatin1Char('\n'));
}

void TerminalWidget::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTextEdit::mouseDoubleClickEvent(event);
    QTextCursor cursor = textCursor();
    if (event->button() != Qt::LeftButton
        || !textInteractionFlags().testFlag(Qt::TextSelectableByMouse)
        || !TextGridLayout::isLong(cursor.block()))
        return;
    // The toolkit selects words only where it finds lines.
    cursor.select(QTextCursor::WordUnderCursor);
    setTextCursor(cursor);
}

/// Has the viewport painted, the first time at once and then once a frame.
void TerminalWidget::renewPicture()
{
    d->isPictureOld = d->frameTimer.isActive();
    if (d->isPictureOld)
        return;
    viewport()->update();
    updateMicroFocus(); // input methods place their windows at the output
    d->frameTimer.start(frameMilliseconds);
}

void TerminalWidget::scrollContentsBy(int dx, int dy)
{
    // Scrolling moves the picture as it is, which output makes worthless anyway.
    if (d->outputDepth == 0)
        QTextEdit::scrollContentsBy(dx, dy);
}

void TerminalWidget::paintEvent(QPaintEvent *event)
{
    QTextEdit::paintEvent(event);
    if (d->outputCursor.isNull() || !d->layout)
        return;
    QPainter painter(viewport());
    painter.translate(-horizontalScrollBar()->value(), -verticalScrollBar()->value());
    painter.setPen(palette().color(QPalette::Text));
    d->layout->drawCursor(&painter, d->outputCursor, cursorWidth());
}

void TerminalWidget::changeEvent(QEvent *event)
{
    QTextEdit::changeEvent(event);
    if (event->type() != QEvent::FontChange || cursorWidth() != d->standardCursorWidth)
        return;
    d->standardCursorWidth = standardCellWidth(this);
    setCursorWidth(d->standardCursorWidth);
}

bool TerminalWidget::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && d->terminal && !isForChild(this)
        && isBeforeShortcuts(static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    return QTextEdit::event(event);
}

bool TerminalWidget::focusNextPrevChild(bool next)
{
    const bool isTyped = d->terminal && !tabChangesFocus() && !isForChild(this);
    return !isTyped && QTextEdit::focusNextPrevChild(next);
}

void TerminalWidget::inputMethodEvent(QInputMethodEvent *event)
{
    event->setAccepted(d->terminal);
    if (d->terminal && !event->commitString().isEmpty())
        d->terminal->write(event->commitString().toLocal8Bit());
}

/// Tells where the output goes, and nothing of the text, which is not for input methods to change.
QVariant TerminalWidget::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (query == Qt::ImEnabled)
        return !d->terminal.isNull();
    if (query != Qt::ImCursorRectangle || d->outputCursor.isNull() || !d->layout)
        // NOLINTNEXTLINE(bugprone-parent-virtual-call): the text edit's tells of its text
        return QWidget::inputMethodQuery(query);
    const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    return d->layout->cursorRect(d->outputCursor).translated(viewport()->pos() - scrolled);
}

void TerminalWidget::keyPressEvent(QKeyEvent *event)
{
    if (!d->terminal || isForChild(this)) {
        event->ignore();
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        pasteFromClipboard();
        return;
    }
    if (isInterrupt(event)) {
        d->terminal->write(&interrupt, 1);
        return;
    }
    if (event->matches(QKeySequence::Copy) || event->matches(QKeySequence::SelectAll)
        || event->matches(QKeySequence::Cut)) {
        QTextEdit::keyPressEvent(event);
        return;
    }
    if (event->text().isEmpty())
        return;

    QByteArray bytes = event->text().toLocal8Bit();
    if (bytes == "\r" || event->key() == Qt::Key_Enter)
        bytes = QByteArrayLiteral("\n");
    const QPointer<TerminalWidget> self(this);
    const bool isBackspace = event->key() == Qt::Key_Backspace;
    if (bytes == "\n")
        Q_EMIT returnPressed();
    if (isBackspace)
        bytes = QByteArray(1, deletion);
    if (self && d->terminal)
        d->terminal->write(bytes);
}

void TerminalWidget::pasteFromClipboard()
{
    if (d->terminal)
        d->terminal->write(QApplication::clipboard()->text().toUtf8());
}

void TerminalWidget::contextMenuEvent(QContextMenuEvent *event)
{
    const QPointer<QMenu> menu = createStandardContextMenu(event->pos());
    if (!menu)
        return;
    d->contextMenu = menu;
    const QList<QAction *> actions = menu->actions();
    int place = actions.size(); // behind the last entry that copies; at the top without one
    while (place > 0 && !actions.at(place - 1)->text().contains(tr("Copy")))
        --place;
    menu->insertAction(actions.value(place), d->pasteAction);
    menu->exec(event->globalPos());
    delete menu; // unless it went with this widget meanwhile
}
