#pragma once

#include <QPoint>
#include <QPointF>
#include <QVector>

namespace drive {

/// Those of `points` that `accepts` lets through and that fall on another pixel of the map than the
/// one taken before them. `pixel` is the pixel of what is drawn before the first; a point left out
/// does not move it.
template <typename Map, typename Accepts>
QVector<QPointF> thinned(const QVector<QPointF> &points, QPoint pixel, const Map &map,
                         const Accepts &accepts)
{
    QVector<QPointF> taken;
    for (const QPointF &point : points) {
        const QPoint next = map.pixel(point);
        if (next != pixel && accepts(point)) {
            taken.append(point);
            pixel = next;
        }
    }
    return taken;
}

} // namespace drive
