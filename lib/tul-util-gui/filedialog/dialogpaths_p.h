#pragma once

#include <tul-util-gui/filesystemmodel/filesystempaths_p.h>

#include <QString>
#include <QStringList>

// Pure functions on the paths of a file dialog, which may be local or carry the prefix of a remote
// machine: "/usr/lib", "C:/Users" or "remote:/home". What QDir does with such paths ends at their
// first element, which these functions take for the root that it is. What comes from the model goes
// through requestPath() before the dialog tells it to others.
namespace tul
{

/// The directory above, by the elements alone; empty above the first one.
QString parentPath(const QString &path);

/// A path as the dialog shows it.
inline QString cleanDialogPath(const QString &path)
{
    return cleanPath(path);
}

/// The last element, whether or not "/" follows it; empty for an empty path.
QString lastElement(const QString &path);

/// The path of an entry of a directory; the name alone when the directory is empty.
QString joinSlash(const QString &directory, const QString &name);

/// Whether an absolute path is one of the local file system, by its looks.
bool isOnThisMachine(const QString &path);

/// Whether the last element of a path of this machine has more bytes than its directory takes. Not
/// where the limit is unknown, as it is for another machine.
bool isNameTooLong(const QString &path);

/// The home of a user of this machine; empty where there is no such user, or no way to know.
QString homeOfUser(const QString &user);

/// The names in the line edit: those in quotes when there are any, else the whole text as one name.
/// The last quote may be missing, and what stands outside of quotes is no name.
QStringList splitFileNames(const QString &text);

/// The text of the line edit for some names: one as it is, several in quotes.
QString joinFileNames(const QStringList &names);

} // namespace tul
