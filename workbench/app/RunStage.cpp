#include "RunStage.h"

#include "SimulatedModule.h"

namespace bench {

namespace {

constexpr int progressPeriodMs = 100;
constexpr int settleTimeoutMs = 2000;
constexpr qint64 patienceMs = 30000;
constexpr qint64 patienceRequests = 100; ///< for the requests before and after a move
constexpr int patienceFactor = 4;        ///< times as long as at full speed all the way

const auto interruptedText = QStringLiteral("interrupted");

} // namespace

RunStage::RunStage(SimulatedModule &simulated, SampleTap &sampleTap, const PanelDriver &panelDriver,
                   RecordWriter &recordWriter, RunReport &runReport)
    : module(simulated)
    , panel(panelDriver)
    , report(runReport)
    , tap(sampleTap)
    , record(recordWriter)
{
    tap.onSample = [this](const Sample &sample) { take(sample); };
    wait.onTick = [this] { showProgress(); };
    sinceProgress.start();
}

RunStage::~RunStage()
{
    tap.onSample = nullptr;
}

QString RunStage::waitFor(const std::function<bool()> &condition, qint64 timeout,
                          const QString &whenTimedOut)
{
    switch (wait.until(condition, timeout)) {
    case WaitResult::Interrupted:
        return interruptedText;
    case WaitResult::TimedOut:
        return whenTimedOut;
    case WaitResult::Happened:
        break;
    }
    return QString();
}

QString RunStage::watchAgainst(const std::function<bool()> &condition, qint64 durationMs,
                               const QString &whenHappened)
{
    switch (wait.until(condition, durationMs)) {
    case WaitResult::Happened:
        return whenHappened;
    case WaitResult::Interrupted:
        return interruptedText;
    case WaitResult::TimedOut:
        break;
    }
    return QString();
}

QString RunStage::letPanelSettle()
{
    constexpr int triesWithoutChange = 3;
    QRectF seen;
    int unchanged = 0;
    const auto isSettled = [&] {
        const QRectF now = panel.plotArea();
        unchanged = now == seen ? unchanged + 1 : 0;
        seen = now;
        return unchanged >= triesWithoutChange;
    };
    return waitFor(isSettled, settleTimeoutMs, QString());
}

void RunStage::haltAxes()
{
    wait.clearInterrupt();
    if (!panel.isMoving() && isStandingStill())
        return;
    panel.pressStop();
    wait.until([this] { return !panel.isMoving() && isStandingStill(); }, timeoutMs());
}

bool RunStage::isStandingStill()
{
    return module.registerValue(QStringLiteral("M0_VACTUAL")).value_or(0) == 0 &&
           module.registerValue(QStringLiteral("M1_VACTUAL")).value_or(0) == 0;
}

QPoint RunStage::positionNow()
{
    module.catchUp();
    return {module.chip().position(0), module.chip().position(1)};
}

qint64 RunStage::timeoutMs()
{
    const QPoint way = panel.target() - positionNow();
    const int slowest = qMin(module.registerValue(QStringLiteral("M0_VMAX")).value_or(0),
                             module.registerValue(QStringLiteral("M1_VMAX")).value_or(0));
    const double seconds = slowest > 0 ? static_cast<double>(way.manhattanLength()) / slowest : 0;
    const qint64 requestsMs = patienceRequests * module.link().requestCostNs() / 1000000;
    return patienceMs + requestsMs + static_cast<qint64>(seconds * 1000 * patienceFactor);
}

void RunStage::take(const Sample &sample)
{
    record.append(sample);
    if (onSample)
        onSample(sample);
}

void RunStage::showProgress()
{
    if (!progressText || !sinceProgress.hasExpired(progressPeriodMs))
        return;
    sinceProgress.start();
    report.progress(progressText());
}

} // namespace bench
