#include "ProgramRig.h"

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

QStringList words(const QString &line)
{
    QStringList all = line.split(QLatin1Char(' '));
    all.removeAll(QString());
    return all;
}

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct Figures
{
    double seconds = -1;
    double deviation = -1;
};

/// What the line about a move or a path, the one before last, says; the test fails on another one.
Figures figures(const QStringList &output)
{
    const QRegularExpression form(text("; (\\d+\\.\\d\\d) s, .*; at most (\\d+\\.\\d) units off"));
    const auto match = form.match(output.value(output.size() - 2));
    if (!match.hasMatch()) {
        QTest::qFail(qPrintable(output.join(QLatin1Char('\n'))), __FILE__, __LINE__);
        return {};
    }
    return {match.captured(1).toDouble(), match.captured(2).toDouble()};
}

} // namespace

class AppSimulatedTimeTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void sameOptionsGiveTheSameBytes_data();
    void sameOptionsGiveTheSameBytes();
    void otherSeedGivesAnotherRun();
    void tapeGivesTheSameRecordAndPictureAgain();
    void linkWithoutACostTakesAMicrosecond();
    void manyMovesAreAddedUp();
    void pathMayBeginInItsMiddle();
    void pathHasNoPointBehindItsLast();
    void signalEndsARun();
    void realTimeTakesAsLong_data();
    void realTimeTakesAsLong();

private:
    /// The program on simulated time.
    ProgramRig::Ending run(const QString &options) const
    {
        return rig->run(words(text("--unattended --clock simulated ") + options));
    }

    std::unique_ptr<ProgramRig> rig;
};

void AppSimulatedTimeTest::init()
{
    rig = std::make_unique<ProgramRig>();
    QVERIFY(rig->isValid());
    rig->write(text("path.csv"), "Path\n120;0;120;-80\n120;-80\n0;0\n");
}

void AppSimulatedTimeTest::sameOptionsGiveTheSameBytes_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("built-in run") << "" << 0;
    QTest::newRow("flight path") << "--flight-path path.csv" << 0;
    QTest::newRow("random moves") << "--random 30 --seed 5 --area -900,-900,900,900" << 0;
    QTest::newRow("lost replies") << "--target 300,200 --fault lose:0.05" << 0;
    QTest::newRow("stale replies") << "--target 300,200 --fault stale" << 1;
    QTest::newRow("events inside requests") << "--target 300,200 --fault spin" << 0;
    QTest::newRow("move that is broken off") << "--target 300,200 --fault reset:100" << 1;
}

/// The second time the program is slowed down and elsewhere, in more than one respect.
void AppSimulatedTimeTest::sameOptionsGiveTheSameBytes()
{
    QFETCH(QString, options);
    QFETCH(int, exitCode);
    const QString all =
        options + text(" --record r.csv --tape t.tape --picture p.png --report r.json");
    const auto first = run(all);
    QCOMPARE(first.exitCode, exitCode);

    const auto before = std::move(rig);
    init();
    rig->starter = words(text("nice -n 19 env TZ=Asia/Tokyo LC_ALL=C QT_HASH_SEED=5"));
    const auto second = run(all);
    QCOMPARE(second.exitCode, exitCode);
    QCOMPARE(second.output, first.output);
    QCOMPARE(second.complaints, first.complaints);
    QCOMPARE(rig->files(), before->files());
    QVERIFY(rig->files().contains(text("t.tape")));
    const QStringList files = rig->files();
    for (const QString &name : files) {
        const QByteArray bytes = contents(rig->filePath(name));
        QVERIFY2(!bytes.isEmpty() && bytes == contents(before->filePath(name)), qPrintable(name));
    }
}

void AppSimulatedTimeTest::otherSeedGivesAnotherRun()
{
    const QString options = text("--target 300,200 --fault lose:0.05 --tape %1.tape --seed %1");
    QCOMPARE(run(options.arg(1)).exitCode, 0);
    QCOMPARE(run(options.arg(2)).exitCode, 0);
    QVERIFY(contents(rig->filePath(text("1.tape"))) != contents(rig->filePath(text("2.tape"))));
}

void AppSimulatedTimeTest::tapeGivesTheSameRecordAndPictureAgain()
{
    // The built-in run turns and stops in mid-move.
    QCOMPARE(run(text("--tape 1.tape --record 1.csv --picture 1.png")).exitCode, 0);
    const auto again = run(text("--replay 1.tape --tape 2.tape --record 2.csv --picture 2.png"));
    QVERIFY2(again.exitCode == 0, qPrintable(again.complaints.join(QLatin1Char('\n'))));
    for (const char *suffix : {"tape", "csv", "png"}) {
        const QByteArray bytes = contents(rig->filePath(text("1.%1").arg(text(suffix))));
        QVERIFY2(bytes.size() > 1000, suffix);
        QVERIFY2(contents(rig->filePath(text("2.%1").arg(text(suffix)))) == bytes, suffix);
    }
}

void AppSimulatedTimeTest::linkWithoutACostTakesAMicrosecond()
{
    QCOMPARE(run(text("--target 3,2 --link-cost 0 --tape a.tape")).exitCode, 0);
    const QByteArray tape = contents(rig->filePath(text("a.tape")));
    QVERIFY(tape.contains(" 0.000001000 write 0x12 m0 3 = ok\n"));
}

void AppSimulatedTimeTest::manyMovesAreAddedUp()
{
    const auto ending = run(text("--target 30,20 --target 0,0 --repeat 100"));
    QVERIFY2(ending.exitCode == 0, qPrintable(ending.complaints.join(QLatin1Char('\n'))));
    QCOMPARE(ending.output.size(), 8);
    QVERIFY(ending.output.at(0).startsWith(text("moves 1 to 100: ")));
    QVERIFY(ending.output.at(1).startsWith(text("moves 101 to 200: ")));
    QCOMPARE(ending.output.at(2).simplified(), text("200 moves least median largest"));
    const QStringList lateness = ending.output.at(4).simplified().split(QLatin1Char(' '));
    QCOMPARE(lateness.mid(0, 4).join(QLatin1Char(' ')), text("end seen late (ms)"));
    // Two updates of the panel.
    QVERIFY(lateness.at(4).toDouble() > 0 && lateness.at(6).toDouble() <= 100);
    QCOMPARE(ending.output.at(7), text("all moves as planned"));
}

void AppSimulatedTimeTest::pathMayBeginInItsMiddle()
{
    const auto ending = run(text("--flight-path path.csv --from 3"));
    QVERIFY2(ending.exitCode == 0, qPrintable(ending.complaints.join(QLatin1Char('\n'))));
    QCOMPARE(ending.output.size(), 4);
    QVERIFY(ending.output.at(0).startsWith(text("point 1 of 2: 120,-80: reached after ")));
    QVERIFY(ending.output.at(1).startsWith(text("point 2 of 2: 0,0: reached after ")));
}

void AppSimulatedTimeTest::pathHasNoPointBehindItsLast()
{
    const auto ending = run(text("--flight-path path.csv --from 5"));
    QCOMPARE(ending.exitCode, 2);
    QCOMPARE(ending.complaints, QStringList{text("workbench: path.csv: has no point 5, only 4")});
}

void AppSimulatedTimeTest::signalEndsARun()
{
    const auto process =
        rig->start(words(text("--unattended --clock simulated --target 30,20 --target 8000000,0")));
    QVERIFY(process->waitForReadyRead(ProgramRig::runTimeoutMs));
    process->terminate();
    QVERIFY(process->waitForFinished(ProgramRig::runTimeoutMs));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 1);
    QVERIFY(process->readAllStandardError().contains("workbench: move 2: interrupted\n"));
}

void AppSimulatedTimeTest::realTimeTakesAsLong_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("moves");
    QTest::newRow("target") << "--target 700,-311" << 1;
    QTest::newRow("slow link") << "--target 300,200 --link-cost 5000" << 1;
    QTest::newRow("flight path") << "--flight-path path.csv" << 4;
}

void AppSimulatedTimeTest::realTimeTakesAsLong()
{
    QFETCH(QString, options);
    QFETCH(int, moves);
    constexpr double twoUpdates = 0.1;
    // What a busy machine makes late in one run is not late in the next.
    constexpr int tries = 5;
    const auto simulated = run(options);
    QCOMPARE(simulated.exitCode, 0);
    const Figures found = figures(simulated.output);
    bool isAsLong = false;
    for (int i = 0; i < tries && !isAsLong; ++i) {
        const auto real = rig->run(words(text("--unattended ") + options));
        QCOMPARE(real.exitCode, 0);
        const Figures expected = figures(real.output);
        QVERIFY(qAbs(found.deviation - expected.deviation) <= 1);
        isAsLong = qAbs(found.seconds - expected.seconds) <= moves * twoUpdates;
    }
    QVERIFY2(isAsLong, qPrintable(text("%1 s").arg(found.seconds)));
}

QTEST_GUILESS_MAIN(AppSimulatedTimeTest)
#include "tst_app_simulated_time.moc"
