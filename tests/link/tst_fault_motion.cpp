#include "FaultLinkBench.h"

#include <QtTest>

using namespace workbench;

class FaultMotionTest : public QObject
{
    Q_OBJECT

private slots:
    void frozenPositionsHoldWhatWasSeenFirst();
    void frozenPositionsAreTakenAnewWhenSwitchedOnAgain();
    void stuckAxisStandsWhileTheOtherGoesOn();
    void jumpComesAndGoes();
    void spoiltPositionsStayWithinTheAxis();

    void zeroVelocityLastsForAWhileInEachMove();
    void zeroVelocityLeavesOtherRegistersAlone();
};

void FaultMotionTest::frozenPositionsHoldWhatWasSeenFirst()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("frozen-positions"));
    QCOMPARE(bench.positions(), QStringLiteral("10,-20"));
    bench.device.position0 = 11;
    bench.device.position1 = -21;
    bench.device.values[FaultLinkBench::position0] = 11;
    QCOMPARE(bench.positions(), QStringLiteral("10,-20"));
    QCOMPARE(bench.read(FaultLinkBench::position0), QStringLiteral("10"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
    bench.link.switchOff(FaultKind::FrozenPositions);
    QCOMPARE(bench.positions(), QStringLiteral("11,-21"));
}

void FaultMotionTest::frozenPositionsAreTakenAnewWhenSwitchedOnAgain()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("frozen-positions"));
    bench.positions();
    bench.device.position0 = 11;
    QVERIFY(bench.on("frozen-positions"));
    QCOMPARE(bench.positions(), QStringLiteral("11,-20"));
}

void FaultMotionTest::stuckAxisStandsWhileTheOtherGoesOn()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("stuck-axis:1"));
    bench.positions();
    bench.device.position0 = 11;
    bench.device.position1 = -21;
    bench.device.values[0x21] = 40;
    QCOMPARE(bench.positions(), QStringLiteral("11,-20"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
    QCOMPARE(bench.read(0x21), QStringLiteral("0"));
}

void FaultMotionTest::jumpComesAndGoes()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("jump:1000"));
    QStringList seen;
    for (int ms : {0, 98, 0, 398, 0, 0}) {
        bench.clock.advance(ms * FaultLinkBench::msInNs);
        seen << bench.read(FaultLinkBench::position0);
    }
    // Asked at 1, 100, 101, 500, 501 and 502 ms.
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("1010 10 10 1010 1010 1010"));
}

void FaultMotionTest::spoiltPositionsStayWithinTheAxis()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("jump:1000000"));
    bench.device.position0 = 8388600;
    bench.device.position1 = -8388608;
    QCOMPARE(bench.positions(), QStringLiteral("8388607,-7388608"));
}

void FaultMotionTest::zeroVelocityLastsForAWhileInEachMove()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("zero-velocity:100"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("0"));
    bench.clock.advance(98 * FaultLinkBench::msInNs);
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("0"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
    QCOMPARE(bench.write(FaultLinkBench::target0, 5), QStringLiteral("ok"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("0"));
}

void FaultMotionTest::zeroVelocityLeavesOtherRegistersAlone()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("zero-velocity"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("0"));
    QCOMPARE(bench.read(FaultLinkBench::position0), QStringLiteral("10"));
    QCOMPARE(bench.read(FaultLinkBench::setting), QStringLiteral("500"));
}

QTEST_GUILESS_MAIN(FaultMotionTest)
#include "tst_fault_motion.moc"
