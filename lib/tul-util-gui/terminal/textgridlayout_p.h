#pragma once

#include <QAbstractTextDocumentLayout>
#include <QFont>
#include <QTextLayout>
#include <QVector>

#include <array>
#include <vector>

class QTextBlock;
class QTextCursor;
class QTextEdit;

/// Lays out the plain text of a text edit that wraps anywhere after a fixed number of columns, as
/// the toolkit's own layout does, but without shaping text that nobody sees.
///
/// All lines are of one height, and how many a block takes follows from its length, so that a
/// change costs time in proportion to what has changed and a picture in proportion to what it
/// shows. Only blocks that are drawn, hit or asked for get a text layout, until the next change.
///
/// Where the number of characters does not tell the number of lines, a block that wraps is shaped
/// to know it: in a font that is not of a fixed pitch, and where text has other characters than
/// those from blank to tilde. Blocks of more than longBlock characters are too long for that, and
/// for a text layout; they are drawn line by line, one character a column.
///
/// Formats of blocks and frames, lists, tables and objects are not drawn.
class TextGridLayout : public QAbstractTextDocumentLayout
{
    Q_OBJECT

public:
    static constexpr int longBlock = 8192;

    /// For the document of `edit`, whose columns it asks for after each change of its geometry.
    explicit TextGridLayout(QTextEdit *edit);

    static bool isLong(const QTextBlock &block);

    /// Where the line that holds `position` ends, as QTextCursor::EndOfLine finds it, also while
    /// the document is being edited. `cost` grows by the time that this takes, in that of shaping
    /// a character.
    int lineEnd(int position, int *cost);

    /// The position of the top of the document's n-th block, in pixels of the document.
    qreal blockTop(int number) const;

    /// Where `cursor` is, without a width, in the document's coordinates.
    QRectF cursorRect(const QTextCursor &cursor) const;

    /// Draws `cursor`, `width` pixels wide, in the document's coordinates.
    void drawCursor(QPainter *painter, const QTextCursor &cursor, int width);

    /// Whether changes are not announced by update(): somebody else sees to it.
    void setUpdatesHeld(bool held) { m_updatesHeld = held; }

    /// Whether the next change of the document, if it comes before this is taken back, inserts only
    /// usual characters and new lines and makes no long block short: it need not be searched for
    /// other characters then.
    void setNextChangePlain(bool plain) { m_isNextChangePlain = plain; }

    /// Gives back all text layouts; done before many changes, it spares each of them some work.
    void releaseLines();

    void draw(QPainter *painter, const PaintContext &context) override;
    int hitTest(const QPointF &point, Qt::HitTestAccuracy accuracy) const override;
    int pageCount() const override { return 1; }
    QSizeF documentSize() const override;
    QRectF frameBoundingRect(QTextFrame *frame) const override;
    QRectF blockBoundingRect(const QTextBlock &block) const override;

protected:
    void documentChanged(int from, int charsRemoved, int charsAdded) override;

private:
    using Formats = QVector<QTextLayout::FormatRange>;

    void releaseLines(int first, int shift);
    qreal margin() const { return document()->documentMargin(); }
    qreal blockHeight(const QTextBlock &block) const;
    QTextBlock blockAt(qreal y) const;
    QRectF blockRect(const QTextBlock &block) const;
    int lineCountOf(QTextBlock block) const;
    void lookForOddCharacters(QTextBlock block, int lastPosition);
    void countLines(QTextBlock block, int lastPosition);
    void geometryChanged();
    void measureFont();
    int wantedColumns() const;
    bool fits(int length) const;
    qreal widthOf(const QString &text) const;
    qreal lineWidth() const;
    QTextLayout *layOut(const QTextBlock &block) const;
    const QTextLayout *layOutAt(int *position, const QTextBlock &block,
                                QTextLayout *longLine) const;
    void layOutLine(QTextLayout *layout, const QTextBlock &block, int line) const;
    int lineInBlock(const QTextBlock &block, qreal y) const;
    int longBlockLine(const QTextBlock &block, int position) const;
    void drawLongBlock(QPainter *painter, const QTextBlock &block, const Formats &selections,
                       const QRectF &clip) const;

    QTextEdit *m_edit;
    int m_length = 0; // of the document, before the change that is being told
    int m_blockCount = 1; // likewise
    int m_longest = 0; // block of the document, in characters; it may have gone since
    bool m_hasOddCharacters = false; // in the document, since it was last empty
    bool m_updatesHeld = false;
    bool m_isNextChangePlain = false;

    // In effect since geometryChanged(): a line ends after so many columns, or at so many pixels.
    int m_columns = 1;
    qreal m_lineWidth = 0;
    QFont m_font;
    bool m_isFixedPitch = false;
    qreal m_lineHeight = 1;
    qreal m_linePitch = 1; // from one line to the next of the same block
    qreal m_widest = 1; // of the usual characters
    std::array<qreal, 128> m_advances = {}; // of each of them

    mutable std::vector<int> m_laidOut; // the numbers of the blocks that have a text layout
};
