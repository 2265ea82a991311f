#pragma once

#include <tul-util/tul_util_export.h>

#include <QObject>
#include <QRunnable>

#include <atomic>

/// Base of a job that is done later, from the event loop of the GUI thread, instead of inside the
/// caller's stack frame.
///
/// A subclass implements run(); whoever made the object calls enqueue() and returns. Runnables of
/// the same priority begin in the order in which they were enqueued. They do not wait for each
/// other: when run() itself starts an event loop, as a modal dialog does, the next ones begin in
/// that loop.
///
/// *Ownership*: after run() the object deletes itself with deleteLater() unless
/// setAutoDelete(false) was called. It may be deleted earlier, by its parent or by anyone: while it
/// waits, run() is then never called; while run() is on the stack, nothing touches the object after
/// run() has returned, and run() itself must notice. Never hand it to a thread pool, which would be
/// a second owner.
///
/// *Threads*: run() is called on the GUI thread, the thread of the application object. The object
/// lives there and is deleted there.
class TUL_UTIL_EXPORT QQueuedRunnable : public QObject, public QRunnable
{
    Q_OBJECT

public:
    explicit QQueuedRunnable(QObject *parent = nullptr);
    ~QQueuedRunnable() override;

    /// Schedules one later call of run(), from the event loop and never inside this call. Among
    /// what waits, a higher `priority` goes first; 0 is the priority of ordinary posted events.
    ///
    /// Does nothing while the object waits already, so that one call of run() answers them all.
    /// Called from run(), it schedules a further call for after the present one, which also puts
    /// off the deletion. An object that is about to delete itself must not be enqueued again.
    ///
    /// May be called from any thread in which the object cannot be deleted meanwhile. An object
    /// that lives in the calling thread and has no parent is moved to the GUI thread; one that
    /// cannot be moved is not scheduled, and the toolkit warns. Without an application object it
    /// is not scheduled either, with a warning.
    void enqueue(int priority);

protected:
    bool event(QEvent *event) override;

private:
    bool moveToGuiThread();
    void runNow();

    std::atomic<bool> m_waiting{false};
    std::atomic<int> m_priority{0}; // of the call that is waited for
    bool m_running = false;
};
