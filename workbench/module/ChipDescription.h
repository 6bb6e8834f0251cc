#pragma once

#include "AxisAddresses.h"

#include <QString>
#include <QVector>

#include <optional>

namespace workbench {

/// What the host may do with a register; a read-only one is never written by it.
enum class RegisterAccess { ReadOnly, WriteOnly, ReadWrite };

/// A range of bits of a register: bits `lowBit` to `lowBit + width - 1`, within 0 to 31.
struct FieldDescription
{
    QString identifier; ///< unique in the chip
    QString name;       ///< as shown to users
    int lowBit = 0;
    int width = 32;
    bool isSigned = false;
};

/// The values that an editor should offer for a register, both ends included. The chip itself takes
/// any value.
struct ValueRange
{
    qint64 minimum = 0;
    qint64 maximum = 0;
};

struct RegisterDescription
{
    QString name;             ///< unique in the chip
    unsigned int address = 0; ///< unique in the chip, 0 to 0xFFFF
    RegisterAccess access = RegisterAccess::ReadWrite;
    int resetValue = 0;
    QString unit;        ///< empty for a plain number
    QString description; ///< one line, with units
    std::optional<ValueRange> range;
    QVector<FieldDescription> fields; ///< in file order, without overlaps; may be empty
};

/// A chip's register map, in file order. A plain value.
struct ChipDescription
{
    QString name;
    QVector<RegisterDescription> registers;

    /// The register of exactly that name or at that address, or null. Valid until `registers` is
    /// changed.
    const RegisterDescription *findRegister(const QString &registerName) const;
    const RegisterDescription *findRegister(unsigned int address) const;

    AxisAddresses axisAddresses() const;
};

} // namespace workbench
