#include "ChipInfo.h"

#include "ChipObjects_p.h"

RegisterInfo ChipInfo::of(const XmlValueRegister *reg)
{
    return reg ? XmlValueRegisterPrivate::of(reg)->info : RegisterInfo();
}

FieldInfo ChipInfo::of(const XmlValueRegisterField *field)
{
    return field ? XmlValueRegisterFieldPrivate::of(field)->info : FieldInfo();
}

QList<XmlValueRegister *> ChipInfo::registers(XmlProductIC *product)
{
    QList<XmlValueRegister *> existing;
    if (!product)
        return existing;
    const auto &all = XmlRegisterSetPrivate::of(product->registerSet())->registers;
    for (const auto &reg : all) {
        if (reg)
            existing.append(reg);
    }
    return existing;
}

QList<XmlValueRegisterField *> ChipInfo::fields(const XmlValueRegister *reg)
{
    QList<XmlValueRegisterField *> existing;
    if (!reg)
        return existing;
    const auto &all = XmlValueRegisterPrivate::of(reg)->fields;
    for (const auto &field : all) {
        if (field)
            existing.append(field);
    }
    return existing;
}
