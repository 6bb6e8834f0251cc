#pragma once

#include <QPointer>
#include <QVector>
#include <QtCharts/QLineSeries>

#include <functional>

class TraceItem;

/// The trace: a line series for long traces. The chart's own item rebuilds and strokes the whole
/// line at every change of its points; this series has its line drawn by a TraceItem instead. It
/// holds what any line series would hold, but for the time of a range change.
///
/// One turn of the wheel, as an example. Both axes show -4096 to 4096, and the trace has 5,000
/// points out of a history of 100,000.
/// 1. The tool begins a TraceRangeChange: all points but the last are set aside, and the chart,
///    which rebuilds its own line at each of the steps to come, has one point to look at.
/// 2. The chart zooms; the horizontal range is now -2048 to 2048. The tool's handler asks for a
///    redraw with the points inside that, at this scale: it is noted, and not yet worked out.
/// 3. The same for the vertical range.
/// 4. To keep in place what is under the pointer, the tool moves the four limits. Each snaps to the
///    grid, and its axis changes: -2048 to 1536, then -2816 to 1536, and the vertical one likewise.
///    That makes six redraws.
/// 5. The range change ends. Only the last redraw shows in the result, so it alone goes through the
///    history; one before it counts where those behind it leave nothing. The points are back, the
///    TraceItem draws them, and one pointsReplaced() tells everybody.
class TraceSeries : public QtCharts::QLineSeries
{
public:
    /// Works out the points that a redraw leaves, at most once and possibly later than the redraw
    /// was asked for.
    using Redraw = std::function<QVector<QPointF>()>;

    ~TraceSeries() override;

    /// Adds the series to a chart, which takes it over.
    void addTo(QtCharts::QChart *chart);

    // Each of these is one change, announced by one pointsReplaced(). Not during a range change.
    void appendPoints(const QVector<QPointF> &points);
    void removeOldest(int count);
    void setPoints(const QVector<QPointF> &points);

    /// Replaces the points by what `result` leaves, or, where that is nothing, by the last point.
    void redraw(const Redraw &result);

private:
    friend class TraceChange;
    friend class TraceRangeChange;
    void beginChange() { ++changeDepth; }
    void endChange();
    void setPointsAside();
    void bringPointsBack();
    void replaceQuietly(const QVector<QPointF> &points);

    QPointer<TraceItem> item;
    int changeDepth = 0;
    bool hasChanged = false;
    int asideDepth = 0;
    QVector<QPointF> aside;
    QVector<Redraw> redraws; ///< Asked for while the points are aside.
};

/// The points that a sequence of redraws, one after another, makes of `before`. Each redraw is
/// worked out only if it shows in the result.
QVector<QPointF> settledTrace(const QVector<TraceSeries::Redraw> &redraws,
                              const QVector<QPointF> &before);

/// While one exists, all changes of a trace count as one, announced when the outermost ends.
class TraceChange
{
public:
    /// Nothing happens for null.
    explicit TraceChange(TraceSeries *series)
        : trace(series)
    {
        if (trace)
            trace->beginChange();
    }
    ~TraceChange()
    {
        if (trace)
            trace->endChange();
    }

protected:
    QPointer<TraceSeries> trace;

private:
    Q_DISABLE_COPY(TraceChange)
};

/// While one exists, the range or the size of a chart changes, in one step or in several that set
/// each other off. The trace's points are aside then, but for the last, so that the chart does not
/// rebuild a line that is about to change again; when the outermost change ends the series holds
/// what the redraws asked for meanwhile have made of them, which counts as one change.
class TraceRangeChange : private TraceChange
{
public:
    /// Nothing happens for a series that is no TraceSeries.
    explicit TraceRangeChange(QtCharts::QAbstractSeries *series)
        : TraceChange(dynamic_cast<TraceSeries *>(series))
    {
        if (trace)
            trace->setPointsAside();
    }
    ~TraceRangeChange()
    {
        if (trace)
            trace->bringPointsBack();
    }
};
