#include "UnattendedRun.h"

#include "Complaints.h"
#include "FlightPathSetup.h"
#include "FlightPoints.h"
#include "FlightRun.h"
#include "MoveRun.h"
#include "OutputFile.h"
#include "PanelPicture.h"
#include "ReportComparison.h"
#include "RunReport.h"
#include "RunStage.h"
#include "StopSignal.h"
#include "TapeFile.h"
#include "Wording.h"
#include "Workbench.h"

#include "ToolsInterface.h"

#include <QApplication>

namespace workbench {

namespace {

Complaint failure(const QString &text)
{
    return {text, exitCode::failure};
}

/// Returns an empty text, or why the files asked for cannot be written: to be known before the run.
QString openFiles(const Options &options, RecordWriter &record)
{
    for (const QString &name : {options.pictureFile, options.reportFile}) {
        QSaveFile trial;
        const QString problem = name.isEmpty() ? QString() : openOutput(trial, name);
        if (!problem.isEmpty())
            return problem;
    }
    return options.recordFile.isEmpty() ? QString() : record.begin(options.recordFile);
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
    if (options.randomMoves > 0)
        return failure(
            runMoves(stage, randomMoves(options.randomMoves, options.seed, options.area)));
    if (!options.targets.isEmpty())
        return failure(runMoves(stage, movesTo(options.targets)));
    QVector<QPointF> path;
    const Complaint problem =
        prepareFlightPath(options.flightPathFile, stage.panel, options.firstPoint,
                          stage.module.clock(), stage.output, &path);
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
    Complaint problem;
    for (int i = 0; i < options.repetitions && problem.text.isEmpty(); ++i)
        problem = runParts(options, stage);
    return problem;
}

/// As a campaign when there are many moves.
Complaint runAndTally(const Options &options, RunStage &stage, const StopSignal &stopSignal)
{
    MoveTally tally;
    const bool isCampaign = options.randomMoves > 0 || options.repetitions > 1;
    stage.tally = isCampaign ? &tally : nullptr;
    const Complaint problem = runInterruptibly(options, stage, stopSignal);
    stage.tally = nullptr;
    if (tally.count() > 0) {
        const QStringList table = tally.table();
        for (const QString &line : table)
            stage.output.line(line);
    }
    return problem;
}

/// Returns an empty text, or what could not be written.
QString writeFiles(const Options &options, QWidget *panel, RecordWriter &record,
                   const RunReport &report)
{
    QString problem;
    if (!options.pictureFile.isEmpty())
        problem = savePicture(panel, options.pictureFile);
    if (problem.isEmpty() && !options.reportFile.isEmpty())
        problem = report.write(options.reportFile);
    return problem.isEmpty() ? record.finish() : problem;
}

QString readBaseline(const Options &options, QJsonObject *baseline)
{
    QString problem;
    if (!options.baselineFile.isEmpty())
        *baseline = readReport(options.baselineFile, &problem).value_or(QJsonObject());
    return problem;
}

Complaint compare(const RunReport &report, const QJsonObject &baseline, const Options &options,
                  RunOutput &output)
{
    if (options.baselineFile.isEmpty())
        return {};
    const QStringList found = differences(report.object(), baseline, options.tolerancePercent);
    for (const QString &difference : found)
        output.line(difference);
    return found.isEmpty() ? Complaint()
                           : failure(wording::notAsInReport(found.size(), options.baselineFile));
}

Complaint runAndReport(const Options &options, Workbench &workbench, const StopSignal &stopSignal)
{
    ToolsInterface *const tool = workbench.driveTool();
    if (!tool)
        return failure(wording::noTool(options.pluginsFolder));
    QJsonObject baseline;
    const QString notRead = readBaseline(options, &baseline);
    if (!notRead.isEmpty())
        return {notRead, exitCode::usage};
    RecordWriter record;
    const QString notOpened = openFiles(options, record);
    if (!notOpened.isEmpty())
        return failure(notOpened);

    workbench.show();
    // Nobody looks on, and to paint each update would be most of the work. Layouts go on as ever.
    workbench.window().setUpdatesEnabled(!options.isTimeSimulated);
    const PanelDriver panel(tool);
    if (!panel.missingPart().isEmpty())
        return failure(wording::panelLacks(panel.missingPart()));
    RunOutput output;
    RunStage stage(workbench.module(), workbench.tape(), workbench.sampleTap(), panel, record,
                   output, options.isTimeSimulated);
    RunReport report(options, tool->version().section(QLatin1Char(';'), 0, 0),
                     workbench.module().chip().description().name);
    stage.report = &report;
    Complaint problem = runAndTally(options, stage, stopSignal);
    if (problem.text.isEmpty())
        problem = failure(stage.replay.problemAtEnd());
    if (!problem.text.isEmpty())
        return problem;
    workbench.window().setUpdatesEnabled(true);
    const QString notWritten = writeFiles(options, tool, record, report);
    if (!notWritten.isEmpty())
        return failure(notWritten);
    output.line(wording::allAsPlanned(options, record.sampleCount()));
    return compare(report, baseline, options, output);
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

int runUnattended(const Options &options, const ChipDescription &chip, Clock &clock,
                  const std::optional<Tape> &replay)
{
    if (!options.flightPathFile.isEmpty()) {
        const QString unreadable = cannotLoadFlightPath(options.flightPathFile);
        if (!unreadable.isEmpty()) {
            complain(unreadable);
            return exitCode::usage;
        }
    }
    QApplication::setQuitOnLastWindowClosed(false);
    Workbench workbench(options, chip, clock, replay);
    const Complaint problem = runOnTape(options, workbench);
    if (problem.text.isEmpty())
        return exitCode::success;
    complain(problem.text);
    return problem.code;
}

} // namespace workbench
