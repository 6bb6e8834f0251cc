#pragma once

#include <QPointer>
#include <QVector>
#include <QtCharts/QLineSeries>

#include <functional>

class TraceItem;

/// The trace: a line series for long traces. The chart's own item rebuilds and strokes the whole
/// line at every change of its points; this series has its line drawn by a TraceItem instead. It
/// holds what any line series would hold, but for the time of a range change (TraceRangeChange).
class TraceSeries : public QtCharts::QLineSeries
{
public:
    /// Works out the points that a redraw leaves, at most once and possibly later than the redraw
    /// was asked for.
    using Redraw = std::function<QVector<QPointF>()>;

    ~TraceSeries() override;

    /// Adds the series to a chart, which takes it over.
    void addTo(QtCharts::QChart *chart);

    // Each of these is one change, announced by one pointsReplaced().
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
    void fold();
    void unfold();
    QVector<QPointF> unfoldedPoints() const;
    void replaceQuietly(const QVector<QPointF> &points);

    QPointer<TraceItem> item;
    int changeDepth = 0;
    bool hasChanged = false;
    int foldDepth = 0;
    bool isRewritten = false; ///< Changed otherwise than by a redraw, since it was folded.
    QVector<QPointF> folded;
    QVector<Redraw> redraws;
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
    explicit TraceChange(TraceSeries *series);
    ~TraceChange();

private:
    Q_DISABLE_COPY(TraceChange)
    QPointer<TraceSeries> trace;
};

/// While one exists, the range or the size of a chart changes, in one step or in several that set
/// each other off. The series then holds no more than its last point, so that the chart does not
/// rebuild a line that is about to change again; when the outermost change ends it holds what the
/// redraws asked for meanwhile have made of it, which counts as one change.
class TraceRangeChange
{
public:
    /// Nothing happens for a series that is no TraceSeries.
    explicit TraceRangeChange(QtCharts::QAbstractSeries *series);
    ~TraceRangeChange();

private:
    Q_DISABLE_COPY(TraceRangeChange)
    TraceChange change;
    QPointer<TraceSeries> trace;
};
