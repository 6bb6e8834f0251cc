#include "FaultStates.h"
#include "HeadlessPlatform.h"

#include <QDialog>
#include <QTest>
#include <QtCharts/QLineSeries>

using workbench::FaultKind;

class FaultOutcomesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }

    void failedVelocityReadsDoNotEndAMove();

    // What the design makes of a fault, though nobody would wish for it.
    void failedPositionRequestShowsTheRequestItself();
    void stopAfterAFailedPositionRequestDrivesToWhatIsShown();
    void startThatCannotReadTheVelocitiesLeavesThemAtZeroAndTheMarkSaysSo();
    void moveWhoseRegistersAreDeletedNeverEnds();
    void movesWithoutTargetWidgetsGoToTheOldTarget();
    void longerFlightPathLoadedAfterARunIsDrivenBehindTheNextMove();
};

void FaultOutcomesTest::failedVelocityReadsDoNotEndAMove()
{
    FaultRig rig;
    enter(rig, Moving);
    rig.faulty.switchOn(workbench::presetFault(FaultKind::FailReads));
    rig.rounds(200);
    QCOMPARE(rig.chipPosition(), firstTarget.toPoint());
    QVERIFY(!rig.isIdle());
    QCOMPARE(rig.timerIntervals(), (QList<int>{0, 50}));
    rig.faulty.switchOffAll();
    rig.rounds(1);
    QVERIFY(rig.isIdle());
}

void FaultOutcomesTest::failedPositionRequestShowsTheRequestItself()
{
    FaultRig rig;
    enter(rig, Moving);
    rig.faulty.switchOn(workbench::presetFault(FaultKind::FailUser));
    rig.round();
    // The bytes sent, 00 and 48, and no reply value: 0x004800 and 0.
    QCOMPARE(rig.actual(), QPointF(18432, 0));
    rig.faulty.switchOffAll();
    rig.round();
    QCOMPARE(rig.actual(), QPointF(rig.chipPosition()));
}

void FaultOutcomesTest::stopAfterAFailedPositionRequestDrivesToWhatIsShown()
{
    FaultRig rig;
    enter(rig, Moving);
    rig.faulty.switchOn(workbench::presetFault(FaultKind::FailUser));
    rig.round();
    rig.pressStop();
    QCOMPARE(rig.chipValue("M0_XTARGET"), 18432);
    QCOMPARE(rig.chipValue("M1_XTARGET"), 0);
    rig.faulty.switchOffAll();
    // Once positions arrive again, Stop once more halts the axes where they are.
    rig.round();
    const QPointF here = rig.actual();
    QVERIFY(here.x() < firstTarget.x());
    rig.pressStop();
    QCOMPARE(QPoint(rig.chipValue("M0_XTARGET"), rig.chipValue("M1_XTARGET")), here.toPoint());
    QVERIFY(rig.settle());
    QCOMPARE(rig.chipPosition(), here.toPoint());
}

void FaultOutcomesTest::startThatCannotReadTheVelocitiesLeavesThemAtZeroAndTheMarkSaysSo()
{
    FaultRig rig;
    enter(rig, Picked);
    rig.faulty.switchOn(workbench::presetFault(FaultKind::FailReads));
    rig.pressStart();
    rig.faulty.switchOffAll();
    QVERIFY(rig.settle());
    QCOMPARE(rig.chipPosition(), QPoint(0, 0));
    QCOMPARE(rig.chipValue("M0_VMAX"), 0);
    QCOMPARE(rig.chipValue("M1_VMAX"), 0);
    rig.tool()->showPlugin();
    const auto *mark = rig.widget<QWidget>("btnShowPosition");
    QCOMPARE(mark->toolTip(), QStringLiteral("Zero settings:\n\nM0_VMAX\n\nM1_VMAX"));
    rig.pressStart();
    QVERIFY(rig.settle());
    QCOMPARE(rig.chipPosition(), QPoint(0, 0));
    rig.repairRamps();
    QCOMPARE(mark->toolTip(), QString());
    verifyMove(rig, lastTarget);
}

void FaultOutcomesTest::moveWhoseRegistersAreDeletedNeverEnds()
{
    FaultRig rig;
    enter(rig, Moving);
    rig.faulty.switchOn(workbench::presetFault(FaultKind::DeleteRegisters));
    rig.rounds(200);
    QCOMPARE(rig.chipPosition(), firstTarget.toPoint());
    rig.pressStop();
    QVERIFY(rig.chipComesToRest());
    rig.rounds(200);
    QVERIFY(!rig.isIdle());
    QCOMPARE(rig.actual(), firstTarget);
}

void FaultOutcomesTest::movesWithoutTargetWidgetsGoToTheOldTarget()
{
    FaultRig rig;
    enter(rig, Moving);
    rig.faulty.switchOn(workbench::presetFault(FaultKind::DeleteWidgets));
    rig.pressStop();
    QVERIFY(rig.settle());
    QCOMPARE(rig.chipPosition(), firstTarget.toPoint());
    rig.pick(secondTarget);
    rig.pressStart();
    QVERIFY(rig.settle());
    QCOMPARE(rig.chipPosition(), firstTarget.toPoint());
}

void FaultOutcomesTest::longerFlightPathLoadedAfterARunIsDrivenBehindTheNextMove()
{
    FaultRig rig;
    enter(rig, Idle);
    rig.runFlightPath();
    for (int i = 0; i < 2000 && !(rig.isIdle() && rig.flightIndex() == 11); ++i)
        rig.round();
    QCOMPARE(rig.flightIndex(), 11);
    QVERIFY(rig.settle());
    // As a file with 13 points would, by the preview that the dialog takes over.
    QVERIFY(rig.inDialog(
        [](QDialog *dialog) {
            auto *view = dialog->findChild<QtCharts::QChartView *>();
            auto *path = qobject_cast<QtCharts::QLineSeries *>(view->chart()->series().value(0));
            path->append(300, 400);
        },
        true));
    rig.pathLength = 13;
    const int before = rig.starts();
    rig.pick(firstTarget);
    rig.pressStart();
    for (int i = 0; i < 2000 && rig.flightIndex() == 11; ++i)
        rig.round();
    QVERIFY(rig.settle());
    QCOMPARE(rig.starts(), before + 2);
    QCOMPARE(rig.chipPosition(), QPoint(300, 400));
}

QTEST_MAIN(FaultOutcomesTest)
#include "tst_fault_outcomes.moc"
