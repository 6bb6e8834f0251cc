#pragma once

#include "Profile.h"

#include <vector>

namespace workbench {

/// The ramp registers of an axis: velocities in units/s, accelerations and decelerations in
/// units/s². Negative values count as 0.
///
/// A1 and D1 hold below V1, A2 and D2 from there to V2, AMAX and DMAX above. A stage whose velocity
/// is 0 is skipped, as is a second one that ends below the first.
struct RampSettings
{
    int vMax = 0, aMax = 0, dMax = 0;
    int v1 = 0, a1 = 0, d1 = 0;
    int v2 = 0, a2 = 0, d2 = 0;

    bool operator==(const RampSettings &other) const;
};

/// What holds from the speed `from` up to the next zone's.
struct SpeedZone
{
    double from = 0;
    double acceleration = 0; ///< 0: cannot get faster here
    double deceleration = 0; ///< above 0
};

/// How fast something may go and how quickly it may change its speed.
struct RampLimits
{
    double topSpeed = 0;
    std::vector<SpeedZone> zones; ///< ascending, the first from 0; never empty

    double accelerationAt(double speed) const;
    double decelerationAt(double speed) const;

    /// The distance covered while braking from `from` to `to`; 0 unless from > to.
    double brakingDistance(double from, double to = 0) const;

    /// The highest speed that can be reached from standstill.
    double reachableSpeed() const;

    /// The smallest acceleration (of those that are not 0) or deceleration.
    double weakestChange() const;
};

/// The limits of one axis. A deceleration of 0 is replaced by the acceleration of its stage, or
/// else by another one of the axis, or by a fixed one, so that everything that moves can also stop.
RampLimits axisLimits(const RampSettings &settings);

/// The limits along a line on which an axis moves `share` units for each unit of the line, such
/// that the axis keeps to `limits`; `share` above 0.
RampLimits limitsAlong(const RampLimits &limits, double share);

/// The limits that keep to both.
RampLimits bothLimits(const RampLimits &first, const RampLimits &second);

/// A planned motion; `arrives` tells whether it ends where it was asked to.
struct PlannedMove
{
    Profile profile;
    bool arrives = false;
};

/// From `speed` to standstill as quickly as the limits allow.
Profile planHalt(const RampLimits &limits, double speed);

/// To standstill at `distance` as quickly as the limits allow, both signed. What cannot stop in
/// time overshoots and comes back; what cannot move towards the goal is halted.
PlannedMove planMove(const RampLimits &limits, double distance, double speed);

/// Distances below this one count as none: rounding of the arithmetic, far below what is reported.
constexpr double negligibleDistance = 1e-6;

} // namespace workbench
