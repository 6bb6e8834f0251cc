#include "TimerQueue.h"

#include <QObject>
#include <QTest>

using workbench::TimerQueue;

namespace {

constexpr qint64 ms = 1000000;

} // namespace

class TimerQueueTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { queue = TimerQueue(); }

    void timersAreDueAnIntervalAfterTheirStart();
    void earlierOnesAreTakenFirst();
    void thoseDueTogetherGoInTheOrderOfTheirStarts();
    void eachIsTakenOnceInAPass();
    void oneStartedInAPassWaitsForTheNext();
    void theOneBeingDeliveredIsNotTakenByANestedPass();
    void nestedPassTakesTheOthersAwayFromTheOuterOne();
    void periodsAreKeptAndNothingMissedIsMadeUpFor();
    void stoppedTimersAreGone();
    void numberThatComesBackIsAnotherTimer();

private:
    void start(int id, int intervalMs, qint64 nowNs)
    {
        queue.start(id, intervalMs, Qt::CoarseTimer, this, nowNs);
    }
    int take(qint64 nowNs, quint64 pass)
    {
        const auto timer = queue.takeDue(nowNs, pass);
        return timer ? timer->id : 0;
    }
    /// The numbers taken in a pass of their own.
    QVector<int> takeAll(qint64 nowNs)
    {
        QVector<int> ids;
        const quint64 pass = queue.beginPass();
        while (const auto timer = queue.takeDue(nowNs, pass)) {
            ids.append(timer->id);
            queue.giveBack(timer->serial);
        }
        return ids;
    }

    TimerQueue queue;
};

void TimerQueueTest::timersAreDueAnIntervalAfterTheirStart()
{
    QVERIFY(!queue.nextDueNs());
    start(1, 50, 7);
    QCOMPARE(*queue.nextDueNs(), 50 * ms + 7);
    QVERIFY(!queue.nextDueNs(50 * ms + 8));
    QCOMPARE(takeAll(50 * ms + 6), QVector<int>());
    QCOMPARE(takeAll(50 * ms + 7), QVector<int>{1});
}

void TimerQueueTest::earlierOnesAreTakenFirst()
{
    start(1, 30, 0);
    start(2, 20, 0);
    start(3, 10, 15 * ms);
    QCOMPARE(takeAll(30 * ms), (QVector<int>{2, 3, 1}));
}

void TimerQueueTest::thoseDueTogetherGoInTheOrderOfTheirStarts()
{
    start(2, 10, 0);
    start(1, 10, 0);
    start(3, 5, 5 * ms);
    QCOMPARE(takeAll(10 * ms), (QVector<int>{2, 1, 3}));
    // 3 was started again at 10 ms, before the others will be.
    QCOMPARE(takeAll(20 * ms), (QVector<int>{3, 2, 1}));
}

void TimerQueueTest::eachIsTakenOnceInAPass()
{
    start(1, 0, 0);
    start(2, 0, 0);
    QCOMPARE(takeAll(0), (QVector<int>{1, 2}));
    QCOMPARE(takeAll(0), (QVector<int>{1, 2}));
}

void TimerQueueTest::oneStartedInAPassWaitsForTheNext()
{
    start(1, 0, 0);
    const quint64 pass = queue.beginPass();
    QCOMPARE(take(0, pass), 1);
    start(2, 0, 0);
    QCOMPARE(take(0, pass), 0);
    QCOMPARE(take(0, queue.beginPass()), 2);
}

void TimerQueueTest::theOneBeingDeliveredIsNotTakenByANestedPass()
{
    start(1, 0, 0);
    const auto timer = queue.takeDue(0, queue.beginPass());
    QVERIFY(timer);
    QCOMPARE(take(0, queue.beginPass()), 0);
    QVERIFY(!queue.nextDueNs());
    queue.giveBack(timer->serial);
    QCOMPARE(*queue.nextDueNs(), qint64(0));
    QCOMPARE(take(0, queue.beginPass()), 1);
}

void TimerQueueTest::nestedPassTakesTheOthersAwayFromTheOuterOne()
{
    start(1, 0, 0);
    start(2, 0, 0);
    const quint64 outer = queue.beginPass();
    QCOMPARE(take(0, outer), 1);
    QCOMPARE(takeAll(0), QVector<int>{2});
    QCOMPARE(take(0, outer), 0);
}

void TimerQueueTest::periodsAreKeptAndNothingMissedIsMadeUpFor()
{
    start(1, 10, 0);
    QCOMPARE(takeAll(13 * ms), QVector<int>{1});
    QCOMPARE(*queue.nextDueNs(), 20 * ms);
    QCOMPARE(takeAll(45 * ms), QVector<int>{1});
    QCOMPARE(*queue.nextDueNs(), 55 * ms);
}

void TimerQueueTest::stoppedTimersAreGone()
{
    start(1, 10, 0);
    start(2, 20, 0);
    start(3, 30, 0);
    QCOMPARE(queue.timersOf(this).size(), std::size_t(3));
    QVERIFY(queue.stop(1));
    QVERIFY(!queue.stop(1));
    QVERIFY(!queue.find(1));
    QCOMPARE(queue.find(2)->intervalMs, 20);
    QCOMPARE(*queue.nextDueNs(), 20 * ms);
    QVERIFY(queue.stopAll(this));
    QVERIFY(!queue.stopAll(this));
    QVERIFY(!queue.nextDueNs());
}

void TimerQueueTest::numberThatComesBackIsAnotherTimer()
{
    start(1, 10, 0);
    const auto first = queue.takeDue(10 * ms, queue.beginPass());
    QVERIFY(first);
    queue.stop(1);
    start(1, 10, 10 * ms);
    const auto second = queue.takeDue(20 * ms, queue.beginPass());
    QVERIFY(second);
    queue.giveBack(first->serial);
    QVERIFY(!queue.nextDueNs());
    queue.giveBack(second->serial);
    QVERIFY(queue.nextDueNs());
}

QTEST_GUILESS_MAIN(TimerQueueTest)
#include "tst_timer_queue.moc"
