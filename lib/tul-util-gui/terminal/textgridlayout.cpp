#include <tul-util-gui/terminal/textgridlayout_p.h>

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr qreal farAway = 1e9; // beyond any document, in pixels

int textLength(const QTextBlock &block)
{
    return block.length() - 1; // without its separator
}

/// How many lines the text of a block takes. As in the toolkit, the blanks after a full line belong
/// to it.
int linesOfText(const QString &text, int columns)
{
    int lines = 0;
    int at = 0;
    do {
        ++lines;
        if (text.size() - at <= columns)
            return lines;
        at += columns;
        while (at < text.size() && text.at(at) == QLatin1Char(' '))
            ++at;
    } while (at < text.size());
    return lines;
}

QTextLayout::FormatRange rangeWithin(QTextLayout::FormatRange range, int start, int length)
{
    const int end = std::min(range.start + range.length - start, length);
    range.start = std::max(range.start - start, 0);
    range.length = end - range.start;
    return range;
}

/// What of `ranges` lies in the piece of text from `start`, counted from there.
QVector<QTextLayout::FormatRange> rangesWithin(const QVector<QTextLayout::FormatRange> &ranges,
                                               int start, int length)
{
    QVector<QTextLayout::FormatRange> result;
    for (const QTextLayout::FormatRange &range : ranges) {
        const QTextLayout::FormatRange part = rangeWithin(range, start, length);
        if (part.length > 0)
            result.append(part);
    }
    return result;
}

QVector<QTextLayout::FormatRange>
selectionsIn(const QTextBlock &block, const QAbstractTextDocumentLayout::PaintContext &context)
{
    QVector<QTextLayout::FormatRange> ranges;
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

/// The block at `y`, or the nearest one.
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
    const qreal width = std::ceil(m_longest * m_columnWidth) + 2 * margin();
    const qreal height = blockTop(last.blockNumber()) + blockHeight(last) + margin();
    return {std::max(width, document()->pageSize().width()), height};
}

QRectF TextGridLayout::frameBoundingRect(QTextFrame *) const
{
    return {QPointF(), documentSize()};
}

/// The toolkit calls this before it looks at the lines of a block.
QRectF TextGridLayout::blockBoundingRect(const QTextBlock &block) const
{
    if (!block.isValid())
        return {};
    layOut(block);
    return blockRect(block);
}

QRectF TextGridLayout::blockRect(const QTextBlock &block) const
{
    return {margin(), blockTop(block.blockNumber()), documentSize().width() - 2 * margin(),
            blockHeight(block)};
}

/// The layout of a block with all its lines; null for a long block.
QTextLayout *TextGridLayout::layOut(const QTextBlock &block) const
{
    if (textLength(block) > longBlock)
        return nullptr;
    QTextLayout *const layout = block.layout();
    if (layout->lineCount() > 0)
        return layout;
    QTextOption option = document()->defaultTextOption();
    option.setTextDirection(block.textDirection());
    layout->setTextOption(option);
    layout->setPosition({margin(), blockTop(block.blockNumber())});
    layout->beginLayout();
    qreal y = 0;
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLeadingIncluded(true);
        line.setNumColumns(m_columns, document()->pageSize().width() - 2 * margin());
        line.setPosition({0, y});
        y += m_linePitch;
    }
    layout->endLayout();

    QTextCursor place(block);
    place.setKeepPositionOnInsert(true); // what is inserted before the block's text is in the block
    m_laidOut.push_back(place);
    return layout;
}

void TextGridLayout::releaseLines()
{
    for (const QTextCursor &place : m_laidOut)
        place.block().clearLayout();
    m_laidOut.clear();
}

int TextGridLayout::wantedColumns() const
{
    return m_edit->lineWrapMode() == QTextEdit::FixedColumnWidth
        ? std::max(m_edit->lineWrapColumnOrWidth(), 1)
        : std::numeric_limits<int>::max();
}

void TextGridLayout::measureFont()
{
    const QFont font = document()->defaultFont();
    QTextLayout layout(QStringLiteral("M"), font, paintDevice());
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLeadingIncluded(true);
    line.setNumColumns(1);
    layout.endLayout();
    m_lineHeight = std::max<qreal>(line.height(), 1);
    m_linePitch = std::max<qreal>(std::min(m_lineHeight + line.leading(), m_lineHeight), 1);
    m_columnWidth = line.naturalTextWidth();
}

/// The font, the number of columns or the size of the page may be another one.
void TextGridLayout::geometryChanged()
{
    const int columns = wantedColumns();
    const bool isFixedPitch = QFontInfo(document()->defaultFont()).fixedPitch();
    measureFont();
    // Lines that are shaped to be counted depend on the font itself.
    const bool depends = columns != m_columns || isFixedPitch != m_isFixedPitch || !isFixedPitch
        || m_hasOddCharacters;
    m_columns = columns;
    m_isFixedPitch = isFixedPitch;
    if (depends) {
        m_longest = 0;
        countLines(document()->begin(), document()->characterCount());
    }
}

void TextGridLayout::documentChanged(int from, int charsRemoved, int charsAdded)
{
    releaseLines();
    const int length = document()->characterCount();
    const bool isText = charsRemoved > 0 || length != m_length;
    m_length = length;
    if (!isText) {
        geometryChanged();
        from = 0;
    } else {
        if (length <= 1) { // nothing but the separator of the only block
            m_hasOddCharacters = false;
            m_longest = 0;
        }
        const int end = std::min(from + charsAdded, length - 1);
        m_hasOddCharacters = m_hasOddCharacters || hasOddCharacters(from, end - from);
        countLines(document()->findBlock(from), end);
    }
    Q_EMIT documentSizeChanged(documentSize());
    if (!m_updatesHeld) {
        const qreal top = blockTop(document()->findBlock(from).blockNumber());
        Q_EMIT update(QRectF(0, top, farAway, farAway));
    }
}

bool TextGridLayout::hasOddCharacters(int from, int length) const
{
    const QString text = textOf(document(), from, length);
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        const ushort code = character.unicode();
        return (code < ' ' || code > '~') && code != QChar::ParagraphSeparator;
    });
}

void TextGridLayout::countLines(QTextBlock block, int lastPosition)
{
    for (; block.isValid() && block.position() <= lastPosition; block = block.next()) {
        const int length = textLength(block);
        m_longest = std::max(m_longest, std::min(length, m_columns));
        const int lines = length <= m_columns && !m_hasOddCharacters ? 1 : lineCountOf(block);
        if (block.lineCount() != lines)
            block.setLineCount(lines);
    }
}

int TextGridLayout::lineCountOf(QTextBlock block) const
{
    const int length = textLength(block);
    if (length > longBlock)
        return (length - 1) / m_columns + 1;
    if (m_isFixedPitch && !(m_hasOddCharacters && hasOddCharacters(block.position(), length)))
        return linesOfText(block.text(), m_columns);
    block.clearLayout();
    const int lines = layOut(block)->lineCount();
    block.clearLayout();
    m_laidOut.pop_back();
    return lines;
}

int TextGridLayout::lineEnd(int position)
{
    QTextBlock block = document()->findBlock(position);
    const int start = block.position();
    const int length = textLength(block);
    if (length > longBlock) {
        const int line = std::min(position - start, length - 1) / m_columns;
        return start + static_cast<int>(std::min<qint64>((line + 1LL) * m_columns, length));
    }
    if (length <= m_columns && !m_hasOddCharacters)
        return start + length;
    // The text may have changed without the layout having been told yet.
    releaseLines();
    block.clearLayout();
    const QTextLine line = layOut(block)->lineForTextPosition(position - start);
    return start + line.textStart() + line.textLength();
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

int TextGridLayout::lineOfLongBlock(const QTextBlock &block, qreal y) const
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

void TextGridLayout::drawLongBlock(QPainter *painter, const QTextBlock &block,
                                   const Formats &selections, const QRectF &clip) const
{
    const int last = lineOfLongBlock(block, clip.bottom());
    for (int line = lineOfLongBlock(block, clip.top()); line <= last; ++line) {
        QTextLayout layout(QString(), document()->defaultFont(), paintDevice());
        layOutLine(&layout, block, line);
        layout.draw(painter, QPointF(), rangesWithin(selections, line * m_columns, m_columns));
    }
}

void TextGridLayout::drawCursor(QPainter *painter, const QTextCursor &cursor, int width)
{
    const QTextBlock block = cursor.block();
    const int position = cursor.positionInBlock();
    if (const QTextLayout *const layout = layOut(block)) {
        layout->drawCursor(painter, QPointF(), position, width);
        return;
    }
    const int line = std::min(position, textLength(block) - 1) / m_columns;
    QTextLayout layout(QString(), document()->defaultFont(), paintDevice());
    layOutLine(&layout, block, line);
    layout.drawCursor(painter, QPointF(), position - line * m_columns, width);
}

int TextGridLayout::hitTest(const QPointF &point, Qt::HitTestAccuracy accuracy) const
{
    const QTextBlock block = blockAt(point.y());
    QTextLayout longLine(QString(), document()->defaultFont(), paintDevice());
    const QTextLayout *layout = layOut(block);
    const int lineNumber = lineOfLongBlock(block, point.y());
    if (!layout)
        layOutLine(&longLine, block, lineNumber);
    const QTextLine line = layout ? layout->lineAt(std::min(lineNumber, layout->lineCount() - 1))
                                  : longLine.lineAt(0);
    const QPointF origin = layout ? layout->position() : longLine.position();
    const QRectF rect = line.naturalTextRect().translated(origin);
    if (accuracy == Qt::ExactHit && !rect.contains(point))
        return -1;
    const int start = block.position() + (layout ? 0 : lineNumber * m_columns);
    return start + line.xToCursor(point.x() - origin.x());
}
