#pragma once

#include <Qt>
#include <QtGlobal>

#include <optional>
#include <vector>

class QObject;

namespace workbench {

/// The timers of an event loop, in the order in which they are due. Times are nanoseconds of the
/// caller's clock; the queue has none itself.
class TimerQueue
{
public:
    struct Timer
    {
        quint64 serial = 0; ///< no other timer ever has it; numbers come back
        int id = 0;
        int intervalMs = 0;
        Qt::TimerType type = Qt::PreciseTimer; ///< as asked for; all are precise
        QObject *object = nullptr;
        qint64 dueNs = 0;
        quint64 order = 0;         ///< of timers that are due together
        quint64 pass = 0;          ///< in which it was started or taken last
        bool isDelivering = false; ///< its event is with the object
    };

    /// A timer that is due every `intervalMs` from `nowNs` on.
    void start(int id, int intervalMs, Qt::TimerType type, QObject *object, qint64 nowNs);
    bool stop(int id);
    bool stopAll(const QObject *object);

    /// Null for an unknown number. Valid until the queue is changed.
    const Timer *find(int id) const;
    /// Those of an object, oldest first.
    std::vector<Timer> timersOf(const QObject *object) const;

    /// The first time from `fromNs` on at which a timer is due; nothing when there is none. One
    /// whose event is being delivered does not count, as nested event loops must not deliver it
    /// again.
    std::optional<qint64> nextDueNs(qint64 fromNs = 0) const;

    /// Begins a round in which each timer is taken once at most, and one started meanwhile not yet:
    /// a timer of 0 ms takes turns with everything else.
    quint64 beginPass() { return ++lastPass; }

    /// The first timer that is due at `nowNs` and has not been taken since `pass` began, with its
    /// next time set; nothing when there is none. It counts again when it has been given back.
    std::optional<Timer> takeDue(qint64 nowNs, quint64 pass);
    /// Nothing happens when the timer has been stopped.
    void giveBack(quint64 serial);

private:
    std::vector<Timer> timers;
    quint64 lastSerial = 0;
    quint64 lastOrder = 0;
    quint64 lastPass = 0;
};

} // namespace workbench
