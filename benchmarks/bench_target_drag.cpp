// Dragging the target over a trace that stays as it is.

#include "DriveScene.h"

#include <QApplication>
#include <QMouseEvent>

#include <cmath>

namespace {

constexpr int reach = 2048;

/// The pointer runs round the middle of the plot area with the left button held.
class Drag
{
public:
    explicit Drag(int tracePoints);

    harness::Cost move();

private:
    QPointF pointer() const;
    void send(QEvent::Type type, Qt::MouseButton button);

    DriveScene scene;
    double angle = 0;
};

Drag::Drag(int tracePoints)
    : scene(reach, tracePoints)
{
    scene.pressStart();
    scene.refill(tracePoints);
    scene.endMove();
    harness::paintPosted();
    send(QEvent::MouseButtonPress, Qt::LeftButton);
    harness::paintPosted();
}

QPointF Drag::pointer() const
{
    constexpr double radius = 100; // pixels
    return scene.chart()->plotArea().center() +
           QPointF(radius * std::cos(angle), radius * std::sin(angle));
}

void Drag::send(QEvent::Type type, Qt::MouseButton button)
{
    QWidget *const viewport = scene.view()->viewport();
    QMouseEvent event(type, pointer(), viewport->mapToGlobal(pointer().toPoint()), button,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &event);
}

harness::Cost Drag::move()
{
    constexpr double stepAngle = 0.05;
    angle += stepAngle;
    harness::Cost cost;
    cost.model = harness::millisecondsOf([this] { send(QEvent::MouseMove, Qt::NoButton); });
    cost.paint = scene.paints().paint();
    return cost;
}

} // namespace

int main(int argc, char *argv[])
{
    harness::beginHeadless();
    QApplication app(argc, argv);
    const harness::Program program(QStringLiteral("Dragging the target, a mouse move"));
    Drag shortTrace(1000);
    Drag longTrace(100000);
    const QVector<harness::Result> results =
        harness::takeTurns({{harness::count(1000), [&shortTrace] { return shortTrace.move(); }},
                            {harness::count(100000), [&longTrace] { return longTrace.move(); }}},
                           program.effort(100));

    harness::Table table({QStringLiteral("trace points"), QStringLiteral("model ms"),
                          QStringLiteral("paint ms"), QStringLiteral("together ms"),
                          QStringLiteral("against the first"), QStringLiteral("steps")});
    for (const harness::Result &result : results)
        table.addRow({result.name, harness::number(result.median.model),
                      harness::number(result.median.paint), harness::number(result.medianTotal),
                      harness::ratio(result.medianTotal, results.constFirst().medianTotal),
                      QString::number(result.steps)});
    table.print();
    harness::Program::note(QStringLiteral("Medians; the two take turns."));
    return 0;
}
