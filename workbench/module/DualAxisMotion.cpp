#include "DualAxisMotion.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

constexpr double nsPerSecond = 1e9;

// What arithmetic adds to a velocity that is a whole number.
constexpr double velocityNoise = 1e-6;

} // namespace

bool AxisCommand::operator==(const AxisCommand &other) const
{
    return target == other.target && ramp == other.ramp;
}

void DualAxisMotion::placeAt(const std::array<int, axisCount> &positions)
{
    mode = MotionMode::Hold;
    commands = {};
    now = {};
    std::copy(positions.begin(), positions.end(), now.position.begin());
    plan();
}

void DualAxisMotion::advanceTo(qint64 ns)
{
    if (ns <= timeNs)
        return;
    while (dueNs <= ns) {
        timeNs = dueNs;
        now = stateAt(timeNs);
        plan();
    }
    timeNs = ns;
    now = stateAt(timeNs);
}

void DualAxisMotion::command(MotionMode newMode, const MotionCommand &newCommands)
{
    if (newMode == mode && newCommands == commands)
        return;
    mode = newMode;
    commands = newCommands;
    plan();
}

int DualAxisMotion::position(int axis) const
{
    const double rounded = std::floor(now.position[std::size_t(axis)] + 0.5);
    return int(std::clamp<double>(rounded, minimumPosition, maximumPosition));
}

int DualAxisMotion::velocity(int axis) const
{
    const double exact = now.velocity[std::size_t(axis)];
    if (exact == 0)
        return 0;
    const double size = std::max(1.0, std::ceil(std::abs(exact) - velocityNoise));
    const int limited = int(std::min<double>(size, std::numeric_limits<int>::max()));
    return exact < 0 ? -limited : limited;
}

DualAxisMotion::State DualAxisMotion::stateAt(qint64 ns) const
{
    const double seconds = double(ns - startNs) / nsPerSecond;
    State state;
    state.position = start.position;
    std::array<double, axisCount> ends{};
    for (const Component &component : current.components) {
        const Profile::State along = component.profile.at(seconds);
        for (std::size_t i = 0; i < axisCount; ++i) {
            if (component.direction[i] == 0)
                continue;
            state.position[i] += component.direction[i] * along.position;
            state.velocity[i] += component.direction[i] * along.speed;
            ends[i] = std::max(ends[i], component.profile.duration());
        }
    }
    // The sum ends next to the target by rounding; the axis ends on it.
    for (std::size_t i = 0; i < axisCount; ++i) {
        if (current.arrives[i] && seconds >= ends[i])
            state.position[i] = commands[i].target;
    }
    return state;
}

void DualAxisMotion::plan()
{
    start = now;
    startNs = timeNs;
    current = mode == MotionMode::Linked ? planLinked() : planEachAxis();

    const double due = double(startNs) + std::ceil(current.replanAfter * nsPerSecond);
    const qint64 never = std::numeric_limits<qint64>::max();
    // One nanosecond more, so that what ends then has ended in spite of rounding.
    dueNs = due < double(never) / 2 ? qint64(due) + 1 : never;
}

} // namespace workbench
