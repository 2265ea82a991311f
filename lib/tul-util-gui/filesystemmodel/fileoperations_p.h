#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <Qt>

#include <functional>

namespace tul
{

/// The URL of a path of the model for other programs: it gives the same path back.
QUrl fileUrl(const QString &path);

/// The path of a dropped URL without slashes at its end; empty when it is not that of an entry of a
/// directory, but of a root, "." or "..", which stand for more than what was dragged. Otherwise
/// as it is: cleaned, "link/../x" may be another file.
QString urlPath(const QUrl &url);

/// Whether anything is at a path, also a link whose target is missing.
bool isTaken(const QString &path);

/// Renames a file in a directory. Looks first whether the new name is free: where a file engine
/// refuses, the toolkit would copy over the file of that name.
bool renameFile(const QString &directory, const QString &oldName, const QString &newName);

/// Removes an empty directory.
bool removeDirectory(const QString &path);

struct RemovedTree {
    bool anyRemoved = false;
    QStringList kept; ///< directories that could not be removed, `path` too if it is one
};

/// Removes a file, or a directory with what it holds. Links are removed, never followed. Calls
/// `aboutToRemove` with the path of each directory before it is tried.
RemovedTree removeTree(const QString &path,
                       const std::function<void(const QString &path)> &aboutToRemove);

/// Copies, moves or links a file to a path where nothing is yet.
bool dropFile(const QString &from, const QString &to, Qt::DropAction action);

} // namespace tul
