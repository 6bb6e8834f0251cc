#include "SynchronisedDriveTool.h"

#include "Positions.h"
#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

#include "XmlValueRegister.h"

#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

namespace {

QPointF lastPoint(const QtCharts::QXYSeries *series)
{
    return series && series->count() > 0 ? series->at(series->count() - 1) : QPointF();
}

/// From one tick of an axis to the next.
double tickStep(const QtCharts::QValueAxis *axis)
{
    return (axis->max() - axis->min()) / (axis->tickCount() - 1);
}

} // namespace

QPointF SynchronisedDriveTool::target() const
{
    return lastPoint(targetSeries);
}

QPointF SynchronisedDriveTool::actual() const
{
    return lastPoint(actualSeries);
}

/// Moves the marker; the next update tick writes the target to the chip. `outer` says in which
/// directions a drag pushes past the edge of the plot area, y downward.
void SynchronisedDriveTool::setTargetPosition(QPointF point, QPoint outer)
{
    if (!isComplete())
        return;
    const QPointer<SynchronisedDriveTool> self(this);
    if (drive::isFinite(point) && !drive::samePoint(point, target())) {
        targetSeries->replace(0, point);
        // A host that follows the chart or the limits may have deleted the tool.
        if (!self)
            return;
        targetSeries->setProperty(drive::property::NewTarget, true);
    }
    pushLimits(outer);
}

/// Widens the axes by one tick in each direction in which `outer` is not zero.
void SynchronisedDriveTool::pushLimits(QPoint outer)
{
    const QPointer<SynchronisedDriveTool> self(this);
    const auto push = [](QSpinBox *limit, double step) {
        limit->setValue(drive::truncated(limit->value() + step));
    };
    if (outer.x() > 0)
        push(ui->spM0max, tickStep(axisX));
    else if (outer.x() < 0)
        push(ui->spM0min, -tickStep(axisX));
    if (!self)
        return;
    if (outer.y() < 0)
        push(ui->spM1max, tickStep(axisY));
    else if (outer.y() > 0)
        push(ui->spM1min, -tickStep(axisY));
}

void SynchronisedDriveTool::on_pbStart_clicked()
{
    if (!isComplete())
        return;
    updateTimer.start(drive::movingUpdatePeriodMs, Qt::PreciseTimer, this);

    const QPointer<SynchronisedDriveTool> self(this);
    ui->pbStop->setProperty(drive::property::StopPressed, false);
    int m0Vmax = 0;
    int m1Vmax = 0;
    if (!readRegister(m0VmaxRegister, motorByte(), &m0Vmax) ||
        !readRegister(m1VmaxRegister, motorByte(), &m1Vmax))
        return;
    loadTargets();
    if (!self || !writeRegister(m0VmaxRegister, m0Vmax) || !writeRegister(m1VmaxRegister, m1Vmax))
        return;

    ui->pbStart->setEnabled(false);
    if (!self)
        return;
    pendingSamples = {actual()};
    sampleTimer.start(drive::samplePeriodMs, Qt::PreciseTimer, this);
    // The request that the stop was pressed in the middle of has reached the module behind the
    // stop's own.
    if (isStopPressed())
        on_pbStop_clicked();
}

/// Loads both targets while both axes are held at velocity 0; no further than a stop that is
/// pressed while the module is asked.
void SynchronisedDriveTool::loadTargets()
{
    const QPointer<SynchronisedDriveTool> self(this);
    const auto goesOn = [&self] { return self && !self->isStopPressed(); };
    // Axis 1's target goes out on both sides of the mode change: meant so.
    static_cast<void>(goesOn() && writeRegister(m0VmaxRegister, 0) && goesOn() &&
                      writeRegister(m1VmaxRegister, 0) && goesOn() &&
                      writeRegister(rampModeRegister, drive::rampModePositioning) && goesOn() &&
                      writeField(m1XtargetWidget, target().y()) && goesOn() &&
                      writeRegister(rampModeRegister, drive::rampModeSynchronised) && goesOn() &&
                      writeField(m0XtargetWidget, target().x()) && goesOn() &&
                      writeField(m1XtargetWidget, target().y()));
}

/// Since the start button was pressed last.
bool SynchronisedDriveTool::isStopPressed() const
{
    return ui->pbStop->property(drive::property::StopPressed).toBool();
}

/// Halts the axes by driving both to where they are. The polling cycle finds the end of the move.
void SynchronisedDriveTool::on_pbStop_clicked()
{
    if (!isComplete())
        return;
    const QPointer<SynchronisedDriveTool> self(this);
    ui->pbStop->setProperty(drive::property::StopPressed, true);
    ui->pbStop->setProperty(drive::property::Stopping, true);
    const QPointF here = actual();
    setTargetPosition(here, QPoint(0, 0));
    if (self && writeField(m0XtargetWidget, here.x()) && writeField(m1XtargetWidget, here.y()))
        writeRegister(rampModeRegister, drive::rampModePositioning);
    if (!self)
        return;
    ui->pbStart->setProperty(drive::property::RunFlightPath, flightPath.size());
    ui->pbStop->setProperty(drive::property::Stopping, false);
    // A start that was pressed meanwhile is stopped as well: it has written between the stop's own
    // requests.
    if (!isStopPressed())
        on_pbStop_clicked();
}
