#include "EventWait.h"

#include "Clock.h"

#include <QEventLoop>
#include <QTimer>

namespace workbench {

EventWait::EventWait(const Clock &waitClock)
    : clock(waitClock)
{
}

WaitResult EventWait::until(const std::function<bool()> &condition, qint64 timeoutMs)
{
    const Stopwatch elapsed(clock);
    QEventLoop loop;
    QTimer ticks;
    ticks.setTimerType(Qt::PreciseTimer);
    connect(this, &EventWait::interrupted, &loop, &QEventLoop::quit);
    connect(&ticks, &QTimer::timeout, &loop, &QEventLoop::quit);
    ticks.start(tryPeriodMs);
    while (!isInterrupted) {
        if (condition())
            return WaitResult::Happened;
        if (elapsed.hasReached(timeoutMs))
            return WaitResult::TimedOut;
        if (onTick)
            onTick();
        loop.exec();
    }
    return WaitResult::Interrupted;
}

void EventWait::interrupt()
{
    isInterrupted = true;
    emit interrupted();
}

} // namespace workbench
