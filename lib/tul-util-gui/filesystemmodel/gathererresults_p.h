#pragma once

#include <QBasicTimer>
#include <QFileInfo>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <deque>

class RemoteFileSystemModelPrivate;
class QElapsedTimer;
struct FileNode;

/// What a gatherer reports, put into the tree in the order in which it came. Much at once is taken
/// in slices of some milliseconds, with the event loop in between.
class GathererResults
{
public:
    using Updates = QList<QPair<QString, QFileInfo>>;

    explicit GathererResults(RemoteFileSystemModelPrivate &model)
        : m_model(model)
    {
    }

    void addList(const QString &directory, const QStringList &names);
    void addUpdates(const QString &directory, const Updates &updates);
    void addLoaded(const QString &directory);

    bool isEmpty() const { return m_results.empty(); }

    /// Goes on with what is left, if the timer is that of the slices.
    void timeOut(int timerId);

private:
    struct Result {
        enum Kind { List, Files, Loaded };

        Kind kind;
        QString directory;
        QStringList names; ///< of a List
        Updates updates; ///< of Files
        int next = 0; ///< the first of them that is not in the tree yet
    };

    /// What a slice does to the rows of a directory.
    struct Changes;

    void add(const Result &result);
    void workSlice();
    void applyList(const QString &directory, const QStringList &names);
    void applyLoaded(const QString &directory);
    void applyUpdates(Result &result, const QElapsedTimer &sliceTime);
    void applyFile(FileNode *parent, const QString &name, const QFileInfo &info, Changes &changes);
    void updateNode(FileNode *node, const QFileInfo &info, Changes &changes);
    bool announce(FileNode *parent, Changes &changes);

    RemoteFileSystemModelPrivate &m_model;
    std::deque<Result> m_results;
    QBasicTimer m_sliceTimer;
};
