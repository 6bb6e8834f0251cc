#include "Targets.h"

#include "ChipDescriptionReader.h"

#include <QBuffer>
#include <QSet>
#include <QXmlStreamWriter>

#include <algorithm>
#include <tuple>

using workbench::ChipDescription;
using workbench::FieldDescription;
using workbench::RegisterAccess;
using workbench::RegisterDescription;

namespace fuzz {
namespace {

std::optional<ChipDescription> read(const QByteArray &bytes, workbench::ChipDescriptionError *error)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return workbench::readChipDescription(&buffer, error);
}

QString accessText(RegisterAccess access)
{
    switch (access) {
    case RegisterAccess::ReadOnly:
        return QStringLiteral("r");
    case RegisterAccess::WriteOnly:
        return QStringLiteral("w");
    case RegisterAccess::ReadWrite:
        break;
    }
    return QStringLiteral("rw");
}

/// As the reader takes it against a range: a register with a range above what an int holds was
/// written unsigned.
qint64 resetOf(const RegisterDescription &entry)
{
    const auto asUnsigned = static_cast<quint32>(entry.resetValue);
    return entry.range && entry.resetValue < entry.range->minimum ? qint64(asUnsigned)
                                                                  : qint64(entry.resetValue);
}

void writeField(QXmlStreamWriter &xml, const FieldDescription &field)
{
    xml.writeStartElement(QStringLiteral("field"));
    xml.writeAttribute(QStringLiteral("identifier"), field.identifier);
    xml.writeAttribute(QStringLiteral("name"), field.name);
    xml.writeAttribute(QStringLiteral("low"), QString::number(field.lowBit));
    xml.writeAttribute(QStringLiteral("width"), QString::number(field.width));
    xml.writeAttribute(QStringLiteral("signed"),
                       field.isSigned ? QStringLiteral("true") : QStringLiteral("false"));
    xml.writeEndElement();
}

void writeRegister(QXmlStreamWriter &xml, const RegisterDescription &entry)
{
    xml.writeStartElement(QStringLiteral("register"));
    xml.writeAttribute(QStringLiteral("name"), entry.name);
    xml.writeAttribute(QStringLiteral("address"), QString::number(entry.address));
    xml.writeAttribute(QStringLiteral("access"), accessText(entry.access));
    xml.writeAttribute(QStringLiteral("reset"), QString::number(resetOf(entry)));
    xml.writeAttribute(QStringLiteral("description"), entry.description);
    xml.writeAttribute(QStringLiteral("unit"), entry.unit);
    if (entry.range) {
        xml.writeAttribute(QStringLiteral("min"), QString::number(entry.range->minimum));
        xml.writeAttribute(QStringLiteral("max"), QString::number(entry.range->maximum));
    }
    for (const FieldDescription &field : entry.fields)
        writeField(xml, field);
    xml.writeEndElement();
}

QByteArray written(const ChipDescription &chip)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("chip"));
    xml.writeAttribute(QStringLiteral("name"), chip.name);
    for (const RegisterDescription &entry : chip.registers)
        writeRegister(xml, entry);
    xml.writeEndDocument();
    return bytes;
}

auto asTuple(const FieldDescription &field)
{
    return std::tie(field.identifier, field.name, field.lowBit, field.width, field.isSigned);
}

bool same(const RegisterDescription &a, const RegisterDescription &b)
{
    const auto asTuple1 = [](const RegisterDescription &entry) {
        return std::tie(entry.name, entry.address, entry.access, entry.resetValue, entry.unit,
                        entry.description);
    };
    const auto sameField = [](const FieldDescription &left, const FieldDescription &right) {
        return asTuple(left) == asTuple(right);
    };
    const bool sameRange = a.range.has_value() == b.range.has_value() &&
                           (!a.range || (a.range->minimum == b.range->minimum &&
                                         a.range->maximum == b.range->maximum));
    return asTuple1(a) == asTuple1(b) && sameRange &&
           std::equal(a.fields.begin(), a.fields.end(), b.fields.begin(), b.fields.end(),
                      sameField);
}

QString checkFields(const RegisterDescription &entry, QSet<QString> &identifiers)
{
    quint32 taken = 0;
    for (const FieldDescription &field : entry.fields) {
        if (field.lowBit < 0 || field.width < 1 || field.lowBit + field.width > 32)
            return QStringLiteral("a field beyond the register");
        const auto bits =
            static_cast<quint32>(((Q_UINT64_C(1) << field.width) - 1) << field.lowBit);
        if (taken & bits)
            return QStringLiteral("fields that overlap");
        taken |= bits;
        if (field.identifier.isEmpty() || identifiers.contains(field.identifier))
            return QStringLiteral("a field without an identifier of its own");
        identifiers.insert(field.identifier);
    }
    return QString();
}

QString checkRegisters(const ChipDescription &chip)
{
    if (chip.registers.isEmpty() || chip.registers.size() > 4096)
        return QStringLiteral("%1 registers").arg(chip.registers.size());
    QSet<QString> identifiers;
    for (const RegisterDescription &entry : chip.registers) {
        if (entry.address > 0xFFFF || chip.findRegister(entry.address) != &entry)
            return QStringLiteral("a register without an address of its own");
        if (entry.name.isEmpty() || chip.findRegister(entry.name) != &entry)
            return QStringLiteral("a register without a name of its own");
        if (entry.range &&
            (resetOf(entry) < entry.range->minimum || resetOf(entry) > entry.range->maximum))
            return QStringLiteral("a reset value outside the range");
        const QString problem = checkFields(entry, identifiers);
        if (!problem.isEmpty())
            return problem;
    }
    return QString();
}

QString checkReadsTheSame(const ChipDescription &chip)
{
    workbench::ChipDescriptionError error;
    const std::optional<ChipDescription> again = read(written(chip), &error);
    if (!again)
        return QStringLiteral("written anew it is refused: ") + error.reason;
    const bool isSame = again->name == chip.name &&
                        std::equal(chip.registers.begin(), chip.registers.end(),
                                   again->registers.begin(), again->registers.end(), same);
    return isSame ? QString() : QStringLiteral("written anew it reads differently");
}

} // namespace

QString checkChipDescription(const QByteArray &bytes)
{
    workbench::ChipDescriptionError error;
    const std::optional<ChipDescription> chip = read(bytes, &error);
    if (!chip)
        return checkRefusal(bytes, error.line, error.reason);
    const QString problem = checkRegisters(*chip);
    return problem.isEmpty() ? checkReadsTheSame(*chip) : problem;
}

} // namespace fuzz
