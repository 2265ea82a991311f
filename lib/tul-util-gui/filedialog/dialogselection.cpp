#include <tul-util-gui/filedialog/dialogcontext_p.h>
#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/dialogselection_p.h>
#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QDialogButtonBox>
#include <QDir>
#include <QItemSelection>
#include <QPushButton>
#include <QScopedValueRollback>

namespace
{

/// Texts that no lookup may begin with: they name hosts.
bool namesAHost(const QString &text)
{
    return text.startsWith(QLatin1String("//")) || text.startsWith(QLatin1Char('\\'));
}

} // namespace

QString DialogSelection::absolutePath(const QString &typed) const
{
    const QString root = m_context->rootPath();
    const QString directory = root.isEmpty() ? QStringLiteral("/") : root;
    // A file of that very name is meant rather than a home or a variable.
    const bool mayBeName = typed.startsWith(QLatin1Char('$'))
        || (typed.startsWith(QLatin1Char('~')) && !typed.contains(QLatin1Char('/')));
    bool expanded = false;
    QString path = typed;
    if (!mayBeName
        || m_context->likelyKindOf(tul::joinSlash(directory, typed)) == tul::FileKind::Missing) {
        path = m_context->dialog->tildeExpansion(typed, &expanded);
        if (path.startsWith(QLatin1Char('$')))
            path = m_context->dialog->getEnvironmentVariable(path);
    }
    if (expanded || QDir::isAbsolutePath(path))
        return tul::cleanDialogPath(path);
    return tul::cleanDialogPath(tul::joinSlash(directory, path));
}

QStringList DialogSelection::typedFiles() const
{
    const QString text = m_context->ui.fileNameEdit->text();
    QStringList names = tul::splitFileNames(text);
    if (text.contains(QLatin1Char('"'))) {
        const QString whole = tul::joinSlash(m_context->rootPath(), text);
        if (m_context->likelyKindOf(whole) != tul::FileKind::Missing)
            names = QStringList{text};
    }
    QStringList files;
    for (const QString &name : qAsConst(names))
        files.append(absolutePath(name));
    return files;
}

QString DialogSelection::withSuffix(const QString &path) const
{
    const QString &suffix = m_context->defaultSuffix;
    if (suffix.isEmpty() || tul::choosesDirectories(m_context->fileMode)
        || tul::lastElement(path).contains(QLatin1Char('.'))
        || m_context->likelyKindOf(path) == tul::FileKind::Directory)
        return path;
    return path + QLatin1Char('.') + suffix;
}

QStringList DialogSelection::chosenFiles() const
{
    // Names that were typed may have no rows.
    QStringList files = m_textLeads ? QStringList() : m_context->selectedPaths();
    if (!files.isEmpty() || m_context->ui.fileNameEdit->text().isEmpty())
        return files;
    files = m_context->dialog->typedFiles();
    for (QString &file : files)
        file = withSuffix(file);
    return files;
}

QStringList DialogSelection::selectedFiles() const
{
    QStringList files = chosenFiles();
    const bool needsFile = m_context->fileMode == QFileDialog::ExistingFile
        || m_context->fileMode == QFileDialog::ExistingFiles;
    const QString root = m_context->rootPath();
    if (files.isEmpty() && !needsFile && !root.isEmpty())
        files.append(root);
    return files;
}

void DialogSelection::selectFile(const QString &name)
{
    if (name.isEmpty())
        return;
    QString file = name;
    if (QDir::isAbsolutePath(name)) {
        const QString path = tul::cleanDialogPath(name);
        const QString parent = tul::parentPath(path);
        RemoteFileDialogBasePrivate::of(m_context->dialog)
            ->navigation.goTo(parent.isEmpty() ? path : parent);
        file = tul::lastElement(path);
    }
    RemoteFileDialogBaseLineEdit *const edit = m_context->ui.fileNameEdit;
    // What the user is typing is not overwritten.
    if (m_context->dialog->isVisible() && edit->hasFocus())
        return;
    m_context->selection()->clear();
    edit->setText(file);
}

void DialogSelection::selectTypedRows(const QString &text)
{
    if (m_following)
        return;
    const QScopedValueRollback<bool> following(m_following, true);
    m_textLeads = !text.isEmpty();
    QItemSelectionModel *const selection = m_context->selection();
    if (namesAHost(text)) {
        selection->clear();
        return;
    }
    QItemSelection named;
    const QStringList files = m_context->dialog->typedFiles();
    for (const QString &file : files) {
        const QString path = withSuffix(file);
        if (m_context->likelyKindOf(path) == tul::FileKind::Missing)
            continue;
        const QModelIndex row = m_context->toView(m_context->shownEntry(path));
        if (row.isValid())
            named.select(row, row);
    }
    const bool typing = m_context->ui.fileNameEdit->hasFocus();
    if (named.isEmpty() && !typing)
        return;
    QItemSelectionModel::SelectionFlags how
        = QItemSelectionModel::Select | QItemSelectionModel::Rows;
    how.setFlag(QItemSelectionModel::Clear,
                typing || m_context->fileMode != QFileDialog::ExistingFiles);
    selection->select(named, how);
}

void DialogSelection::selectTypedRowsIfNone()
{
    const QString text = m_context->ui.fileNameEdit->text();
    if (!text.isEmpty() && !m_context->selection()->hasSelection())
        selectTypedRows(text);
    updateAcceptButton();
}

void DialogSelection::showSelectedNames()
{
    if (m_following) {
        updateAcceptButton();
        return;
    }
    const QScopedValueRollback<bool> following(m_following, true);
    m_textLeads = false;
    const QModelIndexList rows = m_context->selection()->selectedRows();
    QStringList names;
    for (const QModelIndex &row : rows) {
        const QModelIndex entry = m_context->toModel(row);
        if (tul::choosesDirectories(m_context->fileMode) || !m_context->model->isDir(entry))
            names.append(m_context->model->fileName(entry));
    }
    if (!names.isEmpty())
        m_context->ui.fileNameEdit->setText(tul::joinFileNames(names));
    updateAcceptButton();
}

void DialogSelection::updateAcceptButton()
{
    const bool saves = m_context->acceptMode == QFileDialog::AcceptSave;
    QPushButton *const button
        = m_context->ui.buttonBox->button(saves ? QDialogButtonBox::Save : QDialogButtonBox::Open);
    if (!button)
        return;
    const auto *const d = RemoteFileDialogBasePrivate::of(m_context->dialog);
    if (namesAHost(m_context->ui.fileNameEdit->text())) {
        button->setEnabled(true);
        button->setText(d->acceptText(false));
        return;
    }
    const bool directories = tul::choosesDirectories(m_context->fileMode);
    tul::AcceptRequest request;
    request.fileMode = m_context->fileMode;
    request.files = directories ? selectedFiles() : chosenFiles();
    const tul::AcceptButton look = tul::acceptButton(
        request, [this](const QString &path) { return m_context->likelyKindOf(path); });
    button->setEnabled(look.enabled && !leadsNowhere(request));
    button->setText(d->acceptText(look.opens));
}

bool DialogSelection::leadsNowhere(const tul::AcceptRequest &request) const
{
    if (request.fileMode != QFileDialog::AnyFile || request.files.isEmpty())
        return false;
    const QString &file = request.files.constFirst();
    return file == m_context->rootPath() || tul::isNameTooLong(file);
}

void DialogSelection::accept()
{
    tul::AcceptRequest request;
    request.fileMode = m_context->fileMode;
    request.acceptMode = m_context->acceptMode;
    request.confirmOverwrite = !m_context->options.testFlag(QFileDialog::DontConfirmOverwrite);
    request.typed = m_context->ui.fileNameEdit->text();
    request.files = tul::choosesDirectories(request.fileMode) ? selectedFiles() : chosenFiles();
    // A row may be out of date. Only to ask another machine for each of many files takes too long.
    const bool trustsRows
        = request.files.size() > 1 && !tul::isOnThisMachine(m_context->rootPath());
    const tul::AcceptDecision decision
        = tul::decideAccept(request, [this, trustsRows](const QString &path) {
              return trustsRows ? m_context->kindOf(path) : DialogContext::storedKindOf(path);
          });
    const QPointer<RemoteFileDialogBase> guard(m_context->dialog);

    switch (decision.action) {
    case tul::AcceptAction::Nothing:
        return;
    case tul::AcceptAction::GoToParent:
        RemoteFileDialogBasePrivate::of(m_context->dialog)->navigation.goToParent();
        if (guard)
            m_context->ui.fileNameEdit->selectAll();
        return;
    case tul::AcceptAction::EnterDirectory:
        RemoteFileDialogBasePrivate::of(m_context->dialog)->navigation.goTo(decision.path);
        if (guard && request.fileMode != QFileDialog::AnyFile)
            m_context->ui.fileNameEdit->clear();
        return;
    case tul::AcceptAction::TellMissingFile:
        tellMissing(RemoteFileDialogBase::tr("%1\nFile not found.\nPlease verify the correct file "
                                             "name was given."),
                    decision.path);
        return;
    case tul::AcceptAction::TellMissingDirectory:
        tellMissing(RemoteFileDialogBase::tr("%1\nDirectory not found.\nPlease verify the correct "
                                             "directory name was given."),
                    decision.path);
        return;
    case tul::AcceptAction::AskOverwrite:
        if (!isAllowedToOverwrite(decision.path))
            return;
        break;
    case tul::AcceptAction::Accept:
        if (leadsNowhere(request))
            return;
        break;
    }
    if (!guard)
        return;
    // Where any file will do, only the first one was looked at.
    const bool one = request.fileMode == QFileDialog::AnyFile;
    emitSelected(one ? request.files.mid(0, 1) : request.files);
}

void DialogSelection::tellMissing(const QString &text, const QString &path) const
{
    m_context->warn(m_context->dialog->windowTitle(), text.arg(tul::lastElement(path)),
                    QMessageBox::Ok, QMessageBox::Ok);
}

bool DialogSelection::isAllowedToOverwrite(const QString &path) const
{
    const QString question
        = RemoteFileDialogBase::tr("%1 already exists.\nDo you want to replace it?");
    return m_context->warn(m_context->dialog->windowTitle(), question.arg(tul::lastElement(path)),
                           QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        == QMessageBox::Yes;
}

void DialogSelection::emitSelected(const QStringList &files)
{
    RemoteFileDialogBase *const dialog = m_context->dialog;
    const QPointer<RemoteFileDialogBase> guard(dialog);
    Q_EMIT dialog->filesSelected(files);
    if (guard && files.size() == 1)
        Q_EMIT dialog->fileSelected(files.constFirst());
    if (guard)
        RemoteFileDialogBasePrivate::closeAccepted(dialog);
}
