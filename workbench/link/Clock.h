#pragma once

#include <QElapsedTimer>

namespace workbench {

/// Monotonic time in nanoseconds from an origin of the clock's own. GUI thread.
class Clock
{
public:
    virtual ~Clock() = default;

    virtual qint64 now() const = 0;

    /// Returns when `ns` nanoseconds have passed; at once for 0 and below.
    virtual void wait(qint64 ns) = 0;
};

/// Real time since the clock was made. Waits block the thread and are precise to microseconds.
class SteadyClock : public Clock
{
public:
    SteadyClock();

    qint64 now() const override;
    void wait(qint64 ns) override;

private:
    QElapsedTimer timer;
};

/// Time that stands still until somebody moves it on; a wait moves it on by itself and returns at
/// once.
class SteppedClock : public Clock
{
public:
    qint64 now() const override { return time; }
    void wait(qint64 ns) override { advance(ns); }

    /// Moves time on; nothing happens for 0 and below.
    void advance(qint64 ns);

private:
    qint64 time = 0;
};

/// Tells how long ago something was, on any clock. Runs from its construction.
class Stopwatch
{
public:
    /// The clock is not owned.
    explicit Stopwatch(const Clock &watchedClock)
        : clock(&watchedClock)
        , startNs(watchedClock.now())
    {
    }

    void restart() { startNs = clock->now(); }
    /// True from `ms` milliseconds on.
    bool hasReached(qint64 ms) const { return (clock->now() - startNs) / nsPerMs >= ms; }

private:
    static constexpr qint64 nsPerMs = 1000000;

    const Clock *clock;
    qint64 startNs;
};

} // namespace workbench
