#include "HeadlessPlatform.h"
#include "PollRig.h"

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
    PollRig rig;
    rig.start();
    rig.sample(100, 100);
    rig.takeCalls();
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), QStringList());
    QVERIFY(!rig.startButton()->isEnabled());
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), velocityReads);
    QVERIFY(rig.startButton()->isEnabled());
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
    PollRig rig;
    rig.start();
    rig.setVelocities(axis0, axis1);
    for (int i = 0; i < 2; ++i) {
        rig.updateTick();
        QCOMPARE(rig.startButton()->isEnabled(), hasEnded);
        QCOMPARE(rig.timerIntervals(), hasEnded ? QList<int>{100} : QList<int>({0, 50}));
    }
    rig.setVelocities(0, 0);
    rig.updateTick();
    QVERIFY(rig.startButton()->isEnabled());
}

void ToolMoveEndTest::velocitiesAreReadForMotorZero()
{
    for (int motor : {0, 1, 200}) {
        PollRig rig(static_cast<unsigned char>(motor));
        rig.start();
        rig.updateTick();
        QCOMPARE(rig.takeCalls(), velocityReads);
    }
}

void ToolMoveEndTest::theEndOfAMoveGoesBackToSlowPolling()
{
    PollRig rig;
    rig.start();
    rig.updateTick();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(rig.tool()).at(0).timerType,
             Qt::PreciseTimer);
    rig.takeCalls();
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), QStringList());
}

void ToolMoveEndTest::aMoveToWhereTheAxesStandEndsAtOnce()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.updateTick();
    rig.start();
    rig.sample(0, 0);
    rig.sample(0, 0);
    rig.takeCalls();
    QVERIFY(rig.deliverTimer(50));
    QCOMPARE(rig.takeCalls(), velocityReads);
    QVERIFY(rig.startButton()->isEnabled());
}

void ToolMoveEndTest::aFailedReadNeverEndsAMove()
{
    PollRig rig;
    rig.start();
    rig.link.failReads = true;
    for (int i = 0; i < 3; ++i)
        rig.updateTick();
    QVERIFY(!rig.startButton()->isEnabled());
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
    rig.link.failReads = false;
    rig.updateTick();
    QVERIFY(rig.startButton()->isEnabled());
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
    RigGaps gaps;
    gaps.registers.insert(name);
    PollRig never(0, gaps);
    PollRig noMore;
    delete noMore.module()->getIcProduct(0)->getRegisterByName(name, true);
    for (PollRig *rig : {&never, &noMore}) {
        rig->start();
        rig->updateTick();
        QCOMPARE(rig->takeCalls().size(), 1);
        QVERIFY(!rig->startButton()->isEnabled());
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
    RigGaps gaps;
    gaps.hasChip = false;
    gaps.hasModule = hasModule;
    PollRig rig(0, gaps);
    rig.setTarget({30, 40});
    rig.start();
    if (hasModule) {
        // A module without a chip answers all the same, and what it answers is drawn first.
        rig.sample(5, 6);
        rig.updateTick();
        QVERIFY(!rig.startButton()->isEnabled());
    }
    rig.takeCalls();
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), QStringList());
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
}

void ToolMoveEndTest::aPathWithoutAChipRunsThrough()
{
    RigGaps gaps;
    gaps.hasModule = false;
    PollRig rig(0, gaps);
    rig.runAction()->trigger();
    for (int i = 0; i < 12; ++i) {
        QCOMPARE(rig.flightIndex(), i);
        rig.updateTick();
    }
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.flightIndex(), 11);
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
    PollRig rig;
    rig.setTarget({30, 40});
    rig.start();
    rig.startButton()->setProperty("RunFp", index);
    rig.updateTick();
    rig.updateTick();
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.flightIndex(), index);
    QCOMPARE(rig.target()->at(0), QPointF(30, 40));
}

void ToolMoveEndTest::anIdleToolReadsNoVelocities()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.updateTick();
    rig.takeCalls();
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), QStringList());
    // A panel that the host disables as a whole is no move either.
    rig.tool()->setEnabled(false);
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), QStringList());
}

void ToolMoveEndTest::aFlightPathRunsToItsEnd()
{
    PollRig rig;
    rig.tool()->showPlugin();
    QVERIFY(rig.runAction());
    rig.runAction()->trigger();
    const QVector<QPointF> path{{0, 0},    {0, 1025},    {1025, 1025}, {0, 0},
                                {1025, 0}, {1025, 1025}, {512, 1800},  {0, 1025},
                                {1025, 0}, {1125, -200}, {-100, -200}, {0, 0}};
    for (int i = 0; i < path.size(); ++i) {
        QCOMPARE(rig.flightIndex(), i);
        QCOMPARE(rig.target()->at(0), path.at(i));
        QVERIFY(!rig.startButton()->isEnabled());
        QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
        QCOMPARE(rig.registerValue(QStringLiteral("M0_XTARGET")), int(path.at(i).x()) & 0xFFFFFF);
        QCOMPARE(rig.registerValue(QStringLiteral("M1_XTARGET")), int(path.at(i).y()) & 0xFFFFFF);
        rig.arrive();
    }
    QCOMPARE(rig.flightIndex(), path.size() - 1);
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    rig.takeCalls();
    rig.updateTick();
    rig.updateTick();
    QCOMPARE(rig.takeWrites().filter(QStringLiteral("RAMPMODE")), QStringList());
}

void ToolMoveEndTest::stopEndsARun()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.runAction()->trigger();
    rig.arrive();
    QCOMPARE(rig.flightIndex(), 1);
    rig.sample(0, 300);
    rig.updateTick();
    rig.call("on_pbStop_clicked");
    QCOMPARE(rig.flightIndex(), 12);
    rig.takeCalls();
    rig.updateTick();
    rig.updateTick();
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.target()->at(0), QPointF(0, 300));
    QCOMPARE(rig.flightIndex(), 12);
    QCOMPARE(rig.takeWrites().filter(QStringLiteral("RAMPMODE")), QStringList());
}

void ToolMoveEndTest::aDisabledToolGoesOnWithItsRunWhenEnabled()
{
    PollRig rig;
    rig.show();
    rig.startButton()->menu()->actions().constFirst()->trigger();
    rig.updateTick();
    QCOMPARE(rig.flightIndex(), 1);
    auto *panel = static_cast<QWidget *>(rig.tool());
    panel->QWidget::setEnabled(false);
    for (int i = 0; i < 3; ++i) {
        rig.updateTick();
        QCOMPARE(rig.flightIndex(), 1);
        QCOMPARE(rig.timerIntervals(), (QList<int>{0, 50}));
    }
    panel->QWidget::setEnabled(true);
    rig.updateTick();
    QCOMPARE(rig.flightIndex(), 2);
    QCOMPARE(rig.timerIntervals(), (QList<int>{0, 50}));
}

void ToolMoveEndTest::aLaterStartDoesNotResumeARun()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.runAction()->trigger();
    for (int i = 0; i < 12; ++i)
        rig.arrive();
    rig.setTarget(QPointF(40, 40));
    rig.startButton()->click();
    rig.arrive();
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.target()->at(0), QPointF(40, 40));
    QCOMPARE(rig.flightIndex(), 11);
}

void ToolMoveEndTest::theToolMayGoInAnyRequestThatEndsAMove()
{
    // The end of one move is the start of the next of a flight path.
    int survivedAfter = 0;
    for (int last = 1; survivedAfter == 0; ++last) {
        PollRig rig;
        rig.tool()->showPlugin();
        rig.updateTick();
        rig.runAction()->trigger();
        int count = 0;
        rig.link.onRequest = [&] {
            if (++count == last)
                rig.deleteTool();
        };
        rig.updateTick();
        if (rig.tool()) {
            survivedAfter = last - 1;
            QCOMPARE(rig.flightIndex(), 1);
        } else {
            QCOMPARE(count, last);
        }
    }
    QVERIFY(survivedAfter >= 13);
}

QTEST_MAIN(ToolMoveEndTest)
#include "tst_tool_move_end.moc"
