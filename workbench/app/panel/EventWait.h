#pragma once

#include <QObject>

#include <functional>

namespace workbench {

class Clock;

enum class WaitResult { Happened, TimedOut, Interrupted };

/// Waits in the event loop, so that everything else goes on. GUI thread.
class EventWait : public QObject
{
    Q_OBJECT

public:
    static constexpr int tryPeriodMs = 5;

    /// Times are those of the clock, which is not owned and must go with the event loop's.
    explicit EventWait(const Clock &clock);

    /// Until `condition`, which is tried every tryPeriodMs, holds.
    WaitResult until(const std::function<bool()> &condition, qint64 timeoutMs);

    /// Ends the wait that runs and every later one, until clearInterrupt().
    void interrupt();
    void clearInterrupt() { isInterrupted = false; }

    /// Called on each try.
    std::function<void()> onTick;

signals:
    void interrupted();

private:
    const Clock &clock;
    bool isInterrupted = false;
};

} // namespace workbench
