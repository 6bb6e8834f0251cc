#include "TraceItem.h"

#include "TraceSeries.h"

#include <QEvent>
#include <QtCharts/QChart>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

constexpr int pointsPerBox = 64;
constexpr int linesPerStaleRect = 16;
constexpr int maximumScale = 8;

/// Lines from the point before `first` up to the one before `last`. One call a line, as the chart
/// draws them: what they cover together depends on it where they overlap.
template <typename ToPosition>
void drawLines(QPainter &painter, const QVector<QPointF> &points, int first, int last,
               const ToPosition &toPosition)
{
    first = qMax(first, 1);
    if (first >= last)
        return;
    QPointF from = toPosition(points.at(first - 1));
    for (int i = first; i < last; ++i) {
        const QPointF to = toPosition(points.at(i));
        painter.drawLine(from, to);
        from = to;
    }
}

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

bool isWhole(double value)
{
    return value == std::floor(value);
}

QRectF extent(const QPointF &a, const QPointF &b)
{
    return {QPointF(qMin(a.x(), b.x()), qMin(a.y(), b.y())),
            QPointF(qMax(a.x(), b.x()), qMax(a.y(), b.y()))};
}

bool meets(const QRectF &a, const QRectF &b)
{
    return a.left() <= b.right() && b.left() <= a.right() && a.top() <= b.bottom() &&
           b.top() <= a.bottom();
}

} // namespace

TraceItem::TraceItem(QtCharts::QChart *chart_, TraceSeries *series_, QGraphicsItem *chartItem)
    : QGraphicsObject(chart_)
    , chart(chart_)
    , series(series_)
{
    chartItem->setFlag(ItemHasNoContents);
    setZValue(chartItem->zValue());
    setAcceptedMouseButtons(Qt::NoButton);
    chart->installEventFilter(this);
    connect(chart, &QtCharts::QChart::plotAreaChanged, this, &TraceItem::takePlotArea);
    takePlotArea();

    const auto forget = [this] {
        if (!isAnnouncing)
            pointsReplaced();
    };
    connect(series, &QtCharts::QXYSeries::pointAdded, this, forget);
    connect(series, &QtCharts::QXYSeries::pointRemoved, this, forget);
    connect(series, &QtCharts::QXYSeries::pointsRemoved, this, forget);
    connect(series, &QtCharts::QXYSeries::pointReplaced, this, forget);
    connect(series, &QtCharts::QXYSeries::pointsReplaced, this, forget);
    connect(series, &QtCharts::QXYSeries::penChanged, this, forget);
    connect(series, &QtCharts::QAbstractSeries::visibleChanged, this, forget);
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

void TraceItem::pointsAppended()
{
    update();
}

void TraceItem::pointsReplaced()
{
    forgetImage();
    boxes.clear();
    boxed = 0;
    unboxed = 0;
    update();
}

void TraceItem::forgetImage()
{
    imageMap.reset();
    stale = QRegion();
    drawn = 0;
}

void TraceItem::aboutToRemoveOldest(int count)
{
    const QVector<QPointF> points = series->pointsVector();
    addToBoxes(points);
    if (imageMap) {
        const double margin = penMargin();
        for (int first = 0; first < qMin(count, drawn - 1); first += linesPerStaleRect) {
            const int last = qMin(qMin(first + linesPerStaleRect, count), drawn - 1);
            QRectF lines;
            for (int i = first; i < last; ++i)
                lines |=
                    extent(imageMap->position(points.at(i)), imageMap->position(points.at(i + 1)))
                        .adjusted(-margin, -margin, margin, margin);
            stale += (lines & plot).toAlignedRect();
        }
        drawn = qMax(drawn - count, 0);
    }
    boxed -= count;
    unboxed += count;
    const int emptied = qMin(unboxed / pointsPerBox, boxes.size());
    boxes.remove(0, emptied);
    unboxed -= emptied * pointsPerBox;
    update();
}

void TraceItem::addToBoxes(const QVector<QPointF> &points)
{
    const auto include = [this](int box, const QPointF &point) {
        if (box == boxes.size())
            boxes.append({point.x(), point.x(), point.y(), point.y()});
        Box &extent = boxes[box];
        extent = {qMin(extent.left, point.x()), qMax(extent.right, point.x()),
                  qMin(extent.bottom, point.y()), qMax(extent.top, point.y())};
    };
    for (; boxed < points.size(); ++boxed) {
        const int place = boxed + unboxed;
        include(place / pointsPerBox, points.at(boxed));
        // The line that begins at a box's last point ends at the next one's first.
        if (place % pointsPerBox == 0 && place > 0)
            include(place / pointsPerBox - 1, points.at(boxed));
    }
}

double TraceItem::penMargin() const
{
    // Half a pen with square caps, across the corner, and a pixel for antialiasing.
    return series->pen().widthF() * M_SQRT1_2 + 1.5;
}

void TraceItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    if (!series || !series->isVisible() || series->count() < 2)
        return;
    const QVector<QPointF> points = series->pointsVector();
    const std::optional<drive::PixelMap> map = drive::PixelMap::of(chart, series);
    painter->save();
    painter->setClipRect(plot, Qt::IntersectClip);
    const int scale = wholeScale(*painter);
    if (map && scale > 0) {
        prepareImage(*map, scale, painter->renderHints());
        refreshImage(points);
        painter->drawImage(imageOrigin, image);
    } else {
        painter->setPen(series->pen());
        drawLines(*painter, points, 1, points.size(), [&](const QPointF &point) {
            return map ? map->position(point) : chart->mapToPosition(point, series);
        });
    }
    painter->restore();
}

/// How many device pixels a unit of the chart is, when an image of whole pixels falls on the
/// device's pixels; otherwise 0.
int TraceItem::wholeScale(const QPainter &painter)
{
    const QTransform transform = painter.deviceTransform();
    const bool fits = transform.type() <= QTransform::TxScale && isWhole(transform.m11()) &&
                      transform.m11() == transform.m22() && isWhole(transform.dx()) &&
                      isWhole(transform.dy());
    return fits && transform.m11() > 0 && transform.m11() <= maximumScale ? int(transform.m11())
                                                                          : 0;
}

void TraceItem::prepareImage(const drive::PixelMap &map, int scale, QPainter::RenderHints hints)
{
    const QRect area = plot.toAlignedRect();
    const QSize size = area.size() * scale;
    if (imageMap && *imageMap == map && image.size() == size && imageOrigin == area.topLeft() &&
        imageScale == scale && imageHints == hints)
        return;
    forgetImage();
    if (image.size() != size)
        image = QImage(size, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    imageOrigin = area.topLeft();
    imageScale = scale;
    imageHints = hints;
    imageMap = map;
}

void TraceItem::refreshImage(const QVector<QPointF> &points)
{
    if (drawn == points.size() && stale.isEmpty())
        return;
    addToBoxes(points);
    QPainter painter(&image);
    painter.setRenderHints(imageHints);
    painter.translate(-imageOrigin);
    painter.setClipRect(plot);
    painter.setPen(series->pen());
    drawLines(painter, points, drawn, points.size(),
              [this](const QPointF &point) { return imageMap->position(point); });
    drawn = points.size();
    redrawStale(painter, points);
    stale = QRegion();
}

void TraceItem::redrawStale(QPainter &painter, const QVector<QPointF> &points) const
{
    if (stale.isEmpty())
        return;
    painter.setClipRegion(stale, Qt::IntersectClip);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.fillRect(stale.boundingRect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);

    const double margin = penMargin();
    const auto isStale = [&](const QRectF &pixels) {
        const QRectF covered = pixels.adjusted(-margin, -margin, margin, margin);
        return std::any_of(stale.begin(), stale.end(),
                           [&](const QRect &part) { return meets(covered, part); });
    };
    for (int box = 0; box < boxes.size(); ++box) {
        const Box &values = boxes.at(box);
        if (!isStale(extent(imageMap->position({values.left, values.top}),
                            imageMap->position({values.right, values.bottom}))))
            continue;
        const int first = qMax(box * pointsPerBox - unboxed, 0);
        const int last = qMin((box + 1) * pointsPerBox - unboxed, points.size() - 1);
        for (int i = first; i < last; ++i) {
            const QPointF from = imageMap->position(points.at(i));
            const QPointF to = imageMap->position(points.at(i + 1));
            if (isStale(extent(from, to)))
                painter.drawLine(from, to);
        }
    }
}
