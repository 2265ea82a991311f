#pragma once

#include <tul-util-gui/mdatable/mdatable.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>

#include <QRect>
#include <QStringList>
#include <QVector>

/// A table that opens protected operations to tests and records calls of virtual ones, which it
/// then handles as the base class does. What the constructor calls is not recorded.
class RecordingTable : public MDATable
{
    Q_OBJECT

public:
    struct PaintedCell {
        long long row;
        long long col;
        QRect rect; ///< in viewport coordinates
        bool selected; ///< as asked for, before the focus style has its say
        QPalette::ColorGroup group;
    };

    using MDATable::MDATable;

    using MDATable::activateNextCell;
    using MDATable::drawContents;
    using MDATable::indexOf;
    using MDATable::resizeData;
    void rowHeightChanged() override;
    void columnWidthChanged() override;
    void updateGeometries() override;

    MDATableHeader *leftHeader() const
    {
        return findChild<MDATableHeader *>(QStringLiteral("left table header"));
    }
    MDATableHeader *topHeader() const
    {
        return findChild<MDATableHeader *>(QStringLiteral("right table header"));
    }

    /// Shows the table in a size and waits until scroll bars, layout and painting have settled;
    /// clears the records. False when the window did not come.
    bool showSettled(const QSize &size = QSize(400, 300));

    /// Delivers what is queued: delayed layout, scroll bars, repaints.
    static void settle();
    void clearRecords();

    /// Gives every cell a CountedItem whose text is row and column: "00", "01", ...
    void fill();

    /// The texts of all cells, rows separated by "/"; "-" for an empty cell.
    QString contents() const;

    int countOf(const char *call) const { return calls.count(QLatin1String(call)); }

    // What was recorded; a test may change it.
    QStringList calls; ///< rowHeightChanged, columnWidthChanged, updateGeometries
    QVector<QRect> paintEvents; ///< bounding rectangles
    QVector<PaintedCell> paintedCells; ///< each cell once, from the overload with a colour group
    QVector<QRect> paintedFocus;
    QVector<QRect> paintedEmptyAreas;

protected:
    void paintEvent(QPaintEvent *event) override;
    using MDATable::paintCell;
    void paintCell(QPainter *painter, long long row, long long col, const QRect &cr, bool selected,
                   QPalette::ColorGroup group) override;
    void paintFocus(QPainter *painter, const QRect &cr) override;
    void paintEmptyArea(QPainter *painter, int x, int y, int w, int h) override;
};
