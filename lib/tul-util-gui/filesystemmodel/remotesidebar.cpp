#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>
#include <tul-util-gui/filesystemmodel/remotesidebardelegate_p.h>
#include <tul-util-gui/filesystemmodel/remoteurlmodel.h>

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <QScopedValueRollback>

RemoteSidebar::RemoteSidebar(QWidget *parent)
    : QListView(parent)
{
    setItemDelegate(new RemoteSideBarDelegate(this));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::CopyAction);
    setUniformItemSizes(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, &RemoteSidebar::showContextMenu);
    connect(this, &QListView::clicked, this, &RemoteSidebar::clicked);
}

void RemoteSidebar::setFileSystemModel(RemoteFileSystemModel *model)
{
    if (m_urlModel) {
        m_urlModel->setFileSystemModel(model);
        return;
    }
    m_urlModel = new RemoteUrlModel(this);
    // Ahead of the selection model, which makes a neighbour current when a place is removed.
    connect(m_urlModel, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this] { m_quiet = true; });
    connect(m_urlModel, &QAbstractItemModel::rowsRemoved, this, [this] { m_quiet = false; });
    m_urlModel->setFileSystemModel(model);
    m_urlModel->setUrls({QUrl(QStringLiteral("file:")), QUrl::fromLocalFile(QDir::homePath())});
    setModel(m_urlModel);
}

QList<QUrl> RemoteSidebar::urls() const
{
    return m_urlModel ? m_urlModel->urls() : QList<QUrl>();
}

void RemoteSidebar::setUrls(const QList<QUrl> &urls)
{
    if (m_urlModel)
        m_urlModel->setUrls(urls);
}

void RemoteSidebar::addUrls(const QList<QUrl> &urls, int row)
{
    if (m_urlModel)
        m_urlModel->addUrls(urls, row);
}

void RemoteSidebar::selectUrl(const QUrl &url)
{
    if (!m_urlModel || !selectionModel() || model() != m_urlModel) // maybe the host's own
        return;
    const QScopedValueRollback<bool> quiet(m_quiet, true);
    const QModelIndex place = m_urlModel->index(m_urlModel->rowOf(url), 0); // invalid for -1
    selectionModel()->setCurrentIndex(place, QItemSelectionModel::ClearAndSelect);
}

QSize RemoteSidebar::sizeHint() const
{
    if (!model())
        return QAbstractScrollArea::sizeHint();
    const QSize place = sizeHintForIndex(model()->index(0, 0)).expandedTo({0, 0});
    return place + QSize(2 * frameWidth(), 2 * frameWidth());
}

bool RemoteSidebar::event(QEvent *event)
{
    if (event->type() == QEvent::KeyRelease
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Delete) {
        removeEntry();
        return true;
    }
    return QListView::event(event);
}

void RemoteSidebar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange && m_urlModel)
        m_urlModel->refresh();
    QListView::changeEvent(event);
}

void RemoteSidebar::dragEnterEvent(QDragEnterEvent *event)
{
    if (m_urlModel && m_urlModel->canDrop(event))
        QListView::dragEnterEvent(event);
    else
        event->ignore();
}

void RemoteSidebar::focusInEvent(QFocusEvent *event)
{
    // The toolkit makes a place current when there is none, which is nobody's wish to go there.
    const QScopedValueRollback<bool> quiet(m_quiet, true);
    QListView::focusInEvent(event);
    viewport()->update();
}

void RemoteSidebar::keyPressEvent(QKeyEvent *event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isEnter || !currentIndex().isValid()) {
        QListView::keyPressEvent(event);
        return;
    }
    const QPersistentModelIndex place = currentIndex();
    const QPointer<RemoteSidebar> guard(this);
    QListView::keyPressEvent(event); // activates the place, for whoever listens
    event->accept(); // in a dialog it would press a button as well
    if (guard)
        clicked(place);
}

void RemoteSidebar::mousePressEvent(QMouseEvent *event)
{
    // The click goes there; a drag or a context menu does not.
    const QScopedValueRollback<bool> quiet(m_quiet, true);
    QListView::mousePressEvent(event);
}

void RemoteSidebar::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QListView::currentChanged(current, previous);
    if (!m_quiet)
        clicked(current);
}

void RemoteSidebar::clicked(const QModelIndex &index)
{
    if (index.isValid())
        Q_EMIT goToUrl(index.data(RemoteUrlModel::UrlRole).toUrl());
}

void RemoteSidebar::showContextMenu(const QPoint &position)
{
    const QModelIndex place = indexAt(position);
    if (!place.isValid())
        return;
    // Both go with the side bar if it is deleted while the menu is open.
    const QPointer<QAction> remove
        = new QAction(QCoreApplication::translate("RemoteFileDialogBase", "Remove"), this);
    remove->setEnabled(!place.data(RemoteUrlModel::UrlRole).toUrl().path().isEmpty());
    connect(remove, &QAction::triggered, this, &RemoteSidebar::removeEntry);
    const QPointer<QMenu> menu = new QMenu(this);
    menu->addAction(remove);
    menu->exec(viewport()->mapToGlobal(position));
    delete menu;
    delete remove;
}

void RemoteSidebar::removeEntry()
{
    if (!selectionModel())
        return;
    QList<QPersistentModelIndex> places;
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    for (const QModelIndex &index : selected)
        places.append(index);
    for (const QPersistentModelIndex &place : qAsConst(places)) {
        if (!place.data(RemoteUrlModel::UrlRole).toUrl().path().isEmpty())
            model()->removeRow(place.row());
    }
}
