#include <tul-util-gui/filesystemmodel/filesystempaths_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remoteurlmodel.h>

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
    return tul::cleanPath(url.toLocalFile());
}

bool isSamePath(const QString &a, const QString &b)
{
    return a.compare(b, tul::nativeCaseSensitivity()) == 0;
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

/// The row of this name among some in a directory; invalid when there is none.
QModelIndex findRow(const RemoteFileSystemModel &model, const QModelIndex &directory,
                    const QString &name, int first, int last)
{
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = model.index(row, 0, directory);
        if (isSamePath(model.fileName(index), name))
            return index;
    }
    return {};
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
    // Not at once: looking a place up may insert rows, while others who listen to the same signal
    // have not seen it yet.
    m_followTimer.setSingleShot(true);
    m_followTimer.setInterval(0);
    connect(&m_followTimer, &QTimer::timeout, this, &RemoteUrlModel::follow);
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
    m_places.clear();
    if (!model)
        return;
    connect(model, &QAbstractItemModel::dataChanged, this, &RemoteUrlModel::dataChanged);
    connect(model, &QAbstractItemModel::layoutChanged, this, &RemoteUrlModel::layoutChanged);
    // Filtering announces itself as a change of the layout that is no sorting.
    connect(model, &QAbstractItemModel::layoutAboutToBeChanged, this,
            [this](const QList<QPersistentModelIndex> &, LayoutChangeHint hint) {
                if (hint == NoLayoutChangeHint)
                    filteringBegins();
            });
    connect(model, &QAbstractItemModel::layoutChanged, this,
            [this](const QList<QPersistentModelIndex> &, LayoutChangeHint hint) {
                if (hint == NoLayoutChangeHint)
                    filteringEnds();
            });
    connect(model, &QAbstractItemModel::rowsInserted, this, &RemoteUrlModel::directoriesInserted);
    connect(model, &RemoteFileSystemModel::fileRenamed, this, &RemoteUrlModel::directoryRenamed);
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
    if (!m_fileSystemModel)
        return;
    removeRows(0, rowCount());
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
        const QPersistentModelIndex directory = directoryOf(pathOf(url));
        if (!m_fileSystemModel) // deleted by a receiver
            return;
        if (old >= 0) {
            removeRow(old);
            target -= old < target;
        }
        insertRow(target, new QStandardItem);
        setUrl(index(target, 0), url, directory);
    }
}

void RemoteUrlModel::setUrl(const QModelIndex &index, const QUrl &url, const QModelIndex &dirIndex)
{
    if (!m_fileSystemModel || !index.isValid())
        return;
    const QPersistentModelIndex place(index);
    forget(place);
    setData(place, url, UrlRole);
    if (url.path().isEmpty()) {
        setData(place, QVariant(), EnabledRole);
        setData(place, QVariant(), Qt::ToolTipRole);
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
    m_places.append({place, dirIndex, pathOf(url), dirIndex.isValid(), false});
    setData(place, dirIndex.isValid(), EnabledRole);
    setData(place, url.toLocalFile(), Qt::ToolTipRole);
    show(place, text, atLeastSmallest(icon));
}

/// Forgets what was found for a row, and for rows that are gone.
void RemoteUrlModel::forget(const QModelIndex &index)
{
    const auto isOutdated
        = [&](const Place &place) { return !place.index.isValid() || place.index == index; };
    m_places.erase(std::remove_if(m_places.begin(), m_places.end(), isOutdated), m_places.end());
}

void RemoteUrlModel::show(const QModelIndex &place, const QString &text, const QIcon &icon)
{
    if (place.data(Qt::DisplayRole).toString() != text)
        setData(place, text, Qt::DisplayRole);
    if (place.data(Qt::DecorationRole).value<QIcon>().cacheKey() != icon.cacheKey())
        setData(place, icon, Qt::DecorationRole);
}

/// Looking up shows rows, whose receivers may delete the file system model.
QModelIndex RemoteUrlModel::directoryOf(const QString &path) const
{
    return m_fileSystemModel ? m_fileSystemModel->index(path) : QModelIndex();
}

int RemoteUrlModel::rowOf(const QUrl &url) const
{
    if (!url.isEmpty() && !isFileUrl(url))
        return -1;
    const QString path = pathOf(url);
    for (int row = 0; row < rowCount(); ++row) {
        if (isSamePath(pathOf(index(row, 0).data(UrlRole).toUrl()), path))
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
        setUrl(index(row, 0), url, directoryOf(pathOf(url)));
    }
}

void RemoteUrlModel::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight)
{
    const QModelIndex parent = topLeft.parent();
    const QVector<Place> places = m_places; // setUrl() writes new ones
    for (const Place &place : places) {
        const QModelIndex directory = place.directory;
        if (place.index.isValid() && directory.isValid() && directory.parent() == parent
            && directory.row() >= topLeft.row() && directory.row() <= bottomRight.row()
            && !isLost(place))
            setUrl(place.index, place.index.data(UrlRole).toUrl(), directory);
    }
    directoriesRemoved(); // one that was renamed
}

void RemoteUrlModel::layoutChanged()
{
    m_followTimer.start();
}

/// The elements of a place's path, from the first, that have rows.
int RemoteUrlModel::shownElements(const Place &place) const
{
    int count = 0;
    QModelIndex directory;
    const QStringList elements = tul::splitPath(place.path);
    for (const QString &element : elements) {
        const int last = m_fileSystemModel->rowCount(directory) - 1;
        directory = findRow(*m_fileSystemModel, directory, element, 0, last);
        if (!directory.isValid())
            break;
        ++count;
    }
    return count;
}

void RemoteUrlModel::filteringBegins()
{
    for (Place &place : m_places)
        place.shown = place.wasFound ? 0 : shownElements(place);
}

/// Takes a missing place for one that may be there when the filters show more of its path.
void RemoteUrlModel::filteringEnds()
{
    for (Place &place : m_places)
        place.mayHaveCome
            = place.mayHaveCome || (!place.wasFound && shownElements(place) > place.shown);
}

void RemoteUrlModel::directoriesInserted(const QModelIndex &parent, int first, int last)
{
    expect(m_fileSystemModel->filePath(parent), [&](const QString &name) {
        return findRow(*m_fileSystemModel, parent, name, first, last).isValid();
    });
}

void RemoteUrlModel::directoryRenamed(const QString &path, const QString & /*oldName*/,
                                      const QString &newName)
{
    expect(path, [&](const QString &name) { return isSamePath(newName, name); });
}

/// Takes a missing place for one that may be there when the next element of its path has come.
void RemoteUrlModel::expect(const QString &directory,
                            const std::function<bool(const QString &)> &hasCome)
{
    const QStringList above = tul::splitPath(tul::cleanPath(directory));
    for (Place &place : m_places) {
        const QStringList elements = tul::splitPath(place.path);
        if (place.wasFound || elements.size() <= above.size()
            || !isSamePath(tul::joinElements(elements.mid(0, above.size())),
                           tul::joinElements(above)))
            continue;
        place.mayHaveCome = place.mayHaveCome || hasCome(elements.at(above.size()));
        if (place.mayHaveCome)
            m_followTimer.start();
    }
}

void RemoteUrlModel::directoriesRemoved()
{
    if (std::any_of(m_places.cbegin(), m_places.cend(),
                    [this](const Place &place) { return isLost(place); }))
        m_followTimer.start();
}

/// Whether the directory of a place is gone, or has another path now.
bool RemoteUrlModel::isLost(const Place &place) const
{
    if (!place.wasFound || !place.directory.isValid())
        return place.wasFound;
    return !isSamePath(tul::cleanPath(m_fileSystemModel->filePath(place.directory)), place.path);
}

/// Reads the places again, and looks up on the disk only those that were lost or may have come.
void RemoteUrlModel::follow()
{
    if (!m_fileSystemModel)
        return;
    const QVector<Place> places = m_places; // setUrl() writes new ones
    for (int row = 0; row < rowCount(); ++row) {
        const QModelIndex place = index(row, 0);
        const QUrl url = place.data(UrlRole).toUrl();
        const auto known = std::find_if(places.cbegin(), places.cend(),
                                        [&](const Place &each) { return each.index == place; });
        if (known == places.cend())
            setUrl(place, url, {}); // the drives
        else if (known->mayHaveCome || isLost(*known))
            setUrl(place, url, directoryOf(pathOf(url)));
        else
            setUrl(place, url, known->directory);
    }
}

bool RemoteUrlModel::canDrop(const QDragEnterEvent *event) const
{
    if (!m_fileSystemModel || !event->mimeData()->formats().contains(mimeTypes().constFirst()))
        return false;
    const QList<QUrl> urls = event->mimeData()->urls();
    return std::all_of(urls.cbegin(), urls.cend(), [this](const QUrl &url) {
        const QString path = isFileUrl(url) ? pathOf(url) : QString();
        const QModelIndex known = directoryOf(path);
        // To the model, what it does not have is the directory of the drives; the filters may hide
        // a file from it.
        const QFileInfo info(path);
        return m_fileSystemModel && m_fileSystemModel->isDir(known)
            && (known.isValid() || info.isDir() || !info.exists());
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
