#pragma once

#include <QGraphicsObject>
#include <QtCharts/QChart>

namespace drive {

/// Adds a series to a chart, which takes it over, and returns the item by which the chart draws it.
inline QGraphicsObject *addSeries(QtCharts::QChart *chart, QtCharts::QAbstractSeries *series)
{
    const QList<QGraphicsItem *> before = chart->childItems();
    chart->addSeries(series);
    QList<QGraphicsItem *> added = chart->childItems();
    for (QGraphicsItem *item : before)
        added.removeOne(item);
    return added.constFirst()->toGraphicsObject();
}

/// The same for a few markers: when one moves, only the places where it was and is are painted.
/// Without this the item and the group in it, which hold the markers and paint nothing themselves,
/// have all of the plot area painted, and the group's corner.
inline void addMarkers(QtCharts::QChart *chart, QtCharts::QAbstractSeries *series)
{
    QGraphicsItem *const item = addSeries(chart, series);
    item->setFlag(QGraphicsItem::ItemHasNoContents);
    const QList<QGraphicsItem *> groups = item->childItems();
    for (QGraphicsItem *group : groups)
        group->setFlag(QGraphicsItem::ItemHasNoContents);
}

} // namespace drive
