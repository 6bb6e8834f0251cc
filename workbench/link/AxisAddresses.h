#pragma once

#include <array>
#include <optional>

namespace workbench {

/// The addresses of the registers that are told apart by their meaning, by axis; none for a
/// register that the chip lacks.
struct AxisAddresses
{
    using OfBoth = std::array<std::optional<unsigned int>, 2>;

    OfBoth position; ///< M0_XACTUAL, M1_XACTUAL
    OfBoth velocity; ///< M0_VACTUAL, M1_VACTUAL
    OfBoth target;   ///< M0_XTARGET, M1_XTARGET
};

/// True when one of the addresses is `address`.
inline bool contains(const AxisAddresses::OfBoth &addresses, unsigned int address)
{
    return addresses[0] == address || addresses[1] == address;
}

} // namespace workbench
