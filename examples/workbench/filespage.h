#pragma once

#include <workbench/page.h>

#include <QModelIndex>

class QAction;
class QLineEdit;
class QToolBar;
class QTreeView;
class RemoteFileSystemModel;
class RemoteSidebar;

/// The files of this machine and of the remote one, through the same model: the places side bar
/// beside a view in which files can be renamed, made, removed, dragged and dropped.
class FilesPage : public WorkbenchPage
{
    Q_OBJECT

public:
    explicit FilesPage(QWidget *parent = nullptr);

    QString title() const override;
    QString advice() const override;
    QStringList shots() const override;
    void prepareShot(const QString &shot) override;
    void setRemoteDirectory(const QString &directory) override;

    /// Shows a directory, or the drives for an empty path. What does not exist is told by failed().
    void goTo(const QString &path);

    /// Makes a directory in the shown one, and lets its name be edited.
    void makeFolder();

    /// Removes the selected files without asking.
    void removeSelected();

private:
    QToolBar *createToolBar();
    QAction *addAction(QToolBar *bar, const QString &text, const QKeySequence &key,
                       void (FilesPage::*slot)());
    void createView();
    void goToParent();
    void renameCurrent();
    void askAndRemove();
    void refresh();
    void setTree(bool tree);
    void activate(const QModelIndex &index);
    void showRoot(const QString &path);
    void showCount();
    QModelIndexList selectedRows() const;

    RemoteFileSystemModel *m_model;
    RemoteSidebar *m_sidebar;
    QTreeView *m_view;
    QLineEdit *m_path;
    QAction *m_localAction = nullptr;
    QAction *m_remoteAction = nullptr;
    QAction *m_treeAction = nullptr;
};
