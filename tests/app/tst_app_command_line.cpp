#include "CommandLine.h"

#include <QTest>

using workbench::CommandLine;
using workbench::Options;
using workbench::parseCommandLine;

namespace {

CommandLine parsed(const QString &line)
{
    QStringList arguments = line.split(QLatin1Char(' '));
    arguments.removeAll(QString());
    return parseCommandLine(QStringList{QStringLiteral("workbench")} + arguments);
}

} // namespace

class AppCommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void hasUsableDefaults();
    void takesEveryOption();
    void takesAFlightPath();
    void takesLinkCosts_data();
    void takesLinkCosts();
    void takesClocks();
    void takesCampaigns();
    void takesTargets_data();
    void takesTargets();
    void refusesWithOneLine_data();
    void refusesWithOneLine();
    void refusesAnEmptyName();
    void printsHelpAndVersion();
};

void AppCommandLineTest::hasUsableDefaults()
{
    const CommandLine result = parsed(QString());
    QCOMPARE(result.outcome, CommandLine::Run);
    QVERIFY(!result.options.isUnattended);
    QVERIFY(result.options.targets.isEmpty());
    QVERIFY(result.options.flightPathFile.isEmpty());
    QVERIFY(result.options.pictureFile.isEmpty());
    QVERIFY(result.options.recordFile.isEmpty());
    QCOMPARE(result.options.linkCostNs, 500000);
    QVERIFY(result.options.chipFile.endsWith(QLatin1String("/workbench/chips/dual-axis.xml")));
    QVERIFY(result.options.pluginsFolder.endsWith(QLatin1String("/workbench/plugins")));
}

void AppCommandLineTest::takesEveryOption()
{
    const CommandLine result =
        parsed(QStringLiteral("--unattended --picture p.png --record r.csv --chip c.xml "
                              "--plugins some/where --target 1,2 --link-cost 7"));
    QCOMPARE(result.outcome, CommandLine::Run);
    const Options &options = result.options;
    QVERIFY(options.isUnattended);
    QCOMPARE(options.pictureFile, QStringLiteral("p.png"));
    QCOMPARE(options.recordFile, QStringLiteral("r.csv"));
    QCOMPARE(options.chipFile, QStringLiteral("c.xml"));
    QCOMPARE(options.pluginsFolder, QStringLiteral("some/where"));
    QCOMPARE(options.targets, QVector<QPoint>{QPoint(1, 2)});
    QCOMPARE(options.linkCostNs, 7000);
}

void AppCommandLineTest::takesAFlightPath()
{
    const CommandLine result = parsed(QStringLiteral("--unattended --flight-path p/a.csv"));
    QCOMPARE(result.outcome, CommandLine::Run);
    QCOMPARE(result.options.flightPathFile, QStringLiteral("p/a.csv"));
}

void AppCommandLineTest::takesLinkCosts_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<qint64>("costNs");
    QTest::newRow("none") << QStringLiteral("--link-cost 0") << qint64(0);
    QTest::newRow("largest") << QStringLiteral("--link-cost=1000000") << qint64(1000000000);
    QTest::newRow("the last one counts")
        << QStringLiteral("--link-cost 5 --link-cost 6") << qint64(6000);
}

void AppCommandLineTest::takesLinkCosts()
{
    QFETCH(QString, line);
    QFETCH(qint64, costNs);
    QCOMPARE(parsed(line).outcome, CommandLine::Run);
    QCOMPARE(parsed(line).options.linkCostNs, costNs);
}

void AppCommandLineTest::takesClocks()
{
    QVERIFY(!parsed(QStringLiteral("--unattended")).options.isTimeSimulated);
    QVERIFY(!parsed(QStringLiteral("--unattended --clock real")).options.isTimeSimulated);
    const CommandLine simulated = parsed(QStringLiteral("--unattended --clock simulated"));
    QVERIFY(simulated.options.isTimeSimulated);
    QCOMPARE(simulated.options.linkCostNs, 500000);
    // Requests are what moves that time on.
    const CommandLine fast = parsed(QStringLiteral("--unattended --clock simulated --link-cost 0"));
    QCOMPARE(fast.options.linkCostNs, 1000);
}

void AppCommandLineTest::takesCampaigns()
{
    const Options plain = parsed(QStringLiteral("--unattended")).options;
    QCOMPARE(plain.randomMoves, 0);
    QCOMPARE(plain.repetitions, 1);
    QCOMPARE(plain.firstPoint, 1);
    const Options random =
        parsed(QStringLiteral("--unattended --random 9 --area 30,-4,-5,60 --repeat 3")).options;
    QCOMPARE(random.randomMoves, 9);
    QCOMPARE(random.repetitions, 3);
    QCOMPARE(random.area.low, QPoint(-5, -4));
    QCOMPARE(random.area.high, QPoint(30, 60));
    QCOMPARE(parsed(QStringLiteral("--unattended --flight-path a.csv --from 7")).options.firstPoint,
             7);
}

void AppCommandLineTest::takesTargets_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QVector<QPoint>>("targets");
    using Points = QVector<QPoint>;
    QTest::newRow("negative") << QStringLiteral("--target -5,-6") << Points{{-5, -6}};
    QTest::newRow("ends of the axes")
        << QStringLiteral("--target -8388608,8388607") << Points{{-8388608, 8388607}};
    QTest::newRow("several in their order")
        << QStringLiteral("--target 3,4 --target 1,2") << Points{{3, 4}, {1, 2}};
}

void AppCommandLineTest::takesTargets()
{
    QFETCH(QString, line);
    QFETCH(QVector<QPoint>, targets);
    const CommandLine result = parsed(QStringLiteral("--unattended ") + line);
    QCOMPARE(result.outcome, CommandLine::Run);
    QCOMPARE(result.options.targets, targets);
}

void AppCommandLineTest::refusesWithOneLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("mentions");
    const auto row = [](const char *name, const char *line, const char *mentions) {
        QTest::newRow(name) << QString::fromLatin1(line) << QString::fromLatin1(mentions);
    };
    row("unknown option", "--nonsense", "nonsense");
    row("stray word", "stray", "stray");
    row("option without its value", "--unattended --record", "record");
    row("value for a switch", "--unattended=yes", "unattended");
    row("target of one number", "--unattended --target 1", "--target");
    row("target of three numbers", "--unattended --target 1,2,3", "--target");
    row("target with a fraction", "--unattended --target 1.5,2", "--target");
    row("target of words", "--unattended --target a,b", "--target");
    row("target of nothing", "--unattended --target ,", "--target");
    row("target above 24 bits", "--unattended --target 0,8388608", "8388607");
    row("target below 24 bits", "--unattended --target -8388609,0", "-8388608");
    row("target beyond an int", "--unattended --target 99999999999,0", "--target");
    row("wrong target after a right one", "--unattended --target 1,2 --target x", "\"x\"");
    row("negative link cost", "--link-cost -1", "--link-cost");
    row("link cost above a second", "--link-cost 1000001", "1000000");
    row("link cost with a unit", "--link-cost 5us", "5us");
    row("picture of no known format", "--unattended --picture a.unknown", "a.unknown");
    row("picture without a suffix", "--unattended --picture picture", "--picture");
    row("picture without a run", "--picture a.png", "--unattended");
    row("record without a run", "--record a.csv", "--unattended");
    row("flight path without a run", "--flight-path a.csv", "--unattended");
    row("flight path and a target", "--unattended --flight-path a.csv --target 1,2", "--target");
    row("clock of no kind", "--unattended --clock wall", "\"wall\" is neither real nor simulated");
    row("clock without a run", "--clock simulated", "--clock goes with --unattended only");
    row("random moves of no number", "--unattended --random 0", "--random: \"0\" is not a whole");
    row("random moves and a target", "--unattended --random 5 --target 1,2", "--random goes");
    row("random moves and a path", "--unattended --random 5 --flight-path a.csv", "--random goes");
    row("area of one corner", "--unattended --random 5 --area 1,2", "--area: \"1,2\" is not");
    row("area of words", "--unattended --random 5 --area 1,2,3,x", "--area: \"1,2,3,x\" is not");
    row("area without random moves", "--unattended --area 1,2,3,4", "--area goes with --random");
    row("first point without a path", "--unattended --from 2", "--from goes with --flight-path");
    row("first point of no number", "--unattended --flight-path a.csv --from 0", "--from: \"0\"");
    row("repetition of no number", "--unattended --repeat many", "--repeat: \"many\" is not");
    row("repetition without a run", "--repeat 2", "--repeat goes with --unattended only");
    row("report without a run", "--report a.json", "--report goes with --unattended only");
    row("baseline without a run", "--baseline a.json", "--baseline goes with --unattended only");
    row("tolerance without a baseline", "--unattended --tolerance 1", "--tolerance goes with");
    row("tolerance of no number", "--unattended --baseline a --tolerance x",
        "\"x\" is not a number");
    row("negative tolerance", "--unattended --baseline a --tolerance=-1", "\"-1\" is not a number");
    row("target without a run", "--target 1,2", "--unattended");
}

void AppCommandLineTest::refusesWithOneLine()
{
    QFETCH(QString, line);
    QFETCH(QString, mentions);
    const CommandLine result = parsed(line);
    QCOMPARE(result.outcome, CommandLine::Refuse);
    QVERIFY2(result.text.contains(mentions), qPrintable(result.text));
    QVERIFY(!result.text.contains(QLatin1Char('\n')));
}

void AppCommandLineTest::refusesAnEmptyName()
{
    const CommandLine result =
        parseCommandLine({QStringLiteral("workbench"), QStringLiteral("--chip"), QString()});
    QCOMPARE(result.outcome, CommandLine::Refuse);
    QVERIFY(result.text.contains(QLatin1String("--chip")));
}

void AppCommandLineTest::printsHelpAndVersion()
{
    const CommandLine help = parsed(QStringLiteral("--help"));
    QCOMPARE(help.outcome, CommandLine::PrintText);
    for (const char *option : {"--unattended", "--picture", "--record", "--target", "--flight-path",
                               "--link-cost", "--chip", "--plugins", "--clock", "--random",
                               "--area", "--repeat", "--from", "--version"})
        QVERIFY2(help.text.contains(QLatin1String(option)), option);
    const CommandLine version = parsed(QStringLiteral("--version"));
    QCOMPARE(version.outcome, CommandLine::PrintText);
    QCOMPARE(version.text, QStringLiteral("workbench 4.6.0\n"));
}

QTEST_GUILESS_MAIN(AppCommandLineTest)
#include "tst_app_command_line.moc"
