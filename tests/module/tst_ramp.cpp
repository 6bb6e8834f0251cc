#include "Ramp.h"

#include <QtTest>

#include <cmath>

using namespace workbench;

class RampTest : public QObject
{
    Q_OBJECT

private slots:
    void moveFromStandstillTakesTheClosedFormTime_data();
    void moveFromStandstillTakesTheClosedFormTime();
    void stagedMoveChangesItsAccelerationAtTheStageVelocities();
    void stageOfVelocityZeroIsSkipped();
    void secondStageBelowTheFirstIsSkipped();
    void stageBeyondTheMaximumVelocityEndsThere();
    void tooFastMoveOvershootsAndComesBack();
    void moveAgainstTheDirectionBrakesFirst();
    void aboveTheMaximumVelocityTheMoveBrakesToItFirst();
    void missingDecelerationIsReplacedByTheAcceleration();
    void withoutAnyRateAMovingAxisStillHalts();
    void withoutAccelerationTheMoveDoesNotBegin();
    void withoutAccelerationARunningMoveCoastsToItsTarget();
    void lineKeepsToTheTighterLimitOfBothAxes();
};

namespace {

RampSettings plainRamp(int vMax, int aMax, int dMax)
{
    RampSettings settings;
    settings.vMax = vMax;
    settings.aMax = aMax;
    settings.dMax = dMax;
    return settings;
}

RampSettings stagedRamp()
{
    RampSettings settings = plainRamp(500, 100, 50);
    settings.v1 = 100;
    settings.a1 = 200;
    settings.d1 = 100;
    settings.v2 = 300;
    settings.a2 = 400;
    settings.d2 = 200;
    return settings;
}

bool near(double value, double expected)
{
    return std::abs(value - expected) < 1e-6;
}

void compareEnd(const PlannedMove &move, double distance, double seconds)
{
    QVERIFY(move.arrives);
    QVERIFY2(near(move.profile.endPosition(), distance),
             qPrintable(QString::number(move.profile.endPosition())));
    QVERIFY2(near(move.profile.duration(), seconds),
             qPrintable(QString::number(move.profile.duration())));
    QCOMPARE(move.profile.at(seconds + 1).speed, 0.0);
}

} // namespace

void RampTest::moveFromStandstillTakesTheClosedFormTime_data()
{
    QTest::addColumn<int>("vMax");
    QTest::addColumn<int>("aMax");
    QTest::addColumn<int>("dMax");
    QTest::addColumn<double>("distance");
    QTest::addColumn<double>("seconds");

    // Triangular: half the way up, half down; 2 sqrt(distance / rate).
    QTest::newRow("triangular") << 1000 << 400 << 400 << 900.0 << 3.0;
    QTest::newRow("triangular, backwards") << 1000 << 400 << 400 << -900.0 << 3.0;
    // Peak 200: 200 up in 2 s, 100 down in 1 s.
    QTest::newRow("triangular, unequal rates") << 1000 << 100 << 200 << 300.0 << 3.0;
    // The peak is the maximum velocity.
    QTest::newRow("just triangular") << 200 << 100 << 200 << 300.0 << 3.0;
    // As above with 700 at 200 between.
    QTest::newRow("trapezoidal") << 200 << 100 << 200 << 1000.0 << 6.5;
    QTest::newRow("trapezoidal, backwards") << 200 << 100 << 200 << -1000.0 << 6.5;
    QTest::newRow("no distance") << 200 << 100 << 200 << 0.0 << 0.0;
    QTest::newRow("one unit") << 200 << 4 << 4 << 1.0 << 1.0;
}

void RampTest::moveFromStandstillTakesTheClosedFormTime()
{
    QFETCH(int, vMax);
    QFETCH(int, aMax);
    QFETCH(int, dMax);
    QFETCH(double, distance);
    QFETCH(double, seconds);
    compareEnd(planMove(axisLimits(plainRamp(vMax, aMax, dMax)), distance, 0), distance, seconds);
}

void RampTest::stagedMoveChangesItsAccelerationAtTheStageVelocities()
{
    // Up: 0.5 s and 25, 0.5 s and 100, 2 s and 800. Down: 4 s and 1600, 1 s and 200, 1 s and 50.
    const double rampDistance = 25 + 100 + 800 + 1600 + 200 + 50;
    const double distance = rampDistance + 3 * 500;
    const PlannedMove move = planMove(axisLimits(stagedRamp()), distance, 0);
    compareEnd(move, distance, 12);

    const double expected[][3] = {{0.25, 6.25, 50}, {0.5, 25, 100},  {1, 125, 300},
                                  {2, 475, 400},    {3, 925, 500},   {6, 2425, 500},
                                  {10, 4025, 300},  {11, 4225, 100}, {11.5, 4262.5, 50}};
    for (const auto &row : expected) {
        const Profile::State state = move.profile.at(row[0]);
        QVERIFY2(near(state.position, row[1]), qPrintable(QString::number(row[0])));
        QVERIFY2(near(state.speed, row[2]), qPrintable(QString::number(row[0])));
    }
}

void RampTest::stageOfVelocityZeroIsSkipped()
{
    RampSettings settings = plainRamp(200, 100, 200);
    settings.a1 = settings.d1 = settings.a2 = settings.d2 = 1;
    compareEnd(planMove(axisLimits(settings), 1000, 0), 1000, 6.5);
    settings.v1 = settings.v2 = -5;
    compareEnd(planMove(axisLimits(settings), 1000, 0), 1000, 6.5);
}

void RampTest::secondStageBelowTheFirstIsSkipped()
{
    RampSettings settings = stagedRamp();
    settings.v2 = 50;
    settings.a2 = settings.d2 = 1;
    // Up: 0.5 s and 25, 4 s and 1200. Down: 8 s and 2400, 1 s and 50.
    compareEnd(planMove(axisLimits(settings), 3675, 0), 3675, 13.5);
}

void RampTest::stageBeyondTheMaximumVelocityEndsThere()
{
    RampSettings settings = stagedRamp();
    settings.vMax = 80;
    // Up at A1 in 0.4 s over 16, down at D1 in 0.8 s over 32, 800 in 10 s.
    compareEnd(planMove(axisLimits(settings), 848, 0), 848, 11.2);
}

void RampTest::tooFastMoveOvershootsAndComesBack()
{
    const PlannedMove move = planMove(axisLimits(plainRamp(1000, 100, 100)), 18, 100);
    // Halts in 1 s at 50; the 32 back take 2 sqrt(32 / 100).
    compareEnd(move, 18, 1 + 2 * std::sqrt(0.32));
    QVERIFY(near(move.profile.at(1).position, 50));
    QVERIFY(near(move.profile.at(0).speed, 100));
}

void RampTest::moveAgainstTheDirectionBrakesFirst()
{
    const PlannedMove move = planMove(axisLimits(plainRamp(1000, 100, 100)), 50, -100);
    compareEnd(move, 50, 1 + 2);
    QVERIFY(near(move.profile.at(1).position, -50));
}

void RampTest::aboveTheMaximumVelocityTheMoveBrakesToItFirst()
{
    // 300 to 100 at 100 covers 400 in 2 s; 100 to 0 covers 50 in 1 s; 550 between.
    const PlannedMove move = planMove(axisLimits(plainRamp(100, 100, 100)), 1000, 300);
    compareEnd(move, 1000, 2 + 5.5 + 1);
    QVERIFY(near(move.profile.at(1).speed, 200));
}

void RampTest::missingDecelerationIsReplacedByTheAcceleration()
{
    compareEnd(planMove(axisLimits(plainRamp(1000, 400, 0)), 900, 0), 900, 3);
    compareEnd(planMove(axisLimits(plainRamp(1000, 400, -7)), 900, 0), 900, 3);
    // Each stage by its own: 100 at A1, not at any deceleration of the other stages.
    RampSettings settings = stagedRamp();
    settings.d1 = 0;
    settings.a1 = 400;
    const Profile halt = planHalt(axisLimits(settings), 100);
    QVERIFY(near(halt.duration(), 0.25));
}

void RampTest::withoutAnyRateAMovingAxisStillHalts()
{
    const Profile halt = planHalt(axisLimits(RampSettings()), 500);
    QVERIFY(halt.duration() > 0);
    QCOMPARE(halt.at(halt.duration()).speed, 0.0);
    QVERIFY(near(halt.endPosition(), 500 * halt.duration() / 2));
}

void RampTest::withoutAccelerationTheMoveDoesNotBegin()
{
    const PlannedMove noRate = planMove(axisLimits(plainRamp(1000, 0, 400)), 900, 0);
    QVERIFY(!noRate.arrives);
    QCOMPARE(noRate.profile.endPosition(), 0.0);
    const PlannedMove noVelocity = planMove(axisLimits(plainRamp(0, 400, 400)), 900, 0);
    QVERIFY(!noVelocity.arrives);
    QCOMPARE(noVelocity.profile.endPosition(), 0.0);
}

void RampTest::withoutAccelerationARunningMoveCoastsToItsTarget()
{
    // 150 at 100, then 50 braking.
    compareEnd(planMove(axisLimits(plainRamp(1000, 0, 100)), 200, 100), 200, 1.5 + 1);
}

void RampTest::lineKeepsToTheTighterLimitOfBothAxes()
{
    const RampLimits slow = limitsAlong(axisLimits(plainRamp(100, 30, 40)), 0.5);
    const RampLimits fast = axisLimits(stagedRamp());
    const RampLimits both = bothLimits(slow, fast);
    QCOMPARE(both.topSpeed, 200.0);
    QCOMPARE(both.accelerationAt(50), 60.0);
    QCOMPARE(both.decelerationAt(50), 80.0);
    QCOMPARE(both.accelerationAt(350), 60.0);
    QCOMPARE(both.decelerationAt(350), 50.0);
    QCOMPARE(both.reachableSpeed(), 200.0);
}

QTEST_GUILESS_MAIN(RampTest)
#include "tst_ramp.moc"
