#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

/// A rectangular block of table cells that remembers the cell from which it was started.
///
/// Use it to hand a block to MDATable::addSelection() or to read one back. A block is started with
/// init() and grown with expandTo(): because it keeps its anchor, it can be grown in any direction,
/// also back over the anchor.
///
/// *Units*: row and column indices are 64-bit, both ends inclusive; -1 means unset.
///
/// *By design*: operator== compares what is drawn, that is the extent and the active flag. Two
/// blocks over the same cells with different anchors are equal.
class TUL_UTIL_GUI_EXPORT MDATableSelection
{
public:
    /// An unset block: inactive, every index -1. expandTo() does nothing before init().
    MDATableSelection();

    /// An active block anchored at (`row`, `col`) that spans to (`row2`, `col2`), in any order.
    MDATableSelection(long long row, long long col, long long row2, long long col2);

    /// Starts the block over at one cell, which becomes its anchor. The block is inactive until
    /// expandTo(): a table neither draws it nor finds cells in it.
    void init(long long row, long long col);

    /// Spans the block from its anchor to (`row`, `col`) and makes it active. Does nothing before
    /// init().
    void expandTo(long long row, long long col);

    /// Whether the block has been expanded and takes part in drawing and hit tests.
    bool isActive() const { return m_active; }

    /// Whether the block has no rows. A block whose end was clamped below its start counts a
    /// negative number of rows and is not empty in this sense; test numRows() <= 0 for both.
    bool isEmpty() const { return numRows() == 0; }

    /// Whether the block is exactly one cell.
    bool isSingleElement() const { return numRows() == 1 && numCols() == 1; }

    long long topRow() const { return m_topRow; }
    long long leftCol() const { return m_leftCol; }
    long long bottomRow() const { return m_bottomRow; }
    long long rightCol() const { return m_rightCol; }
    long long anchorRow() const { return m_anchorRow; }
    long long anchorCol() const { return m_anchorCol; }

    /// Number of rows or columns, limited to the largest 64-bit number; 0 while unset. Zero or
    /// negative when the end lies before the start.
    long long numRows() const;
    long long numCols() const;

    bool operator==(const MDATableSelection &other) const;
    bool operator!=(const MDATableSelection &other) const { return !(*this == other); }

private:
    friend class SelectionList; // clamps the end of a block and leaves its anchor alone

    unsigned m_active : 1;
    unsigned m_inited : 1;
    long long m_topRow = -1;
    long long m_leftCol = -1;
    long long m_bottomRow = -1;
    long long m_rightCol = -1;
    long long m_anchorRow = -1;
    long long m_anchorCol = -1;
};
