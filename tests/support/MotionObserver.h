#pragma once

#include "SimulatedChip.h"

#include <QString>

#include <array>

/// Registers of a chip by name. Unknown names and refused requests read as 0 and write nothing.
int readByName(const workbench::SimulatedChip &chip, const QString &name);
bool writeByName(workbench::SimulatedChip &chip, const QString &name, int value);

/// "M0_VMAX" from 0 and "VMAX".
QString axisRegister(int axis, const char *name);

/// Steps a chip through time and checks with every step that each axis moves as an axis can: no
/// jump of position or velocity, no acceleration above what the ramp registers allow at the speed,
/// no velocity above VMAX (beyond what it was already). It sees the rounded values that the host
/// sees, and allows for that rounding alone.
class MotionObserver
{
public:
    /// `timeNs` is how late the chip is already.
    explicit MotionObserver(workbench::SimulatedChip &chip, qint64 timeNs = 0);

    void step(qint64 ns);
    void run(double seconds, qint64 stepNs = 1000000);

    /// Until both axes stand still, at most for `seconds`; at least one step. False when they still
    /// move then.
    bool runToStandstill(double seconds, qint64 stepNs = 1000000);

    std::array<int, 2> positions() const { return last.position; }
    std::array<int, 2> velocities() const { return last.velocity; }
    std::array<int, 2> highestSpeeds() const { return highest; }

    /// When each axis was last seen moving, in ns.
    std::array<qint64, 2> lastMoving() const { return movingAt; }
    qint64 time() const { return timeNs; }

    /// What was wrong first; empty when nothing was.
    QString violation() const { return fault; }

private:
    struct Sample
    {
        std::array<int, 2> position{};
        std::array<int, 2> velocity{};
    };

    enum Register { XActual, VActual, VMax, AMax, DMax, V1, A1, D1, V2, A2, D2, registerCount };

    int read(int axis, Register which) const;
    int setting(int axis, Register which) const;
    Sample sample() const;
    void check(int axis, const Sample &now, double seconds);
    double fastestRate(int axis, double low, double high) const;
    void fail(int axis, const char *what, double value, double limit);

    workbench::SimulatedChip &chip;
    std::array<std::array<unsigned int, registerCount>, 2> addresses{};
    qint64 timeNs;
    Sample last;
    std::array<int, 2> highest{};
    std::array<qint64, 2> movingAt{};
    QString fault;
};
