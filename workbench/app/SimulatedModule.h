#pragma once

#include "Clock.h"
#include "HostModule.h"
#include "SimulatedChip.h"
#include "SimulatedLink.h"

#include <QString>

#include <memory>
#include <optional>

namespace workbench {

/// The host's description of a chip, made from the simulation's.
std::shared_ptr<XmlProductIC> buildProduct(const ChipDescription &description);

/// A simulated module as the host sees it: the chip, the link to it, and the host's module in front
/// of both, registered under its key. One chip serves motors 0 and 1. Must outlive the tools that
/// are made for the module. GUI thread.
class SimulatedModule
{
public:
    static constexpr unsigned char motorCount = 2;

    static QString defaultKey() { return QStringLiteral("module-1/"); }

    /// `clock` is not owned and must outlive the module.
    SimulatedModule(const ChipDescription &description, Clock &clock,
                    const QString &key = defaultKey());

    SimulatedChip &chip() { return simulatedChip; }
    SimulatedLink &link() { return simulatedLink; }
    Clock &clock() { return time; }

    /// What tools are given. Its link is `link()` until somebody puts another one, such as a
    /// SampleTap, in front of that with HostModule::setLink().
    HostModule &hostModule() { return module; }

    /// Lets the axes run up to now without a request.
    void catchUp() { simulatedChip.advanceTo(time.now()); }

    /// The value of the register of that name as it is now, looked up in the chip itself without a
    /// request; nothing for a register that the chip does not have or that cannot be read.
    std::optional<int> registerValue(const QString &name);

private:
    Clock &time;
    SimulatedChip simulatedChip;
    SimulatedLink simulatedLink;
    HostModule module;
};

} // namespace workbench
