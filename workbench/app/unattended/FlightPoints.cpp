#include "FlightPoints.h"

#include "DualAxisMotion.h"
#include "MoveResult.h"

namespace workbench {

namespace {

/// What is left without the fraction is within range.
bool isPosition(double coordinate)
{
    return coordinate > minimumPosition - 1.0 && coordinate < maximumPosition + 1.0;
}

QPoint drivenPoint(const QPointF &point)
{
    return {static_cast<int>(point.x()), static_cast<int>(point.y())};
}

} // namespace

QVector<QPoint> drivenPoints(const QVector<QPointF> &path)
{
    QVector<QPoint> driven;
    driven.reserve(path.size());
    for (const QPointF &point : path)
        driven.append(drivenPoint(point));
    return driven;
}

QString outOfRange(const QVector<QPointF> &path)
{
    for (int i = 0; i < path.size(); ++i) {
        if (!isPosition(path.at(i).x()) || !isPosition(path.at(i).y()))
            return QStringLiteral("point %1 at %2 is out of the chip's range, %3 to %4")
                .arg(i + 1)
                .arg(describe(path.at(i)))
                .arg(minimumPosition)
                .arg(maximumPosition);
    }
    return QString();
}

QString fractionNote(const QVector<QPointF> &path)
{
    int count = 0;
    QPointF first;
    for (const QPointF &point : path) {
        if (drivenPoint(point) != point && count++ == 0)
            first = point;
    }
    if (count == 0)
        return QString();
    return QStringLiteral("%1 of %2 points with fractions, which the panel drops: %3 is driven to "
                          "as %4")
        .arg(count)
        .arg(path.size())
        .arg(describe(first), describe(drivenPoint(first)));
}

QString describe(const QPointF &point)
{
    constexpr int digits = 10;
    return QStringLiteral("%1,%2").arg(point.x(), 0, 'g', digits).arg(point.y(), 0, 'g', digits);
}

} // namespace workbench
