#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QVector>

/// A smooth path without end that wanders all over an area and never leaves it. Its points are
/// whole position units, and each is about two pixels away from the one before it, so no two
/// successive points share a pixel.
class WanderingPath
{
public:
    /// `area` in position units, shown on `pixels`.
    WanderingPath(const QRectF &area, const QSizeF &pixels);

    QPoint next();
    QVector<QPointF> next(int count);

private:
    QRectF area;
    QPointF step; ///< units for one step along each axis
    QPointF position;
    double heading = 0.3;
    double phase = 0;
};
