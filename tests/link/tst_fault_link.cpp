#include "ChipDescription.h"
#include "FaultLinkRig.h"

#include <QtTest>

using namespace workbench;

class FaultLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutFaultsEverythingPassesUnchanged();
    void faultsSpoilRequests_data();
    void faultsSpoilRequests();
    void switchedOffTheLinkWorksAgain_data();
    void switchedOffTheLinkWorksAgain();
    void activeFaultsAreListedInTheOrderOfTheTable();
    void aFaultSwitchedOnAgainTakesTheNewParameter();
    void severalFaultsActTogether();
    void aFailureOfTheDeviceStaysOne();

    void staleAnswersWithTheReplyBefore();
    void staleBytesOfARegisterAreZero();
    void failEveryCountsAllRequests();
    void slowMultipliesTheTimeOfTheDevice();
    void otherUserFunctionsAreNoPositions();
    void registersAreFoundByName();
};

void FaultLinkTest::withoutFaultsEverythingPassesUnchanged()
{
    FaultLinkRig rig;
    QCOMPARE(rig.results(), QStringLiteral("500 ok 10,-20 3ms"));
    QCOMPARE(rig.device.takeCalls(),
             (QStringList{QStringLiteral("read 0x13 m0"), QStringLiteral("write 0x13 m0 7"),
                          QStringLiteral("user 0xFD")}));
    unsigned char a = 1;
    unsigned char b = 2;
    unsigned int reply = 0;
    rig.link.userFunction(&a, &b, bothPositionsFunction, 3, 4, &reply);
    QCOMPARE(rig.device.userRequest, QByteArray("\x01\x02\xFD\x03\x04"));
    QVERIFY(rig.link.active().isEmpty());
}

void FaultLinkTest::faultsSpoilRequests_data()
{
    QTest::addColumn<QString>("results");
    QTest::addColumn<int>("callCount");
    const auto row = [](const char *fault, const char *results, int callCount) {
        QTest::newRow(fault) << QString::fromLatin1(results) << callCount;
    };
    row("no-reply", "failed failed failed 63ms", 3);
    row("late:40", "500 ok 10,-20 123ms", 3);
    row("late:0", "500 ok 10,-20 3ms", 3);
    row("slow:10", "500 ok 10,-20 30ms", 3);
    row("slow:1", "500 ok 10,-20 3ms", 3);
    row("lose:1", "failed failed failed 63ms", 3);
    row("lose:0", "500 ok 10,-20 3ms", 3);
    row("stale", "500 ok 0,500 3ms", 3);
    row("corrupt:0", "500 ok 10,-20 3ms", 3);
    row("fail-every:1", "failed failed failed 0ms", 0);
    row("fail-every:2", "500 failed 10,-20 2ms", 2);
    row("fail-reads", "failed ok 10,-20 2ms", 2);
    row("fail-writes", "500 failed 10,-20 2ms", 2);
    row("fail-user", "500 ok failed 2ms", 2);
    row("ignore-writes", "500 ok 10,-20 2ms", 2);
    row("half-write", "500 failed 10,-20 3ms", 3);
    row("duplicate-write", "500 ok 10,-20 4ms", 4);
    row("frozen-positions", "500 ok 10,-20 3ms", 3);
    row("stuck-axis:1", "500 ok 10,-20 3ms", 3);
    row("jump:100", "500 ok 110,80 3ms", 3);
    row("jump:-100", "500 ok -90,-120 3ms", 3);
    row("noise:0", "500 ok 10,-20 3ms", 3);
    row("zero-velocity", "500 ok 10,-20 3ms", 3);
    row("reset", "500 ok 10,-20 3ms", 3);
    row("unplug", "failed failed failed 0ms", 0);
    row("delete-registers", "500 ok 10,-20 3ms", 3);
    row("delete-widgets", "500 ok 10,-20 3ms", 3);
    row("spin", "500 ok 10,-20 3ms", 3);
}

void FaultLinkTest::faultsSpoilRequests()
{
    QFETCH(QString, results);
    QFETCH(int, callCount);
    FaultLinkRig rig;
    QVERIFY(rig.on(QTest::currentDataTag()));
    QCOMPARE(rig.results(), results);
    QCOMPARE(rig.device.calls.size(), callCount);
}

void FaultLinkTest::switchedOffTheLinkWorksAgain_data()
{
    QTest::addColumn<bool>("isAllOff");
    for (const FaultInfo &info : faultTable()) {
        QTest::newRow(qPrintable(info.name)) << false;
        QTest::newRow(qPrintable(info.name + QStringLiteral(" with all off"))) << true;
    }
}

void FaultLinkTest::switchedOffTheLinkWorksAgain()
{
    QFETCH(bool, isAllOff);
    const QString name =
        QString::fromLatin1(QTest::currentDataTag()).section(QLatin1Char(' '), 0, 0);
    const FaultKind kind = parseFault(name).fault->kind;
    FaultLinkRig rig;
    rig.link.switchOn(presetFault(kind));
    QVERIFY(rig.link.isOn(kind));
    rig.results();
    if (isAllOff)
        rig.link.switchOffAll();
    else
        rig.link.switchOff(kind);
    QVERIFY(!rig.link.isOn(kind));
    rig.device.values[FaultLinkRig::setting] = 500;
    QCOMPARE(rig.results(), QStringLiteral("500 ok 10,-20 3ms"));
}

void FaultLinkTest::activeFaultsAreListedInTheOrderOfTheTable()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("spin") && rig.on("noise:5") && rig.on("late"));
    QStringList names;
    const auto active = rig.link.active();
    for (const Fault &fault : active)
        names << faultText(fault);
    QCOMPARE(names.join(QLatin1Char(' ')), QStringLiteral("late:50 noise:5 spin"));
    rig.link.switchOff(FaultKind::Noise);
    QCOMPARE(rig.link.active().size(), 2);
}

void FaultLinkTest::aFaultSwitchedOnAgainTakesTheNewParameter()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("late:10") && rig.on("late:20"));
    QCOMPARE(rig.results(), QStringLiteral("500 ok 10,-20 63ms"));
    QCOMPARE(rig.link.active().size(), 1);
}

void FaultLinkTest::severalFaultsActTogether()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("late:10") && rig.on("jump:100") && rig.on("fail-reads"));
    QCOMPARE(rig.results(), QStringLiteral("failed ok 110,80 22ms"));
}

void FaultLinkTest::aFailureOfTheDeviceStaysOne()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("stale") && rig.on("noise") && rig.on("corrupt:1"));
    rig.device.failReads = rig.device.failWrites = rig.device.failUserFunctions = true;
    QCOMPARE(rig.results(), QStringLiteral("failed failed failed 3ms"));
}

void FaultLinkTest::staleAnswersWithTheReplyBefore()
{
    FaultLinkRig rig;
    QCOMPARE(rig.read(FaultLinkRig::setting), QStringLiteral("500"));
    QVERIFY(rig.on("stale"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("500"));
    QCOMPARE(rig.write(FaultLinkRig::setting, 7), QStringLiteral("ok"));
    QCOMPARE(rig.read(FaultLinkRig::setting), QStringLiteral("30"));
    QCOMPARE(rig.read(FaultLinkRig::setting), QStringLiteral("7"));
    rig.link.switchOff(FaultKind::Stale);
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("30"));
}

void FaultLinkTest::staleBytesOfARegisterAreZero()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("stale"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("30"));
    QCOMPARE(rig.positions(), QStringLiteral("0,30"));
    QCOMPARE(rig.positions(), QStringLiteral("10,-20"));
}

void FaultLinkTest::failEveryCountsAllRequests()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("fail-every:3"));
    QStringList seen;
    for (int i = 0; i < 3; ++i)
        seen << rig.read(FaultLinkRig::velocity0) << rig.positions();
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("30 10,-20 failed 10,-20 30 failed"));
}

void FaultLinkTest::slowMultipliesTheTimeOfTheDevice()
{
    FaultLinkRig rig;
    rig.device.onRequest = [&rig] { rig.clock.advance(3 * FaultLinkRig::msInNs); };
    QVERIFY(rig.on("slow:4"));
    rig.read(FaultLinkRig::setting);
    QCOMPARE(rig.clock.now(), 12 * FaultLinkRig::msInNs);
}

void FaultLinkTest::otherUserFunctionsAreNoPositions()
{
    struct AnyFunction : RecordingLink
    {
        bool userFunction(unsigned char *, unsigned char *, unsigned char, unsigned char,
                          unsigned char, unsigned int *reply) override
        {
            *reply = 99;
            return true;
        }
    } device;
    SteppedClock clock;
    FaultyLink link(device, clock, {});
    link.switchOn({FaultKind::Jump, 5});
    unsigned char a = 1;
    unsigned char b = 2;
    unsigned int reply = 0;
    QVERIFY(link.userFunction(&a, &b, 0x10, 0, 0, &reply));
    QCOMPARE(reply, 99u);
    QCOMPARE(int(a), 1);
}

void FaultLinkTest::registersAreFoundByName()
{
    ChipDescription chip;
    for (const auto &entry :
         QVector<QPair<QString, unsigned int>>{{QStringLiteral("M0_XACTUAL"), 5},
                                               {QStringLiteral("M1_VACTUAL"), 6},
                                               {QStringLiteral("M1_XTARGET"), 7},
                                               {QStringLiteral("M0_VMAX"), 8}}) {
        RegisterDescription described;
        described.name = entry.first;
        described.address = entry.second;
        chip.registers.append(described);
    }
    const AxisAddresses found = chip.axisAddresses();
    QVERIFY(contains(found.position, 5) && contains(found.velocity, 6) &&
            contains(found.target, 7));
    QCOMPARE(found.position[0].value_or(0), 5u);
    QCOMPARE(found.velocity[1].value_or(0), 6u);
    QVERIFY(!found.position[1] && !found.velocity[0] && !found.target[0]);
    QVERIFY(!contains(found.position, 0));
}

QTEST_GUILESS_MAIN(FaultLinkTest)
#include "tst_fault_link.moc"
