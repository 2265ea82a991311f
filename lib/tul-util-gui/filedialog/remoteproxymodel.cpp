#include <tul-util-gui/filedialog/remoteproxymodel.h>
#include <tul-util-gui/filedialog/remotesettings_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

RemoteProxyModel::RemoteProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
{
    setSortCaseSensitivity(Qt::CaseInsensitive);
    setSortLocaleAware(true);
}

void RemoteProxyModel::setLocation(RemoteFileDialog::FileSystemLocation location)
{
    m_location = location;
    invalidateFilter();
}

bool RemoteProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    const auto *const files = qobject_cast<const RemoteFileSystemModel *>(sourceModel());
    if (!files)
        return QSortFilterProxyModel::filterAcceptsRow(sourceRow, sourceParent);
    return m_location != RemoteFileDialog::RemoteLocation
        || tul::hasPrefix(files->filePath(files->index(sourceRow, 0, sourceParent)),
                          tul::remoteSettings().prefix);
}

bool RemoteProxyModel::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const auto *const files = qobject_cast<const RemoteFileSystemModel *>(sourceModel());
    if (!files)
        return QSortFilterProxyModel::lessThan(left, right);
    const bool leftIsDir = files->isDir(left);
    const bool rightIsDir = files->isDir(right);
    switch (left.column()) {
    case RemoteFileSystemModel::NameColumn:
        return leftIsDir == rightIsDir ? QSortFilterProxyModel::lessThan(left, right) : leftIsDir;
    case RemoteFileSystemModel::SizeColumn:
        return leftIsDir == rightIsDir ? files->size(left) < files->size(right) : leftIsDir;
    case RemoteFileSystemModel::DateColumn:
        return files->lastModified(left) < files->lastModified(right);
    default:
        return QSortFilterProxyModel::lessThan(left, right);
    }
}
