#include "ChipCommands.h"
#include "MotionObserver.h"
#include "ShippedChip.h"

#include <QtTest>

#include <limits>
#include <memory>

using namespace workbench;

Q_DECLARE_METATYPE(workbench::RampSettings)

class ChipMotionTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void stepSizeDoesNotChangeWhereTheAxesAre();
    void independentAxesReachTheirTargets_data();
    void independentAxesReachTheirTargets();
    void linkedAxesRunStraightAndStopTogether_data();
    void linkedAxesRunStraightAndStopTogether();
    void linkedMoveTakesAsLongAsItsTighterAxisNeeds();
    void linkedMoveOfOneAxisNeedsNothingOfTheOther();
    void shippedRampsStartAndArriveInHandyTime();
    void oddSettingsNeitherHangNorJump_data();
    void oddSettingsNeitherHangNorJump();
    void positionsSaturateAtTheEnds();

private:
    std::optional<ChipDescription> description;
    std::unique_ptr<SimulatedChip> chip;
};

void ChipMotionTest::initTestCase()
{
    description = readShippedChip();
    QVERIFY(description);
}

void ChipMotionTest::init()
{
    chip = std::make_unique<SimulatedChip>(*description);
}

void ChipMotionTest::stepSizeDoesNotChangeWhereTheAxesAre()
{
    SimulatedChip coarse(*description);
    for (SimulatedChip *each : {chip.get(), &coarse})
        startLinked(*each, 2000, -1500);
    for (int ms = 1; ms <= 400; ++ms)
        chip->advanceTo(ms * msInNs);
    coarse.advanceTo(400 * msInNs);
    for (SimulatedChip *each : {chip.get(), &coarse})
        setTarget(*each, 0, -700);
    for (int ms = 401; ms <= 10000; ++ms) {
        chip->advanceTo(ms * msInNs);
        if (ms % 333 != 0)
            continue;
        coarse.advanceTo(ms * msInNs);
        QCOMPARE(coarse.position(0), chip->position(0));
        QCOMPARE(coarse.position(1), chip->position(1));
    }
    QCOMPARE(chip->position(0), -700);
}

void ChipMotionTest::independentAxesReachTheirTargets_data()
{
    QTest::addColumn<int>("target0");
    QTest::addColumn<int>("target1");
    QTest::addColumn<RampSettings>("ramp0");
    QTest::addColumn<RampSettings>("ramp1");
    QTest::newRow("no way") << 0 << 0 << shippedRamp() << shippedRamp();
    QTest::newRow("one unit") << 1 << -1 << shippedRamp() << shippedRamp();
    QTest::newRow("shipped") << 2000 << -256 << shippedRamp() << shippedRamp();
    QTest::newRow("different ramps") << 5000 << 5000 << ramp(1000, 200, 900) << shippedRamp();
    QTest::newRow("fast") << maximumPosition << minimumPosition << ramp(2000000, 3000000, 1000000)
                          << RampSettings{1500000, 500000,  700000,  100000, 900000,
                                          800000,  1000000, 2000000, 1900000};
}

void ChipMotionTest::independentAxesReachTheirTargets()
{
    QFETCH(int, target0);
    QFETCH(int, target1);
    QFETCH(RampSettings, ramp0);
    QFETCH(RampSettings, ramp1);
    setRamp(*chip, 0, ramp0);
    setRamp(*chip, 1, ramp1);
    setTargets(*chip, target0, target1);
    MotionObserver observer(*chip);
    QVERIFY(observer.runToStandstill(60));
    QCOMPARE(observer.positions(), (Positions{target0, target1}));
    observer.run(5, 50 * msInNs);
    QCOMPARE(observer.positions(), (Positions{target0, target1}));
    QCOMPARE(observer.violation(), QString());
}

void ChipMotionTest::linkedAxesRunStraightAndStopTogether_data()
{
    QTest::addColumn<int>("target0");
    QTest::addColumn<int>("target1");
    QTest::addColumn<RampSettings>("ramp0");
    QTest::addColumn<RampSettings>("ramp1");
    QTest::addColumn<bool>("reachesTopSpeed");
    QTest::newRow("short") << 100 << 60 << shippedRamp() << shippedRamp() << false;
    QTest::newRow("diagonal") << 4000 << 4000 << shippedRamp() << shippedRamp() << true;
    QTest::newRow("flat, backwards") << -6000 << 17 << shippedRamp() << shippedRamp() << true;
    QTest::newRow("steep") << 250 << -5000 << shippedRamp() << shippedRamp() << true;
    QTest::newRow("along axis 0") << 5000 << 0 << shippedRamp() << shippedRamp() << true;
    QTest::newRow("along axis 1") << 0 << -5000 << shippedRamp() << shippedRamp() << true;
    QTest::newRow("slow axis 1") << 3000 << 2000 << shippedRamp() << ramp(300, 100, 70) << true;
    QTest::newRow("slow axis 0") << 2000 << 4000 << ramp(300, 100, 70) << shippedRamp() << true;
    QTest::newRow("stages of both")
        << 90000 << -60000
        << RampSettings{40000, 30000, 20000, 5000, 90000, 70000, 15000, 50000, 40000}
        << RampSettings{30000, 25000, 35000, 2000, 50000, 60000, 20000, 40000, 30000} << true;
    QTest::newRow("end to end") << maximumPosition << minimumPosition
                                << ramp(4000000, 5000000, 3000000)
                                << ramp(4500000, 4000000, 6000000) << true;
}

void ChipMotionTest::linkedAxesRunStraightAndStopTogether()
{
    QFETCH(int, target0);
    QFETCH(int, target1);
    QFETCH(RampSettings, ramp0);
    QFETCH(RampSettings, ramp1);
    QFETCH(bool, reachesTopSpeed);
    setRamp(*chip, 0, ramp0);
    setRamp(*chip, 1, ramp1);
    startLinked(*chip, target0, target1);
    MotionObserver observer(*chip);
    do {
        observer.step(msInNs);
        QVERIFY(distanceFromLine(observer.positions(), target0, target1) <= 1);
    } while (chip->isMoving() && observer.time() < 100000 * msInNs);

    QCOMPARE(observer.positions(), (Positions{target0, target1}));
    if (target0 != 0 && target1 != 0)
        QCOMPARE(observer.lastMoving()[0], observer.lastMoving()[1]);
    const auto speeds = observer.highestSpeeds();
    QCOMPARE(speeds[0] == ramp0.vMax || speeds[1] == ramp1.vMax, reachesTopSpeed);
    observer.run(5, 50 * msInNs);
    QCOMPARE(observer.positions(), (Positions{target0, target1}));
    QCOMPARE(observer.violation(), QString());
}

void ChipMotionTest::linkedMoveTakesAsLongAsItsTighterAxisNeeds()
{
    // Axis 1 alone: 200 at 100 up in 2 s, at 100 down in 2 s, 600 at 200 in 3 s.
    setRamp(*chip, 0, ramp(10000, 50000, 60000));
    setRamp(*chip, 1, ramp(200, 100, 100));
    startLinked(*chip, -3000, 1000);
    chip->advanceTo(2000 * msInNs);
    QCOMPARE(chip->position(0), -600);
    QCOMPARE(chip->position(1), 200);
    QCOMPARE(readByName(*chip, QStringLiteral("M0_VACTUAL")), -600);
    QCOMPARE(readByName(*chip, QStringLiteral("M1_VACTUAL")), 200);
    chip->advanceTo(7000 * msInNs - 1000);
    QVERIFY(readByName(*chip, QStringLiteral("M0_VACTUAL")) == -1);
    QVERIFY(readByName(*chip, QStringLiteral("M1_VACTUAL")) == 1);
    chip->advanceTo(7000 * msInNs);
    QVERIFY(!chip->isMoving());
}

void ChipMotionTest::linkedMoveOfOneAxisNeedsNothingOfTheOther()
{
    setRamp(*chip, 1, RampSettings());
    startLinked(*chip, 1000, 0);
    MotionObserver observer(*chip);
    QVERIFY(observer.runToStandstill(10));
    QCOMPARE(observer.positions(), (Positions{1000, 0}));
}

void ChipMotionTest::shippedRampsStartAndArriveInHandyTime()
{
    for (int target : {256, 2000}) {
        SimulatedChip timed(*description);
        startLinked(timed, target, target);
        MotionObserver watch(timed);
        watch.run(0.05);
        QVERIFY(watch.positions()[0] >= 2);
        QVERIFY(watch.runToStandstill(10));
        const double seconds = double(watch.time()) * 1e-9;
        QVERIFY2(seconds > 0.4 && seconds < 2, qPrintable(QString::number(seconds)));
    }
}

void ChipMotionTest::oddSettingsNeitherHangNorJump_data()
{
    QTest::addColumn<RampSettings>("settings");
    QTest::addColumn<bool>("arrives");
    QTest::newRow("all zero") << RampSettings() << false;
    QTest::newRow("no VMAX") << ramp(0, 3000, 3000) << false;
    QTest::newRow("no AMAX") << ramp(2000, 0, 3000) << false;
    QTest::newRow("no DMAX") << ramp(2000, 3000, 0) << true;
    QTest::newRow("no A1") << RampSettings{2000, 3000, 3000, 100, 0, 3000, 0, 0, 0} << false;
    QTest::newRow("no D1") << RampSettings{2000, 3000, 3000, 100, 3000, 0, 0, 0, 0} << true;
    QTest::newRow("no A2") << RampSettings{2000, 3000, 3000, 0, 0, 0, 900, 0, 3000} << false;
    QTest::newRow("no AMAX above a stage")
        << RampSettings{2000, 0, 0, 500, 4000, 4000, 0, 0, 0} << true;
    QTest::newRow("negative VMAX") << ramp(-1, 3000, 3000) << false;
    QTest::newRow("negative AMAX") << ramp(2000, -1, 3000) << false;
    QTest::newRow("negative DMAX") << ramp(2000, 3000, intMin) << true;
    QTest::newRow("negative stages")
        << RampSettings{2000, 3000, 3000, -1, -1, -1, intMin, -5, -5} << true;
    QTest::newRow("all lowest") << RampSettings{intMin, intMin, intMin, intMin, intMin,
                                                intMin, intMin, intMin, intMin}
                                << false;
    QTest::newRow("all highest") << RampSettings{intMax, intMax, intMax, intMax, intMax,
                                                 intMax, intMax, intMax, intMax}
                                 << true;
    QTest::newRow("all one") << RampSettings{1, 1, 1, 1, 1, 1, 1, 1, 1} << true;
    QTest::newRow("high rates, low velocity") << ramp(1, intMax, intMax) << true;
}

void ChipMotionTest::oddSettingsNeitherHangNorJump()
{
    QFETCH(RampSettings, settings);
    QFETCH(bool, arrives);
    for (int mode : {0, linkedMode}) {
        SimulatedChip each(*description);
        for (int axis : {0, 1})
            setRamp(each, axis, settings);
        startLinked(each, 1000, -1000);
        setMode(each, mode);
        MotionObserver observer(each);
        observer.run(1);
        setTarget(each, 0, 900);
        QVERIFY(observer.runToStandstill(2000, 10 * msInNs));
        QCOMPARE(observer.positions(), (arrives ? Positions{900, -1000} : Positions{0, 0}));

        // Taking the rates away on the way still ends in a standstill.
        for (int axis : {0, 1})
            setRamp(each, axis, shippedRamp());
        setTarget(each, 1, 5000);
        each.advanceTo(observer.time() + 500 * msInNs);
        for (int axis : {0, 1})
            setRamp(each, axis, settings);
        each.advanceTo(observer.time() + 30 * 86400000LL * msInNs);
        QVERIFY(!each.isMoving());
    }
}

void ChipMotionTest::positionsSaturateAtTheEnds()
{
    setRamp(*chip, 0, ramp(100000, 1000000, 1000000));
    setRamp(*chip, 1, ramp(intMax, intMax, intMax));
    setTargets(*chip, maximumPosition, minimumPosition);
    chip->advanceTo(200000 * msInNs);
    QCOMPARE(chip->position(0), maximumPosition);
    QCOMPARE(chip->position(1), minimumPosition);

    // Braking from high speed with a low rate leads beyond the end, and back.
    setTarget(*chip, 0, maximumPosition - 200000);
    chip->advanceTo(210000 * msInNs);
    setTarget(*chip, 0, maximumPosition);
    chip->advanceTo(210800 * msInNs);
    QVERIFY(chip->position(0) < maximumPosition);
    writeByName(*chip, QStringLiteral("M0_DMAX"), 20000);
    int highest = 0;
    for (int ms = 210800; ms < 230000; ++ms) {
        chip->advanceTo(ms * msInNs);
        QVERIFY(chip->position(0) >= highest || chip->position(0) > maximumPosition - 100000);
        highest = std::max(highest, chip->position(0));
    }
    QCOMPARE(highest, maximumPosition);
    QCOMPARE(chip->position(0), maximumPosition);
    QVERIFY(!chip->isMoving());
}

QTEST_GUILESS_MAIN(ChipMotionTest)
#include "tst_chip_motion.moc"
