#include "SimulatedDispatcher.h"

#include "Clock.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QRasterWindow>
#include <QSocketNotifier>
#include <QTest>
#include <QTimer>

#include <thread>
#include <unistd.h>

using namespace workbench;

namespace {

constexpr qint64 ms = 1000000;

SteppedClock simulatedTime;

} // namespace

/// The event loop of this very program: see main().
class SimulatedDispatcherTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { beginNs = simulatedTime.now(); }

    void anHourPassesAtOnce();
    void timersFireAtTheirVeryTimes();
    void timerStartedBehindARequestIsDueFromThere();
    void timerOfNothingGoesAsOftenAsRequestsAllow();
    void timerOfNothingDoesNotMakeTimeStandStill();
    void smallestStepStopsAtTheNextTimer();
    void nestedLoopDeliversTheOthers();
    void timersSayWhatIsLeft();
    void nothingIsWaitedForUnlessAskedTo();
    void eventsOfOtherThreadsArrive();
    void socketsAreHeard();
    void notifierThatIsGoneIsNotCalled();
    void windowsGetWhatThePlatformHasForThem();

private:
    qint64 passedNs() const { return simulatedTime.now() - beginNs; }
    static void runFor(int milliseconds)
    {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec();
    }

    qint64 beginNs = 0;
};

void SimulatedDispatcherTest::anHourPassesAtOnce()
{
    constexpr int hourMs = 3600 * 1000;
    runFor(hourMs);
    QCOMPARE(passedNs(), hourMs * ms);
}

void SimulatedDispatcherTest::timersFireAtTheirVeryTimes()
{
    QVector<qint64> times;
    QTimer every7;
    QTimer every10;
    connect(&every7, &QTimer::timeout, [&] { times.append(passedNs() / ms); });
    connect(&every10, &QTimer::timeout, [&] { times.append(-passedNs() / ms); });
    every7.start(7);
    every10.start(10);
    runFor(30);
    QCOMPARE(times, (QVector<qint64>{7, -10, 14, -20, 21, 28, -30}));
    QCOMPARE(passedNs(), 30 * ms);
}

void SimulatedDispatcherTest::timerStartedBehindARequestIsDueFromThere()
{
    qint64 secondNs = 0;
    QTimer::singleShot(5, this, [&] {
        simulatedTime.wait(3 * ms);
        QTimer::singleShot(10, this, [&] { secondNs = passedNs(); });
        simulatedTime.wait(2 * ms);
    });
    runFor(40);
    QCOMPARE(secondNs, 18 * ms);
}

void SimulatedDispatcherTest::timerOfNothingGoesAsOftenAsRequestsAllow()
{
    int samples = 0;
    QVector<int> samplesByUpdate;
    QTimer sampling;
    QTimer updating;
    connect(&sampling, &QTimer::timeout, [&] {
        ++samples;
        simulatedTime.wait(ms / 2);
    });
    connect(&updating, &QTimer::timeout, [&] { samplesByUpdate.append(samples); });
    sampling.start(0);
    updating.start(50);
    runFor(151);
    // The sample that begins at the moment of an update has been due since the one before it.
    QCOMPARE(samplesByUpdate, (QVector<int>{101, 201, 301}));
}

void SimulatedDispatcherTest::timerOfNothingDoesNotMakeTimeStandStill()
{
    int count = 0;
    QTimer idle;
    connect(&idle, &QTimer::timeout, [&] { ++count; });
    idle.start(0);
    runFor(1);
    QCOMPARE(count, static_cast<int>(ms / SimulatedDispatcher::leastPassNs) + 1);
    // The last one went with the timer that ended the loop.
    QCOMPARE(passedNs(), ms + SimulatedDispatcher::leastPassNs);
}

void SimulatedDispatcherTest::smallestStepStopsAtTheNextTimer()
{
    qint64 firedNs = 0;
    QTimer idle;
    idle.start(0);
    QTimer::singleShot(5, this, [&] {
        // Off the grid of the smallest steps.
        simulatedTime.wait(7);
        QTimer::singleShot(1, this, [&] { firedNs = passedNs(); });
    });
    runFor(10);
    QCOMPARE(firedNs, 6 * ms + 7);
}

void SimulatedDispatcherTest::nestedLoopDeliversTheOthers()
{
    QVector<int> order;
    bool isNested = false;
    QTimer outer;
    QTimer inner;
    connect(&inner, &QTimer::timeout, [&] { order.append(2); });
    connect(&outer, &QTimer::timeout, [&] {
        order.append(1);
        if (!isNested) {
            isNested = true;
            runFor(25);
        }
    });
    outer.start(10);
    inner.start(10);
    runFor(51);
    // The outer one is not delivered while its handler runs, from 10 ms to 35 ms.
    QCOMPARE(order, (QVector<int>{1, 2, 2, 2, 1, 2, 1, 2, 1}).mid(0, order.size()));
    QCOMPARE(order.count(2), 5);
    QVERIFY(order.count(1) < 5);
}

void SimulatedDispatcherTest::timersSayWhatIsLeft()
{
    const int id = startTimer(100, Qt::PreciseTimer);
    auto *const loop = QAbstractEventDispatcher::instance();
    simulatedTime.advance(30 * ms);
    QCOMPARE(loop->remainingTime(id), 70);
    const auto timers = loop->registeredTimers(this);
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.constFirst().timerId, id);
    QCOMPARE(timers.constFirst().interval, 100);
    QCOMPARE(timers.constFirst().timerType, Qt::PreciseTimer);
    simulatedTime.advance(100 * ms);
    QCOMPARE(loop->remainingTime(id), 0);
    killTimer(id);
    QCOMPARE(loop->remainingTime(id), -1);
    QVERIFY(loop->registeredTimers(this).isEmpty());
}

void SimulatedDispatcherTest::nothingIsWaitedForUnlessAskedTo()
{
    QTimer timer;
    timer.start(10);
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
    QCOMPARE(passedNs(), qint64(0));
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCOMPARE(passedNs(), 10 * ms);
}

void SimulatedDispatcherTest::eventsOfOtherThreadsArrive()
{
    QEventLoop loop;
    std::thread other([&loop] {
        QMetaObject::invokeMethod(
            &loop, [&loop] { loop.exit(7); }, Qt::QueuedConnection);
    });
    QCOMPARE(loop.exec(), 7);
    other.join();
    QCOMPARE(passedNs(), qint64(0));
}

void SimulatedDispatcherTest::socketsAreHeard()
{
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    QEventLoop loop;
    QSocketNotifier notifier(ends[0], QSocketNotifier::Read);
    char byte = 0;
    connect(&notifier, &QSocketNotifier::activated, [&] {
        QCOMPARE(read(ends[0], &byte, 1), ssize_t(1));
        loop.quit();
    });
    std::thread other([&ends] { QCOMPARE(write(ends[1], "x", 1), ssize_t(1)); });
    loop.exec();
    other.join();
    QCOMPARE(byte, 'x');
    // While timers keep the loop busy, too.
    QTimer idle;
    idle.start(0);
    QCOMPARE(write(ends[1], "y", 1), ssize_t(1));
    loop.exec();
    QCOMPARE(byte, 'y');
    close(ends[0]);
    close(ends[1]);
}

void SimulatedDispatcherTest::notifierThatIsGoneIsNotCalled()
{
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    QSocketNotifier first(ends[0], QSocketNotifier::Read);
    auto second = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Exception);
    int calls = 0;
    connect(&first, &QSocketNotifier::activated, [&] {
        ++calls;
        second.reset();
        first.setEnabled(false);
    });
    QCOMPARE(write(ends[1], "x", 1), ssize_t(1));
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QCOMPARE(calls, 1);
    close(ends[0]);
    close(ends[1]);
}

void SimulatedDispatcherTest::windowsGetWhatThePlatformHasForThem()
{
    QRasterWindow window;
    window.resize(30, 20);
    window.show();
    QVERIFY(!window.isExposed());
    QCoreApplication::processEvents();
    QVERIFY(window.isExposed());
}

int main(int argc, char *argv[])
{
    auto *const eventLoop = new SimulatedDispatcher(simulatedTime);
    QCoreApplication::setEventDispatcher(eventLoop);
    QGuiApplication application(argc, argv);
    eventLoop->setParent(&application);
    SimulatedDispatcherTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_simulated_dispatcher.moc"
