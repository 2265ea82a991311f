#pragma once

#include <QReadLocker>
#include <QReadWriteLock>
#include <QString>
#include <QStringList>
#include <QWriteLocker>

class RemoteFileDialog;

namespace tul
{

/// The settings that all remote dialogs of the process share.
struct RemoteSettings {
    QString prefix = QStringLiteral("remote:");
    QString homeDirectory;
    QString defaultWorkingDirectory;
    void (*hook)(RemoteFileDialog *) = nullptr;

    /// Held for one copy at a time. The dialogs themselves read without it: hosts change the
    /// settings only while no dialog is open.
    QReadWriteLock lock;
};

/// Made when first asked for, so that static objects of a host find the prefix in place.
RemoteSettings &remoteSettings();

template<class T> T lockedCopy(T RemoteSettings::*setting)
{
    RemoteSettings &settings = remoteSettings();
    const QReadLocker locker(&settings.lock);
    return settings.*setting;
}

template<class T> void lockedAssign(T RemoteSettings::*setting, const T &value)
{
    RemoteSettings &settings = remoteSettings();
    const QWriteLocker locker(&settings.lock);
    settings.*setting = value;
}

/// Whether a path carries the prefix, in just these letters. Every path carries an empty one.
bool hasPrefix(const QString &path, const QString &prefix);

/// The path without its prefix, or as it is when it has none.
QString stripPrefix(const QString &path, const QString &prefix);

/// The path with the prefix, which is not put before an empty path or one that has it.
QString addPrefix(const QString &path, const QString &prefix);

/// What a caller gets for a path of a remote dialog: the path without the prefix. Warns when there
/// is none.
QString unmungedPath(const QString &path, const QString &prefix);

/// Whether a path belongs to this machine, of which `drives` are the roots: it has no colon, or
/// begins with one of them.
bool isLocalPath(const QString &path, const QStringList &drives);

/// The drives of this machine, as isLocalPath() wants them.
QStringList localDrives();

/// The home of the remote machine, as it was set, in place of a tilde that stands by itself or
/// before a slash. `expanded` may be null.
QString expandedRemoteTilde(const QString &path, const QString &home, bool *expanded);

/// The names that a user has typed, with the prefix before those that begin with a slash of either
/// kind, on any platform.
QStringList prefixedTypedFiles(const QStringList &files, const QString &prefix);

} // namespace tul
