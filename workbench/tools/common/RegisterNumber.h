#pragma once

#include <QString>

#include <optional>

class XmlValueRegister;
struct FieldInfo;

namespace tools {

/// How the low bits of a 32-bit word read as a number, and which numbers make sense.
struct NumberFormat
{
    int width = 32; ///< bits, 1 to 32
    bool isSigned = false;
    qint64 min = 0;
    qint64 max = 0xFFFFFFFF;
};

/// A register that consists of a single field from bit 0 on reads as that field, every other one as
/// an unsigned word. Null gives the latter too.
NumberFormat formatOf(const XmlValueRegister *reg);

/// A field of `reg`, counted from the field's own lowest bit.
NumberFormat formatOf(const XmlValueRegister *reg, const FieldInfo &field);

/// The number in the low bits of `word`; the bits above are not looked at.
qint64 number(const NumberFormat &format, int word);

QString decimalText(const NumberFormat &format, int word);

/// The bits behind "0x", with as many digits as the width needs.
QString hexadecimalText(const NumberFormat &format, int word);

/// "0 to 255".
QString rangeText(const NumberFormat &format);

/// What a text that the user has entered means.
struct Entry
{
    std::optional<int> word; ///< the bits to be written
    QString refusal;         ///< one sentence, empty when `word` is set
};

/// Takes a decimal number, or bits in hexadecimal behind 0x: for a signed number of 8 bits, 0xFF
/// is -1.
Entry parseEntry(const NumberFormat &format, const QString &text);

} // namespace tools
