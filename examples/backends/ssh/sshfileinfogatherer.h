#pragma once

#include <backends/ssh/sftpclient.h>

#include <tul-util-gui/filesystemmodel/remotefileinfogatherer.h>
#include <tul-util-gui/filesystemmodel/remotefileinfogathererhandler.h>

#include <QHash>
#include <QMutex>
#include <QString>
#include <QTimer>

#include <memory>

class SshFileSystem;

/// A gatherer that notices changes of remote directories too: no watcher of the toolkit sees them.
///
/// Every `interval` milliseconds it asks when the watched remote directories changed last, all in
/// one round trip that nobody waits for, and lists those anew that did. It rests while the window
/// that the model belongs to is hidden. After a reconnection it lists all of them anew.
///
/// *Threads*: as the base class; the questions are asked from the owner's thread.
///
/// *By design*: the time of a directory changes when a name comes or goes, not when a file in it is
/// written. It counts in seconds, so that a change in the same second as the listing is missed.
class SshFileInfoGatherer : public RemoteFileInfoGatherer
{
    Q_OBJECT

public:
    static constexpr int interval = 3000;

    explicit SshFileInfoGatherer(std::shared_ptr<SshFileSystem> files, QObject *parent = nullptr);
    ~SshFileInfoGatherer() override;

    void addPath(const QString &path) override;
    void removePath(const QString &path) override;
    void clear() override;

    /// Looks at the answers that have come since it last looked, and asks again, as the timer does.
    void poll();

private:
    struct Watched {
        std::shared_ptr<SftpClient> client; ///< the connection over which it was listed
        quint32 time = 0; ///< of the last change when it was listed
        SftpPendingPointer question;
    };

    bool isShown() const;

    const std::shared_ptr<SshFileSystem> m_files;
    QTimer m_timer;
    QMutex m_mutex; // guards the following
    QHash<QString, Watched> m_watched;
};

/// Makes such gatherers for all models of the process.
class SshFileInfoGathererHandler : public RemoteFileInfoGathererHandler
{
public:
    explicit SshFileInfoGathererHandler(std::shared_ptr<SshFileSystem> files);

    RemoteFileInfoGatherer *createGatherer(QObject *model) override;

private:
    const std::shared_ptr<SshFileSystem> m_files;
};
