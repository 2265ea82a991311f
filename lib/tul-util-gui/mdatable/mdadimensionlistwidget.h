#pragma once

#include <tul-util-gui/tul_util_gui_export.h>
#include <tul-util-gui/widgets/fixedheightlistwidget.h>

/// A small list of the dimensions of an array, put in order by drag and drop, for example to choose
/// which dimensions an MDATable shows as rows and which as columns.
///
/// The host fills it with list items and sets the drag-and-drop mode; the data that is dragged is
/// that of any list widget. An item without Qt::ItemIsDragEnabled is fixed: it cannot be dragged by
/// itself, and nothing can be dropped upon it. The empty area belongs to the last item: a drop
/// there is refused when that one is fixed. An empty list takes any drop that a list widget takes.
///
/// Inside the list a drag moves the entries; from one list to another it moves or copies them, as
/// the user chooses. Entries are removed here only after a move, and only those that were dragged.
///
/// *By design*: a fixed entry that is selected together with a movable one travels with it.
/// Selected entries are drawn without a highlight while the list is enabled.
class TUL_UTIL_GUI_EXPORT MdaDimensionListWidget : public FixedHeightListWidget
{
    Q_OBJECT

public:
    explicit MdaDimensionListWidget(QWidget *parent = nullptr);

protected:
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

    /// Drags the selected entries and returns when the drag has ended. An event loop runs
    /// meanwhile, in which entries may come and go. Deleting the list ends its drag; but where the
    /// mouse has started it, the toolkit's item views still use themselves afterwards, so that a
    /// host hides the list first and deletes it when the drag is over.
    void startDrag(Qt::DropActions supportedActions) override;

private:
    bool isRowDragEnabled(int row) const;
    bool isIndexDragEnabled(const QModelIndex &index) const;
    bool isDropAllowed(const QPoint &position) const;
    void removeRows(const QList<QPersistentModelIndex> &indexes);
    QModelIndexList selectedDraggableIndexes() const;
};
