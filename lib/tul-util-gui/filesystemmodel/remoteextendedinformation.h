#pragma once

#include <QDateTime>
#include <QFileInfo>
#include <QIcon>
#include <QString>

/// What is known of one file: the toolkit's file information and how the file is shown.
///
/// RemoteFileInfoGatherer::getInfo() makes it; RemoteFileSystemModel keeps one for each file that
/// it has seen. A plain value, cheap to copy: the copies share text, icon and information.
///
/// *Threads*: file information keeps its answers in a cache that copies share without a lock. Hand
/// a record to another thread, but use it in one at a time.
struct RemoteExtendedInformation {
    /// System is what is neither a directory nor a file: a device, a pipe, a link whose target is
    /// missing, a path where nothing is.
    enum Type { Dir, File, System };

    RemoteExtendedInformation() = default;
    explicit RemoteExtendedInformation(const QFileInfo &info)
        : mFileInfo(info)
    {
    }

    Type type() const
    {
        if (mFileInfo.isDir())
            return Dir;
        return mFileInfo.isFile() ? File : System;
    }

    /// In bytes; 0 for a directory.
    qint64 size() const { return type() == Dir ? 0 : mFileInfo.size(); }
    QDateTime lastModified() const { return mFileInfo.lastModified(); }
    QFileDevice::Permissions permissions() const { return mFileInfo.permissions(); }
    bool isSymLink() const { return mFileInfo.isSymLink(); }
    QFileInfo fileInfo() const { return mFileInfo; }

    QString displayType; ///< the text of the column "Type", from the icon provider
    QIcon icon; ///< from the icon provider
    QFileInfo mFileInfo; ///< as gathered
};
