#pragma once

#include <tul-util-gui/mdatable/mdatableselection.h>

#include <memory>
#include <vector>

/// The selection blocks of a table in the order in which they were added, and which of them is the
/// current one: the block that Shift moves and drags grow.
class SelectionList
{
public:
    bool isEmpty() const { return m_blocks.empty(); }
    int count() const { return static_cast<int>(m_blocks.size()); }

    /// A copy, because what a caller does with it may remove the block; an unset block for an index
    /// out of range.
    MDATableSelection at(int index) const;

    /// The first block equal to `selection`, or -1.
    int indexOf(const MDATableSelection &selection) const;

    /// The current block, which stays valid until it is removed, and its index; null and -1 when
    /// there is none.
    MDATableSelection *current() { return m_current; }
    const MDATableSelection *current() const { return m_current; }
    int currentIndex() const;

    /// Appends an inactive block at one cell and makes it the current one.
    void start(long long row, long long col);

    /// Appends a copy as the current block with its end limited to the last row and column; the
    /// anchor stays. Returns its index.
    int add(const MDATableSelection &selection, long long lastRow, long long lastCol);

    void remove(int index);
    void clear();

    /// Whether an active block holds the cell; touches or, with `full`, holds the whole row or
    /// column.
    bool holds(long long row, long long col) const;
    bool holdsRow(long long row, bool full, long long lastCol) const;
    bool holdsColumn(long long col, bool full, long long lastRow) const;

    /// Whether the first active block that holds the cell has other cells too.
    bool isInLargerBlock(long long row, long long col) const;

private:
    const MDATableSelection *firstHolding(long long row, long long col) const;

    std::vector<std::unique_ptr<MDATableSelection>> m_blocks;
    MDATableSelection *m_current = nullptr;
};
