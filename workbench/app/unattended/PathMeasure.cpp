#include "PathMeasure.h"

#include <QLineF>

namespace workbench {

namespace {

double distanceFromPath(const QPointF &point, const QVector<QPointF> &corners)
{
    double nearest = QLineF(point, corners.constFirst()).length();
    for (int leg = 1; leg < corners.size(); ++leg)
        nearest = qMin(nearest, distanceFromSegment(point, corners.at(leg - 1), corners.at(leg)));
    return nearest;
}

} // namespace

double distanceFromSegment(const QPointF &point, const QPointF &a, const QPointF &b)
{
    const QPointF along = b - a;
    const double lengthSquared = QPointF::dotProduct(along, along);
    if (lengthSquared <= 0)
        return QLineF(point, a).length();
    const double share = QPointF::dotProduct(point - a, along) / lengthSquared;
    return QLineF(point, a + along * qBound(0.0, share, 1.0)).length();
}

double largestDistanceFromPath(const QVector<Sample> &samples, const QVector<QPointF> &corners)
{
    double largest = 0;
    for (const Sample &sample : samples)
        largest = qMax(largest, distanceFromPath(sample.position, corners));
    return largest;
}

} // namespace workbench
