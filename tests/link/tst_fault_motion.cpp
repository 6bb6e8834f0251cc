#include "FaultLinkRig.h"

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
    FaultLinkRig rig;
    QVERIFY(rig.on("frozen-positions"));
    QCOMPARE(rig.positions(), QStringLiteral("10,-20"));
    rig.device.position0 = 11;
    rig.device.position1 = -21;
    rig.device.values[FaultLinkRig::position0] = 11;
    QCOMPARE(rig.positions(), QStringLiteral("10,-20"));
    QCOMPARE(rig.read(FaultLinkRig::position0), QStringLiteral("10"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("30"));
    rig.link.switchOff(FaultKind::FrozenPositions);
    QCOMPARE(rig.positions(), QStringLiteral("11,-21"));
}

void FaultMotionTest::frozenPositionsAreTakenAnewWhenSwitchedOnAgain()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("frozen-positions"));
    rig.positions();
    rig.device.position0 = 11;
    QVERIFY(rig.on("frozen-positions"));
    QCOMPARE(rig.positions(), QStringLiteral("11,-20"));
}

void FaultMotionTest::stuckAxisStandsWhileTheOtherGoesOn()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("stuck-axis:1"));
    rig.positions();
    rig.device.position0 = 11;
    rig.device.position1 = -21;
    rig.device.values[0x21] = 40;
    QCOMPARE(rig.positions(), QStringLiteral("11,-20"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("30"));
    QCOMPARE(rig.read(0x21), QStringLiteral("0"));
}

void FaultMotionTest::jumpComesAndGoes()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("jump:1000"));
    QStringList seen;
    for (int ms : {0, 98, 0, 398, 0, 0}) {
        rig.clock.advance(ms * FaultLinkRig::msInNs);
        seen << rig.read(FaultLinkRig::position0);
    }
    // Asked at 1, 100, 101, 500, 501 and 502 ms.
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("1010 10 10 1010 1010 1010"));
}

void FaultMotionTest::spoiltPositionsStayWithinTheAxis()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("jump:1000000"));
    rig.device.position0 = 8388600;
    rig.device.position1 = -8388608;
    QCOMPARE(rig.positions(), QStringLiteral("8388607,-7388608"));
}

void FaultMotionTest::zeroVelocityLastsForAWhileInEachMove()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("zero-velocity:100"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("0"));
    rig.clock.advance(98 * FaultLinkRig::msInNs);
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("0"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("30"));
    QCOMPARE(rig.write(FaultLinkRig::target0, 5), QStringLiteral("ok"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("0"));
}

void FaultMotionTest::zeroVelocityLeavesOtherRegistersAlone()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("zero-velocity"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("0"));
    QCOMPARE(rig.read(FaultLinkRig::position0), QStringLiteral("10"));
    QCOMPARE(rig.read(FaultLinkRig::setting), QStringLiteral("500"));
}

QTEST_GUILESS_MAIN(FaultMotionTest)
#include "tst_fault_motion.moc"
