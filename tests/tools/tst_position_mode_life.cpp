#include "PositionRig.h"
#include "ShippedChip.h"

#include "XmlValueRegister.h"

#include <QPushButton>
#include <QTest>
#include <QTimerEvent>

#include <algorithm>

class PositionModeLifeTest : public PositionRig
{
    Q_OBJECT

private slots:
    void thePrototypeIsQuiet();
    void isFoundByItsName();

    void aChipWithoutTheRegistersIsReported();
    void deletedRegistersStayInert();
    void theModuleMayGo();
    void worksWithoutAModule();
    void aListenerOfAWriteMayDeleteTheTool_data();
    void aListenerOfAWriteMayDeleteTheTool();
};

void PositionModeLifeTest::thePrototypeIsQuiet()
{
    ToolsInterface *const prototype = loadPrototype();
    prototype->showPlugin();
    prototype->hidePlugin();
    prototype->siblingIsVisible(QString(), true);
    prototype->importValue(&ExportTypes::RegisterList, QVariantList(), nullptr);
    QTimerEvent event(1);
    QCoreApplication::sendEvent(prototype, &event);
    QVERIFY(!prototype->layout());
    QCOMPARE(timerInterval(prototype), -1);
}

void PositionModeLifeTest::isFoundByItsName()
{
    QVERIFY(tool->toolsName(false).startsWith(QStringLiteral("Position mode")));
    QCOMPARE(tool->pluginType(), 3);
    open(1);
    QCOMPARE(tool->motorNumber(), 1);
    QCOMPARE(tool->windowTitle(), QStringLiteral("Position mode 1"));
}

void PositionModeLifeTest::aChipWithoutTheRegistersIsReported()
{
    delete tool;
    workbench::ChipDescription reduced = *readShippedChip();
    const auto isLeftOut = [](const workbench::RegisterDescription &described) {
        return described.name == QLatin1String("M0_D2") ||
               described.name == QLatin1String("RAMPMODE");
    };
    reduced.registers.erase(
        std::remove_if(reduced.registers.begin(), reduced.registers.end(), isLeftOut),
        reduced.registers.end());
    simulated =
        std::make_unique<workbench::SimulatedModule>(reduced, clock, QStringLiteral("sim/"));
    open();
    QVERIFY2(message().contains(QStringLiteral("the chip has no D2")), qPrintable(message()));
    QVERIFY(!tool->findChild<QPushButton *>(QStringLiteral("pbGo"))->isEnabled());
    QVERIFY(!tool->findChild<QPushButton *>(QStringLiteral("pbStop"))->isEnabled());
}

void PositionModeLifeTest::deletedRegistersStayInert()
{
    for (const char *name : {"M0_VMAX", "M0_XACTUAL", "M0_XTARGET", "RAMPMODE"})
        delete reg(QLatin1String(name));
    record();
    tick();
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("7"));
    click(QStringLiteral("pbGo"));
    click(QStringLiteral("pbStop"));
    QCOMPARE(link.takeCalls(), QStringList());
    QVERIFY2(status().contains(QStringLiteral("not stopped")), qPrintable(status()));
    tool->grab();
    tool->hidePlugin();
    tool->showPlugin();
    QVERIFY2(message().contains(QStringLiteral("the chip has no VMAX")), qPrintable(message()));
}

void PositionModeLifeTest::theModuleMayGo()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    simulated.reset();
    QCOMPARE(timerInterval(tool), -1);
    QVERIFY(profile().isEmpty());
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("7"));
    enter(QStringLiteral("spTarget"), QStringLiteral("7"));
    click(QStringLiteral("pbGo"));
    click(QStringLiteral("pbStop"));
    tool->hidePlugin();
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), -1);
    tool->grab();
}

void PositionModeLifeTest::worksWithoutAModule()
{
    delete tool;
    tool = loadPrototype()->clone(QStringLiteral("position"), 0, nullptr);
    tool->show();
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), -1);
    QVERIFY(message().startsWith(QStringLiteral("No profile")));
    enter(QStringLiteral("spTarget"), QStringLiteral("7"));
    click(QStringLiteral("pbGo"));
    click(QStringLiteral("pbStop"));
    tool->grab();
    tool->hidePlugin();
}

void PositionModeLifeTest::aListenerOfAWriteMayDeleteTheTool_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("edit") << "M0_VMAX";
    QTest::newRow("go") << "pbGo";
    QTest::newRow("stop") << "pbStop";
}

void PositionModeLifeTest::aListenerOfAWriteMayDeleteTheTool()
{
    QFETCH(QString, action);
    record();
    connect(&simulated->hostModule(), &QVXLModuleInterface::registerOutputBufferHasWritten, this,
            [this] { delete tool; });
    if (action.startsWith(QStringLiteral("pb")))
        click(action);
    else
        enter(action, QStringLiteral("7"));
    QVERIFY(!tool);
    QCOMPARE(link.takeCalls().filter(QStringLiteral("write ")).size(), 1);
}

QTEST_MAIN(PositionModeLifeTest)
#include "tst_position_mode_life.moc"
