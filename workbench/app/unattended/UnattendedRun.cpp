#include "UnattendedRun.h"

#include "Complaints.h"
#include "FlightPathEditor.h"
#include "FlightPoints.h"
#include "FlightRun.h"
#include "MoveRun.h"
#include "OutputFile.h"
#include "PanelPicture.h"
#include "RunStage.h"
#include "StopSignal.h"
#include "TapeFile.h"
#include "Workbench.h"

#include "ToolsInterface.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>

namespace workbench {

namespace {

Complaint failure(const QString &text)
{
    return {text, exitCode::failure};
}

/// Returns an empty text, or why the files asked for cannot be written: to be known before the run.
QString openFiles(const Options &options, RecordWriter &record)
{
    if (!options.pictureFile.isEmpty()) {
        QSaveFile trial;
        const QString problem = openOutput(trial, options.pictureFile);
        if (!problem.isEmpty())
            return problem;
    }
    return options.recordFile.isEmpty() ? QString() : record.begin(options.recordFile);
}

/// Whether the panel's file dialog offers a file of that name. To be known before: given a name
/// that it does not offer, the dialog sometimes takes it, depending on how far it has read the
/// folder.
bool isOffered(const QFileInfo &info)
{
    const QString suffix = info.suffix().toLower();
    return !info.isHidden() && !info.absoluteFilePath().contains(QLatin1Char('"')) &&
           (suffix == QLatin1String("csv") || suffix == QLatin1String("txt"));
}

/// Returns an empty text, or why no flight path can be loaded from the file.
QString cannotOpen(const QString &fileName)
{
    const QFileInfo info(fileName);
    // To open a device or a pipe could block.
    if (info.exists() && !info.isFile())
        return QStringLiteral("%1: is not an ordinary file").arg(fileName);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1: %2").arg(fileName, file.errorString());
    if (!isOffered(info))
        return QStringLiteral("%1: the panel's file dialog does not take it; it wants a visible "
                              ".csv or .txt file without a quotation mark in its name")
            .arg(fileName);
    return QString();
}

/// Gives the panel the path of a file, or leaves its built-in one when there is no file.
Complaint prepareFlightPath(const QString &fileName, const PanelDriver &panel, RunOutput &output,
                            QVector<QPointF> *path)
{
    FlightPathEditor editor(panel);
    if (fileName.isEmpty()) {
        const QString problem = editor.read(path);
        const bool isMissing = problem.isEmpty() && path->isEmpty();
        return failure(isMissing ? QStringLiteral("the panel has no flight path") : problem);
    }
    const QString problem = editor.load(fileName, path);
    if (!problem.isEmpty())
        return {QStringLiteral("%1: %2").arg(fileName, problem), exitCode::usage};
    if (path->isEmpty())
        return {QStringLiteral("%1: holds no point").arg(fileName), exitCode::usage};
    const QString outside = outOfRange(*path);
    if (!outside.isEmpty())
        return {QStringLiteral("%1: %2").arg(fileName, outside), exitCode::usage};
    const QString note = fractionNote(*path);
    if (!note.isEmpty())
        output.line(QStringLiteral("%1: %2").arg(fileName, note));
    return {};
}

QString runMoves(RunStage &stage, const QVector<ScriptedMove> &moves)
{
    MoveRun run(stage);
    return run.carryOut(moves);
}

/// The built-in run: the moves, then back to where the built-in path begins, so that the figure
/// stands alone in the chart, and along that path.
Complaint runParts(const Options &options, RunStage &stage)
{
    if (!options.targets.isEmpty())
        return failure(runMoves(stage, movesTo(options.targets)));
    QVector<QPointF> path;
    const Complaint problem =
        prepareFlightPath(options.flightPathFile, stage.panel, stage.output, &path);
    if (!problem.text.isEmpty())
        return problem;
    const QVector<QPoint> points = drivenPoints(path);
    QString text;
    if (options.flightPathFile.isEmpty())
        text = runMoves(stage, builtInMoves() + movesTo({points.constFirst()}));
    if (text.isEmpty())
        text = FlightRun(stage).carryOut(points);
    return failure(text);
}

Complaint runInterruptibly(const Options &options, RunStage &stage, const StopSignal &stopSignal)
{
    const QObject listener;
    const auto interrupt = [&stage] { stage.interrupt(); };
    QObject::connect(&stopSignal, &StopSignal::stopRequested, &listener, interrupt);
    QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &listener, interrupt);
    return runParts(options, stage);
}

/// Writes the files and returns the summary in `summary`, or returns what failed.
QString writeFiles(const Options &options, QWidget *panel, RecordWriter &record, QString *summary)
{
    if (!options.pictureFile.isEmpty()) {
        const QString problem = savePicture(panel, options.pictureFile);
        if (!problem.isEmpty())
            return problem;
        *summary += QStringLiteral("; picture in %1").arg(options.pictureFile);
    }
    if (!options.recordFile.isEmpty())
        *summary +=
            QStringLiteral("; %1 samples in %2").arg(record.sampleCount()).arg(options.recordFile);
    return record.finish();
}

Complaint runAndReport(const Options &options, Workbench &workbench, const StopSignal &stopSignal)
{
    ToolsInterface *const tool = workbench.driveTool();
    if (!tool)
        return failure(
            QStringLiteral("no Synchronized drive plug-in in %1").arg(options.pluginsFolder));
    RecordWriter record;
    const QString notOpened = openFiles(options, record);
    if (!notOpened.isEmpty())
        return failure(notOpened);

    workbench.show();
    const PanelDriver panel(tool);
    if (!panel.missingPart().isEmpty())
        return failure(QStringLiteral("the panel has no %1").arg(panel.missingPart()));
    RunOutput output;
    RunStage stage(workbench.module(), workbench.tape(), workbench.sampleTap(), panel, record,
                   output);
    Complaint problem = runInterruptibly(options, stage, stopSignal);
    if (problem.text.isEmpty())
        problem = failure(stage.replay.problemAtEnd());
    if (!problem.text.isEmpty())
        return problem;
    QString summary = QStringLiteral("all moves as planned");
    if (workbench.tape())
        summary += QStringLiteral(", as on %1").arg(options.replayFile);
    const QString notWritten = writeFiles(options, tool, record, &summary);
    if (notWritten.isEmpty())
        output.line(summary);
    return failure(notWritten);
}

/// The tape is kept whatever comes of the run: it is wanted most when that fails.
Complaint runOnTape(const Options &options, Workbench &workbench)
{
    // From before the first file is opened, so that no signal leaves a part of one behind.
    const StopSignal stopSignal;
    TapeFile tape(workbench.tapeRecorder());
    const QString notOpened = tape.begin(options.tapeFile, options.tapeSizeLimit);
    if (!notOpened.isEmpty())
        return failure(notOpened);
    const Complaint problem = runAndReport(options, workbench, stopSignal);
    const QString notWritten = tape.finish();
    if (problem.text.isEmpty())
        return failure(notWritten);
    if (!notWritten.isEmpty())
        complain(notWritten);
    return problem;
}

} // namespace

int runUnattended(const Options &options, const ChipDescription &chip,
                  const std::optional<Tape> &replay)
{
    if (!options.flightPathFile.isEmpty()) {
        const QString unreadable = cannotOpen(options.flightPathFile);
        if (!unreadable.isEmpty()) {
            complain(unreadable);
            return exitCode::usage;
        }
    }
    QApplication::setQuitOnLastWindowClosed(false);
    Workbench workbench(options, chip, replay);
    const Complaint problem = runOnTape(options, workbench);
    if (problem.text.isEmpty())
        return exitCode::success;
    complain(problem.text);
    return problem.code;
}

} // namespace workbench
