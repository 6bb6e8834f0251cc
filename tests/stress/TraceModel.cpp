#include "TraceModel.h"

#include <QGraphicsLayout>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QtCharts/QLegend>

#include <cstdlib>

using namespace QtCharts;

namespace {

constexpr int limitOfLimits = 8388352;
constexpr int grid = 256;
constexpr int leastSpan = 512;
constexpr int longestHistory = 100000;

/// The mouse gestures, told from the pointer's place at each event.
class GestureView : public QChartView
{
public:
    GestureView(QChart *chart, TraceModel *owner)
        : QChartView(chart)
        , model(owner)
    {
    }

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        if (isZooming()) {
            setRubberBand(RectangleRubberBand);
        } else {
            setRubberBand(NoRubberBand);
            before = event->pos();
            if (chart()->plotArea().contains(before))
                model->setTarget(chart()->mapToValue(before).toPoint(), QPoint());
        }
        QChartView::mousePressEvent(event);
    }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        QChartView::mouseMoveEvent(event);
        if (isZooming())
            return;
        const QPoint at = event->pos();
        const QRectF plot = chart()->plotArea();
        const QRectF inner = plot.adjusted(10, 10, -10, -10);
        const QRectF outer = plot.adjusted(-10, -10, 10, 10);
        QPoint by = at - before;
        if ((by.x() > 0 && at.x() < outer.right()) || (by.x() < 0 && at.x() > outer.left()))
            by.setX(0);
        if ((by.y() < 0 && at.y() > outer.top()) || (by.y() > 0 && at.y() < outer.bottom()))
            by.setY(0);
        const QPointF pinned(qMax(qMin(double(at.x()), inner.right()), inner.left()),
                             qMax(qMin(double(at.y()), inner.bottom()), inner.top()));
        model->setTarget(chart()->mapToValue(pinned).toPoint(), by);
        before = at;
    }

    void mouseReleaseEvent(QMouseEvent *event) override
    {
        if (rubberBand() == RectangleRubberBand)
            model->trace = {model->trace.constLast()};
        QChartView::mouseReleaseEvent(event);
    }

private:
    static bool isZooming() { return QGuiApplication::keyboardModifiers() == Qt::ControlModifier; }

    TraceModel *model;
    QPoint before;
};

} // namespace

TraceModel::TraceModel()
    : chartView(std::make_unique<GestureView>(new QChart, this))
{
    chart()->setLocalizeNumbers(true);
    chart()->layout()->setContentsMargins(0, 0, 0, 0);
    chart()->legend()->setMarkerShape(QLegend::MarkerShapeFromSeries);
    build(sides[0], Qt::AlignBottom);
    build(sides[1], Qt::AlignLeft);
    sides[0].axis->setTitleText(QStringLiteral("M0_XACTUAL field"));
    sides[1].axis->setTitleText(QStringLiteral("M1_XACTUAL field"));
    sides[0].coordinate = &QPointF::x;
    sides[1].coordinate = &QPointF::y;
    target = new QScatterSeries;
    actual = new QScatterSeries;
    mapped = new QLineSeries;
    target->setName(QStringLiteral("target position"));
    target->setMarkerSize(27);
    actual->setName(QStringLiteral("actual position"));
    actual->setMarkerSize(19);
    mapped->setName(QStringLiteral("position trace"));
    for (QXYSeries *series : std::initializer_list<QXYSeries *>{target, actual, mapped})
        chart()->addSeries(series);
    for (QXYSeries *series : std::initializer_list<QXYSeries *>{mapped, actual, target}) {
        series->append(0, 0);
        series->attachAxis(sides[0].axis);
        series->attachAxis(sides[1].axis);
    }
    for (const bool upper : {false, true}) {
        limit(0, upper)->setValue(upper ? grid : -grid);
        limit(1, upper)->setValue(upper ? grid : -grid);
    }
    for (Side &side : sides)
        QObject::connect(
            side.axis, &QValueAxis::rangeChanged, side.axis,
            [&](qreal min, qreal max) { rangeChanged(side, min, max); }, Qt::DirectConnection);
}

TraceModel::~TraceModel() = default;

void TraceModel::build(Side &side, Qt::Alignment alignment)
{
    side.axis = new QValueAxis;
    side.axis->setTickCount(9);
    side.axis->setLabelFormat(QStringLiteral("%.0i"));
    chart()->addAxis(side.axis, alignment);
    for (QSpinBox *box : {&side.lower, &side.upper})
        box->setRange(-limitOfLimits, limitOfLimits);
    QObject::connect(&side.lower, qOverload<int>(&QSpinBox::valueChanged),
                     [&](int value) { lowerChanged(side, value); });
    QObject::connect(&side.upper, qOverload<int>(&QSpinBox::valueChanged),
                     [&](int value) { upperChanged(side, value); });
}

QSpinBox *TraceModel::limit(int axis, bool upper)
{
    Side &side = sides.at(size_t(axis));
    return upper ? &side.upper : &side.lower;
}

QPoint TraceModel::pixel(const QPointF &point) const
{
    return chart()->mapToPosition(point, mapped).toPoint();
}

void TraceModel::lowerChanged(Side &side, int value)
{
    const int rest = value % grid;
    if (rest != 0) {
        side.lower.setValue(value < 0 ? value - rest - grid : value - rest);
    } else {
        side.axis->setMin(value);
        side.upper.setMinimum(value + leastSpan);
    }
}

void TraceModel::upperChanged(Side &side, int value)
{
    const int rest = value % grid;
    if (rest != 0) {
        side.upper.setValue(value + grid - rest);
    } else {
        side.axis->setMax(value);
        side.lower.setMaximum(value - leastSpan);
    }
}

void TraceModel::rangeChanged(Side &side, double min, double max)
{
    QVector<QPointF> kept;
    QPoint previous = pixel(actual->at(0));
    for (const QPointF &point : qAsConst(history)) {
        const QPoint at = pixel(point);
        const double value = (point.*side.coordinate)();
        if (at != previous && min <= value && value <= max) {
            kept.append(point);
            previous = at;
        }
    }
    if (kept.isEmpty())
        kept.append(trace.constLast());
    trace = kept;
    side.upper.setValue(int(max));
    side.lower.setValue(int(min));
    side.axis->setRange(side.lower.value(), side.upper.value());
}

void TraceModel::start()
{
    isUpdating = true;
    pending = {actual->at(0)};
}

void TraceModel::show(const QPointF &position)
{
    isUpdating = true;
    pending << position << position;
}

void TraceModel::sample(const QPointF &position)
{
    if (!pending.isEmpty() && pending.constLast() == position)
        return;
    pending << position;
    history << position;
}

void TraceModel::updateTick()
{
    if (!isUpdating)
        return;
    if (pending.size() > 1) {
        const QPointF newest = pending.constLast();
        pending.removeFirst();
        for (const QPointF &point : qAsConst(pending)) {
            if (pixel(point) != pixel(trace.constLast()))
                trace.append(point);
        }
        actual->replace(0, newest);
        pending = {newest};
        keepInView(sides[0], newest);
        keepInView(sides[1], newest);
    }
    if (trace.size() > traceLength)
        trace.remove(0, trace.size() - traceLength);
    if (history.size() > longestHistory)
        history.remove(0, history.size() - longestHistory);
}

void TraceModel::keepInView(Side &side, const QPointF &point)
{
    const int low = side.lower.value();
    const int high = side.upper.value();
    const int step = (high - low) / (side.axis->tickCount() - 1);
    const double value = (point.*side.coordinate)();
    if (low > value)
        side.lower.setValue(int(value - step));
    if (value > high)
        side.upper.setValue(int(value + step));
}

void TraceModel::zoom(bool in, std::optional<QPoint> wheelAt)
{
    QPoint reference = actual->at(0).toPoint();
    if (wheelAt)
        reference = chart()->mapToValue(*wheelAt).toPoint();
    if (in)
        chart()->zoomIn();
    else
        chart()->zoomOut();
    int low[2], high[2];
    for (int axis : {0, 1}) {
        low[axis] = limit(axis, false)->value();
        high[axis] = limit(axis, true)->value();
    }
    QPoint centre((high[0] + low[0]) / 2, (high[1] + low[1]) / 2);
    if (wheelAt)
        centre = chart()->mapToValue(*wheelAt).toPoint();
    const int by[] = {reference.x() - centre.x(), reference.y() - centre.y()};
    for (int axis : {0, 1}) {
        if (std::abs(by[axis]) <= 128)
            continue;
        limit(axis, true)->setValue(high[axis] + by[axis]);
        limit(axis, false)->setValue(low[axis] + by[axis]);
    }
}

void TraceModel::clear()
{
    trace = {actual->at(0)};
    history = {actual->at(0)};
}

void TraceModel::setTarget(const QPoint &position, const QPoint &outer)
{
    target->replace(0, position);
    if (outer.x() != 0)
        push(sides[0], outer.x() > 0);
    if (outer.y() != 0)
        push(sides[1], outer.y() < 0);
}

void TraceModel::push(Side &side, bool upper)
{
    const double step = (side.axis->max() - side.axis->min()) / (side.axis->tickCount() - 1);
    if (upper)
        side.upper.setValue(int(side.upper.value() + step));
    else
        side.lower.setValue(int(side.lower.value() - step));
}
