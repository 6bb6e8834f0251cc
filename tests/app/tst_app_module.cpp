#include "SampleTap.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"

#include "HostRegistry.h"
#include "XmlProductIC.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QTest>

using workbench::Sample;
using workbench::SampleTap;
using workbench::SimulatedModule;

class AppModuleTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void isRegisteredUnderItsKey();
    void describesTheChipForBothMotors();
    void keepsReadOnlyRegistersReadOnly();
    void requestsReachTheChipAndCostTime();
    void looksRegistersUpWithoutARequest();
    void catchesUpWithoutARequest();
    void tapReportsThePositionsThatCameBack_data();
    void tapReportsThePositionsThatCameBack();
    void tapReportsNoFailedRequest();

private:
    XmlValueRegister *reg(const char *name)
    {
        return module->hostModule().getIcProduct(0)->getRegisterByName(QLatin1String(name), true);
    }

    workbench::SteppedClock clock;
    std::unique_ptr<SimulatedModule> module;
};

void AppModuleTest::init()
{
    const auto chip = readShippedChip();
    QVERIFY(chip);
    module = std::make_unique<SimulatedModule>(*chip, clock);
}

void AppModuleTest::isRegisteredUnderItsKey()
{
    QCOMPARE(HostRegistry::plugin(QStringLiteral("module-1/")), &module->hostModule());
    QCOMPARE(module->hostModule().name(), QStringLiteral("Dual axis"));
}

void AppModuleTest::describesTheChipForBothMotors()
{
    XmlProductIC *const first = module->hostModule().getIcProduct(0);
    QVERIFY(first);
    QCOMPARE(module->hostModule().getIcProduct(1), first);
    QVERIFY(!module->hostModule().getIcProduct(2));
    for (const auto &described : module->chip().description().registers) {
        XmlValueRegister *const made = first->getRegisterByName(described.name, true);
        QVERIFY2(made, qPrintable(described.name));
        QCOMPARE(made->address(), described.address);
        for (const auto &field : described.fields) {
            auto *const madeField =
                first->getRegisterFieldByIdentifier(field.identifier, false, true);
            QVERIFY2(madeField, qPrintable(field.identifier));
            QCOMPARE(madeField->getRegister(), made);
            QCOMPARE(madeField->getName(), field.name);
        }
    }
}

void AppModuleTest::keepsReadOnlyRegistersReadOnly()
{
    QVERIFY(!module->hostModule().writeChannelRegister(reg("M0_XACTUAL"), 0, 5));
    QCOMPARE(module->link().counts().total(), quint64(0));
    QVERIFY(module->hostModule().writeChannelRegister(reg("M0_VMAX"), 0, 5));
    QCOMPARE(module->link().counts().total(), quint64(1));
}

void AppModuleTest::requestsReachTheChipAndCostTime()
{
    const qint64 before = clock.now();
    QVERIFY(module->hostModule().writeChannelRegister(reg("M1_VMAX"), 1, 1234));
    int value = 0;
    QVERIFY(module->hostModule().readChannelRegister(reg("M1_VMAX"), 0, &value));
    QCOMPARE(value, 1234);
    QCOMPARE(clock.now() - before, 2 * module->link().requestCostNs());
}

void AppModuleTest::looksRegistersUpWithoutARequest()
{
    QCOMPARE(module->registerValue(QStringLiteral("M0_VMAX")), std::optional<int>(2000));
    QCOMPARE(module->registerValue(QStringLiteral("NOSUCH")), std::optional<int>());
    QCOMPARE(module->link().counts().total(), quint64(0));
}

void AppModuleTest::catchesUpWithoutARequest()
{
    QVERIFY(module->hostModule().writeChannelRegister(reg("RAMPMODE"), 0, 768));
    QVERIFY(module->hostModule().writeChannelRegister(reg("M0_XTARGET"), 0, 1000));
    clock.advance(60000000000);
    module->catchUp();
    QCOMPARE(module->chip().position(0), 1000);
    QVERIFY(!module->chip().isMoving());
}

void AppModuleTest::tapReportsThePositionsThatCameBack_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::newRow("positive") << 66051 << 258;
    QTest::newRow("negative") << -2 << -66051;
    QTest::newRow("ends") << -8388608 << 8388607;
}

void AppModuleTest::tapReportsThePositionsThatCameBack()
{
    QFETCH(int, x);
    QFETCH(int, y);
    auto &host = module->hostModule();
    QVERIFY(host.writeChannelRegister(reg("M0_XTARGET"), 0, x));
    QVERIFY(host.writeChannelRegister(reg("M1_XTARGET"), 0, y));
    clock.advance(qint64(10000) * 1000000000);

    SampleTap tap(module->link(), clock);
    QVector<Sample> samples;
    tap.onSample = [&](const Sample &sample) { samples.append(sample); };
    unsigned char a = 0;
    unsigned char b = 0;
    unsigned int reply = 0;
    QVERIFY(tap.userFunction(&a, &b, 0xFD, 0, 0, &reply));
    QCOMPARE(samples.size(), 1);
    QCOMPARE(samples.constFirst().position, QPoint(x, y));
    QCOMPARE(samples.constFirst().timeNs, clock.now());
}

void AppModuleTest::tapReportsNoFailedRequest()
{
    SampleTap tap(module->link(), clock);
    int samples = 0;
    tap.onSample = [&](const Sample &) { ++samples; };
    unsigned char a = 0;
    unsigned char b = 0;
    unsigned int reply = 0;
    QVERIFY(!tap.userFunction(&a, &b, 0x01, 0, 0, &reply));
    QCOMPARE(samples, 0);
    int value = 0;
    QVERIFY(tap.writeRegister(reg("M0_VMAX")->address(), 0, 77));
    QVERIFY(tap.readRegister(reg("M0_VMAX")->address(), 0, &value));
    QCOMPARE(value, 77);
}

QTEST_MAIN(AppModuleTest)
#include "tst_app_module.moc"
