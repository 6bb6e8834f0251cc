#pragma once

#include "CommandLine.h"
#include "FaultControl.h"
#include "LinkChain.h"
#include "MainWindow.h"
#include "MessageLog.h"
#include "PluginLoader.h"
#include "SimulatedModule.h"

namespace workbench {

/// All that makes up the running program: the module, the plug-ins' tools for it and
/// the window. Exists once, after the QApplication. GUI thread.
class Workbench
{
public:
    /// Loads the plug-ins; those that could not be loaded are named in the log. With a tape the
    /// requests are answered from that instead of the simulated chip, and in a window what is not
    /// as on it goes to the log; an unattended run tells that itself. The clock is not owned.
    Workbench(const Options &options, const ChipDescription &chip, Clock &clock,
              const std::optional<Tape> &tape = std::nullopt);

    SimulatedModule &module() { return simulated; }
    SampleTap &sampleTap() { return links.tap(); }
    /// The tape that answers; null when the simulated chip does.
    const TapeLink *tape() const { return links.replay(); }
    TapeRecorder &tapeRecorder() { return links.recorder(); }
    FaultControl &faults() { return faultControl; }
    MainWindow &window() { return mainWindow; }

    /// The Synchronized drive tool; null when no plug-in has brought it.
    ToolsInterface *driveTool() const;

    /// Puts the window on screen and the drive tool, when there is one, into it.
    void show();

private:
    void logDeviation(const QString &text);
    void loadTools(const QString &pluginsFolder);

    // In this order, so that what uses something goes before it.
    MessageLog log;
    SimulatedModule simulated;
    LinkChain links;
    FaultControl faultControl;
    PluginLoader plugins;
    MainWindow mainWindow;
    QVector<QPointer<ToolsInterface>> tools;
    bool isDeviating = false;
};

} // namespace workbench
