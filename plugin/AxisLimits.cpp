#include "SynchronisedDriveTool.h"

#include "Positions.h"
#include "ToolConstants.h"
#include "TraceSeries.h"
#include "ui_SynchronisedDriveTool.h"

#include <QtCharts/QValueAxis>

namespace {

// Setting a snapped value runs the same handler again, then with a value on the grid.

void lowerLimitChanged(int limit, QSpinBox *lower, QSpinBox *upper, QtCharts::QValueAxis *axis)
{
    if (!drive::isOnGrid(limit)) {
        lower->setValue(drive::snappedLowerLimit(limit));
    } else {
        axis->setMin(limit);
        upper->setMinimum(drive::saturatedSum(limit, drive::minimumSpan));
    }
}

void upperLimitChanged(int limit, QSpinBox *lower, QSpinBox *upper, QtCharts::QValueAxis *axis)
{
    if (!drive::isOnGrid(limit)) {
        upper->setValue(drive::snappedUpperLimit(limit));
    } else {
        axis->setMax(limit);
        lower->setMaximum(drive::saturatedSum(limit, -drive::minimumSpan));
    }
}

} // namespace

void SynchronisedDriveTool::on_spM0min_valueChanged(int arg1)
{
    if (!isComplete())
        return;
    const TraceRangeChange change(traceSeries);
    lowerLimitChanged(arg1, ui->spM0min, ui->spM0max, axisX);
}

void SynchronisedDriveTool::on_spM0max_valueChanged(int arg1)
{
    if (!isComplete())
        return;
    const TraceRangeChange change(traceSeries);
    upperLimitChanged(arg1, ui->spM0min, ui->spM0max, axisX);
}

void SynchronisedDriveTool::on_spM1min_valueChanged(int arg1)
{
    if (!isComplete())
        return;
    const TraceRangeChange change(traceSeries);
    lowerLimitChanged(arg1, ui->spM1min, ui->spM1max, axisY);
}

void SynchronisedDriveTool::on_spM1max_valueChanged(int arg1)
{
    if (!isComplete())
        return;
    const TraceRangeChange change(traceSeries);
    upperLimitChanged(arg1, ui->spM1min, ui->spM1max, axisY);
}
