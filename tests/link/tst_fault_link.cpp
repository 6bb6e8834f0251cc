#include "ChipDescription.h"
#include "FaultLinkBench.h"

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
    FaultLinkBench bench;
    QCOMPARE(bench.results(), QStringLiteral("500 ok 10,-20 3ms"));
    QCOMPARE(bench.device.takeCalls(),
             (QStringList{QStringLiteral("read 0x13 m0"), QStringLiteral("write 0x13 m0 7"),
                          QStringLiteral("user 0xFD")}));
    unsigned char a = 1;
    unsigned char b = 2;
    unsigned int reply = 0;
    bench.link.userFunction(&a, &b, bothPositionsFunction, 3, 4, &reply);
    QCOMPARE(bench.device.userRequest, QByteArray("\x01\x02\xFD\x03\x04"));
    QVERIFY(bench.link.active().isEmpty());
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
    FaultLinkBench bench;
    QVERIFY(bench.on(QTest::currentDataTag()));
    QCOMPARE(bench.results(), results);
    QCOMPARE(bench.device.calls.size(), callCount);
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
    FaultLinkBench bench;
    bench.link.switchOn(presetFault(kind));
    QVERIFY(bench.link.isOn(kind));
    bench.results();
    if (isAllOff)
        bench.link.switchOffAll();
    else
        bench.link.switchOff(kind);
    QVERIFY(!bench.link.isOn(kind));
    bench.device.values[FaultLinkBench::setting] = 500;
    QCOMPARE(bench.results(), QStringLiteral("500 ok 10,-20 3ms"));
}

void FaultLinkTest::activeFaultsAreListedInTheOrderOfTheTable()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("spin") && bench.on("noise:5") && bench.on("late"));
    QStringList names;
    const auto active = bench.link.active();
    for (const Fault &fault : active)
        names << faultText(fault);
    QCOMPARE(names.join(QLatin1Char(' ')), QStringLiteral("late:50 noise:5 spin"));
    bench.link.switchOff(FaultKind::Noise);
    QCOMPARE(bench.link.active().size(), 2);
}

void FaultLinkTest::aFaultSwitchedOnAgainTakesTheNewParameter()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("late:10") && bench.on("late:20"));
    QCOMPARE(bench.results(), QStringLiteral("500 ok 10,-20 63ms"));
    QCOMPARE(bench.link.active().size(), 1);
}

void FaultLinkTest::severalFaultsActTogether()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("late:10") && bench.on("jump:100") && bench.on("fail-reads"));
    QCOMPARE(bench.results(), QStringLiteral("failed ok 110,80 22ms"));
}

void FaultLinkTest::aFailureOfTheDeviceStaysOne()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("stale") && bench.on("noise") && bench.on("corrupt:1"));
    bench.device.failReads = bench.device.failWrites = bench.device.failUserFunctions = true;
    QCOMPARE(bench.results(), QStringLiteral("failed failed failed 3ms"));
}

void FaultLinkTest::staleAnswersWithTheReplyBefore()
{
    FaultLinkBench bench;
    QCOMPARE(bench.read(FaultLinkBench::setting), QStringLiteral("500"));
    QVERIFY(bench.on("stale"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("500"));
    QCOMPARE(bench.write(FaultLinkBench::setting, 7), QStringLiteral("ok"));
    QCOMPARE(bench.read(FaultLinkBench::setting), QStringLiteral("30"));
    QCOMPARE(bench.read(FaultLinkBench::setting), QStringLiteral("7"));
    bench.link.switchOff(FaultKind::Stale);
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
}

void FaultLinkTest::staleBytesOfARegisterAreZero()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("stale"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
    QCOMPARE(bench.positions(), QStringLiteral("0,30"));
    QCOMPARE(bench.positions(), QStringLiteral("10,-20"));
}

void FaultLinkTest::failEveryCountsAllRequests()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("fail-every:3"));
    QStringList seen;
    for (int i = 0; i < 3; ++i)
        seen << bench.read(FaultLinkBench::velocity0) << bench.positions();
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("30 10,-20 failed 10,-20 30 failed"));
}

void FaultLinkTest::slowMultipliesTheTimeOfTheDevice()
{
    FaultLinkBench bench;
    bench.device.onRequest = [&bench] { bench.clock.advance(3 * FaultLinkBench::msInNs); };
    QVERIFY(bench.on("slow:4"));
    bench.read(FaultLinkBench::setting);
    QCOMPARE(bench.clock.now(), 12 * FaultLinkBench::msInNs);
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
