#include "ChartPlot.h"

#include "DriveScene.h"

#include <QTest>

PlotLook PlotLook::of(const DriveScene &scene)
{
    return {scene.view()->size(), scene.chart()->plotArea(), scene.range(), scene.trace()->pen()};
}

ChartPlot::ChartPlot(const PlotLook &look, SeriesChange way)
    : change(way)
    , series(new QtCharts::QLineSeries)
    , axisX(new QtCharts::QValueAxis)
    , axisY(new QtCharts::QValueAxis)
    , paints(view.viewport())
{
    constexpr int tickCount = 9;
    view.setRenderHint(QPainter::Antialiasing);
    view.chart()->addSeries(series);
    view.chart()->addAxis(axisX, Qt::AlignBottom);
    view.chart()->addAxis(axisY, Qt::AlignLeft);
    for (QtCharts::QValueAxis *axis : {axisX, axisY}) {
        axis->setTickCount(tickCount);
        series->attachAxis(axis);
    }
    series->setPen(look.pen);
    view.chart()->setPlotArea(look.plotArea);
    view.resize(look.view);
    view.show();
    if (!QTest::qWaitForWindowExposed(&view))
        qFatal("The chart does not come on screen.");
    setRange(look.range);
}

void ChartPlot::setRange(const QRectF &range)
{
    axisX->setRange(range.left(), range.right());
    axisY->setRange(range.top(), range.bottom());
    harness::paintPosted();
}

void ChartPlot::setPoints(const QVector<QPointF> &points)
{
    series->replace(points);
    harness::paintPosted();
}

harness::Cost ChartPlot::advance(const QVector<QPointF> &added)
{
    harness::Cost cost;
    cost.model = harness::millisecondsOf([&] {
        if (change == SeriesChange::AppendEach) {
            appendEach(added);
        } else {
            QVector<QPointF> points = series->pointsVector();
            points.remove(0, added.size());
            points += added;
            series->replace(points);
        }
    });
    cost.paint = paints.paint();
    return cost;
}

void ChartPlot::appendEach(const QVector<QPointF> &added)
{
    for (const QPointF &point : added)
        series->append(point);
    series->removePoints(0, added.size());
}

harness::Cost ChartPlot::replace(const QVector<QPointF> &points)
{
    harness::Cost cost;
    cost.model = harness::millisecondsOf([&] { series->replace(points); });
    cost.paint = paints.paint();
    return cost;
}

std::unique_ptr<CurvePlot> makeChartPlot(const PlotLook &look, SeriesChange change)
{
    return std::make_unique<ChartPlot>(look, change);
}
