#include "ChipDescription.h"
#include "FaultLinkBench.h"

#include <QtTest>

#include <limits>

using namespace bench;

class TestFaultLink : public QObject
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

    void sameSeedRepeatsReplies_data();
    void sameSeedRepeatsReplies();
    void otherSeedsGiveOtherReplies_data();
    void otherSeedsGiveOtherReplies();
    void chanceOfAFaultDoesNotDependOnOthers();
    void probabilityIsTheShareOfReplies_data();
    void probabilityIsTheShareOfReplies();
    void corruptFlipsOneBit();

    void staleAnswersWithTheReplyBefore();
    void staleBytesOfARegisterAreZero();
    void failEveryCountsAllRequests();
    void frozenPositionsHoldWhatWasSeenFirst();
    void frozenPositionsAreTakenAnewWhenSwitchedOnAgain();
    void stuckAxisStandsWhileTheOtherGoesOn();
    void jumpComesAndGoes();
    void spoiltPositionsStayWithinTheAxis();
    void noiseStaysWithinItsBounds();
    void otherUserFunctionsAreNoPositions();
    void zeroVelocityLastsForAWhileInEachMove();
    void zeroVelocityLeavesOtherRegistersAlone();
    void slowMultipliesTheTimeOfTheDevice();
    void resetComesOnceInAMove();
    void resetWaitsForATarget();
    void hostObjectsGoInTheMiddleOfARequest_data();
    void hostObjectsGoInTheMiddleOfARequest();
    void hostObjectsGoAtOnceWithoutANumber();
    void missingActionsDoNothing();
    void actionsMaySwitchFaultsOff();
    void spinLetsEventsThrough();
    void spinDoesNotNestWithoutEnd();
    void registersAreFoundByName();
};

void TestFaultLink::withoutFaultsEverythingPassesUnchanged()
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

void TestFaultLink::faultsSpoilRequests_data()
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

void TestFaultLink::faultsSpoilRequests()
{
    QFETCH(QString, results);
    QFETCH(int, callCount);
    FaultLinkBench bench;
    QVERIFY(bench.on(QTest::currentDataTag()));
    QCOMPARE(bench.results(), results);
    QCOMPARE(bench.device.calls.size(), callCount);
}

void TestFaultLink::switchedOffTheLinkWorksAgain_data()
{
    QTest::addColumn<bool>("isAllOff");
    for (const FaultInfo &info : faultTable()) {
        QTest::newRow(qPrintable(info.name)) << false;
        QTest::newRow(qPrintable(info.name + QStringLiteral(" with all off"))) << true;
    }
}

void TestFaultLink::switchedOffTheLinkWorksAgain()
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

void TestFaultLink::activeFaultsAreListedInTheOrderOfTheTable()
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

void TestFaultLink::aFaultSwitchedOnAgainTakesTheNewParameter()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("late:10") && bench.on("late:20"));
    QCOMPARE(bench.results(), QStringLiteral("500 ok 10,-20 63ms"));
    QCOMPARE(bench.link.active().size(), 1);
}

void TestFaultLink::severalFaultsActTogether()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("late:10") && bench.on("jump:100") && bench.on("fail-reads"));
    QCOMPARE(bench.results(), QStringLiteral("failed ok 110,80 22ms"));
}

void TestFaultLink::aFailureOfTheDeviceStaysOne()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("stale") && bench.on("noise") && bench.on("corrupt:1"));
    bench.device.failReads = bench.device.failWrites = bench.device.failUserFunctions = true;
    QCOMPARE(bench.results(), QStringLiteral("failed failed failed 3ms"));
}

// Faults that depend on chance, each with what it gives in many requests.
static void addFaultsOfChance()
{
    QTest::addColumn<QString>("fault");
    for (const char *fault : {"lose:0.5", "corrupt:0.5", "noise:100000"})
        QTest::newRow(fault) << QString::fromLatin1(fault);
}

static QStringList manyReplies(const QString &fault, quint32 seed,
                               const QString &otherFault = QString())
{
    FaultLinkBench bench(seed);
    for (const QString &text : {otherFault, fault}) {
        if (!text.isEmpty() && !bench.on(qPrintable(text)))
            return {};
    }
    QStringList replies;
    for (int i = 0; i < 50; ++i)
        replies << bench.read(FaultLinkBench::setting) << bench.positions();
    return replies;
}

void TestFaultLink::sameSeedRepeatsReplies_data()
{
    addFaultsOfChance();
}

void TestFaultLink::sameSeedRepeatsReplies()
{
    QFETCH(QString, fault);
    const QStringList replies = manyReplies(fault, 7);
    QCOMPARE(replies.size(), 100);
    QCOMPARE(manyReplies(fault, 7), replies);
}

void TestFaultLink::otherSeedsGiveOtherReplies_data()
{
    addFaultsOfChance();
}

void TestFaultLink::otherSeedsGiveOtherReplies()
{
    QFETCH(QString, fault);
    QVERIFY(manyReplies(fault, 7) != manyReplies(fault, 8));
}

void TestFaultLink::chanceOfAFaultDoesNotDependOnOthers()
{
    const QString lose = QStringLiteral("lose:0.5");
    QCOMPARE(manyReplies(lose, 7, QStringLiteral("noise:0")), manyReplies(lose, 7));
    QCOMPARE(manyReplies(lose, 7, QStringLiteral("corrupt:0")), manyReplies(lose, 7));
}

void TestFaultLink::probabilityIsTheShareOfReplies_data()
{
    QTest::addColumn<double>("share");
    QTest::newRow("lose:0.1") << 0.1;
    QTest::newRow("lose:0.9") << 0.9;
    QTest::newRow("corrupt:0.1") << 0.1;
    QTest::newRow("corrupt:1") << 1.0;
}

void TestFaultLink::probabilityIsTheShareOfReplies()
{
    QFETCH(double, share);
    FaultLinkBench bench;
    QVERIFY(bench.on(QTest::currentDataTag()));
    constexpr int count = 10000;
    int spoilt = 0;
    for (int i = 0; i < count; ++i)
        spoilt += bench.read(FaultLinkBench::setting) == QStringLiteral("500") ? 0 : 1;
    const double seen = double(spoilt) / count;
    QVERIFY2(qAbs(seen - share) < 0.015, qPrintable(QString::number(seen)));
}

void TestFaultLink::corruptFlipsOneBit()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("corrupt:1"));
    quint64 flipped = 0;
    const PositionReply right = packPositions(10, -20);
    for (int i = 0; i < 2000; ++i) {
        PositionReply reply;
        QVERIFY(
            bench.link.userFunction(&reply.a, &reply.b, bothPositionsFunction, 0, 0, &reply.value));
        const quint64 wrong = quint64(reply.value ^ right.value) |
                              quint64(reply.a ^ right.a) << 32 | quint64(reply.b ^ right.b) << 40;
        QCOMPARE(qPopulationCount(wrong), 1u);
        flipped |= wrong;
    }
    QCOMPARE(flipped, (quint64(1) << 48) - 1);
    quint32 flippedInRegister = 0;
    for (int i = 0; i < 2000; ++i)
        flippedInRegister |= quint32(bench.read(FaultLinkBench::setting).toInt() ^ 500);
    QCOMPARE(flippedInRegister, std::numeric_limits<quint32>::max());
}

void TestFaultLink::staleAnswersWithTheReplyBefore()
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

void TestFaultLink::staleBytesOfARegisterAreZero()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("stale"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
    QCOMPARE(bench.positions(), QStringLiteral("0,30"));
    QCOMPARE(bench.positions(), QStringLiteral("10,-20"));
}

void TestFaultLink::failEveryCountsAllRequests()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("fail-every:3"));
    QStringList seen;
    for (int i = 0; i < 3; ++i)
        seen << bench.read(FaultLinkBench::velocity0) << bench.positions();
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("30 10,-20 failed 10,-20 30 failed"));
}

void TestFaultLink::frozenPositionsHoldWhatWasSeenFirst()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("frozen-positions"));
    QCOMPARE(bench.positions(), QStringLiteral("10,-20"));
    bench.device.position0 = 11;
    bench.device.position1 = -21;
    bench.device.values[FaultLinkBench::position0] = 11;
    QCOMPARE(bench.positions(), QStringLiteral("10,-20"));
    QCOMPARE(bench.read(FaultLinkBench::position0), QStringLiteral("10"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
    bench.link.switchOff(FaultKind::FrozenPositions);
    QCOMPARE(bench.positions(), QStringLiteral("11,-21"));
}

void TestFaultLink::frozenPositionsAreTakenAnewWhenSwitchedOnAgain()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("frozen-positions"));
    bench.positions();
    bench.device.position0 = 11;
    QVERIFY(bench.on("frozen-positions"));
    QCOMPARE(bench.positions(), QStringLiteral("11,-20"));
}

void TestFaultLink::stuckAxisStandsWhileTheOtherGoesOn()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("stuck-axis:1"));
    bench.positions();
    bench.device.position0 = 11;
    bench.device.position1 = -21;
    bench.device.values[0x21] = 40;
    QCOMPARE(bench.positions(), QStringLiteral("11,-20"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
    QCOMPARE(bench.read(0x21), QStringLiteral("0"));
}

void TestFaultLink::jumpComesAndGoes()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("jump:1000"));
    QStringList seen;
    for (int ms : {0, 98, 0, 398, 0, 0}) {
        bench.clock.advance(ms * FaultLinkBench::msInNs);
        seen << bench.read(FaultLinkBench::position0);
    }
    // Asked at 1, 100, 101, 500, 501 and 502 ms.
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("1010 10 10 1010 1010 1010"));
}

void TestFaultLink::spoiltPositionsStayWithinTheAxis()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("jump:1000000"));
    bench.device.position0 = 8388600;
    bench.device.position1 = -8388608;
    QCOMPARE(bench.positions(), QStringLiteral("8388607,-7388608"));
}

void TestFaultLink::noiseStaysWithinItsBounds()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("noise:3"));
    QSet<int> seen;
    for (int i = 0; i < 300; ++i)
        seen.insert(bench.read(FaultLinkBench::position0).toInt());
    QCOMPARE(seen, (QSet<int>{7, 8, 9, 10, 11, 12, 13}));
    QCOMPARE(bench.read(FaultLinkBench::setting), QStringLiteral("500"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
}

void TestFaultLink::otherUserFunctionsAreNoPositions()
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

void TestFaultLink::zeroVelocityLastsForAWhileInEachMove()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("zero-velocity:100"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("0"));
    bench.clock.advance(98 * FaultLinkBench::msInNs);
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("0"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("30"));
    QCOMPARE(bench.write(FaultLinkBench::target0, 5), QStringLiteral("ok"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("0"));
}

void TestFaultLink::zeroVelocityLeavesOtherRegistersAlone()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("zero-velocity"));
    QCOMPARE(bench.read(FaultLinkBench::velocity0), QStringLiteral("0"));
    QCOMPARE(bench.read(FaultLinkBench::position0), QStringLiteral("10"));
    QCOMPARE(bench.read(FaultLinkBench::setting), QStringLiteral("500"));
}

void TestFaultLink::slowMultipliesTheTimeOfTheDevice()
{
    FaultLinkBench bench;
    bench.device.onRequest = [&bench] { bench.clock.advance(3 * FaultLinkBench::msInNs); };
    QVERIFY(bench.on("slow:4"));
    bench.read(FaultLinkBench::setting);
    QCOMPARE(bench.clock.now(), 12 * FaultLinkBench::msInNs);
}

void TestFaultLink::resetComesOnceInAMove()
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

void TestFaultLink::resetWaitsForATarget()
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

void TestFaultLink::hostObjectsGoInTheMiddleOfARequest_data()
{
    QTest::addColumn<int>("registersGone");
    QTest::addColumn<int>("widgetsGone");
    QTest::newRow("delete-registers:2") << 1 << 0;
    QTest::newRow("delete-widgets:2") << 0 << 1;
}

void TestFaultLink::hostObjectsGoInTheMiddleOfARequest()
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

void TestFaultLink::hostObjectsGoAtOnceWithoutANumber()
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

void TestFaultLink::missingActionsDoNothing()
{
    FaultLinkBench bench;
    QVERIFY(bench.on("reset:0") && bench.on("delete-registers") && bench.on("delete-widgets:1"));
    bench.write(FaultLinkBench::target0, 1);
    QCOMPARE(bench.results(), QStringLiteral("500 ok 10,-20 3ms"));
}

void TestFaultLink::actionsMaySwitchFaultsOff()
{
    FaultLinkBench bench;
    FaultActions actions;
    actions.deleteRegisters = [&bench] { bench.link.switchOffAll(); };
    bench.link.setActions(actions);
    QVERIFY(bench.on("fail-reads") && bench.on("delete-registers:1"));
    QCOMPARE(bench.results(), QStringLiteral("500 ok 10,-20 3ms"));
}

void TestFaultLink::spinLetsEventsThrough()
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

void TestFaultLink::spinDoesNotNestWithoutEnd()
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

void TestFaultLink::registersAreFoundByName()
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
    const AxisRegisters found = AxisRegisters::of(chip);
    QVERIFY(contains(found.position, 5) && contains(found.velocity, 6) &&
            contains(found.target, 7));
    QCOMPARE(found.position[0].value_or(0), 5u);
    QCOMPARE(found.velocity[1].value_or(0), 6u);
    QVERIFY(!found.position[1] && !found.velocity[0] && !found.target[0]);
    QVERIFY(!contains(found.position, 0));
}

QTEST_GUILESS_MAIN(TestFaultLink)
#include "tst_fault_link.moc"
