#include "HostModule.h"

#include "CommandHandlerInterface_p.h"
#include "HostRegistry.h"
#include "PluginInterface_p.h"
#include "QVXLModuleInterface_p.h"

HostModule::HostModule(const QString &name, const QString &key, ModuleLink *link, QWidget *parent)
    : QVXLModuleInterface(std::make_unique<QVXLModuleInterfacePrivate>(),
                          std::make_unique<PluginInterfacePrivate>(name, PluginKind::Module))
{
    setParent(parent);
    setLink(link);
    HostRegistry::add(this, key);
}

HostModule::~HostModule() = default;

void HostModule::setProduct(unsigned char motor, std::shared_ptr<XmlProductIC> product)
{
    auto *const state = QVXLModuleInterfacePrivate::of(this);
    state->everyProduct.append(product);
    state->products.insert(motor, product);
}

void HostModule::setLink(ModuleLink *link)
{
    QVXLModuleInterfacePrivate::of(this)->link = link;
}

ModuleLink *HostModule::link() const
{
    return QVXLModuleInterfacePrivate::of(this)->link;
}

bool HostModule::isCircularMode() const
{
    return CommandHandlerPrivate::of(&QVXLModuleInterfacePrivate::of(this)->handler)->circular;
}

int HostModule::outputValue(XmlValueRegister *reg, unsigned char motor) const
{
    return reg ? QVXLModuleInterfacePrivate::of(this)->outputValue(ChipInfo::of(reg), motor) : 0;
}
