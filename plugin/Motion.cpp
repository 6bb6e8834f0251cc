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
    if (!ui)
        return;
    if (drive::isFinite(point) && !drive::samePoint(point, target())) {
        targetSeries->replace(0, point);
        targetSeries->setProperty(drive::property::NewTarget, true);
    }
    pushLimits(outer);
}

/// Widens the axes by one tick in each direction in which `outer` is not zero.
void SynchronisedDriveTool::pushLimits(QPoint outer)
{
    const auto push = [](QSpinBox *limit, double step) {
        limit->setValue(drive::truncated(limit->value() + step));
    };
    if (outer.x() > 0)
        push(ui->spM0max, tickStep(axisX));
    else if (outer.x() < 0)
        push(ui->spM0min, -tickStep(axisX));
    if (outer.y() < 0)
        push(ui->spM1max, tickStep(axisY));
    else if (outer.y() > 0)
        push(ui->spM1min, -tickStep(axisY));
}

void SynchronisedDriveTool::on_pbStart_clicked()
{
    if (!ui)
        return;
    updateTimer.start(drive::movingUpdatePeriodMs, Qt::PreciseTimer, this);

    int m0Vmax = 0;
    int m1Vmax = 0;
    const bool isLoaded = readRegister(m0VmaxRegister, motorByte(), &m0Vmax) &&
                          readRegister(m1VmaxRegister, motorByte(), &m1Vmax) && loadTargets() &&
                          writeRegister(m0VmaxRegister, m0Vmax) &&
                          writeRegister(m1VmaxRegister, m1Vmax);
    if (!isLoaded)
        return;

    ui->pbStart->setEnabled(false);
    pendingSamples = {actual()};
    sampleTimer.start(drive::samplePeriodMs, Qt::PreciseTimer, this);
}

/// Loads both targets while both axes are held at velocity 0. False when the tool is gone.
bool SynchronisedDriveTool::loadTargets()
{
    // Axis 1's target goes out on both sides of the mode change: meant so.
    return writeRegister(m0VmaxRegister, 0) && writeRegister(m1VmaxRegister, 0) &&
           writeRegister(rampModeRegister, drive::rampModePositioning) &&
           writeField(m1XtargetWidget, target().y()) &&
           writeRegister(rampModeRegister, drive::rampModeSynchronised) &&
           writeField(m0XtargetWidget, target().x()) && writeField(m1XtargetWidget, target().y());
}

/// Halts the axes by driving both to where they are. The polling cycle finds the end of the move.
void SynchronisedDriveTool::on_pbStop_clicked()
{
    if (!ui)
        return;
    const QPointF here = actual();
    setTargetPosition(here, QPoint(0, 0));
    const bool isStopped = writeField(m0XtargetWidget, here.x()) &&
                           writeField(m1XtargetWidget, here.y()) &&
                           writeRegister(rampModeRegister, drive::rampModePositioning);
    if (isStopped)
        ui->pbStart->setProperty(drive::property::RunFlightPath, flightPath.size());
}
