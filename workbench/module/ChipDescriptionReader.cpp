#include "ChipDescriptionReader.h"

#include "RegisterAttributes.h"

#include <QIODevice>
#include <QSet>
#include <QXmlStreamReader>

namespace workbench {

namespace {

constexpr int maximumFileSize = 16 * 1024 * 1024;
constexpr int readPieceSize = 64 * 1024;
constexpr int maximumRegisterCount = 4096;

// Reads one document; after a failed step, which returned false, `error` says why.
class Reader
{
public:
    explicit Reader(const QByteArray &data)
        : xml(data)
    {
    }

    bool read(ChipDescription *chip);
    const ChipDescriptionError &error() const { return firstError; }

private:
    bool readToRoot();
    bool readToEnd();
    bool readRegisters(ChipDescription *chip);
    bool readRegister(ChipDescription *chip);
    bool readFields(RegisterDescription *target);
    bool readField(RegisterDescription *target);
    bool checkRegisterIsNew(const RegisterDescription &candidate);
    bool checkFieldIsNew(const RegisterDescription &target, const FieldDescription &candidate);
    bool nextElement(const QString &expected, bool *found);
    bool accept(const QString &reason);
    bool fail(const QString &reason);

    QXmlStreamReader xml;
    ChipDescriptionError firstError;
    QSet<QString> names;
    QSet<unsigned int> addresses;
    QSet<QString> identifiers;
};

/// The XML reader's own messages end in a full stop, and may quote what does not print.
QString inOneLine(QString reason)
{
    if (reason.endsWith(QLatin1Char('.')))
        reason.chop(1);
    for (QChar &character : reason) {
        if (!character.isPrint())
            character = QLatin1Char('?');
    }
    return reason;
}

bool Reader::fail(const QString &reason)
{
    firstError.line = xml.lineNumber();
    firstError.reason = inOneLine(reason);
    return false;
}

// An empty reason is none.
bool Reader::accept(const QString &reason)
{
    return reason.isEmpty() || fail(reason);
}

// Goes to the next child element, which must be an `expected`, or to the end of the present one.
bool Reader::nextElement(const QString &expected, bool *found)
{
    for (;;) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            *found = true;
            return xml.name() == expected && xml.prefix().isEmpty()
                       ? true
                       : fail(QStringLiteral("unknown element '%1'").arg(shortened(xml.name())));
        case QXmlStreamReader::EndElement:
            *found = false;
            return true;
        case QXmlStreamReader::Characters:
            if (!xml.isWhitespace())
                return fail(QStringLiteral("unexpected text"));
            break;
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
            break;
        case QXmlStreamReader::Invalid:
            return fail(xml.errorString().simplified());
        default:
            return fail(QStringLiteral("unexpected content"));
        }
    }
}

bool Reader::read(ChipDescription *chip)
{
    if (!readToRoot())
        return false;
    const AttributeReader attributes(xml.attributes(), {QStringLiteral("name")}, {});
    if (!accept(attributes.error()))
        return false;
    chip->name = attributes.text(QStringLiteral("name"));
    return readRegisters(chip) && readToEnd();
}

// Document types are refused before they are used: nothing here needs their entities.
bool Reader::readToRoot()
{
    while (xml.readNext() != QXmlStreamReader::StartElement) {
        if (xml.hasError())
            return fail(xml.errorString().simplified());
        if (xml.tokenType() == QXmlStreamReader::DTD)
            return fail(QStringLiteral("a document type is not allowed"));
    }
    if (xml.name() != QLatin1String("chip") || !xml.prefix().isEmpty())
        return fail(
            QStringLiteral("the root element is '%1', not 'chip'").arg(shortened(xml.name())));
    return true;
}

bool Reader::readToEnd()
{
    while (!xml.atEnd())
        xml.readNext();
    return !xml.hasError() || fail(xml.errorString().simplified());
}

bool Reader::readRegisters(ChipDescription *chip)
{
    for (;;) {
        bool found = false;
        if (!nextElement(QStringLiteral("register"), &found))
            return false;
        if (!found)
            break;
        if (chip->registers.size() >= maximumRegisterCount)
            return fail(QStringLiteral("more than %1 registers").arg(maximumRegisterCount));
        if (!readRegister(chip))
            return false;
    }
    return !chip->registers.isEmpty() || fail(QStringLiteral("the chip has no registers"));
}

bool Reader::readRegister(ChipDescription *chip)
{
    RegisterDescription entry;
    if (!accept(parseRegister(xml.attributes(), &entry)) || !checkRegisterIsNew(entry) ||
        !readFields(&entry))
        return false;
    chip->registers.append(entry);
    return true;
}

bool Reader::checkRegisterIsNew(const RegisterDescription &candidate)
{
    if (names.contains(candidate.name))
        return fail(QStringLiteral("duplicate register name '%1'").arg(shortened(candidate.name)));
    if (addresses.contains(candidate.address))
        return fail(
            QStringLiteral("duplicate address 0x%1").arg(candidate.address, 2, 16, QChar(u'0')));
    names.insert(candidate.name);
    addresses.insert(candidate.address);
    return true;
}

bool Reader::readFields(RegisterDescription *target)
{
    for (;;) {
        bool found = false;
        if (!nextElement(QStringLiteral("field"), &found))
            return false;
        if (!found)
            return true;
        if (!readField(target))
            return false;
    }
}

bool Reader::readField(RegisterDescription *target)
{
    FieldDescription field;
    if (!accept(parseField(xml.attributes(), &field)) || !checkFieldIsNew(*target, field))
        return false;
    target->fields.append(field);
    bool found = false;
    return nextElement(QString(), &found);
}

bool Reader::checkFieldIsNew(const RegisterDescription &target, const FieldDescription &candidate)
{
    if (identifiers.contains(candidate.identifier))
        return fail(
            QStringLiteral("duplicate field identifier '%1'").arg(shortened(candidate.identifier)));
    for (const FieldDescription &field : target.fields) {
        if (candidate.lowBit < field.lowBit + field.width &&
            field.lowBit < candidate.lowBit + candidate.width)
            return fail(QStringLiteral("the field overlaps '%1'").arg(shortened(field.identifier)));
    }
    identifiers.insert(candidate.identifier);
    return true;
}

/// All of a file, or somewhat more than is allowed of one that is larger. In pieces, because a
/// single read() sets aside as much as it is allowed to take, however short the file.
QByteArray readAllowed(QIODevice *device)
{
    QByteArray data;
    while (data.size() <= maximumFileSize) {
        const QByteArray piece = device->read(readPieceSize);
        if (piece.isEmpty())
            break;
        data += piece;
    }
    return data;
}

} // namespace

std::optional<ChipDescription> readChipDescription(QIODevice *device, ChipDescriptionError *error)
{
    const QByteArray data = readAllowed(device);
    ChipDescriptionError refusal{1, QStringLiteral("the file is larger than 16 MiB")};
    if (data.size() <= maximumFileSize) {
        Reader reader(data);
        ChipDescription chip;
        if (reader.read(&chip))
            return chip;
        refusal = reader.error();
    }
    if (error)
        *error = refusal;
    return std::nullopt;
}

} // namespace workbench
