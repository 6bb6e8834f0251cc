#include "TraceSeries.h"

#include "TraceItem.h"

#include <QSignalBlocker>
#include <QtCharts/QChart>

TraceSeries::~TraceSeries() = default;

void TraceSeries::addTo(QtCharts::QChart *chart)
{
    const QList<QGraphicsItem *> before = chart->childItems();
    chart->addSeries(this);
    const QList<QGraphicsItem *> after = chart->childItems();
    for (QGraphicsItem *chartItem : after) {
        if (before.contains(chartItem) || !chartItem->toGraphicsObject())
            continue;
        // The chart's item follows the ranges of the axes from now on, but not the points.
        disconnect(this, nullptr, chartItem->toGraphicsObject(), nullptr);
        item = new TraceItem(chart, this, chartItem);
        return;
    }
}

void TraceSeries::appendPoints(const QVector<QPointF> &points)
{
    if (foldDepth > 0) {
        setPoints(unfoldedPoints() + points);
        return;
    }
    const TraceChange change(this);
    {
        const QSignalBlocker blocker(this);
        for (const QPointF &point : points)
            append(point);
    }
    hasChanged = true;
    if (item)
        item->pointsAppended();
}

void TraceSeries::removeOldest(int count)
{
    if (foldDepth > 0) {
        setPoints(unfoldedPoints().mid(count));
        return;
    }
    const TraceChange change(this);
    if (item)
        item->aboutToRemoveOldest(count);
    const QSignalBlocker blocker(this);
    removePoints(0, count);
    hasChanged = true;
}

void TraceSeries::setPoints(const QVector<QPointF> &points)
{
    const TraceChange change(this);
    hasChanged = true;
    if (foldDepth > 0) {
        redraws.clear();
        folded = points;
        isRewritten = true;
        replaceQuietly(points.mid(points.size() - 1));
        return;
    }
    replaceQuietly(points);
    if (item)
        item->pointsReplaced();
}

void TraceSeries::redraw(const Redraw &result)
{
    const TraceRangeChange change(this);
    redraws.append(result);
}

void TraceSeries::endChange()
{
    if (--changeDepth > 0 || !hasChanged)
        return;
    hasChanged = false;
    if (item)
        item->announcing(true);
    const QPointer<TraceItem> told = item;
    emit pointsReplaced();
    if (told)
        told->announcing(false);
}

void TraceSeries::fold()
{
    if (foldDepth++ > 0)
        return;
    folded = pointsVector();
    isRewritten = false;
    if (folded.size() > 1)
        replaceQuietly({folded.constLast()});
}

void TraceSeries::unfold()
{
    if (--foldDepth > 0)
        return;
    const bool isNew = isRewritten || !redraws.isEmpty();
    const QVector<QPointF> points = unfoldedPoints();
    redraws.clear();
    folded.clear();
    if (isNew)
        setPoints(points);
    else if (points.size() > 1)
        replaceQuietly(points);
}

QVector<QPointF> TraceSeries::unfoldedPoints() const
{
    return settledTrace(redraws, folded);
}

void TraceSeries::replaceQuietly(const QVector<QPointF> &points)
{
    const QSignalBlocker blocker(this);
    replace(points);
}

QVector<QPointF> settledTrace(const QVector<TraceSeries::Redraw> &redraws,
                              const QVector<QPointF> &before)
{
    // A redraw that leaves nothing keeps the last point of what the one before it left.
    for (int i = redraws.size() - 1; i >= 0; --i) {
        const QVector<QPointF> kept = redraws.at(i)();
        if (!kept.isEmpty())
            return i == redraws.size() - 1 ? kept : kept.mid(kept.size() - 1);
    }
    return redraws.isEmpty() || before.isEmpty() ? before : before.mid(before.size() - 1);
}

TraceChange::TraceChange(TraceSeries *series)
    : trace(series)
{
    if (trace)
        trace->beginChange();
}

TraceChange::~TraceChange()
{
    if (trace)
        trace->endChange();
}

TraceRangeChange::TraceRangeChange(QtCharts::QAbstractSeries *series)
    : change(dynamic_cast<TraceSeries *>(series))
    , trace(dynamic_cast<TraceSeries *>(series))
{
    if (trace)
        trace->fold();
}

TraceRangeChange::~TraceRangeChange()
{
    if (trace)
        trace->unfold();
}
