#include "Application.h"

#include "AxesState.h"
#include "ChipDescriptionReader.h"
#include "CommandLine.h"
#include "Complaints.h"
#include "EventWait.h"
#include "PanelDriver.h"
#include "SimulatedDispatcher.h"
#include "StopSignal.h"
#include "TapeFile.h"
#include "UnattendedRun.h"
#include "Workbench.h"

#include "ToolsInterface.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QPointer>

#include <cstdio>

namespace workbench {

namespace {

constexpr qint64 haltTimeoutMs = 30000;

CommandLine readCommandLine(int &argc, char *argv[])
{
    // Without a window system yet, so that wrong options are reported on any machine.
    const QCoreApplication application(argc, argv);
    return parseCommandLine(QCoreApplication::arguments());
}

/// Complains on the standard error output when there is no chip to return.
std::optional<ChipDescription> readChip(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        complain(QStringLiteral("%1: %2").arg(fileName, file.errorString()));
        return std::nullopt;
    }
    ChipDescriptionError error;
    auto chip = readChipDescription(&file, &error);
    if (!chip)
        complainAbout(fileName, error.line, error.reason);
    return chip;
}

/// An unattended run needs no screen, so it does without where there is none, and on simulated
/// time anywhere: a screen has a time of its own.
void chooseScreen(const Options &options)
{
    const bool hasScreen = qEnvironmentVariableIsSet("DISPLAY") ||
                           qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
                           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    if (options.isTimeSimulated || (options.isUnattended && !hasScreen))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

/// Before there is an application object, which is to own what is returned.
QAbstractEventDispatcher *installSimulatedTime(SteppedClock &clock)
{
    // The order of what is kept in hashes is otherwise another one in each process.
    qSetGlobalQHashSeed(0);
    auto *const eventLoop = new SimulatedDispatcher(clock);
    QCoreApplication::setEventDispatcher(eventLoop);
    return eventLoop;
}

/// Ends a move through the panel, so that its stop and its end are on the tape too; there is
/// nothing to stop on a tape that is played.
void haltAxes(Workbench &workbench)
{
    ToolsInterface *const tool = workbench.driveTool();
    if (!tool || workbench.tape())
        return;
    PanelDriver panel(tool);
    if (!panel.isMoving() || !panel.pressStop())
        return;
    // Somebody who closes the window meanwhile does not want to wait.
    EventWait wait(workbench.module().clock());
    QApplication::setQuitOnLastWindowClosed(false);
    QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &wait, &EventWait::interrupt);
    const AxesState axes(workbench.module(), nullptr);
    // A panel that is not on screen does not look for the end.
    const auto isVisible = [tool = QPointer<QWidget>(tool)] { return tool && tool->isVisible(); };
    wait.until([&] { return axes.areAtRest() && !(isVisible() && panel.isMoving()); },
               haltTimeoutMs);
}

int runInWindow(const Options &options, const ChipDescription &chip, Clock &clock,
                const std::optional<Tape> &replay)
{
    Workbench workbench(options, chip, clock, replay);
    // A signal ends the tape properly; without a tape there is nothing to end.
    std::optional<StopSignal> stopSignal;
    if (!options.tapeFile.isEmpty()) {
        stopSignal.emplace();
        QObject::connect(&*stopSignal, &StopSignal::stopRequested, qApp, [&workbench] {
            haltAxes(workbench);
            QCoreApplication::quit();
        });
    }
    TapeFile tape(workbench.tapeRecorder());
    QString problem = tape.begin(options.tapeFile, options.tapeSizeLimit);
    if (problem.isEmpty()) {
        workbench.window().rememberLayout();
        workbench.show();
        QApplication::exec();
        problem = tape.finish();
    }
    if (!problem.isEmpty())
        complain(problem);
    return problem.isEmpty() ? exitCode::success : exitCode::failure;
}

} // namespace

int runApplication(int argc, char *argv[])
{
    const CommandLine commandLine = readCommandLine(argc, argv);
    switch (commandLine.outcome) {
    case CommandLine::PrintText:
        std::fputs(commandLine.text.toLocal8Bit().constData(), stdout);
        return exitCode::success;
    case CommandLine::Refuse:
        complain(commandLine.text);
        return exitCode::usage;
    case CommandLine::Run:
        break;
    }
    const auto chip = readChip(commandLine.options.chipFile);
    if (!chip)
        return exitCode::usage;
    std::optional<Tape> replay;
    if (!commandLine.options.replayFile.isEmpty()) {
        replay = readTapeFile(commandLine.options.replayFile);
        if (!replay)
            return exitCode::usage;
    }

    chooseScreen(commandLine.options);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // An unattended run operates the file dialog itself, which only works with Qt's own.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, commandLine.options.isUnattended);
    SteadyClock realClock;
    SteppedClock simulatedClock;
    QAbstractEventDispatcher *eventLoop = nullptr;
    if (commandLine.options.isTimeSimulated)
        eventLoop = installSimulatedTime(simulatedClock);
    Clock &clock = eventLoop ? static_cast<Clock &>(simulatedClock) : realClock;
    QApplication application(argc, argv);
    if (eventLoop)
        eventLoop->setParent(&application);
    QApplication::setApplicationDisplayName(QStringLiteral("Workbench"));
    QApplication::setApplicationVersion(QStringLiteral(WORKBENCH_VERSION));
    return commandLine.options.isUnattended
               ? runUnattended(commandLine.options, *chip, clock, replay)
               : runInWindow(commandLine.options, *chip, clock, replay);
}

} // namespace workbench
