#include "PositionPacking.h"
#include "ProgramRig.h"
#include "TapeFile.h"

#include <QImage>
#include <QSet>

using namespace workbench;

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

QStringList words(const char *line)
{
    return text(line).split(QLatin1Char(' '));
}

/// What the lines of a run say about places, without the figures that depend on the time.
QStringList places(const QStringList &output)
{
    const QRegularExpression figures(
        text("; \\d+\\.\\d\\d s, .*$|: reached after .*$|, as on .*$|; \\d+ samples in .*$"));
    QStringList lines;
    for (QString line : output)
        lines << line.remove(figures);
    return lines;
}

QByteArray written(const Tape &tape)
{
    QByteArray file = tapeHeader() + '\n';
    for (const TapeEntry &entry : tape.entries)
        file += tapeLine(entry) + '\n';
    return file + tapeEnd(tape.entries.size()) + '\n';
}

/// All positions of a record, in order, without repetitions.
QStringList way(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList positions;
    const QStringList rows = ProgramRig::lines(file.readAll()).mid(1);
    for (const QString &row : rows) {
        const QString position = row.section(QLatin1Char(','), 1);
        if (positions.isEmpty() || positions.constLast() != position)
            positions << position;
    }
    return positions;
}

/// All positions that a panel was told, as they stand in a record.
QSet<QString> positionsOn(const QString &tapeName)
{
    QSet<QString> positions;
    const auto tape = readTapeFile(tapeName);
    for (const TapeEntry &entry : tape.value_or(Tape()).entries) {
        if (entry.kind != TapeEntry::UserFunction || !entry.isAnswered)
            continue;
        const LinkReply reply{entry.replyA, entry.replyB, entry.reply};
        positions.insert(text("%1,%2").arg(unpackPosition(reply, 0)).arg(unpackPosition(reply, 1)));
    }
    return positions;
}

} // namespace

class AppReplayTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void runIsRepeatedFromItsTape_data();
    void runIsRepeatedFromItsTape();
    void replayComesThroughFaultsInFrontOfTheTape();
    void runThatIsNotOnTheTapeFails_data();
    void runThatIsNotOnTheTapeFails();
    void tapeThatBreaksOffIsNoticed();
    void tapeThatWaitsInVainIsNoticed();
    void interruptedReplayEndsAtOnce();

private:
    ProgramRig::Ending run(const QStringList &options, const char *more) const
    {
        return rig->run(words("--unattended --clock simulated") + options + words(more));
    }

    std::unique_ptr<ProgramRig> rig;
};

void AppReplayTest::init()
{
    rig = std::make_unique<ProgramRig>();
    QVERIFY(rig->isValid());
    rig->write(text("path.csv"), "Path\n120;0;120;-80\n120;-80\n0;0\n");
}

void AppReplayTest::runIsRepeatedFromItsTape_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("recordedWith");
    QTest::addColumn<QStringList>("repeatedWith");
    QTest::newRow("targets on a slow link") << words("--target 800,300 --target -200,450")
                                            << words("--link-cost 20000") << QStringList();
    QTest::newRow("flight path") << words("--flight-path path.csv") << QStringList()
                                 << QStringList();
    // Turns and stops in mid-move, for which the panel has to be where it was.
    QTest::newRow("built-in run in real time")
        << QStringList() << QStringList() << words("--clock real");
}

void AppReplayTest::runIsRepeatedFromItsTape()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, recordedWith);
    QFETCH(QStringList, repeatedWith);
    const auto first = run(options + recordedWith, "--tape a.tape --record first.csv");
    QVERIFY2(first.exitCode == 0, qPrintable(first.complaints.join(QLatin1Char('\n'))));
    const auto again =
        run(options + repeatedWith,
            "--replay a.tape --record again.csv --picture again.png --tape again.tape");
    QVERIFY2(again.exitCode == 0, qPrintable(again.complaints.join(QLatin1Char('\n'))));
    QCOMPARE(again.complaints, QStringList());
    QVERIFY(again.output.constLast().contains(text("all moves as planned, as on a.tape; ")));
    QCOMPARE(places(again.output), places(first.output));

    // Whatever was sampled this time was told then, and both end in the same place.
    const QSet<QString> told = positionsOn(rig->filePath(text("a.tape")));
    const QStringList repeated = way(rig->filePath(text("again.csv")));
    QVERIFY(repeated.size() > 20);
    for (const QString &position : repeated)
        QVERIFY2(told.contains(position), qPrintable(position));
    QCOMPARE(repeated.constLast(), way(rig->filePath(text("first.csv"))).constLast());
    QVERIFY(QImage(rig->filePath(text("again.png"))).width() > 1000);
    QVERIFY(readTapeFile(rig->filePath(text("again.tape"))).has_value());
}

void AppReplayTest::replayComesThroughFaultsInFrontOfTheTape()
{
    const QStringList targets = words("--target 300,200");
    QCOMPARE(run(targets, "--tape a.tape").exitCode, 0);
    const auto slower = run(targets, "--replay a.tape --fault late:2");
    QVERIFY2(slower.exitCode == 0, qPrintable(slower.complaints.join(QLatin1Char('\n'))));
    const auto failing = run(targets, "--replay a.tape --fault ignore-writes");
    QCOMPARE(failing.exitCode, 1);
    QCOMPARE(failing.complaints.size(), 1);
}

void AppReplayTest::runThatIsNotOnTheTapeFails_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("one move more")
        << words("--target 300,200 --target 0,0 --target 5,5")
        << "move 3: not as on the tape: write 0x13 m0 0, but the tape has no further write there";
    QTest::newRow("one move less")
        << words("--target 300,200")
        << "the tape was not played to its end, where write 0x13 m0 0 comes next";
    QTest::newRow("another target") << words("--target 300,201")
                                    << "move 1: not as on the tape: write 0x22 m0 201, but the "
                                       "tape has write 0x22 m0 200 there";
    QTest::newRow("flight path")
        << words("--flight-path path.csv")
        << "flight path: point 1 of 4: 120,0: not reached, not as on the tape: write 0x22 m0 0, "
           "but the tape has write 0x22 m0 200 there; the axes are at 0,0";
}

void AppReplayTest::runThatIsNotOnTheTapeFails()
{
    QFETCH(QStringList, options);
    QFETCH(QString, complaint);
    QCOMPARE(run(words("--target 300,200 --target 0,0"), "--tape a.tape").exitCode, 0);
    const auto ending = run(options, "--replay a.tape --record r.csv");
    QCOMPARE(ending.exitCode, 1);
    QCOMPARE(ending.complaints, QStringList{text("workbench: ") + complaint});
    QCOMPARE(rig->files(), (QStringList{text("a.tape"), text("path.csv")}));
}

void AppReplayTest::tapeThatBreaksOffIsNoticed()
{
    const QStringList targets = words("--target 40,20 --target 600,400");
    QCOMPARE(run(targets, "--tape a.tape").exitCode, 0);
    auto tape = readTapeFile(rig->filePath(text("a.tape")));
    QVERIFY(tape.has_value());
    int end = tape->entries.size();
    while (tape->entries.at(end - 1).kind != TapeEntry::Write)
        --end;
    // Behind the last write the axes are on their way.
    tape->entries.resize(end + 50);
    rig->write(text("a.tape"), written(*tape));
    const auto ending = run(targets, "--replay a.tape");
    QCOMPARE(ending.exitCode, 1);
    QCOMPARE(ending.complaints, QStringList{text("workbench: move 2: the tape is at its end")});
}

void AppReplayTest::tapeThatWaitsInVainIsNoticed()
{
    const QStringList target = words("--target 300,200");
    QCOMPARE(run(target, "--tape a.tape").exitCode, 0);
    auto tape = readTapeFile(rig->filePath(text("a.tape")));
    QVERIFY(tape.has_value());
    // A write of somebody else's, before the axes have come to rest.
    const int place = tape->entries.size() - 200;
    TapeEntry entry = tape->entries.at(place);
    entry.kind = TapeEntry::Write;
    tape->entries.insert(place, entry);
    rig->write(text("a.tape"), written(*tape));
    const auto ending = run(target, "--replay a.tape");
    QCOMPARE(ending.exitCode, 1);
    QCOMPARE(ending.complaints,
             QStringList{text("workbench: move 1: the tape waits for %1, which does not come")
                             .arg(QString::fromLatin1(tapeRequest(entry)))});
}

void AppReplayTest::interruptedReplayEndsAtOnce()
{
    const QStringList targets = words("--target 30,20 --target 3000,2000");
    QCOMPARE(run(targets, "--tape a.tape").exitCode, 0);
    const auto process = rig->start(words("--unattended") + targets + words("--replay a.tape"));
    QVERIFY(process->waitForReadyRead(ProgramRig::runTimeoutMs));
    process->terminate();
    QVERIFY(process->waitForFinished(ProgramRig::runTimeoutMs));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 1);
    QVERIFY(process->readAllStandardError().contains("workbench: move 2: interrupted\n"));
}

QTEST_GUILESS_MAIN(AppReplayTest)
#include "tst_app_replay.moc"
