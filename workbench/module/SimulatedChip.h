#pragma once

#include "ChipDescription.h"
#include "DualAxisMotion.h"
#include "RegisterDevice.h"

#include <QHash>

#include <optional>

namespace workbench {

/// A dual-axis motion controller: a register file as described, and behind the registers of known
/// names two axes with their ramps (see DualAxisMotion).
///
/// Mirrors what the host sees of the chip through register requests. It has no bus, no faults and
/// no time of its own: the caller says how late it is, and everything that is read or written
/// happens at the time last given. Registers that a description leaves out count as 0. XACTUAL,
/// VACTUAL and STATUS of an axis are measured; a description that lets the host write them gets a
/// write that is accepted and without effect.
class SimulatedChip : public RegisterDevice
{
public:
    explicit SimulatedChip(ChipDescription description);

    const ChipDescription &description() const { return chip; }

    /// Lets the axes run up to `ns`. A time before the one last given is ignored.
    void advanceTo(qint64 ns) override { motion.advanceTo(ns); }

    /// False, with `value` left alone, for an unknown address and a write-only register.
    bool read(unsigned int address, int *value) const override;

    /// False, with nothing changed, for an unknown address and a read-only register. A register
    /// keeps the bits that its fields cover, all 32 when it has none; a register of a single signed
    /// field from bit 0 reads as that field's signed value.
    bool write(unsigned int address, int value) override;

    /// Back to reset values and standstill at the reset positions, as after a brown-out. Time goes
    /// on.
    void reset();

    /// The position of axis 0 or 1 in position units, saturated to signed 24 bits.
    int position(int axis) const override { return motion.position(axis); }

    /// True while either axis has a velocity.
    bool isMoving() const { return motion.velocity(0) != 0 || motion.velocity(1) != 0; }

private:
    struct Cell
    {
        int index = 0; ///< in the description
        int value = 0;
        std::optional<int> measured; ///< what is read instead of `value`: see measure()
    };

    const RegisterDescription &describe(const Cell &cell) const;
    int valueOf(const QString &registerName) const;
    void bindMeasured();
    int measure(int quantity) const;
    int status(int axis) const;
    AxisCommand axisCommand(int axis) const;
    void applyRegisters();

    ChipDescription chip;
    QHash<unsigned int, Cell> cells;
    QHash<QString, unsigned int> addresses;
    DualAxisMotion motion;
};

} // namespace workbench
