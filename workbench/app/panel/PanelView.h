#pragma once

#include <QPoint>
#include <QVector>

namespace workbench {

/// The part of the plane that a chart shows, in position units; the limits are included.
struct PanelView
{
    int left = 0;
    int right = 0;
    int bottom = 0;
    int top = 0;

    bool contains(const QPoint &point) const;
    bool operator==(const PanelView &other) const;
};

/// `view` when it shows all the points, and else one that shows them and everything that `view`
/// shows, with a margin around the points, within `widest`. Limits are multiples of 256.
PanelView widened(const PanelView &view, const QVector<QPoint> &points, const PanelView &widest);

/// The closest that the panel can look at a point, within `widest`.
PanelView closeUp(const QPoint &point, const PanelView &widest);

} // namespace workbench
