#pragma once

#include "TraceSeries.h"

/// Points and redraws to try a trace with.
namespace trial {

using Points = QVector<QPointF>;

inline Points row(int count, double y = 0)
{
    Points points;
    for (int i = 0; i < count; ++i)
        points << QPointF(i, y);
    return points;
}

/// A redraw that leaves `points` and counts how often it is worked out.
inline TraceSeries::Redraw leaving(const Points &points, int *count)
{
    return [points, count] {
        ++*count;
        return points;
    };
}

/// What is left when every redraw replaces the points one after another; one that leaves nothing
/// leaves the last point there is.
inline Points replacedInTurn(Points points, const QVector<Points> &all)
{
    for (const Points &kept : all) {
        if (!kept.isEmpty())
            points = kept;
        else if (!points.isEmpty())
            points = {points.constLast()};
    }
    return points;
}

} // namespace trial
