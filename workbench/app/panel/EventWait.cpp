#include "EventWait.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

namespace workbench {

namespace {

constexpr int tryPeriodMs = 5;

} // namespace

WaitResult EventWait::until(const std::function<bool()> &condition, qint64 timeoutMs)
{
    QElapsedTimer elapsed;
    elapsed.start();
    QEventLoop loop;
    QTimer ticks;
    ticks.setTimerType(Qt::PreciseTimer);
    connect(this, &EventWait::interrupted, &loop, &QEventLoop::quit);
    connect(&ticks, &QTimer::timeout, &loop, &QEventLoop::quit);
    ticks.start(tryPeriodMs);
    while (!isInterrupted) {
        if (condition())
            return WaitResult::Happened;
        if (elapsed.hasExpired(timeoutMs))
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
