#pragma once

#include "PluginInterface.h"

class QVXLModuleInterfacePrivate;
class XmlProductIC;
class XmlValueRegister;
class XmlValueRegisterField;

/// A connected module. Requests block until the module has answered or the link has given up.
/// It outlives the tools that were made for it. GUI thread.
class QVXLModuleInterface : public PluginInterface
{
    Q_OBJECT

public:
    ~QVXLModuleInterface() override;

    /// The description of the chip that serves a motor, owned by the module, or null.
    XmlProductIC *getIcProduct(unsigned char motor);

    /// Reads a register into `value`, which is left alone when the request fails. False then, and
    /// for a null register, which sends nothing.
    bool readChannelRegister(XmlValueRegister *reg, unsigned char motor, int *value);

    /// Writes a register. False when the request fails, for a null register and for a read-only
    /// one, which send nothing.
    bool writeChannelRegister(XmlValueRegister *reg, unsigned char motor, int value);

    /// Writes one field of a register and leaves the register's other bits as they are; reads the
    /// field back into `readBack` unless that is null. False as for `writeChannelRegister`.
    bool writeAndReadChannelField(XmlValueRegisterField *field, unsigned char motor, int value,
                                  int *readBack);

signals:
    /// A register write has gone out to the device: its address, the value written, the value held
    /// before, and the motor.
    void registerOutputBufferHasWritten(unsigned short address, int value, int previous,
                                        unsigned char motor);

protected:
    QVXLModuleInterface(std::unique_ptr<QVXLModuleInterfacePrivate> state,
                        std::unique_ptr<PluginInterfacePrivate> base);

private:
    friend class QVXLModuleInterfacePrivate;
    std::unique_ptr<QVXLModuleInterfacePrivate> d;
};
