#include <tul-util-gui/filedialog/remoteproxymodel.h>
#include <tul-util-gui/filedialog/remotesettings_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QElapsedTimer>
#include <QTimerEvent>

#include <algorithm>
#include <utility>

namespace
{

const int manyRows = 100; // for which the base class would not look one by one
const int pauseFactor = 3; // between two sorts, in times of the first
const int longestPause = 1000; // milliseconds

} // namespace

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

void RemoteProxyModel::setSourceModel(QAbstractItemModel *sourceModel)
{
    for (const QMetaObject::Connection &connection : m_connections)
        disconnect(connection);
    if (sourceModel) {
        // Before the base class connects itself, to be told first.
        m_connections = {connect(sourceModel, &QAbstractItemModel::rowsAboutToBeInserted, this,
                                 [this](const QModelIndex &parent, int first, int last) {
                                     prepareForRows(parent, last - first + 1);
                                 }),
                         connect(sourceModel, &QAbstractItemModel::dataChanged, this, [this] {
                             m_missedChange = m_missedChange || m_sortTimer.isActive();
                         })};
    }
    QSortFilterProxyModel::setSourceModel(sourceModel);
}

void RemoteProxyModel::prepareForRows(const QModelIndex &sourceParent, int count)
{
    const bool isWaiting = m_sortTimer.isActive();
    if (!isWaiting && (count < manyRows || !dynamicSortFilter() || sortColumn() < 0))
        return;
    if (m_sortedParent != sourceParent) { // which may be small
        m_sortedParent = sourceParent;
        m_sortPause = 0;
    } else if (isWaiting) {
        return;
    }
    setDynamicSortFilter(false);
    m_sortTimer.start(m_sortPause, this);
}

void RemoteProxyModel::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_sortTimer.timerId()) {
        QSortFilterProxyModel::timerEvent(event);
        return;
    }
    m_sortTimer.stop();
    QElapsedTimer time;
    time.start();
    setDynamicSortFilter(true);
    m_sortPause = std::min(pauseFactor * static_cast<int>(time.elapsed()), longestPause);
    if (std::exchange(m_missedChange, false))
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
        if (leftIsDir != rightIsDir)
            return leftIsDir;
        // The base comparison does the same, by way of variants.
        return comparesShownNames()
            ? files->fileName(left).localeAwareCompare(files->fileName(right)) < 0
            : QSortFilterProxyModel::lessThan(left, right);
    case RemoteFileSystemModel::SizeColumn:
        return leftIsDir == rightIsDir ? files->size(left) < files->size(right) : leftIsDir;
    case RemoteFileSystemModel::DateColumn:
        return files->lastModified(left) < files->lastModified(right);
    default:
        return QSortFilterProxyModel::lessThan(left, right);
    }
}

bool RemoteProxyModel::comparesShownNames() const
{
    return isSortLocaleAware() && (sortRole() == Qt::DisplayRole || sortRole() == Qt::EditRole);
}
