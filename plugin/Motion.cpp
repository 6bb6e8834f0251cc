#include "ModuleRequests.h"
#include "Positions.h"
#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

namespace {

/// Stops in a row for starts that come in the middle of them: a host may press start without end.
constexpr int mostStops = 3;

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
    if (!isComplete())
        return;
    ++begun.starts;
    updateTimer.start(drive::movingUpdatePeriodMs, Qt::PreciseTimer, this);

    ModuleRequests chip(this, motorByte());
    const int m0Vmax = chip.read(&Tool::m0VmaxRegister);
    const int m1Vmax = chip.read(&Tool::m1VmaxRegister);
    chip.obeyStop(true);
    chip.write(&Tool::m0VmaxRegister, 0);
    chip.write(&Tool::m1VmaxRegister, 0);
    chip.write(&Tool::rampModeRegister, drive::rampModePositioning);
    // Axis 1's target goes out before the change of the mode and again behind it. Keep both.
    chip.writeField(&Tool::m1XtargetWidget, chip.target().y());
    chip.write(&Tool::rampModeRegister, drive::rampModeSynchronised);
    chip.writeField(&Tool::m0XtargetWidget, chip.target().x());
    chip.writeField(&Tool::m1XtargetWidget, chip.target().y());
    chip.obeyStop(false);
    chip.write(&Tool::m0VmaxRegister, m0Vmax);
    chip.write(&Tool::m1VmaxRegister, m1Vmax);
    if (chip.isToolGone())
        return;

    ui->pbStart->setEnabled(false);
    pendingSamples = {actual()};
    sampleTimer.start(drive::samplePeriodMs, Qt::PreciseTimer, this);
    // The request in whose middle stop was pressed reached the module behind the stop's own.
    if (chip.isStopped())
        on_pbStop_clicked();
}

/// Halts the axes by driving both to where they were drawn last. The polling cycle finds the end of
/// the move. A start pressed in the middle has written between the stop's own requests, so that the
/// stop is carried out again.
void SynchronisedDriveTool::on_pbStop_clicked()
{
    if (!isComplete())
        return;
    const QPointer<SynchronisedDriveTool> self(this);
    for (int i = 0; i < mostStops; ++i) {
        const unsigned int starts = begun.starts;
        stop();
        if (!self || begun.starts == starts)
            return;
    }
}

void SynchronisedDriveTool::stop()
{
    ++begun.stops;
    endFlightPath();
    ModuleRequests chip(this, motorByte());
    const QPointF here = actual();
    setTargetPosition(here, QPoint(0, 0));
    chip.writeField(&Tool::m0XtargetWidget, here.x());
    chip.writeField(&Tool::m1XtargetWidget, here.y());
    chip.write(&Tool::rampModeRegister, drive::rampModePositioning);
    if (!chip.isToolGone())
        endFlightPath();
}

/// Both at a stop's head, so that no end of a leg that is found in the middle of it drives on, and
/// at its end, for a path that was begun in the middle of it.
void SynchronisedDriveTool::endFlightPath()
{
    ui->pbStart->setProperty(drive::property::RunFlightPath, flightPath.size());
}
