#include "FaultControl.h"

#include "FaultyLink.h"
#include "SimulatedModule.h"

#include "ChipInfo.h"
#include "PluginHandler.h"
#include "PluginInterface.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QMetaObject>

namespace workbench {

FaultControl::FaultControl(FaultyLink &faultyLink, SimulatedModule &simulated, QObject *parent)
    : QObject(parent)
    , link(faultyLink)
    , module(simulated)
{
    FaultActions actions;
    actions.resetChip = [this](qint64 ns) {
        module.chip().advanceTo(ns);
        module.chip().reset();
    };
    actions.deleteRegisters = [this] { deleteRegisters(); };
    // Later: the request may come out of an event of one of these very widgets, which Qt does not
    // let go in the middle of it.
    actions.deleteWidgets = [this] {
        QMetaObject::invokeMethod(
            this, [this] { deleteWidgets(); }, Qt::QueuedConnection);
    };
    link.setActions(actions);
}

FaultControl::~FaultControl()
{
    link.setActions({});
}

void FaultControl::switchOn(const Fault &fault)
{
    link.switchOn(fault);
    emit changed();
}

void FaultControl::switchOff(FaultKind kind)
{
    link.switchOff(kind);
    emit changed();
}

void FaultControl::switchOffAll()
{
    link.switchOffAll();
    emit changed();
}

QVector<Fault> FaultControl::active() const
{
    return link.active();
}

void FaultControl::deleteRegisters()
{
    for (unsigned char motor = 0; motor < SimulatedModule::motorCount; ++motor) {
        const auto registers = ChipInfo::registers(module.hostModule().getIcProduct(motor));
        for (XmlValueRegister *const reg : registers) {
            qDeleteAll(ChipInfo::fields(reg));
            delete reg;
        }
    }
}

void FaultControl::deleteWidgets()
{
    const auto plugins = PluginHandler::instance(false)->plugins();
    for (PluginInterface *const plugin : plugins) {
        if (plugin)
            qDeleteAll(plugin->findChildren<XmlRegisterWidget *>());
    }
}

} // namespace workbench
