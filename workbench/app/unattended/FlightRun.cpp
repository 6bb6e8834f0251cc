#include "FlightRun.h"

#include "RunReport.h"
#include "RunStage.h"
#include "SimulatedModule.h"
#include "Wording.h"

#include <QAction>

namespace workbench {

namespace {

constexpr double allowedDeviation = 1.0; ///< units; half of it is due to whole positions

} // namespace

FlightRun::FlightRun(RunStage &runStage)
    : stage(runStage)
{
    stage.onSample = [this](const Sample &sample) { take(sample); };
    stage.progressText = [this] {
        return wording::flightUnderWay(progress, stage.panel.shownPosition());
    };
}

FlightRun::~FlightRun()
{
    stage.onSample = nullptr;
    stage.progressText = nullptr;
}

QString FlightRun::carryOut(const QVector<QPoint> &points)
{
    const QString problem = drive(points);
    if (problem.isEmpty())
        tell();
    else
        stage.haltAxes();
    return problem.isEmpty() ? problem : wording::flightFailed(problem);
}

void FlightRun::tell()
{
    constexpr double nsPerMs = 1e6;
    const double latenessMs = static_cast<double>(endNs - stage.restSinceNs()) / nsPerMs;
    if (stage.report)
        stage.report->add(progress, latenessMs, stage.takeFailedRequests());
    if (!stage.tally) {
        stage.output.line(wording::flightDone(progress));
        return;
    }
    MoveFigures figures;
    figures.durationS = progress.secondsTo(progress.pointCount() - 1);
    figures.latenessMs = latenessMs;
    figures.deviationUnits = progress.largestDeviation();
    figures.samples = progress.sampleCount();
    stage.tally->add(figures);
    if (stage.tally->isLineDue())
        stage.output.line(stage.tally->line());
}

QString FlightRun::drive(const QVector<QPoint> &points)
{
    QString problem = begin(points);
    for (int index = 0; problem.isEmpty() && index < points.size(); ++index) {
        problem = waitForPoint(index);
        if (problem.isEmpty() && !stage.tally)
            stage.output.line(wording::pointReached(progress, index));
    }
    endNs = stage.module.clock().now();
    return problem.isEmpty() ? checkEnd() : problem;
}

QString FlightRun::begin(const QVector<QPoint> &points)
{
    const QPoint start = stage.axes.position();
    const PanelView widest = stage.panel.widestView();
    stage.panel.setView(
        widened(closeUp(points.constFirst(), widest), points + QVector<QPoint>{start}, widest));
    const QString problem = stage.letPanelSettle();
    if (!problem.isEmpty())
        return problem;
    if (!stage.panel.pressClear())
        return wording::clearDisabled;
    QAction *const run = stage.panel.menuEntry(QStringLiteral("Run flight path"));
    if (!run || !run->isEnabled())
        return wording::flightNotOffered;
    progress = FlightProgress(points, start, stage.module.clock().now());
    run->trigger();
    return stage.panel.isMoving() ? QString() : wording::flightWithoutEffect;
}

QString FlightRun::waitForPoint(int index)
{
    const QString problem =
        stage.waitFor([this, index] { return hasLeft(index); }, stage.timeoutMs(), wording::noRest);
    if (!problem.isEmpty())
        return notReached(index, problem);
    if (progress.reachedCount() > index)
        return QString();
    return notReached(index,
                      stage.panel.isMoving() ? wording::panelDrivesOn : wording::panelEndsFlight);
}

/// True when the panel no longer drives to that point.
bool FlightRun::hasLeft(int index)
{
    const int leg = stage.panel.isMoving() ? stage.panel.flightPathIndex() : progress.pointCount();
    progress.enter(leg);
    return leg != index;
}

QString FlightRun::checkEnd()
{
    const QPoint end = stage.axes.position();
    if (stage.panel.isMoving() || !stage.axes.areAtRest())
        return wording::movedBehindFlight;
    if (end != progress.point(progress.pointCount() - 1) || stage.panel.shownPosition() != end)
        return wording::flightEndedElsewhere(end, stage.panel.shownPosition());
    if (progress.largestDeviation() > allowedDeviation)
        return wording::offTheSegments(progress.largestDeviation());
    return QString();
}

QString FlightRun::notReached(int index, const QString &reason)
{
    return wording::pointNotReached(progress, index, reason, stage.axes.position());
}

void FlightRun::take(const Sample &sample)
{
    const int leg = stage.panel.flightPathIndex();
    const bool isThere =
        leg >= 0 && leg < progress.pointCount() && sample.position == progress.point(leg);
    progress.take(sample, leg,
                  isThere && stage.axes.areAtRest() && stage.axes.position() == sample.position);
}

} // namespace workbench
