#include "AxisRegisters.h"

#include "ChipDescription.h"

namespace bench {

namespace {

AxisRegisters::Addresses addressesOf(const ChipDescription &chip, const char *name)
{
    AxisRegisters::Addresses addresses;
    for (std::size_t axis = 0; axis < addresses.size(); ++axis) {
        const QString full = QStringLiteral("M%1_%2").arg(axis).arg(QLatin1String(name));
        if (const RegisterDescription *const found = chip.findRegister(full))
            addresses[axis] = found->address;
    }
    return addresses;
}

} // namespace

AxisRegisters AxisRegisters::of(const ChipDescription &chip)
{
    return {addressesOf(chip, "XACTUAL"), addressesOf(chip, "VACTUAL"),
            addressesOf(chip, "XTARGET")};
}

bool contains(const AxisRegisters::Addresses &addresses, unsigned int address)
{
    return addresses[0] == address || addresses[1] == address;
}

} // namespace bench
