#include "ProductBuilder.h"

#include "ChipObjects_p.h"

namespace {

constexpr int registerBits = 32;

bool liesWithinRegister(const FieldInfo &info)
{
    return info.lowBit >= 0 && info.width >= 1 && info.width <= registerBits &&
           info.lowBit <= registerBits - info.width;
}

} // namespace

ProductBuilder::ProductBuilder()
    : product(std::make_unique<XmlProductIC>(std::make_unique<XmlProductICPrivate>()))
{
}

ProductBuilder::~ProductBuilder() = default;

XmlValueRegister *ProductBuilder::addRegister(const RegisterInfo &info)
{
    auto *const set = XmlRegisterSetPrivate::of(product->registerSet());
    const bool isTaken =
        set->registers.value(info.address) || product->getRegisterByName(info.name, false);
    if (info.name.isEmpty() || isTaken)
        return nullptr;
    auto state = std::make_unique<XmlValueRegisterPrivate>();
    state->info = info;
    auto *const reg = new XmlValueRegister(std::move(state), &set->owner);
    set->registers.insert(info.address, reg);
    return reg;
}

XmlValueRegisterField *ProductBuilder::addField(XmlValueRegister *reg, const FieldInfo &info)
{
    if (!reg || info.identifier.isEmpty() || !liesWithinRegister(info))
        return nullptr;
    auto state = std::make_unique<XmlValueRegisterFieldPrivate>();
    state->info = info;
    state->reg = reg;
    auto *const field = new XmlValueRegisterField(std::move(state), reg);
    XmlValueRegisterPrivate::of(reg)->fields.append(field);
    return field;
}

std::unique_ptr<XmlProductIC> ProductBuilder::take()
{
    auto finished = std::move(product);
    product = std::move(ProductBuilder().product);
    return finished;
}
