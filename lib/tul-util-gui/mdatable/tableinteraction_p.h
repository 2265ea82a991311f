#pragma once

#include <QPoint>
#include <QTimer>

class MDATable;
class MDATablePrivate;
class MDATableSelection;
class QContextMenuEvent;
class QKeyEvent;
class QMouseEvent;

/// What keys and mouse do to the current cell and the selections of a table.
///
/// Each signal that the table emits on the way may make the host change cell and selections or
/// delete the table: state is read again after it.
class TableInteraction
{
public:
    TableInteraction(MDATable *table, MDATablePrivate *state);

    void setCurrentCell(long long row, long long col, bool updateSelections, bool ensureVisible);

    /// Whether a key was handled before the focus chain can take it.
    bool filterKey(QKeyEvent *event);
    void keyPress(QKeyEvent *event);
    void activateNextCell();

    void mousePress(QMouseEvent *event);
    void mouseMove(QMouseEvent *event);
    void mouseRelease(QMouseEvent *event);
    void mouseDoubleClick(QMouseEvent *event);
    void contextMenu(QContextMenuEvent *event);

    /// Grows the current selection to the cell under the pointer and scrolls it into view; goes on
    /// by itself while the pointer is outside the viewport.
    void autoScroll();
    void stopAutoScroll() { m_autoScrollTimer->stop(); }

    /// Moves a cell off hidden sections in the direction of a key. Where there is no visible
    /// section, it becomes the current one.
    void fixCell(long long &row, long long &col, int key) const;

private:
    struct Cell {
        long long row;
        long long col;
        bool isValid() const { return row != -1 && col != -1; }
        bool isNone() const { return row == -1 && col == -1; }
    };

    void tab();
    void backtab();
    bool leaveByKey(QKeyEvent *event, bool next);
    void moveByKey(int key, bool extend);
    Cell keyTarget(int key) const;
    long long pageTarget(int direction) const;
    bool isSteppable(long long row, long long col) const;
    Cell fixedCellAt(const QPoint &pos) const;
    void startSelection(const Cell &cell);
    void selectOnly(bool active);
    void replaceSelections(const QPoint &pos);
    void extendSelection(const Cell &anchor);

    MDATable *const q;
    MDATablePrivate *const d;
    Cell m_pressed{-1, -1}; // where the mouse went down, outside the sections -1
    bool m_pressedOnSelected = false; // a left press that may become a drag keeps the selection
    QTimer *m_autoScrollTimer; // single shot, restarted by each step
};
