#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QList>
#include <QListView>
#include <QUrl>

class RemoteFileSystemModel;
class RemoteUrlModel;

/// The places beside a view of files: "My Computer", directories that the user has put there, here
/// or on a remote machine.
///
/// Give it the file system model of the view, and go where goToUrl() says. Directories can be
/// dropped upon it, places be put in another order by dragging, and removed by the Delete key or
/// the context menu; "My Computer" stays. Places that do not exist are greyed.
///
/// *Ownership*: the side bar owns its places; the file system model remains the caller's.
///
/// *Errors*: a place that does not exist leads to goToUrl() like any other: whoever goes there
/// finds out.
///
/// *By design*: Delete removes when the key is released.
class TUL_UTIL_GUI_EXPORT RemoteSidebar : public QListView
{
    Q_OBJECT

public:
    explicit RemoteSidebar(QWidget *parent = nullptr);

    /// The model that knows the directories. The first one brings two places with it, the drives
    /// and the home of the local user; a later one finds the places that are there.
    void setFileSystemModel(RemoteFileSystemModel *model);

    /// The places as a model; null before a file system model was set.
    RemoteUrlModel *urlModel() const { return m_urlModel; }

    /// The places; there are none before a file system model was set.
    QList<QUrl> urls() const;
    void setUrls(const QList<QUrl> &urls);

    /// Adds places as RemoteUrlModel::addUrls() does.
    void addUrls(const QList<QUrl> &urls, int row = -1);

    /// Selects the place of this URL, whatever slashes its path is written with, or none, without
    /// going there. The empty URL stands for "My Computer".
    void selectUrl(const QUrl &url);

    QSize sizeHint() const override;

Q_SIGNALS:
    /// Emitted when a place is clicked, becomes the current one by the keyboard or by a call, or is
    /// the current one when Enter is pressed. An empty path stands for the level of the drives.
    void goToUrl(const QUrl &url);

protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private Q_SLOTS:
    void clicked(const QModelIndex &index); // clazy:exclude=overridden-signal
    void showContextMenu(const QPoint &position);
    void removeEntry();

private:
    RemoteUrlModel *m_urlModel = nullptr;
    bool m_quiet = false; // while the current place changes without anybody going there
};
