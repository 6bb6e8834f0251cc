#pragma once

#include "MoveTally.h"
#include "SampleTap.h"
#include "ScriptedMove.h"

#include <QVector>

namespace workbench {

/// What was seen of a move.
struct MoveResult
{
    ScriptedMove planned;
    QPoint start;
    QPoint picked; ///< the target that the chart took for the planned one, first and on the turn
    QPoint turnPicked;
    QPoint turnedAt;  ///< where the axes were when the chip got the second target
    QPoint halt;      ///< where they stopped
    int stopSample{}; ///< for Stopped: how many samples came before the button was pressed
    qint64 startNs = 0;
    qint64 restNs = 0; ///< when the axes came to rest, as far as the samples tell
    qint64 endNs = 0;  ///< when the panel had found the end
    QVector<Sample> samples;
};

/// Seconds from the start to the first sample at the place where the axes stayed.
double durationSeconds(const MoveResult &move);

/// 0 for less than two samples.
double samplesPerSecond(const MoveResult &move);

MoveFigures figuresOf(const MoveResult &move);

/// The largest distance in position units from the way that the axes were to take: a line, two
/// lines for a turned move, and for a stopped one the line until the button was pressed.
double largestDeviation(const MoveResult &move);

} // namespace workbench
