#pragma once

#include <QFileDialog>
#include <QVector>

class QAbstractItemModel;
class QAction;
class QComboBox;
class QDialogButtonBox;
class QFrame;
class QGridLayout;
class QLabel;
class QSplitter;
class QStackedWidget;
class QToolButton;
class RemoteFileDialogBase;
class RemoteFileDialogBaseComboBox;
class RemoteFileDialogBaseLineEdit;
class RemoteFileDialogBaseListView;
class RemoteFileDialogBaseTreeView;
class RemoteSidebar;

/// The widgets and actions of a file dialog, which belong to the dialog as its children.
struct DialogWidgets {
    QLabel *lookInLabel = nullptr;
    RemoteFileDialogBaseComboBox *lookInCombo = nullptr;
    QToolButton *backButton = nullptr;
    QToolButton *forwardButton = nullptr;
    QToolButton *toParentButton = nullptr;
    QToolButton *newFolderButton = nullptr;
    QToolButton *listModeButton = nullptr;
    QToolButton *detailModeButton = nullptr;
    QSplitter *splitter = nullptr;
    RemoteSidebar *sidebar = nullptr;
    QStackedWidget *stackedWidget = nullptr;
    RemoteFileDialogBaseListView *listView = nullptr;
    RemoteFileDialogBaseTreeView *treeView = nullptr;
    QLabel *fileNameLabel = nullptr;
    RemoteFileDialogBaseLineEdit *fileNameEdit = nullptr;
    QDialogButtonBox *buttonBox = nullptr;
    QLabel *fileTypeLabel = nullptr;
    QComboBox *fileTypeCombo = nullptr;

    QAction *renameAction = nullptr;
    QAction *deleteAction = nullptr;
    QAction *showHiddenAction = nullptr;
    QAction *newFolderAction = nullptr;
    QAction *goHomeAction = nullptr;
    QAction *goToParentAction = nullptr;
    QVector<QAction *> columnActions; ///< one for each column but the first

    /// Makes everything but the actions of the columns, which need a model.
    void build(RemoteFileDialogBase *dialog);

    /// Makes the actions of the detail view's columns and gives these their first widths.
    void buildColumns();

    void setIcons() const;

    /// Sets all texts that do not depend on the dialog's modes.
    void retranslate(const QAbstractItemModel *model) const;
};
