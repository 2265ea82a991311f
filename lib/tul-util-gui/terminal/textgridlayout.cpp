#include <tul-util-gui/terminal/textgridlayout_p.h>

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace
{

using Formats = QVector<QTextLayout::FormatRange>;

constexpr qreal farAway = 1e9; // beyond any document, in pixels
constexpr qreal toolkitCursorHeight = 10; // where a block has no lines

int textLength(const QTextBlock &block)
{
    return block.length() - 1; // without its separator
}

bool hasOdd(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        const ushort code = character.unicode();
        return code < ' ' || code > '~';
    });
}

/// Where the line after that which begins at `start` begins, where all characters are of one width.
/// As in the toolkit, blanks never begin a line that is wrapped: they belong to the line before,
/// however many there are, and those that a text begins with have one more character with them.
int nextLine(const QString &text, int start, int columns)
{
    const auto behindBlanks = [&](int at) {
        while (at < text.size() && text.at(at) == QLatin1Char(' '))
            ++at;
        return at;
    };
    if (columns >= text.size() - start)
        return text.size();
    const int next = behindBlanks(std::max(behindBlanks(start) + 1, start + columns));
    return std::min(next, text.size());
}

int linesOfText(const QString &text, int columns)
{
    int lines = 1;
    for (int at = nextLine(text, 0, columns); at < text.size(); at = nextLine(text, at, columns))
        ++lines;
    return lines;
}

int endOfLineAt(const QString &text, int position, int columns)
{
    int end = nextLine(text, 0, columns);
    while (end <= position && end < text.size())
        end = nextLine(text, end, columns);
    // The blank at which a line is wrapped counts as its end.
    return end < text.size() && text.at(end - 1) == QLatin1Char(' ') ? end - 1 : end;
}

/// What of `ranges` touches the piece of text from `start`, counted from there. They may begin
/// before it, because the toolkit rounds pixels otherwise where a range begins with the text.
Formats rangesWithin(Formats ranges, int start, int length)
{
    const auto isElsewhere = [&](const QTextLayout::FormatRange &range) {
        return range.start >= start + length || range.start + range.length <= start;
    };
    ranges.erase(std::remove_if(ranges.begin(), ranges.end(), isElsewhere), ranges.end());
    for (QTextLayout::FormatRange &range : ranges)
        range.start -= start;
    return ranges;
}

Formats selectionsIn(const QTextBlock &block,
                     const QAbstractTextDocumentLayout::PaintContext &context)
{
    Formats ranges;
    for (const QAbstractTextDocumentLayout::Selection &selection : context.selections) {
        QTextLayout::FormatRange range;
        range.start = selection.cursor.selectionStart();
        range.length = selection.cursor.selectionEnd() - range.start;
        range.format = selection.format;
        ranges.append(range);
    }
    return rangesWithin(ranges, block.position(), block.length());
}

QString textOf(const QTextDocument *document, int from, int length)
{
    QTextCursor cursor(const_cast<QTextDocument *>(document)); // which only reads
    cursor.setPosition(from);
    cursor.setPosition(from + length, QTextCursor::KeepAnchor);
    return cursor.selectedText();
}

} // namespace

TextGridLayout::TextGridLayout(QTextEdit *edit)
    : QAbstractTextDocumentLayout(edit->document())
    , m_edit(edit)
{
    setPaintDevice(edit->viewport());
    measureFont();
}

qreal TextGridLayout::blockTop(int number) const
{
    const QTextBlock block = document()->findBlockByNumber(number);
    return margin() + block.firstLineNumber() * m_linePitch + number * (m_lineHeight - m_linePitch);
}

qreal TextGridLayout::blockHeight(const QTextBlock &block) const
{
    return (block.lineCount() - 1) * m_linePitch + m_lineHeight;
}

/// The block at `y`, or the nearest one. What is exactly between two blocks belongs to the upper
/// one.
QTextBlock TextGridLayout::blockAt(qreal y) const
{
    int first = 0;
    int count = document()->blockCount();
    while (count > 1) {
        const int half = count / 2;
        if (blockTop(first + half) <= y) {
            first += half;
            count -= half;
        } else {
            count = half;
        }
    }
    return document()->findBlockByNumber(first);
}

QSizeF TextGridLayout::documentSize() const
{
    const QTextBlock last = document()->lastBlock();
    return {document()->pageSize().width(),
            blockTop(last.blockNumber()) + blockHeight(last) + margin()};
}

QRectF TextGridLayout::frameBoundingRect(QTextFrame * /*frame*/) const
{
    return {QPointF(), documentSize()};
}

/// The toolkit calls this before it looks at the lines of a block.
QRectF TextGridLayout::blockBoundingRect(const QTextBlock &block) const
{
    if (!block.isValid())
        return {};
    const QRectF rect = blockRect(block);
    if (layOut(block))
        return rect;
    // In a block without lines it takes the topmost pixels for the user's cursor and scrolls to
    // these: they are in the line of the cursor, at the side from which that comes into view.
    const QTextCursor cursor = m_edit->textCursor();
    if (cursor.block() != block)
        return rect;
    const int line = longBlockLine(block, cursor.positionInBlock());
    const qreal top = rect.top() + line * m_linePitch;
    const int viewBottom = m_edit->verticalScrollBar()->value() + m_edit->viewport()->height();
    const bool isBelow = top + m_lineHeight > viewBottom;
    return {rect.left(), isBelow ? top + m_lineHeight - toolkitCursorHeight : top, rect.width(),
            m_lineHeight};
}

QRectF TextGridLayout::blockRect(const QTextBlock &block) const
{
    return {margin(), blockTop(block.blockNumber()), documentSize().width() - 2 * margin(),
            blockHeight(block)};
}

/// The layout of a block with all its lines; null for a long block.
QTextLayout *TextGridLayout::layOut(const QTextBlock &block) const
{
    if (isLong(block))
        return nullptr;
    QTextLayout *const layout = block.layout();
    const int number = block.blockNumber();
    layout->setPosition({margin(), blockTop(number)});
    if (layout->lineCount() > 0)
        return layout;
    QTextOption option = document()->defaultTextOption();
    option.setTextDirection(block.textDirection());
    layout->setTextOption(option);
    layout->beginLayout();
    qreal y = 0;
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLeadingIncluded(true);
        line.setNumColumns(m_columns, m_lineWidth);
        line.setPosition({0, y});
        y += m_linePitch;
    }
    layout->endLayout();
    m_laidOut.push_back(number);
    return layout;
}

void TextGridLayout::releaseLines()
{
    releaseLines(std::numeric_limits<int>::max(), 0);
}

/// For when the numbers from `first` on have been shifted by `shift`. It does no harm to miss a
/// block: a layout whose text has changed is never kept, and its place is looked up each time.
void TextGridLayout::releaseLines(int first, int shift)
{
    for (const int number : m_laidOut)
        document()->findBlockByNumber(number < first ? number : number + shift).clearLayout();
    m_laidOut.clear();
}

qreal TextGridLayout::lineWidth() const
{
    const qreal width = document()->pageSize().width();
    return width < 0 ? farAway : std::max(width - 2 * margin(), 0.0);
}

/// How many characters there can be in a line.
int TextGridLayout::wantedColumns() const
{
    const int columns = m_edit->lineWrapMode() == QTextEdit::FixedColumnWidth
        ? std::max(m_edit->lineWrapColumnOrWidth(), 1)
        : std::numeric_limits<int>::max();
    if (!m_isFixedPitch)
        return columns;
    return static_cast<int>(std::clamp<qreal>(std::floor(lineWidth() / m_widest), 1, columns));
}

void TextGridLayout::measureFont()
{
    m_font = document()->defaultFont();
    m_isFixedPitch = QFontInfo(m_font).fixedPitch();
    QTextLayout layout(QStringLiteral("M"), m_font, paintDevice());
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLeadingIncluded(true);
    line.setNumColumns(1);
    layout.endLayout();
    m_lineHeight = std::max<qreal>(line.height(), 1);
    m_linePitch = std::clamp<qreal>(m_lineHeight + line.leading(), 1, m_lineHeight);

    const QFontMetricsF metrics(m_font, paintDevice());
    m_advances.fill(0);
    for (char character = ' '; character <= '~'; ++character)
        m_advances[static_cast<unsigned char>(character)]
            = metrics.horizontalAdvance(QLatin1Char(character));
    m_widest = m_isFixedPitch ? line.naturalTextWidth()
                              : *std::max_element(m_advances.begin(), m_advances.end());
    m_widest = std::max<qreal>(m_widest, 1);
}

/// The font, the number of columns or the width of the page may be another one.
void TextGridLayout::geometryChanged()
{
    const bool fitted = fits(m_longest);
    const bool isSameFont = document()->defaultFont() == m_font;
    if (!isSameFont)
        measureFont();
    const int columns = wantedColumns();
    if (isSameFont && columns == m_columns && lineWidth() == m_lineWidth)
        return;
    m_columns = columns;
    m_lineWidth = lineWidth();
    if (isSameFont && fitted && fits(m_longest) && !m_hasOddCharacters)
        return; // each block is one line, before and now
    m_longest = 0;
    countLines(document()->begin(), document()->characterCount());
}

void TextGridLayout::documentChanged(int from, int charsRemoved, int charsAdded)
{
    const bool isPlain = std::exchange(m_isNextChangePlain, false);
    const int blockCount = document()->blockCount();
    const int firstBlock = document()->findBlock(from).blockNumber();
    releaseLines(firstBlock, blockCount - m_blockCount);
    m_blockCount = blockCount;
    const int length = document()->characterCount();
    const bool isText = charsRemoved > 0 || length != m_length;
    m_length = length;
    if (!isText) {
        geometryChanged();
    } else {
        if (length <= 1) { // nothing but the separator of the only block
            m_hasOddCharacters = false;
            m_longest = 0;
        }
        const int end = std::min(from + charsAdded, length - 1);
        if (!isPlain)
            lookForOddCharacters(document()->findBlock(from), end);
        countLines(document()->findBlock(from), end);
    }
    Q_EMIT documentSizeChanged(documentSize());
    if (!m_updatesHeld)
        Q_EMIT update(QRectF(0, isText ? blockTop(firstBlock) : 0, farAway, farAway));
}

void TextGridLayout::lookForOddCharacters(QTextBlock block, int lastPosition)
{
    int position = block.position();
    for (; block.isValid() && position <= lastPosition; block = block.next()) {
        if (m_hasOddCharacters)
            return;
        position += block.length();
        if (isLong(block))
            continue; // makes no difference there
        m_hasOddCharacters = hasOdd(block.text());
    }
}

void TextGridLayout::countLines(QTextBlock block, int lastPosition)
{
    int position = block.position(); // kept along, because a block has to climb a tree for it
    for (; block.isValid() && position <= lastPosition; block = block.next()) {
        position += block.length();
        block.clearLayout();
        m_longest = std::max(m_longest, textLength(block));
        const int lines = lineCountOf(block);
        if (block.lineCount() != lines)
            block.setLineCount(lines);
    }
}

int TextGridLayout::lineCountOf(QTextBlock block) const
{
    const int length = textLength(block);
    if (length > longBlock)
        return (length - 1) / m_columns + 1;
    if (fits(length) && !m_hasOddCharacters)
        return 1;
    const QString text = block.text();
    if (!m_hasOddCharacters || !hasOdd(text)) {
        if (m_isFixedPitch)
            return linesOfText(text, m_columns);
        if (length <= m_columns && widthOf(text) <= m_lineWidth)
            return 1;
    }
    block.clearLayout();
    const int lines = layOut(block)->lineCount();
    block.clearLayout();
    m_laidOut.pop_back();
    return lines;
}

/// Whether any text of so many usual characters is one line.
bool TextGridLayout::fits(int length) const
{
    return length <= m_columns && length * m_widest <= m_lineWidth;
}

/// A little more than the text takes, whatever shaping does to neighbours.
qreal TextGridLayout::widthOf(const QString &text) const
{
    return std::accumulate(
        text.begin(), text.end(), text.size() * 0.5,
        [&](qreal width, QChar character) { return width + m_advances.at(character.unicode()); });
}

bool TextGridLayout::isLong(const QTextBlock &block)
{
    return textLength(block) > longBlock;
}

int TextGridLayout::lineEnd(int position, int *cost)
{
    QTextBlock block = document()->findBlock(position);
    const int start = block.position();
    const int length = textLength(block);
    if (length > longBlock) {
        const int line = longBlockLine(block, position - start);
        return start + static_cast<int>(std::min<qint64>((line + 1LL) * m_columns, length));
    }
    // The text may have changed without the layout having been told yet.
    const QString text = block.text();
    *cost += length / 32; // for looking at it
    if (!hasOdd(text)) {
        if (fits(length))
            return start + length;
        if (m_isFixedPitch)
            return start + endOfLineAt(text, position - start, m_columns);
    }
    *cost += length;
    releaseLines();
    block.clearLayout();
    const QTextLayout *const layout = layOut(block);
    const QTextLine line = layout->lineForTextPosition(position - start);
    const int end = start + line.textStart() + line.textLength();
    // As in endOfLineAt().
    const bool isWrapped = line.lineNumber() < layout->lineCount() - 1;
    return isWrapped && document()->characterAt(end - 1).isSpace() ? end - 1 : end;
}

void TextGridLayout::draw(QPainter *painter, const PaintContext &context)
{
    const QRectF clip = context.clip.isValid() ? context.clip : QRectF(QPointF(), documentSize());
    painter->setPen(context.palette.color(QPalette::Text));
    for (QTextBlock block = blockAt(clip.top()); block.isValid(); block = block.next()) {
        if (blockTop(block.blockNumber()) > clip.bottom())
            break;
        const Formats selections = selectionsIn(block, context);
        if (QTextLayout *const layout = layOut(block)) {
            layout->draw(painter, QPointF(), selections, clip);
            if (block.contains(context.cursorPosition))
                layout->drawCursor(painter, QPointF(), context.cursorPosition - block.position(),
                                   m_edit->cursorWidth());
        } else {
            drawLongBlock(painter, block, selections, clip);
        }
    }
}

/// The line of a block at `y`, or the nearest one. Where lines overlap, the lower one counts.
int TextGridLayout::lineInBlock(const QTextBlock &block, qreal y) const
{
    const qreal line = std::floor((y - blockTop(block.blockNumber())) / m_linePitch);
    return static_cast<int>(std::clamp<qreal>(line, 0, block.lineCount() - 1));
}

/// Makes `layout` that of one line of a long block, at its place in the document.
void TextGridLayout::layOutLine(QTextLayout *layout, const QTextBlock &block, int line) const
{
    const int start = line * m_columns;
    const int length = std::min(m_columns, textLength(block) - start);
    layout->setFont(document()->defaultFont());
    layout->setText(textOf(document(), block.position() + start, length));
    layout->setFormats(rangesWithin(block.textFormats(), start, length));
    layout->setPosition({margin(), blockTop(block.blockNumber()) + line * m_linePitch});
    layout->beginLayout();
    layout->createLine().setNumColumns(length);
    layout->endLayout();
}

/// The line that holds `position` of a long block.
int TextGridLayout::longBlockLine(const QTextBlock &block, int position) const
{
    return std::min(position, textLength(block) - 1) / m_columns;
}

void TextGridLayout::drawLongBlock(QPainter *painter, const QTextBlock &block,
                                   const Formats &selections, const QRectF &clip) const
{
    const int last = lineInBlock(block, clip.bottom());
    const qreal overlap = m_lineHeight - m_linePitch;
    for (int line = lineInBlock(block, clip.top() - overlap); line <= last; ++line) {
        QTextLayout layout(QString(), document()->defaultFont(), paintDevice());
        layOutLine(&layout, block, line);
        layout.draw(painter, QPointF(), rangesWithin(selections, line * m_columns, m_columns));
    }
}

/// A layout of the line that holds `position` of a block, which becomes that in the layout:
/// `longLine` when the block is long.
const QTextLayout *TextGridLayout::layOutAt(int *position, const QTextBlock &block,
                                            QTextLayout *longLine) const
{
    if (const QTextLayout *const layout = layOut(block))
        return layout;
    const int line = longBlockLine(block, *position);
    layOutLine(longLine, block, line);
    *position -= line * m_columns;
    return longLine;
}

QRectF TextGridLayout::cursorRect(const QTextCursor &cursor) const
{
    QTextLayout longLine(QString(), document()->defaultFont(), paintDevice());
    int position = cursor.positionInBlock();
    const QTextLayout *const layout = layOutAt(&position, cursor.block(), &longLine);
    const QTextLine line = layout->lineForTextPosition(position);
    return {layout->position() + QPointF(line.cursorToX(position), line.y()),
            QSizeF(0, m_lineHeight)};
}

void TextGridLayout::drawCursor(QPainter *painter, const QTextCursor &cursor, int width)
{
    QTextLayout longLine(QString(), document()->defaultFont(), paintDevice());
    int position = cursor.positionInBlock();
    const QTextLayout *const layout = layOutAt(&position, cursor.block(), &longLine);
    layout->drawCursor(painter, QPointF(), position, width);
}

int TextGridLayout::hitTest(const QPointF &point, Qt::HitTestAccuracy accuracy) const
{
    const QTextBlock block = blockAt(point.y());
    QTextLayout longLine(QString(), document()->defaultFont(), paintDevice());
    const QTextLayout *layout = layOut(block);
    const int lineNumber = lineInBlock(block, point.y());
    if (!layout)
        layOutLine(&longLine, block, lineNumber);
    const QTextLine line = layout ? layout->lineAt(std::min(lineNumber, layout->lineCount() - 1))
                                  : longLine.lineAt(0);
    const QPointF origin = layout ? layout->position() : longLine.position();
    if (accuracy == Qt::ExactHit && !line.naturalTextRect().translated(origin).contains(point))
        return -1;
    if (point.y() < origin.y() && block.position() == 0)
        return 0;
    if (point.y() > blockRect(block).bottom() && !block.next().isValid())
        return block.position() + textLength(block);
    const int start = block.position() + (layout ? 0 : lineNumber * m_columns);
    return start + line.xToCursor(point.x() - origin.x());
}
