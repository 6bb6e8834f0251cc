#include "RunStage.h"

#include "TapeLink.h"
#include "Wording.h"

#include <QLineF>

#include <limits>
#include <utility>

namespace workbench {

namespace {

constexpr qint64 nsPerMs = 1000000;
constexpr int progressPeriodMs = 100;
constexpr int settleTimeoutMs = 2000;
constexpr qint64 patienceMs = 30000;
constexpr qint64 patienceRequests = 100; ///< for the requests before and after a move
constexpr int patienceFactor = 4;        ///< times as long as at full speed all the way

} // namespace

RunStage::RunStage(SimulatedModule &simulated, const TapeLink *played, SampleTap &sampleTap,
                   const PanelDriver &panelDriver, RecordWriter &recordWriter, RunOutput &runOutput,
                   bool hasSimulatedTime)
    : module(simulated)
    , panel(panelDriver)
    , output(runOutput)
    , axes(simulated, played)
    , replay(played)
    , tape(played)
    , isTimeSimulated(hasSimulatedTime)
    , tap(sampleTap)
    , record(recordWriter)
    , wait(simulated.clock())
    , sinceProgress(simulated.clock())
{
    tap.onSample = [this](const Sample &sample) { take(sample); };
    wait.onTick = [this] { showProgress(); };
}

RunStage::~RunStage()
{
    tap.onSample = nullptr;
}

QString RunStage::waitFor(const std::function<bool()> &condition, qint64 timeout,
                          const QString &whenTimedOut)
{
    QString problem;
    const auto isOver = [&] {
        const bool holds = condition();
        problem = holds ? replay.deviation() : replay.problem();
        return holds || !problem.isEmpty();
    };
    switch (wait.until(isOver, timeout)) {
    case WaitResult::Interrupted:
        return wording::interrupted;
    case WaitResult::TimedOut:
        return whenTimedOut;
    case WaitResult::Happened:
        break;
    }
    return problem;
}

QString RunStage::watchAgainst(const std::function<bool()> &condition, qint64 durationMs,
                               const QString &whenHappened)
{
    switch (wait.until(condition, durationMs)) {
    case WaitResult::Happened:
        return whenHappened;
    case WaitResult::Interrupted:
        return wording::interrupted;
    case WaitResult::TimedOut:
        break;
    }
    return QString();
}

QString RunStage::letPanelSettle()
{
    // Both: on a busy machine much time may go by in which little is done.
    constexpr int triesWithoutChange = 10;
    constexpr qint64 msWithoutChange = 100;
    QRectF seen;
    int unchanged = 0;
    Stopwatch sinceChange(module.clock());
    const auto isSettled = [&] {
        const QRectF now = panel.plotArea();
        ++unchanged;
        if (now != seen) {
            unchanged = 0;
            sinceChange.restart();
        }
        seen = now;
        return unchanged >= triesWithoutChange && sinceChange.hasReached(msWithoutChange);
    };
    return watchAgainst(isSettled, settleTimeoutMs, QString());
}

bool RunStage::isTimeToStepIn(const QPoint &start, double distance, StepIn what) const
{
    return tape ? isWaitedFor(what) : QLineF(start, axes.position()).length() >= distance;
}

/// A tape waits for other targets than those that the panel is about to write by itself, and where
/// the panel had drawn the axes when something was done, so that must be drawn now too. On
/// simulated time the panel draws what it had drawn without waiting for it, and a picked target is
/// there for the update that wrote it only if it is picked on the last try before.
bool RunStage::isWaitedFor(StepIn what) const
{
    if (tape->awaitedTarget().value_or(panel.target()) == panel.target())
        return false;
    if (isTimeSimulated && what == StepIn::Pick)
        return tape->waitingNs() >= -EventWait::tryPeriodMs * nsPerMs;
    return tape->waitingNs() >= 0 && panel.shownPosition() == axes.position();
}

quint64 RunStage::takeFailedRequests()
{
    const quint64 before = std::exchange(failedBefore, tap.failedCount());
    return failedBefore - before;
}

void RunStage::haltAxes()
{
    wait.clearInterrupt();
    const auto isHalted = [this] { return !panel.isMoving() && axes.areAtRest(); };
    if (tape || isHalted())
        return;
    panel.pressStop();
    wait.until(isHalted, timeoutMs());
}

qint64 RunStage::timeoutMs() const
{
    // The tape runs on to its next write or its end, and what is late after that is found out.
    if (tape)
        return std::numeric_limits<qint64>::max();
    const QPoint way = panel.target() - axes.position();
    const int slowest = qMin(axes.registerValue(QStringLiteral("M0_VMAX")),
                             axes.registerValue(QStringLiteral("M1_VMAX")));
    const double seconds = slowest > 0 ? static_cast<double>(way.manhattanLength()) / slowest : 0;
    const qint64 requestsMs = patienceRequests * module.link().requestCostNs() / nsPerMs;
    return patienceMs + requestsMs + static_cast<qint64>(seconds * 1000 * patienceFactor);
}

void RunStage::take(const Sample &sample)
{
    record.append(sample);
    // What a tape has of it would have to be looked for each time.
    if (tape || !axes.areAtRest())
        restSince.reset();
    else if (!restSince)
        restSince = sample.timeNs;
    if (onSample)
        onSample(sample);
}

void RunStage::showProgress()
{
    if (!progressText || !sinceProgress.hasReached(progressPeriodMs))
        return;
    sinceProgress.restart();
    output.progress(progressText());
}

} // namespace workbench
