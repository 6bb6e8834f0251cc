#pragma once

#include "ToolRig.h"
#include "TraceModel.h"

#include <QRectF>
#include <QVector>

#include <random>

/// One thing that happens to the tool. The numbers mean what the kind says; points and gestures are
/// drawn from `seed`, so that an event means the same whatever went before it.
struct TraceEvent
{
    enum Kind {
        Samples,  ///< `a` samples with steps of up to `b` units.
        Tick,     ///< The update timer.
        Button,   ///< A zoom button; in for `a` not 0.
        Wheel,    ///< Ctrl and the wheel; in for `a` not 0.
        Limit,    ///< Limit `a`, 0 to 3, is set to `b`.
        Length,   ///< The trace's length is set to `a`.
        Press,    ///< A target is picked.
        Drag,     ///< A target is dragged, often past an edge.
        Band,     ///< A rectangle is drawn to zoom into; for `a` not 0, the zoom out of that mode.
        Clear,    ///< The trace is cleared.
        PlotArea, ///< The plot area gets another place and size.
        Resize,   ///< The panel gets another size.
        Hide,     ///< The host hides the tool.
        Show,     ///< The host shows the tool, which takes a sample.
        Start,    ///< The move is started again.
        Settle,   ///< Events that wait, layout and painting among them, are delivered.
        KindCount
    };
    Kind kind = Tick;
    int a = 0;
    int b = 0;
    unsigned int seed = 0;
};
QString textOf(const TraceEvent &event);

using TraceEvents = QVector<TraceEvent>;
/// A sequence, always the same for a number. Now and then one with thousands of points.
TraceEvents traceEventsOf(unsigned int number);

/// The tool and the model, both given the same events.
class TracePair
{
public:
    /// Both plot areas are set to the same, or else each chart lays out its own, with every change
    /// of the labels' lengths.
    explicit TracePair(bool fixedPlotArea);

    void apply(const TraceEvent &event);
    /// Where tool and model differ; nothing when they do not.
    QString difference();

    ToolRig rig;
    TraceModel model;

private:
    using Random = std::mt19937;

    void showOrHide(bool isShown);
    void samples(const TraceEvent &event);
    void wheel(const TraceEvent &event);
    void mouse(const TraceEvent &event);
    void mouseStep(QEvent::Type type, const QPoint &at, Qt::MouseButton button);
    void setPlotArea(const QRectF &area);
    void adoptSize();
    QPoint anyPixel(Random &random, int beyond) const;

    bool isFixed;
    QPoint position;
};
