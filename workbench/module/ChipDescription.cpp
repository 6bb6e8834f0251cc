#include "ChipDescription.h"

#include <algorithm>

namespace workbench {

namespace {

template <typename Predicate>
const RegisterDescription *firstOf(const QVector<RegisterDescription> &registers, Predicate matches)
{
    const auto found = std::find_if(registers.begin(), registers.end(), matches);
    return found == registers.end() ? nullptr : &*found;
}

AxisAddresses::OfBoth addressesOf(const ChipDescription &chip, const char *name)
{
    AxisAddresses::OfBoth addresses;
    for (std::size_t axis = 0; axis < addresses.size(); ++axis) {
        const QString full = QStringLiteral("M%1_%2").arg(axis).arg(QLatin1String(name));
        if (const RegisterDescription *const found = chip.findRegister(full))
            addresses[axis] = found->address;
    }
    return addresses;
}

} // namespace

const RegisterDescription *ChipDescription::findRegister(const QString &registerName) const
{
    return firstOf(registers, [&registerName](const RegisterDescription &candidate) {
        return candidate.name == registerName;
    });
}

const RegisterDescription *ChipDescription::findRegister(unsigned int address) const
{
    return firstOf(registers, [address](const RegisterDescription &candidate) {
        return candidate.address == address;
    });
}

AxisAddresses ChipDescription::axisAddresses() const
{
    return {addressesOf(*this, "XACTUAL"), addressesOf(*this, "VACTUAL"),
            addressesOf(*this, "XTARGET")};
}

} // namespace workbench
