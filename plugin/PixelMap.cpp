#include "PixelMap.h"

#include <QRectF>
#include <QtCharts/QChart>
#include <QtCharts/QXYSeries>
#include <QtMath>

#include <cmath>

namespace drive {
namespace {

/// A value so large that what is added to its multiple of the scale is lost, and that leaves the
/// scale's digits as they are.
const double hugeValue = std::ldexp(1.0, 200);

const QPointF probes[] = {
    {0, 0}, {1, -1}, {-255.5, 311.25}, {12345.678, -9876.543}, {-8388608, 8388607}};

/// What the chart's lower limit can be, given what it is but for rounding.
QVector<double> candidates(double estimate)
{
    constexpr double fraction = 1048576.0;
    return {estimate, std::round(estimate), std::round(estimate * fraction) / fraction,
            std::nextafter(estimate, -HUGE_VAL), std::nextafter(estimate, HUGE_VAL)};
}

} // namespace

std::optional<PixelMap> PixelMap::of(QtCharts::QChart *chart, QtCharts::QXYSeries *series)
{
    const QRectF plot = chart->plotArea();
    const QPointF scaled = chart->mapToPosition(QPointF(hugeValue, hugeValue), series);
    const QPointF lowest =
        chart->mapToValue(QPointF(plot.left(), plot.top() + plot.height()), series);
    PixelMap map;
    map.left = plot.left();
    map.top = plot.top();
    map.height = plot.height();
    map.scaleX = scaled.x() / hugeValue;
    map.scaleY = -scaled.y() / hugeValue;
    if (!(map.scaleX > 0) || !(map.scaleY > 0) || !qIsFinite(lowest.x()) || !qIsFinite(lowest.y()))
        return std::nullopt;

    const auto agrees = [&](double (QPointF::*coordinate)() const) {
        for (const QPointF &probe : probes) {
            if ((map.position(probe).*coordinate)() !=
                (chart->mapToPosition(probe, series).*coordinate)())
                return false;
        }
        return true;
    };
    const auto settle = [&](double &limit, double estimate, double (QPointF::*coordinate)() const) {
        for (double candidate : candidates(estimate)) {
            limit = candidate;
            if (agrees(coordinate))
                return true;
        }
        return false;
    };
    if (!settle(map.minX, lowest.x(), &QPointF::x) || !settle(map.minY, lowest.y(), &QPointF::y))
        return std::nullopt;
    return map;
}

bool PixelMap::operator==(const PixelMap &other) const
{
    return left == other.left && top == other.top && height == other.height && minX == other.minX &&
           minY == other.minY && scaleX == other.scaleX && scaleY == other.scaleY;
}

} // namespace drive
