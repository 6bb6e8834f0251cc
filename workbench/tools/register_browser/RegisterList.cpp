#include "RegisterList.h"

#include <limits>

namespace {

std::optional<unsigned int> addressIn(const QVariant &entry)
{
    switch (entry.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        break;
    default:
        return std::nullopt;
    }
    bool isNumber = false;
    const qlonglong address = entry.toLongLong(&isNumber);
    if (!isNumber || address < 0 || address > std::numeric_limits<unsigned int>::max())
        return std::nullopt;
    return static_cast<unsigned int>(address);
}

} // namespace

std::optional<QSet<unsigned int>> registerAddresses(const QVariant &value)
{
    if (value.userType() != QMetaType::QVariantList)
        return std::nullopt;
    QSet<unsigned int> addresses;
    const QVariantList entries = value.toList();
    for (const QVariant &entry : entries) {
        if (const auto address = addressIn(entry))
            addresses.insert(*address);
    }
    return addresses;
}
