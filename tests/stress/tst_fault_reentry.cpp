#include "FaultStates.h"
#include "HeadlessPlatform.h"

#include <QTest>

using workbench::FaultKind;

namespace {

struct Act
{
    const char *name;
    std::function<void(FaultBench &)> act;
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
        {{"start", [](FaultBench &bench) { bench.pressStart(); }}, {Idle, Picked}},
        {{"stop", [](FaultBench &bench) { bench.pressStop(); }}, {Moving, Retargeted, Arrived}},
        {{"sample", [](FaultBench &bench) { bench.sampleTick(); }}, {Moving, Retargeted, Stopping}},
        {{"update", [](FaultBench &bench) { bench.updateTick(); }}, {Picked, Retargeted, Arrived}},
        {{"run", [](FaultBench &bench) { bench.runFlightPath(); }}, {Idle, Picked}},
    };
    return acts;
}

const QVector<Act> &innerActs()
{
    static const QVector<Act> acts{
        {"start", [](FaultBench &bench) { bench.pressStart(); }},
        {"stop", [](FaultBench &bench) { bench.pressStop(); }},
        {"sample", [](FaultBench &bench) { bench.sampleTick(); }},
        {"update", [](FaultBench &bench) { bench.updateTick(); }},
        {"pick", [](FaultBench &bench) { bench.pick(secondTarget); }},
        {"hide", [](FaultBench &bench) { bench.hide(); }},
        {"show", [](FaultBench &bench) { bench.show(); }},
        {"run", [](FaultBench &bench) { bench.runFlightPath(); }},
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
        FaultBench bench;
        enter(bench, static_cast<State>(state));
        bench.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
        hasActed = false;
        bench.postInStep(request, [&] {
            hasActed = true;
            innerActs().at(inner).act(bench);
        });
        outerActs().at(outer).act.act(bench);
        bench.hostSide.disarm();
        QVERIFY(hasActed || request > 0);
        bench.rounds(3);
        recover(bench);
        if (QTest::currentTestFailed())
            return;
    }
}

void FaultReentryTest::targetPickedInsideTheNewTargetWriteGoesOutWithTheNextTick()
{
    for (int request = 0; request < 2; ++request) {
        FaultBench bench;
        enter(bench, Retargeted);
        bench.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
        bench.postInStep(request, [&] { bench.pick(lastTarget); });
        bench.updateTick();
        QCOMPARE(bench.target(), lastTarget);
        QVERIFY(bench.series(0)->property("NewPt").toBool());
        bench.updateTick();
        QCOMPARE(bench.chipValue("M0_XTARGET"), 3001);
        QCOMPARE(bench.chipValue("M1_XTARGET"), 2003);
        QVERIFY(!bench.series(0)->property("NewPt").toBool());
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
    FaultBench bench;
    enter(bench, starts ? Picked : Retargeted);
    const QPointF here = bench.actual();
    bench.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
    bench.postInStep(step, [&] { bench.pressStop(); });
    if (starts)
        bench.pressStart();
    else
        bench.updateTick();
    bench.updateTick();
    bench.updateTick();
    QCOMPARE(bench.target(), here);
    QCOMPARE(QPoint(bench.chipValue("M0_XTARGET"), bench.chipValue("M1_XTARGET")), here.toPoint());
}

void FaultReentryTest::updateTickInsideAVelocityReadDrivesNoPointTwiceOrNever()
{
    FaultBench bench;
    enter(bench, Idle);
    // From the path's second point to the third only axis 0 moves, so axis 1 is no sign of a move.
    bench.runFlightPath();
    while (bench.flightIndex() != 1 || bench.chipPosition() != QPoint(0, 1025))
        bench.round();
    bench.sampleTick();
    const int before = bench.starts();
    QCOMPARE(bench.flightIndex(), 1);
    bench.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
    bench.postInStep(1, [&] { bench.updateTick(); });
    // In one tick, so that the steps are those of its velocity reads.
    bench.hostSide.keepCounting(true);
    bench.updateTick();
    bench.hostSide.keepCounting(false);
    QCOMPARE(bench.flightIndex(), 2);
    QCOMPARE(bench.starts(), before + 1);
}

QTEST_MAIN(FaultReentryTest)
#include "tst_fault_reentry.moc"
