#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include "fileoperations_p.h"
#include "filesystempaths_p.h"
#include "remotefilesystemmodel_p.h"

#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>

#include <QEvent>
#include <QFileIconProvider>
#include <QImage>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QTimerEvent>
#include <QUrl>

namespace
{

RemoteFileInfoGathererHandler *s_gathererHandler = nullptr;

/// As wide as the icons of the rows, so that the header's text stands above the names.
QImage transparentSpacer()
{
    QImage spacer(16, 1, QImage::Format_Mono);
    spacer.fill(0);
    spacer.setAlphaChannel(spacer.createAlphaMask());
    return spacer;
}

} // namespace

RemoteFileSystemModel::RemoteFileSystemModel(QObject *parent)
    : QAbstractItemModel(parent)
    , d(std::make_unique<RemoteFileSystemModelPrivate>(this))
{
    // Under this name the results wait in the queue between the threads.
    qRegisterMetaType<QList<QPair<QString, QFileInfo>>>("QList<QPair<QString,QFileInfo> >");
    connect(d->gatherer, &RemoteFileInfoGatherer::newListOfFiles, this,
            &RemoteFileSystemModel::_q_directoryChanged);
    connect(d->gatherer, &RemoteFileInfoGatherer::updates, this,
            &RemoteFileSystemModel::_q_fileSystemChanged);
    connect(d->gatherer, &RemoteFileInfoGatherer::nameResolved, this,
            &RemoteFileSystemModel::_q_resolvedName);
    connect(d->gatherer, &RemoteFileInfoGatherer::directoryLoaded, this,
            [this](const QString &path) { d->results.addLoaded(path); });
    connect(&d->delayedSortTimer, &QTimer::timeout, this,
            &RemoteFileSystemModel::_q_performDelayedSort, Qt::QueuedConnection);
}

RemoteFileSystemModel::~RemoteFileSystemModel() = default;

void RemoteFileSystemModel::setRemoteFileInfoGathererHandler(RemoteFileInfoGathererHandler *handler)
{
    s_gathererHandler = handler;
}

RemoteFileInfoGathererHandler *RemoteFileSystemModel::remoteFileInfoGathererHandler()
{
    return s_gathererHandler;
}

QModelIndex RemoteFileSystemModel::setRootPath(const QString &newPath)
{
    const QPointer<RemoteFileSystemModel> guard(this);
    const QString path = tul::cleanPath(newPath);
    const QString oldPath = rootPath();
    const auto currentRoot = [this] { return d->indexOf(rootPath(), true); };
    d->hasRootPath = true;
    const bool showsDrives = path.isEmpty() || path == myComputer().toString();
    // QDir::exists() would make the engine ask anew what the caller has mostly just asked.
    if (path == oldPath || (!showsDrives && !QFileInfo(path).isDir()))
        return currentRoot();

    if (!oldPath.isEmpty() && oldPath != QLatin1String(".")) {
        const QString oldDirectory = d->rootDir.absolutePath();
        d->gatherer->removePath(tul::requestPath(oldDirectory));
        if (FileNode *const old = d->tree->findPath(oldDirectory))
            old->populatedChildren = false; // listed again, and watched, when it comes back
    }
    d->rootDir.setPath(showsDrives ? QString() : path);
    const QPersistentModelIndex rootIndex = showsDrives ? QModelIndex() : d->indexOf(path, true);
    if (!guard)
        return {};
    if (showsDrives || rootIndex.isValid())
        fetchMore(rootIndex);
    d->forceSort = true;
    d->sortSoon();
    Q_EMIT rootPathChanged(path);
    return guard ? QModelIndex(rootIndex) : QModelIndex();
}

QString RemoteFileSystemModel::rootPath() const
{
    return d->rootDir.path();
}

QDir RemoteFileSystemModel::rootDirectory() const
{
    QDir dir(d->rootDir);
    dir.setNameFilters(nameFilters());
    dir.setFilter(filter());
    return dir;
}

void RemoteFileSystemModel::refresh(const QModelIndex &directory)
{
    FileNode *const node = d->node(directory);
    if (node == d->tree->root() || node->isDirectory())
        d->list(node);
}

QModelIndex RemoteFileSystemModel::index(const QString &path, int column) const
{
    return d->indexOf(path, false, column);
}

QModelIndex RemoteFileSystemModel::index(int row, int column, const QModelIndex &parent) const
{
    if (row < 0 || column < 0 || row >= rowCount(parent) || column >= columnCount(parent))
        return {};
    // By design: rows are sorted by the timer alone. Sorting them here would move rows under
    // whoever goes through them.
    return d->index(d->node(parent)->directory->visible[static_cast<std::size_t>(row)], column);
}

QModelIndex RemoteFileSystemModel::parent(const QModelIndex &child) const
{
    const FileNode *const node = d->node(child);
    return node->parent ? d->index(node->parent) : QModelIndex();
}

QString RemoteFileSystemModel::filePath(const QModelIndex &index) const
{
    return d->resolvedPath(d->node(index));
}

QString RemoteFileSystemModel::fileName(const QModelIndex &index) const
{
    return d->node(index)->fileName;
}

QFileInfo RemoteFileSystemModel::fileInfo(const QModelIndex &index) const
{
    return d->node(index)->info;
}

QIcon RemoteFileSystemModel::fileIcon(const QModelIndex &index) const
{
    return index.isValid() ? d->icon(d->node(index)).value<QIcon>() : QIcon();
}

bool RemoteFileSystemModel::isDir(const QModelIndex &index) const
{
    const FileNode *const node = d->node(index);
    if (node == d->tree->root())
        return true;
    return node->hasInfo ? node->isDirectory()
                         : QFileInfo(RemoteFileSystemModelPrivate::requestPath(node)).isDir();
}

qint64 RemoteFileSystemModel::size(const QModelIndex &index) const
{
    return d->node(index)->size();
}

QString RemoteFileSystemModel::type(const QModelIndex &index) const
{
    return d->record(d->node(index)).displayType;
}

QDateTime RemoteFileSystemModel::lastModified(const QModelIndex &index) const
{
    return d->node(index)->lastModified();
}

QFileDevice::Permissions RemoteFileSystemModel::permissions(const QModelIndex &index) const
{
    return d->node(index)->permissions();
}

QModelIndex RemoteFileSystemModel::mkdir(const QModelIndex &parent, const QString &name)
{
    return parent.isValid() ? d->makeDirectory(d->node(parent), name) : parent;
}

bool RemoteFileSystemModel::rmdir(const QModelIndex &index) const
{
    return d->removeDirectory(d->node(index));
}

bool RemoteFileSystemModel::remove(const QModelIndex &index) const
{
    return d->removeTree(d->node(index));
}

QVariant RemoteFileSystemModel::myComputer(int role) const
{
    const QFileIconProvider *const provider = iconProvider();
    if (role == Qt::DisplayRole)
        return tr("My Computer");
    if (role == Qt::DecorationRole && provider)
        return provider->icon(QFileIconProvider::Computer);
    return {};
}

void RemoteFileSystemModel::setFilter(QDir::Filters filters)
{
    if (d->filter.filters() == filters)
        return;
    d->filter.setFilters(filters);
    d->filterSoon();
}

QDir::Filters RemoteFileSystemModel::filter() const
{
    return d->filter.filters();
}

void RemoteFileSystemModel::setNameFilters(const QStringList &filters)
{
    if (d->filter.nameFilters() == filters)
        return;
    d->filter.setNameFilters(filters);
    d->forgetBypasses();
    d->filterSoon();
}

QStringList RemoteFileSystemModel::nameFilters() const
{
    return d->filter.nameFilters();
}

void RemoteFileSystemModel::setNameFilterDisables(bool enable)
{
    if (d->filter.nameFilterDisables() == enable)
        return;
    d->filter.setNameFilterDisables(enable);
    d->filterSoon();
}

bool RemoteFileSystemModel::nameFilterDisables() const
{
    return d->filter.nameFilterDisables();
}

void RemoteFileSystemModel::setReadOnly(bool enable)
{
    d->readOnly = enable;
}

bool RemoteFileSystemModel::isReadOnly() const
{
    return d->readOnly;
}

void RemoteFileSystemModel::setResolveSymlinks(bool enable)
{
    d->gatherer->setResolveSymlinks(enable);
}

bool RemoteFileSystemModel::resolveSymlinks() const
{
    return d->gatherer->resolveSymlinks();
}

void RemoteFileSystemModel::setIconProvider(QFileIconProvider *provider)
{
    if (iconProvider() == provider)
        return;
    d->gatherer->setIconProvider(provider);
    d->forgetAppearances();
    d->filterSoon();
}

QFileIconProvider *RemoteFileSystemModel::iconProvider() const
{
    return d->gatherer->iconProvider();
}

int RemoteFileSystemModel::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    const FileNode *const node = d->node(parent);
    return node->directory ? static_cast<int>(node->directory->visible.size()) : 0;
}

int RemoteFileSystemModel::columnCount(const QModelIndex &parent) const
{
    return parent.column() > 0 ? 0 : ColumnCount;
}

bool RemoteFileSystemModel::hasChildren(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return false;
    return !parent.isValid() || d->node(parent)->isDirectory();
}

bool RemoteFileSystemModel::canFetchMore(const QModelIndex &parent) const
{
    return d->hasRootPath && hasChildren(parent) && !d->node(parent)->populatedChildren;
}

void RemoteFileSystemModel::fetchMore(const QModelIndex &parent)
{
    if (d->hasRootPath)
        d->listOnce(d->node(parent));
}

QVariant RemoteFileSystemModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.model() != this)
        return {};
    FileNode *const node = d->node(index);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        switch (index.column()) {
        case NameColumn:
            return node->fileName;
        case SizeColumn:
            return RemoteFileSystemModelPrivate::sizeText(node);
        case TypeColumn:
            return d->record(node).displayType;
        case DateColumn:
            return RemoteFileSystemModelPrivate::dateText(node);
        default:
            qWarning("data: invalid display value column %d", index.column());
            return {};
        }
    case FileIconRole:
        return index.column() == NameColumn ? d->icon(node) : QVariant();
    case Qt::TextAlignmentRole:
        // By design: no vertical alignment, which leaves it to the view.
        return index.column() == SizeColumn ? QVariant(Qt::AlignRight) : QVariant();
    case FilePathRole:
        return filePath(index);
    case FileNameRole:
        return node->fileName;
    case FilePermissions:
        return static_cast<int>(node->permissions());
    default:
        return {};
    }
}

bool RemoteFileSystemModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || index.column() != NameColumn || role != Qt::EditRole
        || !flags(index).testFlag(Qt::ItemIsEditable))
        return false;
    FileNode *const node = d->node(index);
    const QString newName = value.toString();
    const QString oldName = node->fileName;
    if (newName == oldName)
        return true;
    const bool isTop = node->parent == d->tree->root(); // in no directory
    const QString parentPath = filePath(index.parent());
    if (isTop || newName.isEmpty() || newName.contains(QLatin1Char('/'))
        || !tul::renameFile(tul::requestPath(parentPath), oldName, newName)) {
        // Last of all: an event loop runs in the box, and rows may go.
        QMessageBox::information(nullptr, tr("Invalid filename"),
                                 tr("<b>The name \"%1\" can not be used.</b><p>Try using another "
                                    "name, with fewer characters or no punctuations marks.")
                                     .arg(newName),
                                 QMessageBox::Ok);
        return false;
    }
    if (!d->adoptNewName(node, newName))
        return true;
    d->sortSoon();
    Q_EMIT fileRenamed(parentPath, oldName, newName);
    return true;
}

QVariant RemoteFileSystemModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::DecorationRole && section == 0)
        return transparentSpacer();
    if (role == Qt::TextAlignmentRole)
        return Qt::AlignLeft;
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractItemModel::headerData(section, orientation, role);
    switch (section) {
    case NameColumn:
        return tr("Name");
    case SizeColumn:
        return tr("Size");
    case TypeColumn:
        return tr("Type", "All other platforms");
    case DateColumn:
        return tr("Date Modified");
    default:
        return {};
    }
}

Qt::ItemFlags RemoteFileSystemModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    if (!index.isValid())
        return flags;
    const FileNode *const node = d->node(index);
    if (nameFilterDisables() && !d->filter.passesNames(*node))
        return flags & ~Qt::ItemIsEnabled;
    flags |= Qt::ItemIsDragEnabled;
    if (isReadOnly() || index.column() != NameColumn || !node->hasInfo
        || !node->info.permission(QFileDevice::WriteUser))
        return flags; // a view asks for all its rows, and each permission is a call to the disk
    flags |= Qt::ItemIsEditable;
    if (node->isDirectory())
        flags |= Qt::ItemIsDropEnabled;
    return flags;
}

QHash<int, QByteArray> RemoteFileSystemModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractItemModel::roleNames();
    names.insert(FileIconRole, QByteArrayLiteral("fileIcon"));
    names.insert(FilePathRole, QByteArrayLiteral("filePath"));
    names.insert(FileNameRole, QByteArrayLiteral("fileName"));
    names.insert(FilePermissions, QByteArrayLiteral("filePermissions"));
    return names;
}

void RemoteFileSystemModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= ColumnCount)
        return;
    if (column == d->sortColumn && order == d->sortOrder && !d->forceSort)
        return;
    d->sortColumn = column;
    d->sortOrder = order;
    d->sortAll();
}

QStringList RemoteFileSystemModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

QMimeData *RemoteFileSystemModel::mimeData(const QModelIndexList &indexes) const
{
    QList<QUrl> urls;
    for (const QModelIndex &index : indexes) {
        if (index.column() == NameColumn)
            urls.append(tul::fileUrl(filePath(index)));
    }
    auto *const data = new QMimeData;
    data->setUrls(urls);
    return data;
}

bool RemoteFileSystemModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row,
                                         int column, const QModelIndex &parent)
{
    Q_UNUSED(row)
    Q_UNUSED(column)
    if (!parent.isValid() || isReadOnly() || !data || !supportedDropActions().testFlag(action))
        return false;
    const QPersistentModelIndex directory = parent;
    const QString target = tul::requestPath(filePath(parent)) + QLatin1Char('/');
    bool isComplete = true;
    const QList<QUrl> urls = data->urls();
    for (const QUrl &url : urls) {
        const QFileInfo source(tul::urlPath(url));
        if (!tul::dropFile(source.filePath(), target + source.fileName(), action))
            isComplete = false;
        else if (action == Qt::MoveAction)
            d->listPath(tul::cleanPath(source.path()));
    }
    if (directory.isValid())
        refresh(directory);
    return isComplete;
}

Qt::DropActions RemoteFileSystemModel::supportedDropActions() const
{
    return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
}

bool RemoteFileSystemModel::event(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        const QPointer<RemoteFileSystemModel> guard(this);
        d->forgetAppearances();
        d->filterSoon(); // the order by type is another one
        if (d->announceTexts())
            Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
        if (!guard)
            return true;
    }
    return QAbstractItemModel::event(event);
}

void RemoteFileSystemModel::timerEvent(QTimerEvent *event)
{
    d->results.timeOut(event->timerId());
}

void RemoteFileSystemModel::_q_directoryChanged(const QString &directory, const QStringList &list)
{
    d->results.addList(directory, list);
}

void RemoteFileSystemModel::_q_performDelayedSort()
{
    d->sortNow();
}

void RemoteFileSystemModel::_q_fileSystemChanged(
    const QString &path, const QList<QPair<QString, QFileInfo>> &updatedFiles)
{
    d->results.addUpdates(path, updatedFiles);
}

void RemoteFileSystemModel::_q_resolvedName(const QString &fileName, const QString &resolvedName)
{
    d->resolvedSymLinks.insert(fileName, resolvedName);
}
