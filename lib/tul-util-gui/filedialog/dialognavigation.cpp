#include <tul-util-gui/filedialog/dialogcontext_p.h>
#include <tul-util-gui/filedialog/dialognavigation_p.h>
#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <QToolButton>

namespace
{

bool isDirectory(const QString &path)
{
    return !path.isEmpty() && QFileInfo(path).isDir();
}

/// A relative path is one from the working directory of the process.
QString absolute(const QString &path)
{
    return tul::cleanDialogPath(QDir::current().absoluteFilePath(tul::cleanDialogPath(path)));
}

/// Whether a path can only be that of a directory.
bool namesDirectory(const QString &path)
{
    return QDir::fromNativeSeparators(path).endsWith(QLatin1Char('/'));
}

} // namespace

QString &DialogNavigation::lastVisitedDirectory()
{
    static QString directory;
    return directory;
}

QString DialogNavigation::workingDirectory(const QString &directory)
{
    if (!directory.isEmpty()) {
        const QString path = absolute(directory);
        if (isDirectory(path))
            return path;
        const QString parent = tul::parentPath(path);
        if (!namesDirectory(directory) && isDirectory(parent))
            return parent;
    }
    const QString last = lastVisitedDirectory();
    return isDirectory(last) ? last : QDir::currentPath();
}

QString DialogNavigation::initialSelection(const QString &directory)
{
    if (directory.isEmpty() || namesDirectory(directory) || isDirectory(absolute(directory)))
        return {};
    return tul::lastElement(directory);
}

bool DialogNavigation::goTo(const QString &path)
{
    RemoteFileSystemModel *const model = m_context->model;
    const bool toDrives = path.isEmpty() || path == model->myComputer().toString();
    const QString target = toDrives ? QString() : absolute(path);
    if (target == m_context->rootPath())
        return true;
    if (!toDrives && m_context->kindOf(target) != tul::FileKind::Directory)
        return false;
    m_history.setSelected(m_context->selectedPaths());
    m_context->selection()->clear();
    model->setRootPath(target);
    return m_context->rootPath() == target;
}

bool DialogNavigation::enter(const QString &path)
{
    if (!goTo(path))
        return false;
    // A name in the directory that was left is not chosen here.
    if (tul::choosesDirectories(m_context->fileMode))
        m_context->ui.fileNameEdit->clear();
    announceEntered(m_context->rootPath());
    return true;
}

void DialogNavigation::announceEntered(const QString &name)
{
    Q_EMIT m_context->dialog->directoryEntered(name);
}

void DialogNavigation::step(int by)
{
    while (by < 0 ? m_history.canGoBack() : m_history.canGoForward()) {
        m_history.setSelected(m_context->selectedPaths());
        m_history.step(by);
        const NavigationHistory::Place place = m_history.current();
        if (!goTo(place.path)) {
            m_history.dropAfterStep(by);
            continue;
        }
        for (const QString &path : place.selected) {
            const QModelIndex row = m_context->toView(m_context->model->index(path));
            if (row.isValid())
                m_context->selection()->select(
                    row, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
        break;
    }
    updateButtons();
}

void DialogNavigation::goToParent()
{
    QString path = m_context->rootPath();
    if (path.isEmpty())
        return;
    // A directory that was removed leads to what is left above it.
    do {
        path = tul::parentPath(path);
    } while (!goTo(path));
    announceEntered(path.isEmpty() ? m_context->model->myComputer().toString() : path);
}

void DialogNavigation::goHome()
{
    const QString home = m_context->dialog->tildeExpansion(QStringLiteral("~"));
    // Of a remote machine it may be unknown.
    if (!home.isEmpty())
        goTo(home);
}

void DialogNavigation::goToPlace(const QUrl &url)
{
    enter(url.toLocalFile());
}

void DialogNavigation::goToEntry(const QString &path)
{
    const QPointer<RemoteFileDialogBase> guard(m_context->dialog);
    if (QLineEdit *const edit = m_context->ui.lookInCombo->lineEdit())
        edit->setModified(false);
    const bool entered = enter(path);
    if (!guard)
        return;
    // The box shows the entry by now, wherever the dialog is.
    showLookInText();
    // Later: the look-in box is still at work, and whoever closes the complaint may delete it.
    if (!entered)
        QMetaObject::invokeMethod(
            m_context->dialog, [this, path] { tellMissing(path); }, Qt::QueuedConnection);
}

void DialogNavigation::tellMissing(const QString &path) const
{
    const QString text = RemoteFileDialogBase::tr("%1\nDirectory not found.\nPlease verify the "
                                                  "correct directory name was given.");
    m_context->warn(m_context->dialog->windowTitle(), text.arg(path), QMessageBox::Ok,
                    QMessageBox::Ok);
}

void DialogNavigation::goToTyped(const QString &text)
{
    if (text.isEmpty() || text == m_context->model->myComputer().toString()) {
        goToEntry(text.isEmpty() ? m_context->rootPath() : text);
        return;
    }
    const QLineEdit *const edit = m_context->ui.lookInCombo->lineEdit();
    // The key that goes to one of the entries comes here as well.
    if (edit && !edit->isModified() && text == m_context->rootPath()) {
        showLookInText();
        return;
    }
    bool expanded = false;
    const QString path = m_context->dialog->tildeExpansion(text, &expanded);
    goToEntry(tul::requestPath(expanded ? path : typedPath(path)));
}

QString DialogNavigation::typedPath(const QString &text) const
{
    const QString given = lookInPath ? lookInPath(text) : QString();
    if (!given.isEmpty())
        return given;
    const QString root = m_context->rootPath();
    if (text.startsWith(QLatin1Char('/')))
        return tul::joinElements(tul::splitPath(root).mid(0, 1)) + text;
    if (!QDir::isAbsolutePath(text))
        return tul::joinSlash(root, text);
    const QString prefix = text.left(text.indexOf(QLatin1Char(':')) + 1);
    const QString rest = text.mid(prefix.size());
    constexpr int sizeOfDrive = 2;
    if (prefix.size() <= sizeOfDrive || rest.isEmpty() || rest.startsWith(QLatin1Char('/')))
        return text;
    return tul::joinSlash(prefix, rest);
}

bool DialogNavigation::isTyping() const
{
    const QLineEdit *const edit = m_context->ui.lookInCombo->lineEdit();
    return edit && edit->isModified() && edit->hasFocus();
}

void DialogNavigation::followTyping(const QString &path)
{
    const bool typing = isTyping();
    if (typing && m_context->likelyKindOf(tul::cleanDialogPath(path)) != tul::FileKind::Directory)
        return;
    const QScopedValueRollback<bool> keeping(m_keepsText, typing);
    goTo(path);
}

void DialogNavigation::endTyping()
{
    QLineEdit *const edit = m_context->ui.lookInCombo->lineEdit();
    if (!edit || !edit->isModified())
        return;
    edit->setModified(false);
    showLookInText();
}

void DialogNavigation::rootChanged()
{
    const QString path = m_context->rootPath();
    const QModelIndex root = m_context->toView(m_context->rootIndex());
    // The model lists a directory again only after it was the root.
    m_listed.remove(m_root);
    m_root = path;
    m_context->forgetNames();
    setListing(!path.isEmpty() && !m_listed.contains(path));
    m_context->ui.listView->setRootIndex(root);
    m_context->ui.treeView->setRootIndex(root);
    m_context->ui.sidebar->selectUrl(QUrl::fromLocalFile(path));
    m_history.visit(path);
    updateButtons();
    if (!m_keepsText)
        showLookInText();
    if (m_started && !path.isEmpty())
        lastVisitedDirectory() = path;
    m_context->selection()->clear(); // for a root that was not changed here; slots hear of it
}

void DialogNavigation::listed(const QString &path)
{
    const QString directory = tul::requestPath(path);
    m_listed.insert(directory);
    if (directory != m_context->rootPath())
        return;
    setListing(false);
    updateButtons();
}

void DialogNavigation::start()
{
    m_started = true;
    m_history.restart();
    if (!m_context->rootPath().isEmpty())
        lastVisitedDirectory() = m_context->rootPath();
    updateButtons();
}

void DialogNavigation::keepPlaces(const std::function<bool(const QString &)> &isKept)
{
    m_history.keep(isKept);
    updateButtons();
}

void DialogNavigation::setRecentPlaces(const QStringList &paths)
{
    m_recentPlaces = paths;
    m_recentPlaces.removeAll(QString());
}

void DialogNavigation::setListing(bool listing)
{
    m_context->listing = listing;
    for (QAbstractItemView *const view :
         {static_cast<QAbstractItemView *>(m_context->ui.listView),
          static_cast<QAbstractItemView *>(m_context->ui.treeView)}) {
        if (listing)
            view->viewport()->setCursor(Qt::BusyCursor);
        else
            view->viewport()->unsetCursor();
    }
    updateNote();
}

void DialogNavigation::updateNote()
{
    QString note;
    if (!m_context->listing && !m_context->rootPath().isEmpty()) {
        const QModelIndex root = m_context->rootIndex();
        if (m_context->model->rowCount(root) == 0 && !QFileInfo(m_context->rootPath()).isReadable())
            note = RemoteFileDialogBase::tr("This directory cannot be read.");
    }
    m_context->ui.listView->setNote(note);
    m_context->ui.treeView->setNote(note);
}

void DialogNavigation::updateButtons()
{
    const DialogWidgets &ui = m_context->ui;
    const bool isDrives = m_context->rootPath().isEmpty();
    ui.backButton->setEnabled(m_history.canGoBack());
    ui.forwardButton->setEnabled(m_history.canGoForward());
    ui.toParentButton->setEnabled(!isDrives);
    ui.newFolderAction->setEnabled(
        !isDrives && !m_context->isReadOnly()
        && (m_context->listing || m_context->isChangeable(m_context->rootIndex())));
    ui.newFolderButton->setEnabled(ui.newFolderAction->isEnabled());
}

void DialogNavigation::showLookInText()
{
    QComboBox *const box = m_context->ui.lookInCombo;
    const QString path = m_context->rootPath();
    const RemoteFileSystemModel *const model = m_context->model;
    const QIcon icon = path.isEmpty() ? model->myComputer(Qt::DecorationRole).value<QIcon>()
                                      : model->fileIcon(m_context->rootIndex());
    {
        const QSignalBlocker blocker(box); // only the new text is announced
        box->clear();
    }
    box->addItem(icon, path.isEmpty() ? model->myComputer().toString() : path);
}

void DialogNavigation::fillLookInBox()
{
    showLookInText();
    QComboBox *const box = m_context->ui.lookInCombo;
    const QSignalBlocker blocker(box);
    const RemoteFileSystemModel *const model = m_context->model;
    for (QString path = m_context->rootPath(); !path.isEmpty();) {
        path = tul::parentPath(path);
        if (!path.isEmpty())
            box->addItem(model->fileIcon(model->index(path)), path);
        else
            box->addItem(model->myComputer(Qt::DecorationRole).value<QIcon>(),
                         model->myComputer().toString());
    }
    QStringList places;
    for (const QString &place : m_recentPlaces) {
        if (!places.contains(place))
            places.prepend(place);
    }
    if (places.isEmpty())
        return;
    box->insertSeparator(box->count());
    box->addItem(RemoteFileDialogBase::tr("Recent Places"));
    if (auto *const items = qobject_cast<QStandardItemModel *>(box->model()))
        items->item(box->count() - 1)->setEnabled(false);
    const QIcon folder = box->style()->standardIcon(QStyle::SP_DirIcon, nullptr, box);
    for (const QString &place : qAsConst(places))
        box->addItem(folder, place);
}
