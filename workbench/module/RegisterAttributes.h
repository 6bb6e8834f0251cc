#pragma once

#include "ChipDescription.h"

#include <QStringList>
#include <QXmlStreamAttributes>

namespace workbench {

/// The attributes of one element, checked against those that it must and those that it may have.
/// Texts are bounded in length. The first error found is kept; what is asked for after that is
/// without meaning, so a caller asks for everything and then looks at error().
class AttributeReader
{
public:
    AttributeReader(const QXmlStreamAttributes &attributes, const QStringList &required,
                    const QStringList &optional);

    bool has(const QString &name) const { return given.hasAttribute(name); }

    /// Empty when the attribute was left out.
    QString text(const QString &name) const { return given.value(name).toString(); }

    /// Decimal or, behind 0x, hexadecimal; an error unless within `minimum` to `maximum`.
    qint64 number(const QString &name, qint64 minimum, qint64 maximum);

    /// true or false; false when left out.
    bool flag(const QString &name);

    /// The first error, one line; empty when there is none.
    QString error() const { return firstError; }

    void fail(const QString &reason);

private:
    void checkKnown(const QStringList &required, const QStringList &optional);
    void checkRequired(const QStringList &required);

    QXmlStreamAttributes given;
    QString firstError;
};

/// Fill `target` from the attributes of its element; return the error or an empty text.
QString parseRegister(const QXmlStreamAttributes &attributes, RegisterDescription *target);
QString parseField(const QXmlStreamAttributes &attributes, FieldDescription *target);

/// A text from a file, made fit for a one-line message.
QString shortened(const QStringRef &text);
QString shortened(const QString &text);

} // namespace workbench
