#include "SimulatedDispatcher.h"

#include "Clock.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimerEvent>

#include <qpa/qwindowsysteminterface.h>

#include <algorithm>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace workbench {

namespace {

constexpr qint64 nsPerMs = 1000000;

short pollEvents(QSocketNotifier::Type type)
{
    switch (type) {
    case QSocketNotifier::Read:
        return POLLIN;
    case QSocketNotifier::Write:
        return POLLOUT;
    case QSocketNotifier::Exception:
        break;
    }
    return POLLPRI;
}

} // namespace

SimulatedDispatcher::SimulatedDispatcher(SteppedClock &simulatedClock)
    : clock(simulatedClock)
    , wakeUpDescriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{
}

SimulatedDispatcher::~SimulatedDispatcher()
{
    close(wakeUpDescriptor);
}

bool SimulatedDispatcher::processEvents(QEventLoop::ProcessEventsFlags flags)
{
    isInterrupted = false;
    // Before the events are looked for, so that one which comes meanwhile is not overlooked.
    takeWakeUp();
    emit awake();
    QCoreApplication::sendPostedEvents();
    bool hasDelivered = QWindowSystemInterface::sendWindowSystemEvents(flags);

    const auto mayWait = [&] {
        return flags.testFlag(QEventLoop::WaitForMoreEvents) && !hasDelivered && !isWoken &&
               !isInterrupted;
    };
    if (!flags.testFlag(QEventLoop::ExcludeSocketNotifiers))
        hasDelivered = deliverSockets(mayWait() && !timers.nextDueNs()) || hasDelivered;
    if (mayWait())
        moveOnToNextTimer();
    if (!isInterrupted)
        hasDelivered = deliverTimers() || hasDelivered;
    return hasDelivered;
}

bool SimulatedDispatcher::hasPendingEvents()
{
    return isWoken || QWindowSystemInterface::windowSystemEventsQueued() > 0;
}

void SimulatedDispatcher::moveOnToNextTimer()
{
    const auto next = timers.nextDueNs();
    if (!next || *next <= clock.now())
        return;
    emit aboutToBlock();
    clock.advance(*next - clock.now());
    emit awake();
}

/// Those that were due when the round began, each once.
bool SimulatedDispatcher::deliverTimers()
{
    const qint64 beginNs = clock.now();
    const quint64 pass = timers.beginPass();
    bool hasDelivered = false;
    while (const auto timer = timers.takeDue(beginNs, pass)) {
        QTimerEvent event(timer->id);
        QCoreApplication::sendEvent(timer->object, &event);
        timers.giveBack(timer->serial);
        hasDelivered = true;
    }
    if (hasDelivered && clock.now() == beginNs)
        keepTimeMoving();
    return hasDelivered;
}

void SimulatedDispatcher::keepTimeMoving()
{
    const qint64 now = clock.now();
    const auto next = timers.nextDueNs();
    if (next && *next <= now)
        clock.advance(
            qMin(leastPassNs, timers.nextDueNs(now + 1).value_or(now + leastPassNs) - now));
}

/// Those that are ready. With `isWaiting` there is one in the end, or another thread has woken the
/// loop up.
bool SimulatedDispatcher::deliverSockets(bool isWaiting)
{
    if (notifiers.empty() && !isWaiting)
        return false;
    const std::vector<QSocketNotifier *> asked = notifiers;
    std::vector<pollfd> sources;
    for (const QSocketNotifier *const notifier : asked)
        sources.push_back({static_cast<int>(notifier->socket()), pollEvents(notifier->type()), 0});
    sources.push_back({wakeUpDescriptor, POLLIN, 0});
    if (poll(sources.data(), static_cast<nfds_t>(sources.size()), isWaiting ? -1 : 0) <= 0)
        return false;
    bool hasDelivered = false;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        // What handles one may take another one away.
        const bool isThere =
            std::find(notifiers.cbegin(), notifiers.cend(), asked[i]) != notifiers.cend();
        if (!isThere || sources[i].revents == 0)
            continue;
        QEvent event(QEvent::SockAct);
        QCoreApplication::sendEvent(asked[i], &event);
        hasDelivered = true;
    }
    return hasDelivered;
}

void SimulatedDispatcher::registerSocketNotifier(QSocketNotifier *notifier)
{
    notifiers.push_back(notifier);
}

void SimulatedDispatcher::unregisterSocketNotifier(QSocketNotifier *notifier)
{
    notifiers.erase(std::remove(notifiers.begin(), notifiers.end(), notifier), notifiers.end());
}

void SimulatedDispatcher::registerTimer(int timerId, int interval, Qt::TimerType timerType,
                                        QObject *object)
{
    timers.start(timerId, interval, timerType, object, clock.now());
}

bool SimulatedDispatcher::unregisterTimer(int timerId)
{
    return timers.stop(timerId);
}

bool SimulatedDispatcher::unregisterTimers(QObject *object)
{
    return timers.stopAll(object);
}

QList<QAbstractEventDispatcher::TimerInfo>
SimulatedDispatcher::registeredTimers(QObject *object) const
{
    QList<TimerInfo> all;
    for (const TimerQueue::Timer &timer : timers.timersOf(object))
        all.append(TimerInfo(timer.id, timer.intervalMs, timer.type));
    return all;
}

int SimulatedDispatcher::remainingTime(int timerId)
{
    const TimerQueue::Timer *const timer = timers.find(timerId);
    return timer ? static_cast<int>(qMax<qint64>(0, timer->dueNs - clock.now()) / nsPerMs) : -1;
}

void SimulatedDispatcher::wakeUp()
{
    const quint64 one = 1;
    if (!isWoken.exchange(true)) {
        [[maybe_unused]] const auto written = write(wakeUpDescriptor, &one, sizeof one);
    }
}

void SimulatedDispatcher::takeWakeUp()
{
    quint64 count = 0;
    if (isWoken.exchange(false)) {
        [[maybe_unused]] const auto taken = read(wakeUpDescriptor, &count, sizeof count);
    }
}

void SimulatedDispatcher::interrupt()
{
    isInterrupted = true;
    wakeUp();
}

} // namespace workbench
