#pragma once

#include "FaultRig.h"

#include <QPointF>

/// The states of the tool in which faults and events come upon it.
enum State {
    Idle,
    Picked,
    Moving,
    Retargeted,
    Stopping,
    FlightPathRunning,
    DialogOpen,
    Hidden,
    BeingDeleted,
    StateCount,
    Arrived = StateCount, ///< the next update tick ends the move
};

inline constexpr const char *stateNames[] = {
    "idle",        "picked", "moving",        "retargeted", "stopping", "flight path running",
    "dialog open", "hidden", "being deleted", "arrived"};

inline const QPointF firstTarget(2500, -1500);
inline const QPointF secondTarget(-1200, 900);
inline const QPointF lastTarget(3001, 2003);

/// Brings the tool of a fresh rig into a state. For DialogOpen it leaves the tool idle: the
/// dialog is the test's to open. BeingDeleted is no state to begin with.
void enter(FaultRig &rig, State state);

/// A move from standstill that arrives, with nothing left running behind it.
void verifyMove(FaultRig &rig, const QPointF &to);

/// Behind the fault: standstill by a press of Stop at most, then a new move of the same tool.
void recover(FaultRig &rig);
