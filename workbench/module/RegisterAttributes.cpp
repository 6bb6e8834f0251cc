#include "RegisterAttributes.h"

#include <limits>

namespace workbench {

namespace {

constexpr int maximumTextLength = 1024;
constexpr int maximumQuotedLength = 40;
constexpr qint64 highestAddress = 0xFFFF;
constexpr int registerWidth = 32;

// A 32-bit value may be written signed or unsigned.
constexpr qint64 lowestValue = std::numeric_limits<qint32>::min();
constexpr qint64 highestValue = std::numeric_limits<quint32>::max();

// False for an empty text, for anything behind the number and for what 64 bits do not hold.
bool parseNumber(const QString &text, qint64 *number)
{
    const bool hexadecimal = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    const QString digits = hexadecimal ? text.mid(2) : text;
    // toLongLong would take blanks around the number, and a sign behind 0x.
    for (int i = 0; i < digits.size(); ++i) {
        const ushort c = digits.at(i).unicode();
        const bool sign = i == 0 && c == u'-' && !hexadecimal;
        const bool digit = c >= u'0' && c <= u'9';
        const bool letter = (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
        if (!sign && !digit && !(hexadecimal && letter))
            return false;
    }
    bool ok = false;
    *number = digits.toLongLong(&ok, hexadecimal ? 16 : 10);
    return ok;
}

bool parseAccess(const QString &text, RegisterAccess *access)
{
    if (text == QLatin1String("r"))
        *access = RegisterAccess::ReadOnly;
    else if (text == QLatin1String("w"))
        *access = RegisterAccess::WriteOnly;
    else if (text == QLatin1String("rw"))
        *access = RegisterAccess::ReadWrite;
    else
        return false;
    return true;
}

// The reset value keeps its bits; as text it may exceed what an int holds.
void parseValues(AttributeReader &reader, RegisterDescription *target)
{
    const qint64 reset = reader.number(QStringLiteral("reset"), lowestValue, highestValue);
    target->resetValue = static_cast<int>(static_cast<quint32>(reset));
    const bool hasMinimum = reader.has(QStringLiteral("min"));
    if (hasMinimum != reader.has(QStringLiteral("max")))
        return reader.fail(QStringLiteral("'min' and 'max' are needed together"));
    if (!hasMinimum)
        return;
    const ValueRange range{reader.number(QStringLiteral("min"), lowestValue, highestValue),
                           reader.number(QStringLiteral("max"), lowestValue, highestValue)};
    if (range.minimum > range.maximum)
        reader.fail(QStringLiteral("'min' is above 'max'"));
    if (reset < range.minimum || reset > range.maximum)
        reader.fail(QStringLiteral("'reset' is outside 'min' to 'max'"));
    target->range = range;
}

} // namespace

QString shortened(const QString &text)
{
    const QString line = text.simplified();
    return line.size() <= maximumQuotedLength ? line
                                              : line.left(maximumQuotedLength) + QChar(0x2026);
}

QString shortened(const QStringRef &text)
{
    return shortened(text.toString());
}

AttributeReader::AttributeReader(const QXmlStreamAttributes &attributes,
                                 const QStringList &required, const QStringList &optional)
    : given(attributes)
{
    checkKnown(required, optional);
    checkRequired(required);
}

void AttributeReader::fail(const QString &reason)
{
    if (firstError.isEmpty())
        firstError = reason;
}

void AttributeReader::checkKnown(const QStringList &required, const QStringList &optional)
{
    for (const QXmlStreamAttribute &attribute : qAsConst(given)) {
        const QString name = attribute.qualifiedName().toString();
        if (!required.contains(name) && !optional.contains(name))
            fail(QStringLiteral("unknown attribute '%1'").arg(shortened(name)));
        if (attribute.value().size() > maximumTextLength)
            fail(QStringLiteral("'%1' is longer than %2 characters")
                     .arg(shortened(name))
                     .arg(maximumTextLength));
    }
}

void AttributeReader::checkRequired(const QStringList &required)
{
    for (const QString &name : required) {
        if (!has(name))
            fail(QStringLiteral("'%1' is missing").arg(name));
        else if (text(name).trimmed().isEmpty())
            fail(QStringLiteral("'%1' is empty").arg(name));
    }
}

qint64 AttributeReader::number(const QString &name, qint64 minimum, qint64 maximum)
{
    qint64 result = 0;
    if (!parseNumber(text(name), &result)) {
        fail(QStringLiteral("'%1' is not a number: '%2'").arg(name, shortened(text(name))));
    } else if (result < minimum || result > maximum) {
        fail(QStringLiteral("'%1' is not within %2 to %3").arg(name).arg(minimum).arg(maximum));
    }
    return result;
}

bool AttributeReader::flag(const QString &name)
{
    const QString value = text(name);
    if (has(name) && value != QLatin1String("true") && value != QLatin1String("false"))
        fail(QStringLiteral("'%1' is neither true nor false").arg(name));
    return value == QLatin1String("true");
}

QString parseRegister(const QXmlStreamAttributes &attributes, RegisterDescription *target)
{
    AttributeReader reader(attributes,
                           {QStringLiteral("name"), QStringLiteral("address"),
                            QStringLiteral("access"), QStringLiteral("reset"),
                            QStringLiteral("description")},
                           {QStringLiteral("unit"), QStringLiteral("min"), QStringLiteral("max")});
    if (!reader.error().isEmpty())
        return reader.error();
    target->name = reader.text(QStringLiteral("name"));
    target->unit = reader.text(QStringLiteral("unit"));
    target->description = reader.text(QStringLiteral("description")).simplified();
    const qint64 address = reader.number(QStringLiteral("address"), 0, highestAddress);
    target->address = static_cast<unsigned int>(address);
    const QString access = reader.text(QStringLiteral("access"));
    if (!parseAccess(access, &target->access))
        reader.fail(QStringLiteral("unknown access '%1'").arg(shortened(access)));
    parseValues(reader, target);
    return reader.error();
}

QString parseField(const QXmlStreamAttributes &attributes, FieldDescription *target)
{
    AttributeReader reader(attributes,
                           {QStringLiteral("identifier"), QStringLiteral("name"),
                            QStringLiteral("low"), QStringLiteral("width")},
                           {QStringLiteral("signed")});
    if (!reader.error().isEmpty())
        return reader.error();
    target->identifier = reader.text(QStringLiteral("identifier"));
    target->name = reader.text(QStringLiteral("name"));
    const qint64 low = reader.number(QStringLiteral("low"), 0, registerWidth - 1);
    const qint64 width = reader.number(QStringLiteral("width"), 1, registerWidth);
    target->isSigned = reader.flag(QStringLiteral("signed"));
    if (reader.error().isEmpty() && low + width > registerWidth)
        reader.fail(QStringLiteral("the field ends beyond bit %1").arg(registerWidth - 1));
    target->lowBit = static_cast<int>(low);
    target->width = static_cast<int>(width);
    return reader.error();
}

} // namespace workbench
