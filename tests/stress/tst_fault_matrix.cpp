#include "FaultStates.h"
#include "HeadlessPlatform.h"

#include <QDialog>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

using workbench::Fault;
using workbench::FaultKind;

namespace {

/// What the host deleted does not come back: no move of this tool can be asked for any more.
bool losesBindings(FaultKind kind)
{
    return kind == FaultKind::DeleteRegisters || kind == FaultKind::DeleteWidgets;
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

class FaultMatrixTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }

    void faultPassesAndTheNextMoveArrives_data();
    void faultPassesAndTheNextMoveArrives();
};

void FaultMatrixTest::faultPassesAndTheNextMoveArrives_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("state");
    for (const workbench::FaultInfo &info : workbench::faultTable()) {
        for (int state = 0; state < StateCount; ++state)
            QTest::addRow("%s / %s", qPrintable(info.name), stateNames[state])
                << static_cast<int>(info.kind) << state;
    }
}

void FaultMatrixTest::faultPassesAndTheNextMoveArrives()
{
    QFETCH(int, kind);
    QFETCH(int, state);
    const Fault fault = workbench::presetFault(static_cast<FaultKind>(kind));
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

QTEST_MAIN(FaultMatrixTest)
#include "tst_fault_matrix.moc"
