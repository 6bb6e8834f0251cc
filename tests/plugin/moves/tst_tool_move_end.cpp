#include "HeadlessPlatform.h"
#include "PollBench.h"

#include "XmlProductIC.h"
#include "XmlValueRegister.h"

#include <QTest>

#include <limits>

namespace {

const QStringList velocityReads{QStringLiteral("read M0_VACTUAL m0"),
                                QStringLiteral("read M1_VACTUAL m0")};

} // namespace

class ToolMoveEndTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void drawingPutsOffTheEndOfTheMove();
    void aMoveEndsWhenBothAxesStand_data();
    void aMoveEndsWhenBothAxesStand();
    void velocitiesAreReadForMotorZero();
    void theEndOfAMoveGoesBackToSlowPolling();
    void aMoveToWhereTheAxesStandEndsAtOnce();
    void aFailedReadNeverEndsAMove();
    void aMissingVelocityNeverEndsAMove_data();
    void aMissingVelocityNeverEndsAMove();
    void aMoveWithoutAChipEndsAtTheNextTick_data();
    void aMoveWithoutAChipEndsAtTheNextTick();
    void aPathWithoutAChipRunsThrough();
    void anOddPointOfAPathIsNotDrivenTo_data();
    void anOddPointOfAPathIsNotDrivenTo();
    void anIdleToolReadsNoVelocities();
    void aFlightPathRunsToItsEnd();
    void stopEndsARun();
    void aDisabledToolGoesOnWithItsRunWhenEnabled();
    void aLaterStartDoesNotResumeARun();
    void theToolMayGoInAnyRequestThatEndsAMove();
};

void ToolMoveEndTest::drawingPutsOffTheEndOfTheMove()
{
    PollBench bench;
    bench.start();
    bench.sample(100, 100);
    bench.takeCalls();
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), QStringList());
    QVERIFY(!bench.startButton()->isEnabled());
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), velocityReads);
    QVERIFY(bench.startButton()->isEnabled());
}

void ToolMoveEndTest::aMoveEndsWhenBothAxesStand_data()
{
    QTest::addColumn<int>("axis0");
    QTest::addColumn<int>("axis1");
    QTest::addColumn<bool>("hasEnded");
    QTest::newRow("both stand") << 0 << 0 << true;
    QTest::newRow("axis 0 moves") << 1 << 0 << false;
    QTest::newRow("axis 1 moves") << 0 << 1 << false;
    QTest::newRow("both move") << -1 << 50000 << false;
    QTest::newRow("against each other") << -7 << 7 << false;
}

void ToolMoveEndTest::aMoveEndsWhenBothAxesStand()
{
    QFETCH(int, axis0);
    QFETCH(int, axis1);
    QFETCH(bool, hasEnded);
    PollBench bench;
    bench.start();
    bench.setVelocities(axis0, axis1);
    for (int i = 0; i < 2; ++i) {
        bench.updateTick();
        QCOMPARE(bench.startButton()->isEnabled(), hasEnded);
        QCOMPARE(bench.timerIntervals(), hasEnded ? QList<int>{100} : QList<int>({0, 50}));
    }
    bench.setVelocities(0, 0);
    bench.updateTick();
    QVERIFY(bench.startButton()->isEnabled());
}

void ToolMoveEndTest::velocitiesAreReadForMotorZero()
{
    for (int motor : {0, 1, 200}) {
        PollBench bench(static_cast<unsigned char>(motor));
        bench.start();
        bench.updateTick();
        QCOMPARE(bench.takeCalls(), velocityReads);
    }
}

void ToolMoveEndTest::theEndOfAMoveGoesBackToSlowPolling()
{
    PollBench bench;
    bench.start();
    bench.updateTick();
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(bench.tool()).at(0).timerType,
             Qt::PreciseTimer);
    bench.takeCalls();
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), QStringList());
}

void ToolMoveEndTest::aMoveToWhereTheAxesStandEndsAtOnce()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.updateTick();
    bench.start();
    bench.sample(0, 0);
    bench.sample(0, 0);
    bench.takeCalls();
    QVERIFY(bench.deliverTimer(50));
    QCOMPARE(bench.takeCalls(), velocityReads);
    QVERIFY(bench.startButton()->isEnabled());
}

void ToolMoveEndTest::aFailedReadNeverEndsAMove()
{
    PollBench bench;
    bench.start();
    bench.link.failReads = true;
    for (int i = 0; i < 3; ++i)
        bench.updateTick();
    QVERIFY(!bench.startButton()->isEnabled());
    QCOMPARE(bench.timerIntervals(), QList<int>({0, 50}));
    bench.link.failReads = false;
    bench.updateTick();
    QVERIFY(bench.startButton()->isEnabled());
}

void ToolMoveEndTest::aMissingVelocityNeverEndsAMove_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("axis 0") << QStringLiteral("M0_VACTUAL");
    QTest::newRow("axis 1") << QStringLiteral("M1_VACTUAL");
}

void ToolMoveEndTest::aMissingVelocityNeverEndsAMove()
{
    QFETCH(QString, name);
    BenchGaps gaps;
    gaps.registers.insert(name);
    PollBench never(0, gaps);
    PollBench noMore;
    delete noMore.module()->getIcProduct(0)->getRegisterByName(name, true);
    for (PollBench *bench : {&never, &noMore}) {
        bench->start();
        bench->updateTick();
        QCOMPARE(bench->takeCalls().size(), 1);
        QVERIFY(!bench->startButton()->isEnabled());
    }
}

void ToolMoveEndTest::aMoveWithoutAChipEndsAtTheNextTick_data()
{
    QTest::addColumn<bool>("hasModule");
    QTest::newRow("no chip") << true;
    QTest::newRow("no module") << false;
}

/// There is no velocity to wait for.
void ToolMoveEndTest::aMoveWithoutAChipEndsAtTheNextTick()
{
    QFETCH(bool, hasModule);
    BenchGaps gaps;
    gaps.hasChip = false;
    gaps.hasModule = hasModule;
    PollBench bench(0, gaps);
    bench.setTarget({30, 40});
    bench.start();
    if (hasModule) {
        // A module without a chip answers all the same, and what it answers is drawn first.
        bench.sample(5, 6);
        bench.updateTick();
        QVERIFY(!bench.startButton()->isEnabled());
    }
    bench.takeCalls();
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), QStringList());
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
}

void ToolMoveEndTest::aPathWithoutAChipRunsThrough()
{
    BenchGaps gaps;
    gaps.hasModule = false;
    PollBench bench(0, gaps);
    bench.runAction()->trigger();
    for (int i = 0; i < 12; ++i) {
        QCOMPARE(bench.flightIndex(), i);
        bench.updateTick();
    }
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.flightIndex(), 11);
}

void ToolMoveEndTest::anOddPointOfAPathIsNotDrivenTo_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("below the first") << -5;
    QTest::newRow("the largest number") << std::numeric_limits<int>::max();
}

/// A host can write into the property.
void ToolMoveEndTest::anOddPointOfAPathIsNotDrivenTo()
{
    QFETCH(int, index);
    PollBench bench;
    bench.setTarget({30, 40});
    bench.start();
    bench.startButton()->setProperty("RunFp", index);
    bench.updateTick();
    bench.updateTick();
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.flightIndex(), index);
    QCOMPARE(bench.target()->at(0), QPointF(30, 40));
}

void ToolMoveEndTest::anIdleToolReadsNoVelocities()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.updateTick();
    bench.takeCalls();
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), QStringList());
    // A panel that the host disables as a whole is no move either.
    bench.tool()->setEnabled(false);
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), QStringList());
}

void ToolMoveEndTest::aFlightPathRunsToItsEnd()
{
    PollBench bench;
    bench.tool()->showPlugin();
    QVERIFY(bench.runAction());
    bench.runAction()->trigger();
    const QVector<QPointF> path{{0, 0},    {0, 1025},    {1025, 1025}, {0, 0},
                                {1025, 0}, {1025, 1025}, {512, 1800},  {0, 1025},
                                {1025, 0}, {1125, -200}, {-100, -200}, {0, 0}};
    for (int i = 0; i < path.size(); ++i) {
        QCOMPARE(bench.flightIndex(), i);
        QCOMPARE(bench.target()->at(0), path.at(i));
        QVERIFY(!bench.startButton()->isEnabled());
        QCOMPARE(bench.timerIntervals(), QList<int>({0, 50}));
        QCOMPARE(bench.registerValue(QStringLiteral("M0_XTARGET")), int(path.at(i).x()) & 0xFFFFFF);
        QCOMPARE(bench.registerValue(QStringLiteral("M1_XTARGET")), int(path.at(i).y()) & 0xFFFFFF);
        bench.arrive();
    }
    QCOMPARE(bench.flightIndex(), path.size() - 1);
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    bench.takeCalls();
    bench.updateTick();
    bench.updateTick();
    QCOMPARE(bench.takeWrites().filter(QStringLiteral("RAMPMODE")), QStringList());
}

void ToolMoveEndTest::stopEndsARun()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.runAction()->trigger();
    bench.arrive();
    QCOMPARE(bench.flightIndex(), 1);
    bench.sample(0, 300);
    bench.updateTick();
    bench.call("on_pbStop_clicked");
    QCOMPARE(bench.flightIndex(), 12);
    bench.takeCalls();
    bench.updateTick();
    bench.updateTick();
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.target()->at(0), QPointF(0, 300));
    QCOMPARE(bench.flightIndex(), 12);
    QCOMPARE(bench.takeWrites().filter(QStringLiteral("RAMPMODE")), QStringList());
}

void ToolMoveEndTest::aDisabledToolGoesOnWithItsRunWhenEnabled()
{
    PollBench bench;
    bench.show();
    bench.startButton()->menu()->actions().constFirst()->trigger();
    bench.updateTick();
    QCOMPARE(bench.flightIndex(), 1);
    auto *panel = static_cast<QWidget *>(bench.tool());
    panel->QWidget::setEnabled(false);
    for (int i = 0; i < 3; ++i) {
        bench.updateTick();
        QCOMPARE(bench.flightIndex(), 1);
        QCOMPARE(bench.timerIntervals(), (QList<int>{0, 50}));
    }
    panel->QWidget::setEnabled(true);
    bench.updateTick();
    QCOMPARE(bench.flightIndex(), 2);
    QCOMPARE(bench.timerIntervals(), (QList<int>{0, 50}));
}

void ToolMoveEndTest::aLaterStartDoesNotResumeARun()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.runAction()->trigger();
    for (int i = 0; i < 12; ++i)
        bench.arrive();
    bench.setTarget(QPointF(40, 40));
    bench.startButton()->click();
    bench.arrive();
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.target()->at(0), QPointF(40, 40));
    QCOMPARE(bench.flightIndex(), 11);
}

void ToolMoveEndTest::theToolMayGoInAnyRequestThatEndsAMove()
{
    // The end of one move is the start of the next of a flight path.
    int survivedAfter = 0;
    for (int last = 1; survivedAfter == 0; ++last) {
        PollBench bench;
        bench.tool()->showPlugin();
        bench.updateTick();
        bench.runAction()->trigger();
        int count = 0;
        bench.link.onRequest = [&] {
            if (++count == last)
                bench.deleteTool();
        };
        bench.updateTick();
        if (bench.tool()) {
            survivedAfter = last - 1;
            QCOMPARE(bench.flightIndex(), 1);
        } else {
            QCOMPARE(count, last);
        }
    }
    QVERIFY(survivedAfter >= 13);
}

QTEST_MAIN(ToolMoveEndTest)
#include "tst_tool_move_end.moc"
