#include "Workbench.h"

#include "ToolFactory.h"

#include "DeviceTreeView.h"

#include "ToolDetails.h"
#include "ToolsInterface.h"

#include <QLoggingCategory>

namespace workbench {

namespace {

Q_LOGGING_CATEGORY(pluginLog, "workbench.plugins", QtInfoMsg)
Q_LOGGING_CATEGORY(tapeLog, "workbench.tape", QtInfoMsg)

/// Version texts go on behind a semicolon with what the plug-in was built from.
QString shortVersion(ToolsInterface *tool)
{
    return tool->version().section(QLatin1Char(';'), 0, 0);
}

} // namespace

Workbench::Workbench(const Options &options, const ChipDescription &chip, Clock &clock,
                     const std::optional<Tape> &tape)
    : simulated(chip, clock)
    , links(simulated.link(), clock, chip.axisAddresses(), tape, options.seed)
    , faultControl(links.faults(), simulated)
    , mainWindow(simulated, log)
{
    if (TapeLink *const replay = links.replay()) {
        if (!options.isUnattended)
            replay->onDeviation = [this](const QString &text) { logDeviation(text); };
        mainWindow.showReplay(*replay, options.replayFile);
    }
    mainWindow.addFaults(faultControl);
    simulated.link().setRequestCostNs(options.linkCostNs);
    simulated.hostModule().setLink(&links.front());
    loadTools(options.pluginsFolder);
    for (const Fault &fault : options.faults)
        faultControl.switchOn(fault);
}

/// One write that is not as on the tape brings many of the kind; those behind the first are for the
/// window's log alone.
void Workbench::logDeviation(const QString &text)
{
    if (isDeviating)
        qCInfo(tapeLog).noquote() << text;
    else
        qCWarning(tapeLog).noquote() << text;
    isDeviating = true;
}

void Workbench::loadTools(const QString &pluginsFolder)
{
    plugins.loadFolder(pluginsFolder);
    for (const RejectedFile &file : plugins.rejected())
        qCWarning(pluginLog).noquote() << file.fileName + QStringLiteral(": ") + file.reason;
    const auto made = makeTools(plugins.prototypes(), &simulated.hostModule());
    for (ToolsInterface *const tool : made) {
        qCInfo(pluginLog).noquote()
            << displayName(tool) + QStringLiteral(": version ") + shortVersion(tool);
        tools.append(tool);
        mainWindow.addTool(tool);
    }
}

ToolsInterface *Workbench::driveTool() const
{
    for (const QPointer<ToolsInterface> &tool : tools) {
        if (ToolDetails::of(tool).type == ToolsType::SynchronisedDriveTool)
            return tool;
    }
    return nullptr;
}

void Workbench::show()
{
    mainWindow.show();
    if (const ToolsInterface *const tool = driveTool())
        mainWindow.openToolMaximised(tool->key());
}

} // namespace workbench
