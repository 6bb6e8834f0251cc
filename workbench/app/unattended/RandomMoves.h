#pragma once

#include "ScriptedMove.h"

namespace workbench {

/// The corners of an area, position units; they belong to it. `low` is not above `high` in either
/// direction.
struct MoveArea
{
    QPoint low{-2000, -2000};
    QPoint high{2000, 2000};
};

/// Moves to random places within the area, the same ones for the same seed on every machine. Beside
/// plain ones there are some of no length, some along one axis, some from edge to edge, and some
/// that are turned or stopped in mid-move.
QVector<ScriptedMove> randomMoves(int count, quint32 seed, const MoveArea &area);

} // namespace workbench
