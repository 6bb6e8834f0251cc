#include "TraceItem.h"

#include "TraceSeries.h"

#include <QEvent>
#include <QGraphicsScene>
#include <QPaintEngine>
#include <QtCharts/QChart>

#include <cmath>
#include <utility>

namespace {

double fraction(double value)
{
    return value - std::floor(value);
}

/// The plot area with the pixels on its edges, so that a line along an edge shows, as with the
/// chart's own lines.
QRectF withEdges(const QRectF &area)
{
    const double left = fraction(area.left());
    const double top = fraction(area.top());
    return area.adjusted(-left, -top, qMax(left, fraction(area.width() + 0.5)),
                         qMax(top, fraction(area.height() + 0.5)));
}

/// Whether an image of whole pixels falls on the device's pixels, and is not too large. Other
/// devices than those of pixels, such as a printer, draw a line better than an image of it.
bool suitsImage(const QPainter &painter)
{
    constexpr double mostPixelsPerUnit = 8.0 * 8.0;
    const QTransform transform = painter.deviceTransform();
    return painter.paintEngine()->type() == QPaintEngine::Raster &&
           transform.type() <= QTransform::TxScale && transform.determinant() > 0 &&
           transform.determinant() <= mostPixelsPerUnit;
}

} // namespace

TraceItem::TraceItem(QtCharts::QChart *chart_, TraceSeries *series_, QGraphicsItem *chartItem)
    : QGraphicsObject(chart_)
    , chart(chart_)
    , series(series_)
{
    chartItem->setFlag(ItemHasNoContents);
    setZValue(chartItem->zValue());
    chart->installEventFilter(this);
    connect(chart, &QtCharts::QChart::plotAreaChanged, this, &TraceItem::takePlotArea);
    takePlotArea();

    connect(series, &QtCharts::QXYSeries::pointAdded, this, &TraceItem::seriesChanged);
    connect(series, &QtCharts::QXYSeries::pointRemoved, this, &TraceItem::seriesChanged);
    connect(series, &QtCharts::QXYSeries::pointsRemoved, this, &TraceItem::seriesChanged);
    connect(series, &QtCharts::QXYSeries::pointReplaced, this, &TraceItem::seriesChanged);
    connect(series, &QtCharts::QXYSeries::pointsReplaced, this, &TraceItem::seriesChanged);
    connect(series, &QtCharts::QXYSeries::penChanged, this, &TraceItem::pointsReplaced);
    connect(series, &QtCharts::QAbstractSeries::visibleChanged, this, &TraceItem::pointsReplaced);
}

// A new size makes the chart rebuild its series too.
bool TraceItem::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::GraphicsSceneResize && event->type() != QEvent::LayoutRequest)
        return QGraphicsObject::eventFilter(watched, event);
    const TraceRangeChange change(series);
    watched->event(event);
    return true;
}

void TraceItem::takePlotArea()
{
    prepareGeometryChange();
    plot = withEdges(chart->plotArea());
}

QRectF TraceItem::boundingRect() const
{
    return plot;
}

/// Whatever the host does to the series by itself.
void TraceItem::seriesChanged()
{
    if (!std::exchange(isExpecting, false))
        pointsReplaced();
}

void TraceItem::pointsReplaced()
{
    imageMap.reset();
    update();
}

void TraceItem::pointsAppended()
{
    if (imageMap)
        update(toImage.inverted().mapRect(QRectF(drawNewLines())));
    else
        update();
}

void TraceItem::oldestRemoved(const QVector<QPointF> &removed)
{
    const int lines = removed.size() - 1;
    if (!imageMap || lines > boxes.lines() / 2)
        return pointsReplaced();
    boxes.removeOldest(lines);
    QRegion stale;
    for (int i = 0; i < lines; ++i)
        stale += covered(line(removed, i));
    redraw(stale);
    // Painted by itself: through a clip of several rectangles, far from each other, the lines of
    // the grid take three times as long.
    const QRectF place = toImage.inverted().mapRect(QRectF(stale.boundingRect()));
    const auto show = [this, place] {
        if (scene())
            scene()->update(mapRectToScene(place));
    };
    QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
}

void TraceItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    if (!series->isVisible() || series->count() < 2)
        return;
    painter->save();
    painter->setClipRect(plot, Qt::IntersectClip);
    if (suitsImage(*painter))
        paintImage(painter);
    else
        paintLines(painter);
    painter->restore();
}

void TraceItem::paintImage(QPainter *painter)
{
    const QTransform toDevice = painter->deviceTransform();
    const QRect pixels = toDevice.mapRect(plot).toAlignedRect();
    prepareImage(toDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y()), pixels.size());
    drawNewLines();
    painter->setTransform(toDevice.inverted(), true);
    painter->drawImage(pixels.topLeft(), image);
}

/// One call a line, here and in the image, as the chart draws them: what they cover together
/// depends on it where they overlap.
void TraceItem::paintLines(QPainter *painter) const
{
    const drive::PixelMap map = drive::PixelMap::of(chart, series);
    const QVector<QPointF> points = series->pointsVector();
    painter->setPen(series->pen());
    for (int i = 1; i < points.size(); ++i)
        painter->drawLine(map.position(points.at(i - 1)), map.position(points.at(i)));
}

void TraceItem::prepareImage(const QTransform &toPixels, const QSize &size)
{
    const drive::PixelMap map = drive::PixelMap::of(chart, series);
    if (imageMap && *imageMap == map && toImage == toPixels && image.size() == size)
        return;
    if (image.size() != size)
        image = QImage(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    boxes = {};
    toImage = toPixels;
    imageMap = map;
}

/// Draws the lines that the image does not hold yet, and returns where they are in it.
QRect TraceItem::drawNewLines()
{
    const QVector<QPointF> points = series->pointsVector();
    QRect place;
    if (boxes.lines() >= points.size() - 1)
        return place;
    QPainter painter(&image);
    setUp(painter);
    for (int i = boxes.lines(); i < points.size() - 1; ++i) {
        const QLineF next = line(points, i);
        painter.drawLine(next);
        const QRect extent = covered(next);
        boxes.append(extent);
        place |= extent;
    }
    return place;
}

void TraceItem::redraw(const QRegion &stale)
{
    const QVector<QPointF> points = series->pointsVector();
    QPainter painter(&image);
    painter.setClipRegion(stale);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.fillRect(stale.boundingRect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    setUp(painter);
    boxes.visitAt(stale, [&](int first, int last) {
        for (int i = first; i < last; ++i) {
            const QLineF old = line(points, i);
            if (stale.intersects(covered(old)))
                painter.drawLine(old);
        }
    });
}

/// Antialiased, as the tool's view is.
void TraceItem::setUp(QPainter &painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(toImage);
    painter.setPen(series->pen());
}

QLineF TraceItem::line(const QVector<QPointF> &points, int index) const
{
    return {imageMap->position(points.at(index)), imageMap->position(points.at(index + 1))};
}

/// The pixels of the image in which a line may show. A whole pen's width around it has room for
/// the corners of its caps, and a pixel for antialiasing.
QRect TraceItem::covered(const QLineF &line) const
{
    const double margin = series->pen().widthF();
    const QRectF extent = QRectF(line.p1(), line.p2()).normalized();
    return toImage.mapRect(extent.adjusted(-margin, -margin, margin, margin))
        .adjusted(-1, -1, 1, 1)
        .toAlignedRect();
}
