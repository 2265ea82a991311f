#include <tul-util-gui/filesystemmodel/remotesidebardelegate_p.h>
#include <tul-util-gui/filesystemmodel/remoteurlmodel.h>

void RemoteSideBarDelegate::initStyleOption(QStyleOptionViewItem *option,
                                            const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant exists = index.data(RemoteUrlModel::EnabledRole);
    if (exists.isValid() && !exists.toBool())
        option->state &= ~QStyle::State_Enabled;
}
