#include "SynchronisedDriveTool.h"

#include "Positions.h"
#include "ToolConstants.h"
#include "TraceSeries.h"
#include "ui_SynchronisedDriveTool.h"

#include <QtCharts/QValueAxis>

SynchronisedDriveTool::Limits SynchronisedDriveTool::horizontal() const
{
    return isComplete() ? Limits{ui->spM0min, ui->spM0max, axisX} : Limits{};
}

SynchronisedDriveTool::Limits SynchronisedDriveTool::vertical() const
{
    return isComplete() ? Limits{ui->spM1min, ui->spM1max, axisY} : Limits{};
}

// Setting a snapped value runs the same handler again, then with a value on the grid.

void SynchronisedDriveTool::lowerLimitChanged(const Limits &limits, int value)
{
    if (!limits.axis)
        return;
    const TraceRangeChange change(traceSeries);
    if (!drive::isOnGrid(value)) {
        limits.lower->setValue(drive::snappedLowerLimit(value));
    } else {
        limits.axis->setMin(value);
        limits.upper->setMinimum(drive::saturatedSum(value, drive::minimumSpan));
    }
}

void SynchronisedDriveTool::upperLimitChanged(const Limits &limits, int value)
{
    if (!limits.axis)
        return;
    const TraceRangeChange change(traceSeries);
    if (!drive::isOnGrid(value)) {
        limits.upper->setValue(drive::snappedUpperLimit(value));
    } else {
        limits.axis->setMax(value);
        limits.lower->setMaximum(drive::saturatedSum(value, -drive::minimumSpan));
    }
}

void SynchronisedDriveTool::on_spM0min_valueChanged(int arg1)
{
    lowerLimitChanged(horizontal(), arg1);
}

void SynchronisedDriveTool::on_spM0max_valueChanged(int arg1)
{
    upperLimitChanged(horizontal(), arg1);
}

void SynchronisedDriveTool::on_spM1min_valueChanged(int arg1)
{
    lowerLimitChanged(vertical(), arg1);
}

void SynchronisedDriveTool::on_spM1max_valueChanged(int arg1)
{
    upperLimitChanged(vertical(), arg1);
}
