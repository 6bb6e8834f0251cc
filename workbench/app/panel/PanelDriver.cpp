#include "PanelDriver.h"

#include "MouseClick.h"

#include <QAction>
#include <QLineF>
#include <QMenu>
#include <QSpinBox>
#include <QToolButton>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QXYSeries>
#include <QtMath>

namespace workbench {

namespace {

/// How far from a point its nearest pixel within the plot area may be: a point on the very edge is
/// less than a pixel away in each direction.
constexpr double pixelReach = 1.42;

QPoint newestPoint(const QtCharts::QXYSeries *series)
{
    return series && series->count() > 0 ? series->at(series->count() - 1).toPoint() : QPoint();
}

/// The pixel within `area`, which is a few pixels large at least.
QPoint nearestPixel(const QPointF &point, const QRectF &area)
{
    return {qBound(qCeil(area.left()), qRound(point.x()), qFloor(area.right())),
            qBound(qCeil(area.top()), qRound(point.y()), qFloor(area.bottom()))};
}

/// The order keeps each limit clear of the other one, which the spin boxes insist on.
void setLimits(QSpinBox *lower, QSpinBox *upper, int low, int high)
{
    lower->setValue(qMin(lower->value(), low));
    upper->setValue(high);
    lower->setValue(low);
}

} // namespace

PanelDriver::PanelDriver(QWidget *panel)
    : chartView(panel->findChild<QtCharts::QChartView *>())
    , start(panel->findChild<QToolButton *>(QStringLiteral("pbStart")))
    , stop(panel->findChild<QAbstractButton *>(QStringLiteral("pbStop")))
    , clear(panel->findChild<QAbstractButton *>(QStringLiteral("btnClearTraces")))
    , left(panel->findChild<QSpinBox *>(QStringLiteral("spM0min")))
    , right(panel->findChild<QSpinBox *>(QStringLiteral("spM0max")))
    , bottom(panel->findChild<QSpinBox *>(QStringLiteral("spM1min")))
    , top(panel->findChild<QSpinBox *>(QStringLiteral("spM1max")))
{
}

QString PanelDriver::missingPart() const
{
    if (!start || !stop)
        return QStringLiteral("start or stop button");
    if (!clear)
        return QStringLiteral("clear button");
    if (!left || !right || !bottom || !top)
        return QStringLiteral("limits of the axes");
    if (!chartView || !series(QStringLiteral("target position")) ||
        !series(QStringLiteral("actual position")))
        return QStringLiteral("chart");
    return QString();
}

QtCharts::QXYSeries *PanelDriver::series(const QString &name) const
{
    if (!chartView)
        return nullptr;
    const auto all = chartView->chart()->series();
    for (QtCharts::QAbstractSeries *const candidate : all) {
        if (candidate->name() == name)
            return qobject_cast<QtCharts::QXYSeries *>(candidate);
    }
    return nullptr;
}

QPoint PanelDriver::target() const
{
    return newestPoint(series(QStringLiteral("target position")));
}

QPoint PanelDriver::shownPosition() const
{
    return newestPoint(series(QStringLiteral("actual position")));
}

bool PanelDriver::isMoving() const
{
    return start && !start->isEnabled();
}

PanelView PanelDriver::view() const
{
    return {left->value(), right->value(), bottom->value(), top->value()};
}

void PanelDriver::setView(const PanelView &view)
{
    setLimits(left, right, view.left, view.right);
    setLimits(bottom, top, view.bottom, view.top);
}

PanelView PanelDriver::widestView() const
{
    // The inner ends of the spin boxes' ranges follow the opposite limit, the outer ones are fixed.
    return {left->minimum(), right->maximum(), bottom->minimum(), top->maximum()};
}

QRectF PanelDriver::plotArea() const
{
    return chartView ? chartView->chart()->plotArea() : QRectF();
}

bool PanelDriver::pick(const QPoint &point)
{
    if (!chartView)
        return false;
    const QPointF ideal = chartView->chart()->mapToPosition(point);
    const QPoint pixel = nearestPixel(ideal, plotArea());
    if (QLineF(ideal, pixel).length() > pixelReach)
        return false;
    click(chartView->viewport(), pixel);
    return true;
}

bool PanelDriver::pressStart()
{
    return press(start);
}

bool PanelDriver::pressStop()
{
    return press(stop);
}

bool PanelDriver::pressClear()
{
    return press(clear);
}

QAction *PanelDriver::menuEntry(const QString &text) const
{
    if (!start || !start->menu())
        return nullptr;
    const auto entries = start->menu()->actions();
    for (QAction *const entry : entries) {
        if (entry->text() == text)
            return entry;
    }
    return nullptr;
}

int PanelDriver::flightPathIndex() const
{
    return start ? start->property("RunFp").toInt() : 0;
}

} // namespace workbench
