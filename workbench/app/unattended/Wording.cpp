#include "Wording.h"

#include "CommandLine.h"
#include "FlightProgress.h"
#include "MoveResult.h"
#include "PositionPacking.h"

namespace workbench {

namespace {

QString way(const MoveResult &move)
{
    const QString picked = wording::place(move.picked);
    const QString halt = wording::place(move.halt);
    switch (move.planned.kind) {
    case ScriptedMove::Turned:
        return QStringLiteral("target %1, on the way turned to %2; end %3")
            .arg(picked, wording::place(move.turnPicked), halt);
    case ScriptedMove::Stopped:
        return QStringLiteral("target %1, on the way stopped; halted at %2").arg(picked, halt);
    case ScriptedMove::Straight:
        break;
    }
    const QString asked =
        move.planned.isExact
            ? QStringLiteral("asked for %1, ").arg(wording::place(move.planned.target))
            : QString();
    return asked + QStringLiteral("target %1; end %2").arg(picked, halt);
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

QString titleOf(const FlightProgress &flight, int index)
{
    return QStringLiteral("point %1 of %2: %3")
        .arg(index + 1)
        .arg(flight.pointCount())
        .arg(wording::place(flight.point(index)));
}

} // namespace

QString wording::place(const QPointF &position)
{
    constexpr int digits = 10;
    return QStringLiteral("%1,%2")
        .arg(position.x(), 0, 'g', digits)
        .arg(position.y(), 0, 'g', digits);
}

QString wording::moveUnderWay(int number, const QPointF &shown, int sampleCount)
{
    return QStringLiteral("move %1: %2, %3 samples").arg(number).arg(place(shown)).arg(sampleCount);
}

QString wording::moveDone(int number, const MoveResult &move)
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

QString wording::moveFailed(int number, const QString &reason)
{
    return QStringLiteral("move %1: %2").arg(number).arg(reason);
}

QString wording::targetNotShown(const QPointF &target)
{
    return QStringLiteral("the chart cannot show the target %1").arg(place(target));
}

QString wording::axesAt(const QPointF &position)
{
    return QStringLiteral("; the axes are at %1").arg(place(position));
}

QString wording::endedElsewhere(const QPointF &end, const QPointF &target)
{
    return QStringLiteral("ended at %1 instead of %2").arg(place(end), place(target));
}

QString wording::shownElsewhere(const QPointF &shown, const QPointF &axes)
{
    return QStringLiteral("the panel shows %1 while the axes are at %2")
        .arg(place(shown), place(axes));
}

QString wording::offTheLine(double units)
{
    return QStringLiteral("%1 units off the straight line").arg(units);
}

QString wording::flightUnderWay(const FlightProgress &flight, const QPointF &shown)
{
    return QStringLiteral("point %1 of %2: on the way at %3, %4 samples")
        .arg(flight.reachedCount() + 1)
        .arg(flight.pointCount())
        .arg(place(shown))
        .arg(flight.sampleCount());
}

QString wording::pointReached(const FlightProgress &flight, int index)
{
    return QStringLiteral("%1: reached after %2 s")
        .arg(titleOf(flight, index))
        .arg(flight.secondsTo(index), 0, 'f', 2);
}

QString wording::flightDone(const FlightProgress &flight)
{
    return QStringLiteral(
               "flight path: %1 of %2 points reached; %3 s, %4 samples, %5/s; at most %6 "
               "units off the straight segments")
        .arg(flight.reachedCount())
        .arg(flight.pointCount())
        .arg(flight.secondsTo(flight.pointCount() - 1), 0, 'f', 2)
        .arg(flight.sampleCount())
        .arg(flight.samplesPerSecond(), 0, 'f', 0)
        .arg(flight.largestDeviation(), 0, 'f', 1);
}

QString wording::flightFailed(const QString &reason)
{
    return QStringLiteral("flight path: %1").arg(reason);
}

QString wording::pointNotReached(const FlightProgress &flight, int index, const QString &reason,
                                 const QPointF &axes)
{
    return QStringLiteral("%1: not reached, %2").arg(titleOf(flight, index), reason) + axesAt(axes);
}

QString wording::flightEndedElsewhere(const QPointF &end, const QPointF &shown)
{
    return QStringLiteral("ended at %1, the panel shows %2").arg(place(end), place(shown));
}

QString wording::offTheSegments(double units)
{
    return QStringLiteral("%1 units off the straight segments").arg(units);
}

QString wording::ofFile(const QString &fileName, const QString &remark)
{
    return QStringLiteral("%1: %2").arg(fileName, remark);
}

QString wording::noSuchPoint(int number, int pointCount)
{
    return QStringLiteral("has no point %1, only %2").arg(number).arg(pointCount);
}

QString wording::pointOutOfRange(int number, const QPointF &point)
{
    return QStringLiteral("point %1 at %2 is out of the chip's range, %3 to %4")
        .arg(number)
        .arg(place(point))
        .arg(minimumPosition)
        .arg(maximumPosition);
}

QString wording::fractionsDropped(int count, int total, const QPointF &first, const QPointF &driven)
{
    return QStringLiteral("%1 of %2 points with fractions, which the panel drops: %3 is driven to "
                          "as %4")
        .arg(count)
        .arg(total)
        .arg(place(first), place(driven));
}

QString wording::noTool(const QString &pluginsFolder)
{
    return QStringLiteral("no Synchronized drive plug-in in %1").arg(pluginsFolder);
}

QString wording::panelLacks(const QString &part)
{
    return QStringLiteral("the panel has no %1").arg(part);
}

QString wording::allAsPlanned(const Options &options, qint64 recordedSamples)
{
    QString text = QStringLiteral("all moves as planned");
    if (!options.replayFile.isEmpty())
        text += QStringLiteral(", as on %1").arg(options.replayFile);
    if (!options.pictureFile.isEmpty())
        text += QStringLiteral("; picture in %1").arg(options.pictureFile);
    if (!options.recordFile.isEmpty())
        text += QStringLiteral("; %1 samples in %2").arg(recordedSamples).arg(options.recordFile);
    return text;
}

QString wording::notAsInReport(int differences, const QString &fileName)
{
    return QStringLiteral("%1 differences from %2").arg(differences).arg(fileName);
}

QString wording::notAsOnTape(const QString &deviation)
{
    return QStringLiteral("not as on the tape: %1").arg(deviation);
}

QString wording::tapeWaits(const QString &write)
{
    return QStringLiteral("the tape waits for %1, which does not come").arg(write);
}

QString wording::tapeNotPlayed(const QString &nextWrite)
{
    return QStringLiteral("the tape was not played to its end, where %1")
        .arg(nextWrite.isEmpty() ? QStringLiteral("the axes still move")
                                 : QStringLiteral("%1 comes next").arg(nextWrite));
}

} // namespace workbench
