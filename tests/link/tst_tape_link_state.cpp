#include "TapeRig.h"

#include <QtTest>

using namespace workbench;

namespace {

/// A move to 5,5 that is stopped at 2,2 while the axes are at 3,3 already, and rests at 2,2.
TapeMaker stoppedMove(int stopX = 2, int stopY = 2)
{
    TapeMaker maker;
    maker.positions(0, 0, 0).write(10, target0, 5).write(11, target1, 5);
    maker.positions(12, 1, 1).positions(14, 2, 2).positions(16, 3, 3);
    maker.write(20, target0, stopX).write(21, target1, stopY).write(22, setting, 0);
    maker.positions(24, 4, 4).positions(26, 3, 3).positions(28, 2, 2).positions(30, 2, 2);
    return maker.read(32, velocity0, 0).read(33, 0x21, 0);
}

} // namespace

class TapeLinkStateTest : public QObject
{
    Q_OBJECT

private slots:
    void anEmptyTapeHasNothingToTell();
    void positionsAreThoseThatTheTapeAnswers();
    void failedPositionsDoNotCount();
    void registersAreAsLastReadOrWritten();
    void velocitiesCountSinceTheLastWrite();
    void targetsAreSigned();
    void tellingTakesNoPartInTheReplay();
    void axesRestWhenNothingElseIsToCome();
    void axesMoveUntilTheLastVelocityIsZero();
    void axesRestOnlyUpToTheNextWrite();
    void waitingBeginsWithTheNextWritesTime();
    void writesAreCountedAndNamed();
    void requestsAreCounted();
    void stopIsAwaitedWhereItStops();
    void stopGoesOnBehindItsWrites();
    void stopOfAStandingAxisIsAwaitedThere();
    void otherTargetsAreAwaitedWhereTheAxesAre_data();
    void otherTargetsAreAwaitedWhereTheAxesAre();
    void stopAtNegativePositionsIsKnown();
    void pairOfTargetsIsAwaitedAsAPoint();
    void tapeIsPlayedWhenTheAxesRestBehindItsLastWrite();
};

void TapeLinkStateTest::anEmptyTapeHasNothingToTell()
{
    const Player player{TapeMaker()};
    QVERIFY(!player.link.position());
    QVERIFY(!player.link.value(setting));
    QVERIFY(!player.link.target(0));
    QVERIFY(player.link.areAtRest());
    QVERIFY(player.link.isPlayed());
    QCOMPARE(player.link.awaitedWrite(), QString());
    QCOMPARE(player.link.waitingNs(), 0);
    QCOMPARE(player.link.longestRequestNs(), 0);
}

void TapeLinkStateTest::positionsAreThoseThatTheTapeAnswers()
{
    Player player(TapeMaker().positions(10, 1, -1).positions(20, 2, -2).write(30, setting, 1));
    QStringList told;
    QStringList answered;
    for (int ms : {0, 10, 19, 20, 1000}) {
        player.waitUntil(ms);
        const QPoint at = player.link.position().value();
        told << QStringLiteral("%1,%2").arg(at.x()).arg(at.y());
        answered << player.positions();
    }
    QCOMPARE(told.join(QLatin1Char(' ')), QStringLiteral("1,-1 1,-1 1,-1 2,-2 2,-2"));
    QCOMPARE(answered, told);
}

void TapeLinkStateTest::failedPositionsDoNotCount()
{
    Player player(TapeMaker().positions(0, 7, 7).failed().positions(1, 1, 1).positions(2, 9, 9));
    player.waitUntil(1);
    QCOMPARE(player.link.position(), QPoint(1, 1));
}

void TapeLinkStateTest::registersAreAsLastReadOrWritten()
{
    Player player(TapeMaker()
                      .read(1, setting, 4)
                      .write(3, setting, 5)
                      .read(5, setting, 6)
                      .read(7, setting, 8)
                      .failed());
    QVERIFY(!player.link.value(setting));
    player.waitUntil(2);
    QCOMPARE(player.link.value(setting), 4);
    player.waitUntil(100);
    QCOMPARE(player.link.value(setting), 4);
    QVERIFY(player.write(setting, 5));
    QCOMPARE(player.link.value(setting), 5);
    player.waitUntil(103);
    QCOMPARE(player.link.value(setting), 6);
}

void TapeLinkStateTest::velocitiesCountSinceTheLastWrite()
{
    Player player(TapeMaker().read(0, velocity0, 9).write(5, setting, 1).read(10, velocity0, 0));
    QCOMPARE(player.link.value(velocity0), 9);
    player.waitUntil(5);
    QVERIFY(player.write(setting, 1));
    QVERIFY(!player.link.value(velocity0));
    player.waitUntil(10);
    QCOMPARE(player.link.value(velocity0), 0);
}

void TapeLinkStateTest::targetsAreSigned()
{
    Player player(TapeMaker().write(0, target0, 0xFFFFFE).write(1, target1, 0x7FFFFF));
    QVERIFY(player.write(target0, 0xFFFFFE) && player.write(target1, 0x7FFFFF));
    QCOMPARE(player.link.target(0), -2);
    QCOMPARE(player.link.target(1), 8388607);
}

void TapeLinkStateTest::tellingTakesNoPartInTheReplay()
{
    Player player(TapeMaker().read(0, setting, 1).read(1, setting, 2).positions(2, 1, 1));
    player.waitUntil(3);
    QCOMPARE(player.link.value(setting), 2);
    QVERIFY(player.link.position() && player.link.areAtRest());
    QCOMPARE(player.clock.now(), 3 * msInNs);
    QCOMPARE(player.link.counts().total(), quint64(0));
    QCOMPARE(player.read(setting), QStringLiteral("1"));
}

void TapeLinkStateTest::axesRestWhenNothingElseIsToCome()
{
    Player player(TapeMaker().positions(0, 1, 1).positions(10, 1, 2).positions(20, 1, 2));
    QVERIFY(!player.link.areAtRest());
    player.waitUntil(9);
    QVERIFY(!player.link.areAtRest());
    player.waitUntil(10);
    QVERIFY(player.link.areAtRest());
}

void TapeLinkStateTest::axesMoveUntilTheLastVelocityIsZero()
{
    TapeMaker maker;
    maker.positions(0, 1, 1).read(5, velocity0, 3).positions(10, 1, 1);
    QVERIFY(!Player(maker).link.areAtRest());
    Player player(maker.read(20, velocity0, 0));
    QVERIFY(!player.link.areAtRest());
    player.waitUntil(6);
    QVERIFY2(!player.link.areAtRest(), "position and velocity are those of the very moment");
    player.waitUntil(10);
    QVERIFY(player.link.areAtRest());
}

void TapeLinkStateTest::axesRestOnlyUpToTheNextWrite()
{
    Player player(TapeMaker()
                      .positions(0, 1, 1)
                      .write(10, setting, 1)
                      .positions(11, 1, 1)
                      .positions(20, 2, 2)
                      .read(25, velocity0, 7));
    QVERIFY(player.link.areAtRest());
    QVERIFY(player.write(setting, 1));
    QVERIFY(!player.link.areAtRest());
}

void TapeLinkStateTest::waitingBeginsWithTheNextWritesTime()
{
    Player player(TapeMaker().write(10, setting, 1).positions(15, 1, 1));
    QCOMPARE(player.link.waitingNs(), -10 * msInNs);
    player.waitUntil(50);
    QCOMPARE(player.link.waitingNs(), 40 * msInNs);
    QVERIFY(player.write(setting, 1));
    QCOMPARE(player.link.waitingNs(), -5 * msInNs);
    player.waitUntil(60);
    QCOMPARE(player.link.waitingNs(), 4 * msInNs);
}

void TapeLinkStateTest::writesAreCountedAndNamed()
{
    Player player(TapeMaker().write(0, setting, 1).write(1, position0, 9).write(2, target0, 300));
    QCOMPARE(player.link.writeCount(), 2);
    QCOMPARE(player.link.repeatedWriteCount(), 0);
    QCOMPARE(player.link.awaitedWrite(), QStringLiteral("write 0x13 m0 1"));
    QVERIFY(!player.write(setting, 2));
    QCOMPARE(player.link.repeatedWriteCount(), 0);
    QVERIFY(!player.link.awaitedTarget());
    QVERIFY(player.write(setting, 1));
    QVERIFY(player.write(position0, 5));
    QCOMPARE(player.link.repeatedWriteCount(), 1);
    QVERIFY(!player.link.awaitedTarget());
    QCOMPARE(player.link.awaitedWrite(), QStringLiteral("write 0x12 m0 300"));
}

void TapeLinkStateTest::requestsAreCounted()
{
    TapeMaker maker;
    maker.read(0, setting, 1).positions(1, 1, 1);
    maker.tape.entries.first().tookNs = 7 * msInNs;
    Player player(maker);
    player.read(setting);
    player.read(0x99);
    player.positions();
    player.write(setting, 0);
    QCOMPARE(player.link.counts().reads, quint64(2));
    QCOMPARE(player.link.counts().userFunctions, quint64(1));
    QCOMPARE(player.link.counts().writes, quint64(1));
    QCOMPARE(player.link.longestRequestNs(), 7 * msInNs);
}

/// The positions that a panel is told which asks every 2 ms, up to `untilMs`.
static QStringList poll(Player &player, int fromMs, int untilMs)
{
    QStringList seen;
    for (int ms = fromMs; ms <= untilMs; ms += 2) {
        player.waitUntil(ms);
        seen << player.positions();
    }
    return seen;
}

void TapeLinkStateTest::stopIsAwaitedWhereItStops()
{
    Player player(stoppedMove());
    player.waitUntil(10);
    QVERIFY(player.write(target0, 5) && player.write(target1, 5));
    const qint64 shift = player.clock.now() / msInNs - 12;
    const QStringList seen =
        poll(player, static_cast<int>(12 + shift), static_cast<int>(26 + shift));
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("1,1 2,2 3,3 3,3 2,2 2,2 2,2 2,2"));
    QCOMPARE(player.link.position(), QPoint(2, 2));
    QVERIFY(!player.link.areAtRest());
}

void TapeLinkStateTest::stopGoesOnBehindItsWrites()
{
    Player player(stoppedMove());
    QVERIFY(player.write(target0, 5) && player.write(target1, 5));
    player.waitUntil(500);
    QCOMPARE(player.positions(), QStringLiteral("2,2"));
    QVERIFY(player.write(target0, 2) && player.write(target1, 2) && player.write(setting, 0));
    QCOMPARE(player.positions(), QStringLiteral("3,3"));
    const int now = static_cast<int>(player.clock.now() / msInNs);
    QCOMPARE(poll(player, now, now + 6).constLast(), QStringLiteral("2,2"));
    QVERIFY(player.deviations.isEmpty());
    QVERIFY(player.link.isPlayed());
}

void TapeLinkStateTest::stopOfAStandingAxisIsAwaitedThere()
{
    Player player(TapeMaker()
                      .positions(0, 4, 4)
                      .write(10, target0, 9)
                      .positions(12, 5, 4)
                      .write(20, target0, 4)
                      .write(21, target1, 4));
    QVERIFY(player.write(target0, 9));
    player.waitUntil(100);
    QCOMPARE(player.positions(), QStringLiteral("4,4"));
}

void TapeLinkStateTest::otherTargetsAreAwaitedWhereTheAxesAre_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::newRow("never told") << 2 << 3;
    QTest::newRow("told before the move") << -7 << -7;
    QTest::newRow("told after it") << 4 << 4;
}

void TapeLinkStateTest::otherTargetsAreAwaitedWhereTheAxesAre()
{
    QFETCH(int, x);
    QFETCH(int, y);
    TapeMaker maker;
    maker.positions(-5, -7, -7);
    maker.tape.entries += stoppedMove(x, y).tape.entries;
    Player player(maker);
    QVERIFY(player.write(target0, 5) && player.write(target1, 5));
    player.waitUntil(500);
    QCOMPARE(player.positions(), QStringLiteral("3,3"));
    QCOMPARE(player.link.position(), QPoint(3, 3));
}

void TapeLinkStateTest::stopAtNegativePositionsIsKnown()
{
    Player player(TapeMaker()
                      .write(0, setting, 1)
                      .positions(2, -1, -2)
                      .positions(4, -3, -4)
                      .write(6, target0, 0xFFFFFF)
                      .write(7, target1, 0xFFFFFE));
    QVERIFY(player.write(setting, 1));
    player.waitUntil(100);
    QCOMPARE(player.positions(), QStringLiteral("-1,-2"));
}

void TapeLinkStateTest::pairOfTargetsIsAwaitedAsAPoint()
{
    Player player(TapeMaker()
                      .write(0, target1, 3)
                      .write(1, target0, 0xFFFFFE)
                      .read(2, setting, 1)
                      .write(3, target1, 4));
    QVERIFY(!player.link.awaitedTarget());
    QVERIFY(player.write(target1, 3));
    QCOMPARE(player.link.awaitedTarget(), QPoint(-2, 4));
    QVERIFY(player.write(target0, 0xFFFFFE));
    QVERIFY(!player.link.awaitedTarget());
}

void TapeLinkStateTest::tapeIsPlayedWhenTheAxesRestBehindItsLastWrite()
{
    Player player(TapeMaker().write(0, setting, 0).positions(5, 1, 1).positions(9, 2, 2));
    QVERIFY(!player.link.isPlayed());
    QVERIFY(player.write(setting, 0));
    QVERIFY(!player.link.isPlayed());
    player.waitUntil(500);
    QVERIFY(player.link.isPlayed());
}

QTEST_GUILESS_MAIN(TapeLinkStateTest)
#include "tst_tape_link_state.moc"
