#include "TraceEvents.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPushButton>
#include <QSpinBox>
#include <QWheelEvent>

#include <algorithm>
#include <cstring>

namespace {

constexpr int farthest = 8388607;
constexpr int fewestTicks = 2;

int between(std::mt19937 &random, int low, int high)
{
    return low + int(random() % unsigned(high - low + 1));
}

/// Of any order of magnitude up to `limit`.
int anySize(std::mt19937 &random, int limit)
{
    const int size = qMin(1 << between(random, 3, 23), limit);
    return between(random, 1, size);
}

const char *const limitNames[] = {"spM0min", "spM0max", "spM1min", "spM1max"};

bool isSame(const QVector<QPointF> &a, const QVector<QPointF> &b)
{
    return a.size() == b.size() &&
           std::memcmp(a.constData(), b.constData(), size_t(a.size()) * sizeof(QPointF)) == 0;
}

QString textOf(const QVector<QPointF> &points)
{
    QString text = QStringLiteral("%1 points").arg(points.size());
    for (int i = 0; i < qMin(points.size(), 8); ++i)
        text += QStringLiteral(" (%1 %2)").arg(points.at(i).x()).arg(points.at(i).y());
    return text;
}

QString textOf(const QSpinBox *box)
{
    return QStringLiteral("%1 in %2..%3").arg(box->value()).arg(box->minimum()).arg(box->maximum());
}

QString textOf(const QtCharts::QValueAxis *axis)
{
    return QStringLiteral("%1..%2").arg(axis->min(), 0, 'g', 17).arg(axis->max(), 0, 'g', 17);
}

QString textOf(const QRectF &rect)
{
    return QStringLiteral("%1 %2 %3 x %4")
        .arg(rect.x(), 0, 'g', 17)
        .arg(rect.y(), 0, 'g', 17)
        .arg(rect.width(), 0, 'g', 17)
        .arg(rect.height(), 0, 'g', 17);
}

QString compared(const char *what, const QString &tool, const QString &model)
{
    if (tool == model)
        return {};
    return QStringLiteral("%1: %2 and not %3; ").arg(QLatin1String(what), tool, model);
}

/// Of sizes that put values on the border between two pixels, or of any.
QRectF anyPlotArea(std::mt19937 &random, bool onBorders)
{
    const double width = onBorders ? 64 * between(random, 2, 10) : between(random, 50, 700);
    const double height = onBorders ? 64 * between(random, 2, 8) : between(random, 50, 500);
    const double part = random() % 4 ? 0 : between(random, 1, 99) / 100.0;
    const double left = between(random, 0, 80);
    const double top = between(random, 0, 60);
    return {left + part, top + part, width + part, height - part};
}

TraceEvent anyEvent(std::mt19937 &random, int mostSamples, int stepSize)
{
    static const TraceEvent::Kind kinds[] = {
        TraceEvent::Samples,  TraceEvent::Samples, TraceEvent::Samples, TraceEvent::Samples,
        TraceEvent::Samples,  TraceEvent::Tick,    TraceEvent::Tick,    TraceEvent::Tick,
        TraceEvent::Tick,     TraceEvent::Tick,    TraceEvent::Button,  TraceEvent::Button,
        TraceEvent::Button,   TraceEvent::Wheel,   TraceEvent::Wheel,   TraceEvent::Limit,
        TraceEvent::Limit,    TraceEvent::Length,  TraceEvent::Press,   TraceEvent::Drag,
        TraceEvent::Band,     TraceEvent::Band,    TraceEvent::Clear,   TraceEvent::PlotArea,
        TraceEvent::PlotArea, TraceEvent::Resize,  TraceEvent::Hide,    TraceEvent::Show,
        TraceEvent::Show,     TraceEvent::Start,   TraceEvent::Settle};
    TraceEvent event;
    event.kind = kinds[random() % std::size(kinds)];
    event.seed = static_cast<unsigned int>(random());
    event.a = int(random() % 2);
    if (event.kind == TraceEvent::Samples) {
        event.a = between(random, 1, mostSamples);
        event.b = random() % 4 == 0 ? anySize(random, farthest) : stepSize;
    } else if (event.kind == TraceEvent::Limit) {
        event.a = between(random, 0, 3);
        event.b = anySize(random, farthest) * (random() % 2 ? 1 : -1);
    } else if (event.kind == TraceEvent::Length) {
        event.a = random() % 2 ? between(random, 10, 40) : between(random, 10, 5000);
    }
    return event;
}

} // namespace

QString textOf(const TraceEvent &event)
{
    static const char *const names[] = {"Samples", "Tick", "Button", "Wheel", "Limit",    "Length",
                                        "Press",   "Drag", "Band",   "Clear", "PlotArea", "Resize",
                                        "Hide",    "Show", "Start",  "Settle"};
    static_assert(std::size(names) == TraceEvent::KindCount, "a name for each kind");
    return QStringLiteral("{TraceEvent::%1, %2, %3, %4u}")
        .arg(QLatin1String(names[event.kind]))
        .arg(event.a)
        .arg(event.b)
        .arg(event.seed);
}

TraceEvents traceEventsOf(unsigned int number)
{
    std::mt19937 random(number);
    random.discard(8);
    const bool isLong = number % 500 == 499;
    const int stepSize = anySize(random, 65536);
    TraceEvents events;
    for (int left = between(random, 5, 30); left > 0; --left)
        events << anyEvent(random, isLong ? 600 : 25, stepSize);
    return events;
}

TracePair::TracePair(bool fixedPlotArea)
    : isFixed(fixedPlotArea)
{
    rig.show();
    // Such a velocity never ends the move.
    rig.setRegister(QStringLiteral("M0_VACTUAL"), 5);
    rig.call("on_pbStart_clicked");
    model.show({0, 0});
    model.start();
    model.view()->resize(rig.view()->size());
    model.view()->show();
    if (isFixed) {
        setPlotArea(QRectF(60, 20, 500, 400));
        // Labels take most of the time, and nothing depends on them now.
        for (QtCharts::QValueAxis *axis :
             {rig.axisX(), rig.axisY(), model.valueAxis(0), model.valueAxis(1)}) {
            axis->setLabelsVisible(false);
            axis->setTitleVisible(false);
            axis->setTickCount(fewestTicks);
        }
    }
    QCoreApplication::sendPostedEvents();
    adoptSize();
}

void TracePair::setPlotArea(const QRectF &area)
{
    rig.chart()->setPlotArea(area);
    model.chart()->setPlotArea(area);
}

void TracePair::adoptSize()
{
    if (model.view()->size() != rig.view()->size())
        model.view()->resize(rig.view()->size());
}

QPoint TracePair::anyPixel(Random &random, int beyond) const
{
    const QRect plot = rig.chart()->plotArea().toAlignedRect();
    return {between(random, plot.left() - beyond, plot.right() + beyond),
            between(random, plot.top() - beyond, plot.bottom() + beyond)};
}

void TracePair::apply(const TraceEvent &event)
{
    Random random(event.seed);
    switch (event.kind) {
    case TraceEvent::Samples:
        samples(event);
        break;
    case TraceEvent::Tick:
        rig.updateTick();
        model.updateTick();
        break;
    case TraceEvent::Button:
        rig.widget<QPushButton>(event.a ? "btnZoomIn" : "btnZoomOut")->click();
        model.zoom(event.a != 0);
        break;
    case TraceEvent::Wheel:
        wheel(event);
        break;
    case TraceEvent::Limit:
        rig.widget<QSpinBox>(limitNames[event.a])->setValue(event.b);
        model.limit(event.a / 2, event.a % 2 != 0)->setValue(event.b);
        break;
    case TraceEvent::Length:
        rig.widget<QSpinBox>("spTraces")->setValue(event.a);
        model.setTraceLength(event.a);
        break;
    case TraceEvent::Press:
    case TraceEvent::Drag:
    case TraceEvent::Band:
        mouse(event);
        break;
    case TraceEvent::Clear:
        rig.widget<QPushButton>("btnClearTraces")->click();
        model.clear();
        break;
    case TraceEvent::PlotArea:
        if (isFixed)
            setPlotArea(anyPlotArea(random, event.a != 0));
        break;
    case TraceEvent::Resize:
        rig.tool()->resize(between(random, 700, 1300), between(random, 400, 900));
        break;
    case TraceEvent::Hide:
    case TraceEvent::Show:
        showOrHide(event.kind == TraceEvent::Show);
        break;
    case TraceEvent::Start:
        rig.call("on_pbStart_clicked");
        model.start();
        break;
    default:
        QCoreApplication::sendPostedEvents();
    }
    adoptSize();
    rig.link.calls.clear();
}

void TracePair::showOrHide(bool isShown)
{
    if (!isShown) {
        rig.tool()->hide();
        rig.tool()->hidePlugin();
        model.hide();
        return;
    }
    rig.link.position0 = position.x();
    rig.link.position1 = position.y();
    rig.tool()->show();
    rig.tool()->showPlugin();
    model.show(position);
}

void TracePair::samples(const TraceEvent &event)
{
    Random random(event.seed);
    for (int i = 0; i < event.a; ++i) {
        const auto step = [&](int from) {
            return qBound(-farthest, from + between(random, -event.b, event.b), farthest);
        };
        position = {step(position.x()), step(position.y())};
        rig.sample(position.x(), position.y());
        model.sample(position);
    }
}

void TracePair::wheel(const TraceEvent &event)
{
    Random random(event.seed);
    const QPoint at = anyPixel(random, 100);
    const HeldKeys keys(rig.tool(), Qt::ControlModifier);
    QWheelEvent turn(at, at, QPoint(), QPoint(0, event.a ? 120 : -120), Qt::NoButton,
                     Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(rig.tool(), &turn);
    model.zoom(event.a != 0, at);
}

void TracePair::mouse(const TraceEvent &event)
{
    // An invisible view zooms into no rectangle; the model's is always visible.
    if (!rig.view()->isVisible())
        return;
    Random random(event.seed);
    std::optional<HeldKeys> keys;
    Qt::MouseButton button = Qt::LeftButton;
    if (event.kind == TraceEvent::Band) {
        keys.emplace(rig.tool(), Qt::ControlModifier);
        if (event.a)
            button = Qt::RightButton;
    }
    QPoint at = anyPixel(random, 0);
    mouseStep(QEvent::MouseButtonPress, at, button);
    for (int step = event.kind == TraceEvent::Press ? 0 : between(random, 1, 4); step > 0; --step) {
        at = anyPixel(random, event.kind == TraceEvent::Drag ? 300 : 0);
        mouseStep(QEvent::MouseMove, at, button);
    }
    mouseStep(QEvent::MouseButtonRelease, at, button);
}

void TracePair::mouseStep(QEvent::Type type, const QPoint &at, Qt::MouseButton button)
{
    for (QtCharts::QChartView *view : {rig.view(), model.view()}) {
        QMouseEvent event(type, at, at, view->viewport()->mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton
                                                             : Qt::MouseButtons(button),
                          QGuiApplication::keyboardModifiers());
        QCoreApplication::sendEvent(view->viewport(), &event);
    }
}

QString TracePair::difference()
{
    QString all;
    if (!isSame(rig.trace()->pointsVector(), model.trace))
        all += QStringLiteral("trace: %1 and not %2; ")
                   .arg(textOf(rig.trace()->pointsVector()), textOf(model.trace));
    all +=
        compared("plot area", textOf(rig.chart()->plotArea()), textOf(model.chart()->plotArea()));
    all += compared("horizontal axis", textOf(rig.axisX()), textOf(model.valueAxis(0)));
    all += compared("vertical axis", textOf(rig.axisY()), textOf(model.valueAxis(1)));
    for (int i = 0; i < 4; ++i)
        all += compared(limitNames[i], textOf(rig.widget<QSpinBox>(limitNames[i])),
                        textOf(model.limit(i / 2, i % 2 != 0)));
    all += compared("target", textOf(rig.target()->pointsVector()),
                    textOf(model.target->pointsVector()));
    all += compared("actual", textOf(rig.actual()->pointsVector()),
                    textOf(model.actual->pointsVector()));
    return all;
}
