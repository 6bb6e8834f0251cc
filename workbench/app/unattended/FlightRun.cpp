#include "FlightRun.h"

#include "MoveResult.h"
#include "RunStage.h"
#include "SimulatedModule.h"

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
        return QStringLiteral("point %1 of %2: on the way at %3, %4 samples")
            .arg(progress.reachedCount() + 1)
            .arg(progress.pointCount())
            .arg(describe(stage.panel.shownPosition()))
            .arg(progress.sampleCount());
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
        stage.output.line(summary());
    else
        stage.haltAxes();
    return problem.isEmpty() ? problem : QStringLiteral("flight path: %1").arg(problem);
}

QString FlightRun::drive(const QVector<QPoint> &points)
{
    QString problem = begin(points);
    for (int index = 0; problem.isEmpty() && index < points.size(); ++index) {
        problem = waitForPoint(index);
        if (problem.isEmpty())
            stage.output.line(QStringLiteral("%1: reached after %2 s")
                                  .arg(title(index))
                                  .arg(progress.secondsTo(index), 0, 'f', 2));
    }
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
        return QStringLiteral("the clear button is disabled");
    QAction *const run = stage.panel.menuEntry(QStringLiteral("Run flight path"));
    if (!run || !run->isEnabled())
        return QStringLiteral("the start button's menu does not offer to run it");
    progress = FlightProgress(points, start, stage.module.clock().now());
    run->trigger();
    return stage.panel.isMoving() ? QString() : QStringLiteral("the menu starts nothing");
}

QString FlightRun::waitForPoint(int index)
{
    const QString timedOut = QStringLiteral("the axes do not come to rest");
    const QString problem =
        stage.waitFor([this, index] { return hasLeft(index); }, stage.timeoutMs(), timedOut);
    if (!problem.isEmpty())
        return notReached(index, problem);
    if (progress.reachedCount() > index)
        return QString();
    return notReached(index, stage.panel.isMoving() ? QStringLiteral("the panel drives on")
                                                    : QStringLiteral("the panel ends the run"));
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
        return QStringLiteral("the axes move on behind the last point");
    if (end != progress.point(progress.pointCount() - 1) || stage.panel.shownPosition() != end)
        return QStringLiteral("ended at %1, the panel shows %2")
            .arg(describe(end), describe(stage.panel.shownPosition()));
    if (progress.largestDeviation() > allowedDeviation)
        return QStringLiteral("%1 units off the straight segments")
            .arg(progress.largestDeviation());
    return QString();
}

QString FlightRun::notReached(int index, const QString &reason)
{
    return QStringLiteral("%1: not reached, %2; the axes are at %3")
        .arg(title(index), reason, describe(stage.axes.position()));
}

void FlightRun::take(const Sample &sample)
{
    const int leg = stage.panel.flightPathIndex();
    const bool isThere =
        leg >= 0 && leg < progress.pointCount() && sample.position == progress.point(leg);
    progress.take(sample, leg,
                  isThere && stage.axes.areAtRest() && stage.axes.position() == sample.position);
}

QString FlightRun::title(int index) const
{
    return QStringLiteral("point %1 of %2: %3")
        .arg(index + 1)
        .arg(progress.pointCount())
        .arg(describe(progress.point(index)));
}

QString FlightRun::summary() const
{
    return QStringLiteral(
               "flight path: %1 of %2 points reached; %3 s, %4 samples, %5/s; at most %6 "
               "units off the straight segments")
        .arg(progress.reachedCount())
        .arg(progress.pointCount())
        .arg(progress.secondsTo(progress.pointCount() - 1), 0, 'f', 2)
        .arg(progress.sampleCount())
        .arg(progress.samplesPerSecond(), 0, 'f', 0)
        .arg(progress.largestDeviation(), 0, 'f', 1);
}

} // namespace workbench
