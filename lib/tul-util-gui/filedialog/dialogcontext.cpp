#include <tul-util-gui/filedialog/dialogcontext_p.h>
#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QFileInfo>
#include <QItemSelectionModel>
#include <QStackedWidget>

QAbstractItemModel *DialogContext::viewModel() const
{
    if (proxy)
        return proxy;
    return model;
}

QModelIndex DialogContext::toModel(const QModelIndex &index) const
{
    if (proxy && index.model() == proxy)
        return proxy->mapToSource(index);
    return index.model() == model ? index : QModelIndex();
}

QModelIndex DialogContext::toView(const QModelIndex &index) const
{
    if (index.model() != model)
        return {};
    return proxy ? proxy->mapFromSource(index) : index;
}

QAbstractItemView *DialogContext::view() const
{
    if (ui.stackedWidget->currentIndex() == 0)
        return ui.listView;
    return ui.treeView;
}

QItemSelectionModel *DialogContext::selection() const
{
    return ui.listView->selectionModel();
}

QString DialogContext::rootPath() const
{
    const QString path = tul::requestPath(model->rootPath());
    return path == QLatin1String(".") ? QString() : path;
}

QModelIndex DialogContext::rootIndex() const
{
    const QString path = rootPath();
    return path.isEmpty() ? QModelIndex() : model->index(path);
}

QString DialogContext::path(const QModelIndex &modelIndex) const
{
    return tul::requestPath(model->filePath(modelIndex));
}

QModelIndex DialogContext::shownEntry(const QString &path) const
{
    if (listing || path.isEmpty() || tul::parentPath(path) != rootPath())
        return {};
    return model->index(path);
}

QStringList DialogContext::selectedPaths() const
{
    const QModelIndexList rows = selection()->selectedRows();
    QStringList paths;
    for (const QModelIndex &row : rows)
        paths.append(path(toModel(row)));
    return paths;
}

bool DialogContext::isShownName(const QString &name) const
{
    if (!m_namesKnown) {
        m_names.clear();
        const QAbstractItemModel *const rows = viewModel();
        const QModelIndex root = ui.listView->rootIndex();
        const int count = rows->rowCount(root);
        m_names.reserve(count);
        for (int row = 0; row < count; ++row)
            m_names.insert(rows->index(row, 0, root).data().toString());
        m_namesKnown = true;
    }
    return m_names.contains(name);
}

tul::FileKind DialogContext::likelyKindOf(const QString &path) const
{
    const QString root = rootPath();
    const bool isKnown = !tul::isOnThisMachine(root) && !listing && tul::parentPath(path) == root;
    if (isKnown && !isShownName(tul::lastElement(path)))
        return tul::FileKind::Missing;
    return kindOf(path);
}

tul::FileKind DialogContext::kindOf(const QString &path) const
{
    const QModelIndex entry = shownEntry(path);
    if (entry.isValid())
        return model->isDir(entry) ? tul::FileKind::Directory : tul::FileKind::File;
    return storedKindOf(path);
}

tul::FileKind DialogContext::storedKindOf(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        return tul::FileKind::Directory;
    return info.exists() ? tul::FileKind::File : tul::FileKind::Missing;
}

bool DialogContext::isChangeable(const QModelIndex &directory) const
{
    if (!directory.isValid())
        return false;
    const QFileDevice::Permissions permissions = model->permissions(directory);
    return !permissions || permissions.testFlag(QFileDevice::WriteUser);
}

QMessageBox::StandardButton DialogContext::warn(const QString &title, const QString &text,
                                                QMessageBox::StandardButtons buttons,
                                                QMessageBox::StandardButton defaultButton) const
{
    // On the heap: a dialog that is deleted meanwhile takes the box along.
    const QPointer<QMessageBox> box
        = new QMessageBox(QMessageBox::Warning, title, text, buttons, dialog);
    box->setTextFormat(Qt::PlainText);
    box->setDefaultButton(defaultButton);
    box->exec();
    if (!box)
        return QMessageBox::NoButton;
    const auto answer = box->standardButton(box->clickedButton());
    delete box;
    return answer;
}
