#include "ChipDescription.h"

#include <algorithm>

namespace bench {

namespace {

template <typename Predicate>
const RegisterDescription *firstOf(const QVector<RegisterDescription> &registers, Predicate matches)
{
    const auto found = std::find_if(registers.begin(), registers.end(), matches);
    return found == registers.end() ? nullptr : &*found;
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

} // namespace bench
