#pragma once

#include <backends/folder/folderengine.h>

#include <QString>
#include <QTemporaryDir>

#include <memory>

/// What the workbench takes for the remote machine: a folder of this one, served as "remote:".
/// Lives as long as the program.
class RemoteFolder
{
public:
    /// An empty folder stands for a temporary one with some files to look at.
    explicit RemoteFolder(const QString &folder);

    /// What is wrong with the folder, for the user; empty when nothing is.
    const QString &fault() const { return m_fault; }

private:
    const std::unique_ptr<QTemporaryDir> m_temporary; // null for a folder that was given
    QString m_fault;
    std::unique_ptr<FolderEngine> m_engine;
};

/// Fills a folder with directories, sources, data, a hidden file and a link. Answers whether all of
/// it could be made.
bool makeSampleTree(const QString &folder);
