#pragma once

#include <QObject>

#include <functional>

namespace workbench {

enum class WaitResult { Happened, TimedOut, Interrupted };

/// Waits in the event loop, so that everything else goes on. GUI thread.
class EventWait : public QObject
{
    Q_OBJECT

public:
    /// Until `condition`, which is tried every few milliseconds, holds.
    WaitResult until(const std::function<bool()> &condition, qint64 timeoutMs);

    /// Ends the wait that runs and every later one, until clearInterrupt().
    void interrupt();
    void clearInterrupt() { isInterrupted = false; }

    /// Called on each try.
    std::function<void()> onTick;

signals:
    void interrupted();

private:
    bool isInterrupted = false;
};

} // namespace workbench
