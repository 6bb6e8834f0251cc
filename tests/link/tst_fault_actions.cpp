#include "FaultLinkBench.h"

#include <QtTest>

using namespace workbench;

class FaultActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void resetComesOnceInAMove();
    void resetWaitsForATarget();

    void hostObjectsGoInTheMiddleOfARequest_data();
    void hostObjectsGoInTheMiddleOfARequest();
    void hostObjectsGoAtOnceWithoutANumber();
    void missingActionsDoNothing();
    void actionsMaySwitchFaultsOff();

    void spinLetsEventsThrough();
    void spinDoesNotNestWithoutEnd();
};

void FaultActionsTest::resetComesOnceInAMove()
{
    FaultLinkBench bench;
    QVector<qint64> resets;
    FaultActions actions;
    actions.resetChip = [&resets](qint64 ns) { resets << ns / FaultLinkBench::msInNs; };
    bench.link.setActions(actions);
    QVERIFY(bench.on("reset:10"));
    bench.clock.advance(5 * FaultLinkBench::msInNs);
    bench.write(FaultLinkBench::target0, 1); // asked at 5 ms
    for (int i = 0; i < 9; ++i)
        bench.positions();
    QVERIFY(resets.isEmpty());
    bench.clock.advance(20 * FaultLinkBench::msInNs);
    bench.positions();
    QCOMPARE(resets, QVector<qint64>{15});
    bench.write(FaultLinkBench::target0, 1);
    bench.clock.advance(50 * FaultLinkBench::msInNs);
    bench.positions();
    QCOMPARE(resets.size(), 1);
}

void FaultActionsTest::resetWaitsForATarget()
{
    FaultLinkBench bench;
    int resets = 0;
    FaultActions actions;
    actions.resetChip = [&resets](qint64) { ++resets; };
    bench.link.setActions(actions);
    QVERIFY(bench.on("reset:0"));
    bench.clock.advance(50 * FaultLinkBench::msInNs);
    bench.write(FaultLinkBench::setting, 1);
    bench.read(FaultLinkBench::target0);
    QCOMPARE(resets, 0);
    bench.write(FaultLinkBench::target0, 1);
    QCOMPARE(resets, 1);
}

void FaultActionsTest::hostObjectsGoInTheMiddleOfARequest_data()
{
    QTest::addColumn<int>("registersGone");
    QTest::addColumn<int>("widgetsGone");
    QTest::newRow("delete-registers:2") << 1 << 0;
    QTest::newRow("delete-widgets:2") << 0 << 1;
}

void FaultActionsTest::hostObjectsGoInTheMiddleOfARequest()
{
    QFETCH(int, registersGone);
    QFETCH(int, widgetsGone);
    FaultLinkBench bench;
    int registers = 0;
    int widgets = 0;
    QStringList callsBefore;
    FaultActions actions;
    actions.deleteRegisters = [&] { ++registers; };
    actions.deleteWidgets = [&] { ++widgets; };
    bench.link.setActions(actions);
    QVERIFY(bench.on(QTest::currentDataTag()));
    bench.read(FaultLinkBench::setting);
    QCOMPARE(registers + widgets, 0);
    bench.read(FaultLinkBench::setting);
    bench.read(FaultLinkBench::setting);
    QCOMPARE(registers, registersGone);
    QCOMPARE(widgets, widgetsGone);
}

void FaultActionsTest::hostObjectsGoAtOnceWithoutANumber()
{
    FaultLinkBench bench;
    int gone = 0;
    FaultActions actions;
    actions.deleteRegisters = actions.deleteWidgets = [&gone] { ++gone; };
    bench.link.setActions(actions);
    QVERIFY(bench.on("delete-registers"));
    QCOMPARE(gone, 1);
    QVERIFY(bench.on("delete-widgets"));
    QCOMPARE(gone, 2);
    bench.results();
    QCOMPARE(gone, 2);
}

void FaultActionsTest::missingActionsDoNothing()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("reset:0") && bench.on("delete-registers") && bench.on("delete-widgets:1"));
    bench.write(FaultLinkBench::target0, 1);
    QCOMPARE(bench.results(), QStringLiteral("500 ok 10,-20 3ms"));
}

void FaultActionsTest::actionsMaySwitchFaultsOff()
{
    FaultLinkBench bench;
    FaultActions actions;
    actions.deleteRegisters = [&bench] { bench.link.switchOffAll(); };
    bench.link.setActions(actions);
    QVERIFY(bench.on("fail-reads") && bench.on("delete-registers:1"));
    QCOMPARE(bench.results(), QStringLiteral("500 ok 10,-20 3ms"));
}

void FaultActionsTest::spinLetsEventsThrough()
{
    FaultLinkBench bench;
    int events = 0;
    QMetaObject::invokeMethod(
        this, [&events] { ++events; }, Qt::QueuedConnection);
    bench.read(FaultLinkBench::setting);
    QCOMPARE(events, 0);
    QVERIFY(bench.on("spin"));
    QCOMPARE(bench.read(FaultLinkBench::setting), QStringLiteral("500"));
    QCOMPARE(events, 1);
}

void FaultActionsTest::spinDoesNotNestWithoutEnd()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("spin"));
    int depth = 0;
    int deepest = 0;
    const std::function<void()> ask = [&] {
        deepest = qMax(deepest, ++depth);
        QMetaObject::invokeMethod(
            this, [&] { ask(); }, Qt::QueuedConnection);
        bench.positions();
        --depth;
    };
    ask();
    QCOMPARE(deepest, 2);
    QCoreApplication::removePostedEvents(this);
}

QTEST_GUILESS_MAIN(FaultActionsTest)
#include "tst_fault_actions.moc"
