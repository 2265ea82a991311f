#pragma once

#include <tul-util-gui/mdatable/mdatable.h>

class MDATableHeader;
class QScrollBar;

/// The rows or the columns of a table: whatever both do alike is written once, with header, scroll
/// bar, current index and keys taken from here. Counts and changes go through the table's virtual
/// functions, which hosts may override.
struct TableAxis {
    MDATable *table;
    MDATableHeader *header;
    QScrollBar *bar;
    int forwardKey; ///< the arrow key that leads to larger indices
    int backwardKey;
    long long (MDATable::*countFunction)() const;
    void (MDATable::*sizeChangedFunction)();
    long long current = -1;

    long long count() const { return (table->*countFunction)(); }
    void announceSizeChange() const { (table->*sizeChangedFunction)(); }

    /// The nearest visible section from `section` on in one direction, the current one when there
    /// is none.
    long long forward(long long section) const;
    long long backward(long long section) const;

    /// The visible section for a section found at a pixel: -1, outside the sections, becomes the
    /// first one before the viewport's start and else the last one; then the nearest visible one
    /// inwards, or the current one. -1 only on an empty axis.
    long long fixed(long long section, int pixel) const;

    /// Scrolls as little as brings the section into a viewport of `extent` pixels, a section longer
    /// than that to its start; not at all for negative sections.
    void ensureVisible(long long section, int extent) const;

    /// Cuts first..last to the visible sections between those at the two ends of the viewport, -1
    /// for none there; false when nothing remains.
    bool cutToVisible(long long &first, long long &last, long long atStart, long long atEnd) const;
};
