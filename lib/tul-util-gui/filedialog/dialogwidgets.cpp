#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/dialogwidgets_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{

template<class W> W *named(W *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

void setPolicy(QWidget *widget, QSizePolicy::Policy horizontal, QSizePolicy::Policy vertical,
               int horizontalStretch = 0)
{
    QSizePolicy policy(horizontal, vertical);
    policy.setHorizontalStretch(horizontalStretch);
    widget->setSizePolicy(policy);
}

QToolButton *toolButton(QWidget *parent, QLayout *layout, const char *name)
{
    auto *const button = named(new QToolButton(parent), name);
    button->setAutoRaise(true);
    layout->addWidget(button);
    return button;
}

void setUpView(QAbstractItemView *view)
{
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setEditTriggers(QAbstractItemView::EditKeyPressed);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    view->setDragDropMode(QAbstractItemView::InternalMove);
}

QVBoxLayout *tightColumn(QWidget *parent, const char *name)
{
    auto *const layout = named(new QVBoxLayout(parent), name);
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

void buildTopRow(DialogWidgets &ui, QWidget *dialog, QGridLayout *grid)
{
    ui.lookInLabel = named(new QLabel(dialog), "lookInLabel");
    grid->addWidget(ui.lookInLabel, 0, 0, 1, 1);

    auto *const row = named(new QHBoxLayout, "hboxLayout");
    // The first combo box of the dialog: that is how derived dialogs find it.
    ui.lookInCombo = named(new RemoteFileDialogBaseComboBox(dialog), "lookInCombo");
    setPolicy(ui.lookInCombo, QSizePolicy::Expanding, QSizePolicy::Fixed, 1);
    ui.lookInCombo->setMinimumWidth(50);
    row->addWidget(ui.lookInCombo);
    ui.backButton = toolButton(dialog, row, "backButton");
    ui.forwardButton = toolButton(dialog, row, "forwardButton");
    ui.toParentButton = toolButton(dialog, row, "toParentButton");
    ui.newFolderButton = toolButton(dialog, row, "newFolderButton");
    ui.listModeButton = toolButton(dialog, row, "listModeButton");
    ui.detailModeButton = toolButton(dialog, row, "detailModeButton");
    grid->addLayout(row, 0, 1, 1, 2);
}

void buildViews(DialogWidgets &ui, QWidget *dialog, QGridLayout *grid)
{
    ui.splitter = named(new QSplitter(Qt::Horizontal, dialog), "splitter");
    setPolicy(ui.splitter, QSizePolicy::Expanding, QSizePolicy::Expanding);
    ui.sidebar = named(new RemoteSidebar(ui.splitter), "sidebar");

    auto *const frame = named(new QFrame(ui.splitter), "frame");
    frame->setFrameShape(QFrame::NoFrame);
    auto *const column = tightColumn(frame, "vboxLayout");
    ui.stackedWidget = named(new QStackedWidget(frame), "stackedWidget");
    column->addWidget(ui.stackedWidget);

    auto *const listPage = named(new QWidget(ui.stackedWidget), "page");
    ui.listView = named(new RemoteFileDialogBaseListView(listPage), "listView");
    tightColumn(listPage, "vboxLayout1")->addWidget(ui.listView);
    ui.stackedWidget->addWidget(listPage);

    auto *const detailPage = named(new QWidget(ui.stackedWidget), "page_2");
    ui.treeView = named(new RemoteFileDialogBaseTreeView(detailPage), "treeView");
    tightColumn(detailPage, "vboxLayout2")->addWidget(ui.treeView);
    ui.stackedWidget->addWidget(detailPage);
    ui.stackedWidget->setCurrentWidget(listPage);

    setUpView(ui.listView);
    ui.listView->setWrapping(true);
    ui.listView->setResizeMode(QListView::Adjust);
    // Keys get their turn while a large directory is laid out.
    ui.listView->setLayoutMode(QListView::Batched);
    ui.listView->setBatchSize(200);
    setUpView(ui.treeView);
    ui.treeView->setRootIsDecorated(false);
    ui.treeView->setItemsExpandable(false);
    ui.treeView->setUniformRowHeights(true);

    ui.splitter->setStretchFactor(ui.splitter->indexOf(frame), 7);
    grid->addWidget(ui.splitter, 1, 0, 1, 3);
}

void buildBottomRows(DialogWidgets &ui, QWidget *dialog, QGridLayout *grid)
{
    ui.fileNameLabel = named(new QLabel(dialog), "fileNameLabel");
    setPolicy(ui.fileNameLabel, QSizePolicy::Preferred, QSizePolicy::Fixed);
    ui.fileNameLabel->setMinimumSize(0, 0);
    grid->addWidget(ui.fileNameLabel, 2, 0, 1, 1);

    ui.fileNameEdit = named(new RemoteFileDialogBaseLineEdit(dialog), "fileNameEdit");
    setPolicy(ui.fileNameEdit, QSizePolicy::Expanding, QSizePolicy::Fixed, 1);
    grid->addWidget(ui.fileNameEdit, 2, 1, 1, 1);

    ui.buttonBox = named(new QDialogButtonBox(Qt::Vertical, dialog), "buttonBox");
    ui.buttonBox->setStandardButtons(QDialogButtonBox::Open | QDialogButtonBox::Cancel);
    grid->addWidget(ui.buttonBox, 2, 2, 2, 1);

    ui.fileTypeLabel = named(new QLabel(dialog), "fileTypeLabel");
    setPolicy(ui.fileTypeLabel, QSizePolicy::Preferred, QSizePolicy::Fixed);
    grid->addWidget(ui.fileTypeLabel, 3, 0, 1, 1);

    ui.fileTypeCombo = named(new QComboBox(dialog), "fileTypeCombo");
    setPolicy(ui.fileTypeCombo, QSizePolicy::Expanding, QSizePolicy::Fixed);
    grid->addWidget(ui.fileTypeCombo, 3, 1, 1, 1);

    ui.lookInLabel->setBuddy(ui.lookInCombo);
    ui.fileNameLabel->setBuddy(ui.fileNameEdit);
    ui.fileTypeLabel->setBuddy(ui.fileTypeCombo);
}

void setTabOrder(const DialogWidgets &ui)
{
    const QVector<QWidget *> order{ui.lookInCombo,      ui.backButton,      ui.forwardButton,
                                   ui.toParentButton,   ui.newFolderButton, ui.listModeButton,
                                   ui.detailModeButton, ui.sidebar,         ui.listView,
                                   ui.treeView,         ui.fileNameEdit,    ui.fileTypeCombo,
                                   ui.buttonBox};
    for (int i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order.at(i - 1), order.at(i));
}

void buildActions(DialogWidgets &ui, QWidget *dialog)
{
    ui.renameAction = named(new QAction(dialog), "qt_rename_action");
    ui.deleteAction = named(new QAction(dialog), "qt_delete_action");
    ui.showHiddenAction = named(new QAction(dialog), "qt_show_hidden_action");
    ui.showHiddenAction->setCheckable(true);
    ui.newFolderAction = named(new QAction(dialog), "qt_new_folder_action");

    ui.goHomeAction = new QAction(dialog);
    ui.goHomeAction->setShortcut(QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_H));
    dialog->addAction(ui.goHomeAction);

    ui.goToParentAction = named(new QAction(dialog), "qt_goto_parent_action");
    // By design: no keyboard has this key. Hosts find the action by its name and know its shortcut.
    constexpr int noKey = 1;
    ui.goToParentAction->setShortcut(QKeySequence(Qt::CTRL + noKey));
    dialog->addAction(ui.goToParentAction);
}

void label(QToolButton *button, const QString &name, const QString &description)
{
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setAccessibleDescription(description);
}

} // namespace

void DialogWidgets::build(RemoteFileDialogBase *dialog)
{
    dialog->setObjectName(QStringLiteral("RemoteFileDialogBase"));
    dialog->resize(521, 316);
    dialog->setSizeGripEnabled(true);
    auto *const grid = named(new QGridLayout(dialog), "gridLayout");
    buildTopRow(*this, dialog, grid);
    buildViews(*this, dialog, grid);
    buildBottomRows(*this, dialog, grid);
    setTabOrder(*this);
    buildActions(*this, dialog);
    setIcons();
}

void DialogWidgets::buildColumns()
{
    QHeaderView *const header = treeView->header();
    const QFontMetrics metrics(header->font());
    const QVector<QString> samples{QString(26, QLatin1Char('w')), QStringLiteral("128.88 GB"),
                                   QStringLiteral("mp3Folder"), QStringLiteral("10/29/81 02:02PM")};
    for (int column = 0; column < qMin(samples.size(), header->count()); ++column)
        header->resizeSection(column, metrics.horizontalAdvance(samples.at(column)));

    header->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (int column = 1; column < header->count(); ++column) {
        auto *const action = new QAction(header);
        action->setCheckable(true);
        action->setChecked(!header->isSectionHidden(column));
        header->addAction(action);
        columnActions.append(action);
    }
}

void DialogWidgets::setIcons() const
{
    const QPair<QToolButton *, QStyle::StandardPixmap> icons[] = {
        {backButton, QStyle::SP_ArrowBack},
        {forwardButton, QStyle::SP_ArrowForward},
        {toParentButton, QStyle::SP_FileDialogToParent},
        {newFolderButton, QStyle::SP_FileDialogNewFolder},
        {listModeButton, QStyle::SP_FileDialogListView},
        {detailModeButton, QStyle::SP_FileDialogDetailedView},
    };
    for (const auto &[button, icon] : icons)
        button->setIcon(button->style()->standardIcon(icon, nullptr, button));
}

void DialogWidgets::retranslate(const QAbstractItemModel *model) const
{
    label(backButton, RemoteFileDialogBase::tr("Back"), RemoteFileDialogBase::tr("Go back"));
    label(forwardButton, RemoteFileDialogBase::tr("Forward"),
          RemoteFileDialogBase::tr("Go forward"));
    label(toParentButton, RemoteFileDialogBase::tr("Parent Directory"),
          RemoteFileDialogBase::tr("Go to the parent directory"));
    label(newFolderButton, RemoteFileDialogBase::tr("Create New Folder"),
          RemoteFileDialogBase::tr("Create a New Folder"));
    label(listModeButton, RemoteFileDialogBase::tr("List View"),
          RemoteFileDialogBase::tr("Change to list view mode"));
    label(detailModeButton, RemoteFileDialogBase::tr("Detail View"),
          RemoteFileDialogBase::tr("Change to detail view mode"));
    sidebar->setAccessibleName(RemoteFileDialogBase::tr("Places"));
    listView->setAccessibleName(RemoteFileDialogBase::tr("Files"));
    treeView->setAccessibleName(RemoteFileDialogBase::tr("Files"));

    renameAction->setText(RemoteFileDialogBase::tr("&Rename"));
    deleteAction->setText(RemoteFileDialogBase::tr("&Delete"));
    showHiddenAction->setText(RemoteFileDialogBase::tr("Show &hidden files"));
    newFolderAction->setText(RemoteFileDialogBase::tr("&New Folder"));

    for (int i = 0; i < columnActions.size(); ++i) {
        const QString name = model->headerData(i + 1, Qt::Horizontal).toString();
        columnActions.at(i)->setText(RemoteFileDialogBase::tr("Show %1").arg(name));
    }
}
