#include "ChartView.h"

#include "Positions.h"
#include "TraceSeries.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QtCharts/QLineSeries>

namespace {

/// Width of the band inside the plot area's edge that no target is dragged into, and of the one
/// outside it in which a drag does not yet push the edge; in pixels.
constexpr double edgeBand = 10.0;

// The keyboard's state and not the event's, and Ctrl alone: with a second modifier held the gesture
// is a plain one.
bool isCtrlHeld()
{
    return QGuiApplication::keyboardModifiers() == Qt::ControlModifier;
}

int wrappedDifference(int a, int b)
{
    return static_cast<int>(static_cast<unsigned int>(a) - static_cast<unsigned int>(b));
}

/// How far the pointer moved, where it is at or past the outer edge and still moves away from the
/// plot; otherwise 0.
int outwardOffset(int pointer, int before, double outerLow, double outerHigh)
{
    const bool heldBack =
        (pointer < outerHigh && pointer > before) || (pointer > outerLow && pointer < before);
    return heldBack ? 0 : wrappedDifference(pointer, before);
}

/// Into the inset; the low edge wins where the area is too small for one.
double clampedToInset(double pointer, double low, double high)
{
    return qMax(qMin(pointer, high - edgeBand), low + edgeBand);
}

} // namespace

ChartView::ChartView(QtCharts::QChart *chart, QWidget *parent)
    : QtCharts::QChartView(chart, parent)
{
}

ChartView::~ChartView() = default;

void ChartView::setPos(QPoint p)
{
    pressPos = {wrappedDifference(p.x(), pressPos.x()), wrappedDifference(p.y(), pressPos.y())};
}

QPoint ChartView::pickedAt(const QPointF &pixel) const
{
    return drive::rounded(chart()->mapToValue(pixel));
}

// Whoever is told of a position may delete the view.

void ChartView::mousePressEvent(QMouseEvent *event)
{
    const QPointer<ChartView> self(this);
    if (isCtrlHeld()) {
        setRubberBand(RectangleRubberBand);
    } else {
        setRubberBand(NoRubberBand);
        pressPos = lastPos = drive::rounded(event->localPos());
        if (event->buttons() != Qt::NoButton && chart()->plotArea().contains(pressPos))
            emit position(pickedAt(pressPos), QPoint(0, 0));
    }
    if (self)
        QChartView::mousePressEvent(event);
}

void ChartView::mouseMoveEvent(QMouseEvent *event)
{
    QChartView::mouseMoveEvent(event);
    if (event->buttons() == Qt::NoButton || isCtrlHeld())
        return;

    const QPoint pointer = drive::rounded(event->localPos());
    const QRectF plot = chart()->plotArea();
    const double left = plot.x();
    const double top = plot.y();
    const double right = left + plot.width();
    const double bottom = top + plot.height();
    const QPoint outer(outwardOffset(pointer.x(), lastPos.x(), left - edgeBand, right + edgeBand),
                       outwardOffset(pointer.y(), lastPos.y(), top - edgeBand, bottom + edgeBand));
    const QPointF pinned(clampedToInset(pointer.x(), left, right),
                         clampedToInset(pointer.y(), top, bottom));
    lastPos = pointer;
    emit position(pickedAt(pinned), outer);
}

void ChartView::mouseReleaseEvent(QMouseEvent *event)
{
    const QList<QtCharts::QAbstractSeries *> all = chart()->series();
    auto *trace = all.isEmpty() ? nullptr : qobject_cast<QtCharts::QLineSeries *>(all.constLast());
    // A zoom redraws the trace from its history, so no more than its newest point has to be drawn
    // at the new scale meanwhile.
    if (rubberBand() == RectangleRubberBand && trace && trace->count() > 0)
        trace->replace(QVector<QPointF>{trace->at(trace->count() - 1)});
    const TraceRangeChange change(trace);
    QChartView::mouseReleaseEvent(event);
}
