#include "FieldCoding.h"

#include "SignExtension.h"

#include <QtGlobal>

#include <limits>

namespace {

quint32 valueMask(const FieldInfo &info)
{
    return std::numeric_limits<quint32>::max() >> (32 - info.width);
}

} // namespace

FieldCoding::Range FieldCoding::range(const FieldInfo &info)
{
    const qint64 values = qint64(1) << info.width;
    const qint64 min = info.isSigned ? -values / 2 : 0;
    const qint64 max = (info.isSigned ? values / 2 : values) - 1;
    return {static_cast<int>(min),
            static_cast<int>(qMin<qint64>(max, std::numeric_limits<int>::max()))};
}

int FieldCoding::extract(const FieldInfo &info, int registerValue)
{
    const quint32 bits = (static_cast<quint32>(registerValue) >> info.lowBit) & valueMask(info);
    if (info.isSigned)
        return signExtended(bits, info.width);
    return static_cast<int>(qMin<qint64>(bits, std::numeric_limits<int>::max()));
}

int FieldCoding::insert(const FieldInfo &info, int registerValue, int fieldValue)
{
    const quint32 mask = valueMask(info) << info.lowBit;
    const quint32 bits = (static_cast<quint32>(fieldValue) << info.lowBit) & mask;
    return static_cast<int>((static_cast<quint32>(registerValue) & ~mask) | bits);
}
