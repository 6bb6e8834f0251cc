// The library needs the loop macro that the project goes without.
#undef QT_NO_FOREACH

#include "CurvePlot.h"

#include <QTest>

#include <qcustomplot.h>

namespace {

class CustomPlotCurve : public CurvePlot
{
public:
    explicit CustomPlotCurve(const PlotLook &look);

    void setPoints(const QVector<QPointF> &points) override;
    harness::Cost advance(const QVector<QPointF> &added) override;

private:
    void append(const QVector<QPointF> &points);

    QCustomPlot plot;
    QCPCurve *curve;
    double order = 0; ///< of the next point; the curve is sorted by it
    harness::PaintWatch paints;
};

QMargins marginsAround(const QRect &inner, const QSize &outer)
{
    return {inner.left(), inner.top(), outer.width() - inner.left() - inner.width(),
            outer.height() - inner.top() - inner.height()};
}

CustomPlotCurve::CustomPlotCurve(const PlotLook &look)
    : curve(new QCPCurve(plot.xAxis, plot.yAxis))
    , paints(&plot)
{
    curve->setPen(look.pen);
    curve->setAntialiased(true);
    plot.setAntialiasedElement(QCP::aePlottables);
    plot.xAxis->setRange(look.range.left(), look.range.right());
    plot.yAxis->setRange(look.range.top(), look.range.bottom());
    plot.axisRect()->setAutoMargins(QCP::msNone);
    plot.axisRect()->setMargins(marginsAround(look.plotArea.toRect(), look.view));
    plot.resize(look.view);
    plot.show();
    if (!QTest::qWaitForWindowExposed(&plot))
        qFatal("The plot does not come on screen.");
}

void CustomPlotCurve::append(const QVector<QPointF> &points)
{
    QVector<QCPCurveData> data;
    data.reserve(points.size());
    for (const QPointF &point : points)
        data.append(QCPCurveData(order++, point.x(), point.y()));
    curve->data()->add(data, true);
}

void CustomPlotCurve::setPoints(const QVector<QPointF> &points)
{
    curve->data()->clear();
    append(points);
    plot.replot();
    harness::paintPosted();
}

harness::Cost CustomPlotCurve::advance(const QVector<QPointF> &added)
{
    harness::Cost cost;
    cost.model = harness::millisecondsOf([&] {
        append(added);
        curve->data()->removeBefore(order - curve->data()->size() + added.size());
    });
    cost.paint = paints.paint([this] { plot.replot(); });
    return cost;
}

} // namespace

std::unique_ptr<CurvePlot> makeCustomPlot(const PlotLook &look)
{
    return std::make_unique<CustomPlotCurve>(look);
}
