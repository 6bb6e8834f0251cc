#pragma once

#include "ChipInfo.h"
#include "XmlProductIC.h"
#include "XmlRegisterSet.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QMap>
#include <QPointer>

class XmlValueRegisterFieldPrivate
{
public:
    static const XmlValueRegisterFieldPrivate *of(const XmlValueRegisterField *field)
    {
        return field->d.get();
    }

    FieldInfo info;
    QPointer<XmlValueRegister> reg;
};

class XmlValueRegisterPrivate
{
public:
    static XmlValueRegisterPrivate *of(const XmlValueRegister *reg) { return reg->d.get(); }

    RegisterInfo info;
    QList<QPointer<XmlValueRegisterField>> fields;
};

class XmlRegisterSetPrivate
{
public:
    static XmlRegisterSetPrivate *of(const XmlRegisterSet *set) { return set->d.get(); }

    /// Declared first, so that the registers that are left are deleted last.
    QObject owner;
    QMap<unsigned int, QPointer<XmlValueRegister>> registers;
};

class XmlProductICPrivate
{
public:
    XmlProductICPrivate();

    XmlRegisterSet registers;
};
