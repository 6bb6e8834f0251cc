#include "RunReport.h"

#include "CommandLine.h"
#include "FlightProgress.h"
#include "MoveResult.h"
#include "OutputFile.h"

#include <QJsonDocument>

namespace workbench {

namespace {

constexpr qint64 nsPerMicrosecond = 1000;

QJsonArray asJson(const QPoint &point)
{
    return {point.x(), point.y()};
}

QJsonObject optionsAsJson(const Options &options)
{
    QJsonArray faults;
    for (const Fault &fault : options.faults)
        faults.append(faultText(fault));
    QJsonArray targets;
    for (const QPoint &target : options.targets)
        targets.append(asJson(target));
    const QString clock =
        options.isTimeSimulated ? QStringLiteral("simulated") : QStringLiteral("real");
    return {{QStringLiteral("clock"), clock},
            {QStringLiteral("link_cost_us"), options.linkCostNs / nsPerMicrosecond},
            {QStringLiteral("seed"), static_cast<qint64>(options.seed)},
            {QStringLiteral("faults"), faults},
            {QStringLiteral("targets_units"), targets},
            {QStringLiteral("flight_path"), options.flightPathFile},
            {QStringLiteral("first_point"), options.firstPoint},
            {QStringLiteral("random_moves"), options.randomMoves},
            {QStringLiteral("area_units"),
             QJsonArray{asJson(options.area.low), asJson(options.area.high)}},
            {QStringLiteral("repetitions"), options.repetitions}};
}

QString kindName(ScriptedMove::Kind kind)
{
    switch (kind) {
    case ScriptedMove::Turned:
        return QStringLiteral("turned");
    case ScriptedMove::Stopped:
        return QStringLiteral("stopped");
    case ScriptedMove::Straight:
        break;
    }
    return QStringLiteral("straight");
}

QJsonObject figuresAsJson(const MoveFigures &figures, double samplesPerS, quint64 failedRequests)
{
    QJsonObject json{{QStringLiteral("duration_s"), figures.durationS},
                     {QStringLiteral("end_seen_late_ms"), figures.latenessMs},
                     {QStringLiteral("samples"), figures.samples},
                     {QStringLiteral("samples_per_s"), samplesPerS},
                     {QStringLiteral("failed_requests"), static_cast<qint64>(failedRequests)}};
    if (figures.deviationUnits)
        json.insert(QStringLiteral("largest_deviation_units"), *figures.deviationUnits);
    return json;
}

} // namespace

RunReport::RunReport(const Options &options, const QString &toolVersion, const QString &chipName)
    : head{{QStringLiteral("schema"), QStringLiteral("workbench-report")},
           {QStringLiteral("schema_version"), schemaVersion},
           {QStringLiteral("workbench_version"), QStringLiteral(WORKBENCH_VERSION)},
           {QStringLiteral("tool_version"), toolVersion},
           {QStringLiteral("chip"), chipName},
           {QStringLiteral("options"), optionsAsJson(options)}}
{
}

void RunReport::append(QJsonObject move)
{
    move.insert(QStringLiteral("number"), moves.size() + 1);
    moves.append(move);
}

void RunReport::add(const MoveResult &move, std::optional<double> promisedS, quint64 failedRequests)
{
    QJsonObject json = figuresAsJson(figuresOf(move), samplesPerSecond(move), failedRequests);
    json.insert(QStringLiteral("kind"), kindName(move.planned.kind));
    json.insert(QStringLiteral("start_units"), asJson(move.start));
    json.insert(QStringLiteral("target_units"), asJson(move.picked));
    json.insert(QStringLiteral("end_units"), asJson(move.halt));
    if (move.planned.kind == ScriptedMove::Turned)
        json.insert(QStringLiteral("turn_target_units"), asJson(move.turnPicked));
    if (promisedS)
        json.insert(QStringLiteral("promised_duration_s"), *promisedS);
    append(json);
}

void RunReport::add(const FlightProgress &flight, double latenessMs, quint64 failedRequests)
{
    MoveFigures figures;
    figures.durationS = flight.secondsTo(flight.pointCount() - 1);
    figures.latenessMs = latenessMs;
    figures.deviationUnits = flight.largestDeviation();
    figures.samples = flight.sampleCount();
    QJsonObject json = figuresAsJson(figures, flight.samplesPerSecond(), failedRequests);
    QJsonArray points;
    for (int i = 0; i < flight.reachedCount(); ++i)
        points.append(QJsonObject{{QStringLiteral("target_units"), asJson(flight.point(i))},
                                  {QStringLiteral("reached_after_s"), flight.secondsTo(i)}});
    json.insert(QStringLiteral("kind"), QStringLiteral("flight path"));
    json.insert(QStringLiteral("points"), points);
    append(json);
}

QJsonObject RunReport::object() const
{
    QJsonObject whole = head;
    whole.insert(QStringLiteral("moves"), moves);
    return whole;
}

QString RunReport::write(const QString &fileName) const
{
    QSaveFile file;
    const QString problem = openOutput(file, fileName);
    if (!problem.isEmpty())
        return problem;
    file.write(QJsonDocument(object()).toJson());
    return commitOutput(file);
}

} // namespace workbench
