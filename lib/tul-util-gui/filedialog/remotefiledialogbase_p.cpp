#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/dialogstate_p.h>
#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/namefilters_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase_p.h>
#include <tul-util-gui/filedialog/remotefscompleter_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>

#include <QAction>
#include <QActionGroup>
#include <QDialogButtonBox>
#include <QFileIconProvider>
#include <QGuiApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyle>
#include <QToolButton>

namespace
{

constexpr int recentPlacesKept = 5;

} // namespace

RemoteFileDialogBasePrivate::RemoteFileDialogBasePrivate(RemoteFileDialogBase *dialog)
    : q(dialog)
    , context(dialog)
    , navigation(&context)
    , filters(&context)
    , selection(&context)
    , operations(&context)
{
}

void RemoteFileDialogBasePrivate::construct(const QString &directory, const QString &filter,
                                            const QString &caption, const QString &beginning)
{
    if (!caption.isEmpty())
        q->setWindowTitle(caption);
    context.ui.build(q);
    createModel();
    attachViews();
    context.ui.buildColumns();
    connectModel();
    connectWidgets();
    connectActions();
    retranslate();
    setFileMode(context.fileMode); // with the first labels
    setViewMode(QFileDialog::List);

    QSettings settings(QSettings::UserScope, QStringLiteral("Vantorq"));
    settings.beginGroup(QStringLiteral("RemoteFileDialog"));
    const bool begun = !beginning.isEmpty() && navigation.goTo(beginning);
    QString start = begun ? context.rootPath() : QString();
    if (!begun && !directory.isEmpty())
        start = DialogNavigation::workingDirectory(directory);
    if (!start.isEmpty())
        DialogNavigation::lastVisitedDirectory() = start;
    if (const auto state
        = DialogState::fromBytes(settings.value(QStringLiteral("state")).toByteArray()))
        restore(*state);
    if (!filter.isEmpty())
        filters.setNameFilters(tul::splitNameFilters(filter));
    setAcceptMode(QFileDialog::AcceptOpen);
    // Without an argument the dialog stays where the restored state has brought it.
    if (start.isEmpty() && context.rootPath().isEmpty())
        start = DialogNavigation::workingDirectory({});
    if (!start.isEmpty())
        navigation.goTo(start);
    selection.selectFile(DialogNavigation::initialSelection(directory));
    selection.updateAcceptButton();
    navigation.start();
    q->resize(q->sizeHint());
}

void RemoteFileDialogBasePrivate::createModel()
{
    auto *const model = new RemoteFileSystemModel(q);
    model->setObjectName(QStringLiteral("qt_filesystem_model"));
    model->setNameFilterDisables(false);
    model->setReadOnly(false);
    context.model = model;
    ownIconProvider = model->iconProvider();
    context.ui.sidebar->setFileSystemModel(model);
    context.ui.listView->setDialog(this);
    context.ui.treeView->setDialog(this);
    context.ui.lookInCombo->setDialog(this);
}

void RemoteFileDialogBasePrivate::attachViews()
{
    RemoteFileDialogBaseListView *const list = context.ui.listView;
    RemoteFileDialogBaseTreeView *const tree = context.ui.treeView;
    QAbstractItemModel *const shown = context.viewModel();
    const bool first = !list->selectionModel();
    const QByteArray columns = first ? QByteArray() : tree->header()->saveState();

    // The views leave their selection models behind, and are to share one.
    const QPointer<QItemSelectionModel> former(list->selectionModel());
    list->setModel(shown);
    tree->setModel(shown);
    const QPointer<QItemSelectionModel> second(tree->selectionModel());
    tree->setSelectionModel(list->selectionModel());
    delete second;
    delete former;

    list->setModelColumn(0);
    if (first) {
        tree->setSortingEnabled(true);
        tree->header()->setSortIndicator(0, Qt::AscendingOrder);
    } else {
        tree->header()->restoreState(columns);
    }
    tree->sortByColumn(tree->header()->sortIndicatorSection(),
                       tree->header()->sortIndicatorOrder());
    const QModelIndex root = context.toView(context.rootIndex());
    list->setRootIndex(root);
    tree->setRootIndex(root);

    const QItemSelectionModel *const rows = list->selectionModel();
    QObject::connect(rows, &QItemSelectionModel::selectionChanged, q,
                     &RemoteFileDialogBase::_q_selectionChanged);
    QObject::connect(rows, &QItemSelectionModel::currentChanged, q,
                     &RemoteFileDialogBase::_q_currentChanged);
    for (const QMetaObject::Connection &connection : qAsConst(m_rowConnections))
        QObject::disconnect(connection);
    const auto forget = [this] { context.forgetNames(); };
    m_rowConnections = {// Ahead of the slot that looks for names.
                        QObject::connect(shown, &QAbstractItemModel::rowsInserted, q, forget),
                        QObject::connect(shown, &QAbstractItemModel::rowsRemoved, q, forget),
                        QObject::connect(shown, &QAbstractItemModel::dataChanged, q, forget),
                        QObject::connect(shown, &QAbstractItemModel::layoutChanged, q, forget),
                        QObject::connect(shown, &QAbstractItemModel::modelReset, q, forget),
                        QObject::connect(shown, &QAbstractItemModel::rowsInserted, q,
                                         &RemoteFileDialogBase::_q_rowsInserted)};
    context.forgetNames();
}

void RemoteFileDialogBasePrivate::connectModel()
{
    const RemoteFileSystemModel *const model = context.model;
    QObject::connect(model, &RemoteFileSystemModel::fileRenamed, q,
                     &RemoteFileDialogBase::_q_fileRenamed);
    QObject::connect(model, &RemoteFileSystemModel::rootPathChanged, q,
                     &RemoteFileDialogBase::_q_pathChanged);
    QObject::connect(model, &RemoteFileSystemModel::directoryLoaded, q,
                     [this](const QString &path) {
                         navigation.listed(path);
                         selection.selectTypedRowsIfNone();
                         if (completer)
                             completer->directoryLoaded(path);
                     });
}

void RemoteFileDialogBasePrivate::connectWidgets()
{
    const DialogWidgets &ui = context.ui;
    QObject::connect(ui.sidebar, &RemoteSidebar::goToUrl, q, &RemoteFileDialogBase::_q_goToUrl);
    QObject::connect(ui.buttonBox, &QDialogButtonBox::accepted, q, &RemoteFileDialogBase::accept);
    QObject::connect(ui.buttonBox, &QDialogButtonBox::rejected, q, &QDialog::reject);

    ui.lookInCombo->setEditable(true);
    ui.lookInCombo->setCompleter(nullptr);
    ui.lookInCombo->setInsertPolicy(QComboBox::NoInsert);
    ui.lookInCombo->setDuplicatesEnabled(false);
    QObject::connect(ui.lookInCombo, &QComboBox::textActivated, q,
                     &RemoteFileDialogBase::_q_goToDirectory);

    completer = new RemoteFSCompleter(&context, ui.fileNameEdit);
    ui.fileNameEdit->setCompleter(completer);
    QObject::connect(ui.fileNameEdit, &QLineEdit::textChanged, q,
                     &RemoteFileDialogBase::_q_autoCompleteFileName);
    QObject::connect(ui.fileNameEdit, &QLineEdit::textChanged, q,
                     &RemoteFileDialogBase::_q_updateOkButton);
    QObject::connect(ui.fileNameEdit, &QLineEdit::textEdited, completer,
                     [this](const QString &text) { completer->prepare(text); });
    QObject::connect(ui.fileNameEdit, &QLineEdit::returnPressed, q, &RemoteFileDialogBase::accept);

    ui.fileTypeCombo->setDuplicatesEnabled(false);
    ui.fileTypeCombo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    QObject::connect(ui.fileTypeCombo, QOverload<int>::of(&QComboBox::activated), q,
                     &RemoteFileDialogBase::_q_useNameFilter);
    QObject::connect(ui.fileTypeCombo, &QComboBox::textActivated, q,
                     &RemoteFileDialogBase::filterSelected);

    for (QAbstractItemView *const view : {static_cast<QAbstractItemView *>(ui.listView),
                                          static_cast<QAbstractItemView *>(ui.treeView)}) {
        QObject::connect(view, &QAbstractItemView::activated, q,
                         &RemoteFileDialogBase::_q_enterDirectory);
        QObject::connect(view, &QWidget::customContextMenuRequested, q,
                         &RemoteFileDialogBase::_q_showContextMenu);
        // Of the view alone: in the side bar the key removes a place.
        auto *const shortcut = new QShortcut(QKeySequence(Qt::Key_Delete), view);
        shortcut->setContext(Qt::WidgetShortcut);
        QObject::connect(shortcut, &QShortcut::activated, q,
                         &RemoteFileDialogBase::_q_deleteCurrent);
    }
}

void RemoteFileDialogBasePrivate::connectActions()
{
    const DialogWidgets &ui = context.ui;
    using Slot = void (RemoteFileDialogBase::*)();
    const QPair<QToolButton *, Slot> buttons[] = {
        {ui.backButton, &RemoteFileDialogBase::_q_navigateBackward},
        {ui.forwardButton, &RemoteFileDialogBase::_q_navigateForward},
        {ui.toParentButton, &RemoteFileDialogBase::_q_navigateToParent},
        {ui.listModeButton, &RemoteFileDialogBase::_q_showListView},
        {ui.detailModeButton, &RemoteFileDialogBase::_q_showDetailsView},
        {ui.newFolderButton, &RemoteFileDialogBase::_q_createDirectory},
    };
    for (const auto &[button, slot] : buttons)
        QObject::connect(button, &QToolButton::clicked, q, slot);

    const QPair<QAction *, Slot> actions[] = {
        {ui.renameAction, &RemoteFileDialogBase::_q_renameCurrent},
        {ui.deleteAction, &RemoteFileDialogBase::_q_deleteCurrent},
        {ui.showHiddenAction, &RemoteFileDialogBase::_q_showHidden},
        {ui.newFolderAction, &RemoteFileDialogBase::_q_createDirectory},
        {ui.goHomeAction, &RemoteFileDialogBase::_q_goHome},
        {ui.goToParentAction, &RemoteFileDialogBase::_q_navigateToParent},
    };
    for (const auto &[action, slot] : actions)
        QObject::connect(action, &QAction::triggered, q, slot);

    auto *const columns = new QActionGroup(ui.treeView->header());
    columns->setExclusive(false);
    for (QAction *const action : ui.columnActions)
        columns->addAction(action);
    QObject::connect(columns, &QActionGroup::triggered, q, &RemoteFileDialogBase::_q_showHeader);
}

void RemoteFileDialogBasePrivate::cutConnections()
{
    context.ui.listView->setDialog(nullptr);
    context.ui.treeView->setDialog(nullptr);
    context.ui.lookInCombo->setDialog(nullptr);
    const QList<QObject *> children = q->findChildren<QObject *>();
    for (const QObject *const child : children)
        child->disconnect(q);
    if (context.proxy) // the host may have become its parent again
        context.proxy->disconnect(q);
    context.ui.fileNameEdit->setCompleter(nullptr);
}

void RemoteFileDialogBasePrivate::setFileMode(QFileDialog::FileMode mode)
{
    context.fileMode = mode;
    context.options.setFlag(QFileDialog::ShowDirsOnly, mode == tul::directoryOnly);
    const auto rows = mode == QFileDialog::ExistingFiles ? QAbstractItemView::ExtendedSelection
                                                         : QAbstractItemView::SingleSelection;
    context.ui.listView->setSelectionMode(rows);
    context.ui.treeView->setSelectionMode(rows);
    filters.updateEntryFilter();
    filters.updateBox();
    updateTitle();
    updateLabels();
}

void RemoteFileDialogBasePrivate::setAcceptMode(QFileDialog::AcceptMode mode)
{
    if (context.acceptMode != mode) {
        context.acceptMode = mode;
        const auto accept
            = mode == QFileDialog::AcceptSave ? QDialogButtonBox::Save : QDialogButtonBox::Open;
        context.ui.buttonBox->setStandardButtons(accept | QDialogButtonBox::Cancel);
    }
    updateTitle();
    updateLabels();
}

void RemoteFileDialogBasePrivate::setOptions(QFileDialog::Options options)
{
    const QFileDialog::Options changed = options ^ context.options;
    context.options = options;
    if (changed & QFileDialog::HideNameFilterDetails)
        filters.updateBox();
    if (changed & QFileDialog::ShowDirsOnly)
        filters.updateEntryFilter();
    if (changed & QFileDialog::ReadOnly) {
        context.model->setReadOnly(context.isReadOnly());
        context.ui.renameAction->setEnabled(!context.isReadOnly());
        context.ui.deleteAction->setEnabled(!context.isReadOnly());
        navigation.updateButtons();
    }
    if (changed & QFileDialog::DontResolveSymlinks)
        context.model->setResolveSymlinks(!options.testFlag(QFileDialog::DontResolveSymlinks));
    QFileIconProvider *const provider = context.model->iconProvider();
    if (provider && (changed & QFileDialog::DontUseCustomDirectoryIcons))
        provider->setOptions(provider->options().setFlag(
            QFileIconProvider::DontUseCustomDirectoryIcons,
            options.testFlag(QFileDialog::DontUseCustomDirectoryIcons)));
}

void RemoteFileDialogBasePrivate::setViewMode(QFileDialog::ViewMode mode)
{
    const DialogWidgets &ui = context.ui;
    const bool detail = mode == QFileDialog::Detail;
    ui.stackedWidget->setCurrentIndex(detail ? 1 : 0);
    ui.listModeButton->setDown(!detail);
    ui.detailModeButton->setDown(detail);
}

void RemoteFileDialogBasePrivate::setProxyModel(QAbstractProxyModel *proxy)
{
    const QPointer<QAbstractProxyModel> former(context.proxy.data());
    if (proxy == former)
        return;
    context.proxy = proxy;
    if (proxy) {
        proxy->setParent(q);
        proxy->setSourceModel(context.model);
    }
    attachViews();
    if (completer)
        completer->setModel(context.viewModel());
    if (former) {
        former->disconnect(q);
        if (former->sourceModel() == context.model)
            former->setSourceModel(nullptr);
    }
    if (proxy)
        QObject::connect(proxy, &QObject::destroyed, q, [this] {
            attachViews();
            if (completer)
                completer->setModel(context.viewModel());
        });
}

DialogState RemoteFileDialogBasePrivate::state() const
{
    const DialogWidgets &ui = context.ui;
    DialogState state;
    state.splitter = ui.splitter->saveState();
    state.sidebarUrls = ui.sidebar->urls();
    state.history = q->history();
    state.directory = DialogNavigation::lastVisitedDirectory();
    state.header = ui.treeView->header()->saveState();
    state.viewMode = q->viewMode();
    return state;
}

bool RemoteFileDialogBasePrivate::restore(const DialogState &state)
{
    const DialogWidgets &ui = context.ui;
    if (!ui.splitter->restoreState(state.splitter))
        return false;
    QList<int> sizes = ui.splitter->sizes();
    if (sizes.size() >= 2 && sizes.at(0) == 0 && sizes.at(1) == 0) {
        for (int i = 0; i < sizes.size(); ++i)
            sizes[i] = ui.splitter->widget(i)->sizeHint().width();
        ui.splitter->setSizes(sizes);
    }
    navigation.setRecentPlaces(state.history.mid(qMax(0, state.history.size() - recentPlacesKept)));
    // Ahead of the places, many of which are above it.
    const QString last = DialogNavigation::lastVisitedDirectory();
    navigation.goTo(last.isEmpty() ? state.directory : last);
    q->setSidebarUrls(state.sidebarUrls);
    QHeaderView *const header = ui.treeView->header();
    if (!header->restoreState(state.header))
        return false;
    const int columns
        = qMin(context.model->columnCount(QModelIndex()), ui.columnActions.size() + 1);
    for (int i = 1; i < columns; ++i)
        ui.columnActions.at(i - 1)->setChecked(!header->isSectionHidden(i));
    setViewMode(state.viewMode);
    return true;
}

void RemoteFileDialogBasePrivate::retranslate()
{
    context.ui.retranslate(context.model);
    filters.retranslate();
    updateTitle();
    // Later, when the button box has set the texts of its own that it knows for the new language.
    QMetaObject::invokeMethod(
        q, [this] { updateLabels(); }, Qt::QueuedConnection);
}

void RemoteFileDialogBasePrivate::updateTitle()
{
    // A title that is not our last one is the host's.
    if (q->windowTitle() != m_ownTitle)
        return;
    if (context.acceptMode == QFileDialog::AcceptSave)
        m_ownTitle = RemoteFileDialogBase::tr("Save As");
    else if (tul::choosesDirectories(context.fileMode))
        m_ownTitle = RemoteFileDialogBase::tr("Find Directory");
    else
        m_ownTitle = RemoteFileDialogBase::tr("Open");
    q->setWindowTitle(m_ownTitle);
}

void RemoteFileDialogBasePrivate::updateLabels()
{
    const DialogWidgets &ui = context.ui;
    const QString name = tul::choosesDirectories(context.fileMode)
        ? RemoteFileDialogBase::tr("Directory:")
        : RemoteFileDialogBase::tr("File &name:");
    ui.lookInLabel->setText(
        m_labels.value(QFileDialog::LookIn, RemoteFileDialogBase::tr("Look in:")));
    ui.fileNameLabel->setText(m_labels.value(QFileDialog::FileName, name));
    ui.fileTypeLabel->setText(
        m_labels.value(QFileDialog::FileType, RemoteFileDialogBase::tr("Files of type:")));
    if (m_labels.contains(QFileDialog::Reject))
        ui.buttonBox->button(QDialogButtonBox::Cancel)
            ->setText(m_labels.value(QFileDialog::Reject));
    selection.updateAcceptButton();
}

QString RemoteFileDialogBasePrivate::acceptText(bool opens) const
{
    if (m_labels.contains(QFileDialog::Accept))
        return m_labels.value(QFileDialog::Accept);
    if (tul::choosesDirectories(context.fileMode))
        return RemoteFileDialogBase::tr("&Choose");
    if (context.acceptMode == QFileDialog::AcceptSave && !opens)
        return RemoteFileDialogBase::tr("&Save");
    return RemoteFileDialogBase::tr("&Open");
}

QString RemoteFileDialogBasePrivate::labelText(QFileDialog::DialogLabel label) const
{
    const DialogWidgets &ui = context.ui;
    switch (label) {
    case QFileDialog::LookIn:
        return ui.lookInLabel->text();
    case QFileDialog::FileName:
        return ui.fileNameLabel->text();
    case QFileDialog::FileType:
        return ui.fileTypeLabel->text();
    case QFileDialog::Accept:
        return ui.buttonBox
            ->button(context.acceptMode == QFileDialog::AcceptSave ? QDialogButtonBox::Save
                                                                   : QDialogButtonBox::Open)
            ->text();
    case QFileDialog::Reject:
        return ui.buttonBox->button(QDialogButtonBox::Cancel)->text();
    }
    return {};
}

void RemoteFileDialogBasePrivate::setLabelText(QFileDialog::DialogLabel label, const QString &text)
{
    m_labels.insert(label, text);
    updateLabels();
}

bool RemoteFileDialogBasePrivate::handleViewKey(const QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel))
        q->reject();
    else if (event->key() == Qt::Key_Backspace)
        navigation.goToParent();
    else if (event->key() == Qt::Key_Back || event->matches(QKeySequence::Back))
        navigation.goBack();
    else if (event->key() == Qt::Key_Forward || event->matches(QKeySequence::Forward))
        navigation.goForward();
    else if (event->matches(QKeySequence::Refresh))
        context.model->refresh(context.rootIndex());
    else
        return false;
    return true;
}

void RemoteFileDialogBasePrivate::activate(const QModelIndex &viewIndex)
{
    const QModelIndex entry = context.toModel(viewIndex.siblingAtColumn(0));
    if (!entry.isValid())
        return;
    const QAbstractItemView *const view = context.view();
    if (!context.model->isDir(entry)) {
        // Where a click activates, one with this key chooses another file.
        const bool adds = context.fileMode == QFileDialog::ExistingFiles
            && QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier)
            && view->style()->styleHint(QStyle::SH_ItemView_ActivateItemOnSingleClick, nullptr,
                                        view);
        if (!adds)
            q->accept();
        return;
    }
    const QString path = context.path(entry);
    if (!navigation.goTo(path))
        return;
    RemoteFileDialogBaseLineEdit *const edit = context.ui.fileNameEdit;
    if (tul::choosesDirectories(context.fileMode) || edit->text() == tul::lastElement(path))
        edit->clear();
    Q_EMIT q->directoryEntered(path);
}

void RemoteFileDialogBasePrivate::renamed(const QString &oldName, const QString &newName) const
{
    if (tul::choosesDirectories(context.fileMode) && context.ui.fileNameEdit->text() == oldName)
        context.ui.fileNameEdit->setText(newName);
}

void RemoteFileDialogBasePrivate::disconnectReceiver()
{
    if (receiver)
        QObject::disconnect(q, receiverSignal.constData(), receiver, receiverMember.constData());
    receiver.clear();
}
