#include <tul-util-gui/filedialog/dialogcontext_p.h>
#include <tul-util-gui/filedialog/dialogoperations_p.h>
#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QAbstractItemView>
#include <QAction>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QMenu>

#include <algorithm>

void DialogOperations::renameCurrent()
{
    const QModelIndex current = m_context->view()->currentIndex();
    if (m_context->isReadOnly() || !current.isValid())
        return;
    const QModelIndex name = current.siblingAtColumn(0);
    if (name.flags().testFlag(Qt::ItemIsEditable))
        m_context->view()->edit(name);
}

void DialogOperations::deleteSelected()
{
    if (m_context->isReadOnly())
        return;
    // From the last row on, as the user sees them go.
    QStringList paths = m_context->selectedPaths();
    std::reverse(paths.begin(), paths.end());
    const QPointer<RemoteFileDialogBase> guard(m_context->dialog);
    for (const QString &path : qAsConst(paths)) {
        const QModelIndex entry = m_context->model->index(path);
        if (!entry.parent().isValid()) // gone, or a drive
            continue;
        const bool goesOn = isAllowedToDelete(entry);
        if (!guard || !goesOn)
            return;
        remove(path);
        if (!guard)
            return;
    }
}

bool DialogOperations::isAllowedToDelete(const QModelIndex &entry) const
{
    const QString name = m_context->model->fileName(entry);
    const auto isYesTo = [this, name](const QString &question) {
        return m_context->warn(RemoteFileDialogBase::tr("Delete"), question.arg(name),
                               QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
            == QMessageBox::Yes;
    };
    const QPointer<RemoteFileDialogBase> guard(m_context->dialog);
    const bool isProtected = !m_context->isChangeable(entry.parent());
    if (isProtected
        && !isYesTo(
            RemoteFileDialogBase::tr("'%1' is write protected.\nDo you want to delete it anyway?")))
        return false;
    // By design: "Are sure" is what the dialog has always asked; translations are keyed on it.
    return guard && isYesTo(RemoteFileDialogBase::tr("Are sure you want to delete '%1'?"));
}

void DialogOperations::remove(const QString &path)
{
    const QModelIndex entry = m_context->model->index(path);
    if (!entry.isValid())
        return;
    const bool wasDirectory
        = m_context->model->isDir(entry) && !m_context->model->fileInfo(entry).isSymLink();
    const bool removed = m_context->model->remove(entry);
    // The model is content when anything inside is gone.
    if (wasDirectory && (!removed || QFileInfo::exists(path)))
        m_context->warn(m_context->dialog->windowTitle(),
                        RemoteFileDialogBase::tr("Could not delete directory."), QMessageBox::Ok,
                        QMessageBox::Ok);
}

QString DialogOperations::freeFolderName() const
{
    const QString base = RemoteFileDialogBase::tr("New Folder");
    QString name = base;
    constexpr int firstNumber = 2;
    constexpr int lastNumber = 1000000;
    for (int number = firstNumber; number < lastNumber; ++number) {
        if (!QFileInfo::exists(tul::joinSlash(m_context->rootPath(), name)))
            break;
        name = base + QString::number(number);
    }
    return name;
}

void DialogOperations::createFolder()
{
    if (m_context->isReadOnly() || m_context->rootPath().isEmpty())
        return;
    const QModelIndex folder = m_context->model->mkdir(m_context->rootIndex(), freeFolderName());
    const QModelIndex row = m_context->toView(folder);
    if (!row.isValid())
        return;
    m_context->selection()->setCurrentIndex(
        row, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    renameCurrent();
}

void DialogOperations::showContextMenu(QAbstractItemView *view, const QPoint &position)
{
    const DialogWidgets &ui = m_context->ui;
    const QModelIndex entry = m_context->toModel(view->indexAt(position).siblingAtColumn(0));
    const QPointer<QMenu> menu = new QMenu(view);
    if (entry.isValid()) {
        const bool writable = !m_context->isReadOnly() && m_context->isChangeable(entry.parent());
        ui.renameAction->setEnabled(writable);
        ui.deleteAction->setEnabled(writable);
        menu->addAction(ui.renameAction);
        menu->addAction(ui.deleteAction);
        menu->addSeparator();
    }
    menu->addAction(ui.showHiddenAction);
    menu->addAction(ui.newFolderAction);
    menu->exec(view->viewport()->mapToGlobal(position));
    delete menu;
}
