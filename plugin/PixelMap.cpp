#include "PixelMap.h"

#include <QtCharts/QChart>
#include <QtCharts/QXYSeries>

#include <cmath>

namespace drive {
namespace {

/// A value so large that what is added to its multiple of the scale is lost, and that leaves the
/// scale's digits as they are.
const double hugeValue = std::ldexp(1.0, 200);

/// A limit out of what it is but for rounding; the tool's own are whole numbers.
double snapped(double limit)
{
    if (!std::isfinite(limit))
        return 0;
    constexpr double rounding = 1e-6;
    const double whole = std::round(limit);
    return std::abs(limit - whole) < rounding ? whole : limit;
}

} // namespace

// The limits are not asked of the axes: between the two changes of a zoom, those lag behind the
// map.
PixelMap PixelMap::of(QtCharts::QChart *chart, QtCharts::QXYSeries *series)
{
    PixelMap map;
    map.plot = chart->plotArea();
    const QPointF huge = chart->mapToPosition(QPointF(hugeValue, hugeValue), series);
    map.scale = {huge.x() / hugeValue, -huge.y() / hugeValue};
    const QPointF corner(map.plot.left(), map.plot.top() + map.plot.height());
    const QPointF lowest = chart->mapToValue(corner, series);
    map.lowest = {snapped(lowest.x()), snapped(lowest.y())};
    return map;
}

} // namespace drive
