#include "CurvePlot.h"

#include <QTest>

#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>

namespace {

class QwtCurve : public CurvePlot
{
public:
    explicit QwtCurve(const PlotLook &look);

    void setPoints(const QVector<QPointF> &points) override;
    harness::Cost advance(const QVector<QPointF> &added) override;

private:
    QwtPlot plot;
    QwtPlotCurve *curve;
    QVector<QPointF> shown;
    harness::PaintWatch paints;
};

QwtCurve::QwtCurve(const PlotLook &look)
    : curve(new QwtPlotCurve)
    , paints(plot.canvas())
{
    curve->setPen(look.pen);
    curve->setRenderHint(QwtPlotItem::RenderAntialiased);
    curve->attach(&plot);
    plot.setAxisScale(QwtPlot::xBottom, look.range.left(), look.range.right());
    plot.setAxisScale(QwtPlot::yLeft, look.range.top(), look.range.bottom());
    plot.resize(look.view);
    plot.show();
    if (!QTest::qWaitForWindowExposed(&plot))
        qFatal("The plot does not come on screen.");
    const QSize canvas = plot.canvas()->contentsRect().size();
    plot.resize(plot.size() + look.plotArea.size().toSize() - canvas);
    harness::paintPosted();
}

void QwtCurve::setPoints(const QVector<QPointF> &points)
{
    shown = points;
    curve->setSamples(shown);
    plot.replot();
    harness::paintPosted();
}

harness::Cost QwtCurve::advance(const QVector<QPointF> &added)
{
    harness::Cost cost;
    cost.model = harness::millisecondsOf([&] {
        shown.remove(0, added.size());
        shown += added;
        curve->setSamples(shown);
    });
    cost.paint = paints.paint([this] { plot.replot(); });
    return cost;
}

} // namespace

std::unique_ptr<CurvePlot> makeQwtPlot(const PlotLook &look)
{
    return std::make_unique<QwtCurve>(look);
}
