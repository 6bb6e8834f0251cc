#include "SimulatedChip.h"

#include "SignExtension.h"

#include <array>
#include <utility>

namespace workbench {

namespace {

constexpr int rampModeIndependent = 0;
constexpr int rampModeLinked = 768;

constexpr int statusAtTarget = 1;
constexpr int statusStandstill = 2;

// What an axis measures, in the order of `measuredNames`.
enum Quantity { ActualPosition, ActualVelocity, Status, quantityCount };

constexpr std::array<const char *, quantityCount> measuredNames{"XACTUAL", "VACTUAL", "STATUS"};

struct RampRegister
{
    const char *name;
    int RampSettings::*setting;
};

constexpr std::array<RampRegister, 9> rampRegisters{{{"VMAX", &RampSettings::vMax},
                                                     {"AMAX", &RampSettings::aMax},
                                                     {"DMAX", &RampSettings::dMax},
                                                     {"V1", &RampSettings::v1},
                                                     {"A1", &RampSettings::a1},
                                                     {"D1", &RampSettings::d1},
                                                     {"V2", &RampSettings::v2},
                                                     {"A2", &RampSettings::a2},
                                                     {"D2", &RampSettings::d2}}};

QString axisRegister(int axis, const char *name)
{
    return QStringLiteral("M%1_%2").arg(axis).arg(QLatin1String(name));
}

unsigned int fieldMask(const FieldDescription &field)
{
    return field.width >= 32 ? ~0u : ((1u << field.width) - 1) << field.lowBit;
}

int keptBits(const RegisterDescription &description, int value)
{
    if (description.fields.isEmpty())
        return value;
    unsigned int mask = 0;
    for (const FieldDescription &field : description.fields)
        mask |= fieldMask(field);
    const unsigned int bits = static_cast<unsigned int>(value) & mask;
    const FieldDescription &first = description.fields.first();
    const bool single = description.fields.size() == 1 && first.lowBit == 0;
    return single && first.isSigned ? signExtended(bits, first.width) : static_cast<int>(bits);
}

} // namespace

SimulatedChip::SimulatedChip(ChipDescription description)
    : chip(std::move(description))
{
    for (int i = 0; i < chip.registers.size(); ++i) {
        const RegisterDescription &entry = chip.registers.at(i);
        cells.insert(entry.address, {i, 0, {}});
        addresses.insert(entry.name, entry.address);
    }
    bindMeasured();
    reset();
}

void SimulatedChip::bindMeasured()
{
    for (int axis = 0; axis < axisCount; ++axis) {
        for (int quantity = 0; quantity < quantityCount; ++quantity) {
            const auto name = axisRegister(axis, measuredNames[std::size_t(quantity)]);
            const auto found = addresses.constFind(name);
            if (found != addresses.constEnd())
                cells[*found].measured = axis * quantityCount + quantity;
        }
    }
}

const RegisterDescription &SimulatedChip::describe(const Cell &cell) const
{
    return chip.registers.at(cell.index);
}

bool SimulatedChip::read(unsigned int address, int *value) const
{
    const auto cell = cells.constFind(address);
    if (cell == cells.constEnd() || describe(*cell).access == RegisterAccess::WriteOnly)
        return false;
    *value = cell->measured ? measure(*cell->measured) : cell->value;
    return true;
}

bool SimulatedChip::write(unsigned int address, int value)
{
    const auto cell = cells.find(address);
    if (cell == cells.end() || describe(*cell).access == RegisterAccess::ReadOnly)
        return false;
    cell->value = keptBits(describe(*cell), value);
    applyRegisters();
    return true;
}

void SimulatedChip::reset()
{
    for (Cell &cell : cells)
        cell.value = keptBits(describe(cell), describe(cell).resetValue);
    std::array<int, axisCount> positions{};
    for (int axis = 0; axis < axisCount; ++axis)
        positions[std::size_t(axis)] = valueOf(axisRegister(axis, "XACTUAL"));
    motion.placeAt(positions);
    applyRegisters();
}

int SimulatedChip::valueOf(const QString &registerName) const
{
    const auto address = addresses.constFind(registerName);
    return address == addresses.constEnd() ? 0 : cells.value(*address).value;
}

int SimulatedChip::measure(int quantity) const
{
    const int axis = quantity / quantityCount;
    switch (quantity % quantityCount) {
    case ActualPosition:
        return motion.position(axis);
    case ActualVelocity:
        return motion.velocity(axis);
    default:
        return status(axis);
    }
}

int SimulatedChip::status(int axis) const
{
    const bool atTarget = motion.position(axis) == axisCommand(axis).target;
    const bool standstill = motion.velocity(axis) == 0;
    return (atTarget ? statusAtTarget : 0) | (standstill ? statusStandstill : 0);
}

AxisCommand SimulatedChip::axisCommand(int axis) const
{
    AxisCommand command;
    command.target =
        qBound(minimumPosition, valueOf(axisRegister(axis, "XTARGET")), maximumPosition);
    for (const RampRegister &entry : rampRegisters)
        command.ramp.*entry.setting = valueOf(axisRegister(axis, entry.name));
    return command;
}

void SimulatedChip::applyRegisters()
{
    const int rampMode = valueOf(QStringLiteral("RAMPMODE"));
    MotionMode mode = MotionMode::Hold;
    if (rampMode == rampModeIndependent)
        mode = MotionMode::Independent;
    else if (rampMode == rampModeLinked)
        mode = MotionMode::Linked;
    motion.command(mode, {axisCommand(0), axisCommand(1)});
}

} // namespace workbench
