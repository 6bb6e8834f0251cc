#include "ChipObjects_p.h"

XmlValueRegisterField::XmlValueRegisterField(std::unique_ptr<XmlValueRegisterFieldPrivate> state,
                                             QObject *parent)
    : QObject(parent)
    , d(std::move(state))
{
}

XmlValueRegisterField::~XmlValueRegisterField() = default;

XmlValueRegister *XmlValueRegisterField::getRegister()
{
    return d->reg;
}

QString XmlValueRegisterField::getName()
{
    return d->info.name;
}

XmlValueRegister::XmlValueRegister(std::unique_ptr<XmlValueRegisterPrivate> state, QObject *parent)
    : QObject(parent)
    , d(std::move(state))
{
}

XmlValueRegister::~XmlValueRegister() = default;

unsigned int XmlValueRegister::address()
{
    return d->info.address;
}

QString XmlValueRegister::name()
{
    return d->info.name;
}

XmlRegisterSet::XmlRegisterSet(std::unique_ptr<XmlRegisterSetPrivate> state)
    : d(std::move(state))
{
}

XmlRegisterSet::~XmlRegisterSet() = default;

XmlValueRegister *XmlRegisterSet::getRegister(unsigned int address)
{
    return d->registers.value(address);
}

XmlProductICPrivate::XmlProductICPrivate()
    : registers(std::make_unique<XmlRegisterSetPrivate>())
{
}

XmlProductIC::XmlProductIC(std::unique_ptr<XmlProductICPrivate> state)
    : d(std::move(state))
{
}

XmlProductIC::~XmlProductIC() = default;

XmlValueRegister *XmlProductIC::getRegisterByName(QString name, bool visibleOnly)
{
    const auto all = ChipInfo::registers(this);
    for (XmlValueRegister *const reg : all) {
        if (reg->name() == name && (!visibleOnly || ChipInfo::of(reg).visible))
            return reg;
    }
    return nullptr;
}

XmlValueRegisterField *XmlProductIC::getRegisterFieldByIdentifier(QString identifier,
                                                                  bool includeHidden,
                                                                  bool allRegisters)
{
    const auto all = ChipInfo::registers(this);
    for (XmlValueRegister *const reg : all) {
        const auto fields = ChipInfo::fields(reg);
        for (XmlValueRegisterField *const field : fields) {
            const FieldInfo info = ChipInfo::of(field);
            if (info.identifier != identifier)
                continue;
            if (includeHidden || info.visible)
                return field;
            if (!allRegisters)
                return nullptr;
        }
    }
    return nullptr;
}

XmlRegisterSet *XmlProductIC::registerSet()
{
    return &d->registers;
}
