#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QTimer>

class MDATable;
class MDATablePrivate;
class QScrollBar;

/// Where the cells, headers and scroll bars of a table are.
class TableLayout
{
public:
    TableLayout(MDATable *table, MDATablePrivate *state);

    QRect cellGeometry(long long row, long long col) const;

    /// What is seen of a range of cells, both ends inclusive; empty when nothing is.
    QRect visibleGeometry(long long top, long long left, long long bottom, long long right) const;

    void setLeftMargin(int margin);
    void setTopMargin(int margin);
    /// Gives the viewport its margins, the left header's on the side of the layout direction.
    void applyMargins();

    /// The table's size hint; `usual` is that of any scroll area.
    QSize sizeHint(const QSize &usual) const;

    void updateScrollBars();
    /// Pulls back a view that is scrolled beyond the contents and places the headers.
    void updateHeaders();
    /// Lays out the headers from the event loop, once for many calls.
    void queueUpdate() const;
    void announceBarRanges();

    /// Moves what is painted to where the headers have scrolled; what comes into view is painted
    /// from the event loop. To be called before anything else is painted at the new place.
    void scrollCells();

    void ensureCellVisible(long long row, long long col);
    /// To be called when the table is shown, after its layout.
    void tableShown();

private:
    void setBarMaximum(QScrollBar *bar, int maximum);
    QPoint scrolledTo() const;

    MDATable *const q;
    MDATablePrivate *const d;
    int m_leftMargin = 0; // pixels beside the viewport, on the right in right-to-left layouts
    int m_topMargin = 0;
    QTimer *m_timer; // single shot, lays out the headers
    bool m_barRangesPending = false; // maxima were changed without their signal
    QPoint m_cellOffset; // of the headers, when cells were scrolled last
    bool m_wasShown = false;
    QPoint m_scrolledFrom; // to bring the current cell into view before the first show
    QPoint m_scrolledTo;
};
