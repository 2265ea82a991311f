#pragma once

#include <workbench/filefetcher.h>

#include <QObject>
#include <QPointer>
#include <QString>

class QAction;
class QMenu;
class QProgressDialog;
class QWidget;
class RemoteConnection;
struct SshSettings;
struct SshTarget;

/// What the File menu offers for a remote machine: to connect to one, to
/// open a file from it and to run a command there.
class RemoteActions : public QObject
{
    Q_OBJECT

public:
    RemoteActions(QMenu *menu, QWidget *window);
    ~RemoteActions() override;

    void connectTo(const SshTarget &target, const SshSettings &settings);

    /// The name filter of the files that may be opened; empty when none may.
    void setFilter(const QString &filter);

    /// Runs a command line on the remote machine, in a window of its own. There must be a
    /// connection.
    QWidget *run(const QString &commandLine);

    /// Fetches a remote file, with a dialog that shows how far it is and can stop it.
    void fetch(const QString &fileName);

Q_SIGNALS:
    /// Emitted when a connection was made for the first time or to another machine, with the
    /// directory to begin in.
    void opened(const QString &directory);

    /// Emitted when a remote file that was chosen is on this machine.
    void fetched(const QString &localFileName);

    void failed(const QString &message);
    void statusChanged(const QString &text);

private:
    void askAddress();
    void askCommand();
    void chooseFile();
    void takeOpened(const QString &directory);
    void updateActions();

    QWidget *const m_window;
    QAction *m_openAction;
    QAction *m_runAction;
    QString m_filter;
    QString m_address; // what was typed last
    QString m_directory; // where the present machine begins
    RemoteConnection *m_remote = nullptr;
    FileFetcher m_fetcher;
    QPointer<QProgressDialog> m_progress;
};
