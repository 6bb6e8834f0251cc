#include "RandomMoves.h"

#include <random>

namespace workbench {

namespace {

/// Shorter moves are over before anything can be done on the way.
constexpr int shortestStepIn = 400;

/// Draws the moves one after another. The standard library's distributions differ between
/// libraries, its generators do not.
class Dice
{
public:
    Dice(quint32 seed, const MoveArea &moveArea)
        : chance(seed)
        , area(moveArea)
    {
    }

    ScriptedMove next();

private:
    int below(int count) { return static_cast<int>(chance() % static_cast<quint32>(count)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    QPoint place();
    QPoint edge();
    QPoint alongOneAxis();

    std::mt19937 chance;
    MoveArea area;
    QPoint from;
};

QPoint Dice::place()
{
    const int x = between(area.low.x(), area.high.x());
    const int y = between(area.low.y(), area.high.y());
    return {x, y};
}

/// The corner that is farthest away.
QPoint Dice::edge()
{
    const QPoint centre = (area.low + area.high) / 2;
    return {from.x() > centre.x() ? area.low.x() : area.high.x(),
            from.y() > centre.y() ? area.low.y() : area.high.y()};
}

QPoint Dice::alongOneAxis()
{
    const QPoint other = place();
    return below(2) == 0 ? QPoint(other.x(), from.y()) : QPoint(from.x(), other.y());
}

ScriptedMove Dice::next()
{
    // Of twenty moves: one of no length, three along an axis, two far ones, two turned, two
    // stopped.
    constexpr int sides = 20;
    const int thrown = below(sides);
    ScriptedMove move;
    move.isExact = true;
    move.target = place();
    if (thrown == 0)
        move.target = from;
    else if (thrown <= 3)
        move.target = alongOneAxis();
    else if (thrown <= 5)
        move.target = edge();
    const bool isLong = (move.target - from).manhattanLength() >= shortestStepIn;
    if (thrown >= 16 && isLong) {
        move.kind = thrown >= 18 ? ScriptedMove::Turned : ScriptedMove::Stopped;
        move.turnTarget = place();
        move.isExact = false;
    }
    from = move.kind == ScriptedMove::Turned ? move.turnTarget : move.target;
    return move;
}

} // namespace

QVector<ScriptedMove> randomMoves(int count, quint32 seed, const MoveArea &area)
{
    Dice dice(seed, area);
    QVector<ScriptedMove> moves;
    moves.reserve(count);
    for (int i = 0; i < count; ++i)
        moves.append(dice.next());
    return moves;
}

} // namespace workbench
