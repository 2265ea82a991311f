#pragma once

#include <QPalette>
#include <QRect>
#include <QRegion>

#include <optional>

class MDATable;
class MDATablePrivate;
class QPainter;

/// Draws the contents of a table for its painting functions, which a host may override: whatever
/// one of them does through another goes through the table.
class TablePainter
{
public:
    TablePainter(MDATable *table, const MDATablePrivate *state)
        : q(table)
        , d(state)
    {
    }

    void drawContents(QPainter *painter, const QRect &clip);

    /// The part of the viewport to which the next drawContents() can leave traces: cells outside it
    /// are skipped. All of it when empty.
    void setExposed(const QRegion &region) { m_exposed = region; }

    QPalette::ColorGroup groupOf(long long row, long long col) const;
    void drawCell(QPainter *painter, long long row, long long col, const QRect &cr, bool selected,
                  QPalette::ColorGroup group) const;
    void drawFocus(QPainter *painter, const QRect &cr) const;
    void drawEmptyArea(QPainter *painter, const QRect &rect) const;

    /// Where the latest drawContents() ended, -1 before the first.
    long long lastPaintedRow() const { return m_lastPaintedRow; }
    long long lastPaintedCol() const { return m_lastPaintedCol; }

private:
    bool hasFocus() const;
    bool wantsActiveLook() const;
    bool isExposed(const QRect &rect) const;
    int gridHint() const;
    void drawCells(QPainter *painter, long long rowFirst, long long colFirst, long long rowLast,
                   long long colLast);

    MDATable *const q;
    const MDATablePrivate *const d;
    bool m_activeLook = true; // true outside drawContents()
    bool m_keepActiveLook = false;
    QRegion m_exposed;
    std::optional<int> m_gridHint; // asked once per drawContents(), the style answers slowly
    long long m_lastPaintedRow = -1;
    long long m_lastPaintedCol = -1;
};
