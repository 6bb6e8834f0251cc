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

/// What the chart's lower limit can be, given what it is but for rounding. Likely ones first: a
/// neighbour of the right one may agree with it wherever one looks.
QVector<double> candidates(double estimate)
{
    constexpr double fraction = 1048576.0;
    constexpr int neighbours = 4;
    QVector<double> all{std::round(estimate), std::round(estimate * fraction) / fraction, estimate};
    double below = estimate;
    double above = estimate;
    for (int i = 0; i < neighbours; ++i) {
        below = std::nextafter(below, -HUGE_VAL);
        above = std::nextafter(above, HUGE_VAL);
        all << below << above;
    }
    return all;
}

/// Values across and around a range that begins at `lowest`.
QVector<QPointF> probes(const QPointF &lowest, const QSizeF &range)
{
    constexpr int perRange = 16;
    constexpr double odd = 0.3183;
    QVector<QPointF> all;
    for (int i = -perRange / 2; i <= perRange * 3 / 2; ++i) {
        const double part = (i + odd) / perRange;
        all << QPointF(std::round(lowest.x() + part * range.width()),
                       std::round(lowest.y() + part * range.height()));
    }
    return all;
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

    const QVector<QPointF> values =
        probes(lowest, QSizeF(plot.width() / map.scaleX, plot.height() / map.scaleY));
    const auto agrees = [&](double (QPointF::*coordinate)() const) {
        for (const QPointF &probe : values) {
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
