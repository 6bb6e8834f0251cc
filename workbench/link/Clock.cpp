#include "Clock.h"

#include <chrono>
#include <thread>

namespace workbench {

namespace {

// How late the system may wake a sleeper; the remainder of a wait is spent spinning.
constexpr qint64 wakeUpMarginNs = 150000;

} // namespace

SteadyClock::SteadyClock()
{
    timer.start();
}

qint64 SteadyClock::now() const
{
    return timer.nsecsElapsed();
}

void SteadyClock::wait(qint64 ns)
{
    const qint64 start = now();
    if (ns > wakeUpMarginNs)
        std::this_thread::sleep_for(std::chrono::nanoseconds(ns - wakeUpMarginNs));
    while (now() - start < ns)
        continue;
}

void SteppedClock::advance(qint64 ns)
{
    if (ns > 0)
        time += ns;
}

} // namespace workbench
