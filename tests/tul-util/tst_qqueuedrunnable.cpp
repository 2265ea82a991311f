#include <support/testcase.h>
#include <tul-util/qqueuedrunnable.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <QTest>
#include <QThread>

#include <functional>
#include <memory>

namespace
{

class Job : public QQueuedRunnable
{
public:
    explicit Job(std::function<void()> work, QObject *parent = nullptr)
        : QQueuedRunnable(parent)
        , m_work(std::move(work))
    {
    }

    void run() override { m_work(); }

private:
    std::function<void()> m_work;
};

} // namespace

class TestQQueuedRunnable : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void runIsCalledOnceAndThenTheObjectDeletesItselfUnlessToldNotTo();
    void orderIsKeptWithinOnePriority();
    void objectDestroyedWhileWaitingIsNeverRun();
    void objectDestroyedDuringRunIsNotTouchedAfterwards();
    void enqueuedFromItsOwnRunItIsCalledAgainAfterwards();
    void enqueuedInAnotherThreadItRunsOnTheGuiThreadOrNotAtAll();
};

void TestQQueuedRunnable::runIsCalledOnceAndThenTheObjectDeletesItselfUnlessToldNotTo()
{
    for (const bool autoDelete : {true, false}) {
        QObject parent;
        int runs = 0;
        const QPointer<Job> job = new Job([&] { ++runs; }, &parent);
        job->setAutoDelete(autoDelete);
        job->enqueue(0);
        job->enqueue(0);
        QCOMPARE(runs, 0);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(runs, 1);
        QCOMPARE(job.isNull(), autoDelete);
    }
}

void TestQQueuedRunnable::orderIsKeptWithinOnePriority()
{
    QString order;
    const auto add = [&](char name, int priority) {
        (new Job([&order, name] { order += QLatin1Char(name); }))->enqueue(priority);
    };
    (new Job([&] {
        order += QLatin1Char('[');
        QEventLoop loop; // the next ones begin in here
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        loop.exec();
        order += QLatin1Char(']');
    }))->enqueue(0);
    add('a', 0);
    add('b', -1);
    add('c', 1);
    add('d', 0);
    QCoreApplication::processEvents();
    QCOMPARE(order, QStringLiteral("c[adb]"));
}

void TestQQueuedRunnable::objectDestroyedWhileWaitingIsNeverRun()
{
    int runs = 0;
    auto parent = std::make_unique<QObject>();
    (new Job([&] { runs += 1; }, parent.get()))->enqueue(0);
    auto *const second = new Job([&] { runs += 10; });
    (new Job([&] { delete second; }))->enqueue(0);
    second->enqueue(0);
    (new Job([&] { runs += 100; }))->enqueue(0);
    parent.reset();
    QCoreApplication::processEvents();
    QCOMPARE(runs, 100);
}

void TestQQueuedRunnable::objectDestroyedDuringRunIsNotTouchedAfterwards()
{
    auto parent = std::make_unique<QObject>();
    const auto destroyParent = [&parent] { parent.reset(); };
    const QPointer<Job> job = new Job(destroyParent, parent.get());
    job->enqueue(0);
    QCoreApplication::processEvents();
    QVERIFY(!job);
}

void TestQQueuedRunnable::enqueuedFromItsOwnRunItIsCalledAgainAfterwards()
{
    QString order;
    QPointer<Job> job;
    job = new Job([&] {
        order += QLatin1Char('[');
        if (order.size() < 5) {
            job->enqueue(0);
            QCoreApplication::processEvents(); // brings it too early
        }
        order += QLatin1Char(']');
    });
    job->enqueue(0);
    QTRY_VERIFY(!job);
    QCOMPARE(order, QStringLiteral("[][][]"));
}

void TestQQueuedRunnable::enqueuedInAnotherThreadItRunsOnTheGuiThreadOrNotAtAll()
{
    announceWarning(QStringLiteral("QObject::moveToThread: Cannot move objects with a parent"));
    QThread *runThread = nullptr;
    QPointer<Job> job;
    bool childRuns = false;
    const std::unique_ptr<QThread> worker(QThread::create([&] {
        job = new Job([&] { runThread = QThread::currentThread(); });
        job->enqueue(0);
        QObject parent;
        Job child([&] { childRuns = true; }, &parent);
        child.enqueue(0);
        QCoreApplication::sendPostedEvents(&child);
    }));
    worker->start();
    worker->wait();
    QTRY_VERIFY(!job);
    QCOMPARE(runThread, QCoreApplication::instance()->thread());
    QVERIFY(!childRuns);
}

QTEST_GUILESS_MAIN(TestQQueuedRunnable)

#include "tst_qqueuedrunnable.moc"
