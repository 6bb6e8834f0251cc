#include "FaultLinkRig.h"

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
    FaultLinkRig rig;
    QVector<qint64> resets;
    FaultActions actions;
    actions.resetChip = [&resets](qint64 ns) { resets << ns / FaultLinkRig::msInNs; };
    rig.link.setActions(actions);
    QVERIFY(rig.on("reset:10"));
    rig.clock.advance(5 * FaultLinkRig::msInNs);
    rig.write(FaultLinkRig::target0, 1); // asked at 5 ms
    for (int i = 0; i < 9; ++i)
        rig.positions();
    QVERIFY(resets.isEmpty());
    rig.clock.advance(20 * FaultLinkRig::msInNs);
    rig.positions();
    QCOMPARE(resets, QVector<qint64>{15});
    rig.write(FaultLinkRig::target0, 1);
    rig.clock.advance(50 * FaultLinkRig::msInNs);
    rig.positions();
    QCOMPARE(resets.size(), 1);
}

void FaultActionsTest::resetWaitsForATarget()
{
    FaultLinkRig rig;
    int resets = 0;
    FaultActions actions;
    actions.resetChip = [&resets](qint64) { ++resets; };
    rig.link.setActions(actions);
    QVERIFY(rig.on("reset:0"));
    rig.clock.advance(50 * FaultLinkRig::msInNs);
    rig.write(FaultLinkRig::setting, 1);
    rig.read(FaultLinkRig::target0);
    QCOMPARE(resets, 0);
    rig.write(FaultLinkRig::target0, 1);
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
    FaultLinkRig rig;
    int registers = 0;
    int widgets = 0;
    QStringList callsBefore;
    FaultActions actions;
    actions.deleteRegisters = [&] { ++registers; };
    actions.deleteWidgets = [&] { ++widgets; };
    rig.link.setActions(actions);
    QVERIFY(rig.on(QTest::currentDataTag()));
    rig.read(FaultLinkRig::setting);
    QCOMPARE(registers + widgets, 0);
    rig.read(FaultLinkRig::setting);
    rig.read(FaultLinkRig::setting);
    QCOMPARE(registers, registersGone);
    QCOMPARE(widgets, widgetsGone);
}

void FaultActionsTest::hostObjectsGoAtOnceWithoutANumber()
{
    FaultLinkRig rig;
    int gone = 0;
    FaultActions actions;
    actions.deleteRegisters = actions.deleteWidgets = [&gone] { ++gone; };
    rig.link.setActions(actions);
    QVERIFY(rig.on("delete-registers"));
    QCOMPARE(gone, 1);
    QVERIFY(rig.on("delete-widgets"));
    QCOMPARE(gone, 2);
    rig.results();
    QCOMPARE(gone, 2);
}

void FaultActionsTest::missingActionsDoNothing()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("reset:0") && rig.on("delete-registers") && rig.on("delete-widgets:1"));
    rig.write(FaultLinkRig::target0, 1);
    QCOMPARE(rig.results(), QStringLiteral("500 ok 10,-20 3ms"));
}

void FaultActionsTest::actionsMaySwitchFaultsOff()
{
    FaultLinkRig rig;
    FaultActions actions;
    actions.deleteRegisters = [&rig] { rig.link.switchOffAll(); };
    rig.link.setActions(actions);
    QVERIFY(rig.on("fail-reads") && rig.on("delete-registers:1"));
    QCOMPARE(rig.results(), QStringLiteral("500 ok 10,-20 3ms"));
}

void FaultActionsTest::spinLetsEventsThrough()
{
    FaultLinkRig rig;
    int events = 0;
    QMetaObject::invokeMethod(
        this, [&events] { ++events; }, Qt::QueuedConnection);
    rig.read(FaultLinkRig::setting);
    QCOMPARE(events, 0);
    QVERIFY(rig.on("spin"));
    QCOMPARE(rig.read(FaultLinkRig::setting), QStringLiteral("500"));
    QCOMPARE(events, 1);
}

void FaultActionsTest::spinDoesNotNestWithoutEnd()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("spin"));
    int depth = 0;
    int deepest = 0;
    const std::function<void()> ask = [&] {
        deepest = qMax(deepest, ++depth);
        QMetaObject::invokeMethod(
            this, [&] { ask(); }, Qt::QueuedConnection);
        rig.positions();
        --depth;
    };
    ask();
    QCOMPARE(deepest, 2);
    QCoreApplication::removePostedEvents(this);
}

QTEST_GUILESS_MAIN(FaultActionsTest)
#include "tst_fault_actions.moc"
