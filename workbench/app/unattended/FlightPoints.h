#pragma once

#include <QPoint>
#include <QPointF>
#include <QString>
#include <QVector>

namespace workbench {

/// Where the axes go for the points of a flight path: the panel drops fractions when it writes a
/// target to the chip, toward zero. All points must be within range.
QVector<QPoint> drivenPoints(const QVector<QPointF> &path);

/// The first point that is out of the chip's range of positions, by name and number, or empty.
QString outOfRange(const QVector<QPointF> &path);

/// What there is to say about points with fractions; empty when there are none.
QString fractionNote(const QVector<QPointF> &path);

} // namespace workbench
