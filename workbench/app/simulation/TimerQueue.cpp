#include "TimerQueue.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace workbench {

namespace {

constexpr qint64 nsPerMs = 1000000;

bool isBefore(const TimerQueue::Timer &one, const TimerQueue::Timer &other)
{
    return std::tie(one.dueNs, one.order) < std::tie(other.dueNs, other.order);
}

/// Keeps to the period, but makes up for nothing that was missed.
qint64 followingDue(const TimerQueue::Timer &timer, qint64 nowNs)
{
    const qint64 periodNs = timer.intervalMs * nsPerMs;
    const qint64 next = timer.dueNs + periodNs;
    return next < nowNs ? nowNs + periodNs : next;
}

} // namespace

void TimerQueue::start(int id, int intervalMs, Qt::TimerType type, QObject *object, qint64 nowNs)
{
    Timer timer;
    timer.serial = ++lastSerial;
    timer.id = id;
    timer.intervalMs = intervalMs;
    timer.type = type;
    timer.object = object;
    timer.dueNs = nowNs + intervalMs * nsPerMs;
    timer.order = ++lastOrder;
    timer.pass = lastPass;
    timers.push_back(timer);
}

bool TimerQueue::stop(int id)
{
    const auto end = std::remove_if(timers.begin(), timers.end(),
                                    [id](const Timer &timer) { return timer.id == id; });
    const bool wasThere = end != timers.end();
    timers.erase(end, timers.end());
    return wasThere;
}

bool TimerQueue::stopAll(const QObject *object)
{
    const auto end = std::remove_if(timers.begin(), timers.end(), [object](const Timer &timer) {
        return timer.object == object;
    });
    const bool wasThere = end != timers.end();
    timers.erase(end, timers.end());
    return wasThere;
}

const TimerQueue::Timer *TimerQueue::find(int id) const
{
    const auto found = std::find_if(timers.cbegin(), timers.cend(),
                                    [id](const Timer &timer) { return timer.id == id; });
    return found == timers.cend() ? nullptr : &*found;
}

std::vector<TimerQueue::Timer> TimerQueue::timersOf(const QObject *object) const
{
    std::vector<Timer> found;
    std::copy_if(timers.cbegin(), timers.cend(), std::back_inserter(found),
                 [object](const Timer &timer) { return timer.object == object; });
    return found;
}

std::optional<qint64> TimerQueue::nextDueNs(qint64 fromNs) const
{
    std::optional<qint64> next;
    for (const Timer &timer : timers) {
        if (!timer.isDelivering && timer.dueNs >= fromNs && (!next || timer.dueNs < *next))
            next = timer.dueNs;
    }
    return next;
}

std::optional<TimerQueue::Timer> TimerQueue::takeDue(qint64 nowNs, quint64 pass)
{
    Timer *first = nullptr;
    for (Timer &timer : timers) {
        const bool isEligible = !timer.isDelivering && timer.pass < pass && timer.dueNs <= nowNs;
        if (isEligible && (!first || isBefore(timer, *first)))
            first = &timer;
    }
    if (!first)
        return std::nullopt;
    first->dueNs = followingDue(*first, nowNs);
    first->order = ++lastOrder;
    first->pass = lastPass;
    first->isDelivering = true;
    return *first;
}

void TimerQueue::giveBack(quint64 serial)
{
    const auto found = std::find_if(timers.begin(), timers.end(), [serial](const Timer &timer) {
        return timer.serial == serial;
    });
    if (found != timers.end())
        found->isDelivering = false;
}

} // namespace workbench
