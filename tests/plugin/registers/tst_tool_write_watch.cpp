#include "RampRig.h"

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
    RampRig rig;
    rig.link.takeCalls();
    rig.tellWritten(ToolRig::address(name));
    QCOMPARE(rig.takeCalls(), isChecked ? readsOfAll() : QStringList());
}

void ToolWriteWatchTest::writesFromAnywhereAreFollowed()
{
    RampRig rig(1);
    auto *product = rig.module()->getIcProduct(1);
    auto *setting = product->getRegisterByName(QStringLiteral("M1_AMAX"), true);
    rig.module()->writeChannelRegister(setting, 0, 0);
    QVERIFY(rig.isMarked({}, {QStringLiteral("M1_AMAX")}));
    rig.module()->writeChannelRegister(setting, 1, 9);
    QVERIFY(rig.isUnmarked());
    rig.takeCalls();
    rig.tellWritten(ToolRig::address(QStringLiteral("M0_D2")), 200);
    QCOMPARE(rig.takeCalls(), readsOfAll(1));
}

void ToolWriteWatchTest::watchedAddressesComeFromTheProperty()
{
    RampRig rig;
    const unsigned int target = ToolRig::address(QStringLiteral("M0_XTARGET"));
    const unsigned int velocity = ToolRig::address(QStringLiteral("M0_VMAX"));
    rig.button->setProperty("RampList", QVariantList{target});
    rig.tellWritten(velocity);
    QVERIFY(rig.takeCalls().isEmpty());
    rig.tellWritten(target);
    QCOMPARE(rig.takeCalls(), readsOfAll());
    for (const QVariant &nothing : {QVariant(), QVariant(QVariantList()), QVariant(5)}) {
        rig.button->setProperty("RampList", nothing);
        rig.tellWritten(target);
        rig.tellWritten(velocity);
        QVERIFY(rig.takeCalls().isEmpty());
    }
}

void ToolWriteWatchTest::addressesAreComparedByNumber()
{
    RampRig rig;
    rig.button->setProperty("RampList", QVariantList{65535u, 300, qlonglong(40)});
    for (const unsigned int address : {65535u, 300u, 40u}) {
        rig.tellWritten(address);
        QCOMPARE(rig.takeCalls(), readsOfAll());
    }
    rig.tellWritten(44);
    QVERIFY(rig.takeCalls().isEmpty());
}

void ToolWriteWatchTest::duplicateAddressesCheckOnce()
{
    RampRig rig;
    rig.button->setProperty("RampList", QVariantList{7u, 7u, 7u});
    rig.tellWritten(7);
    QCOMPARE(rig.takeCalls(), readsOfAll());
}

void ToolWriteWatchTest::writesAfterTheToolIsGoneAreIgnored()
{
    RampRig rig;
    rig.tool()->showPlugin();
    rig.deleteTool();
    rig.takeCalls();
    rig.tellWritten(ToolRig::address(QStringLiteral("M0_VMAX")));
    QVERIFY(rig.takeCalls().isEmpty());
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
    RampRig rig;
    rig.tool()->showPlugin();
    rig.takeCalls();
    const QPointer<XmlRegisterWidget> row = rig.registerWidget("M1_XTARGET");
    bool isTold = false;
    connect(rig.tool()->findChild<QWidget *>(dying), &QObject::destroyed, this, [&] {
        rig.tellWritten(ToolRig::address(QStringLiteral("M0_VMAX")));
        if (row)
            emit row->valueChanged(9);
        isTold = true;
    });
    rig.deleteTool();
    QVERIFY(isTold);
    QVERIFY(rig.takeCalls().isEmpty());
}

QTEST_MAIN(ToolWriteWatchTest)
#include "tst_tool_write_watch.moc"
