#pragma once

#include <QCoreApplication>
#include <QString>

/// Where to connect to: the parts of a text such as "ssh://user@host:port/dir".
struct SshTarget {
    Q_DECLARE_TR_FUNCTIONS(SshTarget)

public:
    QString host;
    QString user; ///< empty: what the SSH configuration says, or the local user
    int port = 0; ///< 0: what the SSH configuration says, or 22
    QString directory; ///< absolute, as a text of remoteNameFromBytes(); empty: the home directory

    /// Takes a text apart. "%41" in user and directory stands for "A"; an IPv6 address stands in
    /// brackets. Returns a sentence for the user when that fails, and leaves `target` alone; empty
    /// when all went well. A password is refused: other users of this machine could read it in the
    /// list of processes.
    static QString parse(const QString &text, SshTarget *target);

    /// "user@host:port", with what is known of it.
    QString displayName() const;
};
