#include "ChipCommands.h"

#include <QtTest>

#include <cmath>

using namespace workbench;

RampSettings ramp(int vMax, int aMax, int dMax)
{
    RampSettings settings;
    settings.vMax = vMax;
    settings.aMax = aMax;
    settings.dMax = dMax;
    return settings;
}

RampSettings shippedRamp()
{
    return {2000, 3000, 3000, 250, 5000, 4000, 1000, 4000, 3500};
}

void setRamp(SimulatedChip &chip, int axis, const RampSettings &settings)
{
    const std::pair<const char *, int> values[] = {
        {"VMAX", settings.vMax}, {"AMAX", settings.aMax}, {"DMAX", settings.dMax},
        {"V1", settings.v1},     {"A1", settings.a1},     {"D1", settings.d1},
        {"V2", settings.v2},     {"A2", settings.a2},     {"D2", settings.d2}};
    for (const auto &value : values)
        QVERIFY(writeByName(chip, axisRegister(axis, value.first), value.second));
}

void setMode(SimulatedChip &chip, int mode)
{
    QVERIFY(writeByName(chip, QStringLiteral("RAMPMODE"), mode));
}

void setTarget(SimulatedChip &chip, int axis, int target)
{
    QVERIFY(writeByName(chip, axisRegister(axis, "XTARGET"), target));
}

void setTargets(SimulatedChip &chip, int target0, int target1)
{
    setTarget(chip, 0, target0);
    setTarget(chip, 1, target1);
}

void startLinked(SimulatedChip &chip, int target0, int target1)
{
    setMode(chip, holdMode);
    setTargets(chip, target0, target1);
    setMode(chip, linkedMode);
}

double distanceFromLine(const Positions &point, double target0, double target1)
{
    return std::abs(point[0] * target1 - point[1] * target0) / std::hypot(target0, target1);
}
