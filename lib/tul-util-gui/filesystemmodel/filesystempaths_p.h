#pragma once

#include <QString>
#include <QStringList>

namespace tul
{

/// How the file system of this machine compares names. It holds for served files too: asking their
/// engine would cost a call for each name.
constexpr Qt::CaseSensitivity nativeCaseSensitivity()
{
#if defined(Q_OS_WIN) || defined(Q_OS_DARWIN)
    return Qt::CaseInsensitive;
#else
    return Qt::CaseSensitive;
#endif
}

/// The elements of an absolute path, of which "/" is the first when the path begins with it. The
/// prefix of a served path is an element like others.
QStringList splitPath(const QString &absolutePath);

/// The inverse, by "/": what lies below the element "/" begins with two slashes.
QString joinElements(const QStringList &elements);

/// The path without ".", ".." and empty elements, as QDir::cleanPath() gives it, except that ".."
/// never leads out of "/" or of the first element of another absolute path. The root of a remote
/// machine is the bare prefix.
///
/// For showing and finding, not for changing files: what a link has in its place before ".." lies
/// elsewhere on the disk.
QString cleanPath(const QString &path);

/// Whether a name stands for the directory itself or the one above, and not for an entry.
bool isDots(const QString &name);

/// A path of the model as the disk knows it, with one slash in front; two are kept on Windows,
/// where they begin the name of a machine.
QString requestPath(const QString &path);

} // namespace tul
