#pragma once

#include "TimerQueue.h"

#include <QAbstractEventDispatcher>

#include <atomic>
#include <vector>

namespace workbench {

class SteppedClock;

/// The event loop of the GUI thread on simulated time. All timers are due on the clock, which
/// handlers of events move on by what they ask of the module; with nothing left to be done the loop
/// moves it on to the next timer instead of waiting, so a program that only waits for timers never
/// waits at all. The order of events follows from the clock alone.
///
/// Sockets and other threads have no simulated time: what comes from them is delivered in the pass
/// in which it is found. Installed before the application object is made, which then works without
/// a window system's own event loop, so only on a platform that has none.
class SimulatedDispatcher : public QAbstractEventDispatcher
{
    Q_OBJECT

public:
    /// A round takes this long, or up to the next timer, when a timer is due again that has been
    /// delivered in it and time has not moved: else one of 0 ms whose handler asks the module
    /// nothing would make time stand still.
    static constexpr qint64 leastPassNs = 20000;

    /// The clock is not owned.
    explicit SimulatedDispatcher(SteppedClock &clock);
    ~SimulatedDispatcher() override;

    bool processEvents(QEventLoop::ProcessEventsFlags flags) override;
    bool hasPendingEvents() override;

    void registerSocketNotifier(QSocketNotifier *notifier) override;
    void unregisterSocketNotifier(QSocketNotifier *notifier) override;

    void registerTimer(int timerId, int interval, Qt::TimerType timerType,
                       QObject *object) override;
    bool unregisterTimer(int timerId) override;
    bool unregisterTimers(QObject *object) override;
    QList<TimerInfo> registeredTimers(QObject *object) const override;
    int remainingTime(int timerId) override;

    // From any thread.
    void wakeUp() override;
    void interrupt() override;

    void flush() override {}

private:
    void moveOnToNextTimer();
    bool deliverTimers();
    void keepTimeMoving();
    bool deliverSockets(bool isWaiting);
    void takeWakeUp();

    SteppedClock &clock;
    TimerQueue timers;
    std::vector<QSocketNotifier *> notifiers;
    int wakeUpDescriptor;
    std::atomic<bool> isWoken{false};
    std::atomic<bool> isInterrupted{false};
};

} // namespace workbench
