#pragma once

#include <QVector>
#include <QWidget>

#include <tul-util-gui/mdatable/headerlines_p.h>
#include <tul-util-gui/mdatable/hiddensections_p.h>

class MDATable;
class QStyleOptionHeader;

/// The header at the left of (rows) or above (columns) the cells of an MDATable: counts the
/// sections, knows their uniform size and which of them are hidden, converts between sections and
/// pixels, and paints one line of labels per array dimension.
///
/// *Units*: sections and counts are 64-bit, -1 none. Positions are pixels from the start of section
/// 0, limited to 2147450879: sections beyond share that position. There is no scaling, so that one
/// pixel of the scroll bar always is one pixel of the table.
class MDATableHeader : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(Qt::Orientation orientation READ orientation)
    Q_PROPERTY(long long count READ count WRITE setCount)
    Q_PROPERTY(int offset READ offset WRITE setOffset)

public:
    /// A header of `table`, a child of `parent`: vertical for the rows, horizontal for the columns.
    MDATableHeader(MDATable *table, Qt::Orientation orientation, long long count, QWidget *parent,
                   const QString &objectName);

    Qt::Orientation orientation() const { return m_orientation; }

    long long count() const { return m_count; }
    void setCount(long long count);

    /// Negative counts and lines that do not exist are ignored; a new line has the bounds 0..0.
    void setLines(int lines);
    void setLineNameAndBounds(int line, const QString &name, long long min, long long max);

    /// Pixels per section; negative sizes count as 0, at which nothing is found or painted.
    int sectionSize() const { return m_sectionSize; }
    void setSectionSize(int size);

    /// The thickness of the header in pixels.
    int fixedExtent() const { return m_bands.extent; }

    /// Where a section begins; a hidden one begins where the next visible one does.
    int sectionPos(long long section) const;
    /// The section at a position, -1 for negative ones and beyond the last section.
    long long sectionAt(long long pixel) const;
    int contentLength() const;

    /// Sections outside the header are ignored; `from` and `to` are inclusive.
    void hideSection(long long section) { hideSections(section, section); }
    void hideSections(long long from, long long to);
    void showSection(long long section) { showSections(section, section); }
    void showSections(long long from, long long to);
    bool isSectionHidden(long long section) const { return m_hidden.contains(section); }
    const HiddenSections &hiddenSections() const { return m_hidden; }

    /// The nearest visible section from `section` on, -1 when there is none in that direction.
    long long visibleFrom(long long section) const;
    long long visibleUpTo(long long section) const;

    /// No sections, no hidden ones, no lines.
    void reset();

    int offset() const { return m_offset; }

    QSize sizeHint() const override;

public Q_SLOTS:
    /// Scrolls to a pixel position; 0 when the contents are shorter than the header.
    void setOffset(int pos);

Q_SIGNALS:
    void sectionSizeChanged();
    /// Emitted for the left mouse button on a section, any of its lines: clicked() when it was
    /// pressed and released on the same section.
    void clicked(long long section);
    void pressed(long long section);
    void released(long long section);
    void fixedExtentChanged(int newSize);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    /// Pixels along the header, in 64 bits because blocks may begin and end far outside it.
    struct Span {
        long long start;
        long long end;
    };
    struct Label {
        QString text;
        long long section; ///< the first one labelled
        Span span;
        long long lastStart; ///< the label stays in view up to here
        int position; ///< a QStyleOptionHeader::SectionPosition
    };

    bool isHorizontal() const { return m_orientation == Qt::Horizontal; }
    int length() const { return isHorizontal() ? width() : height(); }
    QRect rectAt(long long start, long long end, int crossStart, int crossLength) const;
    QRect mirrored(const QRect &rect) const;
    bool clampRange(long long &from, long long &to) const;
    void updateFrom(long long section);
    void recomputeMetrics();
    void setFixedExtent(int extent);
    void scrollLabels(int oldOffset);
    Label blockLabel(const HeaderLine &line, long long block) const;
    void paintLine(QPainter *painter, int line, long long firstSection, int end,
                   QStyleOptionHeader *option);
    void paintName(QPainter *painter, int line, QStyleOptionHeader *option);
    void paintLabel(QPainter *painter, const Label &label, int crossStart, int crossLength,
                    QStyleOptionHeader *option);

    MDATable *const m_table;
    int m_sectionSize = 20;
    QVector<HeaderLine> m_lines;
    bool m_ready = false; // metrics need both headers and a table that is built
    HeaderBands m_bands;
    int m_nameWidth = 0; // widest line name, with a margin
    int m_nameBand = 0; // height of the names in the top header
    long long m_count;
    int m_offset = 0;
    const Qt::Orientation m_orientation;
    HiddenSections m_hidden;
    long long m_pressed = -1; // section under the left button when it went down
};
