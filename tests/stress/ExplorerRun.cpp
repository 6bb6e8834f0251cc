#include "ExplorerRun.h"

#include <QCoreApplication>
#include <QProcess>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr const char *keepVariable = "EXPLORER_KEEP";
constexpr const char *abortVariable = "EXPLORER_ABORT";
constexpr const char *seedPrefix = "sequence ";

/// A sequence takes a fraction of a second, and several with sanitizers on a busy machine.
constexpr int mostSilenceMs = 120000;

/// The environment of a run that shortens a sequence has the places of the events that are left.
ExplorerEvents kept(const ExplorerEvents &events)
{
    if (!qEnvironmentVariableIsSet(keepVariable))
        return events;
    ExplorerEvents some;
    const QStringList places = qEnvironmentVariable(keepVariable).split(QLatin1Char(','));
    for (const QString &place : places) {
        if (!place.isEmpty())
            some.append(events.at(place.toInt()));
    }
    return some;
}

void abortIfAskedTo(const ExplorerEvents &events)
{
    bool isAsked = false;
    const int kind = qEnvironmentVariableIntValue(abortVariable, &isAsked);
    for (const ExplorerEvent &event : events) {
        if (isAsked && kind == event.kind)
            std::abort();
    }
}

QString tail(const QString &output)
{
    constexpr int shownLines = 30;
    const QStringList lines = output.split(QLatin1Char('\n'));
    return lines.mid(qMax(0, lines.size() - shownLines)).join(QLatin1Char('\n'));
}

} // namespace

ExplorerEvents ExplorerRun::begin(unsigned int seed, const ExplorerEvents &events)
{
    std::printf("%s%u\n", seedPrefix, seed);
    std::fflush(stdout);
    const ExplorerEvents left = kept(events);
    abortIfAskedTo(left);
    return left;
}

ExplorerRun::ExplorerRun(const QString &function)
    : functionName(function)
    , environment(QProcessEnvironment::systemEnvironment())
{
    environment.insert(QLatin1String(workerVariable), QStringLiteral("1"));
}

void ExplorerRun::abortOn(ExplorerEvent::Kind kind)
{
    environment.insert(QLatin1String(abortVariable), QString::number(kind));
}

QString ExplorerRun::run()
{
    const Outcome outcome = start(environment);
    told = outcome.output;
    if (outcome.isFine)
        return QString();
    if (!outcome.hasCrashed)
        return tail(outcome.output);
    return QStringLiteral("seed %1: crashed or hung\n%2\nshortest sequence:%3")
        .arg(outcome.seed)
        .arg(tail(outcome.output), shortenedCrash(outcome.seed));
}

ExplorerRun::Outcome ExplorerRun::start(const QProcessEnvironment &settings) const
{
    QProcess process;
    process.setProcessEnvironment(settings);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(), {functionName});
    Outcome outcome;
    while (process.waitForReadyRead(mostSilenceMs)) {
        while (process.canReadLine()) {
            const QString line = QString::fromLocal8Bit(process.readLine());
            if (line.startsWith(QLatin1String(seedPrefix)))
                outcome.seed = line.mid(int(qstrlen(seedPrefix))).trimmed().toUInt();
            else
                outcome.output += line;
        }
    }
    outcome.output += QString::fromLocal8Bit(process.readAll());
    const bool hasEnded = process.state() == QProcess::NotRunning || process.waitForFinished(1000);
    if (!hasEnded) {
        process.kill();
        process.waitForFinished();
    }
    outcome.hasCrashed = !hasEnded || process.exitStatus() == QProcess::CrashExit ||
                         !outcome.output.contains(QLatin1String("Totals:"));
    outcome.isFine = !outcome.hasCrashed && process.exitCode() == 0;
    return outcome;
}

/// By leaving events out, each trial in a process of its own.
QString ExplorerRun::shortenedCrash(unsigned int seed) const
{
    const ExplorerEvents events = explorerEvents(seed, eventsPerSequence);
    QProcessEnvironment one = environment;
    one.insert(QStringLiteral("EXPLORER_SEED"), QString::number(seed));
    one.insert(QStringLiteral("EXPLORER_EVENTS"), QString::number(eventsPerSequence));
    // The places stand for the events, which are drawn anew in each process.
    ExplorerEvents places;
    for (int i = 0; i < events.size(); ++i)
        places.append({ExplorerEvent::Sample, i, 0});
    const ExplorerEvents left = shortest(places, [&](const ExplorerEvents &tried) {
        QStringList numbers;
        for (const ExplorerEvent &place : tried)
            numbers << QString::number(place.a);
        one.insert(QLatin1String(keepVariable), numbers.join(QLatin1Char(',')));
        return start(one).hasCrashed;
    });
    ExplorerEvents few;
    for (const ExplorerEvent &place : left)
        few.append(events.at(place.a));
    return textOf(few);
}
