#include <tul-util-gui/filedialog/remotesettings_p.h>

#include <QDir>

#include <algorithm>

namespace tul
{

RemoteSettings &remoteSettings()
{
    static RemoteSettings settings;
    return settings;
}

bool hasPrefix(const QString &path, const QString &prefix)
{
    // A null path does not begin with an empty text, says the toolkit.
    return prefix.isEmpty() || path.startsWith(prefix);
}

QString stripPrefix(const QString &path, const QString &prefix)
{
    return hasPrefix(path, prefix) ? path.mid(prefix.size()) : path;
}

QString addPrefix(const QString &path, const QString &prefix)
{
    // By design: no separator between them, so that a relative path stays one on the other side.
    return path.isEmpty() || hasPrefix(path, prefix) ? path : prefix + path;
}

QString unmungedPath(const QString &path, const QString &prefix)
{
    if (!path.isEmpty() && !hasPrefix(path, prefix))
        qWarning("Path is not remote: %s", path.toLocal8Bit().constData());
    return stripPrefix(path, prefix);
}

bool isLocalPath(const QString &path, const QStringList &drives)
{
    return !path.contains(QLatin1Char(':'))
        || std::any_of(drives.cbegin(), drives.cend(),
                       [&](const QString &drive) { return path.startsWith(drive); });
}

QStringList localDrives()
{
    QStringList paths;
    const QFileInfoList drives = QDir::drives();
    for (const QFileInfo &drive : drives)
        paths.append(drive.path());
    return paths;
}

QString expandedRemoteTilde(const QString &path, const QString &home, bool *expanded)
{
    const bool own = path == QLatin1String("~") || path.startsWith(QLatin1String("~/"));
    if (expanded)
        *expanded = own;
    // By design: the home of another user is not known here, and stays as it was typed.
    return own ? home + path.mid(1) : path;
}

QStringList prefixedTypedFiles(const QStringList &files, const QString &prefix)
{
    QStringList result;
    for (const QString &file : files) {
        const bool fromRoot
            = file.startsWith(QLatin1Char('/')) || file.startsWith(QLatin1Char('\\'));
        result.append(fromRoot ? prefix + file : file);
    }
    return result;
}

} // namespace tul
