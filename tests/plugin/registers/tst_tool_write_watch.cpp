#include "RampBench.h"

#include "XmlProductIC.h"
#include "XmlRegisterWidget.h"

#include <QTest>

class ToolWriteWatchTest : public QObject
{
    Q_OBJECT

private slots:
    void writeOfARampRegisterChecksAgain_data();
    void writeOfARampRegisterChecksAgain();
    void writesFromAnywhereAreFollowed();
    void watchedAddressesComeFromTheProperty();
    void addressesAreComparedByNumber();
    void duplicateAddressesCheckOnce();
    void writesAfterTheToolIsGoneAreIgnored();
    void writesWhileTheToolDiesAreIgnored_data();
    void writesWhileTheToolDiesAreIgnored();
};

void ToolWriteWatchTest::writeOfARampRegisterChecksAgain_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isChecked");

    for (const char *axis : {"M0_", "M1_"}) {
        for (const char *setting : {"VMAX", "AMAX", "DMAX", "V1", "A1", "D1", "V2", "A2", "D2"}) {
            QTest::addRow("%s%s", axis, setting)
                << QLatin1String(axis) + QLatin1String(setting) << true;
        }
        for (const char *other : {"XTARGET", "XACTUAL", "VACTUAL"})
            QTest::addRow("%s%s", axis, other)
                << QLatin1String(axis) + QLatin1String(other) << false;
    }
    QTest::newRow("RAMPMODE") << QStringLiteral("RAMPMODE") << false;
}

void ToolWriteWatchTest::writeOfARampRegisterChecksAgain()
{
    QFETCH(QString, name);
    QFETCH(bool, isChecked);
    RampBench bench;
    bench.link.takeCalls();
    bench.tellWritten(ToolBench::address(name));
    QCOMPARE(bench.takeCalls(), isChecked ? readsOfAll() : QStringList());
}

void ToolWriteWatchTest::writesFromAnywhereAreFollowed()
{
    RampBench bench(1);
    auto *product = bench.module()->getIcProduct(1);
    auto *setting = product->getRegisterByName(QStringLiteral("M1_AMAX"), true);
    bench.module()->writeChannelRegister(setting, 0, 0);
    QVERIFY(bench.isMarked({}, {QStringLiteral("M1_AMAX")}));
    bench.module()->writeChannelRegister(setting, 1, 9);
    QVERIFY(bench.isUnmarked());
    bench.takeCalls();
    bench.tellWritten(ToolBench::address(QStringLiteral("M0_D2")), 200);
    QCOMPARE(bench.takeCalls(), readsOfAll(1));
}

void ToolWriteWatchTest::watchedAddressesComeFromTheProperty()
{
    RampBench bench;
    const unsigned int target = ToolBench::address(QStringLiteral("M0_XTARGET"));
    const unsigned int velocity = ToolBench::address(QStringLiteral("M0_VMAX"));
    bench.button->setProperty("RampList", QVariantList{target});
    bench.tellWritten(velocity);
    QVERIFY(bench.takeCalls().isEmpty());
    bench.tellWritten(target);
    QCOMPARE(bench.takeCalls(), readsOfAll());
    for (const QVariant &nothing : {QVariant(), QVariant(QVariantList()), QVariant(5)}) {
        bench.button->setProperty("RampList", nothing);
        bench.tellWritten(target);
        bench.tellWritten(velocity);
        QVERIFY(bench.takeCalls().isEmpty());
    }
}

void ToolWriteWatchTest::addressesAreComparedByNumber()
{
    RampBench bench;
    bench.button->setProperty("RampList", QVariantList{65535u, 300, qlonglong(40)});
    for (const unsigned int address : {65535u, 300u, 40u}) {
        bench.tellWritten(address);
        QCOMPARE(bench.takeCalls(), readsOfAll());
    }
    bench.tellWritten(44);
    QVERIFY(bench.takeCalls().isEmpty());
}

void ToolWriteWatchTest::duplicateAddressesCheckOnce()
{
    RampBench bench;
    bench.button->setProperty("RampList", QVariantList{7u, 7u, 7u});
    bench.tellWritten(7);
    QCOMPARE(bench.takeCalls(), readsOfAll());
}

void ToolWriteWatchTest::writesAfterTheToolIsGoneAreIgnored()
{
    RampBench bench;
    bench.tool()->showPlugin();
    bench.deleteTool();
    bench.takeCalls();
    bench.tellWritten(ToolBench::address(QStringLiteral("M0_VMAX")));
    QVERIFY(bench.takeCalls().isEmpty());
}

void ToolWriteWatchTest::writesWhileTheToolDiesAreIgnored_data()
{
    QTest::addColumn<QString>("dying");

    QTest::newRow("before the button") << QStringLiteral("spM0min");
    QTest::newRow("with the button") << QStringLiteral("btnShowPosition");
    QTest::newRow("after the button") << QStringLiteral("btnZoomIn");
}

void ToolWriteWatchTest::writesWhileTheToolDiesAreIgnored()
{
    QFETCH(QString, dying);
    RampBench bench;
    bench.tool()->showPlugin();
    bench.takeCalls();
    const QPointer<XmlRegisterWidget> row = bench.registerWidget("M1_XTARGET");
    bool isTold = false;
    connect(bench.tool()->findChild<QWidget *>(dying), &QObject::destroyed, this, [&] {
        bench.tellWritten(ToolBench::address(QStringLiteral("M0_VMAX")));
        if (row)
            emit row->valueChanged(9);
        isTold = true;
    });
    bench.deleteTool();
    QVERIFY(isTold);
    QVERIFY(bench.takeCalls().isEmpty());
}

QTEST_MAIN(ToolWriteWatchTest)
#include "tst_tool_write_watch.moc"
