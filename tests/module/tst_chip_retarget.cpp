#include "ChipCommands.h"
#include "MotionObserver.h"
#include "ShippedChip.h"

#include <QRandomGenerator>
#include <QtTest>

#include <memory>

using namespace workbench;

class ChipRetargetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void retargetedPairTurnsWithoutAJump_data();
    void retargetedPairTurnsWithoutAJump();
    void furtherTargetOnTheLineKeepsThePairOnIt();
    void sameValuesWrittenAgainChangeNothing();
    void lowDecelerationNextToHighOnesDoesNotDelayATurn();
    void maximumVelocityOfZeroHaltsThePairOnItsLine();
    void targetOffTheLineDoesNotTurnAPairThatMayNotMove();
    void loweredMaximumVelocityIsReachedByBraking();
    void modeChangeDuringAMoveIsWithoutAJump();
    void randomCommandsNeverBreakARule_data();
    void randomCommandsNeverBreakARule();

private:
    std::optional<ChipDescription> description;
    std::unique_ptr<SimulatedChip> chip;
};

void ChipRetargetTest::initTestCase()
{
    description = readShippedChip();
    QVERIFY(description);
}

void ChipRetargetTest::init()
{
    chip = std::make_unique<SimulatedChip>(*description);
}

void ChipRetargetTest::retargetedPairTurnsWithoutAJump_data()
{
    QTest::addColumn<int>("target0");
    QTest::addColumn<int>("target1");
    QTest::newRow("further on the line") << 4000 << 2000;
    QTest::newRow("half-way back") << 500 << 250;
    QTest::newRow("back to the start") << 0 << 0;
    QTest::newRow("beyond the start") << -3000 << -1500;
    QTest::newRow("across") << -1000 << 2000;
    QTest::newRow("slightly off") << 2000 << 1003;
    QTest::newRow("one axis stays") << 2000 << -3000;
}

void ChipRetargetTest::retargetedPairTurnsWithoutAJump()
{
    QFETCH(int, target0);
    QFETCH(int, target1);
    for (qint64 ms = 0; ms < 1700; ms += 29) {
        SimulatedChip each(*description);
        startLinked(each, 2000, 1000);
        MotionObserver observer(each);
        observer.run(double(ms) * 1e-3);
        setTarget(each, 0, target0);
        QCOMPARE(readByName(each, QStringLiteral("M0_VACTUAL")), observer.velocities()[0]);
        QCOMPARE(each.position(0), observer.positions()[0]);
        observer.step(msInNs / 2);
        setTarget(each, 1, target1);
        QVERIFY2(observer.runToStandstill(15), qPrintable(QString::number(ms)));
        QCOMPARE(observer.positions(), (Positions{target0, target1}));
        observer.run(1, 50 * msInNs);
        QCOMPARE(observer.positions(), (Positions{target0, target1}));
        QCOMPARE(observer.violation(), QString());
    }
}

void ChipRetargetTest::furtherTargetOnTheLineKeepsThePairOnIt()
{
    startLinked(*chip, 2000, 0);
    MotionObserver observer(*chip);
    observer.run(0.8);
    const int before = observer.velocities()[0];
    setTarget(*chip, 0, 6000);
    observer.run(0.1);
    QVERIFY(observer.velocities()[0] >= before);
    QVERIFY(observer.runToStandstill(10));
    QCOMPARE(observer.positions(), (Positions{6000, 0}));
    QCOMPARE(observer.highestSpeeds()[1], 0);
    // As if it had been the target from the start: 6000 take a little under 3.6 s.
    SimulatedChip direct(*description);
    startLinked(direct, 6000, 0);
    MotionObserver other(direct);
    QVERIFY(other.runToStandstill(10));
    QVERIFY(observer.time() - other.time() <= 2 * msInNs);
}

void ChipRetargetTest::sameValuesWrittenAgainChangeNothing()
{
    SimulatedChip undisturbed(*description);
    for (SimulatedChip *each : {chip.get(), &undisturbed})
        startLinked(*each, 1999, 777);
    for (int ms = 1; ms < 2500; ++ms) {
        for (SimulatedChip *each : {chip.get(), &undisturbed})
            each->advanceTo(ms * msInNs);
        setTargets(*chip, 1999, 777);
        QCOMPARE(chip->position(0), undisturbed.position(0));
        QCOMPARE(chip->position(1), undisturbed.position(1));
    }
}

void ChipRetargetTest::lowDecelerationNextToHighOnesDoesNotDelayATurn()
{
    const RampSettings slowStart = RampSettings{20000, 40000, 40000, 10, 20, 20, 0, 0, 0};
    setRamp(*chip, 0, slowStart);
    setRamp(*chip, 1, slowStart);
    startLinked(*chip, 30000, 30000);
    MotionObserver observer(*chip);
    observer.run(1.2);
    setTargets(*chip, 20000, 40000);
    QVERIFY(observer.runToStandstill(8));
    QCOMPARE(observer.positions(), (Positions{20000, 40000}));
    QCOMPARE(observer.violation(), QString());
}

void ChipRetargetTest::maximumVelocityOfZeroHaltsThePairOnItsLine()
{
    for (int axis : {0, 1}) {
        SimulatedChip each(*description);
        startLinked(each, 2000, 900);
        MotionObserver observer(each);
        observer.run(0.6);
        writeByName(each, axisRegister(axis, "VMAX"), 0);
        while (each.isMoving()) {
            observer.step(msInNs);
            QVERIFY(distanceFromLine(observer.positions(), 2000, 900) <= 1);
            QVERIFY(observer.time() < 5000 * msInNs);
        }
        QCOMPARE(observer.lastMoving()[0], observer.lastMoving()[1]);
        const auto halted = observer.positions();
        QVERIFY(halted[0] > 100 && halted[0] < 2000);
        observer.run(1, 10 * msInNs);
        QCOMPARE(observer.positions(), halted);

        writeByName(each, axisRegister(axis, "VMAX"), 2000);
        QVERIFY(observer.runToStandstill(10));
        QCOMPARE(observer.positions(), (Positions{2000, 900}));
        QCOMPARE(observer.violation(), QString());
    }
}

void ChipRetargetTest::targetOffTheLineDoesNotTurnAPairThatMayNotMove()
{
    for (int axis : {0, 1}) {
        SimulatedChip each(*description);
        startLinked(each, 2000, 900);
        MotionObserver observer(each);
        observer.run(0.6);
        writeByName(each, axisRegister(axis, "VMAX"), 0);
        setTargets(each, -500, 700);
        do {
            observer.step(msInNs);
            QVERIFY(distanceFromLine(observer.positions(), 2000, 900) <= 1);
        } while (each.isMoving() && observer.time() < 5000 * msInNs);
        const auto halted = observer.positions();
        QVERIFY(halted[0] > 100);
        observer.run(1, 10 * msInNs);
        QCOMPARE(observer.positions(), halted);
        QCOMPARE(observer.violation(), QString());
    }
}

void ChipRetargetTest::loweredMaximumVelocityIsReachedByBraking()
{
    startLinked(*chip, 5000, 2500);
    MotionObserver observer(*chip);
    observer.run(1);
    QCOMPARE(observer.velocities()[0], 2000);
    writeByName(*chip, QStringLiteral("M0_VMAX"), 500);
    observer.run(0.6);
    QCOMPARE(observer.velocities(), (Positions{500, 250}));
    QVERIFY(distanceFromLine(observer.positions(), 2, 1) <= 1);
    QVERIFY(observer.runToStandstill(20));
    QCOMPARE(observer.positions(), (Positions{5000, 2500}));
    QCOMPARE(observer.violation(), QString());
}

void ChipRetargetTest::modeChangeDuringAMoveIsWithoutAJump()
{
    startLinked(*chip, 5000, -2500);
    MotionObserver observer(*chip);
    observer.run(0.7);
    setMode(*chip, 0);
    observer.run(0.4);
    setMode(*chip, linkedMode);
    observer.run(0.3);
    setMode(*chip, 5);
    QVERIFY(observer.runToStandstill(5));
    QVERIFY(observer.positions() != (Positions{5000, -2500}));
    setMode(*chip, linkedMode);
    QVERIFY(observer.runToStandstill(10));
    QCOMPARE(observer.positions(), (Positions{5000, -2500}));
    QCOMPARE(observer.violation(), QString());
}

void ChipRetargetTest::randomCommandsNeverBreakARule_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 40; ++seed)
        QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << seed;
}

void ChipRetargetTest::randomCommandsNeverBreakARule()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const auto target = [&random] { return random.bounded(-20000, 20001); };
    const auto rate = [&random] { return random.bounded(5000, 60000); };
    const auto speed = [&random] { return random.bounded(500, 20000); };
    for (int axis : {0, 1})
        setRamp(*chip, axis,
                RampSettings{speed(), rate(), rate(), random.bounded(0, 5000), rate(), rate(),
                             random.bounded(0, 15000), rate(), rate()});
    startLinked(*chip, target(), target());
    MotionObserver observer(*chip);
    for (int i = 0; i < 40; ++i) {
        observer.run(random.generateDouble() * 0.5, msInNs / 2);
        const int axis = random.bounded(2);
        switch (random.bounded(6)) {
        case 0:
            setMode(*chip, random.bounded(2) == 0 ? 0 : linkedMode);
            break;
        case 1:
            writeByName(*chip, axisRegister(axis, "VMAX"), random.bounded(2) == 0 ? 0 : speed());
            break;
        default:
            setTarget(*chip, axis, target());
        }
    }
    for (int axis : {0, 1})
        writeByName(*chip, axisRegister(axis, "VMAX"), speed());
    setMode(*chip, linkedMode);
    setTargets(*chip, 111, -222);
    QVERIFY(observer.runToStandstill(300));
    QCOMPARE(observer.positions(), (Positions{111, -222}));
    QCOMPARE(observer.violation(), QString());
}

QTEST_GUILESS_MAIN(ChipRetargetTest)
#include "tst_chip_retarget.moc"
