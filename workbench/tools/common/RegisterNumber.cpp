#include "RegisterNumber.h"

#include "BasicTools.h"
#include "ChipInfo.h"

#include <limits>

namespace tools {

namespace {

quint32 maskOf(const NumberFormat &format)
{
    return std::numeric_limits<quint32>::max() >> (32 - format.width);
}

NumberFormat fullFormat(int width, bool isSigned)
{
    const qint64 values = qint64(1) << width;
    return {width, isSigned, isSigned ? -values / 2 : 0, (isSigned ? values / 2 : values) - 1};
}

/// Limits of 0 and 0 count as absent.
NumberFormat narrowed(NumberFormat format, const RegisterInfo &info)
{
    if (info.min == 0 && info.max == 0)
        return format;
    const qint64 min = qMax<qint64>(format.min, info.min);
    const qint64 max = qMin<qint64>(format.max, info.max);
    if (min <= max) {
        format.min = min;
        format.max = max;
    }
    return format;
}

std::optional<qint64> parseHexadecimal(const NumberFormat &format, const QString &digits)
{
    bool isNumber = false;
    // toULongLong() alone would let a sign through.
    const bool isPlain = !digits.isEmpty() && digits.at(0).isLetterOrNumber();
    const qulonglong bits = digits.toULongLong(&isNumber, 16);
    if (!isPlain || !isNumber)
        return std::nullopt;
    // Bits that do not fit stay as large as they are, and so out of range.
    if (bits > maskOf(format))
        return static_cast<qint64>(qMin<qulonglong>(bits, std::numeric_limits<qint64>::max()));
    return number(format, static_cast<int>(static_cast<quint32>(bits)));
}

std::optional<qint64> parseNumber(const NumberFormat &format, const QString &text)
{
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        return parseHexadecimal(format, text.mid(2));
    bool isNumber = false;
    const qint64 value = text.toLongLong(&isNumber, 10);
    return isNumber ? std::optional<qint64>(value) : std::nullopt;
}

} // namespace

NumberFormat formatOf(const XmlValueRegister *reg)
{
    const RegisterInfo info = ChipInfo::of(reg);
    const QList<XmlValueRegisterField *> fields = ChipInfo::fields(reg);
    if (fields.size() != 1)
        return narrowed(fullFormat(32, false), info);
    const FieldInfo field = ChipInfo::of(fields.first());
    return narrowed(
        field.lowBit == 0 ? fullFormat(field.width, field.isSigned) : fullFormat(32, false), info);
}

NumberFormat formatOf(const XmlValueRegister *reg, const FieldInfo &field)
{
    const NumberFormat full = fullFormat(field.width, field.isSigned);
    // Limits of a register say nothing about a part of it.
    const bool isWhole = ChipInfo::fields(reg).size() == 1 && field.lowBit == 0;
    return isWhole ? narrowed(full, ChipInfo::of(reg)) : full;
}

qint64 number(const NumberFormat &format, int word)
{
    const quint32 bits = static_cast<quint32>(word) & maskOf(format);
    const bool isNegative = format.isSigned && (bits >> (format.width - 1)) != 0;
    return isNegative ? qint64(bits) - (qint64(1) << format.width) : qint64(bits);
}

QString decimalText(const NumberFormat &format, int word)
{
    return QString::number(number(format, word));
}

QString hexadecimalText(const NumberFormat &format, int word)
{
    constexpr int bitsPerDigit = 4;
    return BasicTools::iToHex(static_cast<quint32>(word) & maskOf(format),
                              (format.width + bitsPerDigit - 1) / bitsPerDigit,
                              QStringLiteral("0x"));
}

QString rangeText(const NumberFormat &format)
{
    return QStringLiteral("%1 to %2").arg(format.min).arg(format.max);
}

Entry parseEntry(const NumberFormat &format, const QString &text)
{
    const QString entered = text.trimmed();
    const std::optional<qint64> value = parseNumber(format, entered);
    if (!value)
        return {std::nullopt, QStringLiteral("\"%1\" is not a number; enter a decimal one, or a "
                                             "hexadecimal one behind 0x.")
                                  .arg(entered)};
    if (*value < format.min || *value > format.max)
        return {
            std::nullopt,
            QStringLiteral("%1 is out of range; allowed is %2.").arg(entered, rangeText(format))};
    return {static_cast<int>(static_cast<quint32>(*value)), QString()};
}

} // namespace tools
