#include "Application.h"

#include "ChipDescriptionReader.h"
#include "CommandLine.h"
#include "RunReport.h"
#include "UnattendedSession.h"
#include "Workbench.h"

#include <QApplication>
#include <QFile>

#include <cstdio>

namespace bench {

namespace {

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
    if (!chip) {
        const QString text =
            QStringLiteral("%1:%2: %3\n").arg(fileName).arg(error.line).arg(error.reason);
        std::fputs(text.toLocal8Bit().constData(), stderr);
    }
    return chip;
}

/// An unattended run needs no screen, so it does without where there is none.
void chooseScreen(bool isUnattended)
{
    const bool hasScreen = qEnvironmentVariableIsSet("DISPLAY") ||
                           qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
                           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    if (isUnattended && !hasScreen)
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

int runInWindow(const Options &options, const ChipDescription &chip)
{
    Workbench workbench(options, chip);
    workbench.window().rememberLayout();
    workbench.show();
    return QApplication::exec();
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

    chooseScreen(commandLine.options.isUnattended);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // An unattended run operates the file dialog itself, which only works with Qt's own.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, commandLine.options.isUnattended);
    const QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Workbench"));
    QApplication::setApplicationVersion(QStringLiteral(WORKBENCH_VERSION));
    return commandLine.options.isUnattended ? runUnattended(commandLine.options, *chip)
                                            : runInWindow(commandLine.options, *chip);
}

} // namespace bench
