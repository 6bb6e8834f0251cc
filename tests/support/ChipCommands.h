#pragma once

#include "MotionObserver.h"
#include "Ramp.h"

#include <array>
#include <limits>

/// What the tests ask a simulated chip to do, through its registers. A request that the chip
/// refuses fails the test.

constexpr int linkedMode = 768;
constexpr int holdMode = 1;
constexpr int intMax = std::numeric_limits<int>::max();
constexpr int intMin = std::numeric_limits<int>::min();
constexpr qint64 msInNs = 1000000;

using Positions = std::array<int, 2>;

/// A ramp without stages.
workbench::RampSettings ramp(int vMax, int aMax, int dMax);

/// The ramp of the chip that comes with the workbench.
workbench::RampSettings shippedRamp();

void setRamp(workbench::SimulatedChip &chip, int axis, const workbench::RampSettings &settings);
void setMode(workbench::SimulatedChip &chip, int mode);
void setTarget(workbench::SimulatedChip &chip, int axis, int target);
void setTargets(workbench::SimulatedChip &chip, int target0, int target1);

/// Starts a linked pair from standstill, so that neither axis leaves before the other.
void startLinked(workbench::SimulatedChip &chip, int target0, int target1);

/// How far a point is from the line through the origin and the target.
double distanceFromLine(const Positions &point, double target0, double target1);
