#include <tul-util-gui/filesystemmodel/filesystempaths_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remoteurlmodel.h>

#include <QDir>
#include <QDragEnterEvent>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QMimeData>

#include <algorithm>
#include <memory>

namespace
{

constexpr int smallestIcon = 32;

/// The path of a place in one spelling; empty for the level of the drives. The URL of "//usr" has
/// the host "usr" and no path, so the URL's own path does not do.
QString pathOf(const QUrl &url)
{
    const QString path = url.toLocalFile();
    const QString clean = QDir::cleanPath(path);
    // Cleaning "remote:/.." leads to this machine.
    const QString root = path.left(path.indexOf(QLatin1Char('/')));
    return clean.startsWith(root) ? clean : path;
}

QUrl placeOf(const QUrl &url)
{
    const QString path = pathOf(url);
    return path.isEmpty() ? QUrl(QStringLiteral("file:")) : QUrl::fromLocalFile(path);
}

bool isFileUrl(const QUrl &url)
{
    return url.scheme() == QLatin1String("file");
}

QIcon atLeastSmallest(QIcon icon)
{
    // A null icon has no pixmap to scale.
    if (!icon.isNull() && icon.actualSize({smallestIcon, smallestIcon}).width() < smallestIcon)
        icon.addPixmap(icon.pixmap(smallestIcon, smallestIcon)
                           .scaledToWidth(smallestIcon, Qt::SmoothTransformation));
    return icon;
}

} // namespace

RemoteUrlModel::RemoteUrlModel(QObject *parent)
    : QStandardItemModel(parent)
{
    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(0);
    connect(&m_refreshTimer, &QTimer::timeout, this, &RemoteUrlModel::refresh);
}

RemoteFileSystemModel *RemoteUrlModel::fileSystemModel() const
{
    return m_fileSystemModel;
}

void RemoteUrlModel::setFileSystemModel(RemoteFileSystemModel *model)
{
    if (model == m_fileSystemModel)
        return;
    if (m_fileSystemModel)
        m_fileSystemModel->disconnect(this);
    m_fileSystemModel = model;
    m_found.clear();
    if (!model)
        return;
    connect(model, &QAbstractItemModel::dataChanged, this, &RemoteUrlModel::dataChanged);
    connect(model, &QAbstractItemModel::layoutChanged, this, &RemoteUrlModel::layoutChanged);
    connect(model, &QAbstractItemModel::rowsInserted, this, &RemoteUrlModel::directoriesInserted);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &RemoteUrlModel::directoriesRemoved);
    connect(model, &QAbstractItemModel::modelReset, this, &RemoteUrlModel::layoutChanged);
    refresh();
}

void RemoteUrlModel::setShowFullPath(bool show)
{
    if (show == m_showFullPath)
        return;
    m_showFullPath = show;
    refresh();
}

QList<QUrl> RemoteUrlModel::urls() const
{
    QList<QUrl> result;
    for (int row = 0; row < rowCount(); ++row)
        result.append(index(row, 0).data(UrlRole).toUrl());
    return result;
}

void RemoteUrlModel::setUrls(const QList<QUrl> &urls)
{
    removeRows(0, rowCount());
    m_found.clear();
    m_invalidUrls.clear();
    addUrls(urls, 0);
}

void RemoteUrlModel::addUrls(const QList<QUrl> &urls, int row, bool move)
{
    if (!m_fileSystemModel)
        return;
    int target = row < 0 || row > rowCount() ? rowCount() : row;
    for (int i = urls.size() - 1; i >= 0; --i) {
        if (!isFileUrl(urls.at(i)))
            continue;
        const QUrl url = placeOf(urls.at(i));
        const int old = rowOf(url);
        if (old >= 0 && !move)
            continue;
        if (old >= 0) {
            removeRow(old);
            target -= old < target;
        }
        insertRow(target, new QStandardItem);
        setUrl(index(target, 0), url, directoryOf(url));
    }
}

void RemoteUrlModel::setUrl(const QModelIndex &index, const QUrl &url, const QModelIndex &dirIndex)
{
    if (!m_fileSystemModel || !index.isValid())
        return;
    const QPersistentModelIndex place(index);
    setData(index, url, UrlRole);
    if (url.path().isEmpty()) {
        show(place, m_fileSystemModel->myComputer().toString(),
             m_fileSystemModel->myComputer(Qt::DecorationRole).value<QIcon>());
        return;
    }

    QString text;
    QIcon icon;
    if (dirIndex.isValid()) {
        // By design: not in native notation, so that remote paths keep their "/".
        text = dirIndex
                   .data(m_showFullPath ? int(RemoteFileSystemModel::FilePathRole)
                                        : int(Qt::DisplayRole))
                   .toString();
        icon = dirIndex.data(Qt::DecorationRole).value<QIcon>();
    } else {
        text = QFileInfo(url.toLocalFile()).fileName();
        if (QFileIconProvider *const provider = m_fileSystemModel->iconProvider())
            icon = provider->icon(QFileIconProvider::Folder);
    }
    note(place, url, dirIndex);
    setData(place, dirIndex.isValid(), EnabledRole);
    setData(place, url.toLocalFile(), Qt::ToolTipRole);
    show(place, text, atLeastSmallest(icon));
}

/// Remembers where a place was found, or that it was not.
void RemoteUrlModel::note(const QModelIndex &place, const QUrl &url, const QModelIndex &directory)
{
    const auto outdated
        = [&](const Found &found) { return !found.place.isValid() || found.place == place; };
    m_found.erase(std::remove_if(m_found.begin(), m_found.end(), outdated), m_found.end());
    m_invalidUrls.removeAll(url);
    if (directory.isValid())
        m_found.append({place, directory});
    else
        m_invalidUrls.append(url);
}

void RemoteUrlModel::show(const QModelIndex &place, const QString &text, const QIcon &icon)
{
    if (place.data(Qt::DisplayRole).toString() != text)
        setData(place, text, Qt::DisplayRole);
    if (place.data(Qt::DecorationRole).value<QIcon>().cacheKey() != icon.cacheKey())
        setData(place, icon, Qt::DecorationRole);
}

QModelIndex RemoteUrlModel::directoryOf(const QUrl &url) const
{
    return m_fileSystemModel->index(pathOf(url));
}

int RemoteUrlModel::rowOf(const QUrl &url) const
{
    const QString path = pathOf(url);
    for (int row = 0; row < rowCount(); ++row) {
        if (pathOf(index(row, 0).data(UrlRole).toUrl()).compare(path, tul::nativeCaseSensitivity())
            == 0)
            return row;
    }
    return -1;
}

void RemoteUrlModel::refresh()
{
    if (!m_fileSystemModel)
        return;
    for (int row = 0; row < rowCount(); ++row) {
        const QUrl url = index(row, 0).data(UrlRole).toUrl();
        setUrl(index(row, 0), url, directoryOf(url));
    }
}

void RemoteUrlModel::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight)
{
    const QVector<Found> found = m_found; // setUrl() writes a new one
    for (const Found &each : found) {
        const QModelIndex directory = each.directory;
        if (each.place.isValid() && directory.isValid() && directory.parent() == topLeft.parent()
            && directory.row() >= topLeft.row() && directory.row() <= bottomRight.row())
            setUrl(each.place, each.place.data(UrlRole).toUrl(), directory);
    }
}

void RemoteUrlModel::layoutChanged()
{
    // Not at once: looking a place up may insert rows, while others who listen to the same signal
    // have not seen it yet.
    m_refreshTimer.start();
}

/// Looks again when the new rows may be a missing place, or lead to one.
void RemoteUrlModel::directoriesInserted(const QModelIndex &parent)
{
    const QString above = QDir::cleanPath(m_fileSystemModel->filePath(parent));
    const auto below = [&](const QUrl &url) {
        return pathOf(url).startsWith(above, tul::nativeCaseSensitivity());
    };
    if (std::any_of(m_invalidUrls.cbegin(), m_invalidUrls.cend(), below))
        m_refreshTimer.start();
}

void RemoteUrlModel::directoriesRemoved()
{
    const auto gone = [](const Found &found) { return !found.directory.isValid(); };
    if (std::any_of(m_found.cbegin(), m_found.cend(), gone))
        m_refreshTimer.start();
}

bool RemoteUrlModel::canDrop(const QDragEnterEvent *event) const
{
    if (!m_fileSystemModel || !event->mimeData()->formats().contains(mimeTypes().constFirst()))
        return false;
    const QList<QUrl> urls = event->mimeData()->urls();
    return std::all_of(urls.cbegin(), urls.cend(), [this](const QUrl &url) {
        const QModelIndex directory = directoryOf(url);
        // To the model, an index that it does not have is the directory of the drives.
        const bool known = directory.isValid() || pathOf(url).isEmpty();
        return isFileUrl(url)
            && (known ? m_fileSystemModel->isDir(directory) : QFileInfo(pathOf(url)).isDir());
    });
}

Qt::ItemFlags RemoteUrlModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QStandardItemModel::flags(index);
    if (!index.isValid())
        return flags;
    flags &= ~(Qt::ItemIsEditable | Qt::ItemIsDropEnabled);
    if (index.data(Qt::DecorationRole).isNull())
        flags &= ~Qt::ItemIsEnabled;
    return flags;
}

QStringList RemoteUrlModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

QMimeData *RemoteUrlModel::mimeData(const QModelIndexList &indexes) const
{
    QModelIndexList sorted = indexes;
    std::sort(sorted.begin(), sorted.end());
    QList<QUrl> urls;
    for (const QModelIndex &index : qAsConst(sorted))
        urls.append(index.data(UrlRole).toUrl());
    auto data = std::make_unique<QMimeData>();
    data->setUrls(urls);
    return data.release();
}

bool RemoteUrlModel::dropMimeData(const QMimeData *data, Qt::DropAction /*action*/, int row,
                                  int /*column*/, const QModelIndex & /*parent*/)
{
    if (!data->formats().contains(mimeTypes().constFirst()))
        return false;
    addUrls(data->urls(), row);
    return true;
}

Qt::DropActions RemoteUrlModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::LinkAction;
}
