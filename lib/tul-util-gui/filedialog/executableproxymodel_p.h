#pragma once

#include <tul-util-gui/filedialog/remoteproxymodel.h>

#include <QSortFilterProxyModel>

namespace FileDialog
{

/// Shows a local file dialog's files, or only the executable ones and the directories.
///
/// The parent has to be the dialog, whose name filters decide; the model under it has to be a
/// QFileSystemModel. Shows all files until filterSelected() says otherwise.
class LocalExecutableFileProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit LocalExecutableFileProxyModel(QObject *parent = nullptr);

    /// Sorts the model below, as the dialog's list would be without a proxy.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

public Q_SLOTS:
    /// Narrows the list when the chosen filter speaks of executables, in any case of letters, and
    /// widens it otherwise. Ignored in a dialog with fewer than two name filters.
    void filterSelected(const QString &filter);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    bool m_executablesOnly = false;
};

/// The same in a remote file dialog, over a RemoteFileSystemModel; what is not of the dialog's side
/// stays hidden in any case.
class RemoteExecutableFileProxyModel : public RemoteProxyModel
{
    Q_OBJECT

public:
    explicit RemoteExecutableFileProxyModel(QObject *parent = nullptr);

public Q_SLOTS:
    void filterSelected(const QString &filter);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    bool m_executablesOnly = false;
};

} // namespace FileDialog
