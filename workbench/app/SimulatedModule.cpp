#include "SimulatedModule.h"

#include "ProductBuilder.h"

#include <limits>

namespace workbench {

namespace {

int saturated(qint64 value)
{
    return static_cast<int>(
        qBound<qint64>(std::numeric_limits<int>::min(), value, std::numeric_limits<int>::max()));
}

RegisterInfo registerInfo(const RegisterDescription &described)
{
    RegisterInfo info;
    info.name = described.name;
    info.address = described.address;
    info.readable = described.access != RegisterAccess::WriteOnly;
    info.writable = described.access != RegisterAccess::ReadOnly;
    info.reset = described.resetValue;
    info.unit = described.unit;
    info.description = described.description;
    if (described.range) {
        info.min = saturated(described.range->minimum);
        info.max = saturated(described.range->maximum);
    }
    return info;
}

FieldInfo fieldInfo(const FieldDescription &described)
{
    FieldInfo info;
    info.identifier = described.identifier;
    info.name = described.name;
    info.lowBit = described.lowBit;
    info.width = described.width;
    info.isSigned = described.isSigned;
    return info;
}

} // namespace

std::shared_ptr<XmlProductIC> buildProduct(const ChipDescription &description)
{
    ProductBuilder builder;
    for (const RegisterDescription &described : description.registers) {
        XmlValueRegister *const reg = builder.addRegister(registerInfo(described));
        for (const FieldDescription &field : described.fields)
            builder.addField(reg, fieldInfo(field));
    }
    return builder.take();
}

SimulatedModule::SimulatedModule(const ChipDescription &description, Clock &clock,
                                 const QString &key)
    : time(clock)
    , simulatedChip(description)
    , simulatedLink(simulatedChip, clock)
    , module(description.name, key, &simulatedLink)
{
    const auto product = buildProduct(description);
    for (unsigned char motor = 0; motor < motorCount; ++motor)
        module.setProduct(motor, product);
}

std::optional<int> SimulatedModule::registerValue(const QString &name)
{
    const RegisterDescription *const described = simulatedChip.description().findRegister(name);
    int value = 0;
    catchUp();
    if (!described || !simulatedChip.read(described->address, &value))
        return std::nullopt;
    return value;
}

} // namespace workbench
