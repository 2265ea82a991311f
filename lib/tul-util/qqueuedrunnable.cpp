#include <tul-util/qqueuedrunnable.h>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QThread>

namespace
{

QEvent::Type wakeUpType()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

} // namespace

QQueuedRunnable::QQueuedRunnable(QObject *parent)
    : QObject(parent)
{
}

QQueuedRunnable::~QQueuedRunnable() = default;

void QQueuedRunnable::enqueue(int priority)
{
    if (!moveToGuiThread() || m_waiting.exchange(true))
        return;
    m_priority = priority;
    // Posted to the object itself, so that it goes when the object goes.
    QCoreApplication::postEvent(this, new QEvent(wakeUpType()), priority);
}

bool QQueuedRunnable::moveToGuiThread()
{
    const QCoreApplication *const application = QCoreApplication::instance();
    if (!application) {
        qWarning("QQueuedRunnable::enqueue: there is no application object");
        return false;
    }
    if (thread() != application->thread())
        moveToThread(application->thread());
    return thread() == application->thread();
}

bool QQueuedRunnable::event(QEvent *event)
{
    if (event->type() != wakeUpType())
        return QObject::event(event);
    // A wake-up that comes in an event loop inside run() is made up for afterwards; one that was
    // made up for in the meantime finds nothing to do.
    if (m_waiting && !m_running)
        runNow();
    return true;
}

void QQueuedRunnable::runNow()
{
    const QPointer<QQueuedRunnable> self(this);
    m_waiting = false;
    m_running = true;
    run();
    if (!self)
        return;
    m_running = false;
    if (m_waiting)
        QCoreApplication::postEvent(this, new QEvent(wakeUpType()), m_priority);
    else if (autoDelete())
        deleteLater();
}
