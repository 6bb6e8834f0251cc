#pragma once

#include <QPoint>
#include <QVector>

namespace workbench {

/// One move of an unattended run. Points in position units.
struct ScriptedMove
{
    enum Kind {
        Straight, ///< to the target without interruption
        Turned,   ///< another target is picked on the way
        Stopped,  ///< stopped on the way
    };

    Kind kind = Straight;
    QPoint target;
    QPoint turnTarget;    ///< for Turned
    bool isExact = false; ///< look closely enough that the pick hits the very target
};

/// What an unattended run does when no targets are given.
QVector<ScriptedMove> builtInMoves();

/// One plain move to each target.
QVector<ScriptedMove> movesTo(const QVector<QPoint> &targets);

} // namespace workbench
