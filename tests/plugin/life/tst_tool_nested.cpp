#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "PollBench.h"
#include "RampBench.h"
#include "RegisterBench.h"

#include <QDynamicPropertyChangeEvent>
#include <QPointer>
#include <QTest>

// A host may handle events while it waits for the module, and call the tool while it is busy.

namespace {

constexpr int requestsOfShow = 15; ///< one sample and fourteen ramp settings

/// Runs an action once, in the n-th request of those to come.
void actInRequest(ToolBench &bench, int number, const std::function<void()> &action)
{
    bench.link.calls.clear();
    bench.link.onRequest = [&bench, number, action] {
        if (bench.link.calls.size() != number + 1)
            return;
        // Out of what is thrown away with the handler.
        const auto now = action;
        bench.link.onRequest = nullptr;
        now();
    };
}

/// The leg to the path's second point is done and drawn: the next update tick finds its end.
void arriveOnAFlightPath(PollBench &bench)
{
    bench.makeWide();
    bench.setTarget({300, 200});
    bench.start();
    bench.startButton()->setProperty("RunFp", 1);
    bench.sample(300, 200);
    bench.updateTick();
    bench.takeCalls();
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
    ToolBench bench;
    actInRequest(bench, request, [&bench] { bench.tool()->hidePlugin(); });
    bench.tool()->showPlugin();
    QVERIFY(!bench.link.onRequest);
    QVERIFY(bench.timerIntervals().isEmpty());
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
}

void ToolNestedTest::showAfterAHideWithinShowCounts()
{
    ToolBench bench;
    actInRequest(bench, 3, [&bench] {
        bench.tool()->hidePlugin();
        bench.tool()->showPlugin();
    });
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    bench.tool()->hidePlugin();
    QVERIFY(bench.timerIntervals().isEmpty());
}

void ToolNestedTest::showWithinShowKeepsOneTimer()
{
    ToolBench bench;
    actInRequest(bench, 3, [&bench] { bench.tool()->showPlugin(); });
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
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
    PollBench bench;
    arriveOnAFlightPath(bench);
    actInRequest(bench, request, [&bench] { bench.tool()->hidePlugin(); });
    bench.updateTick();
    QCOMPARE(bench.takeCalls().size(), 2);
    QCOMPARE(bench.timerIntervals(), QList<int>{0});
    QVERIFY(!bench.startButton()->isEnabled());
    QCOMPARE(bench.flightIndex(), 1);
    bench.tool()->showPlugin();
    bench.updateTick();
    bench.updateTick();
    QCOMPARE(bench.flightIndex(), 2);
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
    PollBench bench;
    arriveOnAFlightPath(bench);
    actInRequest(bench, request, [&bench] { bench.updateTick(); });
    bench.call("on_pbStop_clicked");
    QCOMPARE(bench.takeWrites(), (QStringList{QStringLiteral("write M0_XTARGET m0 300"),
                                              QStringLiteral("write M1_XTARGET m0 200"),
                                              QStringLiteral("write RAMPMODE m0 0")}));
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.flightIndex(), 12);
    QCOMPARE(bench.target()->at(0), QPointF(300, 200));
}

void ToolNestedTest::stopHasTheLastWordOnAStartWithinIt_data()
{
    stopEndsAFlightPathWhateverItsRequestsBringAbout_data();
}

void ToolNestedTest::stopHasTheLastWordOnAStartWithinIt()
{
    QFETCH(int, request);
    PollBench bench;
    bench.makeWide();
    actInRequest(bench, request, [&bench] {
        bench.setTarget({4000, 4000});
        bench.call("on_pbStart_clicked");
    });
    bench.call("on_pbStop_clicked");
    const QStringList writes = bench.takeWrites();
    QVERIFY(writes.filter(QStringLiteral("RAMPMODE m0 768")).size() == 1);
    QCOMPARE(writes.mid(writes.size() - 3), (QStringList{QStringLiteral("write M0_XTARGET m0 0"),
                                                         QStringLiteral("write M1_XTARGET m0 0"),
                                                         QStringLiteral("write RAMPMODE m0 0")}));
    QCOMPARE(bench.target()->at(0), QPointF(0, 0));
}

/// Each of the stop's requests has a start in its middle. Twice the stop is carried out again; then
/// no start begins any more.
void ToolNestedTest::startsWithoutEndDoNotKeepAStopFromEnding()
{
    PollBench bench;
    bench.makeWide();
    bool isStarting = false;
    bench.link.onRequest = [&] {
        if (isStarting)
            return;
        isStarting = true;
        bench.setTarget({4000, 4000});
        bench.call("on_pbStart_clicked");
        isStarting = false;
    };
    bench.call("on_pbStop_clicked");
    bench.link.onRequest = nullptr;
    const QStringList writes = bench.takeWrites();
    QCOMPARE(writes.filter(QStringLiteral("RAMPMODE m0 768")).size(), 2 * 3);
    QCOMPARE(bench.registerValue(QStringLiteral("RAMPMODE")), 0);
    QCOMPARE(bench.registerValue(QStringLiteral("M0_XTARGET")), 0);
    QCOMPARE(bench.flightIndex(), 12);
    // Afterwards starts are what they were.
    bench.call("on_pbStart_clicked");
    QCOMPARE(bench.registerValue(QStringLiteral("RAMPMODE")), 768);
}

void ToolNestedTest::startBehindEachLastWriteOfAStopLosesToIt()
{
    PollBench bench;
    bench.makeWide();
    const unsigned int mode = ToolBench::address(QStringLiteral("RAMPMODE"));
    bool isStarting = false;
    QObject context;
    connect(bench.module(), &HostModule::registerOutputBufferHasWritten, &context,
            [&](unsigned short address, int value) {
                if (isStarting || address != mode || value != 0)
                    return;
                isStarting = true;
                bench.setTarget({4000, 4000});
                bench.call("on_pbStart_clicked");
                isStarting = false;
            });
    bench.call("on_pbStop_clicked");
    QCOMPARE(bench.registerValue(QStringLiteral("RAMPMODE")), 0);
    QCOMPARE(bench.registerValue(QStringLiteral("M0_XTARGET")), 0);
    QCOMPARE(bench.registerValue(QStringLiteral("M1_XTARGET")), 0);
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
    PollBench bench;
    bench.makeWide();
    bench.setRegister(QStringLiteral("M0_VMAX"), 500);
    bench.setRegister(QStringLiteral("M1_VMAX"), 700);
    bench.setTarget({300, 200});
    actInRequest(bench, request, [&bench] { bench.call("on_pbStop_clicked"); });
    bench.call("on_pbStart_clicked");
    QCOMPARE(bench.registerValue(QStringLiteral("M0_VMAX")), 500);
    QCOMPARE(bench.registerValue(QStringLiteral("M1_VMAX")), 700);
    QCOMPARE(bench.registerValue(QStringLiteral("RAMPMODE")), bench.link.onRequest ? 768 : 0);
}

/// As in any other request of the tick that would have found the end.
void ToolNestedTest::hideInTheWriteOfATargetKeepsTheMove()
{
    PollBench bench;
    arriveOnAFlightPath(bench);
    bench.setTarget({50, 60});
    actInRequest(bench, 0, [&bench] { bench.tool()->hidePlugin(); });
    bench.updateTick();
    QCOMPARE(bench.timerIntervals(), QList<int>{0});
    QCOMPARE(bench.flightIndex(), 1);
    QVERIFY(!bench.startButton()->isEnabled());
}

void ToolNestedTest::startInTheWriteOfATargetIsNotEndedWithIt()
{
    PollBench bench;
    bench.makeWide();
    bench.setTarget({50, 60});
    actInRequest(bench, 0, [&bench] { bench.call("on_pbStart_clicked"); });
    bench.updateTick();
    QCOMPARE(bench.timerIntervals(), QList<int>({0, 50}));
    QVERIFY(!bench.startButton()->isEnabled());
}

void ToolNestedTest::targetPickedAwayAndBackWhileItIsWrittenGoesOutWhole()
{
    PollBench bench;
    bench.makeWide();
    bench.setTarget({50, 60});
    bench.link.calls.clear();
    bench.link.onRequest = [&bench] {
        if (bench.link.calls.size() == 1)
            bench.setTarget({500, 600});
        else
            bench.setTarget({50, 60});
    };
    bench.updateTick();
    bench.link.onRequest = nullptr;
    bench.updateTick();
    QCOMPARE(bench.registerValue(QStringLiteral("M0_XTARGET")), 50);
    QCOMPARE(bench.registerValue(QStringLiteral("M1_XTARGET")), 60);
    QVERIFY(!bench.isTargetNew());
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
    PollBench bench;
    bench.makeWide();
    bench.setTarget({300, 200});
    bench.start();
    bench.updateTick();
    bench.start();
    actInRequest(bench, 1, [&] {
        if (what == "start") {
            bench.call("on_pbStart_clicked");
        } else if (what == "tick") {
            bench.sample(30, 20);
            bench.updateTick();
        } else {
            bench.setTarget({700, 800});
        }
    });
    bench.updateTick();
    QVERIFY(!bench.link.onRequest);
    QVERIFY(!bench.startButton()->isEnabled());
    QCOMPARE(bench.timerIntervals(), QList<int>({0, 50}));
}

void ToolNestedTest::stopDrivesToOnePointWhateverIsDrawnMeanwhile()
{
    PollBench bench;
    bench.makeWide();
    bench.setTarget({300, 200});
    bench.start();
    bench.sample(100, 60);
    bench.updateTick();
    bench.sample(120, 80);
    bench.takeCalls();
    actInRequest(bench, 0, [&bench] { bench.updateTick(); });
    bench.call("on_pbStop_clicked");
    QCOMPARE(bench.actual()->at(0), QPointF(120, 80));
    QCOMPARE(bench.takeWrites().mid(1).filter(QStringLiteral("XTARGET")).constLast(),
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
    RampBench bench;
    const QString name = QStringLiteral("M0_VMAX");
    bench.setRegister(name, before);
    actInRequest(bench, 5, [&] {
        bench.setRegister(name, after);
        bench.tellWritten(ToolBench::address(name));
    });
    bench.tool()->showPlugin();
    QCOMPARE(bench.takeCalls().filter(QStringLiteral("read")), readsOfAll() + readsOfAll());
    QVERIFY(after == 0 ? bench.isMarked({name}, {}) : bench.isUnmarked());
}

void ToolNestedTest::writesWithoutEndDoNotKeepTheCheckFromEnding()
{
    RampBench bench;
    bench.link.onRequest = [&bench] {
        bench.tellWritten(ToolBench::address(QStringLiteral("M0_D1")));
    };
    bench.setRegister(QStringLiteral("M1_AMAX"), 0);
    bench.tool()->showPlugin();
    QVERIFY(bench.isMarked({}, {QStringLiteral("M1_AMAX")}));
    QVERIFY(readsIn(bench.takeCalls()) <= 2 * 3 * readsOfAll().size());
    bench.link.onRequest = nullptr;
}

void ToolNestedTest::manyWritesWithinACheckMakeOneMore()
{
    RampBench bench;
    actInRequest(bench, 2, [&bench] {
        for (int i = 0; i < 200; ++i)
            bench.tellWritten(ToolBench::address(QStringLiteral("M0_A1")));
    });
    bench.tellWritten(ToolBench::address(QStringLiteral("M0_A1")));
    QCOMPARE(readsIn(bench.takeCalls()), 2 * readsOfAll().size());
}

void ToolNestedTest::checkWorksAgainAfterNestedOnes()
{
    RampBench bench;
    actInRequest(bench, 2,
                 [&bench] { bench.tellWritten(ToolBench::address(QStringLiteral("M0_A1"))); });
    bench.check();
    bench.setRegister(QStringLiteral("M0_AMAX"), 0);
    QCOMPARE(bench.check(), readsOfAll());
    QVERIFY(bench.isMarked({QStringLiteral("M0_AMAX")}, {}));
}

/// The tool goes on with the chip that it was made for.
void ToolNestedTest::anotherChipIsNotFollowed()
{
    RampBench bench;
    bench.check();
    bench.module()->setProduct(0, ProductBuilder().take());
    bench.module()->setProduct(1, ProductBuilder().take());
    bench.setRegister(QStringLiteral("M1_DMAX"), 0);
    QCOMPARE(bench.check(), readsOfAll());
    QVERIFY(bench.isMarked({}, {QStringLiteral("M1_DMAX")}));
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
    ToolBench bench;
    QVERIFY(isCalled);
    bench.tool()->showPlugin();
    bench.setTarget({10, 20});
    bench.updateTick();
    QCOMPARE(bench.registerValue(QStringLiteral("M0_XTARGET")), 10);
}

QTEST_MAIN(ToolNestedTest)
#include "tst_tool_nested.moc"
