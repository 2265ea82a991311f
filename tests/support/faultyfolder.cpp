#include <support/faultyfolder.h>

#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <algorithm>

FaultyFolder::FaultyFolder()
    : m_engine(m_folder.path(), QStringLiteral("remote:"),
               {[this](FolderEngine::Call call, const QString & /*path*/) { return admit(call); },
                [this](const QString & /*path*/, int number) { return ghost(number); }})
{
}

void FaultyFolder::setGhosts(const QStringList &names)
{
    const QMutexLocker lock(&m_mutex);
    m_ghosts = names;
}

bool FaultyFolder::make(const QString &path, const QByteArray &content) const
{
    const QDir folder(m_folder.path());
    if (path.endsWith(QLatin1Char('/')))
        return folder.mkpath(path);
    QFile file(folder.filePath(path));
    return folder.mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size();
}

int FaultyFolder::calls(bool inThisThreadOnly) const
{
    const QMutexLocker lock(&m_mutex);
    const Qt::HANDLE thread = QThread::currentThreadId();
    return static_cast<int>(std::count_if(m_calls.cbegin(), m_calls.cend(), [&](const Made &made) {
        return !inThisThreadOnly || made.thread == thread;
    }));
}

int FaultyFolder::calls(FolderEngine::Call call, bool inThisThreadOnly) const
{
    const QMutexLocker lock(&m_mutex);
    const Qt::HANDLE thread = QThread::currentThreadId();
    return static_cast<int>(std::count_if(m_calls.cbegin(), m_calls.cend(), [&](const Made &made) {
        return made.call == call && (!inThisThreadOnly || made.thread == thread);
    }));
}

void FaultyFolder::forgetCalls()
{
    const QMutexLocker lock(&m_mutex);
    m_calls.clear();
}

bool FaultyFolder::admit(FolderEngine::Call call)
{
    if (const int delay = delayMilliseconds)
        QThread::msleep(static_cast<unsigned long>(delay));
    const QMutexLocker lock(&m_mutex);
    m_calls.append({call, QThread::currentThreadId()});
    return !broken;
}

QString FaultyFolder::ghost(int number) const
{
    const QMutexLocker lock(&m_mutex);
    if (number < m_ghosts.size())
        return m_ghosts.at(number);
    return endless ? QStringLiteral("ghost %1").arg(number) : QString();
}
