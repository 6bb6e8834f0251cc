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
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(workbench::presetFault(FaultKind::FailReads));
    bench.rounds(200);
    QCOMPARE(bench.chipPosition(), firstTarget.toPoint());
    QVERIFY(!bench.isIdle());
    QCOMPARE(bench.timerIntervals(), (QList<int>{0, 50}));
    bench.faulty.switchOffAll();
    bench.rounds(1);
    QVERIFY(bench.isIdle());
}

void FaultOutcomesTest::failedPositionRequestShowsTheRequestItself()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(workbench::presetFault(FaultKind::FailUser));
    bench.round();
    // The bytes sent, 00 and 48, and no reply value: 0x004800 and 0.
    QCOMPARE(bench.actual(), QPointF(18432, 0));
    bench.faulty.switchOffAll();
    bench.round();
    QCOMPARE(bench.actual(), QPointF(bench.chipPosition()));
}

void FaultOutcomesTest::stopAfterAFailedPositionRequestDrivesToWhatIsShown()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(workbench::presetFault(FaultKind::FailUser));
    bench.round();
    bench.pressStop();
    QCOMPARE(bench.chipValue("M0_XTARGET"), 18432);
    QCOMPARE(bench.chipValue("M1_XTARGET"), 0);
    bench.faulty.switchOffAll();
    // Once positions arrive again, Stop once more halts the axes where they are.
    bench.round();
    const QPointF here = bench.actual();
    QVERIFY(here.x() < firstTarget.x());
    bench.pressStop();
    QCOMPARE(QPoint(bench.chipValue("M0_XTARGET"), bench.chipValue("M1_XTARGET")), here.toPoint());
    QVERIFY(bench.settle());
    QCOMPARE(bench.chipPosition(), here.toPoint());
}

void FaultOutcomesTest::startThatCannotReadTheVelocitiesLeavesThemAtZeroAndTheMarkSaysSo()
{
    FaultBench bench;
    enter(bench, Picked);
    bench.faulty.switchOn(workbench::presetFault(FaultKind::FailReads));
    bench.pressStart();
    bench.faulty.switchOffAll();
    QVERIFY(bench.settle());
    QCOMPARE(bench.chipPosition(), QPoint(0, 0));
    QCOMPARE(bench.chipValue("M0_VMAX"), 0);
    QCOMPARE(bench.chipValue("M1_VMAX"), 0);
    bench.tool()->showPlugin();
    const auto *mark = bench.widget<QWidget>("btnShowPosition");
    QCOMPARE(mark->toolTip(), QStringLiteral("Zero settings:\n\nM0_VMAX\n\nM1_VMAX"));
    bench.pressStart();
    QVERIFY(bench.settle());
    QCOMPARE(bench.chipPosition(), QPoint(0, 0));
    bench.repairRamps();
    QCOMPARE(mark->toolTip(), QString());
    verifyMove(bench, lastTarget);
}

void FaultOutcomesTest::moveWhoseRegistersAreDeletedNeverEnds()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(workbench::presetFault(FaultKind::DeleteRegisters));
    bench.rounds(200);
    QCOMPARE(bench.chipPosition(), firstTarget.toPoint());
    bench.pressStop();
    QVERIFY(bench.chipComesToRest());
    bench.rounds(200);
    QVERIFY(!bench.isIdle());
    QCOMPARE(bench.actual(), firstTarget);
}

void FaultOutcomesTest::movesWithoutTargetWidgetsGoToTheOldTarget()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(workbench::presetFault(FaultKind::DeleteWidgets));
    bench.pressStop();
    QVERIFY(bench.settle());
    QCOMPARE(bench.chipPosition(), firstTarget.toPoint());
    bench.pick(secondTarget);
    bench.pressStart();
    QVERIFY(bench.settle());
    QCOMPARE(bench.chipPosition(), firstTarget.toPoint());
}

void FaultOutcomesTest::longerFlightPathLoadedAfterARunIsDrivenBehindTheNextMove()
{
    FaultBench bench;
    enter(bench, Idle);
    bench.runFlightPath();
    for (int i = 0; i < 2000 && !(bench.isIdle() && bench.flightIndex() == 11); ++i)
        bench.round();
    QCOMPARE(bench.flightIndex(), 11);
    QVERIFY(bench.settle());
    // As a file with 13 points would, by the preview that the dialog takes over.
    QVERIFY(bench.inDialog(
        [](QDialog *dialog) {
            auto *view = dialog->findChild<QtCharts::QChartView *>();
            auto *path = qobject_cast<QtCharts::QLineSeries *>(view->chart()->series().value(0));
            path->append(300, 400);
        },
        true));
    bench.pathLength = 13;
    const int before = bench.starts();
    bench.pick(firstTarget);
    bench.pressStart();
    for (int i = 0; i < 2000 && bench.flightIndex() == 11; ++i)
        bench.round();
    QVERIFY(bench.settle());
    QCOMPARE(bench.starts(), before + 2);
    QCOMPARE(bench.chipPosition(), QPoint(300, 400));
}

QTEST_MAIN(FaultOutcomesTest)
#include "tst_fault_outcomes.moc"
