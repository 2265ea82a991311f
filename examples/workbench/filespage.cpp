#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>
#include <workbench/filerequests.h>
#include <workbench/filespage.h>

#include <QActionGroup>
#include <QDir>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QSplitter>
#include <QToolBar>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

QString remoteRoot()
{
    return QStringLiteral("remote:");
}

QString remoteHome()
{
    return QStringLiteral("remote:/home/user");
}

} // namespace

FilesPage::FilesPage(QWidget *parent)
    : WorkbenchPage(parent)
    , m_model(new RemoteFileSystemModel(this))
    , m_sidebar(new RemoteSidebar)
    , m_view(new QTreeView)
    , m_path(new QLineEdit)
{
    m_model->setReadOnly(false);
    m_sidebar->setFileSystemModel(m_model);
    m_sidebar->addUrls({QUrl::fromLocalFile(remoteRoot()), QUrl::fromLocalFile(remoteHome())});
    m_sidebar->setAccessibleName(tr("Places"));
    m_path->setReadOnly(true);
    m_path->setFocusPolicy(Qt::ClickFocus);
    m_path->setAccessibleName(tr("Shown directory"));
    createView();

    auto *const splitter = new QSplitter;
    splitter->addWidget(m_sidebar);
    splitter->addWidget(m_view);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({180, 700});

    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(createToolBar());
    layout->addWidget(m_path);
    layout->addWidget(splitter, 1);
    layout->addWidget(new FileRequests);

    connect(m_sidebar, &RemoteSidebar::goToUrl, this,
            [this](const QUrl &url) { goTo(url.toLocalFile()); });
    connect(m_model, &RemoteFileSystemModel::rootPathChanged, this, &FilesPage::showRoot);
    connect(m_model, &RemoteFileSystemModel::directoryLoaded, this, &FilesPage::showCount);
    goTo(QDir::homePath());
}

QString FilesPage::title() const
{
    return tr("Files");
}

QString FilesPage::advice() const
{
    return tr(
        "Drag files to other directories, and directories to the places. What happens on this "
        "machine's disk shows by itself; on the remote side press F5.");
}

QAction *FilesPage::addAction(QToolBar *bar, const QString &text, const QKeySequence &key,
                              void (FilesPage::*slot)())
{
    QAction *const action = bar->addAction(text, this, slot);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setToolTip(
        tr("%1 (%2)").arg(action->iconText(), key.toString(QKeySequence::NativeText)));
    QWidget::addAction(action); // so that its key works on the whole page
    return action;
}

QToolBar *FilesPage::createToolBar()
{
    auto *const bar = new QToolBar;
    auto *const sides = new QActionGroup(bar);
    const auto addSide = [&](const QString &text, const QString &path) {
        QAction *const action = bar->addAction(text, this, [this, path] { goTo(path); });
        action->setCheckable(true);
        sides->addAction(action);
        return action;
    };
    m_localAction = addSide(tr("&This Machine"), QDir::homePath());
    m_remoteAction = addSide(tr("Re&mote Machine"), remoteRoot());
    bar->addSeparator();
    addAction(bar, tr("&Up"), QKeySequence(Qt::ALT | Qt::Key_Up), &FilesPage::goToParent);
    addAction(bar, tr("Re&fresh"), QKeySequence(Qt::Key_F5), &FilesPage::refresh);
    bar->addSeparator();
    addAction(bar, tr("&New Folder"), QKeySequence(Qt::Key_F7), &FilesPage::makeFolder);
    addAction(bar, tr("&Rename"), QKeySequence(Qt::Key_F2), &FilesPage::renameCurrent);
    // Not on the whole page: in the side bar the key removes a place.
    QAction *const remove
        = addAction(bar, tr("&Delete"), QKeySequence(Qt::Key_Delete), &FilesPage::askAndRemove);
    QWidget::removeAction(remove);
    m_view->addAction(remove);
    bar->addSeparator();
    m_treeAction = bar->addAction(tr("Tr&ee"));
    m_treeAction->setCheckable(true);
    connect(m_treeAction, &QAction::toggled, this, &FilesPage::setTree);
    return bar;
}

void FilesPage::createView()
{
    m_view->setModel(m_model);
    m_view->setSortingEnabled(true);
    m_view->sortByColumn(RemoteFileSystemModel::NameColumn, Qt::AscendingOrder);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setDragDropMode(QAbstractItemView::DragDrop);
    m_view->setDefaultDropAction(Qt::MoveAction);
    m_view->setUniformRowHeights(true);
    m_view->setAccessibleName(tr("Files"));
    m_view->header()->resizeSection(RemoteFileSystemModel::NameColumn, 320);
    setTree(false);
    connect(m_view, &QAbstractItemView::activated, this, &FilesPage::activate);
}

void FilesPage::setTree(bool tree)
{
    m_view->collapseAll();
    m_view->setRootIsDecorated(tree);
    m_view->setItemsExpandable(tree);
}

void FilesPage::goTo(const QString &path)
{
    m_model->setRootPath(path);
    if (m_model->rootPath() != (path.isEmpty() ? path : QDir::cleanPath(path)))
        Q_EMIT failed(tr("The directory \"%1\" does not exist.").arg(path));
}

void FilesPage::setRemoteDirectory(const QString &directory)
{
    m_sidebar->addUrls({QUrl::fromLocalFile(directory)});
    m_model->refresh(m_model->index(remoteRoot()));
    goTo(directory);
}

void FilesPage::showRoot(const QString &path)
{
    const QModelIndex root = m_model->index(m_model->rootPath());
    m_view->setRootIndex(root);
    m_view->clearSelection();
    const bool remote = path.startsWith(remoteRoot());
    (remote ? m_remoteAction : m_localAction)->setChecked(true);
    m_path->setText(root.isValid() ? path : m_model->myComputer().toString());
    m_sidebar->selectUrl(root.isValid() ? QUrl::fromLocalFile(path)
                                        : QUrl(QStringLiteral("file:")));
    setWindowTitle(m_path->text());
    showCount();
}

void FilesPage::showCount()
{
    Q_EMIT statusChanged(tr("%n entries", nullptr, m_model->rowCount(m_view->rootIndex())));
}

void FilesPage::goToParent()
{
    const QModelIndex root = m_view->rootIndex();
    goTo(QDir::cleanPath(m_model->filePath(root.parent())));
}

void FilesPage::activate(const QModelIndex &index)
{
    if (!m_view->itemsExpandable() && m_model->isDir(index))
        goTo(QDir::cleanPath(m_model->filePath(index)));
}

void FilesPage::refresh()
{
    m_model->refresh(m_view->rootIndex());
}

void FilesPage::makeFolder()
{
    const QModelIndex root = m_view->rootIndex();
    QString name = tr("New Folder");
    const QString path = m_model->filePath(root) + QLatin1Char('/');
    for (int i = 2; QFileInfo::exists(path + name); ++i)
        name = tr("New Folder %1").arg(i);
    const QModelIndex made = m_model->mkdir(root, name);
    if (!root.isValid() || !made.isValid()) {
        Q_EMIT failed(tr("A folder cannot be made here."));
        return;
    }
    m_view->setCurrentIndex(made);
    m_view->edit(made);
}

void FilesPage::renameCurrent()
{
    const QModelIndex name
        = m_view->currentIndex().siblingAtColumn(RemoteFileSystemModel::NameColumn);
    if (name.flags().testFlag(Qt::ItemIsEditable))
        m_view->edit(name);
}

QModelIndexList FilesPage::selectedRows() const
{
    return m_view->selectionModel()->selectedRows();
}

void FilesPage::askAndRemove()
{
    const QModelIndexList rows = selectedRows();
    if (rows.isEmpty())
        return;
    const QString what = rows.size() == 1
        ? tr("Delete \"%1\" and all that is in it?").arg(m_model->fileName(rows.constFirst()))
        : tr("Delete the %n selected entries and all that is in them?", nullptr, rows.size());
    auto *const box = new QMessageBox(QMessageBox::Warning, tr("Delete"), what,
                                      QMessageBox::Yes | QMessageBox::No, this);
    box->setDefaultButton(QMessageBox::No);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QMessageBox::finished, this, [this](int answer) {
        if (answer == QMessageBox::Yes)
            removeSelected();
    });
    box->open();
}

void FilesPage::removeSelected()
{
    QList<QPersistentModelIndex> files;
    for (const QModelIndex &row : selectedRows())
        files.append(row);
    for (const QPersistentModelIndex &file : qAsConst(files)) {
        const QString name = m_model->fileName(file);
        if (file.isValid() && !m_model->remove(file))
            Q_EMIT failed(tr("\"%1\" cannot be deleted.").arg(name));
    }
}

QStringList FilesPage::shots() const
{
    return {QStringLiteral("files-local"), QStringLiteral("files-remote"),
            QStringLiteral("files-missing-place")};
}

void FilesPage::prepareShot(const QString &shot)
{
    const bool local = shot == shots().at(0);
    const bool tree = shot == shots().at(2);
    if (tree)
        m_sidebar->addUrls({QUrl::fromLocalFile(QStringLiteral("remote:/mnt/archive"))});
    m_treeAction->setChecked(tree);
    goTo(local      ? QStringLiteral("/usr")
             : tree ? remoteRoot()
                    : remoteHome() + QStringLiteral("/projects/solver"));
    if (tree)
        m_view->expand(m_model->index(QStringLiteral("remote:/home")));
}
