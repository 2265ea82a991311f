#pragma once

#include <QString>

#include <functional>
#include <memory>

/// Serves the paths that begin with a prefix from a folder of this machine, through the toolkit's
/// file classes: with the folder /tmp/far, "remote:/a/b" is the file /tmp/far/a/b. It stands in for
/// a remote machine where there is none.
///
/// The prefix is served as long as the object lives. Make it before other threads use files, and
/// let whatever uses such paths be gone before it goes.
/// ".." does not lead out of the folder; a symbolic link on the disk may.
///
/// *Threads*: the paths may be used from any thread, and the hooks are called in that one.
class FolderEngine
{
public:
    /// What would go to the remote machine. A file information object asks for all that it knows of
    /// a file in one Stat.
    enum class Call { Stat, List, Open, Read, Write, Change };

    /// What tests put in the way. An empty function stands for no interference.
    struct Hooks {
        /// Called before each call, with the prefixed path; false lets it fail. May block, as a
        /// slow line does.
        std::function<bool(Call call, const QString &path)> admit;

        /// Names that a listing of the prefixed path gives besides those that are there, by numbers
        /// from 0; a null string ends them.
        std::function<QString(const QString &path, int number)> ghost;
    };

    explicit FolderEngine(const QString &folder, const QString &prefix = QStringLiteral("remote:"));
    FolderEngine(const QString &folder, const QString &prefix, const Hooks &hooks);
    ~FolderEngine();
    FolderEngine(const FolderEngine &) = delete;
    FolderEngine &operator=(const FolderEngine &) = delete;

private:
    class Handler;

    const std::unique_ptr<const Handler> m_handler;
};
