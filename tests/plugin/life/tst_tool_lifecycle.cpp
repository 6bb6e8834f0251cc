#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "ToolRig.h"

#include <QTest>
#include <QTimerEvent>
#include <QToolButton>

namespace {

QList<QAbstractEventDispatcher::TimerInfo> timersOf(QObject *object)
{
    return QAbstractEventDispatcher::instance()->registeredTimers(object);
}

/// Runs an action at one of its requests; a host handles events while it waits for the answer.
struct InterruptingLink : RecordingLink
{
    int interruptAt = 0;
    std::function<void()> action;

    bool readRegister(unsigned int address, unsigned char motor, int *value) override
    {
        interrupt();
        return RecordingLink::readRegister(address, motor, value);
    }

    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override
    {
        interrupt();
        return RecordingLink::userFunction(a, b, function, arg, motor, reply);
    }

    void interrupt()
    {
        if (calls.size() == interruptAt && action)
            action();
    }
};

} // namespace

class ToolLifecycleTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void showSamplesThenLooksAroundThenChecksThenStartsTheTimer();
    void showTakesOneSampleAndDrawsItWithTheNextTick();
    void showingTwiceKeepsOneTimer();
    void hidingStopsTheUpdateTimerAlone();
    void showDuringAMoveSlowsTheUpdateTimer();
    void timersArePrecise();
    void foreignTimersAreIgnored();
    void deletionWritesNothingAndFreesEverything();
    void deletionInTheMiddleOfShowIsSurvived_data();
    void deletionInTheMiddleOfShowIsSurvived();
    void toolWithoutChipIsQuiet_data();
    void toolWithoutChipIsQuiet();
};

void ToolLifecycleTest::showSamplesThenLooksAroundThenChecksThenStartsTheTimer()
{
    ToolRig rig;
    const QStringList sample{QStringLiteral("user 0xFD")};
    QStringList before;
    QStringList steps;
    EventWatch watch([&](QObject *receiver, QEvent *event) {
        const QString name = receiver->objectName();
        if (event->type() == QEvent::EnabledChange && name == QLatin1String("btnShowRegister")) {
            steps << QStringLiteral("look around");
            QCOMPARE(rig.link.calls, sample);
        }
        if (event->type() == QEvent::ToolTipChange && name == QLatin1String("btnShowPosition")) {
            steps << QStringLiteral("check");
            QVERIFY(rig.link.calls.size() > 1);
            QVERIFY(rig.timerIntervals().isEmpty());
        }
    });
    rig.tool()->showPlugin();
    QCOMPARE(steps, (QStringList{QStringLiteral("look around"), QStringLiteral("check")}));
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    QVERIFY(rig.takeWrites().isEmpty());
}

void ToolLifecycleTest::showTakesOneSampleAndDrawsItWithTheNextTick()
{
    ToolRig rig;
    rig.link.position0 = -20;
    rig.link.position1 = 30;
    rig.tool()->showPlugin();
    QCOMPARE(rig.takeCalls().filter(QStringLiteral("user")).size(), 1);
    QCOMPARE(rig.actual()->at(0), QPointF(0, 0));
    rig.updateTick();
    QCOMPARE(rig.actual()->at(0), QPointF(-20, 30));
    QVERIFY(!rig.module()->isCircularMode());
}

void ToolLifecycleTest::showingTwiceKeepsOneTimer()
{
    ToolRig rig;
    rig.tool()->showPlugin();
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    rig.tool()->hidePlugin();
    QVERIFY(rig.timerIntervals().isEmpty());
    rig.tool()->hidePlugin();
    QVERIFY(rig.timerIntervals().isEmpty());
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
}

void ToolLifecycleTest::hidingStopsTheUpdateTimerAlone()
{
    ToolRig rig;
    rig.tool()->showPlugin();
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.timerIntervals(), (QList<int>{0, 50}));
    rig.link.takeCalls();
    rig.tool()->hidePlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{0});
    QVERIFY(rig.link.takeCalls().isEmpty());
    QVERIFY(!rig.widget<QToolButton>("pbStart")->isEnabled());
}

void ToolLifecycleTest::showDuringAMoveSlowsTheUpdateTimer()
{
    ToolRig rig;
    rig.tool()->showPlugin();
    rig.call("on_pbStart_clicked");
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), (QList<int>{0, 100}));
    QVERIFY(!rig.widget<QToolButton>("pbStart")->isEnabled());
}

void ToolLifecycleTest::timersArePrecise()
{
    ToolRig rig;
    rig.tool()->showPlugin();
    QCOMPARE(timersOf(rig.tool()).value(0, {0, 0, Qt::CoarseTimer}).timerType, Qt::PreciseTimer);
    rig.call("on_pbStart_clicked");
    const auto moving = timersOf(rig.tool());
    QCOMPARE(moving.size(), 2);
    for (const auto &timer : moving)
        QCOMPARE(timer.timerType, Qt::PreciseTimer);
}

void ToolLifecycleTest::foreignTimersAreIgnored()
{
    ToolRig rig;
    for (const int id : {-1, 0, 1 << 20}) {
        QTimerEvent event(id);
        QCoreApplication::sendEvent(rig.tool(), &event);
    }
    QVERIFY(rig.link.takeCalls().isEmpty());
    rig.tool()->showPlugin();
    rig.link.takeCalls();
    QTimerEvent event(rig.tool()->startTimer(7000));
    QCoreApplication::sendEvent(rig.tool(), &event);
    QVERIFY(rig.link.takeCalls().isEmpty());
    QCOMPARE(rig.actual()->at(0), QPointF(0, 0));
}

void ToolLifecycleTest::deletionWritesNothingAndFreesEverything()
{
    ToolRig rig;
    rig.tool()->showPlugin();
    rig.setTarget({100, 100});
    rig.call("on_pbStart_clicked");
    QObject *const tool = rig.tool();
    const QPointer<QObject> view = rig.view();
    const QPointer<QObject> chart = rig.chart();
    const QPointer<QObject> trace = rig.trace();
    const QPointer<QObject> axis = rig.axisY();
    QList<QPointer<QObject>> children;
    for (QObject *child : tool->findChildren<QObject *>())
        children << child;
    QVERIFY(children.size() > 30);
    QCOMPARE(timersOf(tool).size(), 2);
    rig.link.takeCalls();
    rig.deleteTool();
    QVERIFY(rig.link.takeCalls().isEmpty());
    QVERIFY(timersOf(tool).isEmpty());
    QVERIFY(!view && !chart && !trace && !axis);
    for (const QPointer<QObject> &child : qAsConst(children))
        QVERIFY(!child);
}

void ToolLifecycleTest::deletionInTheMiddleOfShowIsSurvived_data()
{
    QTest::addColumn<int>("request");

    QTest::newRow("before the first velocity") << 1;
    QTest::newRow("before the second velocity") << 2;
    QTest::newRow("before an acceleration") << 3;
    QTest::newRow("before a stage velocity") << 5;
    QTest::newRow("before a stage acceleration") << 6;
    QTest::newRow("before the last") << 14;
}

void ToolLifecycleTest::deletionInTheMiddleOfShowIsSurvived()
{
    QFETCH(int, request);
    ToolRig rig;
    InterruptingLink link;
    link.values = rig.link.values;
    link.interruptAt = request;
    link.action = [&rig] { rig.deleteTool(); };
    rig.module()->setLink(&link);
    rig.tool()->showPlugin();
    QVERIFY(!rig.tool());
    // The request that was under way is the last one.
    QCOMPARE(link.calls.size(), request + 1);
    rig.module()->setLink(nullptr);
}

void ToolLifecycleTest::toolWithoutChipIsQuiet_data()
{
    QTest::addColumn<bool>("hasModule");

    QTest::newRow("module without a chip") << true;
    QTest::newRow("no module") << false;
}

void ToolLifecycleTest::toolWithoutChipIsQuiet()
{
    QFETCH(bool, hasModule);
    RigGaps gaps;
    gaps.hasChip = false;
    gaps.hasModule = hasModule;
    ToolRig rig(0, gaps);
    QCOMPARE(rig.limits(), QStringLiteral("-256 256 -256 256"));
    QCOMPARE(rig.tool()->toolsName(false), QStringLiteral("Synchronized drive"));
    QVERIFY(rig.axisX()->titleText().isEmpty());
    QVERIFY(rig.axisY()->titleText().isEmpty());
    rig.show();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    callEverySlot(rig.tool());
    rig.sampleTick();
    rig.updateTick();
    rig.widget<QToolButton>("pbStart")->setEnabled(true);
    rig.widget<QToolButton>("pbStart")->click();
    rig.widget<QToolButton>("pbStop")->click();
    rig.sampleTick();
    rig.updateTick();
    rig.tool()->hidePlugin();
    const QStringList calls = rig.takeCalls();
    QVERIFY(calls.filter(QStringLiteral("read")).isEmpty());
    QVERIFY(calls.filter(QStringLiteral("write")).isEmpty());
}

QTEST_MAIN(ToolLifecycleTest)
#include "tst_tool_lifecycle.moc"
