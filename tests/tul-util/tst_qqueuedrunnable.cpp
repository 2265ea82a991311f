#include <support/testcase.h>
#include <tul-util/qqueuedrunnable.h>

#include <QCoreApplication>
#include <QPointer>
#include <QTest>
#include <QThread>

#include <functional>
#include <memory>

namespace
{

struct Job : QQueuedRunnable {
    explicit Job(std::function<void()> work, QObject *parent = nullptr)
        : QQueuedRunnable(parent)
        , m_work(std::move(work))
    {
    }
    void run() override { m_work(); }

    std::function<void()> m_work;
};

} // namespace

class TestQQueuedRunnable : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void runIsCalledOnceAndThenTheObjectDeletesItselfUnlessToldNotTo()
    {
        QObject parent;
        int runs = 0;
        const QPointer<Job> kept = new Job([&] { runs += 1; }, &parent);
        const QPointer<Job> gone = new Job([&] { runs += 10; }, &parent);
        kept->setAutoDelete(false);
        for (Job *const job : {kept.data(), gone.data(), kept.data(), gone.data()})
            job->enqueue(0);
        QCOMPARE(runs, 0);
        QTRY_VERIFY(!gone);
        QVERIFY(kept);
        QCOMPARE(runs, 11);
    }

    void orderIsKeptWithinOnePriority()
    {
        QString order;
        QPointer<Job> again = new Job([&] {
            order += QLatin1Char('[');
            if (order.size() == 1) {
                again->enqueue(0);
                QCoreApplication::processEvents(); // the others begin in here, and it too early
            }
            order += QLatin1Char(']');
        });
        again->enqueue(1);
        const int priorities[] = {0, -1, 1, 0};
        for (int i = 0; i < 4; ++i)
            (new Job([&order, i] { order += QString::number(i); }))->enqueue(priorities[i]);
        QTRY_VERIFY(!again);
        QCOMPARE(order, QStringLiteral("[2031][]"));
    }

    void objectDestroyedWhileWaitingOrRunningIsLeftAlone()
    {
        int runs = 0;
        auto parent = std::make_unique<QObject>();
        const QPointer<Job> first = new Job([&] { parent.reset(); }, parent.get());
        first->enqueue(0);
        (new Job([&] { runs += 10; }, parent.get()))->enqueue(0);
        (new Job([&] { runs += 100; }))->enqueue(0);
        QCoreApplication::processEvents();
        QVERIFY(!first);
        QCOMPARE(runs, 100);
    }

    void enqueuedInAnotherThreadItRunsOnTheGuiThreadOrNotAtAll()
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
};

QTEST_GUILESS_MAIN(TestQQueuedRunnable)
#include "tst_qqueuedrunnable.moc"
