#pragma once

#include <backends/folder/folderengine.h>

#include <QMutex>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

#include <atomic>

/// A temporary folder that is served as "remote:", with whatever can go wrong on the way to a
/// remote machine. Any thread may be using the paths while a test changes the faults.
class FaultyFolder
{
public:
    FaultyFolder();

    /// Each call takes so long.
    std::atomic<int> delayMilliseconds{0};
    /// Every call fails.
    std::atomic<bool> broken{false};
    /// Listings have no end.
    std::atomic<bool> endless{false};

    /// Names that are listed in every directory, although no such files are there.
    void setGhosts(const QStringList &names);

    /// Where the folder is on this machine.
    QString local(const QString &path = {}) const { return m_folder.filePath(path); }
    /// Makes a file, or a directory when the name ends with "/", with all that is above it.
    bool make(const QString &path, const QByteArray &content = {}) const;

    /// The calls so far, of one kind or of all; those that this thread has made, or all.
    int calls(bool inThisThreadOnly = false) const;
    int calls(FolderEngine::Call call, bool inThisThreadOnly = false) const;
    void forgetCalls();

private:
    struct Made {
        FolderEngine::Call call;
        Qt::HANDLE thread;
    };

    bool admit(FolderEngine::Call call);
    QString ghost(int number) const;

    const QTemporaryDir m_folder;
    mutable QMutex m_mutex; // guards m_ghosts and m_calls
    QStringList m_ghosts;
    QVector<Made> m_calls;
    const FolderEngine m_engine; // the last one, as it uses the others
};
