#pragma once

#include <tul-util-gui/mdatable/cellstore_p.h>
#include <tul-util-gui/mdatable/mdatable.h>
#include <tul-util-gui/mdatable/selectionlist_p.h>
#include <tul-util-gui/mdatable/tableaxis_p.h>
#include <tul-util-gui/mdatable/tableinteraction_p.h>
#include <tul-util-gui/mdatable/tablelayout_p.h>
#include <tul-util-gui/mdatable/tablepainter_p.h>

#include <QRegion>

namespace tul
{

/// The area to repaint for a cell or a block: its focus frame and grid may touch the neighbours.
QRect grownForRepaint(const QRect &rect);

} // namespace tul

/// The state of a table and what several of its operations share.
class MDATablePrivate
{
public:
    explicit MDATablePrivate(MDATable *table);

    void construct(long long numRows, long long numCols, const char *name);

    bool hasCurrentCell() const { return rows.current != -1 && columns.current != -1; }

    // What the functions of the table of the same names do.
    void setItem(long long row, long long col, MDATableItem *item);
    void takeItem(MDATableItem *item);
    void clearCell(long long row, long long col);
    void setSparse(bool sparse);
    void clear();
    void clearData();

    /// Gives the dense store one slot a cell; nothing in a sparse table.
    void sizeStore() const;

    void setCount(TableAxis &axis, long long count);
    void setHidden(TableAxis &axis, long long from, long long to, bool hidden) const;
    void finishDimensionChange() const;
    void contentSizeChanged() const;
    void keepCurrentInside(const TableAxis &axis) const;

    void raiseItemWidth(int width);

    /// Drops all blocks and says what they covered, without announcing it.
    QRegion takeSelections();

    /// What of a block is seen in the viewport; empty for an inactive one.
    QRect visibleRect(const MDATableSelection &block) const;
    void repaintBlock(const MDATableSelection &block) const;
    /// Queues a repaint of what is in one of two blocks and not in both.
    void repaintDifference(const MDATableSelection &before, const MDATableSelection &after) const;

    /// Queues a repaint of what looks different with and without the focus.
    void updateSelectedLook() const;
    /// To be called when the focus went from one widget to another, null for none.
    void focusMoved(const QWidget *from, const QWidget *to) const;

    MDATable *const q;
    CellStore store;
    TableAxis rows;
    TableAxis columns;
    SelectionList selections;
    TableLayout layout;
    TableInteraction interaction;
    TablePainter painter;
    QRegion validRegion; // in cell coordinates: x is the column
    int maxItemWidth = 0; // widest size hint of an item since the last clear, in pixels
    bool showGrid = true;
    MDATable::FocusStyle focusStyle = MDATable::FollowStyle;
    QObject focusContext; // focus moves on while the base classes are destroyed
};
