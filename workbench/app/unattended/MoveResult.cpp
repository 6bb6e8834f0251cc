#include "MoveResult.h"

#include "PathMeasure.h"

#include <algorithm>

namespace workbench {

namespace {

constexpr double nsPerSecond = 1e9;

} // namespace

double durationSeconds(const MoveResult &move)
{
    const auto lastElsewhere =
        std::find_if(move.samples.crbegin(), move.samples.crend(),
                     [&](const Sample &sample) { return sample.position != move.halt; });
    if (lastElsewhere == move.samples.crend())
        return 0;
    const auto arrival = lastElsewhere.base();
    const qint64 endNs = arrival == move.samples.cend() ? lastElsewhere->timeNs : arrival->timeNs;
    return static_cast<double>(endNs - move.startNs) / nsPerSecond;
}

double samplesPerSecond(const MoveResult &move)
{
    if (move.samples.size() < 2)
        return 0;
    const qint64 span = move.samples.constLast().timeNs - move.samples.constFirst().timeNs;
    return span > 0 ? (move.samples.size() - 1) * nsPerSecond / static_cast<double>(span) : 0;
}

MoveFigures figuresOf(const MoveResult &move)
{
    constexpr double nsPerMs = 1e6;
    MoveFigures figures;
    figures.durationS = durationSeconds(move);
    figures.latenessMs = static_cast<double>(move.endNs - move.restNs) / nsPerMs;
    if (move.planned.kind != ScriptedMove::Turned)
        figures.deviationUnits = largestDeviation(move);
    figures.samples = move.samples.size();
    return figures;
}

double largestDeviation(const MoveResult &move)
{
    switch (move.planned.kind) {
    case ScriptedMove::Turned:
        return largestDistanceFromPath(move.samples, {move.start, move.turnedAt, move.turnPicked});
    case ScriptedMove::Stopped:
        return largestDistanceFromPath(move.samples.mid(0, move.stopSample),
                                       {move.start, move.picked});
    case ScriptedMove::Straight:
        break;
    }
    return largestDistanceFromPath(move.samples, {move.start, move.picked});
}

} // namespace workbench
