#include "SynchronisedDriveTool.h"

#include "PixelMap.h"
#include "Positions.h"
#include "ToolConstants.h"
#include "TraceSeries.h"
#include "TraceThinning.h"
#include "ui_SynchronisedDriveTool.h"

#include <QGuiApplication>
#include <QWheelEvent>
#include <QtCharts/QChart>
#include <QtCharts/QLineSeries>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

/// A range set by a zoom goes into the spin boxes, whose own handlers may move it further, and
/// comes back as whole numbers.
void SynchronisedDriveTool::rangeChanged(const Limits &limits, Coordinate of, double min,
                                         double max)
{
    const TraceRangeChange change(traceSeries);
    redrawTrace([min, max, of](const QPointF &point) {
        return min <= (point.*of)() && (point.*of)() <= max;
    });
    limits.upper->setValue(drive::truncated(max));
    limits.lower->setValue(drive::truncated(min));
    limits.axis->setRange(limits.lower->value(), limits.upper->value());
}

/// Draws the history anew, thinned for the present scale, without the points outside the range that
/// changed. The scale is taken now; the history is gone through when the last of the changes that
/// set each other off is done.
template <typename Accepts>
void SynchronisedDriveTool::redrawTrace(const Accepts &isInRange)
{
    const auto map = drive::PixelMap::of(chart, traceSeries);
    trace()->redraw([map, history = tracePoints, from = map.pixel(actual()), isInRange] {
        return drive::thinned(history, from, map, isInRange);
    });
}

/// Zooms with Ctrl alone held. The position is the panel's and is used as the chart's as it stands;
/// no turn at all counts as zooming in. Neither is to be mended: the host's users know both.
void SynchronisedDriveTool::wheelEvent(QWheelEvent *ev)
{
    if (!isComplete() || !ev || QGuiApplication::keyboardModifiers() != Qt::ControlModifier)
        return;
    // The single delta and the position under their old names: the new ones are not in Qt 5.12.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    const QPointer<QPushButton> button(ev->delta() < 0 ? ui->btnZoomOut : ui->btnZoomIn);
    button->setProperty(drive::property::ZoomPoint, drive::rounded(ev->posF()));
    QT_WARNING_POP
    button->click();
    if (button)
        button->setProperty(drive::property::ZoomPoint, QVariant());
    ev->accept();
}

/// Zooms as the sending button says. With the wheel the value under the pointer stays where it is;
/// otherwise the view is centred on the actual position.
void SynchronisedDriveTool::zoom()
{
    if (!isComplete())
        return;
    const TraceRangeChange change(traceSeries);
    const QObject *button = sender();
    const QVariant wheelAt = button ? button->property(drive::property::ZoomPoint) : QVariant();
    const QPoint before = drive::rounded(chart->mapToValue(wheelAt.toPointF()));
    if (button == ui->btnZoomOut)
        chart->zoomOut();
    else if (button == ui->btnZoomIn)
        chart->zoomIn();

    QPoint reference = before;
    QPoint centre = drive::rounded(chart->mapToValue(wheelAt.toPointF()));
    if (!wheelAt.isValid()) {
        reference = drive::rounded(actual());
        centre = {(ui->spM0max->value() + ui->spM0min->value()) / 2,
                  (ui->spM1min->value() + ui->spM1max->value()) / 2};
    }
    shiftLimits(horizontal(), qint64(reference.x()) - centre.x());
    shiftLimits(vertical(), qint64(reference.y()) - centre.y());
}

/// By position units; only when it is by enough not to jitter.
void SynchronisedDriveTool::shiftLimits(const Limits &limits, qint64 by)
{
    if (qAbs(by) <= drive::zoomShiftThreshold)
        return;
    const auto shifted = [by](int limit) { return drive::truncated(double(limit + by)); };
    // Both are read before the first one moves the other's bound.
    const int lower = limits.lower->value();
    limits.upper->setValue(shifted(limits.upper->value()));
    limits.lower->setValue(shifted(lower));
}

/// The button is a toggle on purpose; each click clears.
void SynchronisedDriveTool::on_btnClearTraces_clicked()
{
    if (!isComplete())
        return;
    trace()->setPoints({actual()});
    tracePoints = {actual()};
}
