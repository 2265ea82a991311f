#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/dialogstate_p.h>
#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/namefilters_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filedialog/remotefiledialogbase_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>

#include <QAction>
#include <QEvent>
#include <QHeaderView>
#include <QSettings>
#include <QStackedWidget>

namespace
{

/// Shows the dialog of a static function; the chosen files, or none. On the heap, because a parent
/// that is deleted meanwhile takes it along.
QStringList run(RemoteFileDialogBase *shown, QString *selectedFilter)
{
    const QPointer<RemoteFileDialogBase> dialog(shown);
    if (selectedFilter && !selectedFilter->isEmpty())
        dialog->selectNameFilter(*selectedFilter);
    const int result = dialog->exec();
    if (!dialog)
        return {};
    QStringList files;
    if (result == QDialog::Accepted) {
        files = dialog->selectedFiles();
        if (selectedFilter)
            *selectedFilter = dialog->selectedNameFilter();
    }
    delete dialog;
    return files;
}

RemoteFileDialogBaseArgs arguments(QWidget *parent, const QString &caption,
                                   const QString &directory, const QString &filter,
                                   QFileDialog::FileMode mode, QFileDialog::Options options)
{
    return {parent,
            caption,
            DialogNavigation::workingDirectory(directory),
            DialogNavigation::initialSelection(directory),
            filter,
            mode,
            options};
}

} // namespace

RemoteFileDialogBase::RemoteFileDialogBase(QWidget *parent, Qt::WindowFlags flags)
    : QDialog(parent, flags)
    , d(std::make_unique<RemoteFileDialogBasePrivate>(this))
{
    d->construct({}, {}, {});
}

RemoteFileDialogBase::RemoteFileDialogBase(QWidget *parent, const QString &caption,
                                           const QString &directory, const QString &filter)
    : QDialog(parent, {})
    , d(std::make_unique<RemoteFileDialogBasePrivate>(this))
{
    d->construct(directory, filter, caption);
}

RemoteFileDialogBase::RemoteFileDialogBase(QWidget *parent, const QString &caption,
                                           const QString &filter, const Beginning &beginning)
    : QDialog(parent, {})
    , d(std::make_unique<RemoteFileDialogBasePrivate>(this))
{
    d->construct({}, filter, caption, beginning.directory);
}

RemoteFileDialogBase::RemoteFileDialogBase(const RemoteFileDialogBaseArgs &args)
    : QDialog(args.parent, {})
    , d(std::make_unique<RemoteFileDialogBasePrivate>(this))
{
    d->construct(args.directory, args.filter, args.caption);
    setFileMode(args.mode);
    setOptions(args.options);
    selectFile(args.selection);
    d->context.ui.fileNameEdit->selectAll();
}

RemoteFileDialogBase::~RemoteFileDialogBase()
{
    QSettings settings(QSettings::UserScope, QStringLiteral("Vantorq"));
    settings.beginGroup(QStringLiteral("RemoteFileDialog"));
    settings.setValue(QStringLiteral("state"), d->state().toBytes());
    d->cutConnections();
}

QDir RemoteFileDialogBase::directory() const
{
    return {d->context.model->rootPath()};
}

void RemoteFileDialogBase::setDirectory(const QString &directory)
{
    d->navigation.goTo(directory);
}

void RemoteFileDialogBase::setDirectory(const QDir &directory)
{
    setDirectory(directory.absolutePath());
}

void RemoteFileDialogBase::selectFile(const QString &name)
{
    d->selection.selectFile(name);
}

QStringList RemoteFileDialogBase::selectedFiles() const
{
    return d->selection.selectedFiles();
}

void RemoteFileDialogBase::setNameFilter(const QString &filter)
{
    setNameFilters(tul::splitNameFilters(filter));
}

void RemoteFileDialogBase::setNameFilters(const QStringList &filters)
{
    d->filters.setNameFilters(filters);
}

QStringList RemoteFileDialogBase::nameFilters() const
{
    return d->filters.nameFilters();
}

void RemoteFileDialogBase::selectNameFilter(const QString &filter)
{
    d->filters.selectNameFilter(filter);
}

QString RemoteFileDialogBase::selectedNameFilter() const
{
    return d->filters.selectedNameFilter();
}

QDir::Filters RemoteFileDialogBase::filter() const
{
    return d->context.model->filter();
}

void RemoteFileDialogBase::setFilter(QDir::Filters filters)
{
    d->filters.setEntryFilter(filters);
}

void RemoteFileDialogBase::setFilter(const QString &filter)
{
    setNameFilter(filter);
}

void RemoteFileDialogBase::setFilters(const QStringList &filters)
{
    setNameFilters(filters);
}

QStringList RemoteFileDialogBase::filters() const
{
    return nameFilters();
}

void RemoteFileDialogBase::selectFilter(const QString &filter)
{
    selectNameFilter(filter);
}

QString RemoteFileDialogBase::selectedFilter() const
{
    return selectedNameFilter();
}

QFileDialog::ViewMode RemoteFileDialogBase::viewMode() const
{
    return d->context.ui.stackedWidget->currentIndex() == 0 ? QFileDialog::List
                                                            : QFileDialog::Detail;
}

void RemoteFileDialogBase::setViewMode(QFileDialog::ViewMode mode)
{
    d->setViewMode(mode);
}

QFileDialog::FileMode RemoteFileDialogBase::fileMode() const
{
    return d->context.fileMode;
}

void RemoteFileDialogBase::setFileMode(QFileDialog::FileMode mode)
{
    d->setFileMode(mode);
}

QFileDialog::AcceptMode RemoteFileDialogBase::acceptMode() const
{
    return d->context.acceptMode;
}

void RemoteFileDialogBase::setAcceptMode(QFileDialog::AcceptMode mode)
{
    d->setAcceptMode(mode);
}

bool RemoteFileDialogBase::isReadOnly() const
{
    return testOption(QFileDialog::ReadOnly);
}

void RemoteFileDialogBase::setReadOnly(bool enabled)
{
    setOption(QFileDialog::ReadOnly, enabled);
}

bool RemoteFileDialogBase::resolveSymlinks() const
{
    return !testOption(QFileDialog::DontResolveSymlinks);
}

void RemoteFileDialogBase::setResolveSymlinks(bool enabled)
{
    setOption(QFileDialog::DontResolveSymlinks, !enabled);
}

bool RemoteFileDialogBase::confirmOverwrite() const
{
    return !testOption(QFileDialog::DontConfirmOverwrite);
}

void RemoteFileDialogBase::setConfirmOverwrite(bool enabled)
{
    setOption(QFileDialog::DontConfirmOverwrite, !enabled);
}

QString RemoteFileDialogBase::defaultSuffix() const
{
    return d->context.defaultSuffix;
}

void RemoteFileDialogBase::setDefaultSuffix(const QString &suffix)
{
    d->context.defaultSuffix = suffix.startsWith(QLatin1Char('.')) ? suffix.mid(1) : suffix;
}

bool RemoteFileDialogBase::isNameFilterDetailsVisible() const
{
    return !testOption(QFileDialog::HideNameFilterDetails);
}

void RemoteFileDialogBase::setNameFilterDetailsVisible(bool enabled)
{
    setOption(QFileDialog::HideNameFilterDetails, !enabled);
}

QFileDialog::Options RemoteFileDialogBase::options() const
{
    return d->context.options;
}

void RemoteFileDialogBase::setOptions(QFileDialog::Options options)
{
    d->setOptions(options);
}

bool RemoteFileDialogBase::testOption(QFileDialog::Option option) const
{
    return d->context.options.testFlag(option);
}

void RemoteFileDialogBase::setOption(QFileDialog::Option option, bool on)
{
    QFileDialog::Options options = d->context.options;
    setOptions(options.setFlag(option, on));
}

QStringList RemoteFileDialogBase::history() const
{
    QStringList places = d->navigation.recentPlaces();
    const QString shown = d->context.rootPath();
    if (!places.contains(shown))
        places.append(shown);
    return places;
}

void RemoteFileDialogBase::setHistory(const QStringList &paths)
{
    d->navigation.setRecentPlaces(paths);
}

QList<QUrl> RemoteFileDialogBase::sidebarUrls() const
{
    return d->context.ui.sidebar->urls();
}

void RemoteFileDialogBase::setSidebarUrls(const QList<QUrl> &urls)
{
    d->context.ui.sidebar->setUrls(urls);
    d->context.ui.sidebar->selectUrl(QUrl::fromLocalFile(d->context.rootPath()));
}

QAbstractProxyModel *RemoteFileDialogBase::proxyModel() const
{
    return d->context.proxy;
}

void RemoteFileDialogBase::setProxyModel(QAbstractProxyModel *model)
{
    d->setProxyModel(model);
}

QFileIconProvider *RemoteFileDialogBase::iconProvider() const
{
    return d->context.model->iconProvider();
}

void RemoteFileDialogBase::setIconProvider(QFileIconProvider *provider)
{
    d->context.model->setIconProvider(provider ? provider : d->ownIconProvider);
}

QAbstractItemDelegate *RemoteFileDialogBase::itemDelegate() const
{
    return d->context.ui.listView->itemDelegate();
}

void RemoteFileDialogBase::setItemDelegate(QAbstractItemDelegate *delegate)
{
    d->context.ui.listView->setItemDelegate(delegate);
    d->context.ui.treeView->setItemDelegate(delegate);
}

QString RemoteFileDialogBase::labelText(QFileDialog::DialogLabel label) const
{
    return d->labelText(label);
}

void RemoteFileDialogBase::setLabelText(QFileDialog::DialogLabel label, const QString &text)
{
    d->setLabelText(label, text);
}

void RemoteFileDialogBase::open(QObject *receiver, const char *member)
{
    d->disconnectReceiver();
    // The mode may be another one when the dialog is closed.
    d->receiverSignal = fileMode() == QFileDialog::ExistingFiles
        ? SIGNAL(filesSelected(QStringList))
        : SIGNAL(fileSelected(QString));
    if (receiver && member && connect(this, d->receiverSignal.constData(), receiver, member)) {
        d->receiver = receiver;
        d->receiverMember = member;
    }
    QDialog::open();
}

QByteArray RemoteFileDialogBase::saveState() const
{
    return d->state().toBytes();
}

bool RemoteFileDialogBase::restoreState(const QByteArray &state)
{
    const auto read = DialogState::fromBytes(state);
    return read && d->restore(*read);
}

QString RemoteFileDialogBase::getOpenFileName(QWidget *parent, const QString &caption,
                                              const QString &dir, const QString &filter,
                                              QString *selectedFilter, QFileDialog::Options options)
{
    auto *const dialog = new RemoteFileDialogBase(
        arguments(parent, caption, dir, filter, QFileDialog::ExistingFile, options));
    return run(dialog, selectedFilter).value(0);
}

QStringList RemoteFileDialogBase::getOpenFileNames(QWidget *parent, const QString &caption,
                                                   const QString &dir, const QString &filter,
                                                   QString *selectedFilter,
                                                   QFileDialog::Options options)
{
    auto *const dialog = new RemoteFileDialogBase(
        arguments(parent, caption, dir, filter, QFileDialog::ExistingFiles, options));
    return run(dialog, selectedFilter);
}

QString RemoteFileDialogBase::getSaveFileName(QWidget *parent, const QString &caption,
                                              const QString &dir, const QString &filter,
                                              QString *selectedFilter, QFileDialog::Options options)
{
    auto *const dialog = new RemoteFileDialogBase(
        arguments(parent, caption, dir, filter, QFileDialog::AnyFile, options));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    return run(dialog, selectedFilter).value(0);
}

QString RemoteFileDialogBase::getExistingDirectory(QWidget *parent, const QString &caption,
                                                   const QString &dir, QFileDialog::Options options)
{
    const auto mode
        = options.testFlag(QFileDialog::ShowDirsOnly) ? tul::directoryOnly : QFileDialog::Directory;
    auto *const dialog
        = new RemoteFileDialogBase(arguments(parent, caption, dir, QString(), mode, options));
    return run(dialog, nullptr).value(0);
}

void RemoteFileDialogBase::setVisible(bool visible)
{
    if (testAttribute(Qt::WA_WState_ExplicitShowHide)
        && testAttribute(Qt::WA_WState_Hidden) != visible)
        return;
    d->context.ui.fileNameEdit->setFocus();
    QDialog::setVisible(visible);
}

QString RemoteFileDialogBase::tildeExpansion(const QString &path, bool *expanded)
{
    QString home;
    const QString user = path.section(QLatin1Char('/'), 0, 0);
    if (user == QLatin1String("~"))
        home = QDir::homePath();
    else if (user.startsWith(QLatin1Char('~')))
        home = tul::homeOfUser(user.mid(1));
    if (expanded)
        *expanded = !home.isEmpty();
    return home.isEmpty() ? path : home + path.mid(user.size());
}

QString RemoteFileDialogBase::getEnvironmentVariable(const QString &name)
{
    const QByteArray variable = name.mid(1).toLocal8Bit();
    if (!name.startsWith(QLatin1Char('$')) || !qEnvironmentVariableIsSet(variable.constData()))
        return name;
    return qEnvironmentVariable(variable.constData());
}

QStringList RemoteFileDialogBase::typedFiles()
{
    return d->selection.typedFiles();
}

void RemoteFileDialogBase::accept()
{
    d->selection.accept();
}

void RemoteFileDialogBase::done(int result)
{
    d->disconnectReceiver();
    QDialog::done(result);
}

void RemoteFileDialogBase::changeEvent(QEvent *event)
{
    if (d->context.model && event->type() == QEvent::LanguageChange)
        d->retranslate();
    else if (d->context.model && event->type() == QEvent::StyleChange)
        d->context.ui.setIcons();
    QDialog::changeEvent(event);
}

RemoteFileSystemModel *RemoteFileDialogBase::fileSystemModel() const
{
    return d->context.model;
}

void RemoteFileDialogBase::_q_navigateBackward()
{
    d->navigation.goBack();
}

void RemoteFileDialogBase::_q_navigateForward()
{
    d->navigation.goForward();
}

void RemoteFileDialogBase::_q_navigateToParent()
{
    d->navigation.goToParent();
}

void RemoteFileDialogBase::_q_createDirectory()
{
    d->operations.createFolder();
}

void RemoteFileDialogBase::_q_showListView()
{
    setViewMode(QFileDialog::List);
}

void RemoteFileDialogBase::_q_showDetailsView()
{
    setViewMode(QFileDialog::Detail);
}

void RemoteFileDialogBase::_q_showContextMenu(const QPoint &position)
{
    d->operations.showContextMenu(d->context.view(), position);
}

void RemoteFileDialogBase::_q_renameCurrent()
{
    d->operations.renameCurrent();
}

void RemoteFileDialogBase::_q_deleteCurrent()
{
    d->operations.deleteSelected();
}

void RemoteFileDialogBase::_q_showHidden()
{
    d->filters.toggleHidden();
}

void RemoteFileDialogBase::_q_updateOkButton()
{
    d->selection.updateAcceptButton();
}

void RemoteFileDialogBase::_q_autoCompleteFileName(const QString &text)
{
    d->selection.selectTypedRows(text);
}

void RemoteFileDialogBase::_q_enterDirectory(const QModelIndex &index)
{
    d->activate(index);
}

void RemoteFileDialogBase::_q_goToDirectory(const QString &path)
{
    d->navigation.goToEntry(path);
}

void RemoteFileDialogBase::_q_useNameFilter(int index)
{
    if (!tul::choosesDirectories(fileMode()))
        d->filters.useNameFilter(index);
}

void RemoteFileDialogBase::_q_selectionChanged()
{
    d->selection.showSelectedNames();
}

void RemoteFileDialogBase::_q_goToUrl(const QUrl &url)
{
    d->navigation.goToPlace(url);
}

void RemoteFileDialogBase::_q_goHome()
{
    d->navigation.goHome();
}

void RemoteFileDialogBase::_q_showHeader(QAction *action)
{
    const int column = d->context.ui.columnActions.indexOf(action) + 1;
    if (column > 0)
        d->context.ui.treeView->header()->setSectionHidden(column, !action->isChecked());
}

void RemoteFileDialogBase::_q_currentChanged(const QModelIndex &index)
{
    Q_EMIT currentChanged(d->context.path(d->context.toModel(index)));
}

void RemoteFileDialogBase::_q_fileRenamed(const QString &path, const QString &oldName,
                                          const QString &newName)
{
    Q_UNUSED(path)
    d->renamed(oldName, newName);
}

void RemoteFileDialogBase::_q_pathChanged(const QString &path)
{
    Q_UNUSED(path) // the model's root has it, and is asked for it more than once
    d->navigation.rootChanged();
}

void RemoteFileDialogBase::_q_rowsInserted(const QModelIndex &parent)
{
    if (!d->context.listing && parent == d->context.view()->rootIndex())
        d->selection.selectTypedRowsIfNone();
}
