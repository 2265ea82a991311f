#include "fileoperations_p.h"

#include "filesystempaths_p.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace
{

bool isRealDirectory(const QString &path)
{
    const QFileInfo info(path);
    return info.isDir() && !info.isSymLink();
}

} // namespace

namespace tul
{

QUrl fileUrl(const QString &path)
{
    // By design: two slashes stay where they do no harm; below "/" itself a URL would take the next
    // element for the name of a machine.
    const QUrl url = QUrl::fromLocalFile(path);
    if (!url.path().isEmpty() && url.toLocalFile() == path)
        return url;
    return QUrl::fromLocalFile(requestPath(path));
}

QString urlPath(const QUrl &url)
{
    QString path = url.toLocalFile();
    while (path.endsWith(QLatin1Char('/')))
        path.chop(1);
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 || isDots(path.mid(slash + 1)) ? QString() : path;
}

bool isTaken(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

bool renameFile(const QString &directory, const QString &oldName, const QString &newName)
{
    if (isDots(oldName))
        return false; // an engine may take the directory itself for it
    const QDir dir(directory);
    const bool changesCase = nativeCaseSensitivity() == Qt::CaseInsensitive
        && oldName.compare(newName, Qt::CaseInsensitive) == 0;
    if (!changesCase && isTaken(dir.filePath(newName)))
        return false;
    return QDir(directory).rename(oldName, newName);
}

bool removeDirectory(const QString &path)
{
    // Through the directory that has it: a QDir without a path knows the files of this machine
    // only.
    const QFileInfo info(path);
    return QDir(info.path()).rmdir(info.fileName());
}

RemovedTree removeTree(const QString &path,
                       const std::function<void(const QString &path)> &aboutToRemove)
{
    QStringList entries{path};
    if (isRealDirectory(path)) {
        // By design: without hidden entries, whose directories stay then.
        QDirIterator below(path, QDir::AllDirs | QDir::Files | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (below.hasNext())
            entries.append(below.next());
    }
    RemovedTree result;
    for (int i = entries.size() - 1; i >= 0; --i) { // what lies deeper goes first
        const QString &entry = entries.at(i);
        if (!isRealDirectory(entry)) {
            if (QFile::remove(entry))
                result.anyRemoved = true;
            continue;
        }
        aboutToRemove(entry);
        if (removeDirectory(entry))
            result.anyRemoved = true;
        else
            result.kept.append(entry);
    }
    return result;
}

bool dropFile(const QString &from, const QString &to, Qt::DropAction action)
{
    if (from.isEmpty() || isTaken(to))
        return false;
    switch (action) {
    case Qt::CopyAction:
        return QFile::copy(from, to);
    case Qt::MoveAction:
        return QFile::rename(from, to);
    case Qt::LinkAction:
        return QFile::link(from, to);
    default:
        return false;
    }
}

} // namespace tul
