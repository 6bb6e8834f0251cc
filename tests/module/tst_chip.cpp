#include "ChipCommands.h"
#include "MotionObserver.h"
#include "ShippedChip.h"

#include <QtTest>

#include <limits>
#include <memory>

using namespace workbench;

class ChipTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void everyReadableRegisterStartsWithItsResetValue();
    void unknownAddressesAreRefused();
    void readOnlyRegistersAreNotWritten();
    void registerKeepsTheBitsOfItsFields_data();
    void registerKeepsTheBitsOfItsFields();
    void chipWithoutMotionRegistersStandsStill();
    void timeDoesNotRunBackwards();
    void resetReturnsEverythingToTheBeginning();
    void statusTellsTargetAndStandstill();
    void otherRampModesHoldTheAxes();

private:
    std::optional<ChipDescription> description;
    std::unique_ptr<SimulatedChip> chip;
};

void ChipTest::initTestCase()
{
    description = readShippedChip();
    QVERIFY(description);
}

void ChipTest::init()
{
    chip = std::make_unique<SimulatedChip>(*description);
}

void ChipTest::everyReadableRegisterStartsWithItsResetValue()
{
    for (const RegisterDescription &entry : description->registers) {
        int value = entry.resetValue + 1;
        QVERIFY2(chip->read(entry.address, &value), qPrintable(entry.name));
        QCOMPARE(value, entry.resetValue);
    }
}

void ChipTest::unknownAddressesAreRefused()
{
    int value = 77;
    QVERIFY(!chip->read(0xFFFF, &value));
    QVERIFY(!chip->read(std::numeric_limits<unsigned int>::max(), &value));
    QVERIFY(!chip->write(0xFFFF, 1));
    QCOMPARE(value, 77);
}

void ChipTest::readOnlyRegistersAreNotWritten()
{
    int readOnlyCount = 0;
    for (const RegisterDescription &entry : description->registers) {
        if (entry.access != RegisterAccess::ReadOnly)
            continue;
        ++readOnlyCount;
        QVERIFY2(!chip->write(entry.address, 5), qPrintable(entry.name));
        QCOMPARE(readByName(*chip, entry.name), entry.resetValue);
    }
    QVERIFY(readOnlyCount >= 4);
}

void ChipTest::registerKeepsTheBitsOfItsFields_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("written");
    QTest::addColumn<int>("held");
    const QString target = QStringLiteral("M0_XTARGET");
    QTest::newRow("position") << target << 1234 << 1234;
    QTest::newRow("negative position") << target << -1 << -1;
    QTest::newRow("negative position as 24 bits") << target << 0xFFFFFF << -1;
    QTest::newRow("field written over a negative one") << target << int(0xFF000005u) << 5;
    QTest::newRow("lowest position") << target << minimumPosition << minimumPosition;
    QTest::newRow("highest position") << target << maximumPosition << maximumPosition;
    QTest::newRow("all of 32 bits") << QStringLiteral("M1_VMAX") << intMin << intMin;
    QTest::newRow("unsigned field") << QStringLiteral("RAMPMODE") << -1 << 0xFFFF;
}

void ChipTest::registerKeepsTheBitsOfItsFields()
{
    QFETCH(QString, name);
    QFETCH(int, written);
    QFETCH(int, held);
    QVERIFY(writeByName(*chip, name, written));
    QCOMPARE(readByName(*chip, name), held);
}

void ChipTest::chipWithoutMotionRegistersStandsStill()
{
    ChipDescription small;
    small.registers.append(RegisterDescription());
    small.registers.first().name = QStringLiteral("M0_XTARGET");
    small.registers.first().access = RegisterAccess::WriteOnly;
    SimulatedChip bare(small);
    QVERIFY(bare.write(0, 500));
    bare.advanceTo(1000 * msInNs);
    int value = 77;
    QVERIFY(!bare.read(0, &value));
    QCOMPARE(value, 77);
    QCOMPARE(bare.position(0), 0);
    QVERIFY(!bare.isMoving());
}

void ChipTest::timeDoesNotRunBackwards()
{
    setTarget(*chip, 0, 1000);
    chip->advanceTo(500 * msInNs);
    const int position = chip->position(0);
    QVERIFY(position > 0);
    chip->advanceTo(100 * msInNs);
    chip->advanceTo(-1);
    QCOMPARE(chip->position(0), position);
    chip->advanceTo(501 * msInNs);
    QVERIFY(chip->position(0) > position);
}

void ChipTest::resetReturnsEverythingToTheBeginning()
{
    setTargets(*chip, 1000, -1000);
    writeByName(*chip, QStringLiteral("M1_AMAX"), 1);
    chip->advanceTo(300 * msInNs);
    QVERIFY(chip->isMoving());
    chip->reset();
    everyReadableRegisterStartsWithItsResetValue();
    QVERIFY(!chip->isMoving());
    chip->advanceTo(5000 * msInNs);
    everyReadableRegisterStartsWithItsResetValue();
    setTarget(*chip, 0, 100);
    chip->advanceTo(10000 * msInNs);
    QCOMPARE(chip->position(0), 100);
}

void ChipTest::statusTellsTargetAndStandstill()
{
    const QString status = QStringLiteral("M0_STATUS");
    QCOMPARE(readByName(*chip, status), 3);
    setTarget(*chip, 0, 1000);
    QCOMPARE(readByName(*chip, status), 2);
    chip->advanceTo(100 * msInNs);
    QCOMPARE(readByName(*chip, status), 0);
    chip->advanceTo(5000 * msInNs);
    QCOMPARE(readByName(*chip, status), 3);
}

void ChipTest::otherRampModesHoldTheAxes()
{
    for (int mode : {1, 2, 767, 769, 0xFFFF}) {
        chip->reset();
        setMode(*chip, mode);
        setTargets(*chip, 1000, 1000);
        chip->advanceTo(100000 * msInNs);
        QCOMPARE(chip->position(0), 0);
        QCOMPARE(chip->position(1), 0);
    }
}

QTEST_GUILESS_MAIN(ChipTest)
#include "tst_chip.moc"
