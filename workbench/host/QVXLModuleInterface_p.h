#pragma once

#include "ChipInfo.h"
#include "CommandHandlerInterface.h"
#include "QVXLModuleInterface.h"
#include "XmlProductIC.h"

#include <QHash>
#include <QMap>
#include <QVector>

class ModuleLink;

class QVXLModuleInterfacePrivate
{
public:
    QVXLModuleInterfacePrivate();

    static QVXLModuleInterfacePrivate *of(const QVXLModuleInterface *module)
    {
        return module->d.get();
    }

    bool read(const RegisterInfo &reg, unsigned char motor, int *value);

    /// Tells the module's listeners, who may delete anything, this object included.
    bool write(QVXLModuleInterface *module, const RegisterInfo &reg, unsigned char motor,
               int value);

    bool readField(const RegisterInfo &reg, const FieldInfo &field, unsigned char motor,
                   int *value);

    int outputValue(const RegisterInfo &reg, unsigned char motor) const;

    /// The motor under which the output values of the chip that serves `motor` are kept: the lowest
    /// one with that chip.
    unsigned char chipMotor(unsigned char motor) const;

    ModuleLink *link = nullptr;
    CommandHandlerInterface handler;
    QMap<unsigned char, std::shared_ptr<XmlProductIC>> products;
    QVector<std::shared_ptr<XmlProductIC>> everyProduct; ///< Those that were replaced, too.

private:
    quint64 outputKey(const RegisterInfo &reg, unsigned char motor) const;

    QHash<quint64, int> outputValues;
};
