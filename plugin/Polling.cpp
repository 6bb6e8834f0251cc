#include "ModuleRequests.h"
#include "PixelMap.h"
#include "Positions.h"
#include "ToolConstants.h"
#include "TraceSeries.h"
#include "TraceThinning.h"
#include "ui_SynchronisedDriveTool.h"

#include <QTimerEvent>
#include <QtCharts/QChart>
#include <QtCharts/QLineSeries>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

#include <climits>

namespace {

/// The module's user function that answers with both positions, and the 32-bit value that goes out
/// with it, least significant byte first.
constexpr unsigned char readPositionsFunction = 0xFD;
constexpr unsigned char readPositionsRequest[] = {0x00, 0x48, 0x00, 0x00};

/// Not 0, so that a velocity that could not be read does not end a move.
constexpr int unknownVelocity = 1;

void setSignalsBlocked(const QPointer<XmlRegisterWidget> &widget, bool block)
{
    if (widget)
        widget->blockSignals(block);
}

/// Takes out the oldest points behind the first `kept`, many at a time, once there are far too
/// many.
void keepNewest(QVector<QPointF> &points, int kept)
{
    constexpr int surplus = drive::historyCapacity / 10;
    if (points.size() >= drive::historyCapacity + surplus)
        points.remove(kept, surplus);
}

} // namespace

/// Without an event: one sample at once, for a tool that is being shown.
void SynchronisedDriveTool::timerEvent(QTimerEvent *ev)
{
    if (!isComplete())
        return;
    if (!ev)
        sampleTick(false);
    else if (sampleTimer.isActive() && ev->timerId() == sampleTimer.timerId())
        sampleTick(true);
    else if (updateTimer.isActive() && ev->timerId() == updateTimer.timerId())
        updateTick();
}

void SynchronisedDriveTool::sampleTick(bool isMoving)
{
    if (!module())
        return;
    ModuleRequests requests(this, motorByte());
    drive::PositionReply reply{readPositionsRequest[2], readPositionsRequest[1],
                               readPositionsRequest[0], 0};
    requests.setCircularMode(true);
    reply.value = static_cast<unsigned int>(
        requests.userFunction(&reply.high, &reply.middle, readPositionsFunction));
    requests.setCircularMode(false);
    if (requests.isToolGone())
        return;

    const QPointF position = drive::decodePositions(reply);
    if (!isMoving) {
        // Twice: the first stands for what is drawn already, so the next update tick draws it.
        pendingSamples.append(position);
        pendingSamples.append(position);
    } else if (pendingSamples.isEmpty() ||
               !drive::samePoint(position, pendingSamples.constLast())) {
        pendingSamples.append(position);
        tracePoints.append(position);
        // Update ticks keep both short, but there are none while the tool is hidden. The first of
        // those pending stands for what is drawn.
        keepNewest(pendingSamples, 1);
        keepNewest(tracePoints, 0);
    }
}

void SynchronisedDriveTool::updateTick()
{
    const TraceChange change(trace());
    ++begun.updateTicks;
    // Velocities are read for motor 0, whichever motor the tool serves: not to be replaced by the
    // tool's own.
    ModuleRequests requests(this, 0);
    writeNewTarget(requests);
    if (requests.isToolGone())
        return;
    if (pendingSamples.size() > 1)
        drawSamples(requests);
    else if (!ui->pbStart->isEnabledTo(this))
        checkEndOfMove(requests);
    if (!requests.isToolGone())
        trimTrace();
}

void SynchronisedDriveTool::writeNewTarget(ModuleRequests &requests)
{
    if (!targetSeries->property(drive::property::NewTarget).toBool())
        return;
    setSignalsBlocked(m0XtargetWidget, true);
    setSignalsBlocked(m1XtargetWidget, true);
    requests.setAndUpdate(&Tool::m0XtargetWidget, requests.target().x());
    requests.setAndUpdate(&Tool::m1XtargetWidget, requests.target().y());
    if (requests.isToolGone())
        return;
    setSignalsBlocked(m0XtargetWidget, false);
    setSignalsBlocked(m1XtargetWidget, false);
    // What came while the host waited for the module may have changed the target, which then goes
    // out with the next tick.
    if (!requests.isOvertaken())
        targetSeries->setProperty(drive::property::NewTarget, false);
}

/// Draws what was sampled since the last time.
void SynchronisedDriveTool::drawSamples(ModuleRequests &requests)
{
    const QPointF newest = pendingSamples.constLast();
    pendingSamples.removeFirst();
    appendToTrace(pendingSamples);
    actualSeries->replace(0, newest);
    pendingSamples = {actual()};

    requests.setAndUpdate(&Tool::m0XactualWidget, newest.x());
    requests.setAndUpdate(&Tool::m1XactualWidget, newest.y());
    if (requests.isToolGone())
        return;
    keepInView(horizontal(), newest.x());
    keepInView(vertical(), newest.y());
}

void SynchronisedDriveTool::appendToTrace(const QVector<QPointF> &points)
{
    const auto map = drive::PixelMap::of(chart, traceSeries);
    const int drawn = traceSeries->count();
    // No pixel of any point, where a host has emptied the trace.
    const QPoint last =
        drawn > 0 ? map.pixel(traceSeries->at(drawn - 1)) : QPoint(INT_MIN, INT_MIN);
    const auto all = [](const QPointF &) { return true; };
    const QVector<QPointF> kept = drive::thinned(points, last, map, all);
    if (!kept.isEmpty())
        trace()->appendPoints(kept);
}

/// Moves a limit that the position has passed to one tick beyond the position. The step is a whole
/// number here, and a fraction where a drag pushes the limits: not to be made alike.
void SynchronisedDriveTool::keepInView(const Limits &limits, double position)
{
    const int low = limits.lower->value();
    const int high = limits.upper->value();
    const int step = (high - low) / (limits.axis->tickCount() - 1);
    if (low > position)
        limits.lower->setValue(drive::truncated(position - step));
    if (position > high)
        limits.upper->setValue(drive::truncated(position + step));
}

/// A move has ended when nothing new was sampled since the last tick and both axes stand still. A
/// tool without a chip has no velocities to wait for.
void SynchronisedDriveTool::checkEndOfMove(ModuleRequests &requests)
{
    const int preset = icProduct ? unknownVelocity : 0;
    const int m0Velocity = requests.read(&Tool::m0VactualRegister, preset);
    const int m1Velocity = requests.read(&Tool::m1VactualRegister, preset);
    // What came in the middle has made the velocities old; a later tick looks again.
    if (requests.isOvertaken())
        return;
    // While the host has the whole tool disabled a flight path could not go on, so nothing ends.
    const bool hasEnded = m0Velocity == 0 && m1Velocity == 0 && isEnabled();
    ui->pbStart->setEnabled(hasEnded);
    if (!hasEnded)
        return;
    sampleTimer.stop();
    updateTimer.start(drive::idleUpdatePeriodMs, Qt::PreciseTimer, this);
    runNextFlightPathPoint();
}

void SynchronisedDriveTool::runNextFlightPathPoint()
{
    const int current = ui->pbStart->property(drive::property::RunFlightPath).toInt();
    const int next = drive::saturatedSum(current, 1);
    if (next < 0 || next >= flightPath.size())
        return;
    ui->pbStart->setProperty(drive::property::RunFlightPath, next);
    setTargetPosition(flightPath.at(next), QPoint(0, 0));
    ui->pbStart->click();
}

void SynchronisedDriveTool::trimTrace()
{
    const int surplus = traceSeries->count() - ui->spTraces->value();
    if (surplus > 0)
        trace()->removeOldest(surplus);
    if (tracePoints.size() > drive::historyCapacity)
        tracePoints.remove(0, tracePoints.size() - drive::historyCapacity);
}
