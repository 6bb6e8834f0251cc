#include "ScriptedMove.h"

namespace workbench {

QVector<ScriptedMove> builtInMoves()
{
    return {{ScriptedMove::Straight, {1500, 900}, {}, false},
            {ScriptedMove::Turned, {-1400, 1200}, {-900, -1100}, false},
            {ScriptedMove::Stopped, {1300, -500}, {}, false}};
}

QVector<ScriptedMove> movesTo(const QVector<QPoint> &targets)
{
    QVector<ScriptedMove> moves;
    for (const QPoint &target : targets)
        moves.append({ScriptedMove::Straight, target, {}, true});
    return moves;
}

} // namespace workbench
