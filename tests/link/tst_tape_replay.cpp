#include "FaultyLink.h"
#include "HeadlessPlatform.h"
#include "PositionPacking.h"
#include "ReplayRig.h"
#include "TapeLink.h"
#include "TapeReader.h"
#include "TapeRecorder.h"

#include <QBuffer>
#include <QDir>

#include <QtTest>

using namespace workbench;

namespace {

/// What a run leaves behind.
struct Ending
{
    QVector<QPointF> trace;
    QPointF position;
    QPointF target;
    qint64 timeNs = 0;
    bool hasEnded = true;
    QString deviation;
};

const QVector<QPointF> targets{{800, 300}, {-200, 450}};

Ending drive(ReplayRig &rig, const QVector<QPointF> &points, qint64 pauseNs)
{
    Ending ending;
    for (const QPointF &point : points) {
        rig.moveTo(point);
        ending.hasEnded = rig.finishMove(pauseNs) && ending.hasEnded;
    }
    ending.trace = rig.trace();
    ending.position = rig.shownPosition();
    ending.timeNs = rig.clock.now();
    return ending;
}

using Drive = std::function<Ending(ReplayRig &)>;

QByteArray record(Ending *ending, const QString &faultText, const Drive &run)
{
    ReplayRig rig;
    FaultyLink faulty(rig.module.link(), rig.clock, rig.registers());
    if (!faultText.isEmpty())
        faulty.switchOn(*parseFault(faultText).fault);
    TapeRecorder recorder(faulty, rig.clock);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    recorder.start(&buffer);
    rig.begin(&recorder);
    *ending = run(rig);
    recorder.finish();
    return buffer.data();
}

QByteArray record(Ending *ending, const QString &faultText = QString())
{
    return record(ending, faultText, [](ReplayRig &rig) { return drive(rig, targets, 0); });
}

Tape parsed(QByteArray text)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readTape(&buffer, nullptr).value_or(Tape());
}

QVector<QPointF> positionsOn(const Tape &tape)
{
    QVector<QPointF> positions;
    for (const TapeEntry &entry : tape.entries) {
        const LinkReply reply{entry.replyA, entry.replyB, entry.reply};
        if (entry.kind == TapeEntry::UserFunction)
            positions.append(QPointF(unpackPosition(reply, 0), unpackPosition(reply, 1)));
    }
    return positions;
}

/// A move to 800,300 that is stopped when `isTimeToStop`, and what comes of it.
Ending driveAndStop(ReplayRig &rig, const std::function<bool()> &isTimeToStop, qint64 pauseNs)
{
    Ending ending;
    rig.moveTo(targets.constFirst());
    ending.hasEnded = rig.goOn(isTimeToStop, pauseNs) && rig.isMoving();
    rig.stop();
    ending.hasEnded = rig.finishMove(pauseNs) && ending.hasEnded;
    ending.trace = rig.trace();
    ending.position = rig.shownPosition();
    ending.target = rig.shownTarget();
    ending.timeNs = rig.clock.now();
    return ending;
}

/// Holds when more has been sampled since a position behind `x` was drawn.
std::function<bool()> someTurnsBehind(const ReplayRig &rig, int x)
{
    return [&rig, x, turns = 0]() mutable {
        turns += rig.shownPosition().x() > x;
        return turns > 3;
    };
}

QByteArray recordStop(Ending *ending)
{
    return record(ending, QString(),
                  [](ReplayRig &rig) { return driveAndStop(rig, someTurnsBehind(rig, 350), 0); });
}

Ending replay(const QByteArray &text, const QVector<QPointF> &points = targets, qint64 pauseNs = 0)
{
    ReplayRig rig;
    TapeLink link(parsed(text), rig.clock, rig.registers());
    rig.begin(&link);
    Ending ending = drive(rig, points, pauseNs);
    ending.deviation = link.deviation();
    return ending;
}

} // namespace

class TapeReplayTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void runIsRepeatedPointByPoint_data();
    void runIsRepeatedPointByPoint();
    void runIsRepeatedWithFewerSamples_data();
    void runIsRepeatedWithFewerSamples();
    void laterStartsDoNotMatter();
    void otherTargetsAreReported();
    void stopIsRepeatedPointByPoint();
    void stopIsRepeatedWithOtherSamples_data();
    void stopIsRepeatedWithOtherSamples();
    void keptTapesArePlayed_data();
    void keptTapesArePlayed();
};

void TapeReplayTest::runIsRepeatedPointByPoint_data()
{
    QTest::addColumn<QString>("fault");
    for (const char *fault : {"", "lose:0.2", "late:3", "duplicate-write", "jump:50"})
        QTest::newRow(*fault ? fault : "no fault") << QString::fromLatin1(fault);
}

void TapeReplayTest::runIsRepeatedPointByPoint()
{
    QFETCH(QString, fault);
    Ending recorded;
    const QByteArray tape = record(&recorded, fault);
    QVERIFY(recorded.hasEnded);
    QVERIFY(recorded.trace.size() > 50);
    const Ending replayed = replay(tape);
    QVERIFY(replayed.hasEnded);
    QCOMPARE(replayed.deviation, QString());
    QCOMPARE(replayed.trace, recorded.trace);
    QCOMPARE(replayed.position, recorded.position);
    QCOMPARE(replayed.timeNs, recorded.timeNs);
}

void TapeReplayTest::runIsRepeatedWithFewerSamples_data()
{
    QTest::addColumn<int>("pauseUs");
    QTest::newRow("a little slower") << 130;
    QTest::newRow("half as many") << 500;
    QTest::newRow("few") << 7700;
    QTest::newRow("two between updates") << 24000;
}

void TapeReplayTest::runIsRepeatedWithFewerSamples()
{
    QFETCH(int, pauseUs);
    Ending recorded;
    const QByteArray tape = record(&recorded);
    const Ending replayed = replay(tape, targets, pauseUs * 1000);
    QVERIFY(replayed.hasEnded);
    QCOMPARE(replayed.deviation, QString());
    QCOMPARE(replayed.position, recorded.position);
    QVERIFY(replayed.trace.size() > 20);
    // Both axes are on their straight ways: along the first up to 800, then back to -200.
    for (const QPointF &point : replayed.trace) {
        const double onFirst = qAbs(point.y() - point.x() * 3 / 8);
        const double onSecond = qAbs(point.y() - (300 + (800 - point.x()) * 3 / 20));
        QVERIFY2(qMin(onFirst, onSecond) <= 1, qPrintable(QString::number(point.x())));
    }
}

void TapeReplayTest::laterStartsDoNotMatter()
{
    Ending recorded;
    const Tape tape = parsed(record(&recorded));
    QVERIFY(!tape.entries.isEmpty());
    ReplayRig rig;
    TapeLink link(tape, rig.clock, rig.registers());
    rig.begin(&link);
    for (const QPointF &point : targets) {
        rig.clock.advance(7777 * ReplayRig::msInNs);
        rig.moveTo(point);
        QVERIFY(rig.finishMove());
    }
    QCOMPARE(rig.trace(), recorded.trace);
    QVERIFY(link.deviation().isEmpty());
    rig.clock.advance(ReplayRig::msInNs);
    QVERIFY(link.isAtEnd());
}

void TapeReplayTest::otherTargetsAreReported()
{
    Ending recorded;
    const QByteArray tape = record(&recorded);
    QCOMPARE(replay(tape, {{801, 300}}).deviation,
             QStringLiteral("write 0x12 m0 801, but the tape has write 0x12 m0 800 there"));
}

void TapeReplayTest::stopIsRepeatedPointByPoint()
{
    Ending recorded;
    const Tape tape = parsed(recordStop(&recorded));
    QVERIFY(recorded.hasEnded);
    QCOMPARE(recorded.position, recorded.target);
    ReplayRig rig;
    TapeLink link(tape, rig.clock, rig.registers());
    rig.begin(&link);
    const Ending replayed = driveAndStop(rig, someTurnsBehind(rig, 350), 0);
    QCOMPARE(link.deviation(), QString());
    QVERIFY(replayed.hasEnded && link.isPlayed());
    QCOMPARE(replayed.trace, recorded.trace);
    QCOMPARE(replayed.target, recorded.target);
    QCOMPARE(replayed.timeNs, recorded.timeNs);
}

void TapeReplayTest::stopIsRepeatedWithOtherSamples_data()
{
    QTest::addColumn<int>("pauseUs");
    for (const int pause : {70, 130, 500, 3100, 7700, 24000})
        QTest::newRow(qPrintable(QStringLiteral("%1 us more").arg(pause))) << pause;
}

/// The one who stops waits until the tape does and the panel shows where.
void TapeReplayTest::stopIsRepeatedWithOtherSamples()
{
    QFETCH(int, pauseUs);
    Ending recorded;
    const Tape tape = parsed(recordStop(&recorded));
    ReplayRig rig;
    TapeLink link(tape, rig.clock, rig.registers());
    rig.begin(&link);
    const auto isTimeToStop = [&] {
        return link.waitingNs() >= 0 && link.position() == rig.shownPosition().toPoint();
    };
    const Ending replayed = driveAndStop(rig, isTimeToStop, pauseUs * 1000);
    QCOMPARE(link.deviation(), QString());
    QVERIFY(replayed.hasEnded && link.isPlayed());
    QCOMPARE(replayed.position, recorded.position);
    QCOMPARE(replayed.target, recorded.target);
    const QVector<QPointF> told = positionsOn(tape);
    for (const QPointF &point : replayed.trace)
        QVERIFY(told.contains(point));
}

void TapeReplayTest::keptTapesArePlayed_data()
{
    QTest::addColumn<QString>("fileName");
    const QDir folder(QStringLiteral(TAPES_FOLDER));
    const QStringList names = folder.entryList({QStringLiteral("*.tape")}, QDir::Files);
    QVERIFY(names.size() >= 3);
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << folder.filePath(name);
}

/// Each of them holds moves to the targets above.
void TapeReplayTest::keptTapesArePlayed()
{
    QFETCH(QString, fileName);
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    TapeError error;
    const auto tape = readTape(&file, &error);
    QVERIFY2(tape.has_value(), qPrintable(error.reason));
    file.seek(0);
    const Ending replayed = replay(file.readAll());
    QVERIFY(replayed.hasEnded);
    QCOMPARE(replayed.deviation, QString());
    QCOMPARE(replayed.position, targets.constLast());
}

QTEST_MAIN(TapeReplayTest)
#include "tst_tape_replay.moc"
