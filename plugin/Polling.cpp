#include "SynchronisedDriveTool.h"

#include "Positions.h"
#include "ToolConstants.h"
#include "TraceSeries.h"
#include "TraceThinning.h"
#include "ui_SynchronisedDriveTool.h"

#include "CommandHandlerInterface.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegister.h"

#include <QTimerEvent>
#include <QtCharts/QChart>
#include <QtCharts/QLineSeries>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

namespace {

/// The module's user function that answers with both positions, and the 32-bit value that goes out
/// with it, least significant byte first.
constexpr unsigned char readPositionsFunction = 0xFD;
constexpr unsigned char readPositionsRequest[] = {0x00, 0x48, 0x00, 0x00};

/// Not 0, so that a velocity that could not be read does not end a move.
constexpr int unknownVelocity = 1;

/// A coordinate as register widgets take it: negative ones as 64-bit two's complement.
unsigned long long widgetValue(double coordinate)
{
    return static_cast<unsigned long long>(drive::truncated64(coordinate));
}

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

/// Moves a limit, where the position has passed it, to one tick beyond the position.
void keepBetween(double position, QSpinBox *lower, QSpinBox *upper, int tickCount)
{
    const int low = lower->value();
    const int high = upper->value();
    const int step = (high - low) / (tickCount - 1);
    // A host that follows the limits may delete the tool.
    const QPointer<QSpinBox> guard(upper);
    if (low > position)
        lower->setValue(drive::truncated(position - step));
    if (guard && position > high)
        upper->setValue(drive::truncated(position + step));
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
    const QPointer<SynchronisedDriveTool> self(this);
    drive::PositionReply reply{readPositionsRequest[2], readPositionsRequest[1],
                               readPositionsRequest[0], 0};
    if (CommandHandlerInterface *handler = commandHandler())
        handler->setCircularMode(true);
    if (!self)
        return;
    reply.value = static_cast<unsigned int>(
        userFunction(&reply.high, &reply.middle, readPositionsFunction, 0));
    if (!self)
        return;
    if (CommandHandlerInterface *handler = commandHandler())
        handler->setCircularMode(false);
    if (!self)
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
    const QPointer<SynchronisedDriveTool> self(this);
    const TraceChange change(trace());
    if (!writeNewTarget())
        return;
    const bool isMoving = !ui->pbStart->isEnabledTo(this);
    if (pendingSamples.size() > 1)
        drawSamples();
    else if (isMoving)
        checkEndOfMove();
    if (self)
        trimTrace();
}

/// False when the tool is gone.
bool SynchronisedDriveTool::writeNewTarget()
{
    if (!targetSeries->property(drive::property::NewTarget).toBool())
        return true;
    const QPointer<SynchronisedDriveTool> self(this);
    const QPointF written = target();
    setSignalsBlocked(m0XtargetWidget, true);
    setSignalsBlocked(m1XtargetWidget, true);
    if (m0XtargetWidget)
        m0XtargetWidget->setAndUpdateValue(widgetValue(written.x()));
    const auto isCurrent = [&] { return self && drive::samePoint(self->target(), written); };
    if (isCurrent() && m1XtargetWidget)
        m1XtargetWidget->setAndUpdateValue(widgetValue(written.y()));
    if (!self)
        return false;
    setSignalsBlocked(m0XtargetWidget, false);
    setSignalsBlocked(m1XtargetWidget, false);
    // A target picked while the host waited for the module goes out with the next tick.
    if (isCurrent())
        targetSeries->setProperty(drive::property::NewTarget, false);
    return true;
}

/// Draws what was sampled since the last time.
void SynchronisedDriveTool::drawSamples()
{
    const QPointer<SynchronisedDriveTool> self(this);
    const QPointF newest = pendingSamples.constLast();
    pendingSamples.removeFirst();
    appendToTrace(pendingSamples);
    actualSeries->replace(0, newest);
    // A host that follows the chart may have deleted the tool.
    if (!self)
        return;
    pendingSamples = {actual()};

    if (m0XactualWidget)
        m0XactualWidget->setAndUpdateValue(widgetValue(newest.x()));
    if (self && m1XactualWidget)
        m1XactualWidget->setAndUpdateValue(widgetValue(newest.y()));
    if (self)
        keepInView(newest);
}

void SynchronisedDriveTool::appendToTrace(const QVector<QPointF> &points)
{
    QVector<QPointF> kept;
    auto first = points.cbegin();
    if (traceSeries->count() == 0)
        kept.append(*first++);
    const QPointF last =
        kept.isEmpty() ? traceSeries->at(traceSeries->count() - 1) : kept.constLast();
    drive::appendThinned(
        kept, first, points.cend(), tracePixel(last),
        [this](const QPointF &point) { return tracePixel(point); },
        [](const QPointF &) { return true; });
    if (!kept.isEmpty())
        trace()->appendPoints(kept);
}

QPoint SynchronisedDriveTool::tracePixel(const QPointF &point) const
{
    return drive::rounded(chart->mapToPosition(point, traceSeries));
}

/// The step is a whole number here, unlike where a drag pushes the limits; meant so.
void SynchronisedDriveTool::keepInView(const QPointF &point)
{
    const QPointer<SynchronisedDriveTool> self(this);
    keepBetween(point.x(), ui->spM0min, ui->spM0max, axisX->tickCount());
    if (self)
        keepBetween(point.y(), ui->spM1min, ui->spM1max, axisY->tickCount());
}

/// A move has ended when nothing new was sampled since the last tick and both axes stand still.
void SynchronisedDriveTool::checkEndOfMove()
{
    const uint check = ui->pbStart->property(drive::property::EndCheck).toUInt() + 1;
    ui->pbStart->setProperty(drive::property::EndCheck, check);
    int m0Velocity = unknownVelocity;
    int m1Velocity = unknownVelocity;
    // Motor 0, whichever motor the tool serves: meant so.
    if (!readRegister(m0VactualRegister, 0, &m0Velocity) ||
        !readRegister(m1VactualRegister, 0, &m1Velocity))
        return;
    // A host that handles events while it waits may have let a later look find the end, or have
    // hidden the tool, which then finds the end when it is shown again.
    if (ui->pbStart->property(drive::property::EndCheck).toUInt() != check ||
        !updateTimer.isActive())
        return;
    // While the host has the whole tool disabled a flight path could not go on, so nothing ends.
    const bool hasEnded = m0Velocity == 0 && m1Velocity == 0 && isEnabled();
    const QPointer<SynchronisedDriveTool> self(this);
    ui->pbStart->setEnabled(hasEnded);
    if (!self || !hasEnded)
        return;
    sampleTimer.stop();
    updateTimer.start(drive::idleUpdatePeriodMs, Qt::PreciseTimer, this);
    runNextFlightPathPoint();
}

/// A stop that is still being carried out ends the flight path.
void SynchronisedDriveTool::runNextFlightPathPoint()
{
    if (ui->pbStop->property(drive::property::Stopping).toBool())
        return;
    const int current = ui->pbStart->property(drive::property::RunFlightPath).toInt();
    const int next = drive::saturatedSum(current, 1);
    if (next < 0 || next >= flightPath.size())
        return;
    ui->pbStart->setProperty(drive::property::RunFlightPath, next);
    const QPointer<SynchronisedDriveTool> self(this);
    setTargetPosition(flightPath.at(next), QPoint(0, 0));
    if (self)
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
