#include "FaultBench.h"
#include "HeadlessPlatform.h"

#include "XmlProductIC.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QtCharts/QLineSeries>

using bench::Fault;
using bench::FaultKind;

namespace {

enum State {
    Idle,
    Picked,
    Moving,
    Retargeted,
    Stopping,
    FlightPathRunning,
    DialogOpen,
    Hidden,
    BeingDeleted,
    StateCount,
    Arrived = StateCount, ///< the next update tick ends the move
};

const char *const stateNames[] = {
    "idle",        "picked", "moving",        "retargeted", "stopping", "flight path running",
    "dialog open", "hidden", "being deleted", "arrived"};

const QPointF firstTarget(2500, -1500);
const QPointF secondTarget(-1200, 900);
const QPointF lastTarget(3001, 2003);

/// What the host deleted does not come back: no move of this tool can be asked for any more.
bool losesBindings(FaultKind kind)
{
    return kind == FaultKind::DeleteRegisters || kind == FaultKind::DeleteWidgets;
}

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

/// A person at the panel, whatever that shows.
void workOn(FaultBench &bench)
{
    bench.rounds(20);
    bench.pick(secondTarget);
    bench.rounds(5);
    bench.pressStart();
    bench.rounds(20);
    bench.pick(firstTarget);
    bench.rounds(5);
}

/// Counts which writes of the targets get through to the chip.
class TargetWrites
{
public:
    explicit TargetWrites(FaultBench &bench)
        : link(bench.chipSide)
    {
        link.beforeWrite = [this, &bench](unsigned int at, int) {
            has[0] = has[0] || bench.axisRegisters().target[0] == at;
            has[1] = has[1] || bench.axisRegisters().target[1] == at;
        };
    }
    ~TargetWrites() { link.beforeWrite = nullptr; }
    bool areBoth() const { return has[0] && has[1]; }

private:
    WatchedLink &link;
    bool has[2] = {false, false};
};

/// Stop under the fault: where it gets through, the axes stop, if at a place that was misread.
void stopUnderFault(FaultBench &bench)
{
    bool hasArrived = false;
    {
        const TargetWrites writes(bench);
        bench.pressStop();
        hasArrived = writes.areBoth();
    }
    bench.rounds(30);
    if (hasArrived)
        QVERIFY(bench.chipComesToRest());
    VERIFY_CLEAN(bench);
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

/// Behind the fault: standstill by a press of Stop at most, then a new move of the same tool.
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

/// What is left when the bindings are gone: no request that needs one, a panel that answers.
void verifyPanelAnswers(FaultBench &bench)
{
    bench.faulty.switchOffAll();
    bench.rounds(30);
    bench.pick(secondTarget);
    QCOMPARE(bench.target(), secondTarget);
    bench.pressStart();
    bench.rounds(5);
    bench.pressStop();
    QCOMPARE(bench.target(), bench.actual());
    bench.widget<QSpinBox>("spM0max")->setValue(1024);
    bench.widget<QPushButton>("btnClearTraces")->click();
    bench.hide();
    bench.show();
    bench.rounds(5);
    VERIFY_CLEAN(bench);
}

void recoverWithoutBindings(FaultBench &bench, FaultKind kind)
{
    verifyPanelAnswers(bench);
    if (kind != FaultKind::DeleteWidgets)
        return;
    // The velocities are still there to be read, and the registers for the next tool.
    QVERIFY(bench.settle());
    bench.openTool();
    bench.setLimits(8192);
    bench.show();
    bench.rounds(1);
    QVERIFY(bench.chipComesToRest());
    bench.repairRamps();
    verifyMove(bench, lastTarget);
}

/// Events that get in wherever a request lets them.
void nestTicks(FaultBench &bench)
{
    bench.hostSide.inRequest = [&bench](int number) {
        const bool isUpdate = number % 2 != 0;
        QMetaObject::invokeMethod(
            &bench,
            [&bench, isUpdate] {
                if (isUpdate)
                    bench.updateTick();
                else
                    bench.sampleTick();
            },
            Qt::QueuedConnection);
    };
}

struct DeletionPlace
{
    const char *name;
    std::function<void(FaultBench &)> act;
};

const QVector<DeletionPlace> &deletionPlaces()
{
    static const QVector<DeletionPlace> places{
        {"start", [](FaultBench &bench) { bench.pressStart(); }},
        {"stop", [](FaultBench &bench) { bench.pressStop(); }},
        {"sample", [](FaultBench &bench) { bench.sampleTick(); }},
        {"update", [](FaultBench &bench) { bench.updateTick(); }},
        {"show", [](FaultBench &bench) { bench.tool()->showPlugin(); }},
        {"run", [](FaultBench &bench) { bench.runFlightPath(); }},
    };
    return places;
}

/// The tool is deleted in the n-th request of what goes on; false when that makes fewer requests.
bool deleteDuring(FaultBench &bench, const DeletionPlace &place, int request, const Fault &fault)
{
    bench.openTool();
    bench.show();
    bench.rounds(1);
    bench.pick(request % 2 != 0 ? firstTarget : secondTarget);
    const bool startsByItself =
        qstrcmp(place.name, "start") == 0 || qstrcmp(place.name, "run") == 0;
    if (!startsByItself) {
        bench.pressStart();
        bench.rounds(2);
        bench.pick(lastTarget);
    }
    bench.faulty.switchOn(fault);
    const auto remove = [&bench] { bench.deleteTool(); };
    if (fault.kind == FaultKind::Spin)
        bench.postInStep(request, remove);
    else
        bench.callInRequest(request, remove);
    place.act(bench);
    bench.hostSide.disarm();
    return !bench.tool();
}

void verifyDeletions(const Fault &fault)
{
    // After the host has deleted its registers, requests that need one are not made.
    const bool needsFresh = fault.kind == FaultKind::DeleteRegisters;
    auto bench = std::make_unique<FaultBench>();
    int deletions = 0;
    for (const DeletionPlace &place : deletionPlaces()) {
        for (int request = 0; request < 12; ++request) {
            if (needsFresh)
                bench = std::make_unique<FaultBench>();
            if (!deleteDuring(*bench, place, request, fault))
                break;
            ++deletions;
            bench->faulty.switchOffAll();
            VERIFY_CLEAN(*bench);
        }
        bench->faulty.switchOffAll();
    }
    QVERIFY(deletions > 0);
    if (needsFresh)
        return;
    bench->openTool();
    bench->setLimits(8192);
    bench->show();
    bench->rounds(1);
    QVERIFY(bench->chipComesToRest());
    recover(*bench);
}

} // namespace

class TestFaultMatrix : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void faultPassesAndTheNextMoveArrives_data();
    void faultPassesAndTheNextMoveArrives();
    void eventsInTheMiddleOfARequestLeaveTheToolWhole_data();
    void eventsInTheMiddleOfARequestLeaveTheToolWhole();
    void failedVelocityReadsDoNotEndAMove();
    void targetPickedInsideTheNewTargetWriteGoesOutWithTheNextTick();
    void stopInsideATargetWriteHasTheLastWord_data();
    void stopInsideATargetWriteHasTheLastWord();
    void updateTickInsideAVelocityReadDrivesNoPointTwiceOrNever();

    // What the design makes of a fault, though nobody would wish for it.
    void failedPositionRequestShowsTheRequestItself();
    void stopAfterAFailedPositionRequestDrivesToWhatIsShown();
    void startThatCannotReadTheVelocitiesLeavesThemAtZeroAndTheMarkSaysSo();
    void moveWhoseRegistersAreDeletedNeverEnds();
    void movesWithoutTargetWidgetsGoToTheOldTarget();
    void longerFlightPathLoadedAfterARunIsDrivenBehindTheNextMove();
};

void TestFaultMatrix::faultPassesAndTheNextMoveArrives_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("state");
    for (const bench::FaultInfo &info : bench::faultTable()) {
        for (int state = 0; state < StateCount; ++state)
            QTest::addRow("%s / %s", qPrintable(info.name), stateNames[state])
                << static_cast<int>(info.kind) << state;
    }
}

void TestFaultMatrix::faultPassesAndTheNextMoveArrives()
{
    QFETCH(int, kind);
    QFETCH(int, state);
    const Fault fault = bench::presetFault(static_cast<FaultKind>(kind));
    if (state == BeingDeleted) {
        verifyDeletions(fault);
        return;
    }
    FaultBench bench;
    enter(bench, static_cast<State>(state));
    VERIFY_CLEAN(bench);
    bench.faulty.switchOn(fault);
    if (fault.kind == FaultKind::Spin)
        nestTicks(bench);
    if (state == DialogOpen) {
        QVERIFY(bench.inDialog([&](QDialog *) { workOn(bench); }, kind % 2 != 0));
    } else {
        workOn(bench);
    }
    VERIFY_CLEAN(bench);
    stopUnderFault(bench);
    bench.hostSide.disarm();
    QVERIFY(bench.tool());
    if (losesBindings(fault.kind))
        recoverWithoutBindings(bench, fault.kind);
    else
        recover(bench);
}

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

void TestFaultMatrix::eventsInTheMiddleOfARequestLeaveTheToolWhole_data()
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

void TestFaultMatrix::eventsInTheMiddleOfARequestLeaveTheToolWhole()
{
    QFETCH(int, outer);
    QFETCH(int, inner);
    QFETCH(int, state);
    bool hasActed = true;
    for (int request = 0; hasActed; ++request) {
        FaultBench bench;
        enter(bench, static_cast<State>(state));
        bench.faulty.switchOn(bench::presetFault(FaultKind::Spin));
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

void TestFaultMatrix::failedVelocityReadsDoNotEndAMove()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(bench::presetFault(FaultKind::FailReads));
    bench.rounds(200);
    QCOMPARE(bench.chipPosition(), firstTarget.toPoint());
    QVERIFY(!bench.isIdle());
    QCOMPARE(bench.timerIntervals(), (QList<int>{0, 50}));
    bench.faulty.switchOffAll();
    bench.rounds(1);
    QVERIFY(bench.isIdle());
}

void TestFaultMatrix::targetPickedInsideTheNewTargetWriteGoesOutWithTheNextTick()
{
    for (int request = 0; request < 2; ++request) {
        FaultBench bench;
        enter(bench, Retargeted);
        bench.faulty.switchOn(bench::presetFault(FaultKind::Spin));
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

void TestFaultMatrix::stopInsideATargetWriteHasTheLastWord_data()
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

void TestFaultMatrix::stopInsideATargetWriteHasTheLastWord()
{
    QFETCH(bool, starts);
    QFETCH(int, step);
    FaultBench bench;
    enter(bench, starts ? Picked : Retargeted);
    const QPointF here = bench.actual();
    bench.faulty.switchOn(bench::presetFault(FaultKind::Spin));
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

void TestFaultMatrix::updateTickInsideAVelocityReadDrivesNoPointTwiceOrNever()
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
    bench.faulty.switchOn(bench::presetFault(FaultKind::Spin));
    bench.postInStep(1, [&] { bench.updateTick(); });
    // In one tick, so that the steps are those of its velocity reads.
    bench.hostSide.keepCounting(true);
    bench.updateTick();
    bench.hostSide.keepCounting(false);
    QCOMPARE(bench.flightIndex(), 2);
    QCOMPARE(bench.starts(), before + 1);
}

void TestFaultMatrix::failedPositionRequestShowsTheRequestItself()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(bench::presetFault(FaultKind::FailUser));
    bench.round();
    // The bytes sent, 00 and 48, and no reply value: 0x004800 and 0.
    QCOMPARE(bench.actual(), QPointF(18432, 0));
    bench.faulty.switchOffAll();
    bench.round();
    QCOMPARE(bench.actual(), QPointF(bench.chipPosition()));
}

void TestFaultMatrix::stopAfterAFailedPositionRequestDrivesToWhatIsShown()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(bench::presetFault(FaultKind::FailUser));
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

void TestFaultMatrix::startThatCannotReadTheVelocitiesLeavesThemAtZeroAndTheMarkSaysSo()
{
    FaultBench bench;
    enter(bench, Picked);
    bench.faulty.switchOn(bench::presetFault(FaultKind::FailReads));
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

void TestFaultMatrix::moveWhoseRegistersAreDeletedNeverEnds()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(bench::presetFault(FaultKind::DeleteRegisters));
    bench.rounds(200);
    QCOMPARE(bench.chipPosition(), firstTarget.toPoint());
    bench.pressStop();
    QVERIFY(bench.chipComesToRest());
    bench.rounds(200);
    QVERIFY(!bench.isIdle());
    QCOMPARE(bench.actual(), firstTarget);
}

void TestFaultMatrix::movesWithoutTargetWidgetsGoToTheOldTarget()
{
    FaultBench bench;
    enter(bench, Moving);
    bench.faulty.switchOn(bench::presetFault(FaultKind::DeleteWidgets));
    bench.pressStop();
    QVERIFY(bench.settle());
    QCOMPARE(bench.chipPosition(), firstTarget.toPoint());
    bench.pick(secondTarget);
    bench.pressStart();
    QVERIFY(bench.settle());
    QCOMPARE(bench.chipPosition(), firstTarget.toPoint());
}

void TestFaultMatrix::longerFlightPathLoadedAfterARunIsDrivenBehindTheNextMove()
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

QTEST_MAIN(TestFaultMatrix)
#include "tst_fault_matrix.moc"
