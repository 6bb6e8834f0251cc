#include "Clock.h"
#include "MotionObserver.h"
#include "PositionPacking.h"
#include "ShippedChip.h"
#include "SimulatedChip.h"
#include "SimulatedLink.h"

#include <QtTest>

#include <functional>
#include <memory>

using namespace workbench;

namespace {

constexpr qint64 msInNs = 1000000;
constexpr unsigned char motor = 0;
constexpr unsigned char positionsFunction = 0xFD;

// Bits 0 to 23 of a number as a signed value, by arithmetic of its own.
int signed24(unsigned int bits)
{
    const int low = int(bits % 0x1000000);
    return low >= 0x800000 ? low - 0x1000000 : low;
}

using Positions = std::array<int, 2>;

} // namespace

class SimulatedLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void positionsArePackedIntoSixBytes_data();
    void positionsArePackedIntoSixBytes();
    void userFunctionAnswersWithBothPositions();
    void otherUserFunctionsFailAndLeaveTheBytesAlone();
    void refusedRequestsFail();
    void eachRequestTakesItsCost_data();
    void eachRequestTakesItsCost();
    void requestActsAtTheTimeItIsAnswered();
    void requestsAreCounted();
    void startSequenceStartsBothAxesTogether();
    void startSequenceWithOneZeroVelocityDoesNotStart();
    void startSequenceDuringAMoveArrives();
    void stopSequenceEndsOnItsTarget();
    void steadyClockWaitsAtLeastAsLongAsAsked();
    void steppedClockMovesWhenToldTo();

private:
    unsigned int address(const QString &name) const;
    bool write(const QString &name, int value);
    int read(const QString &name);
    Positions askPositions();
    void startMove(int target0, int target1, const std::function<void()> &afterFirstVelocity = {});
    bool waitForStandstill();

    std::optional<ChipDescription> description;
    std::unique_ptr<SimulatedChip> chip;
    std::unique_ptr<SteppedClock> clock;
    std::unique_ptr<SimulatedLink> link;
};

void SimulatedLinkTest::initTestCase()
{
    description = readShippedChip();
    QVERIFY(description);
}

void SimulatedLinkTest::init()
{
    chip = std::make_unique<SimulatedChip>(*description);
    clock = std::make_unique<SteppedClock>();
    link = std::make_unique<SimulatedLink>(*chip, *clock);
}

unsigned int SimulatedLinkTest::address(const QString &name) const
{
    const RegisterDescription *entry = description->findRegister(name);
    return entry ? entry->address : ~0u;
}

bool SimulatedLinkTest::write(const QString &name, int value)
{
    return link->writeRegister(address(name), motor, value);
}

int SimulatedLinkTest::read(const QString &name)
{
    int value = 0;
    link->readRegister(address(name), motor, &value);
    return value;
}

Positions SimulatedLinkTest::askPositions()
{
    unsigned char a = 0;
    unsigned char b = 0x48;
    unsigned int reply = 0;
    if (!link->userFunction(&a, &b, positionsFunction, 0, motor, &reply))
        return {};
    return {signed24(a * 0x10000u + b * 0x100u + reply / 0x1000000), signed24(reply)};
}

// The requests with which the panel starts a move.
void SimulatedLinkTest::startMove(int target0, int target1,
                                  const std::function<void()> &afterFirstVelocity)
{
    const int vMax0 = read(QStringLiteral("M0_VMAX"));
    const int vMax1 = read(QStringLiteral("M1_VMAX"));
    QVERIFY(write(QStringLiteral("M0_VMAX"), 0));
    QVERIFY(write(QStringLiteral("M1_VMAX"), 0));
    QVERIFY(write(QStringLiteral("RAMPMODE"), 0));
    QVERIFY(write(QStringLiteral("M1_XTARGET"), target1));
    QVERIFY(write(QStringLiteral("RAMPMODE"), 768));
    QVERIFY(write(QStringLiteral("M0_XTARGET"), target0));
    QVERIFY(write(QStringLiteral("M1_XTARGET"), target1));
    QVERIFY(write(QStringLiteral("M0_VMAX"), vMax0));
    if (afterFirstVelocity)
        afterFirstVelocity();
    QVERIFY(write(QStringLiteral("M1_VMAX"), vMax1));
}

bool SimulatedLinkTest::waitForStandstill()
{
    for (int i = 0; i < 20000; ++i) {
        if (read(QStringLiteral("M0_VACTUAL")) == 0 && read(QStringLiteral("M1_VACTUAL")) == 0)
            return true;
    }
    return false;
}

void SimulatedLinkTest::positionsArePackedIntoSixBytes_data()
{
    QTest::addColumn<int>("axis0");
    QTest::addColumn<int>("axis1");
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<unsigned int>("value");
    QTest::newRow("zero") << 0 << 0 << 0 << 0 << 0u;
    QTest::newRow("all bytes different") << 0x010203 << 0x040506 << 1 << 2 << 0x03040506u;
    QTest::newRow("both -1") << -1 << -1 << 0xFF << 0xFF << 0xFFFFFFFFu;
    QTest::newRow("axis 0 at -1") << -1 << 0 << 0xFF << 0xFF << 0xFF000000u;
    QTest::newRow("axis 1 at -1") << 0 << -1 << 0 << 0 << 0x00FFFFFFu;
    QTest::newRow("lowest and highest") << -8388608 << 8388607 << 0x80 << 0 << 0x007FFFFFu;
    QTest::newRow("highest and lowest") << 8388607 << -8388608 << 0x7F << 0xFF << 0xFF800000u;
    QTest::newRow("example") << 66051 << -2 << 1 << 2 << 0x03FFFFFEu;
}

void SimulatedLinkTest::positionsArePackedIntoSixBytes()
{
    QFETCH(int, axis0);
    QFETCH(int, axis1);
    QFETCH(int, a);
    QFETCH(int, b);
    QFETCH(unsigned int, value);
    const LinkReply reply = packPositions(axis0, axis1);
    QCOMPARE(int(reply.a), a);
    QCOMPARE(int(reply.b), b);
    QCOMPARE(reply.value, value);
}

void SimulatedLinkTest::userFunctionAnswersWithBothPositions()
{
    QCOMPARE(askPositions(), (Positions{0, 0}));
    write(QStringLiteral("M0_XTARGET"), -300);
    write(QStringLiteral("M1_XTARGET"), 70000);
    clock->advance(60000 * msInNs);
    QCOMPARE(askPositions(), (Positions{-300, 70000}));
    QCOMPARE(read(QStringLiteral("M0_XACTUAL")), -300);
    QCOMPARE(read(QStringLiteral("M1_XACTUAL")), 70000);
}

void SimulatedLinkTest::otherUserFunctionsFailAndLeaveTheBytesAlone()
{
    for (int function : {0, 1, 0xFC, 0xFE, 0xFF}) {
        unsigned char a = 11;
        unsigned char b = 22;
        unsigned int reply = 33;
        QVERIFY(
            !link->userFunction(&a, &b, static_cast<unsigned char>(function), 0, motor, &reply));
        QCOMPARE(int(a), 11);
        QCOMPARE(int(b), 22);
        QCOMPARE(reply, 33u);
    }
}

void SimulatedLinkTest::refusedRequestsFail()
{
    int value = 5;
    QVERIFY(!link->readRegister(0xFFFF, motor, &value));
    QCOMPARE(value, 5);
    QVERIFY(!link->writeRegister(0xFFFF, motor, 1));
    QVERIFY(!write(QStringLiteral("M0_XACTUAL"), 1));
    QCOMPARE(read(QStringLiteral("M0_XACTUAL")), 0);
    QCOMPARE(link->counts().total(), quint64(4));
}

void SimulatedLinkTest::eachRequestTakesItsCost_data()
{
    QTest::addColumn<qint64>("cost");
    QTest::addColumn<qint64>("taken");
    QTest::newRow("default") << SimulatedLink::defaultRequestCostNs << qint64(1500000);
    QTest::newRow("nothing") << qint64(0) << qint64(0);
    QTest::newRow("negative") << qint64(-7) << qint64(0);
    QTest::newRow("long") << qint64(20000000) << qint64(60000000);
}

void SimulatedLinkTest::eachRequestTakesItsCost()
{
    QFETCH(qint64, cost);
    QFETCH(qint64, taken);
    QCOMPARE(link->requestCostNs(), SimulatedLink::defaultRequestCostNs);
    link->setRequestCostNs(cost);
    read(QStringLiteral("M0_VMAX"));
    write(QStringLiteral("M0_VMAX"), 5);
    askPositions();
    QCOMPARE(clock->now(), taken);
}

void SimulatedLinkTest::requestActsAtTheTimeItIsAnswered()
{
    link->setRequestCostNs(100 * msInNs);
    write(QStringLiteral("M0_XTARGET"), 1000);
    QVERIFY(!chip->isMoving());
    // 100 ms after the write: 6.25 in 50 ms at A1, then 50 ms at A2 from V1.
    QCOMPARE(askPositions()[0], 24);
}

void SimulatedLinkTest::requestsAreCounted()
{
    read(QStringLiteral("M0_VMAX"));
    read(QStringLiteral("nothing"));
    read(QStringLiteral("M1_VMAX"));
    write(QStringLiteral("M0_VMAX"), 5);
    write(QStringLiteral("M0_XACTUAL"), 5);
    askPositions();
    QCOMPARE(link->counts().reads, quint64(3));
    QCOMPARE(link->counts().writes, quint64(2));
    QCOMPARE(link->counts().userFunctions, quint64(1));
    QCOMPARE(link->counts().total(), quint64(6));
}

void SimulatedLinkTest::startSequenceStartsBothAxesTogether()
{
    startMove(1600, -1000, [this] {
        QCOMPARE(read(QStringLiteral("M0_VACTUAL")), 0);
        QCOMPARE(askPositions(), (Positions{0, 0}));
        clock->advance(1000 * msInNs);
        QCOMPARE(askPositions(), (Positions{0, 0}));
    });
    MotionObserver observer(*chip, clock->now());
    do {
        observer.step(msInNs / 2);
        const auto at = observer.positions();
        QVERIFY(std::abs(at[0] * -1000 - at[1] * 1600) <= 1887); // one unit off the line
        QVERIFY(observer.time() < 10000 * msInNs);
    } while (chip->isMoving());
    QCOMPARE(observer.positions(), (Positions{1600, -1000}));
    QCOMPARE(observer.lastMoving()[0], observer.lastMoving()[1]);
    QCOMPARE(observer.violation(), QString());
}

void SimulatedLinkTest::startSequenceWithOneZeroVelocityDoesNotStart()
{
    for (int axis : {0, 1}) {
        init();
        write(axisRegister(axis, "VMAX"), 0);
        startMove(500, 500);
        clock->advance(5000 * msInNs);
        QCOMPARE(askPositions(), (Positions{0, 0}));
        QCOMPARE(read(axisRegister(axis, "VMAX")), 0);
    }
}

void SimulatedLinkTest::startSequenceDuringAMoveArrives()
{
    startMove(2000, 2000);
    clock->advance(600 * msInNs);
    startMove(-300, 400);
    QVERIFY(waitForStandstill());
    QCOMPARE(askPositions(), (Positions{-300, 400}));
}

void SimulatedLinkTest::stopSequenceEndsOnItsTarget()
{
    for (int ms = 50; ms < 1500; ms += 50) {
        init();
        startMove(2000, 1200);
        clock->advance(ms * msInNs);
        const Positions actual = askPositions();
        QVERIFY(read(QStringLiteral("M0_VACTUAL")) != 0);
        MotionObserver observer(*chip, clock->now());

        write(QStringLiteral("M0_XTARGET"), actual[0]);
        observer.step(clock->now() - observer.time());
        write(QStringLiteral("M1_XTARGET"), actual[1]);
        observer.step(clock->now() - observer.time());
        write(QStringLiteral("RAMPMODE"), 0);
        observer.step(clock->now() - observer.time());
        QVERIFY(observer.runToStandstill(10, msInNs / 2));
        QCOMPARE(observer.positions(), actual);
        observer.run(1, 10 * msInNs);
        QCOMPARE(observer.positions(), actual);
        QCOMPARE(observer.violation(), QString());
    }
}

void SimulatedLinkTest::steadyClockWaitsAtLeastAsLongAsAsked()
{
    SteadyClock steady;
    for (qint64 ns : {qint64(-5), qint64(0), qint64(20000), qint64(500000), qint64(3000000)}) {
        const qint64 before = steady.now();
        steady.wait(ns);
        QVERIFY(steady.now() - before >= ns);
    }
}

void SimulatedLinkTest::steppedClockMovesWhenToldTo()
{
    QCOMPARE(clock->now(), qint64(0));
    clock->advance(5);
    clock->wait(7);
    clock->advance(0);
    clock->advance(-3);
    clock->wait(-3);
    QCOMPARE(clock->now(), qint64(12));
}

QTEST_GUILESS_MAIN(SimulatedLinkTest)
#include "tst_simulated_link.moc"
