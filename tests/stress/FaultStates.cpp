#include "FaultStates.h"

#include <QTest>

void enter(FaultBench &bench, State state)
{
    bench.setLimits(8192);
    bench.show();
    bench.rounds(2);
    if (state == Idle || state == DialogOpen)
        return;
    if (state == FlightPathRunning) {
        bench.runFlightPath();
        bench.rounds(60);
        return;
    }
    bench.pick(firstTarget);
    if (state == Picked)
        return;
    bench.pressStart();
    bench.rounds(10);
    if (state == Retargeted)
        bench.pick(secondTarget);
    if (state == Stopping)
        bench.pressStop();
    if (state == Hidden)
        bench.hide();
    if (state == Arrived) {
        while (bench.chipPosition() != firstTarget.toPoint())
            bench.round();
        bench.sampleTick();
        bench.updateTick();
    }
}

void verifyMove(FaultBench &bench, const QPointF &to)
{
    bench.pick(to);
    bench.pressStart();
    QVERIFY(!bench.isIdle());
    QVERIFY(bench.settle());
    QCOMPARE(bench.chipPosition(), to.toPoint());
    QCOMPARE(bench.actual(), to);
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    VERIFY_CLEAN(bench);
}

void recover(FaultBench &bench)
{
    bench.faulty.switchOffAll();
    if (!bench.tool()->isVisible())
        bench.show();
    bench.rounds(2);
    if (!bench.isIdle())
        bench.pressStop();
    QVERIFY(bench.settle());
    QVERIFY(bench.chipComesToRest());
    VERIFY_CLEAN(bench);
    // A velocity that was misread, or held at 0 when a request got lost, is the person's to set
    // again: the tool marks it and writes back what it reads.
    bench.repairRamps();
    verifyMove(bench, lastTarget);
    verifyMove(bench, QPointF(-17, 40));
}
