#pragma once

#include "DriveScene.h"

/// The tool with a full trace on a simulated chip in real time, for moves of several seconds.
class LongMove
{
public:
    LongMove(int tracePoints, int requestCostUs);

    DriveScene &scene() { return drive; }

    /// Alternately in two opposite corners.
    QPointF farTarget();

    /// Runs the event loop until the move has begun to move.
    void start(const QPointF &target);

private:
    DriveScene drive;
    bool isOpposite = false;
};
