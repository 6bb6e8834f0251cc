#include "FaultyLink.h"
#include "HeadlessPlatform.h"
#include "ReplayBench.h"
#include "TapeLink.h"
#include "TapeReader.h"
#include "TapeRecorder.h"

#include <QBuffer>
#include <QDir>

#include <QtTest>

using namespace bench;

namespace {

/// What a run leaves behind.
struct Ending
{
    QVector<QPointF> trace;
    QPointF position;
    qint64 timeNs = 0;
    bool hasEnded = true;
    QString deviation;
};

const QVector<QPointF> targets{{800, 300}, {-200, 450}};

Ending drive(ReplayBench &bench, const QVector<QPointF> &points, qint64 pauseNs)
{
    Ending ending;
    for (const QPointF &point : points) {
        bench.moveTo(point);
        ending.hasEnded = bench.finishMove(pauseNs) && ending.hasEnded;
    }
    ending.trace = bench.trace();
    ending.position = bench.shownPosition();
    ending.timeNs = bench.clock.now();
    return ending;
}

QByteArray record(Ending *ending, const QString &faultText = QString())
{
    ReplayBench bench;
    FaultyLink faulty(bench.module.link(), bench.clock, bench.registers());
    if (!faultText.isEmpty())
        faulty.switchOn(*parseFault(faultText).fault);
    TapeRecorder recorder(faulty, bench.clock);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    recorder.start(&buffer);
    bench.begin(&recorder);
    *ending = drive(bench, targets, 0);
    recorder.finish();
    return buffer.data();
}

Ending replay(QByteArray text, const QVector<QPointF> &points = targets, qint64 pauseNs = 0)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    const auto tape = readTape(&buffer, nullptr);
    ReplayBench bench;
    TapeLink link(tape.value_or(Tape()), bench.clock, bench.registers());
    bench.begin(&link);
    Ending ending = drive(bench, points, pauseNs);
    ending.deviation = link.deviation();
    return ending;
}

} // namespace

class TestTapeReplay : public QObject
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
    void keptTapesArePlayed_data();
    void keptTapesArePlayed();
};

void TestTapeReplay::runIsRepeatedPointByPoint_data()
{
    QTest::addColumn<QString>("fault");
    for (const char *fault : {"", "lose:0.2", "late:3", "duplicate-write", "jump:50"})
        QTest::newRow(*fault ? fault : "no fault") << QString::fromLatin1(fault);
}

void TestTapeReplay::runIsRepeatedPointByPoint()
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

void TestTapeReplay::runIsRepeatedWithFewerSamples_data()
{
    QTest::addColumn<int>("pauseUs");
    QTest::newRow("a little slower") << 130;
    QTest::newRow("half as many") << 500;
    QTest::newRow("few") << 7700;
    QTest::newRow("two between updates") << 24000;
}

void TestTapeReplay::runIsRepeatedWithFewerSamples()
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

void TestTapeReplay::laterStartsDoNotMatter()
{
    Ending recorded;
    QByteArray text = record(&recorded);
    QBuffer buffer(&text);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    const auto tape = readTape(&buffer, nullptr);
    QVERIFY(tape.has_value());
    ReplayBench bench;
    TapeLink link(*tape, bench.clock, bench.registers());
    bench.begin(&link);
    for (const QPointF &point : targets) {
        bench.clock.advance(7777 * ReplayBench::msInNs);
        bench.moveTo(point);
        QVERIFY(bench.finishMove());
    }
    QCOMPARE(bench.trace(), recorded.trace);
    QVERIFY(link.deviation().isEmpty());
    bench.clock.advance(ReplayBench::msInNs);
    QVERIFY(link.isAtEnd());
}

void TestTapeReplay::otherTargetsAreReported()
{
    Ending recorded;
    const QByteArray tape = record(&recorded);
    QCOMPARE(replay(tape, {{801, 300}}).deviation,
             QStringLiteral("write 0x12 m0 801, but the tape has write 0x12 m0 800 there"));
}

void TestTapeReplay::keptTapesArePlayed_data()
{
    QTest::addColumn<QString>("fileName");
    const QDir folder(QStringLiteral(TAPES_FOLDER));
    const QStringList names = folder.entryList({QStringLiteral("*.tape")}, QDir::Files);
    QVERIFY(names.size() >= 3);
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << folder.filePath(name);
}

/// Each of them holds moves to the targets above.
void TestTapeReplay::keptTapesArePlayed()
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

QTEST_MAIN(TestTapeReplay)
#include "tst_tape_replay.moc"
