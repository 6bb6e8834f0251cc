#include "CommandLine.h"

#include "DualAxisMotion.h"
#include "PluginLoader.h"
#include "SimulatedLink.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageWriter>

#include <optional>

namespace workbench {

namespace {

constexpr int nsPerMicrosecond = 1000;
constexpr int maximumLinkCostUs = 1000000;
constexpr int maximumCount = 1000000;

const QCommandLineOption unattendedOption{
    QStringLiteral("unattended"),
    QStringLiteral("Run a few moves and a flight path through the panel, report each, and exit "
                   "with 0 when all went well, else with 1.")};
const QCommandLineOption clockOption{
    QStringLiteral("clock"),
    QStringLiteral(
        "What an unattended run takes its time from: \"real\", or \"simulated\", where "
        "time moves by what requests cost, 1 microsecond at least, and jumps to the next "
        "timer; the same options then give the same files, without any waiting. real "
        "when not given."),
    QStringLiteral("CLOCK")};
const QCommandLineOption targetOption{
    QStringLiteral("target"),
    QStringLiteral("In an unattended run drive to this point instead of the built-in ones; may be "
                   "given several times."),
    QStringLiteral("X,Y")};
const QCommandLineOption flightPathOption{
    QStringLiteral("flight-path"),
    QStringLiteral("In an unattended run load this file into the panel and run it as a flight "
                   "path, instead of the built-in moves and path."),
    QStringLiteral("FILE")};
const QCommandLineOption fromOption{
    QStringLiteral("from"),
    QStringLiteral("Begin the flight path at its point of that number, counted from 1."),
    QStringLiteral("K")};
const QCommandLineOption randomOption{
    QStringLiteral("random"),
    QStringLiteral("In an unattended run drive this many random moves, which --seed chooses, some "
                   "of them turned or stopped on the way; 1 to 1000000."),
    QStringLiteral("N")};
const QCommandLineOption areaOption{
    QStringLiteral("area"),
    QStringLiteral("Two corners that the random moves stay between; -2000,-2000,2000,2000 when not "
                   "given."),
    QStringLiteral("X0,Y0,X1,Y1")};
const QCommandLineOption repeatOption{
    QStringLiteral("repeat"),
    QStringLiteral(
        "Do all that an unattended run is asked for that often, 1 to 1000000. Many moves "
        "are added up: a line for each hundred, and a table."),
    QStringLiteral("N")};
const QCommandLineOption pictureOption{
    QStringLiteral("picture"),
    QStringLiteral("Save a picture of the panel at the end of an unattended run."),
    QStringLiteral("FILE")};
const QCommandLineOption recordOption{
    QStringLiteral("record"),
    QStringLiteral("Save the positions sampled in an unattended run as CSV."),
    QStringLiteral("FILE")};
const QCommandLineOption reportOption{
    QStringLiteral("report"),
    QStringLiteral("Save what came of each move of an unattended run as JSON; docs/reports.md "
                   "explains it."),
    QStringLiteral("FILE")};
const QCommandLineOption baselineOption{
    QStringLiteral("baseline"),
    QStringLiteral("Compare the moves with those of an earlier report, a line for each difference, "
                   "and exit with 1 when there is one."),
    QStringLiteral("FILE")};
const QCommandLineOption toleranceOption{
    QStringLiteral("tolerance"),
    QStringLiteral("How far numbers may be from those of the --baseline; 0 when not given."),
    QStringLiteral("PERCENT")};
const QCommandLineOption linkCostOption{
    QStringLiteral("link-cost"),
    QStringLiteral("How long each request to the simulated module blocks, 0 to 1000000; 500 when "
                   "not given."),
    QStringLiteral("MICROSECONDS")};
const QCommandLineOption chipOption{
    QStringLiteral("chip"),
    QStringLiteral("Description of the chip to simulate; dual-axis.xml when not given."),
    QStringLiteral("FILE")};
const QCommandLineOption pluginsOption{QStringLiteral("plugins"),
                                       QStringLiteral("Folder to load the tools plug-ins from."),
                                       QStringLiteral("DIR")};
const QCommandLineOption faultOption{
    QStringLiteral("fault"),
    QStringLiteral("Let the link to the module have a fault from the start, see below; may be "
                   "given several times."),
    QStringLiteral("NAME[:PARAMETER]")};
const QCommandLineOption seedOption{
    QStringLiteral("seed"),
    QStringLiteral("Where the chance in faults and in random moves begins, 0 to 4294967295; 1 when "
                   "not given. On "
                   "simulated time it repeats a run exactly; in real time the same requests are "
                   "lost first, but later ones fall on others."),
    QStringLiteral("N")};
const QCommandLineOption tapeOption{
    QStringLiteral("tape"),
    QStringLiteral("Write down each request to the module, with its reply and time, for --replay; "
                   "at most 64 MiB."),
    QStringLiteral("FILE")};
const QCommandLineOption replayOption{
    QStringLiteral("replay"),
    QStringLiteral("Answer the requests from a tape instead of the simulated module. With "
                   "--unattended, the options of the run that was recorded repeat it; it fails "
                   "when the panel does not ask what the tape has, to the tape's end."),
    QStringLiteral("FILE")};

std::optional<int> number(const QString &text, int minimum, int maximum)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (!isNumber || value < minimum || value > maximum)
        return std::nullopt;
    return value;
}

/// "X,Y", as often as `count` says, behind one another; nothing when the text is anything else.
QVector<QPoint> points(const QString &text, int count)
{
    const QStringList parts = text.split(QLatin1Char(','));
    QVector<QPoint> all;
    for (int i = 0; i + 1 < parts.size(); i += axisCount) {
        const auto x = number(parts.at(i), minimumPosition, maximumPosition);
        const auto y = number(parts.at(i + 1), minimumPosition, maximumPosition);
        if (x && y)
            all.append({*x, *y});
    }
    return parts.size() == count * axisCount && all.size() == count ? all : QVector<QPoint>();
}

/// Takes the options' values over, one kind after another, until the first problem.
class OptionsReader
{
public:
    explicit OptionsReader(const QCommandLineParser &commandLine)
        : parser(commandLine)
    {
    }

    CommandLine read()
    {
        readFiles();
        readClock();
        readTargets();
        readCampaign();
        readTolerance();
        readLinkCost();
        readFaults();
        checkCombination();
        if (!problem.isEmpty())
            return {CommandLine::Refuse, {}, problem};
        return {CommandLine::Run, options, {}};
    }

private:
    void fail(const QString &reason)
    {
        if (problem.isEmpty())
            problem = reason;
    }

    QString fileName(const QCommandLineOption &option, const QString &whenNotGiven)
    {
        if (!parser.isSet(option))
            return whenNotGiven;
        const QString name = parser.value(option);
        if (name.isEmpty())
            fail(QStringLiteral("--%1 needs a name").arg(option.names().constFirst()));
        return name;
    }

    void readFiles()
    {
        options.pictureFile = fileName(pictureOption, {});
        options.flightPathFile = fileName(flightPathOption, {});
        options.recordFile = fileName(recordOption, {});
        options.reportFile = fileName(reportOption, {});
        options.baselineFile = fileName(baselineOption, {});
        options.tapeFile = fileName(tapeOption, {});
        options.replayFile = fileName(replayOption, {});
        options.pluginsFolder = fileName(pluginsOption, PluginLoader::defaultFolder());
        const QString chipsFolder = QCoreApplication::applicationDirPath() + QLatin1Char('/') +
                                    QStringLiteral(WORKBENCH_CHIPS_FROM_BIN);
        options.chipFile =
            fileName(chipOption, QDir::cleanPath(chipsFolder + QStringLiteral("/dual-axis.xml")));
        const QByteArray format = QFileInfo(options.pictureFile).suffix().toLower().toLatin1();
        if (!options.pictureFile.isEmpty() &&
            !QImageWriter::supportedImageFormats().contains(format))
            fail(QStringLiteral("--picture: no picture format goes with the name \"%1\"; "
                                "try one that ends in .png")
                     .arg(options.pictureFile));
    }

    void readClock()
    {
        if (!parser.isSet(clockOption))
            return;
        const QString name = parser.value(clockOption);
        options.isTimeSimulated = name == QLatin1String("simulated");
        if (!options.isTimeSimulated && name != QLatin1String("real"))
            fail(QStringLiteral("--clock: \"%1\" is neither real nor simulated").arg(name));
    }

    void readTargets()
    {
        const QStringList texts = parser.values(targetOption);
        for (const QString &text : texts) {
            const QVector<QPoint> target = points(text, 1);
            options.targets += target;
            if (target.isEmpty())
                fail(QStringLiteral("--target: \"%1\" is not X,Y with whole numbers from %2 to %3")
                         .arg(text)
                         .arg(minimumPosition)
                         .arg(maximumPosition));
        }
    }

    /// The option's whole number from 1 on, or `whenNotGiven`.
    int count(const QCommandLineOption &option, int whenNotGiven)
    {
        if (!parser.isSet(option))
            return whenNotGiven;
        const QString text = parser.value(option);
        const auto value = number(text, 1, maximumCount);
        if (!value)
            fail(QStringLiteral("--%1: \"%2\" is not a whole number from 1 to %3")
                     .arg(option.names().constFirst(), text)
                     .arg(maximumCount));
        return value.value_or(whenNotGiven);
    }

    void readCampaign()
    {
        options.firstPoint = count(fromOption, 1);
        options.randomMoves = count(randomOption, 0);
        options.repetitions = count(repeatOption, 1);
        if (!parser.isSet(areaOption))
            return;
        const QVector<QPoint> corners = points(parser.value(areaOption), 2);
        if (corners.isEmpty()) {
            fail(
                QStringLiteral("--area: \"%1\" is not X0,Y0,X1,Y1 with whole numbers from %2 to %3")
                    .arg(parser.value(areaOption))
                    .arg(minimumPosition)
                    .arg(maximumPosition));
            return;
        }
        const QPoint one = corners.at(0);
        const QPoint other = corners.at(1);
        options.area.low = {qMin(one.x(), other.x()), qMin(one.y(), other.y())};
        options.area.high = {qMax(one.x(), other.x()), qMax(one.y(), other.y())};
    }

    void readTolerance()
    {
        if (!parser.isSet(toleranceOption))
            return;
        constexpr double most = 100;
        bool isNumber = false;
        const QString text = parser.value(toleranceOption);
        options.tolerancePercent = text.toDouble(&isNumber);
        if (!isNumber || !(options.tolerancePercent >= 0 && options.tolerancePercent <= most))
            fail(QStringLiteral("--tolerance: \"%1\" is not a number from 0 to 100").arg(text));
        if (!parser.isSet(baselineOption))
            fail(QStringLiteral("--tolerance goes with --baseline only"));
    }

    void readLinkCost()
    {
        options.linkCostNs = SimulatedLink::defaultRequestCostNs;
        if (!parser.isSet(linkCostOption))
            return;
        const QString text = parser.value(linkCostOption);
        // Requests are what moves simulated time on.
        const int leastUs = options.isTimeSimulated ? 1 : 0;
        if (const auto cost = number(text, 0, maximumLinkCostUs))
            options.linkCostNs = static_cast<qint64>(qMax(*cost, leastUs)) * nsPerMicrosecond;
        else
            fail(QStringLiteral("--link-cost: \"%1\" is not a whole number from 0 to %2")
                     .arg(text)
                     .arg(maximumLinkCostUs));
    }

    void readFaults()
    {
        const QStringList texts = parser.values(faultOption);
        for (const QString &text : texts) {
            const ParsedFault parsed = parseFault(text);
            if (parsed.fault)
                options.faults.append(*parsed.fault);
            else
                fail(QStringLiteral("--fault: %1").arg(parsed.error));
        }
        if (!parser.isSet(seedOption))
            return;
        bool isNumber = false;
        options.seed = parser.value(seedOption).toUInt(&isNumber);
        if (!isNumber)
            fail(QStringLiteral("--seed: \"%1\" is not a whole number from 0 to 4294967295")
                     .arg(parser.value(seedOption)));
    }

    void checkCombination()
    {
        options.isUnattended = parser.isSet(unattendedOption);
        for (const QCommandLineOption &option :
             {pictureOption, recordOption, targetOption, flightPathOption, clockOption, fromOption,
              randomOption, areaOption, repeatOption, reportOption, baselineOption}) {
            if (parser.isSet(option) && !options.isUnattended)
                fail(QStringLiteral("--%1 goes with --unattended only")
                         .arg(option.names().constFirst()));
        }
        // On a tape each request takes the time that it took.
        if (parser.isSet(replayOption) && parser.isSet(linkCostOption))
            fail(QStringLiteral("--replay and --link-cost do not go together"));
        if (parser.isSet(targetOption) && parser.isSet(flightPathOption))
            fail(QStringLiteral("--flight-path and --target do not go together"));
        if (parser.isSet(randomOption) &&
            (parser.isSet(targetOption) || parser.isSet(flightPathOption)))
            fail(QStringLiteral("--random goes with neither --target nor --flight-path"));
        if (parser.isSet(areaOption) && !parser.isSet(randomOption))
            fail(QStringLiteral("--area goes with --random only"));
        if (parser.isSet(fromOption) && !parser.isSet(flightPathOption))
            fail(QStringLiteral("--from goes with --flight-path only"));
        const QStringList extra = parser.positionalArguments();
        if (!extra.isEmpty())
            fail(QStringLiteral("\"%1\" is not an option").arg(extra.constFirst()));
    }

    const QCommandLineParser &parser;
    Options options;
    QString problem;
};

} // namespace

CommandLine parseCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A desk for trying motion-control tools on a simulated dual-axis module."));
    const auto help = parser.addHelpOption();
    const auto version = parser.addVersionOption();
    parser.addOptions({unattendedOption, clockOption,    targetOption, flightPathOption,
                       fromOption,       randomOption,   areaOption,   repeatOption,
                       pictureOption,    recordOption,   reportOption, baselineOption,
                       toleranceOption,  linkCostOption, chipOption,   pluginsOption,
                       faultOption,      seedOption,     tapeOption,   replayOption});

    if (!parser.parse(arguments))
        return {CommandLine::Refuse, {}, parser.errorText().simplified()};
    if (parser.isSet(help))
        return {CommandLine::PrintText,
                {},
                parser.helpText() + QStringLiteral("\nFaults:\n") + faultHelp()};
    if (parser.isSet(version))
        return {CommandLine::PrintText, {}, QStringLiteral("workbench " WORKBENCH_VERSION "\n")};
    return OptionsReader(parser).read();
}

} // namespace workbench
