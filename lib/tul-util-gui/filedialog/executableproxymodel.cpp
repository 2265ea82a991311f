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

/// Whether the dialog that owns the proxy wants executables only; `current` where the dialog gives
/// its user no choice.
template<class Dialog>
bool wantsExecutables(const QObject *parent, const QString &filter, bool current)
{
    const auto *const dialog = qobject_cast<const Dialog *>(parent);
    if (!dialog || dialog->nameFilters().size() < 2)
        return current;
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
    m_executablesOnly = wantsExecutables<QFileDialog>(parent(), filter, m_executablesOnly);
    invalidateFilter();
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
    m_executablesOnly = wantsExecutables<RemoteFileDialog>(parent(), filter, m_executablesOnly);
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
