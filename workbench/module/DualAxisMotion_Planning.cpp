// How DualAxisMotion decides on its motion. Directions and ways along a line are measured by their
// larger component, so the axis with more way to go moves one unit for each unit of the line.

#include "DualAxisMotion.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

using Vector = std::array<double, axisCount>;

// Turning in a curve is preferred to halting first until it takes that much longer.
constexpr double turnPreference = 1.5;

std::size_t leadingAxis(const Vector &vector)
{
    return std::abs(vector[0]) >= std::abs(vector[1]) ? 0 : 1;
}

double length(const Vector &vector)
{
    return std::abs(vector[leadingAxis(vector)]);
}

Vector directionOf(const Vector &vector)
{
    const double size = length(vector);
    return {vector[0] / size, vector[1] / size};
}

Vector unitVector(std::size_t axis)
{
    return axis == 0 ? Vector{1, 0} : Vector{0, 1};
}

} // namespace

DualAxisMotion::Vector DualAxisMotion::wayFrom(const Vector &from) const
{
    Vector way{};
    for (std::size_t i = 0; i < axisCount; ++i) {
        const double distance = commands[i].target - from[i];
        way[i] = std::abs(distance) < negligibleDistance ? 0 : distance;
    }
    return way;
}

RampLimits DualAxisMotion::limitsOf(std::size_t axis) const
{
    return axisLimits(commands[axis].ramp);
}

RampLimits DualAxisMotion::lineLimits(const Vector &direction) const
{
    if (direction[0] == 0)
        return limitsAlong(limitsOf(1), std::abs(direction[1]));
    if (direction[1] == 0)
        return limitsAlong(limitsOf(0), std::abs(direction[0]));
    return bothLimits(limitsAlong(limitsOf(0), std::abs(direction[0])),
                      limitsAlong(limitsOf(1), std::abs(direction[1])));
}

DualAxisMotion::Plan DualAxisMotion::planEachAxis() const
{
    Plan result;
    for (std::size_t i = 0; i < axisCount; ++i) {
        PlannedMove move;
        if (mode == MotionMode::Hold)
            move.profile = planHalt(limitsOf(i), start.velocity[i]);
        else
            move = planMove(limitsOf(i), wayFrom(start.position)[i], start.velocity[i]);
        result.arrives[i] = move.arrives;
        result.components.push_back({unitVector(i), move.profile});
    }
    return result;
}

DualAxisMotion::Plan DualAxisMotion::planLinked() const
{
    const Vector way = wayFrom(start.position);
    if (length(start.velocity) == 0)
        return planStraight(way, 0);
    if (runsStraightToTarget(way)) {
        const std::size_t leading = leadingAxis(way);
        return planStraight(way, std::abs(start.velocity[leading]));
    }
    // A pair that may not go on is halted here too: turning takes at least twice as long as
    // halting.
    const Plan turn = planTurn();
    const Plan stopAndGo = planStopAndGo();
    return turn.duration <= turnPreference * stopAndGo.duration ? turn : stopAndGo;
}

bool DualAxisMotion::runsStraightToTarget(const Vector &way) const
{
    const Vector &velocity = start.velocity;
    const std::size_t leading = leadingAxis(way);
    if (velocity[leading] * way[leading] <= 0)
        return false;
    const double miss = (velocity[0] * way[1] - velocity[1] * way[0]) / length(velocity);
    const double braking =
        lineLimits(directionOf(way)).brakingDistance(std::abs(velocity[leading]));
    return std::abs(miss) < negligibleDistance && braking <= length(way) + negligibleDistance;
}

DualAxisMotion::Plan DualAxisMotion::planStraight(const Vector &way, double speed) const
{
    Plan result;
    result.arrives = {true, true};
    if (length(way) == 0)
        return result;
    const Vector direction = directionOf(way);
    const PlannedMove move = planMove(lineLimits(direction), length(way), speed);
    result.components.push_back({direction, move.profile});
    result.arrives = {move.arrives, move.arrives};
    result.duration = move.profile.duration();
    return result;
}

DualAxisMotion::Plan DualAxisMotion::planHaltAlongLine() const
{
    const Vector direction = directionOf(start.velocity);
    Plan result;
    result.components.push_back(
        {direction, planHalt(lineLimits(direction), length(start.velocity))});
    result.duration = result.components.front().profile.duration();
    return result;
}

// Halts along the present line; the straight way from there is planned at the halt.
DualAxisMotion::Plan DualAxisMotion::planStopAndGo() const
{
    Plan result = planHaltAlongLine();
    result.replanAfter = result.duration;
    const Component &halt = result.components.front();
    Vector end = start.position;
    for (std::size_t i = 0; i < axisCount; ++i)
        end[i] += halt.direction[i] * halt.profile.endPosition();
    result.duration += planStraight(wayFrom(end), 0).duration;
    return result;
}

// Each axis brakes its present velocity while the straight way from where that would end to the
// target is begun; when the braking is over, the pair is on that way and plans the rest of it with
// all of its limits. Until then braking and starting each have half of an axis's weakest rate. That
// also bounds the velocity: what an axis gains on the way it has lost by braking.
DualAxisMotion::Plan DualAxisMotion::planTurn() const
{
    Plan result;
    result.replanAfter = 0;
    Vector end = start.position;
    for (std::size_t i = 0; i < axisCount; ++i) {
        Profile braking(start.velocity[i]);
        braking.changeSpeed(0, limitsOf(i).weakestChange() / 2);
        end[i] += braking.endPosition();
        result.replanAfter = std::max(result.replanAfter, braking.duration());
        result.components.push_back({unitVector(i), braking});
    }
    result.arrives = {true, true};
    result.duration = result.replanAfter;
    const Vector way = wayFrom(end);
    if (length(way) == 0)
        return result;

    const Vector direction = directionOf(way);
    const PlannedMove move = planMove(turnLimits(direction), length(way), 0);
    result.components.push_back({direction, move.profile});
    result.arrives = {move.arrives, move.arrives};
    const Profile::State then = move.profile.at(result.replanAfter);
    const double rest = length(way) - then.position;
    result.duration += planMove(lineLimits(direction), rest, then.speed).profile.duration();
    return result;
}

RampLimits DualAxisMotion::turnLimits(const Vector &direction) const
{
    RampLimits limits{
        std::numeric_limits<double>::infinity(),
        {{0, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()}}};
    for (std::size_t i = 0; i < axisCount; ++i) {
        if (direction[i] == 0)
            continue;
        const RampLimits axis = limitsOf(i);
        const double rate = axis.weakestChange() / 2;
        limits = bothLimits(limits, limitsAlong({axis.reachableSpeed(), {{0, rate, rate}}},
                                                std::abs(direction[i])));
    }
    return limits;
}

} // namespace workbench
