#include "MoveRun.h"

#include "RampPromise.h"
#include "RunReport.h"
#include "SimulatedModule.h"
#include "Wording.h"

#include <QLineF>

namespace workbench {

namespace {

constexpr int stayPutMs = 300;
constexpr double allowedDeviation = 1.0; ///< units; half of it is due to whole positions

} // namespace

MoveRun::MoveRun(RunStage &runStage)
    : stage(runStage)
{
    stage.onSample = [this](const Sample &sample) { move.samples.append(sample); };
    stage.progressText = [this] {
        return wording::moveUnderWay(number, stage.panel.shownPosition(), move.samples.size());
    };
}

MoveRun::~MoveRun()
{
    stage.onSample = nullptr;
    stage.progressText = nullptr;
}

QString MoveRun::carryOut(const QVector<ScriptedMove> &moves)
{
    for (const ScriptedMove &planned : moves) {
        ++number;
        const QString problem = carryOut(planned);
        if (!problem.isEmpty()) {
            stage.haltAxes();
            return wording::moveFailed(number, problem);
        }
        tell();
    }
    return QString();
}

void MoveRun::tell()
{
    if (stage.report)
        stage.report->add(move, promised(), stage.takeFailedRequests());
    if (!stage.tally) {
        stage.output.line(wording::moveDone(number, move));
        return;
    }
    stage.tally->add(figuresOf(move));
    if (stage.tally->isLineDue())
        stage.output.line(stage.tally->line());
}

std::optional<double> MoveRun::promised() const
{
    if (move.planned.kind != ScriptedMove::Straight)
        return std::nullopt;
    return promisedSeconds(stage.axes, move.start, move.picked);
}

QString MoveRun::carryOut(const ScriptedMove &planned)
{
    move = MoveResult();
    move.planned = planned;
    QString problem = pickAndStart(planned);
    if (problem.isEmpty() && planned.kind == ScriptedMove::Turned)
        problem = turn();
    if (problem.isEmpty() && planned.kind == ScriptedMove::Stopped)
        problem = stop();
    if (problem.isEmpty())
        problem = waitForEnd();
    if (problem.isEmpty())
        problem = checkHalt();
    if (problem.isEmpty() && planned.kind == ScriptedMove::Stopped)
        problem = checkStaysPut();
    return problem;
}

/// Without a return to the event loop between the pick and the start: the panel writes a picked
/// target to the chip by itself soon after, and in most modes the axes then go.
QString MoveRun::pickAndStart(const ScriptedMove &planned)
{
    const QString problem = prepareView(planned);
    if (!problem.isEmpty())
        return problem;
    if (!stage.panel.pick(planned.target))
        return wording::targetNotShown(planned.target);
    move.start = stage.axes.position();
    move.picked = stage.panel.target();
    stage.panel.setView(
        widened(stage.panel.view(), {move.start, move.picked}, stage.panel.widestView()));
    move.startNs = stage.module.clock().now();
    move.samples.clear();
    stage.forgetRest();
    if (!stage.panel.pressStart())
        return wording::startDisabled;
    return stage.panel.isMoving() ? QString() : wording::startWithoutEffect;
}

/// Shows what is needed to pick the targets.
QString MoveRun::prepareView(const ScriptedMove &planned)
{
    const PanelView widest = stage.panel.widestView();
    QVector<QPoint> points{planned.target, stage.axes.position()};
    if (planned.kind == ScriptedMove::Turned)
        points.append(planned.turnTarget);
    stage.panel.setView(planned.isExact ? closeUp(planned.target, widest)
                                        : widened(stage.panel.view(), points, widest));
    return stage.letPanelSettle();
}

QString MoveRun::turn()
{
    const QString problem = halfWay(StepIn::Pick);
    if (!problem.isEmpty())
        return problem;
    if (!stage.panel.isMoving())
        return wording::endedBeforeTurn;
    if (!stage.panel.pick(move.planned.turnTarget))
        return wording::turnTargetNotShown;
    move.turnPicked = stage.panel.target();
    const auto hasTarget = [this] { return stage.axes.target() == move.turnPicked; };
    const QString notWritten = stage.waitFor(hasTarget, stage.timeoutMs(), wording::turnNotWritten);
    move.turnedAt = stage.axes.position();
    return notWritten;
}

QString MoveRun::stop()
{
    const QString problem = halfWay(StepIn::Stop);
    if (!problem.isEmpty())
        return problem;
    if (!stage.panel.isMoving())
        return wording::endedBeforeStop;
    move.stopSample = move.samples.size();
    return stage.panel.pressStop() ? QString() : wording::stopDisabled;
}

QString MoveRun::halfWay(StepIn what)
{
    const double half = QLineF(move.start, move.picked).length() / 2;
    const auto isThere = [this, half, what] {
        return !stage.panel.isMoving() || stage.isTimeToStepIn(move.start, half, what);
    };
    return stage.waitFor(isThere, stage.timeoutMs(), wording::notHalfWay);
}

QString MoveRun::waitForEnd()
{
    QString problem = stage.waitFor([this] { return !stage.panel.isMoving(); }, stage.timeoutMs(),
                                    wording::noEnd);
    move.endNs = stage.module.clock().now();
    move.restNs = stage.restSinceNs();
    move.halt = stage.axes.position();
    if (problem == wording::noEnd)
        problem += wording::axesAt(move.halt);
    return problem;
}

QString MoveRun::checkHalt()
{
    if (!stage.axes.areAtRest())
        return wording::endedInMotion;
    const QPoint wanted = stage.panel.target();
    if (move.halt != wanted)
        return wording::endedElsewhere(move.halt, wanted);
    if (stage.panel.shownPosition() != move.halt)
        return wording::shownElsewhere(stage.panel.shownPosition(), move.halt);
    const bool isOneLine = move.planned.kind != ScriptedMove::Turned;
    if (isOneLine && largestDeviation(move) > allowedDeviation)
        return wording::offTheLine(largestDeviation(move));
    return QString();
}

QString MoveRun::checkStaysPut()
{
    const auto hasMoved = [this] {
        return !stage.axes.areAtRest() || stage.axes.position() != move.halt;
    };
    return stage.watchAgainst(hasMoved, stayPutMs, wording::movedAfterStop);
}

} // namespace workbench
