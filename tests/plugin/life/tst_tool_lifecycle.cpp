#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "ToolBench.h"

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
    ToolBench bench;
    const QStringList sample{QStringLiteral("user 0xFD")};
    QStringList before;
    QStringList steps;
    EventWatch watch([&](QObject *receiver, QEvent *event) {
        const QString name = receiver->objectName();
        if (event->type() == QEvent::EnabledChange && name == QLatin1String("btnShowRegister")) {
            steps << QStringLiteral("look around");
            QCOMPARE(bench.link.calls, sample);
        }
        if (event->type() == QEvent::ToolTipChange && name == QLatin1String("btnShowPosition")) {
            steps << QStringLiteral("check");
            QVERIFY(bench.link.calls.size() > 1);
            QVERIFY(bench.timerIntervals().isEmpty());
        }
    });
    bench.tool()->showPlugin();
    QCOMPARE(steps, (QStringList{QStringLiteral("look around"), QStringLiteral("check")}));
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    QVERIFY(bench.takeWrites().isEmpty());
}

void ToolLifecycleTest::showTakesOneSampleAndDrawsItWithTheNextTick()
{
    ToolBench bench;
    bench.link.position0 = -20;
    bench.link.position1 = 30;
    bench.tool()->showPlugin();
    QCOMPARE(bench.takeCalls().filter(QStringLiteral("user")).size(), 1);
    QCOMPARE(bench.actual()->at(0), QPointF(0, 0));
    bench.updateTick();
    QCOMPARE(bench.actual()->at(0), QPointF(-20, 30));
    QVERIFY(!bench.module()->isCircularMode());
}

void ToolLifecycleTest::showingTwiceKeepsOneTimer()
{
    ToolBench bench;
    bench.tool()->showPlugin();
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    bench.tool()->hidePlugin();
    QVERIFY(bench.timerIntervals().isEmpty());
    bench.tool()->hidePlugin();
    QVERIFY(bench.timerIntervals().isEmpty());
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
}

void ToolLifecycleTest::hidingStopsTheUpdateTimerAlone()
{
    ToolBench bench;
    bench.tool()->showPlugin();
    bench.call("on_pbStart_clicked");
    QCOMPARE(bench.timerIntervals(), (QList<int>{0, 50}));
    bench.link.takeCalls();
    bench.tool()->hidePlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{0});
    QVERIFY(bench.link.takeCalls().isEmpty());
    QVERIFY(!bench.widget<QToolButton>("pbStart")->isEnabled());
}

void ToolLifecycleTest::showDuringAMoveSlowsTheUpdateTimer()
{
    ToolBench bench;
    bench.tool()->showPlugin();
    bench.call("on_pbStart_clicked");
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), (QList<int>{0, 100}));
    QVERIFY(!bench.widget<QToolButton>("pbStart")->isEnabled());
}

void ToolLifecycleTest::timersArePrecise()
{
    ToolBench bench;
    bench.tool()->showPlugin();
    QCOMPARE(timersOf(bench.tool()).value(0, {0, 0, Qt::CoarseTimer}).timerType, Qt::PreciseTimer);
    bench.call("on_pbStart_clicked");
    const auto moving = timersOf(bench.tool());
    QCOMPARE(moving.size(), 2);
    for (const auto &timer : moving)
        QCOMPARE(timer.timerType, Qt::PreciseTimer);
}

void ToolLifecycleTest::foreignTimersAreIgnored()
{
    ToolBench bench;
    for (const int id : {-1, 0, 1 << 20}) {
        QTimerEvent event(id);
        QCoreApplication::sendEvent(bench.tool(), &event);
    }
    QVERIFY(bench.link.takeCalls().isEmpty());
    bench.tool()->showPlugin();
    bench.link.takeCalls();
    QTimerEvent event(bench.tool()->startTimer(7000));
    QCoreApplication::sendEvent(bench.tool(), &event);
    QVERIFY(bench.link.takeCalls().isEmpty());
    QCOMPARE(bench.actual()->at(0), QPointF(0, 0));
}

void ToolLifecycleTest::deletionWritesNothingAndFreesEverything()
{
    ToolBench bench;
    bench.tool()->showPlugin();
    bench.setTarget({100, 100});
    bench.call("on_pbStart_clicked");
    QObject *const tool = bench.tool();
    const QPointer<QObject> view = bench.view();
    const QPointer<QObject> chart = bench.chart();
    const QPointer<QObject> trace = bench.trace();
    const QPointer<QObject> axis = bench.axisY();
    QList<QPointer<QObject>> children;
    for (QObject *child : tool->findChildren<QObject *>())
        children << child;
    QVERIFY(children.size() > 30);
    QCOMPARE(timersOf(tool).size(), 2);
    bench.link.takeCalls();
    bench.deleteTool();
    QVERIFY(bench.link.takeCalls().isEmpty());
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
    ToolBench bench;
    InterruptingLink link;
    link.values = bench.link.values;
    link.interruptAt = request;
    link.action = [&bench] { bench.deleteTool(); };
    bench.module()->setLink(&link);
    bench.tool()->showPlugin();
    QVERIFY(!bench.tool());
    // The request that was under way is the last one.
    QCOMPARE(link.calls.size(), request + 1);
    bench.module()->setLink(nullptr);
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
    BenchGaps gaps;
    gaps.hasChip = false;
    gaps.hasModule = hasModule;
    ToolBench bench(0, gaps);
    QCOMPARE(bench.limits(), QStringLiteral("-256 256 -256 256"));
    QCOMPARE(bench.tool()->toolsName(false), QStringLiteral("Synchronized drive"));
    QVERIFY(bench.axisX()->titleText().isEmpty());
    QVERIFY(bench.axisY()->titleText().isEmpty());
    bench.show();
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    callEverySlot(bench.tool());
    bench.sampleTick();
    bench.updateTick();
    bench.widget<QToolButton>("pbStart")->setEnabled(true);
    bench.widget<QToolButton>("pbStart")->click();
    bench.widget<QToolButton>("pbStop")->click();
    bench.sampleTick();
    bench.updateTick();
    bench.tool()->hidePlugin();
    const QStringList calls = bench.takeCalls();
    QVERIFY(calls.filter(QStringLiteral("read")).isEmpty());
    QVERIFY(calls.filter(QStringLiteral("write")).isEmpty());
}

QTEST_MAIN(ToolLifecycleTest)
#include "tst_tool_lifecycle.moc"
