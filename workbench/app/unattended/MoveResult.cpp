#include "MoveResult.h"

#include "PathMeasure.h"

#include <algorithm>

namespace workbench {

namespace {

constexpr double nsPerSecond = 1e9;

QString way(const MoveResult &move)
{
    const QString picked = describe(move.picked);
    switch (move.planned.kind) {
    case ScriptedMove::Turned:
        return QStringLiteral("target %1, on the way turned to %2; end %3")
            .arg(picked, describe(move.turnPicked), describe(move.halt));
    case ScriptedMove::Stopped:
        return QStringLiteral("target %1, on the way stopped; halted at %2")
            .arg(picked, describe(move.halt));
    case ScriptedMove::Straight:
        break;
    }
    const QString asked = move.planned.isExact
                              ? QStringLiteral("asked for %1, ").arg(describe(move.planned.target))
                              : QString();
    return asked + QStringLiteral("target %1; end %2").arg(picked, describe(move.halt));
}

QString line(ScriptedMove::Kind kind)
{
    switch (kind) {
    case ScriptedMove::Turned:
        return QStringLiteral("the two lines through the turn");
    case ScriptedMove::Stopped:
        return QStringLiteral("the straight line before the stop");
    case ScriptedMove::Straight:
        break;
    }
    return QStringLiteral("the straight line");
}

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

QString describe(const MoveResult &move, int number)
{
    return QStringLiteral("move %1: %2; %3 s, %4 samples, %5/s; at most %6 units off %7")
        .arg(number)
        .arg(way(move))
        .arg(durationSeconds(move), 0, 'f', 2)
        .arg(move.samples.size())
        .arg(samplesPerSecond(move), 0, 'f', 0)
        .arg(largestDeviation(move), 0, 'f', 1)
        .arg(line(move.planned.kind));
}

QString describe(const QPoint &point)
{
    return QStringLiteral("%1,%2").arg(point.x()).arg(point.y());
}

} // namespace workbench
