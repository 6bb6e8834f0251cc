#pragma once

/// Names and numbers that several source files of the tool share.
namespace drive {

/// Dynamic properties in which the tool keeps small pieces of state on its widgets and series.
namespace property {
/// On the target series, bool: the target has changed and is not yet written to the chip.
constexpr const char *newTarget = "NewPt";
/// On the start button, int: index of the flight-path point being driven to.
constexpr const char *runFlightPath = "RunFp";
/// On a zoom button while a wheel turn clicks it, QPoint: where the wheel was turned.
constexpr const char *zoomPoint = "ZoomPt";
/// On the register browser's button, list of unsigned: the addresses of all bound registers.
constexpr const char *registerList = "RegList";
/// On the position mode's button, list of unsigned: the addresses that shape the ramps.
constexpr const char *rampList = "RampList";
/// On the two link buttons, string: the key of the tool that they open; on the position mode's the
/// second one is for any motor but 0. Absent until the tool was found.
constexpr const char *externToolKey0 = "Key0";
constexpr const char *externToolKey1 = "Key1";
/// On the two link buttons, string: how the name of the tool that they open begins.
constexpr const char *externToolName = "Tool";
} // namespace property

constexpr int idleUpdatePeriodMs = 100;
constexpr int movingUpdatePeriodMs = 50;
constexpr int samplePeriodMs = 0;

/// Limits of the axes lie on this grid, in position units.
constexpr int gridStep = 256;
/// The two limits of an axis keep at least this apart, in position units.
constexpr int minimumSpan = 2 * gridStep;
/// A zoom moves the view only when it would move by more than this, in position units per axis.
constexpr int zoomShiftThreshold = 128;

constexpr int historyCapacity = 100000;

/// RAMPMODE: each axis for itself, and both linked into one straight move.
constexpr int rampModePositioning = 0;
constexpr int rampModeSynchronised = 768;

} // namespace drive
