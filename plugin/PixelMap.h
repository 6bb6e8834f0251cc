#pragma once

#include "Positions.h"

#include <QRectF>

namespace QtCharts {
class QChart;
class QXYSeries;
} // namespace QtCharts

namespace drive {

/// How a chart with two value axes maps a series' values to pixels at one moment. That is an affine
/// map, so a long history needs no call into the chart for each of its points, and a map taken at
/// one moment can be used at a later one.
class PixelMap
{
public:
    /// The map as it is now. Between limits that are whole numbers it gives the very same doubles
    /// as the chart's own mapping, between others the same but for the last bits. Without a plot
    /// area everything is in one place.
    static PixelMap of(QtCharts::QChart *chart, QtCharts::QXYSeries *series);

    QPointF position(const QPointF &value) const
    {
        return {plot.left() + (value.x() - lowest.x()) * scale.x(),
                plot.top() + (plot.height() - (value.y() - lowest.y()) * scale.y())};
    }
    QPoint pixel(const QPointF &value) const { return rounded(position(value)); }

    bool operator==(const PixelMap &other) const
    {
        return plot == other.plot && lowest == other.lowest && scale == other.scale;
    }

private:
    QRectF plot;
    QPointF lowest;
    QPointF scale;
};

} // namespace drive
