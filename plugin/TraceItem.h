#pragma once

#include "PixelMap.h"

#include <QGraphicsObject>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QRegion>
#include <QVector>

#include <optional>

class TraceSeries;

namespace QtCharts {
class QChart;
}

/// Draws a trace in place of the chart's own item, with the same lines in the same order. What is
/// drawn is kept in an image, so that a longer trace costs only its new lines, and a trace that
/// lost its oldest points only the parts of the image in which these lay.
class TraceItem : public QGraphicsObject
{
public:
    /// A child of the chart, in the place of `chartItem`, which no longer paints.
    TraceItem(QtCharts::QChart *chart, TraceSeries *series, QGraphicsItem *chartItem);

    // What the series does; before or after, as the names say.
    void pointsAppended();
    void aboutToRemoveOldest(int count);
    void pointsReplaced();
    /// While true, the series announces a change that the item knows of.
    void announcing(bool on) { isAnnouncing = on; }

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// The extent, in values, of the lines that begin at some consecutive points.
    struct Box
    {
        double left, right, bottom, top;
    };

    void takePlotArea();
    void forgetImage();
    void addToBoxes(const QVector<QPointF> &points);
    static int wholeScale(const QPainter &painter);
    void prepareImage(const drive::PixelMap &map, int scale, QPainter::RenderHints hints);
    void refreshImage(const QVector<QPointF> &points);
    void redrawStale(QPainter &painter, const QVector<QPointF> &points) const;
    double penMargin() const;

    QtCharts::QChart *chart;
    QPointer<TraceSeries> series;
    QRectF plot;

    QImage image;
    QPoint imageOrigin;
    int imageScale = 1;
    QPainter::RenderHints imageHints;
    std::optional<drive::PixelMap> imageMap; ///< Nothing: the image is of no use any more.
    int drawn = 0;                           ///< Points that the image holds, from the first on.
    QRegion stale;                           ///< Parts of the image that are out of date.

    QVector<Box> boxes;
    int boxed = 0;   ///< Points of the series that the boxes hold, from the first on.
    int unboxed = 0; ///< Points of the first box that are in the series no more.

    bool isAnnouncing = false;
};
