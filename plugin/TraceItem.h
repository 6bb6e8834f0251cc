#pragma once

#include "LineBoxes.h"
#include "PixelMap.h"

#include <QGraphicsObject>
#include <QImage>

#include <optional>

class TraceSeries;

namespace QtCharts {
class QChart;
}

/// Draws a trace in place of the chart's own item, with the same lines in the same order. What is
/// drawn is kept in an image of the device's own pixels, so that a longer trace costs only its new
/// lines, and a trace that lost its oldest points only the parts of the image in which these lay.
class TraceItem : public QGraphicsObject
{
public:
    /// A child of the chart, in the place of `chartItem`, which no longer paints. The series
    /// outlives it.
    TraceItem(QtCharts::QChart *chart, TraceSeries *series, QGraphicsItem *chartItem);

    // What the series has just done.
    void pointsAppended();
    /// With the point that is the oldest now, where there is one.
    void oldestRemoved(const QVector<QPointF> &removed);
    void pointsReplaced();
    /// What the series announces next, the item has been told already.
    void expectAnnouncement() { isExpecting = true; }

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void takePlotArea();
    void seriesChanged();
    void paintImage(QPainter *painter);
    void paintLines(QPainter *painter) const;
    void prepareImage(const QTransform &toPixels, const QSize &size);
    QRect drawNewLines();
    void redraw(const QRegion &stale);
    void setUp(QPainter &painter) const;
    QLineF line(const QVector<QPointF> &points, int index) const;
    QRect covered(const QLineF &line) const;

    QtCharts::QChart *chart;
    TraceSeries *series;
    QRectF plot;

    QImage image;
    QTransform toImage;                      ///< From the chart to the image's pixels.
    std::optional<drive::PixelMap> imageMap; ///< Nothing: the image is of no use any more.
    drive::LineBoxes boxes;                  ///< Of the lines that the image holds.

    bool isExpecting = false;
};
