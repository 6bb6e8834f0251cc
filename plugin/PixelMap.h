#pragma once

#include <QPointF>

#include <optional>

namespace QtCharts {
class QChart;
class QXYSeries;
} // namespace QtCharts

namespace drive {

/// How a chart maps a series' values to pixels at one moment. Two value axes make that an affine
/// map, so a long history needs no call into the chart for each of its points, and a map taken at
/// one moment can be used at a later one.
class PixelMap
{
public:
    /// The map as it is now. Between limits that are whole numbers it gives the very same doubles
    /// as the chart's own mapping, between others the same but for the last bits. Nothing when it
    /// cannot be made so: no plot area, an empty range, another kind of axis.
    static std::optional<PixelMap> of(QtCharts::QChart *chart, QtCharts::QXYSeries *series);

    QPointF position(const QPointF &value) const
    {
        return {left + (value.x() - minX) * scaleX, top + (height - (value.y() - minY) * scaleY)};
    }

    bool operator==(const PixelMap &other) const;

private:
    double left = 0;
    double top = 0;
    double height = 0;
    double minX = 0;
    double minY = 0;
    double scaleX = 0;
    double scaleY = 0;
};

} // namespace drive
