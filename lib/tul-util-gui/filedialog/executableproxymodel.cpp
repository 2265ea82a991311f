#include <tul-util-gui/filedialog/executableproxymodel_p.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QFileDialog>
#include <QFileSystemModel>

namespace
{

QFileInfo fileOf(const QFileSystemModel *model, const QModelIndex &index)
{
    return model->fileInfo(index);
}

/// The record of a listed file has been read on the gatherer's thread, so that asking it costs no
/// round trip to the remote machine; only a file without a record is asked for here.
QFileInfo fileOf(const RemoteFileSystemModel *model, const QModelIndex &index)
{
    const QFileInfo listed = model->fileInfo(index);
    return listed.filePath().isEmpty() ? QFileInfo(model->filePath(index)) : listed;
}

template<class Model>
bool isProgramOrDirectory(const QSortFilterProxyModel &proxy, int sourceRow,
                          const QModelIndex &sourceParent)
{
    const auto *const model = qobject_cast<const Model *>(proxy.sourceModel());
    if (!model)
        return true;
    const QFileInfo file = fileOf(model, model->index(sourceRow, 0, sourceParent));
    return file.isDir() || file.isExecutable();
}

/// Whether the dialog that owns the proxy gives its user a choice.
template<class Dialog> bool hasSeveralFilters(const QObject *parent)
{
    const auto *const dialog = qobject_cast<const Dialog *>(parent);
    return dialog && dialog->nameFilters().size() > 1;
}

bool isForExecutables(const QString &filter)
{
    return filter.contains(QLatin1String("executable"), Qt::CaseInsensitive);
}

} // namespace

namespace FileDialog
{

LocalExecutableFileProxyModel::LocalExecutableFileProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
{
}

void LocalExecutableFileProxyModel::filterSelected(const QString &filter)
{
    if (!hasSeveralFilters<QFileDialog>(parent()))
        return;
    m_executablesOnly = isForExecutables(filter);
    invalidateFilter();
}

void LocalExecutableFileProxyModel::sort(int column, Qt::SortOrder order)
{
    // The rows follow the model, which puts directories first and numbers in order.
    if (sourceModel())
        sourceModel()->sort(column, order);
}

bool LocalExecutableFileProxyModel::filterAcceptsRow(int sourceRow,
                                                     const QModelIndex &sourceParent) const
{
    return QSortFilterProxyModel::filterAcceptsRow(sourceRow, sourceParent)
        && (!m_executablesOnly
            || isProgramOrDirectory<QFileSystemModel>(*this, sourceRow, sourceParent));
}

RemoteExecutableFileProxyModel::RemoteExecutableFileProxyModel(QObject *parent)
    : RemoteProxyModel(parent)
{
}

void RemoteExecutableFileProxyModel::filterSelected(const QString &filter)
{
    if (!hasSeveralFilters<RemoteFileDialog>(parent()))
        return;
    m_executablesOnly = isForExecutables(filter);
    invalidateFilter();
}

bool RemoteExecutableFileProxyModel::filterAcceptsRow(int sourceRow,
                                                      const QModelIndex &sourceParent) const
{
    return RemoteProxyModel::filterAcceptsRow(sourceRow, sourceParent)
        && (!m_executablesOnly
            || isProgramOrDirectory<RemoteFileSystemModel>(*this, sourceRow, sourceParent));
}

} // namespace FileDialog
