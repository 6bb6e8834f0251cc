#include "ModuleRequests.h"
#include "Positions.h"
#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

namespace {

/// Stops in a row for starts that come in the middle of them. A host may press start without end,
/// so that the last one lets none begin.
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

/// Moves the marker; the next update tick writes the target to the requests. `outer` says in which
/// directions a drag pushes past the edge of the plot area, y downward.
void SynchronisedDriveTool::setTargetPosition(QPointF point, QPoint outer)
{
    if (!isComplete())
        return;
    if (drive::isFinite(point) && !drive::samePoint(point, target())) {
        ++begun.picks;
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
    if (!isComplete() || begun.stopsWithoutStart > 0)
        return;
    ++begun.starts;
    updateTimer.start(drive::movingUpdatePeriodMs, Qt::PreciseTimer, this);

    ModuleRequests requests(this, motorByte());
    const int m0Vmax = requests.read(&Tool::m0VmaxRegister);
    const int m1Vmax = requests.read(&Tool::m1VmaxRegister);
    requests.obeyStop(true);
    requests.write(&Tool::m0VmaxRegister, 0);
    requests.write(&Tool::m1VmaxRegister, 0);
    requests.write(&Tool::rampModeRegister, drive::rampModePositioning);
    // Axis 1's target goes out before the change of the mode and again behind it. Keep both.
    requests.writeField(&Tool::m1XtargetWidget, requests.target().y());
    requests.write(&Tool::rampModeRegister, drive::rampModeSynchronised);
    requests.writeField(&Tool::m0XtargetWidget, requests.target().x());
    requests.writeField(&Tool::m1XtargetWidget, requests.target().y());
    requests.obeyStop(false);
    requests.write(&Tool::m0VmaxRegister, m0Vmax);
    requests.write(&Tool::m1VmaxRegister, m1Vmax);
    if (requests.isToolGone())
        return;

    ui->pbStart->setEnabled(false);
    pendingSamples = {actual()};
    sampleTimer.start(drive::samplePeriodMs, Qt::PreciseTimer, this);
    // The request in whose middle stop was pressed may have reached the module behind the stop's.
    if (requests.wasStopPressed())
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
    for (int i = 1; i <= mostStops; ++i) {
        const int isLast = i == mostStops ? 1 : 0;
        const unsigned int starts = begun.starts;
        begun.stopsWithoutStart += isLast;
        stop();
        if (!self)
            return;
        begun.stopsWithoutStart -= isLast;
        if (begun.starts == starts)
            return;
    }
}

void SynchronisedDriveTool::stop()
{
    ++begun.stops;
    endFlightPath();
    ModuleRequests requests(this, motorByte());
    const QPointF here = actual();
    setTargetPosition(here, QPoint(0, 0));
    requests.writeField(&Tool::m0XtargetWidget, here.x());
    requests.writeField(&Tool::m1XtargetWidget, here.y());
    requests.write(&Tool::rampModeRegister, drive::rampModePositioning);
    if (!requests.isToolGone())
        endFlightPath();
}

/// Both at a stop's head, so that no end of a leg that is found in the middle of it drives on, and
/// at its end, for a path that was begun in the middle of it.
void SynchronisedDriveTool::endFlightPath()
{
    ui->pbStart->setProperty(drive::property::RunFlightPath, flightPath.size());
}
