#include "FaultStates.h"

#include <QTest>

void enter(FaultRig &rig, State state)
{
    rig.setLimits(8192);
    rig.show();
    rig.rounds(2);
    if (state == Idle || state == DialogOpen)
        return;
    if (state == FlightPathRunning) {
        rig.runFlightPath();
        rig.rounds(60);
        return;
    }
    rig.pick(firstTarget);
    if (state == Picked)
        return;
    rig.pressStart();
    rig.rounds(10);
    if (state == Retargeted)
        rig.pick(secondTarget);
    if (state == Stopping)
        rig.pressStop();
    if (state == Hidden)
        rig.hide();
    if (state == Arrived) {
        while (rig.chipPosition() != firstTarget.toPoint())
            rig.round();
        rig.sampleTick();
        rig.updateTick();
    }
}

void verifyMove(FaultRig &rig, const QPointF &to)
{
    rig.pick(to);
    rig.pressStart();
    QVERIFY(!rig.isIdle());
    QVERIFY(rig.settle());
    QCOMPARE(rig.chipPosition(), to.toPoint());
    QCOMPARE(rig.actual(), to);
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    VERIFY_CLEAN(rig);
}

void recover(FaultRig &rig)
{
    rig.faulty.switchOffAll();
    if (!rig.tool()->isVisible())
        rig.show();
    rig.rounds(2);
    if (!rig.isIdle())
        rig.pressStop();
    QVERIFY(rig.settle());
    QVERIFY(rig.chipComesToRest());
    VERIFY_CLEAN(rig);
    // A velocity that was misread, or held at 0 when a request got lost, is the person's to set
    // again: the tool marks it and writes back what it reads.
    rig.repairRamps();
    verifyMove(rig, lastTarget);
    verifyMove(rig, QPointF(-17, 40));
}
