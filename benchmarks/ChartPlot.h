#pragma once

#include "CurvePlot.h"

#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>

/// A line series in a plain chart view, its plot area where the tool has its own.
class ChartPlot : public CurvePlot
{
public:
    ChartPlot(const PlotLook &look, SeriesChange change);

    void setPoints(const QVector<QPointF> &points) override;
    harness::Cost advance(const QVector<QPointF> &added) override;

    /// Shows another part of the plane. Not a part of any measurement.
    void setRange(const QRectF &range);
    /// What it takes to show these points.
    harness::Cost replace(const QVector<QPointF> &points);

private:
    void appendEach(const QVector<QPointF> &added);

    SeriesChange change;
    QtCharts::QChartView view;
    QtCharts::QLineSeries *series;
    QtCharts::QValueAxis *axisX;
    QtCharts::QValueAxis *axisY;
    harness::PaintWatch paints;
};
