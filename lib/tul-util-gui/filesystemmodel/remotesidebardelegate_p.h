#pragma once

#include <QStyledItemDelegate>

/// Draws the places of a side bar, those greyed whose directory does not exist. They are greyed
/// here and not by their flags, because they stay selectable.
class RemoteSideBarDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
