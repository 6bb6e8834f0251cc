#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "RegisterRig.h"

#include "XmlRegisterWidgetContainer.h"

#include <QFormLayout>
#include <QTest>

namespace {

const QStringList boundNames =
    rowNames + QStringList{QStringLiteral("RAMPMODE"), QStringLiteral("M0_VMAX"),
                           QStringLiteral("M0_VACTUAL"), QStringLiteral("M1_VMAX"),
                           QStringLiteral("M1_VACTUAL")};

QStringList rampNames()
{
    QStringList names{QStringLiteral("M0_VMAX"), QStringLiteral("M1_VMAX")};
    for (const char *axis : {"M0_", "M1_"}) {
        for (const char *setting : {"AMAX", "DMAX", "V1", "A1", "D1", "V2", "A2", "D2"})
            names << QLatin1String(axis) + QLatin1String(setting);
    }
    return names;
}

QVariantList addressesOf(const QStringList &names)
{
    QVariantList addresses;
    for (const QString &name : names)
        addresses << ToolRig::address(name);
    return addresses;
}

QVariantList rampListOf(const ToolRig &rig)
{
    return rig.widget<QWidget>("btnShowPosition")->property("RampList").toList();
}

QString toolTipFor(QStringList names)
{
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        return ToolRig::address(a) < ToolRig::address(b);
    });
    QString text = QStringLiteral("Show Register Browser with:");
    for (const QString &name : qAsConst(names)) {
        const QString digits = QString::number(ToolRig::address(name), 16).toUpper();
        text += QStringLiteral("\n0x%1 : %2").arg(digits, name);
    }
    return text;
}

} // namespace

class ToolRegistersTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void boundRegistersAreListedAscending();
    void listIsSortedByNumberAndKeepsDuplicates();
    void toolTipNamesEachRegister();
    void missingRegistersAreLeftOut_data();
    void missingRegistersAreLeftOut();
    void missingRampRegistersAreLeftOut_data();
    void missingRampRegistersAreLeftOut();
    void registerThatVanishesHasAnEmptyName();
    void hiddenRegistersAndFieldsAreNotBound();
    void rampRegistersAreListedInLookUpOrder();
    void bindingSendsNothing();
    void toolWithoutChipHasNoRowsAndNoLists();
    void bindingIsMadeOnce();
    void chipIsThatOfTheMotor_data();
    void chipIsThatOfTheMotor();
};

void ToolRegistersTest::boundRegistersAreListedAscending()
{
    ToolRig rig;
    QVariantList expected = addressesOf(boundNames);
    std::sort(expected.begin(), expected.end(),
              [](const QVariant &a, const QVariant &b) { return a.toUInt() < b.toUInt(); });
    const QVariantList list = registerListOf(rig);
    QCOMPARE(list.size(), 9);
    QCOMPARE(list, expected);
    for (const QVariant &address : list)
        QCOMPARE(address.userType(), static_cast<int>(QMetaType::UInt));
}

void ToolRegistersTest::listIsSortedByNumberAndKeepsDuplicates()
{
    OwnChip chip;
    chip.add(100, "RAMPMODE");
    chip.add(0x90000000u, "M0_VMAX");
    chip.add(0x1000, "M1_VMAX");
    chip.add(9, "M1_VACTUAL");
    XmlValueRegister *both = chip.add(20, "POSITIONS");
    chip.addField(both, "M0_XACTUAL", 0, 16);
    chip.addField(both, "M1_XACTUAL", 16, 16);
    const QWidget *tool = chip.makeTool();
    QCOMPARE(chip.list("btnShowRegister", "RegList"),
             (QVariantList{9u, 20u, 20u, 100u, 0x1000u, 0x90000000u}));
    QCOMPARE(tool->findChild<QWidget *>(QStringLiteral("btnShowRegister"))->toolTip(),
             QStringLiteral("Show Register Browser with:\n0x09 : M1_VACTUAL\n0x14 : POSITIONS\n"
                            "0x14 : POSITIONS\n0x64 : RAMPMODE\n0x1000 : M1_VMAX\n"
                            "0x90000000 : M0_VMAX"));
    QCOMPARE(chip.list("btnShowPosition", "RampList"), (QVariantList{0x90000000u, 0x1000u}));
}

void ToolRegistersTest::toolTipNamesEachRegister()
{
    ToolRig rig;
    QCOMPARE(rig.widget<QWidget>("btnShowRegister")->toolTip(), toolTipFor(boundNames));
}

void ToolRegistersTest::missingRegistersAreLeftOut_data()
{
    QTest::addColumn<QString>("name");

    for (const QString &name : boundNames)
        QTest::newRow(qPrintable(name)) << name;
}

void ToolRegistersTest::missingRegistersAreLeftOut()
{
    QFETCH(QString, name);
    RigGaps gaps;
    gaps.registers << name;
    ToolRig rig(0, gaps);
    QCOMPARE(registerListOf(rig).size(), 8);
    QVERIFY(!registerListOf(rig).contains(ToolRig::address(name)));
    QCOMPARE(rig.widget<QWidget>("btnShowRegister")->toolTip(),
             toolTipFor(without(boundNames, name)));
    QCOMPARE(rowsOf(rig), without(rowNames, name));
    // A move goes on with what there is.
    rig.show();
    rig.setTarget({30, 40});
    rig.updateTick();
    rig.call("on_pbStart_clicked");
    rig.sample(1, 2);
    rig.updateTick();
    rig.updateTick();
    rig.call("on_pbStop_clicked");
    QVERIFY(rig.takeCalls().filter(name).isEmpty());
    QCOMPARE(rig.actual()->at(0), QPointF(1, 2));
}

void ToolRegistersTest::missingRampRegistersAreLeftOut_data()
{
    QTest::addColumn<QString>("name");

    for (const QString &name : rampNames())
        QTest::newRow(qPrintable(name)) << name;
}

void ToolRegistersTest::missingRampRegistersAreLeftOut()
{
    QFETCH(QString, name);
    RigGaps gaps;
    gaps.registers << name;
    ToolRig rig(0, gaps);
    QCOMPARE(rampListOf(rig), addressesOf(without(rampNames(), name)));
}

void ToolRegistersTest::registerThatVanishesHasAnEmptyName()
{
    OwnChip chip;
    const QPointer<XmlValueRegister> mode = chip.add(0x33, "RAMPMODE");
    // Between the look-up and the list.
    EventWatch watch([&](QObject *receiver, QEvent *event) {
        const auto *widget = qobject_cast<QWidget *>(receiver);
        if (event->type() == QEvent::ParentChange && widget &&
            qobject_cast<QFormLayout *>(widget->layout()))
            delete mode.data();
    });
    const QWidget *tool = chip.makeTool();
    QVERIFY(!mode);
    QCOMPARE(tool->findChild<QWidget *>(QStringLiteral("btnShowRegister"))->toolTip(),
             QStringLiteral("Show Register Browser with:\n0x33 : "));
    QCOMPARE(chip.list("btnShowRegister", "RegList"), QVariantList{0x33u});
    QMetaObject::invokeMethod(chip.tool.get(), "on_pbStart_clicked");
    QVERIFY(chip.link.calls.isEmpty());
}

void ToolRegistersTest::hiddenRegistersAndFieldsAreNotBound()
{
    OwnChip chip;
    chip.add(1, "RAMPMODE", false);
    chip.add(2, "M0_VMAX");
    chip.add(3, "M1_VMAX");
    chip.add(4, "M0_AMAX", false);
    chip.addField(chip.add(5, "A"), "M0_XACTUAL", 0, 32, false);
    // A hidden field does not end the search for a visible one of the same identifier.
    chip.addField(chip.add(6, "B"), "M1_XACTUAL", 0, 32, false);
    chip.addField(chip.add(7, "C"), "M1_XACTUAL");
    chip.makeTool();
    QCOMPARE(chip.list("btnShowRegister", "RegList"), (QVariantList{2u, 3u, 7u}));
    QCOMPARE(chip.list("btnShowPosition", "RampList"), (QVariantList{2u, 3u}));
}

void ToolRegistersTest::rampRegistersAreListedInLookUpOrder()
{
    ToolRig rig;
    const QVariantList list = rampListOf(rig);
    QCOMPARE(list.size(), 18);
    QCOMPARE(list, addressesOf(rampNames()));
    for (const QVariant &address : list)
        QCOMPARE(address.userType(), static_cast<int>(QMetaType::UInt));
}

void ToolRegistersTest::bindingSendsNothing()
{
    ToolRig rig;
    QVERIFY(rig.link.takeCalls().isEmpty());
}

void ToolRegistersTest::toolWithoutChipHasNoRowsAndNoLists()
{
    RigGaps gaps;
    gaps.hasChip = false;
    ToolRig rig(0, gaps);
    QVERIFY(rowsOf(rig).isEmpty());
    QVERIFY(rig.tool()->findChildren<XmlRegisterWidgetContainer *>().isEmpty());
    QVERIFY(!rig.widget<QWidget>("btnShowRegister")->property("RegList").isValid());
    QVERIFY(!rig.widget<QWidget>("btnShowPosition")->property("RampList").isValid());
    QVERIFY(rig.widget<QWidget>("btnShowRegister")->toolTip().isEmpty());
}

void ToolRegistersTest::bindingIsMadeOnce()
{
    ToolRig rig;
    const QVariantList list = registerListOf(rig);
    delete registerOf(rig, "RAMPMODE");
    rig.module()->setProduct(0, ProductBuilder().take());
    rig.tool()->showPlugin();
    QCOMPARE(registerListOf(rig), list);
    QCOMPARE(rowsOf(rig), rowNames);
}

void ToolRegistersTest::chipIsThatOfTheMotor_data()
{
    QTest::addColumn<int>("motor");
    QTest::addColumn<int>("motorOfTheChip");

    QTest::newRow("first") << 0 << 0;
    QTest::newRow("sixth") << 5 << 5;
    QTest::newRow("last") << 255 << 255;
    QTest::newRow("chip of the first motor alone") << 5 << 0;
    QTest::newRow("chip of another motor alone") << 0 << 5;
}

void ToolRegistersTest::chipIsThatOfTheMotor()
{
    QFETCH(int, motor);
    QFETCH(int, motorOfTheChip);
    OwnChip chip;
    chip.add(3, "RAMPMODE");
    chip.makeTool(static_cast<unsigned char>(motor), static_cast<unsigned char>(motorOfTheChip));
    QCOMPARE(chip.list("btnShowRegister", "RegList"),
             motor == motorOfTheChip ? QVariantList{3u} : QVariantList());
}

QTEST_MAIN(ToolRegistersTest)
#include "tst_tool_registers.moc"
