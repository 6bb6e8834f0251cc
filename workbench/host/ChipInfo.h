#pragma once

#include <QList>
#include <QString>

class XmlProductIC;
class XmlValueRegister;
class XmlValueRegisterField;

/// What a chip description says about one register. Registers hold 32 bits; `min` and `max` limit
/// the values that make sense and count as absent when both are 0.
struct RegisterInfo
{
    QString name = {};
    unsigned int address = 0;
    bool readable = true;
    bool writable = true;
    int reset = 0;
    QString unit = {};
    QString description = {};
    int min = 0;
    int max = 0;
    bool visible = true;
};

/// What a chip description says about one field: `width` bits from bit `lowBit` on.
struct FieldInfo
{
    QString identifier = {};
    QString name = {};
    int lowBit = 0;
    int width = 32;
    bool isSigned = false;
    bool visible = true;
};

/// The description behind the host's opaque register objects, for the host's own tools.
namespace ChipInfo {

/// Null gives a default-constructed record.
RegisterInfo of(const XmlValueRegister *reg);
FieldInfo of(const XmlValueRegisterField *field);

/// The registers that still exist, by ascending address; none for a null product.
QList<XmlValueRegister *> registers(XmlProductIC *product);

/// The fields of a register that still exist, in the order in which they were added.
QList<XmlValueRegisterField *> fields(const XmlValueRegister *reg);

} // namespace ChipInfo
