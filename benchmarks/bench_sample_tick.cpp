// What a sample costs the tool itself, on a link that answers at once.

#include "DriveScene.h"

#include "ToolsInterface.h"

#include <QApplication>
#include <QTimerEvent>

namespace {

constexpr int batch = 2000;
constexpr int historyPoints = 100000;
constexpr double nanosecondsPerMillisecond = 1e6;

/// A widget that only receives its timer's events.
class IdleWidget : public QWidget
{
protected:
    void timerEvent(QTimerEvent *) override {}
};

harness::Cost changedSamples(DriveScene &scene)
{
    const QVector<QPointF> points = scene.path().next(batch);
    harness::Cost cost;
    cost.model = harness::millisecondsOf([&] { scene.sample(points); });
    scene.updateTick();
    return cost;
}

harness::Cost sameSamples(DriveScene &scene)
{
    scene.sampleSame(1);
    harness::Cost cost;
    cost.model = harness::millisecondsOf([&] { scene.sampleSame(batch); });
    return cost;
}

harness::Cost bareRequests(DriveScene &scene)
{
    harness::Cost cost;
    cost.model = harness::millisecondsOf([&scene] {
        unsigned char high = 0;
        unsigned char middle = 0;
        for (int i = 0; i < batch; ++i)
            scene.tool()->userFunction(&high, &middle, 0xFD, 0);
    });
    return cost;
}

harness::Cost bareEvents(IdleWidget &widget)
{
    QTimerEvent event(1);
    harness::Cost cost;
    cost.model = harness::millisecondsOf([&] {
        for (int i = 0; i < batch; ++i)
            QCoreApplication::sendEvent(&widget, &event);
    });
    return cost;
}

} // namespace

int main(int argc, char *argv[])
{
    harness::beginHeadless();
    QApplication app(argc, argv);
    const harness::Program program(QStringLiteral("Sample tick"));
    DriveScene scene(2048, 1000);
    scene.pressStart();
    scene.samplePath(historyPoints);
    scene.updateTick();
    IdleWidget widget;

    const QVector<harness::Result> results = harness::takeTurns(
        {{QStringLiteral("sample tick, new position"), [&scene] { return changedSamples(scene); }},
         {QStringLiteral("sample tick, same position"), [&scene] { return sameSamples(scene); }},
         {QStringLiteral("the request alone"), [&scene] { return bareRequests(scene); }},
         {QStringLiteral("a timer event alone"), [&widget] { return bareEvents(widget); }}},
        program.effort(200));

    harness::Table table(
        {QStringLiteral("work"), QStringLiteral("ns each"), QStringLiteral("against the first")});
    for (const harness::Result &result : results)
        table.addRow({result.name,
                      harness::number(result.median.model * nanosecondsPerMillisecond / batch),
                      harness::ratio(result.median.model, results.constFirst().median.model)});
    table.print();
    harness::Program::note(QStringLiteral("Medians of batches of %1; history full; the link "
                                          "answers at once and keeps nothing.")
                               .arg(batch));
    return 0;
}
