#pragma once

#include "SampleTap.h"

#include <QPointF>
#include <QVector>

namespace workbench {

/// The distance from `point` to the nearest point between `a` and `b`; those two may coincide.
double distanceFromSegment(const QPointF &point, const QPointF &a, const QPointF &b);

/// The largest distance of a sample from the nearest leg of the path through `corners`, of which
/// there is at least one. 0 without samples.
double largestDistanceFromPath(const QVector<Sample> &samples, const QVector<QPointF> &corners);

} // namespace workbench
