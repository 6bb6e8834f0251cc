#pragma once

#include "CommandLine.h"
#include "MainWindow.h"
#include "MessageLog.h"
#include "PluginLoader.h"
#include "SampleTap.h"
#include "SimulatedModule.h"

namespace bench {

/// All that makes up the running program: the module in real time, the plug-ins' tools for it and
/// the window. Exists once, after the QApplication. GUI thread.
class Workbench
{
public:
    /// Loads the plug-ins; those that could not be loaded are named in the log.
    Workbench(const Options &options, const ChipDescription &chip);

    SimulatedModule &module() { return simulated; }
    SampleTap &sampleTap() { return tap; }
    MainWindow &window() { return mainWindow; }

    /// The Synchronized drive tool; null when no plug-in has brought it.
    ToolsInterface *driveTool() const;

    /// Puts the window on screen and the drive tool, when there is one, into it.
    void show();

private:
    void loadTools(const QString &pluginsFolder);

    // In this order, so that what uses something goes before it.
    MessageLog log;
    SteadyClock clock;
    SimulatedModule simulated;
    SampleTap tap;
    PluginLoader plugins;
    MainWindow mainWindow;
    QVector<QPointer<ToolsInterface>> tools;
};

} // namespace bench
