#include "Workbench.h"

#include "ToolFactory.h"

#include "DeviceTreeView.h"

#include "ToolDetails.h"
#include "ToolsInterface.h"

#include <QLoggingCategory>

namespace bench {

namespace {

Q_LOGGING_CATEGORY(pluginLog, "workbench.plugins", QtInfoMsg)

/// Version texts go on behind a semicolon with what the plug-in was built from.
QString shortVersion(ToolsInterface *tool)
{
    return tool->version().section(QLatin1Char(';'), 0, 0);
}

} // namespace

Workbench::Workbench(const Options &options, const ChipDescription &chip)
    : simulated(chip, clock)
    , tap(simulated.link(), clock)
    , mainWindow(simulated, log)
{
    simulated.link().setRequestCostNs(options.linkCostNs);
    simulated.hostModule().setLink(&tap);
    loadTools(options.pluginsFolder);
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

} // namespace bench
