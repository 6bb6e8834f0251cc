#include "FaultStates.h"
#include "HeadlessPlatform.h"

#include <QTest>

using workbench::FaultKind;

namespace {

struct Act
{
    const char *name;
    std::function<void(FaultRig &)> act;
};

/// What makes requests, with the states in which it does.
struct Outer
{
    Act act;
    QVector<State> states;
};

const QVector<Outer> &outerActs()
{
    static const QVector<Outer> acts{
        {{"start", [](FaultRig &rig) { rig.pressStart(); }}, {Idle, Picked}},
        {{"stop", [](FaultRig &rig) { rig.pressStop(); }}, {Moving, Retargeted, Arrived}},
        {{"sample", [](FaultRig &rig) { rig.sampleTick(); }}, {Moving, Retargeted, Stopping}},
        {{"update", [](FaultRig &rig) { rig.updateTick(); }}, {Picked, Retargeted, Arrived}},
        {{"run", [](FaultRig &rig) { rig.runFlightPath(); }}, {Idle, Picked}},
    };
    return acts;
}

const QVector<Act> &innerActs()
{
    static const QVector<Act> acts{
        {"start", [](FaultRig &rig) { rig.pressStart(); }},
        {"stop", [](FaultRig &rig) { rig.pressStop(); }},
        {"sample", [](FaultRig &rig) { rig.sampleTick(); }},
        {"update", [](FaultRig &rig) { rig.updateTick(); }},
        {"pick", [](FaultRig &rig) { rig.pick(secondTarget); }},
        {"hide", [](FaultRig &rig) { rig.hide(); }},
        {"show", [](FaultRig &rig) { rig.show(); }},
        {"run", [](FaultRig &rig) { rig.runFlightPath(); }},
    };
    return acts;
}

} // namespace

class FaultReentryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }

    void eventsInTheMiddleOfARequestLeaveTheToolWhole_data();
    void eventsInTheMiddleOfARequestLeaveTheToolWhole();
    void targetPickedInsideTheNewTargetWriteGoesOutWithTheNextTick();
    void stopInsideATargetWriteHasTheLastWord_data();
    void stopInsideATargetWriteHasTheLastWord();
    void updateTickInsideAVelocityReadDrivesNoPointTwiceOrNever();
};

void FaultReentryTest::eventsInTheMiddleOfARequestLeaveTheToolWhole_data()
{
    QTest::addColumn<int>("outer");
    QTest::addColumn<int>("inner");
    QTest::addColumn<int>("state");
    for (int outer = 0; outer < outerActs().size(); ++outer) {
        for (int inner = 0; inner < innerActs().size(); ++inner) {
            for (const State state : outerActs().at(outer).states)
                QTest::addRow("%s inside %s / %s", innerActs().at(inner).name,
                              outerActs().at(outer).act.name, stateNames[state])
                    << outer << inner << int(state);
        }
    }
}

void FaultReentryTest::eventsInTheMiddleOfARequestLeaveTheToolWhole()
{
    QFETCH(int, outer);
    QFETCH(int, inner);
    QFETCH(int, state);
    bool hasActed = true;
    for (int request = 0; hasActed; ++request) {
        FaultRig rig;
        enter(rig, static_cast<State>(state));
        rig.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
        hasActed = false;
        rig.postInStep(request, [&] {
            hasActed = true;
            innerActs().at(inner).act(rig);
        });
        outerActs().at(outer).act.act(rig);
        rig.hostSide.disarm();
        QVERIFY(hasActed || request > 0);
        rig.rounds(3);
        recover(rig);
        if (QTest::currentTestFailed())
            return;
    }
}

void FaultReentryTest::targetPickedInsideTheNewTargetWriteGoesOutWithTheNextTick()
{
    for (int request = 0; request < 2; ++request) {
        FaultRig rig;
        enter(rig, Retargeted);
        rig.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
        rig.postInStep(request, [&] { rig.pick(lastTarget); });
        rig.updateTick();
        QCOMPARE(rig.target(), lastTarget);
        QVERIFY(rig.series(0)->property("NewPt").toBool());
        rig.updateTick();
        QCOMPARE(rig.chipValue("M0_XTARGET"), 3001);
        QCOMPARE(rig.chipValue("M1_XTARGET"), 2003);
        QVERIFY(!rig.series(0)->property("NewPt").toBool());
    }
}

void FaultReentryTest::stopInsideATargetWriteHasTheLastWord_data()
{
    QTest::addColumn<bool>("starts");
    QTest::addColumn<int>("step");
    // Start: both velocities, mode, Y, mode, X, Y. The new-target write: X, Y.
    QTest::newRow("first Y of start") << true << 3;
    QTest::newRow("X of start") << true << 5;
    QTest::newRow("second Y of start") << true << 6;
    QTest::newRow("X of the new target") << false << 0;
    QTest::newRow("Y of the new target") << false << 1;
}

void FaultReentryTest::stopInsideATargetWriteHasTheLastWord()
{
    QFETCH(bool, starts);
    QFETCH(int, step);
    FaultRig rig;
    enter(rig, starts ? Picked : Retargeted);
    const QPointF here = rig.actual();
    rig.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
    rig.postInStep(step, [&] { rig.pressStop(); });
    if (starts)
        rig.pressStart();
    else
        rig.updateTick();
    rig.updateTick();
    rig.updateTick();
    QCOMPARE(rig.target(), here);
    QCOMPARE(QPoint(rig.chipValue("M0_XTARGET"), rig.chipValue("M1_XTARGET")), here.toPoint());
}

void FaultReentryTest::updateTickInsideAVelocityReadDrivesNoPointTwiceOrNever()
{
    FaultRig rig;
    enter(rig, Idle);
    // From the path's second point to the third only axis 0 moves, so axis 1 is no sign of a move.
    rig.runFlightPath();
    while (rig.flightIndex() != 1 || rig.chipPosition() != QPoint(0, 1025))
        rig.round();
    rig.sampleTick();
    const int before = rig.starts();
    QCOMPARE(rig.flightIndex(), 1);
    rig.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
    rig.postInStep(1, [&] { rig.updateTick(); });
    // In one tick, so that the steps are those of its velocity reads.
    rig.hostSide.keepCounting(true);
    rig.updateTick();
    rig.hostSide.keepCounting(false);
    QCOMPARE(rig.flightIndex(), 2);
    QCOMPARE(rig.starts(), before + 1);
}

QTEST_MAIN(FaultReentryTest)
#include "tst_fault_reentry.moc"
