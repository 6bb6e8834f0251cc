#include "TapeRig.h"

#include <QtTest>

using namespace workbench;

class TapeLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void anEmptyTapeAnswersNothing();
    void settingsAreAnsweredInTheirOrder();
    void settingsReadMoreOftenRepeatTheLastValue();
    void settingsReadLessOftenGoOnBehindTheNextWrite();
    void positionsAreAnsweredByTime();
    void positionsGoOnFromTheWriteWheneverThatComes();
    void positionsWaitForTheNextWrite();
    void earlyWritesSkipRestAndNoMovement();
    void velocitiesAreUnknownUntilRecordedInTheMove();
    void requestsTakeTheirTime();
    void failuresAreRepeated();
    void unknownRequestsFail();
    void writesInTheirOrderPass();
    void otherWritesAreDeviations_data();
    void otherWritesAreDeviations();
    void writesBehindTheEndAreDeviations();
    void afterADeviationTheTapeGoesOnWithItsNextWrite();
    void writesOfMeasuredValuesPass();
    void theEndIsBehindTheLastReply();
    void motorsAndArgumentsAreToldApart();
};

void TapeLinkTest::anEmptyTapeAnswersNothing()
{
    Player player{TapeMaker()};
    QCOMPARE(player.read(setting), QStringLiteral("failed"));
    QCOMPARE(player.positions(), QStringLiteral("failed"));
    QVERIFY(player.deviations.isEmpty());
    QVERIFY(player.link.isAtEnd());
    QVERIFY(!player.write(setting, 1));
    QCOMPARE(player.deviations.size(), 1);
}

void TapeLinkTest::settingsAreAnsweredInTheirOrder()
{
    Player player(TapeMaker().read(0, setting, 1).read(5, setting, 2).read(9, 0x99, 7));
    QCOMPARE(player.read(0x99), QStringLiteral("7"));
    QCOMPARE(player.read(setting), QStringLiteral("1"));
    QCOMPARE(player.read(setting), QStringLiteral("2"));
}

void TapeLinkTest::settingsReadMoreOftenRepeatTheLastValue()
{
    Player player(TapeMaker()
                      .read(0, setting, 1)
                      .read(1, setting, 2)
                      .write(2, setting, 3)
                      .read(3, setting, 4));
    QStringList seen;
    for (int i = 0; i < 4; ++i)
        seen << player.read(setting);
    QVERIFY(player.write(setting, 3));
    seen << player.read(setting) << player.read(setting);
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("1 2 2 2 4 4"));
}

void TapeLinkTest::settingsReadLessOftenGoOnBehindTheNextWrite()
{
    Player player(TapeMaker()
                      .read(0, setting, 1)
                      .read(1, setting, 2)
                      .write(2, target0, 3)
                      .read(3, setting, 4));
    QVERIFY(player.write(target0, 3));
    QCOMPARE(player.read(setting), QStringLiteral("4"));
    QVERIFY(player.deviations.isEmpty());
}

void TapeLinkTest::positionsAreAnsweredByTime()
{
    Player player(TapeMaker().positions(10, 1, -1).positions(20, 2, -2).positions(30, 3, -3));
    QCOMPARE(player.positions(), QStringLiteral("1,-1"));
    QStringList seen;
    for (int ms : {10, 15, 19, 20, 29, 30, 1000}) {
        player.waitUntil(ms);
        seen << player.positions();
    }
    QCOMPARE(seen.join(QLatin1Char(' ')), QStringLiteral("1,-1 1,-1 1,-1 2,-2 2,-2 3,-3 3,-3"));
}

void TapeLinkTest::positionsGoOnFromTheWriteWheneverThatComes()
{
    Player player(TapeMaker()
                      .positions(0, 1, 1)
                      .write(10, target0, 5)
                      .positions(20, 2, 2)
                      .positions(30, 3, 3));
    player.waitUntil(500);
    QCOMPARE(player.positions(), QStringLiteral("1,1"));
    player.waitUntil(600);
    QVERIFY(player.write(target0, 5));
    QCOMPARE(player.positions(), QStringLiteral("1,1"));
    player.waitUntil(610);
    QCOMPARE(player.positions(), QStringLiteral("2,2"));
    player.waitUntil(620);
    QCOMPARE(player.positions(), QStringLiteral("3,3"));
}

void TapeLinkTest::positionsWaitForTheNextWrite()
{
    Player player(TapeMaker()
                      .positions(0, 1, 1)
                      .write(10, target0, 5)
                      .positions(11, 2, 2)
                      .write(20, setting, 1));
    player.waitUntil(1000);
    QCOMPARE(player.positions(), QStringLiteral("1,1"));
    QVERIFY(!player.link.isAtEnd());
}

void TapeLinkTest::earlyWritesSkipRestAndNoMovement()
{
    Player player(TapeMaker()
                      .positions(0, 1, 1)
                      .write(1000, target0, 5)
                      .positions(1010, 2, 2)
                      .positions(1020, 3, 3)
                      .write(1030, setting, 1)
                      .read(1040, velocity0, 0));
    QVERIFY(player.write(target0, 5) && player.write(setting, 1));
    QStringList seen;
    for (int ms : {9, 10, 19, 20, 39}) {
        player.waitUntil(ms);
        seen << player.positions() + QLatin1Char(' ') + player.read(velocity0);
    }
    player.waitUntil(40);
    seen << player.read(velocity0);
    QCOMPARE(seen.join(QLatin1String("; ")),
             QStringLiteral("1,1 failed; 2,2 failed; 2,2 failed; 3,3 failed; 3,3 failed; 0"));
}

void TapeLinkTest::velocitiesAreUnknownUntilRecordedInTheMove()
{
    Player player(TapeMaker()
                      .write(0, target0, 5)
                      .read(50, velocity0, 0)
                      .write(60, target0, 6)
                      .read(110, velocity0, 9)
                      .read(160, velocity0, 0));
    QCOMPARE(player.read(velocity0), QStringLiteral("failed"));
    QVERIFY(player.write(target0, 5));
    QCOMPARE(player.read(velocity0), QStringLiteral("failed"));
    player.waitUntil(50);
    QCOMPARE(player.read(velocity0), QStringLiteral("0"));
    player.waitUntil(1000);
    QVERIFY(player.write(target0, 6));
    QCOMPARE(player.read(velocity0), QStringLiteral("failed"));
    player.waitUntil(1050);
    QCOMPARE(player.read(velocity0), QStringLiteral("9"));
    QCOMPARE(player.read(velocity0), QStringLiteral("9"));
    player.waitUntil(1100);
    QCOMPARE(player.read(velocity0), QStringLiteral("0"));
}

void TapeLinkTest::requestsTakeTheirTime()
{
    TapeMaker maker;
    maker.read(0, setting, 1);
    maker.tape.entries.last().tookNs = 30 * msInNs;
    Player player(maker);
    player.read(setting);
    QCOMPARE(player.clock.now(), 30 * msInNs);
    player.read(0x99);
    QCOMPARE(player.clock.now(), 30 * msInNs);
}

void TapeLinkTest::failuresAreRepeated()
{
    Player player(TapeMaker()
                      .read(0, setting, 1)
                      .failed()
                      .read(1, setting, 1)
                      .positions(2, 1, 1)
                      .failed()
                      .write(3, setting, 1)
                      .failed()
                      .write(4, setting, 2));
    QCOMPARE(player.read(setting), QStringLiteral("failed"));
    QCOMPARE(player.read(setting), QStringLiteral("1"));
    QCOMPARE(player.positions(), QStringLiteral("failed"));
    QVERIFY(!player.write(setting, 1));
    QVERIFY(player.write(setting, 2));
    QVERIFY(player.deviations.isEmpty());
}

void TapeLinkTest::unknownRequestsFail()
{
    Player player(TapeMaker().read(0, setting, 1).positions(1, 1, 1));
    QCOMPARE(player.read(0x55), QStringLiteral("failed"));
    unsigned char a = 0;
    unsigned char b = 0;
    unsigned int reply = 0;
    QVERIFY(!player.link.userFunction(&a, &b, 0x10, 0, 0, &reply));
    QVERIFY(player.deviations.isEmpty());
}

void TapeLinkTest::writesInTheirOrderPass()
{
    Player player(TapeMaker().write(0, setting, 0).write(1, target0, 5).write(2, setting, 500));
    QVERIFY(player.write(setting, 0) && player.write(target0, 5) && player.write(setting, 500));
    QVERIFY(player.deviations.isEmpty());
    QVERIFY(player.link.deviation().isEmpty());
}

void TapeLinkTest::otherWritesAreDeviations_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("motor");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("other value") << int(setting) << 0 << 1
                                 << "write 0x13 m0 1, but the tape has write 0x13 m0 0 there";
    QTest::newRow("other register")
        << int(target0) << 0 << 0 << "write 0x12 m0 0, but the tape has write 0x13 m0 0 there";
    QTest::newRow("other motor") << int(setting) << 1 << 0
                                 << "write 0x13 m1 0, but the tape has write 0x13 m0 0 there";
    QTest::newRow("the one after the next")
        << int(target0) << 0 << 5 << "write 0x12 m0 5, but the tape has write 0x13 m0 0 there";
}

void TapeLinkTest::otherWritesAreDeviations()
{
    QFETCH(int, address);
    QFETCH(int, motor);
    QFETCH(int, value);
    Player player(TapeMaker().write(0, setting, 0).write(1, target0, 5));
    QVERIFY(
        !player.link.writeRegister(unsigned(address), static_cast<unsigned char>(motor), value));
    QTEST(player.link.deviation(), "text");
    QCOMPARE(player.deviations, QStringList{player.link.deviation()});
}

void TapeLinkTest::writesBehindTheEndAreDeviations()
{
    Player player(TapeMaker().write(0, setting, 0));
    QVERIFY(player.write(setting, 0));
    QVERIFY(!player.write(setting, 0));
    QCOMPARE(player.link.deviation(),
             QStringLiteral("write 0x13 m0 0, but the tape has no further write there"));
}

void TapeLinkTest::afterADeviationTheTapeGoesOnWithItsNextWrite()
{
    Player player(TapeMaker().write(0, setting, 0).write(1, target0, 5));
    QVERIFY(!player.write(setting, 1));
    QVERIFY(!player.write(setting, 2));
    QVERIFY(player.write(setting, 0));
    QVERIFY(player.write(target0, 5));
    QCOMPARE(player.deviations.size(), 2);
    QCOMPARE(player.link.deviation(), player.deviations.constFirst());
}

void TapeLinkTest::writesOfMeasuredValuesPass()
{
    Player player(TapeMaker().write(0, position0, 17).write(1, setting, 5));
    QVERIFY(player.write(position0, 18));
    QVERIFY(player.write(0x21, 3));
    QVERIFY(player.write(setting, 5));
    QVERIFY(player.deviations.isEmpty());
}

void TapeLinkTest::theEndIsBehindTheLastReply()
{
    Player player(TapeMaker().write(0, setting, 0).positions(10, 1, 1));
    player.waitUntil(50);
    QVERIFY(!player.link.isAtEnd());
    QVERIFY(player.write(setting, 0));
    QVERIFY(!player.link.isAtEnd());
    player.waitUntil(60);
    QVERIFY(!player.link.isAtEnd());
    player.waitUntil(61);
    QVERIFY(player.link.isAtEnd());
}

void TapeLinkTest::motorsAndArgumentsAreToldApart()
{
    TapeMaker maker;
    maker.read(0, setting, 1).read(1, setting, 2);
    maker.tape.entries.last().motor = 1;
    Player player(maker);
    int value = 0;
    QVERIFY(player.link.readRegister(setting, 1, &value));
    QCOMPARE(value, 2);
    QVERIFY(player.link.readRegister(setting, 0, &value));
    QCOMPARE(value, 1);
    QVERIFY(!player.link.readRegister(setting, 2, &value));
}

QTEST_GUILESS_MAIN(TapeLinkTest)
#include "tst_tape_link.moc"
