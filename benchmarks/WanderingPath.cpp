#include "WanderingPath.h"

#include <cmath>

namespace {

constexpr double stepPixels = 2.0;

// The turning of the path: how sharp, and how long until it turns the other way. Their relation to
// a full turn is irrational enough for the path not to repeat itself.
constexpr double sharpestTurn = 0.05;
constexpr double phaseStep = 0.0137;

/// Share of the area that stays free along each edge.
constexpr double margin = 0.05;

} // namespace

WanderingPath::WanderingPath(const QRectF &whole, const QSizeF &pixels)
    : area(whole.adjusted(margin * whole.width(), margin * whole.height(), -margin * whole.width(),
                          -margin * whole.height()))
    , step(stepPixels * whole.width() / pixels.width(),
           stepPixels * whole.height() / pixels.height())
    , position(area.center())
{
}

QPoint WanderingPath::next()
{
    heading += sharpestTurn * std::sin(phase);
    phase += phaseStep;
    QPointF ahead = position + QPointF(step.x() * std::cos(heading), step.y() * std::sin(heading));
    // Bounces off the edges.
    if (ahead.x() < area.left() || ahead.x() > area.right())
        heading = M_PI - heading;
    if (ahead.y() < area.top() || ahead.y() > area.bottom())
        heading = -heading;
    position += QPointF(step.x() * std::cos(heading), step.y() * std::sin(heading));
    return position.toPoint();
}

QVector<QPointF> WanderingPath::next(int count)
{
    QVector<QPointF> points;
    points.reserve(count);
    for (int i = 0; i < count; ++i)
        points.append(next());
    return points;
}
