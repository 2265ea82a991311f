#pragma once

#include <workbench/arraynumbers.h>
#include <workbench/arrayslice.h>

#include <tul-util-gui/mdatable/mdatable.h>

#include <QStringList>

#include <functional>
#include <memory>

/// A table that shows a slice of an array which lies elsewhere: it places no items, but serves each
/// cell when the table asks for it, from a small cache of blocks.
///
/// Only the blocks under the cells that are painted or copied are read, so that the cost of showing
/// an array does not depend on its size.
class ArrayTable : public MDATable
{
    Q_OBJECT

public:
    /// Reads the numbers of a block in the order of the array, the last coordinate fastest. Returns
    /// a sentence for the user when that fails, empty when all went well.
    using Reader = std::function<QString(const ArrayBox &box, ArrayNumbers *numbers)>;

    explicit ArrayTable(QWidget *parent = nullptr);
    ~ArrayTable() override;

    /// Shows a slice of another array. `names` has the name of each dimension. Without a reader the
    /// table is empty.
    void setArray(const QStringList &names, const Reader &reader, const ArraySlice &slice);

    /// Shows another slice of the same array. When only fixed indices differ, the view stays where
    /// it is; otherwise it starts over at the first cell.
    void setSlice(const ArraySlice &slice);
    const ArraySlice &slice() const;

    MDATableItem *item(long long row, long long col) const override;

Q_SIGNALS:
    /// Emitted, from the event loop, once an array fails to be read. Cells that were not read until
    /// then stay empty; no further attempt is made until setArray().
    void readFailed(const QString &message);

protected:
    void paintFocus(QPainter *painter, const QRect &cr) override;
    void changeEvent(QEvent *event) override;

private:
    struct Private;

    const std::unique_ptr<Private> d;
};
