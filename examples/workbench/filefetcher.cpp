#include <workbench/filefetcher.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <utility>

namespace
{

constexpr qint64 chunk = 256LL * 1024;
constexpr int progressInterval = 100; // milliseconds

/// Copies until the end or until cancelled; returns a sentence for the user when it fails.
template<typename Progress>
QString copy(QFile *from, QFile *to, const std::atomic<bool> &cancelled, const Progress &progress)
{
    QElapsedTimer told;
    told.start();
    const qint64 all = from->size();
    for (qint64 done = 0; !cancelled;) {
        const QByteArray bytes = from->read(chunk);
        if (from->error() != QFileDevice::NoError)
            return from->errorString();
        if (bytes.isEmpty())
            break;
        if (to->write(bytes) != bytes.size())
            return to->errorString();
        done += bytes.size();
        if (told.hasExpired(progressInterval)) {
            progress(done, all);
            told.start();
        }
    }
    return to->flush() ? QString() : to->errorString();
}

} // namespace

FileFetcher::FileFetcher(QObject *parent)
    : QObject(parent)
{
}

FileFetcher::~FileFetcher()
{
    cancel();
    for (const std::unique_ptr<QThread> &thread : m_ending)
        thread->wait();
}

void FileFetcher::fetch(const QString &fileName)
{
    cancel();
    m_cancelled = std::make_shared<std::atomic<bool>>(false);
    const int job = ++m_job;
    // A directory of its own, so that the file keeps its name.
    const QString directory = m_directory.filePath(QString::number(job));
    const QString localName = directory + QLatin1Char('/') + QFileInfo(fileName).fileName();
    m_thread.reset(
        QThread::create([this, job, fileName, directory, localName, cancelled = m_cancelled] {
            QFile from(fileName);
            QFile to(localName);
            QString fault;
            if (!from.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
                fault = from.errorString();
            else if (!QDir().mkpath(directory) || !to.open(QIODevice::WriteOnly))
                fault = to.errorString();
            else
                fault = copy(&from, &to, *cancelled, [this, job](qint64 done, qint64 all) {
                    QMetaObject::invokeMethod(
                        this,
                        [this, job, done, all] {
                            if (job == m_job)
                                Q_EMIT progress(done, all);
                        },
                        Qt::QueuedConnection);
                });
            if (!fault.isEmpty())
                fault = tr("Cannot fetch %1: %2").arg(fileName, fault);
            QMetaObject::invokeMethod(
                this, [this, job, localName, fault] { take(job, localName, fault); },
                Qt::QueuedConnection);
        }));
    m_thread->start();
}

void FileFetcher::cancel()
{
    if (!m_thread)
        return;
    *m_cancelled = true;
    ++m_job;
    const auto hasEnded
        = [](const std::unique_ptr<QThread> &thread) { return thread->isFinished(); };
    m_ending.erase(std::remove_if(m_ending.begin(), m_ending.end(), hasEnded), m_ending.end());
    m_ending.push_back(std::move(m_thread));
}

void FileFetcher::take(int job, const QString &localFileName, const QString &fault)
{
    if (job != m_job)
        return;
    m_thread->wait();
    m_thread.reset();
    if (fault.isEmpty())
        Q_EMIT fetched(localFileName);
    else
        Q_EMIT failed(fault);
}
