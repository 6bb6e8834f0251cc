#pragma once

#include <QPolygonF>

/// The area between the x axis and a line through the corners; below the axis it counts negative.
inline double areaBelow(const QPolygonF &corners)
{
    double area = 0;
    for (int i = 1; i < corners.size(); ++i)
        area += (corners[i].x() - corners[i - 1].x()) * (corners[i].y() + corners[i - 1].y()) / 2;
    return area;
}
