#pragma once

#include "PluginInterface.h"
#include "XmlProductIC.h"

class XmlValueRegister;
class XmlValueRegisterField;

/// A module without a device behind it: one chip for every motor, and requests that fail.
class QVXLModuleInterface : public PluginInterface
{
    Q_OBJECT

public:
    QVXLModuleInterface();
    ~QVXLModuleInterface() override;

    XmlProductIC *getIcProduct(unsigned char motor);
    int chipRequestCount() const { return m_chipRequests; }
    bool readChannelRegister(XmlValueRegister *reg, unsigned char motor, int *value);
    bool writeChannelRegister(XmlValueRegister *reg, unsigned char motor, int value);
    bool writeAndReadChannelField(XmlValueRegisterField *field, unsigned char motor, int value,
                                  int *readBack);

signals:
    void registerOutputBufferHasWritten(unsigned short address, int value, int previous,
                                        unsigned char motor);

private:
    XmlProductIC m_chip;
    int m_chipRequests = 0;
};
