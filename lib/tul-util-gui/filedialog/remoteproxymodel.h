#pragma once

#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/tul_util_gui_export.h>

#include <QBasicTimer>
#include <QMetaObject>
#include <QPersistentModelIndex>
#include <QSortFilterProxyModel>

#include <array>

/// What stands between the model and the views of a RemoteFileDialog: in a remote dialog it hides
/// all rows but those of the remote machine, and it sorts directories before files.
///
/// Derive from it to hide more. The dialog tells it the location when it is the dialog's proxy
/// model; over any other model than a RemoteFileSystemModel it is a plain proxy.
///
/// Of a large directory that is being listed the new rows come last for a moment, and are then put
/// in their places all at once: the base class would find a place for each alone, which takes
/// seconds. Until then dynamicSortFilter() is false, and it is true afterwards: whoever wants it
/// off sets it when nothing is being listed.
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

    void setSourceModel(QAbstractItemModel *sourceModel) override;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;
    void timerEvent(QTimerEvent *event) override;

private:
    void prepareForRows(const QModelIndex &sourceParent, int count);
    bool comparesShownNames() const;

    RemoteFileDialog::FileSystemLocation m_location = RemoteFileDialog::RemoteLocation;
    std::array<QMetaObject::Connection, 2> m_connections; // to the source model
    QBasicTimer m_sortTimer; // active while new rows wait for their places
    QPersistentModelIndex m_sortedParent; // of the new rows, in the source model
    int m_sortPause = 0; // milliseconds between two sorts of them
    bool m_missedChange = false; // of a row, that the filter did not look at
};
