#pragma once

/// Names and numbers that several source files of the tool share.
namespace drive {

/// Dynamic properties in which the tool keeps small pieces of state on its widgets and series,
/// where a host, and whoever looks for a fault in one, can see them.
namespace property {
/// On the target series, bool: the target has changed and is not yet written to the chip.
constexpr const char *NewTarget = "NewPt";
/// On the start button, int: index of the flight-path point being driven to.
constexpr const char *RunFlightPath = "RunFp";
/// On a zoom button while a wheel turn clicks it, QPoint: where the wheel was turned.
constexpr const char *ZoomPoint = "ZoomPt";
/// On the register browser's button, list of unsigned: the addresses of all bound registers.
constexpr const char *RegisterList = "RegList";
/// On the position mode's button, list of unsigned: the addresses that shape the ramps.
constexpr const char *RampList = "RampList";
/// On the two link buttons, string: the key of the tool that they open; on the position mode's the
/// second one is for any motor but 0. Absent until the tool was found.
constexpr const char *ExToolKey0 = "Key0";
constexpr const char *ExToolKey1 = "Key1";
/// On the two link buttons, string: how the name of the tool that they open begins.
constexpr const char *ExToolName = "Tool";
} // namespace property

constexpr int idleUpdatePeriodMs = 100;
constexpr int movingUpdatePeriodMs = 50;
constexpr int samplePeriodMs = 0;

/// Limits of the axes lie on this grid, in position units.
constexpr int gridStep = 256;
/// Where the limits of a new tool's axes lie, on both sides of 0, in position units.
constexpr int initialLimit = 256;
/// The two limits of an axis keep at least this apart, in position units.
constexpr int minimumSpan = 2 * gridStep;
/// A zoom moves the view only when it would move by more than this, in position units per axis.
constexpr int zoomShiftThreshold = 128;

/// Sampled positions kept, to draw the trace anew for another scale.
constexpr int historyCapacity = 100000;

/// RAMPMODE: each axis for itself, and both linked into one straight move.
constexpr int rampModePositioning = 0;
constexpr int rampModeSynchronised = 768;

} // namespace drive
