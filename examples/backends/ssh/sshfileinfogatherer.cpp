#include <backends/ssh/sshfileinfogatherer.h>

#include <backends/ssh/sshfilesystem.h>

#include <QMutexLocker>
#include <QStringList>
#include <QVariant>

#include <utility>

SshFileInfoGatherer::SshFileInfoGatherer(std::shared_ptr<SshFileSystem> files, QObject *parent)
    : RemoteFileInfoGatherer(parent)
    , m_files(std::move(files))
{
    connect(&m_timer, &QTimer::timeout, this, &SshFileInfoGatherer::poll);
    m_timer.start(interval);
}

SshFileInfoGatherer::~SshFileInfoGatherer()
{
    stop();
}

void SshFileInfoGatherer::addPath(const QString &path)
{
    if (!path.startsWith(m_files->prefix())) {
        RemoteFileInfoGatherer::addPath(path);
        return;
    }
    // The directory is about to be listed, so whoever asked for that has just made this known.
    Watched watched;
    watched.client = m_files->client();
    watched.time = m_files->entry(m_files->remotePath(path)).target.modificationTime;
    const QMutexLocker locker(&m_mutex);
    m_watched.insert(path, watched);
}

void SshFileInfoGatherer::removePath(const QString &path)
{
    {
        const QMutexLocker locker(&m_mutex);
        m_watched.remove(path);
    }
    if (!path.startsWith(m_files->prefix()))
        RemoteFileInfoGatherer::removePath(path);
}

void SshFileInfoGatherer::clear()
{
    {
        const QMutexLocker locker(&m_mutex);
        m_watched.clear();
    }
    RemoteFileInfoGatherer::clear();
}

void SshFileInfoGatherer::poll()
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (!client || !isShown())
        return;
    QStringList changed;
    {
        const QMutexLocker locker(&m_mutex);
        for (auto watched = m_watched.begin(); watched != m_watched.end(); ++watched) {
            const SftpPendingPointer question = std::exchange(watched->question, nullptr);
            if (std::exchange(watched->client, client) != client) {
                changed.append(watched.key());
            } else if (question && !client->isAnswered(question)) {
                watched->question = question;
                continue;
            } else if (question) {
                const SftpAnswer answer = client->wait(question);
                const quint32 time = SftpReader(answer.fields).attributes().modificationTime;
                if (answer.ok() && std::exchange(watched->time, time) != time)
                    changed.append(watched.key());
            }
            watched->question
                = client->sendPath(SftpRequest::Attributes, m_files->remotePath(watched.key()));
        }
    }
    for (const QString &path : std::as_const(changed)) {
        m_files->forget(m_files->remotePath(path));
        list(path);
    }
}

/// Whether the widget that the model belongs to can be seen; a model without one counts as shown.
bool SshFileInfoGatherer::isShown() const
{
    const QObject *owner = this;
    while (owner && !owner->isWidgetType())
        owner = owner->parent();
    return !owner || owner->property("visible").toBool();
}

SshFileInfoGathererHandler::SshFileInfoGathererHandler(std::shared_ptr<SshFileSystem> files)
    : m_files(std::move(files))
{
}

RemoteFileInfoGatherer *SshFileInfoGathererHandler::createGatherer(QObject *model)
{
    return new SshFileInfoGatherer(m_files, model);
}
