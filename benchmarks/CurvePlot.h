#pragma once

#include "Harness.h"

#include <QPen>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QVector>
#include <QWidget>

#include <memory>

class DriveScene;

/// How the tool shows its trace; the alternatives show theirs the same way.
struct PlotLook
{
    QSize view;      ///< pixels
    QRectF plotArea; ///< pixels in the view
    QRectF range;    ///< position units
    QPen pen;

    static PlotLook of(const DriveScene &scene);
};

/// A widget on screen that shows a growing trace as one antialiased curve between two axes: what
/// the tool might use in place of its own chart.
class CurvePlot
{
public:
    virtual ~CurvePlot() = default;

    /// Shows these points from now on. Not a part of any measurement.
    virtual void setPoints(const QVector<QPointF> &points) = 0;

    /// Appends points and drops as many of the oldest.
    virtual harness::Cost advance(const QVector<QPointF> &added) = 0;
};

enum class SeriesChange { OneReplace, AppendEach };

/// A line series in a plain chart view.
std::unique_ptr<CurvePlot> makeChartPlot(const PlotLook &look, SeriesChange change);

/// Null where the library was not found at configuration.
std::unique_ptr<CurvePlot> makeQwtPlot(const PlotLook &look);
std::unique_ptr<CurvePlot> makeCustomPlot(const PlotLook &look);
