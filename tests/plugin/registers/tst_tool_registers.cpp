#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "RegisterBench.h"

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
        addresses << ToolBench::address(name);
    return addresses;
}

QVariantList rampListOf(const ToolBench &bench)
{
    return bench.widget<QWidget>("btnShowPosition")->property("RampList").toList();
}

QString toolTipFor(QStringList names)
{
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        return ToolBench::address(a) < ToolBench::address(b);
    });
    QString text = QStringLiteral("Show Register Browser with:");
    for (const QString &name : qAsConst(names)) {
        const QString digits = QString::number(ToolBench::address(name), 16).toUpper();
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
    ToolBench bench;
    QVariantList expected = addressesOf(boundNames);
    std::sort(expected.begin(), expected.end(),
              [](const QVariant &a, const QVariant &b) { return a.toUInt() < b.toUInt(); });
    const QVariantList list = registerListOf(bench);
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
    ToolBench bench;
    QCOMPARE(bench.widget<QWidget>("btnShowRegister")->toolTip(), toolTipFor(boundNames));
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
    BenchGaps gaps;
    gaps.registers << name;
    ToolBench bench(0, gaps);
    QCOMPARE(registerListOf(bench).size(), 8);
    QVERIFY(!registerListOf(bench).contains(ToolBench::address(name)));
    QCOMPARE(bench.widget<QWidget>("btnShowRegister")->toolTip(),
             toolTipFor(without(boundNames, name)));
    QCOMPARE(rowsOf(bench), without(rowNames, name));
    // A move goes on with what there is.
    bench.show();
    bench.setTarget({30, 40});
    bench.updateTick();
    bench.call("on_pbStart_clicked");
    bench.sample(1, 2);
    bench.updateTick();
    bench.updateTick();
    bench.call("on_pbStop_clicked");
    QVERIFY(bench.takeCalls().filter(name).isEmpty());
    QCOMPARE(bench.actual()->at(0), QPointF(1, 2));
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
    BenchGaps gaps;
    gaps.registers << name;
    ToolBench bench(0, gaps);
    QCOMPARE(rampListOf(bench), addressesOf(without(rampNames(), name)));
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
    ToolBench bench;
    const QVariantList list = rampListOf(bench);
    QCOMPARE(list.size(), 18);
    QCOMPARE(list, addressesOf(rampNames()));
    for (const QVariant &address : list)
        QCOMPARE(address.userType(), static_cast<int>(QMetaType::UInt));
}

void ToolRegistersTest::bindingSendsNothing()
{
    ToolBench bench;
    QVERIFY(bench.link.takeCalls().isEmpty());
}

void ToolRegistersTest::toolWithoutChipHasNoRowsAndNoLists()
{
    BenchGaps gaps;
    gaps.hasChip = false;
    ToolBench bench(0, gaps);
    QVERIFY(rowsOf(bench).isEmpty());
    QVERIFY(bench.tool()->findChildren<XmlRegisterWidgetContainer *>().isEmpty());
    QVERIFY(!bench.widget<QWidget>("btnShowRegister")->property("RegList").isValid());
    QVERIFY(!bench.widget<QWidget>("btnShowPosition")->property("RampList").isValid());
    QVERIFY(bench.widget<QWidget>("btnShowRegister")->toolTip().isEmpty());
}

void ToolRegistersTest::bindingIsMadeOnce()
{
    ToolBench bench;
    const QVariantList list = registerListOf(bench);
    delete registerOf(bench, "RAMPMODE");
    bench.module()->setProduct(0, ProductBuilder().take());
    bench.tool()->showPlugin();
    QCOMPARE(registerListOf(bench), list);
    QCOMPARE(rowsOf(bench), rowNames);
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
