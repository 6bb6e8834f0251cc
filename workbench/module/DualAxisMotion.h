#pragma once

#include "PositionPacking.h"
#include "Ramp.h"

#include <QtGlobal>

#include <array>
#include <limits>
#include <vector>

namespace workbench {

/// How the axes get to their targets.
enum class MotionMode {
    Independent, ///< each axis on its own
    Linked,      ///< from standstill on a straight line, both stopping in the same instant
    Hold,        ///< each axis brakes to a halt and stays there
};

/// What an axis is asked to do.
struct AxisCommand
{
    int target = 0; ///< position units
    RampSettings ramp;

    bool operator==(const AxisCommand &other) const;
};

using MotionCommand = std::array<AxisCommand, axisCount>;

/// Two axes that follow their commands. The motion is planned in closed form whenever a command
/// changes, and evaluated for the time asked for, so steps of any size give the same positions.
///
/// Velocities never jump. A linked pair whose target changes on the way turns towards it in a curve
/// and goes on straight from there. What cannot brake in time overshoots and comes back, beyond the
/// ends of an axis too: there the position reported stands still. While one of the linked axes that
/// has a way to go has no velocity to go with, both are brought to a halt along their line.
class DualAxisMotion
{
public:
    /// Standstill at the given positions, holding; time goes on.
    void placeAt(const std::array<int, axisCount> &positions);

    /// Lets the axes run up to `ns`; a time before the one last given is ignored.
    void advanceTo(qint64 ns);

    /// Takes effect at the time last given. The same command again changes nothing.
    void command(MotionMode mode, const MotionCommand &command);

    /// Position units, rounded to the nearest and saturated at the ends of the axis.
    int position(int axis) const;

    /// Units/s, signed, rounded away from zero: 0 exactly at standstill.
    int velocity(int axis) const;

private:
    using Vector = std::array<double, axisCount>;

    /// Both axes at an instant.
    struct State
    {
        Vector position{};
        Vector velocity{};
    };

    /// A share in the motion: `profile` runs along `direction`.
    struct Component
    {
        Vector direction;
        Profile profile;
    };

    /// What the axes do from the time of planning on: the sum of the components.
    struct Plan
    {
        std::vector<Component> components;
        std::array<bool, axisCount> arrives{};
        double replanAfter = std::numeric_limits<double>::infinity(); ///< seconds
        double duration = 0;                                          ///< seconds to the very end
    };

    State stateAt(qint64 ns) const;
    void plan();
    Plan planEachAxis() const;
    Plan planLinked() const;
    Plan planStraight(const Vector &way, double speed) const;
    Plan planHaltAlongLine() const;
    Plan planStopAndGo() const;
    Plan planTurn() const;
    Vector wayFrom(const Vector &start) const;
    RampLimits limitsOf(std::size_t axis) const;
    RampLimits lineLimits(const Vector &direction) const;
    RampLimits turnLimits(const Vector &direction) const;
    bool runsStraightToTarget(const Vector &way) const;

    MotionMode mode = MotionMode::Hold;
    MotionCommand commands{};
    qint64 timeNs = 0;
    State now; ///< at `timeNs`

    State start; ///< at `startNs`, when `current` was planned
    qint64 startNs = 0;
    qint64 dueNs = std::numeric_limits<qint64>::max(); ///< when to plan anew
    Plan current;
};

} // namespace workbench
