#include "FlightPoints.h"
#include "FlightProgress.h"
#include "ProgramRig.h"

#include <QImage>

using namespace workbench;

namespace {

constexpr qint64 second = 1000000000;

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

ProgramRig::Ending runFile(const ProgramRig &rig, const char *name, const QStringList &more = {})
{
    return rig.run(QStringList{text("--unattended"), text("--clock"), text("simulated"),
                               text("--flight-path"), text(name)} +
                   more);
}

/// The points that the lines of a run name as reached, in order; the test fails on a line about a
/// point that has another form.
QStringList reached(const QStringList &output)
{
    const QRegularExpression form(
        text("^point (\\d+) of \\d+: (-?\\d+,-?\\d+): reached after \\d+\\.\\d\\d s$"));
    QStringList points;
    for (const QString &line : output) {
        if (!line.startsWith(text("point ")))
            continue;
        const auto match = form.match(line);
        if (!match.hasMatch() || match.captured(1).toInt() != points.size() + 1)
            QTest::qFail(qPrintable(line), __FILE__, __LINE__);
        points << match.captured(2);
    }
    return points;
}

QVector<QPoint> recordedPositions(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QVector<QPoint> positions;
    const QStringList rows = ProgramRig::lines(file.readAll()).mid(1);
    for (const QString &row : rows) {
        const QStringList cells = row.split(QLatin1Char(','));
        positions.append({cells.value(1).toInt(), cells.value(2).toInt()});
    }
    return positions;
}

} // namespace

class AppFlightPathTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(rig.isValid()); }

    void fileIsRunPointByPoint();
    void builtInPathIsVisitedInItsOrder();
    void samplePathsAreBesideTheChips();
    void fractionsAreAnnouncedAndDropped();
    void unusableFilesExitWithTwo_data();
    void unusableFilesExitWithTwo();
    void pointThatIsNotReachedIsNamed();
    void interruptionNamesThePointOnTheWay();

    void pointsAreReachedInOrderAtAStandstill();
    void pointPassedWithoutAStopIsNotReached();
    void pointLeftOutIsNotReached();
    void repeatedPointNeedsNoSampleOfItsOwn();
    void pathMayBeginWhereTheAxesStand();
    void everyLegIsMeasuredAgainstItsOwnLine();
    void pathsAreCheckedAgainstTheRange_data();
    void pathsAreCheckedAgainstTheRange();

private:
    ProgramRig rig;
};

void AppFlightPathTest::fileIsRunPointByPoint()
{
    rig.write(text("path.csv"), "Hook\n# there and back\n120;0;120;-80\n120;-80\n0;0;9\n");
    const auto ending = runFile(rig, "path.csv",
                                {text("--picture"), text("p.png"), text("--record"), text("r.csv"),
                                 text("--link-cost"), text("200")});
    QVERIFY2(ending.exitCode == 0, qPrintable(ending.complaints.join(QLatin1Char('\n'))));
    QCOMPARE(ending.complaints, QStringList());
    QCOMPARE(reached(ending.output),
             (QStringList{text("120,0"), text("120,-80"), text("120,-80"), text("0,0")}));
    QCOMPARE(ending.output.size(), 6);
    QVERIFY2(ending.output.at(4).contains(QRegularExpression(
                 text("^flight path: 4 of 4 points reached; \\d+\\.\\d\\d s, \\d+ samples, \\d+/s; "
                      "at most [01]\\.\\d units off the straight segments$"))),
             qPrintable(ending.output.at(4)));
    QVERIFY(ending.output.at(5).contains(text("picture in p.png")));
    QVERIFY(QImage(rig.filePath(text("p.png"))).width() > 1000);
    const QVector<QPoint> positions = recordedPositions(rig.filePath(text("r.csv")));
    QVERIFY(positions.size() > 50);
    QCOMPARE(positions.constLast(), QPoint(0, 0));
}

void AppFlightPathTest::builtInPathIsVisitedInItsOrder()
{
    const auto ending = rig.run({text("--unattended"), text("--clock"), text("simulated"),
                                 text("--record"), text("built-in.csv")});
    QVERIFY2(ending.exitCode == 0, qPrintable(ending.complaints.join(QLatin1Char('\n'))));
    const QStringList corners{text("0,0"),    text("0,1025"),    text("1025,1025"), text("0,0"),
                              text("1025,0"), text("1025,1025"), text("512,1800"),  text("0,1025"),
                              text("1025,0"), text("1125,-200"), text("-100,-200"), text("0,0")};
    QCOMPARE(reached(ending.output), corners);

    // The record knows nothing of points: it holds what the panel was told by the module.
    QVector<QPoint> positions = recordedPositions(rig.filePath(text("built-in.csv")));
    int next = corners.size() - 1;
    for (int i = positions.size() - 2; i >= 0 && next >= 0; --i) {
        const QPoint at = positions.at(i);
        if (at == positions.at(i + 1) && text("%1,%2").arg(at.x()).arg(at.y()) == corners.at(next))
            --next;
    }
    QCOMPARE(next, -1);
}

void AppFlightPathTest::samplePathsAreBesideTheChips()
{
    const QDir folder(text(FLIGHT_PATHS_FOLDER));
    const QStringList names = folder.entryList({text("*.csv")}, QDir::Files, QDir::Name);
    QCOMPARE(names, (QStringList{text("circle.csv"), text("lissajous.csv"), text("spirograph.csv"),
                                 text("star.csv"), text("xy-outline.csv")}));
    const auto ending = runFile(rig, qPrintable(folder.filePath(text("star.csv"))));
    QVERIFY2(ending.exitCode == 0, qPrintable(ending.complaints.join(QLatin1Char('\n'))));
    QCOMPARE(reached(ending.output).size(), 7);
}

void AppFlightPathTest::fractionsAreAnnouncedAndDropped()
{
    rig.write(text("fractions.csv"), "Fractions\n10.7;-3.9\n5;5\n0.99;6\n");
    const auto ending = runFile(rig, "fractions.csv", {text("--clock"), text("real")});
    QVERIFY2(ending.exitCode == 0, qPrintable(ending.complaints.join(QLatin1Char('\n'))));
    QCOMPARE(ending.output.constFirst(),
             text("fractions.csv: 2 of 3 points with fractions, which the panel drops: 10.7,-3.9 "
                  "is driven to as 10,-3"));
    QCOMPARE(reached(ending.output), (QStringList{text("10,-3"), text("5,5"), text("0,6")}));
}

void AppFlightPathTest::unusableFilesExitWithTwo_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << text("empty.csv") << QByteArray("") << text("holds no point");
    QTest::newRow("title alone") << text("title.csv") << QByteArray("1;2\n")
                                 << text("holds no point");
    QTest::newRow("comments and short lines")
        << text("short.csv") << QByteArray("T\n#1;2\n7\n") << text("holds no point");
    QTest::newRow("out of the chip's range")
        << text("far.csv") << QByteArray("T\n1;2\n8388608;0\n")
        << text("point 2 at 8388608,0 is out of the chip's range, -8388608 to 8388607");
    QTest::newRow("missing") << text("missing.csv") << QByteArray() << text("No such file");
    QTest::newRow("folder") << text(".") << QByteArray() << text("is not an ordinary file");
    QTest::newRow("name that the dialog does not show")
        << text("path.data") << QByteArray("T\n1;2\n") << text("does not take it");
}

void AppFlightPathTest::unusableFilesExitWithTwo()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    if (!bytes.isNull())
        rig.write(name, bytes);
    const auto ending = runFile(rig, qPrintable(name), {text("--record"), text("none.csv")});
    QCOMPARE(ending.exitCode, 2);
    QCOMPARE(ending.output, QStringList());
    QCOMPARE(ending.complaints.size(), 1);
    const QString complaint = ending.complaints.constFirst();
    QVERIFY2(complaint.startsWith(text("workbench: %1: ").arg(name)), qPrintable(complaint));
    QVERIFY2(complaint.contains(reason), qPrintable(complaint));
    QVERIFY(!rig.files().contains(text("none.csv")));
}

void AppFlightPathTest::pointThatIsNotReachedIsNamed()
{
    // Axis 1 has no velocity, so only points on the level of the start can be reached.
    QFile chip(text(CHIP_FILE));
    QVERIFY(chip.open(QIODevice::ReadOnly));
    QByteArray description = chip.readAll();
    const int at = description.indexOf("reset=\"", description.indexOf("name=\"M1_VMAX\"")) + 7;
    description.replace(at, description.indexOf('"', at) - at, "0");
    rig.write(text("slow.xml"), description);
    rig.write(text("level.csv"), "Level\n50;0\n80;40\n0;0\n");
    const auto ending = runFile(
        rig, "level.csv", {text("--chip"), text("slow.xml"), text("--record"), text("n.csv")});
    QCOMPARE(ending.exitCode, 1);
    QCOMPARE(reached(ending.output), QStringList{text("50,0")});
    QCOMPARE(ending.complaints.size(), 1);
    QVERIFY2(ending.complaints.constFirst().startsWith(
                 text("workbench: flight path: point 2 of 3: 80,40: not reached, ")),
             qPrintable(ending.complaints.constFirst()));
    QVERIFY(!rig.files().contains(text("n.csv")));
}

void AppFlightPathTest::interruptionNamesThePointOnTheWay()
{
    rig.write(text("long.csv"), "Long\n10;0\n100000;0\n");
    const auto process = rig.start({text("--unattended"), text("--flight-path"), text("long.csv")});
    QVERIFY(process->waitForReadyRead(ProgramRig::runTimeoutMs));
    QCOMPARE(reached(ProgramRig::lines(process->readAllStandardOutput())),
             QStringList{text("10,0")});
    process->terminate();
    QVERIFY(process->waitForFinished(ProgramRig::runTimeoutMs));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 1);
    QVERIFY(process->readAllStandardError().contains(
        "workbench: flight path: point 2 of 2: 100000,0: not reached, interrupted; "));
}

void AppFlightPathTest::pointsAreReachedInOrderAtAStandstill()
{
    FlightProgress progress({{10, 0}, {10, 10}}, {0, 0}, second);
    progress.take({second, {0, 0}}, 0, true);
    progress.take({2 * second, {5, 0}}, 0, false);
    QCOMPARE(progress.reachedCount(), 0);
    progress.take({3 * second, {10, 0}}, 0, true);
    QCOMPARE(progress.reachedCount(), 1);
    progress.take({4 * second, {10, 0}}, 0, true);
    progress.take({5 * second, {10, 10}}, 1, true);
    QCOMPARE(progress.reachedCount(), 2);
    QCOMPARE(progress.secondsTo(0), 2.0);
    QCOMPARE(progress.secondsTo(1), 4.0);
    QCOMPARE(progress.sampleCount(), qint64(5));
    QCOMPARE(progress.samplesPerSecond(), 1.0);
}

void AppFlightPathTest::pointPassedWithoutAStopIsNotReached()
{
    FlightProgress progress({{10, 0}, {20, 0}}, {0, 0}, 0);
    progress.take({1, {10, 0}}, 0, false);
    progress.take({2, {9, 0}}, 0, true);
    QCOMPARE(progress.reachedCount(), 0);
    // Standing there counts only while the panel drives to it.
    progress.take({3, {10, 0}}, 1, true);
    progress.take({4, {20, 0}}, 1, true);
    QCOMPARE(progress.reachedCount(), 0);
}

void AppFlightPathTest::pointLeftOutIsNotReached()
{
    FlightProgress progress({{10, 0}, {20, 0}, {30, 0}}, {0, 0}, 0);
    progress.take({1, {10, 0}}, 0, true);
    progress.enter(2);
    progress.take({2, {30, 0}}, 2, true);
    progress.enter(3);
    QCOMPARE(progress.reachedCount(), 1);
}

void AppFlightPathTest::repeatedPointNeedsNoSampleOfItsOwn()
{
    FlightProgress progress({{10, 0}, {10, 0}, {0, 0}, {0, 0}}, {0, 0}, 0);
    progress.enter(1);
    QCOMPARE(progress.reachedCount(), 0);
    progress.take({second, {10, 0}}, 0, true);
    progress.enter(1);
    QCOMPARE(progress.reachedCount(), 1);
    progress.enter(2);
    QCOMPARE(progress.reachedCount(), 2);
    QCOMPARE(progress.secondsTo(1), 1.0);
    progress.take({2 * second, {0, 0}}, 2, true);
    progress.enter(4);
    QCOMPARE(progress.reachedCount(), 4);
}

void AppFlightPathTest::pathMayBeginWhereTheAxesStand()
{
    FlightProgress progress({{7, 7}, {7, 7}, {10, 0}}, {7, 7}, second);
    progress.enter(0);
    QCOMPARE(progress.reachedCount(), 0);
    progress.enter(2);
    QCOMPARE(progress.reachedCount(), 2);
    QCOMPARE(progress.secondsTo(1), 0.0);
    progress.enter(3);
    QCOMPARE(progress.reachedCount(), 2);
}

void AppFlightPathTest::everyLegIsMeasuredAgainstItsOwnLine()
{
    FlightProgress progress({{10, 0}, {10, 10}}, {0, 0}, 0);
    progress.take({1, {5, 0}}, 0, false);
    QCOMPARE(progress.largestDeviation(), 0.0);
    progress.take({2, {10, 5}}, 1, false);
    QCOMPARE(progress.largestDeviation(), 0.0);
    progress.take({3, {8, 0}}, 1, false);
    QCOMPARE(progress.largestDeviation(), 2.0);
    // Behind the end of its line too.
    progress.take({4, {10, 13}}, 1, false);
    QCOMPARE(progress.largestDeviation(), 3.0);
}

void AppFlightPathTest::pathsAreCheckedAgainstTheRange_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("isWithin");
    QTest::newRow("ends") << QPointF(-8388608, 8388607) << true;
    QTest::newRow("fraction that is dropped") << QPointF(-8388608.9, 8388607.9) << true;
    QTest::newRow("above") << QPointF(0, 8388608) << false;
    QTest::newRow("below") << QPointF(-8388609, 0) << false;
    QTest::newRow("huge") << QPointF(1e308, 0) << false;
}

void AppFlightPathTest::pathsAreCheckedAgainstTheRange()
{
    QFETCH(QPointF, point);
    QFETCH(bool, isWithin);
    const QVector<QPointF> path{{1, 2}, point};
    QCOMPARE(outOfRange(path).isEmpty(), isWithin);
    QCOMPARE(outOfRange(path).startsWith(text("point 2 at ")), !isWithin);
    if (isWithin)
        QCOMPARE(drivenPoints(path).at(1), QPoint(-8388608, 8388607));
}

QTEST_GUILESS_MAIN(AppFlightPathTest)
#include "tst_app_flight_path.moc"
