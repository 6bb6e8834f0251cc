#include "QVXLModuleInterface.h"

#include "CommandHandlerInterface_p.h"
#include "FieldCoding.h"
#include "ModuleLink.h"
#include "PluginInterface_p.h"
#include "QVXLModuleInterface_p.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QPointer>

QVXLModuleInterfacePrivate::QVXLModuleInterfacePrivate()
    : handler(std::make_unique<CommandHandlerPrivate>())
{
}

bool QVXLModuleInterfacePrivate::read(const RegisterInfo &reg, unsigned char motor, int *value)
{
    int answer = 0;
    if (!link || !reg.readable || !link->readRegister(reg.address, motor, &answer))
        return false;
    if (value)
        *value = answer;
    return true;
}

bool QVXLModuleInterfacePrivate::write(QVXLModuleInterface *module, const RegisterInfo &reg,
                                       unsigned char motor, int value)
{
    if (!link || !reg.writable || !link->writeRegister(reg.address, motor, value))
        return false;
    const int previous = outputValue(reg, motor);
    outputValues.insert(outputKey(reg, motor), value);
    emit module->registerOutputBufferHasWritten(static_cast<unsigned short>(reg.address), value,
                                                previous, motor);
    return true;
}

bool QVXLModuleInterfacePrivate::readField(const RegisterInfo &reg, const FieldInfo &field,
                                           unsigned char motor, int *value)
{
    int registerValue = outputValue(reg, motor);
    // What a write-only register holds is known from the last write alone.
    if (reg.readable && !read(reg, motor, &registerValue))
        return false;
    *value = FieldCoding::extract(field, registerValue);
    return true;
}

int QVXLModuleInterfacePrivate::outputValue(const RegisterInfo &reg, unsigned char motor) const
{
    return outputValues.value(outputKey(reg, motor), reg.reset);
}

unsigned char QVXLModuleInterfacePrivate::chipMotor(unsigned char motor) const
{
    const auto product = products.value(motor);
    return product ? products.key(product) : motor;
}

quint64 QVXLModuleInterfacePrivate::outputKey(const RegisterInfo &reg, unsigned char motor) const
{
    return (static_cast<quint64>(chipMotor(motor)) << 32) | reg.address;
}

QVXLModuleInterface::QVXLModuleInterface(std::unique_ptr<QVXLModuleInterfacePrivate> state,
                                         std::unique_ptr<PluginInterfacePrivate> base)
    : PluginInterface(std::move(base), nullptr)
    , d(std::move(state))
{
}

QVXLModuleInterface::~QVXLModuleInterface() = default;

XmlProductIC *QVXLModuleInterface::getIcProduct(unsigned char motor)
{
    return d->products.value(motor).get();
}

bool QVXLModuleInterface::readChannelRegister(XmlValueRegister *reg, unsigned char motor,
                                              int *value)
{
    return reg && d->read(ChipInfo::of(reg), motor, value);
}

bool QVXLModuleInterface::writeChannelRegister(XmlValueRegister *reg, unsigned char motor,
                                               int value)
{
    return reg && d->write(this, ChipInfo::of(reg), motor, value);
}

bool QVXLModuleInterface::writeAndReadChannelField(XmlValueRegisterField *field,
                                                   unsigned char motor, int value, int *readBack)
{
    const auto *const reg = field ? field->getRegister() : nullptr;
    if (!reg)
        return false;
    // Copies: the listeners of the write may delete the register and even this module.
    const RegisterInfo regInfo = ChipInfo::of(reg);
    const FieldInfo fieldInfo = ChipInfo::of(field);
    const QPointer<QVXLModuleInterface> self(this);
    const int registerValue = FieldCoding::insert(fieldInfo, d->outputValue(regInfo, motor), value);
    if (!d->write(this, regInfo, motor, registerValue))
        return false;
    if (!readBack)
        return true;
    return self && d->readField(regInfo, fieldInfo, motor, readBack);
}
