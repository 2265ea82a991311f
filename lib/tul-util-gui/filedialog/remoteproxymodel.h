#pragma once

#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/tul_util_gui_export.h>

#include <QSortFilterProxyModel>

/// What stands between the model and the views of a RemoteFileDialog: in a remote dialog it hides
/// all rows but those of the remote machine, and it sorts directories before files.
///
/// Derive from it to hide more. The dialog tells it the location when it is the dialog's proxy
/// model; over any other model than a RemoteFileSystemModel it is a plain proxy.
///
/// *By design*: only an ascending order by name or size begins with the directories.
class TUL_UTIL_GUI_EXPORT RemoteProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit RemoteProxyModel(QObject *parent = nullptr);

    /// The remote one at first.
    RemoteFileDialog::FileSystemLocation location() const { return m_location; }
    void setLocation(RemoteFileDialog::FileSystemLocation location);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    RemoteFileDialog::FileSystemLocation m_location = RemoteFileDialog::RemoteLocation;
};
