#include "TraceSeries.h"

#include "ChartItems.h"
#include "TraceItem.h"

#include <QSignalBlocker>
#include <QtCharts/QChart>

#include <utility>

TraceSeries::~TraceSeries()
{
    delete item;
}

void TraceSeries::addTo(QtCharts::QChart *chart)
{
    QGraphicsObject *const chartItem = drive::addSeries(chart, this);
    // It follows the ranges of the axes from now on, but not the points.
    disconnect(this, nullptr, chartItem, nullptr);
    item = new TraceItem(chart, this, chartItem);
}

void TraceSeries::appendPoints(const QVector<QPointF> &points)
{
    Q_ASSERT(asideDepth == 0);
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
    Q_ASSERT(asideDepth == 0);
    const TraceChange change(this);
    const QVector<QPointF> removed = pointsVector().mid(0, count + 1);
    {
        const QSignalBlocker blocker(this);
        removePoints(0, count);
    }
    hasChanged = true;
    if (item)
        item->oldestRemoved(removed);
}

void TraceSeries::setPoints(const QVector<QPointF> &points)
{
    Q_ASSERT(asideDepth == 0);
    const TraceChange change(this);
    replaceQuietly(points);
    hasChanged = true;
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
        item->expectAnnouncement();
    emit pointsReplaced();
}

void TraceSeries::setPointsAside()
{
    if (asideDepth++ > 0)
        return;
    aside = pointsVector();
    if (aside.size() > 1)
        replaceQuietly({aside.constLast()});
}

void TraceSeries::bringPointsBack()
{
    if (--asideDepth > 0)
        return;
    const QVector<QPointF> before = std::exchange(aside, {});
    const QVector<Redraw> asked = std::exchange(redraws, {});
    if (!asked.isEmpty())
        setPoints(settledTrace(asked, before));
    else if (before.size() > 1)
        replaceQuietly(before);
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
