#pragma once

#include <backends/ssh/sshconnection.h>
#include <backends/ssh/sshfileengine.h>
#include <backends/ssh/sshfileinfogatherer.h>
#include <backends/ssh/sshprompt.h>

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class QMessageBox;
class QWidget;

/// The remote machine of the workbench: connects to it, asks the person what has to be asked, tells
/// once when the connection breaks and offers to make it anew. While it lives the files of the
/// machine are those that begin with "remote:".
///
/// *By design*: nothing is closed when the connection breaks. Whatever was typed into a dialog is
/// still there after the reconnection.
class RemoteConnection : public QObject, private SshPrompt
{
    Q_OBJECT

public:
    /// Messages belong to `window`, or to the dialog that is open at that time.
    explicit RemoteConnection(QWidget *window);
    ~RemoteConnection() override;

    /// Connects in the background, and gives up an earlier connection.
    void connectTo(const SshTarget &target, const SshSettings &settings = SshSettings());

    /// Null before the first connectTo().
    SshConnection *connection() const { return m_connection.get(); }

Q_SIGNALS:
    /// Emitted each time a connection was made, with the directory to begin in, prefix and all.
    void opened(const QString &directory);

    /// Emitted when the window's status line is to say something else.
    void statusChanged(const QString &text);

private:
    Answer askHostKey(const HostKey &key) override;
    bool askSecret(const QString &question, bool echo, QByteArray *secret) override;
    void takeOpened();
    void offerAnew(const QString &title, const QString &message, const QString &button);
    QWidget *messageParent() const;

    const QPointer<QWidget> m_window;
    const std::shared_ptr<SshFileSystem> m_files;
    const SshFileEngineHandler m_engines;
    SshFileInfoGathererHandler m_gatherers;
    QPointer<QMessageBox> m_offer;
    std::unique_ptr<SshConnection> m_connection; // the last one, as it asks and reports
};
