// One update tick of a move with new points on a full trace, beside the same points in other plots.

#include "CurvePlot.h"
#include "DriveScene.h"

#include <QApplication>

namespace {

constexpr int reach = 2048;
constexpr int newPoints = 50;

/// Appending one by one takes seconds a step beyond this.
constexpr int mostForAppendEach = 20000;

struct Alternative
{
    QString name;
    std::unique_ptr<CurvePlot> plot;
};

Alternative alternative(const QString &name, std::unique_ptr<CurvePlot> plot, const QString &reason)
{
    return {plot ? name : name + QStringLiteral(" (%1)").arg(reason), std::move(plot)};
}

std::vector<Alternative> makeAlternatives(const PlotLook &look, int tracePoints)
{
    const auto tooSlow = QStringLiteral("too slow");
    const auto notBuiltIn = QStringLiteral("not built in");
    std::vector<Alternative> all;
    all.push_back(alternative(QStringLiteral("Qt Charts, one replace"),
                              makeChartPlot(look, SeriesChange::OneReplace), {}));
    all.push_back(alternative(
        QStringLiteral("Qt Charts, append each"),
        tracePoints > mostForAppendEach ? nullptr : makeChartPlot(look, SeriesChange::AppendEach),
        tooSlow));
    all.push_back(alternative(QStringLiteral("Qwt"), makeQwtPlot(look), notBuiltIn));
    all.push_back(alternative(QStringLiteral("QCustomPlot"), makeCustomPlot(look), notBuiltIn));
    return all;
}

harness::Cost toolStep(DriveScene &scene)
{
    scene.samplePath(newPoints);
    return scene.drawTick();
}

/// The alternatives follow the same path as the tool, each from its own walker along it.
harness::Contender contender(const Alternative &other, const WanderingPath &behindTrace)
{
    if (!other.plot)
        return {other.name, {}};
    const auto walker = std::make_shared<WanderingPath>(behindTrace);
    CurvePlot *const plot = other.plot.get();
    return {other.name, [plot, walker] { return plot->advance(walker->next(newPoints)); }};
}

QVector<harness::Result> measure(const harness::Program &program, int tracePoints)
{
    DriveScene scene(reach, tracePoints);
    scene.pressStart();
    scene.refill(tracePoints);
    const PlotLook look = PlotLook::of(scene);
    const std::vector<Alternative> alternatives = makeAlternatives(look, tracePoints);
    QVector<harness::Contender> contenders{
        {QStringLiteral("the tool"), [&scene] { return toolStep(scene); }}};
    for (const Alternative &other : alternatives) {
        if (other.plot)
            other.plot->setPoints(scene.trace()->pointsVector());
        contenders.append(contender(other, scene.path()));
    }
    const QVector<harness::Result> results = harness::takeTurns(contenders, program.effort());
    if (scene.range() != look.range)
        qFatal("The view has moved.");
    if (scene.trace()->count() != tracePoints)
        qFatal("The trace is not full: %d of %d points.", scene.trace()->count(), tracePoints);
    return results;
}

void addRows(harness::Table &table, int tracePoints, const QVector<harness::Result> &results)
{
    for (const harness::Result &result : results) {
        QStringList row{harness::count(tracePoints), result.name};
        if (result.steps > 0)
            row << harness::number(result.median.model) << harness::number(result.median.paint)
                << harness::number(result.medianTotal)
                << harness::ratio(result.medianTotal, results.constFirst().medianTotal)
                << QString::number(result.steps);
        table.addRow(row);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    harness::beginHeadless();
    QApplication app(argc, argv);
    const harness::Program program(QStringLiteral("Update tick with %1 new points").arg(newPoints));
    harness::Table table({QStringLiteral("trace points"), QStringLiteral("plot"),
                          QStringLiteral("model ms"), QStringLiteral("paint ms"),
                          QStringLiteral("together ms"), QStringLiteral("against the tool"),
                          QStringLiteral("steps")});
    for (int tracePoints : {1000, 5000, 20000, 100000})
        addRows(table, tracePoints, measure(program, tracePoints));
    table.print();
    harness::Program::note(
        QStringLiteral("Medians. Full traces, so each step drops as many old points as it adds. "
                       "Plot areas of %1 by %2 pixels, antialiased, the same pen.")
            .arg(DriveScene::plotPixels().width())
            .arg(DriveScene::plotPixels().height()));
    return 0;
}
