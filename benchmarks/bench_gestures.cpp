// Everything that draws a full history anew, beside one replace of the points it ends with.

#include "ChartPlot.h"
#include "DriveScene.h"

#include "ToolRig.h"
#include "ToolsInterface.h"

#include <QAbstractButton>
#include <QApplication>
#include <QWheelEvent>

namespace {

constexpr int reach = 2048;
constexpr int historyPoints = 100000;

/// Counts the changes that a series announces; whoever draws it follows each of them.
class ChangeCount : public QObject
{
public:
    explicit ChangeCount(QtCharts::QXYSeries *series)
    {
        const auto changed = [this] { ++count; };
        connect(series, &QtCharts::QXYSeries::pointsReplaced, this, changed);
        connect(series, &QtCharts::QXYSeries::pointAdded, this, changed);
        connect(series, &QtCharts::QXYSeries::pointRemoved, this, changed);
        connect(series, &QtCharts::QXYSeries::pointsRemoved, this, changed);
        connect(series, &QtCharts::QXYSeries::pointReplaced, this, changed);
    }

    int count = 0;
};

struct Gesture
{
    QString name;
    /// Does the gesture and returns how long its last event, the one that redraws, was handled.
    std::function<double(DriveScene &)> perform;
};

double click(DriveScene &scene, const char *button)
{
    return harness::millisecondsOf([&] { scene.button(button)->click(); });
}

QPointF inPlot(const DriveScene &scene, double x, double y)
{
    const QRectF plot = scene.chart()->plotArea();
    return {plot.left() + x * plot.width(), plot.top() + y * plot.height()};
}

/// Straight to the panel, where a turn over the chart ends up.
double turnWheel(DriveScene &scene)
{
    constexpr int oneNotch = 120;
    const HeldKeys ctrl(scene.tool(), Qt::ControlModifier);
    const QPoint at = scene.view()->mapTo(scene.tool(), inPlot(scene, 0.4, 0.4).toPoint());
    QWheelEvent event(at, scene.tool()->mapToGlobal(at), QPoint(), QPoint(0, oneNotch),
                      Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    return harness::millisecondsOf([&] { QCoreApplication::sendEvent(scene.tool(), &event); });
}

double sendMouse(DriveScene &scene, QEvent::Type type, const QPointF &at, Qt::MouseButton button,
                 Qt::MouseButtons buttons)
{
    QWidget *const viewport = scene.view()->viewport();
    QMouseEvent event(type, at, viewport->mapToGlobal(at.toPoint()), button, buttons,
                      Qt::ControlModifier);
    return harness::millisecondsOf([&] { QCoreApplication::sendEvent(viewport, &event); });
}

double drawRubberBand(DriveScene &scene)
{
    const HeldKeys ctrl(scene.tool(), Qt::ControlModifier);
    const QPointF from = inPlot(scene, 0.25, 0.25);
    const QPointF to = inPlot(scene, 0.75, 0.75);
    sendMouse(scene, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    sendMouse(scene, QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    harness::paintPosted();
    return sendMouse(scene, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
}

double followView(DriveScene &scene)
{
    constexpr int beyond = 100;
    scene.sample({QPointF(reach + beyond, 0)});
    return harness::millisecondsOf([&scene] { scene.updateTick(); });
}

QVector<Gesture> allGestures()
{
    return {{QStringLiteral("zoom in"), [](DriveScene &s) { return click(s, "btnZoomIn"); }},
            {QStringLiteral("zoom out"), [](DriveScene &s) { return click(s, "btnZoomOut"); }},
            {QStringLiteral("wheel zoom"), turnWheel},
            {QStringLiteral("rubber band"), drawRubberBand},
            {QStringLiteral("view follows"), followView},
            {QStringLiteral("clear"), [](DriveScene &s) { return click(s, "btnClearTraces"); }}};
}

struct Stage
{
    DriveScene scene{reach, historyPoints};
    std::unique_ptr<ChartPlot> plain;
    int seriesChanges = 0;
    int pointsAtEnd = 0;
};

harness::Cost perform(Stage &stage, const Gesture &gesture)
{
    DriveScene &scene = stage.scene;
    scene.refill(historyPoints);
    const QRectF rangeBefore = scene.range();
    const ChangeCount changes(scene.trace());
    harness::Cost cost;
    cost.model = gesture.perform(scene);
    cost.paint = scene.paints().paint();
    stage.seriesChanges = changes.count;
    stage.pointsAtEnd = scene.trace()->count();
    if (scene.range() == rangeBefore && stage.pointsAtEnd > 1)
        qFatal("%s changes nothing.", qPrintable(gesture.name));
    return cost;
}

harness::Cost replaceAtOnce(Stage &stage)
{
    stage.plain->setRange(stage.scene.range());
    return stage.plain->replace(stage.scene.trace()->pointsVector());
}

void addRow(harness::Table &table, const Stage &stage, const QVector<harness::Result> &results)
{
    const harness::Result &tool = results.at(0);
    const harness::Result &plain = results.at(1);
    table.addRow({tool.name, harness::number(tool.median.model), harness::number(tool.median.paint),
                  harness::number(tool.medianTotal), harness::count(stage.pointsAtEnd),
                  harness::number(plain.median.model), harness::number(plain.median.paint),
                  harness::number(plain.medianTotal),
                  harness::ratio(tool.medianTotal, plain.medianTotal),
                  QString::number(stage.seriesChanges), QString::number(tool.steps)});
}

} // namespace

int main(int argc, char *argv[])
{
    harness::beginHeadless();
    QApplication app(argc, argv);
    const harness::Program program(
        QStringLiteral("Redrawing a history of %1 points").arg(harness::count(historyPoints)));
    Stage stage;
    stage.scene.pressStart();
    stage.plain = std::make_unique<ChartPlot>(PlotLook::of(stage.scene), SeriesChange::OneReplace);
    harness::Table table(QStringLiteral("gesture,model ms,paint ms,together ms,points at the end,"
                                        "replace: model ms,paint ms,together ms,tool : replace,"
                                        "changes of the series,steps")
                             .split(QLatin1Char(',')));
    for (const Gesture &gesture : allGestures()) {
        addRow(table, stage,
               harness::takeTurns({{gesture.name, [&] { return perform(stage, gesture); }},
                                   {QString(), [&stage] { return replaceAtOnce(stage); }}},
                                  program.effort(20)));
    }
    table.print();
    harness::Program::note(
        QStringLiteral("Medians. Each step begins with the whole history drawn. \"Replace\": a "
                       "plain chart that already has the new range gets the points that the tool's "
                       "trace ends with, in one call."));
    return 0;
}
