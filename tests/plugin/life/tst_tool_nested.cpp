#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "PollRig.h"
#include "RampRig.h"
#include "RegisterRig.h"

#include <QDynamicPropertyChangeEvent>
#include <QPointer>
#include <QTest>

// A host may handle events while it waits for the module, and call the tool while it is busy.

namespace {

constexpr int requestsOfShow = 15; ///< one sample and fourteen ramp settings

/// Runs an action once, in the n-th request of those to come.
void actInRequest(ToolRig &rig, int number, const std::function<void()> &action)
{
    rig.link.calls.clear();
    rig.link.onRequest = [&rig, number, action] {
        if (rig.link.calls.size() != number + 1)
            return;
        // Out of what is thrown away with the handler.
        const auto now = action;
        rig.link.onRequest = nullptr;
        now();
    };
}

/// The leg to the path's second point is done and drawn: the next update tick finds its end.
void arriveOnAFlightPath(PollRig &rig)
{
    rig.makeWide();
    rig.setTarget({300, 200});
    rig.start();
    rig.startButton()->setProperty("RunFp", 1);
    rig.sample(300, 200);
    rig.updateTick();
    rig.takeCalls();
}

int readsIn(const QStringList &calls)
{
    return calls.filter(QStringLiteral("read")).size();
}

} // namespace

class ToolNestedTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void hideWithinShowHasTheLastWord_data();
    void hideWithinShowHasTheLastWord();
    void showAfterAHideWithinShowCounts();
    void showWithinShowKeepsOneTimer();
    void hideWithinTheLookForTheEndKeepsTheMove_data();
    void hideWithinTheLookForTheEndKeepsTheMove();
    void stopEndsAFlightPathWhateverItsRequestsBringAbout_data();
    void stopEndsAFlightPathWhateverItsRequestsBringAbout();
    void stopHasTheLastWordOnAStartWithinIt_data();
    void stopHasTheLastWordOnAStartWithinIt();
    void stopDrivesToOnePointWhateverIsDrawnMeanwhile();
    void settingsWrittenWhileTheyAreReadAreReadAgain_data();
    void settingsWrittenWhileTheyAreReadAreReadAgain();
    void writesWithoutEndDoNotKeepTheCheckFromEnding();
    void manyWritesWithinACheckMakeOneMore();
    void checkWorksAgainAfterNestedOnes();
    void startsWithoutEndDoNotKeepAStopFromEnding();
    void startBehindEachLastWriteOfAStopLosesToIt();
    void stopInAnyRequestOfAStartLeavesTheVelocities_data();
    void stopInAnyRequestOfAStartLeavesTheVelocities();
    void hideInTheWriteOfATargetKeepsTheMove();
    void startInTheWriteOfATargetIsNotEndedWithIt();
    void targetPickedAwayAndBackWhileItIsWrittenGoesOutWhole();
    void whatComesWhileVelocitiesAreReadKeepsTheMove_data();
    void whatComesWhileVelocitiesAreReadKeepsTheMove();
    void anotherChipIsNotFollowed();
    void moduleThatGoesFirstIsNotUsed();
    void callsWhileTheToolIsBeingMadeAreSurvived_data();
    void callsWhileTheToolIsBeingMadeAreSurvived();
};

void ToolNestedTest::hideWithinShowHasTheLastWord_data()
{
    QTest::addColumn<int>("request");

    QTest::newRow("in the sample") << 0;
    QTest::newRow("in the first setting") << 1;
    QTest::newRow("in the last setting") << requestsOfShow - 1;
}

void ToolNestedTest::hideWithinShowHasTheLastWord()
{
    QFETCH(int, request);
    ToolRig rig;
    actInRequest(rig, request, [&rig] { rig.tool()->hidePlugin(); });
    rig.tool()->showPlugin();
    QVERIFY(!rig.link.onRequest);
    QVERIFY(rig.timerIntervals().isEmpty());
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
}

void ToolNestedTest::showAfterAHideWithinShowCounts()
{
    ToolRig rig;
    actInRequest(rig, 3, [&rig] {
        rig.tool()->hidePlugin();
        rig.tool()->showPlugin();
    });
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    rig.tool()->hidePlugin();
    QVERIFY(rig.timerIntervals().isEmpty());
}

void ToolNestedTest::showWithinShowKeepsOneTimer()
{
    ToolRig rig;
    actInRequest(rig, 3, [&rig] { rig.tool()->showPlugin(); });
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
}

void ToolNestedTest::hideWithinTheLookForTheEndKeepsTheMove_data()
{
    QTest::addColumn<int>("request");

    QTest::newRow("in the first velocity") << 0;
    QTest::newRow("in the second velocity") << 1;
}

/// A hidden tool neither ends a move nor drives on along a flight path.
void ToolNestedTest::hideWithinTheLookForTheEndKeepsTheMove()
{
    QFETCH(int, request);
    PollRig rig;
    arriveOnAFlightPath(rig);
    actInRequest(rig, request, [&rig] { rig.tool()->hidePlugin(); });
    rig.updateTick();
    QCOMPARE(rig.takeCalls().size(), 2);
    QCOMPARE(rig.timerIntervals(), QList<int>{0});
    QVERIFY(!rig.startButton()->isEnabled());
    QCOMPARE(rig.flightIndex(), 1);
    rig.tool()->showPlugin();
    rig.updateTick();
    rig.updateTick();
    QCOMPARE(rig.flightIndex(), 2);
}

void ToolNestedTest::stopEndsAFlightPathWhateverItsRequestsBringAbout_data()
{
    QTest::addColumn<int>("request");

    QTest::newRow("in the first target") << 0;
    QTest::newRow("in the second target") << 1;
    QTest::newRow("in the mode") << 2;
}

/// The leg's end is found in the middle of the stop, and the next leg must not begin.
void ToolNestedTest::stopEndsAFlightPathWhateverItsRequestsBringAbout()
{
    QFETCH(int, request);
    PollRig rig;
    arriveOnAFlightPath(rig);
    actInRequest(rig, request, [&rig] { rig.updateTick(); });
    rig.call("on_pbStop_clicked");
    QCOMPARE(rig.takeWrites(), (QStringList{QStringLiteral("write M0_XTARGET m0 300"),
                                            QStringLiteral("write M1_XTARGET m0 200"),
                                            QStringLiteral("write RAMPMODE m0 0")}));
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.flightIndex(), 12);
    QCOMPARE(rig.target()->at(0), QPointF(300, 200));
}

void ToolNestedTest::stopHasTheLastWordOnAStartWithinIt_data()
{
    stopEndsAFlightPathWhateverItsRequestsBringAbout_data();
}

void ToolNestedTest::stopHasTheLastWordOnAStartWithinIt()
{
    QFETCH(int, request);
    PollRig rig;
    rig.makeWide();
    actInRequest(rig, request, [&rig] {
        rig.setTarget({4000, 4000});
        rig.call("on_pbStart_clicked");
    });
    rig.call("on_pbStop_clicked");
    const QStringList writes = rig.takeWrites();
    QVERIFY(writes.filter(QStringLiteral("RAMPMODE m0 768")).size() == 1);
    QCOMPARE(writes.mid(writes.size() - 3), (QStringList{QStringLiteral("write M0_XTARGET m0 0"),
                                                         QStringLiteral("write M1_XTARGET m0 0"),
                                                         QStringLiteral("write RAMPMODE m0 0")}));
    QCOMPARE(rig.target()->at(0), QPointF(0, 0));
}

/// Each of the stop's requests has a start in its middle. Twice the stop is carried out again; then
/// no start begins any more.
void ToolNestedTest::startsWithoutEndDoNotKeepAStopFromEnding()
{
    PollRig rig;
    rig.makeWide();
    bool isStarting = false;
    rig.link.onRequest = [&] {
        if (isStarting)
            return;
        isStarting = true;
        rig.setTarget({4000, 4000});
        rig.call("on_pbStart_clicked");
        isStarting = false;
    };
    rig.call("on_pbStop_clicked");
    rig.link.onRequest = nullptr;
    const QStringList writes = rig.takeWrites();
    QCOMPARE(writes.filter(QStringLiteral("RAMPMODE m0 768")).size(), 2 * 3);
    QCOMPARE(rig.registerValue(QStringLiteral("RAMPMODE")), 0);
    QCOMPARE(rig.registerValue(QStringLiteral("M0_XTARGET")), 0);
    QCOMPARE(rig.flightIndex(), 12);
    // Afterwards starts are what they were.
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.registerValue(QStringLiteral("RAMPMODE")), 768);
}

void ToolNestedTest::startBehindEachLastWriteOfAStopLosesToIt()
{
    PollRig rig;
    rig.makeWide();
    const unsigned int mode = ToolRig::address(QStringLiteral("RAMPMODE"));
    bool isStarting = false;
    QObject context;
    connect(rig.module(), &HostModule::registerOutputBufferHasWritten, &context,
            [&](unsigned short address, int value) {
                if (isStarting || address != mode || value != 0)
                    return;
                isStarting = true;
                rig.setTarget({4000, 4000});
                rig.call("on_pbStart_clicked");
                isStarting = false;
            });
    rig.call("on_pbStop_clicked");
    QCOMPARE(rig.registerValue(QStringLiteral("RAMPMODE")), 0);
    QCOMPARE(rig.registerValue(QStringLiteral("M0_XTARGET")), 0);
    QCOMPARE(rig.registerValue(QStringLiteral("M1_XTARGET")), 0);
}

void ToolNestedTest::stopInAnyRequestOfAStartLeavesTheVelocities_data()
{
    QTest::addColumn<int>("request");
    // Its own eleven, and the ramp checks behind its four writes of velocities.
    for (int request = 0; request < 11 + 4 * 14; ++request)
        QTest::addRow("request %d", request) << request;
}

void ToolNestedTest::stopInAnyRequestOfAStartLeavesTheVelocities()
{
    QFETCH(int, request);
    PollRig rig;
    rig.makeWide();
    rig.setRegister(QStringLiteral("M0_VMAX"), 500);
    rig.setRegister(QStringLiteral("M1_VMAX"), 700);
    rig.setTarget({300, 200});
    actInRequest(rig, request, [&rig] { rig.call("on_pbStop_clicked"); });
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.registerValue(QStringLiteral("M0_VMAX")), 500);
    QCOMPARE(rig.registerValue(QStringLiteral("M1_VMAX")), 700);
    QCOMPARE(rig.registerValue(QStringLiteral("RAMPMODE")), rig.link.onRequest ? 768 : 0);
}

/// As in any other request of the tick that would have found the end.
void ToolNestedTest::hideInTheWriteOfATargetKeepsTheMove()
{
    PollRig rig;
    arriveOnAFlightPath(rig);
    rig.setTarget({50, 60});
    actInRequest(rig, 0, [&rig] { rig.tool()->hidePlugin(); });
    rig.updateTick();
    QCOMPARE(rig.timerIntervals(), QList<int>{0});
    QCOMPARE(rig.flightIndex(), 1);
    QVERIFY(!rig.startButton()->isEnabled());
}

void ToolNestedTest::startInTheWriteOfATargetIsNotEndedWithIt()
{
    PollRig rig;
    rig.makeWide();
    rig.setTarget({50, 60});
    actInRequest(rig, 0, [&rig] { rig.call("on_pbStart_clicked"); });
    rig.updateTick();
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
    QVERIFY(!rig.startButton()->isEnabled());
}

void ToolNestedTest::targetPickedAwayAndBackWhileItIsWrittenGoesOutWhole()
{
    PollRig rig;
    rig.makeWide();
    rig.setTarget({50, 60});
    rig.link.calls.clear();
    rig.link.onRequest = [&rig] {
        if (rig.link.calls.size() == 1)
            rig.setTarget({500, 600});
        else
            rig.setTarget({50, 60});
    };
    rig.updateTick();
    rig.link.onRequest = nullptr;
    rig.updateTick();
    QCOMPARE(rig.registerValue(QStringLiteral("M0_XTARGET")), 50);
    QCOMPARE(rig.registerValue(QStringLiteral("M1_XTARGET")), 60);
    QVERIFY(!rig.isTargetNew());
}

void ToolNestedTest::whatComesWhileVelocitiesAreReadKeepsTheMove_data()
{
    QTest::addColumn<QByteArray>("what");

    QTest::newRow("start") << QByteArray("start");
    QTest::newRow("tick") << QByteArray("tick");
    QTest::newRow("pick") << QByteArray("pick");
}

/// The velocities are from before it.
void ToolNestedTest::whatComesWhileVelocitiesAreReadKeepsTheMove()
{
    QFETCH(QByteArray, what);
    PollRig rig;
    rig.makeWide();
    rig.setTarget({300, 200});
    rig.start();
    rig.updateTick();
    rig.start();
    actInRequest(rig, 1, [&] {
        if (what == "start") {
            rig.call("on_pbStart_clicked");
        } else if (what == "tick") {
            rig.sample(30, 20);
            rig.updateTick();
        } else {
            rig.setTarget({700, 800});
        }
    });
    rig.updateTick();
    QVERIFY(!rig.link.onRequest);
    QVERIFY(!rig.startButton()->isEnabled());
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
}

void ToolNestedTest::stopDrivesToOnePointWhateverIsDrawnMeanwhile()
{
    PollRig rig;
    rig.makeWide();
    rig.setTarget({300, 200});
    rig.start();
    rig.sample(100, 60);
    rig.updateTick();
    rig.sample(120, 80);
    rig.takeCalls();
    actInRequest(rig, 0, [&rig] { rig.updateTick(); });
    rig.call("on_pbStop_clicked");
    QCOMPARE(rig.actual()->at(0), QPointF(120, 80));
    QCOMPARE(rig.takeWrites().mid(1).filter(QStringLiteral("XTARGET")).constLast(),
             QStringLiteral("write M1_XTARGET m0 60"));
}

void ToolNestedTest::settingsWrittenWhileTheyAreReadAreReadAgain_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");

    QTest::newRow("to zero") << 1000 << 0;
    QTest::newRow("from zero") << 0 << 1000;
}

void ToolNestedTest::settingsWrittenWhileTheyAreReadAreReadAgain()
{
    QFETCH(int, before);
    QFETCH(int, after);
    RampRig rig;
    const QString name = QStringLiteral("M0_VMAX");
    rig.setRegister(name, before);
    actInRequest(rig, 5, [&] {
        rig.setRegister(name, after);
        rig.tellWritten(ToolRig::address(name));
    });
    rig.tool()->showPlugin();
    QCOMPARE(rig.takeCalls().filter(QStringLiteral("read")), readsOfAll() + readsOfAll());
    QVERIFY(after == 0 ? rig.isMarked({name}, {}) : rig.isUnmarked());
}

void ToolNestedTest::writesWithoutEndDoNotKeepTheCheckFromEnding()
{
    RampRig rig;
    rig.link.onRequest = [&rig] { rig.tellWritten(ToolRig::address(QStringLiteral("M0_D1"))); };
    rig.setRegister(QStringLiteral("M1_AMAX"), 0);
    rig.tool()->showPlugin();
    QVERIFY(rig.isMarked({}, {QStringLiteral("M1_AMAX")}));
    QVERIFY(readsIn(rig.takeCalls()) <= 2 * 3 * readsOfAll().size());
    rig.link.onRequest = nullptr;
}

void ToolNestedTest::manyWritesWithinACheckMakeOneMore()
{
    RampRig rig;
    actInRequest(rig, 2, [&rig] {
        for (int i = 0; i < 200; ++i)
            rig.tellWritten(ToolRig::address(QStringLiteral("M0_A1")));
    });
    rig.tellWritten(ToolRig::address(QStringLiteral("M0_A1")));
    QCOMPARE(readsIn(rig.takeCalls()), 2 * readsOfAll().size());
}

void ToolNestedTest::checkWorksAgainAfterNestedOnes()
{
    RampRig rig;
    actInRequest(rig, 2, [&rig] { rig.tellWritten(ToolRig::address(QStringLiteral("M0_A1"))); });
    rig.check();
    rig.setRegister(QStringLiteral("M0_AMAX"), 0);
    QCOMPARE(rig.check(), readsOfAll());
    QVERIFY(rig.isMarked({QStringLiteral("M0_AMAX")}, {}));
}

/// The tool goes on with the chip that it was made for.
void ToolNestedTest::anotherChipIsNotFollowed()
{
    RampRig rig;
    rig.check();
    rig.module()->setProduct(0, ProductBuilder().take());
    rig.module()->setProduct(1, ProductBuilder().take());
    rig.setRegister(QStringLiteral("M1_DMAX"), 0);
    QCOMPARE(rig.check(), readsOfAll());
    QVERIFY(rig.isMarked({}, {QStringLiteral("M1_DMAX")}));
}

void ToolNestedTest::moduleThatGoesFirstIsNotUsed()
{
    OwnChip chip;
    chip.add(2, "M0_VMAX");
    chip.add(4, "M0_AMAX");
    chip.makeTool();
    chip.tool->showPlugin();
    chip.link.takeCalls();
    chip.module.reset();
    chip.tool->showPlugin();
    callEverySlot(chip.tool.get());
    chip.tool->hidePlugin();
    QVERIFY(chip.link.takeCalls().isEmpty());
}

void ToolNestedTest::callsWhileTheToolIsBeingMadeAreSurvived_data()
{
    QTest::addColumn<QByteArray>("property");

    QTest::newRow("when it has its rows") << QByteArray("RegList");
    QTest::newRow("when it knows its ramp settings") << QByteArray("RampList");
}

void ToolNestedTest::callsWhileTheToolIsBeingMadeAreSurvived()
{
    QFETCH(QByteArray, property);
    bool isCalled = false;
    EventWatch watch([&](QObject *receiver, QEvent *event) {
        if (isCalled || event->type() != QEvent::DynamicPropertyChange ||
            static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() != property)
            return;
        isCalled = true;
        auto *panel = qobject_cast<QWidget *>(receiver);
        while (!qobject_cast<ToolsInterface *>(panel))
            panel = panel->parentWidget();
        auto *tool = qobject_cast<ToolsInterface *>(panel);
        callEverySlot(tool);
        tool->showPlugin();
        tool->hidePlugin();
    });
    ToolRig rig;
    QVERIFY(isCalled);
    rig.tool()->showPlugin();
    rig.setTarget({10, 20});
    rig.updateTick();
    QCOMPARE(rig.registerValue(QStringLiteral("M0_XTARGET")), 10);
}

QTEST_MAIN(ToolNestedTest)
#include "tst_tool_nested.moc"
