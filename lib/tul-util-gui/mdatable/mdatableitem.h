#pragma once

#include <QSize>
#include <QString>

#include <tul-util-gui/tul_util_gui_export.h>

class MDATable;
class QPainter;
class QPalette;
class QRect;

/// The content of one cell of an MDATable: a text that knows how to paint and measure itself.
///
/// Derive from it to show something else than a text, or to compute the text when it is asked for:
/// painting, alignment, key and size hint all go through the virtual text().
///
/// *Units*: row and column are 64-bit, -1 until the table places the item; sizes are pixels.
///
/// *Ownership*: an item that was placed with MDATable::setItem() belongs to the table, which
/// deletes it with its cell. Do not delete a placed item: use MDATable::takeItem() or
/// MDATable::clearCell(). The item never owns its table.
///
/// *Threads*: GUI thread only.
class TUL_UTIL_GUI_EXPORT MDATableItem
{
public:
    /// An enabled item with the given text, meant for `table`, which is only stored: it may be
    /// null. Place the item with MDATable::setItem().
    explicit MDATableItem(MDATable *table);
    MDATableItem(MDATable *table, const QString &text);

    /// A copy carries text, table, enabled flag, row and column, but is itself in no cell.
    MDATableItem(const MDATableItem &other);
    MDATableItem &operator=(const MDATableItem &other);
    virtual ~MDATableItem();

    /// The text shown in the cell. Setting it does not repaint, so that many items can be changed
    /// at the cost of one MDATable::updateCell() or of one repaint; MDATable::setText() repaints.
    virtual QString text() const;
    virtual void setText(const QString &text);

    /// How the text is placed, as Qt::Alignment flags: numbers on the right, all else on the left,
    /// always vertically centred. A number is what the toolkit's locale-independent integer and
    /// double parsers accept. The text is parsed anew on each call.
    virtual int alignment() const;

    /// What to sort or search by: the text.
    virtual QString key() const;

    /// The size in pixels that shows the text in the table's font (the application's font without
    /// a table), at least the application's global strut. A text of several lines is laid into the
    /// table's column width.
    virtual QSize sizeHint() const;

    /// Called by the table when it places or moves the item.
    virtual void setRow(long long row);
    virtual void setCol(long long col);

    /// Paints the cell. The painter's origin is the cell's upper left corner, `rect` gives only
    /// the size; `palette`'s current colour group says how the cell is to look. The table saves the
    /// painter before and restores it afterwards.
    virtual void paint(QPainter *painter, const QPalette &palette, const QRect &rect,
                       bool selected);

    /// Whether the item can be made current by a press and is not drawn as disabled. A change
    /// repaints the cell.
    virtual void setEnabled(bool enabled);
    bool isEnabled() const { return m_enabled; }

    /// Tells subclasses apart: RTTI here, a subclass returns a value of its own.
    virtual int rtti() const;

    long long row() const { return m_row; }
    long long col() const { return m_col; }
    MDATable *table() const { return m_table; }

    /// What rtti() of this class returns: 0.
    static const int RTTI;

private:
    friend class CellStore; // marks the items that it holds
    friend class MDATablePrivate; // sets the table of an item that is placed or released

    QString m_text;
    MDATable *m_table;
    unsigned m_enabled : 1;
    unsigned m_placed : 1; // in a table's store; belongs to the object and is not copied
    long long m_row = -1;
    long long m_col = -1;
};
