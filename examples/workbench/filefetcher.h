#pragma once

#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <memory>
#include <vector>

class QThread;

/// Fetches a file that can only be reached through the toolkit's classes, such as a remote one,
/// into a temporary file for those who need a real one. The temporary files go with the object.
class FileFetcher : public QObject
{
    Q_OBJECT

public:
    explicit FileFetcher(QObject *parent = nullptr);
    ~FileFetcher() override;

    /// Begins to fetch in the background; gives up what is being fetched.
    void fetch(const QString &fileName);

    /// Stops without a further signal. Does not wait: a read that is under way may take its time.
    void cancel();

    bool isFetching() const { return m_thread != nullptr; }

Q_SIGNALS:
    /// Emitted now and then, with the bytes that are there and those there will be.
    void progress(qint64 done, qint64 all);

    /// Emitted when the whole file is there.
    void fetched(const QString &localFileName);

    /// Emitted when the file cannot be fetched, with a sentence for the user.
    void failed(const QString &message);

private:
    void take(int job, const QString &localFileName, const QString &fault);

    const QTemporaryDir m_directory;
    int m_job = 0; // tells the present one from those given up
    std::shared_ptr<std::atomic<bool>> m_cancelled;
    std::unique_ptr<QThread> m_thread;
    std::vector<std::unique_ptr<QThread>> m_ending; // told to stop
};
