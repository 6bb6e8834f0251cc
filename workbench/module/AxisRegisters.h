#pragma once

#include <array>
#include <optional>

namespace bench {

struct ChipDescription;

/// The addresses of the registers that are told apart by their meaning, by axis; none for a
/// register that the chip lacks.
struct AxisRegisters
{
    using Addresses = std::array<std::optional<unsigned int>, 2>;

    Addresses position; ///< M0_XACTUAL, M1_XACTUAL
    Addresses velocity; ///< M0_VACTUAL, M1_VACTUAL
    Addresses target;   ///< M0_XTARGET, M1_XTARGET

    static AxisRegisters of(const ChipDescription &chip);
};

/// True when one of the addresses is `address`.
bool contains(const AxisRegisters::Addresses &addresses, unsigned int address);

} // namespace bench
