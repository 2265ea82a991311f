#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QListWidget>

/// A list widget that hugs its items across the flow: a list that flows from left to right asks for
/// the height of one row, a list that flows from top to bottom for the width of one column. Along
/// the flow it asks for what any scroll area asks for.
///
/// Each size hint asks every item for its own, so the list is meant for few items. Nothing is kept
/// between two calls: after items were added or changed the next call gives the new hint, but only
/// the host's layout decides when to ask.
///
/// *By design*: hidden items count like visible ones; room for the horizontal scroll bar is always
/// kept, in both flows; the size hint is the minimum size hint.
class TUL_UTIL_GUI_EXPORT FixedHeightListWidget : public QListWidget
{
    Q_OBJECT

public:
    explicit FixedHeightListWidget(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;
};
