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
void workOn(FaultRig &rig)
{
    rig.rounds(20);
    rig.pick(secondTarget);
    rig.rounds(5);
    rig.pressStart();
    rig.rounds(20);
    rig.pick(firstTarget);
    rig.rounds(5);
}

/// Counts which writes of the targets get through to the chip.
class TargetWrites
{
public:
    explicit TargetWrites(FaultRig &rig)
        : link(rig.chipSide)
    {
        link.beforeWrite = [this, &rig](unsigned int at, int) {
            has[0] = has[0] || rig.axisRegisters().target[0] == at;
            has[1] = has[1] || rig.axisRegisters().target[1] == at;
        };
    }
    ~TargetWrites() { link.beforeWrite = nullptr; }
    bool areBoth() const { return has[0] && has[1]; }

private:
    WatchedLink &link;
    bool has[2] = {false, false};
};

/// Stop under the fault: where it gets through, the axes stop, if at a place that was misread.
void stopUnderFault(FaultRig &rig)
{
    bool hasArrived = false;
    {
        const TargetWrites writes(rig);
        rig.pressStop();
        hasArrived = writes.areBoth();
    }
    rig.rounds(30);
    if (hasArrived)
        QVERIFY(rig.chipComesToRest());
    VERIFY_CLEAN(rig);
}

/// What is left when the bindings are gone: no request that needs one, a panel that answers.
void verifyPanelAnswers(FaultRig &rig)
{
    rig.faulty.switchOffAll();
    rig.rounds(30);
    rig.pick(secondTarget);
    QCOMPARE(rig.target(), secondTarget);
    rig.pressStart();
    rig.rounds(5);
    rig.pressStop();
    QCOMPARE(rig.target(), rig.actual());
    rig.widget<QSpinBox>("spM0max")->setValue(1024);
    rig.widget<QPushButton>("btnClearTraces")->click();
    rig.hide();
    rig.show();
    rig.rounds(5);
    VERIFY_CLEAN(rig);
}

void recoverWithoutBindings(FaultRig &rig, FaultKind kind)
{
    verifyPanelAnswers(rig);
    if (kind != FaultKind::DeleteWidgets)
        return;
    // The velocities are still there to be read, and the registers for the next tool.
    QVERIFY(rig.settle());
    rig.openTool();
    rig.setLimits(8192);
    rig.show();
    rig.rounds(1);
    QVERIFY(rig.chipComesToRest());
    rig.repairRamps();
    verifyMove(rig, lastTarget);
}

/// Events that get in wherever a request lets them.
void nestTicks(FaultRig &rig)
{
    rig.hostSide.inRequest = [&rig](int number) {
        const bool isUpdate = number % 2 != 0;
        QMetaObject::invokeMethod(
            &rig,
            [&rig, isUpdate] {
                if (isUpdate)
                    rig.updateTick();
                else
                    rig.sampleTick();
            },
            Qt::QueuedConnection);
    };
}

struct DeletionPlace
{
    const char *name;
    std::function<void(FaultRig &)> act;
};

const QVector<DeletionPlace> &deletionPlaces()
{
    static const QVector<DeletionPlace> places{
        {"start", [](FaultRig &rig) { rig.pressStart(); }},
        {"stop", [](FaultRig &rig) { rig.pressStop(); }},
        {"sample", [](FaultRig &rig) { rig.sampleTick(); }},
        {"update", [](FaultRig &rig) { rig.updateTick(); }},
        {"show", [](FaultRig &rig) { rig.tool()->showPlugin(); }},
        {"run", [](FaultRig &rig) { rig.runFlightPath(); }},
    };
    return places;
}

/// The tool is deleted in the n-th request of what goes on; false when that makes fewer requests.
bool deleteDuring(FaultRig &rig, const DeletionPlace &place, int request, const Fault &fault)
{
    rig.openTool();
    rig.show();
    rig.rounds(1);
    rig.pick(request % 2 != 0 ? firstTarget : secondTarget);
    const bool startsByItself =
        qstrcmp(place.name, "start") == 0 || qstrcmp(place.name, "run") == 0;
    if (!startsByItself) {
        rig.pressStart();
        rig.rounds(2);
        rig.pick(lastTarget);
    }
    rig.faulty.switchOn(fault);
    const auto remove = [&rig] { rig.deleteTool(); };
    if (fault.kind == FaultKind::Spin)
        rig.postInStep(request, remove);
    else
        rig.callInRequest(request, remove);
    place.act(rig);
    rig.hostSide.disarm();
    return !rig.tool();
}

void verifyDeletions(const Fault &fault)
{
    // After the host has deleted its registers, requests that need one are not made.
    const bool needsFresh = fault.kind == FaultKind::DeleteRegisters;
    auto rig = std::make_unique<FaultRig>();
    int deletions = 0;
    for (const DeletionPlace &place : deletionPlaces()) {
        for (int request = 0; request < 12; ++request) {
            if (needsFresh)
                rig = std::make_unique<FaultRig>();
            if (!deleteDuring(*rig, place, request, fault))
                break;
            ++deletions;
            rig->faulty.switchOffAll();
            VERIFY_CLEAN(*rig);
        }
        rig->faulty.switchOffAll();
    }
    QVERIFY(deletions > 0);
    if (needsFresh)
        return;
    rig->openTool();
    rig->setLimits(8192);
    rig->show();
    rig->rounds(1);
    QVERIFY(rig->chipComesToRest());
    recover(*rig);
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
    FaultRig rig;
    enter(rig, static_cast<State>(state));
    VERIFY_CLEAN(rig);
    rig.faulty.switchOn(fault);
    if (fault.kind == FaultKind::Spin)
        nestTicks(rig);
    if (state == DialogOpen) {
        QVERIFY(rig.inDialog([&](QDialog *) { workOn(rig); }, kind % 2 != 0));
    } else {
        workOn(rig);
    }
    VERIFY_CLEAN(rig);
    stopUnderFault(rig);
    rig.hostSide.disarm();
    QVERIFY(rig.tool());
    if (losesBindings(fault.kind))
        recoverWithoutBindings(rig, fault.kind);
    else
        recover(rig);
}

QTEST_MAIN(FaultMatrixTest)
#include "tst_fault_matrix.moc"
