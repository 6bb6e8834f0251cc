#include "FlightPoints.h"

#include "PositionPacking.h"
#include "Wording.h"

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
            return wording::pointOutOfRange(i + 1, path.at(i));
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
    return wording::fractionsDropped(count, path.size(), first, drivenPoint(first));
}

} // namespace workbench
