#include "CommandLine.h"
#include "FaultControl.h"
#include "FaultMenu.h"
#include "HeadlessPlatform.h"
#include "MainWindow.h"
#include "MessageLog.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"

#include "ChipInfo.h"
#include "HostRegistry.h"
#include "ToolsInterface.h"
#include "XmlProductIC.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QLabel>
#include <QMenuBar>
#include <QPointer>
#include <QTest>

using namespace workbench;

class AppFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void init();
    void cleanup();

    void optionsAreTaken();
    void helpListsTheFaults();
    void wrongOptionsAreRefused_data();
    void wrongOptionsAreRefused();

    void eachFaultHasAnEntryWithItsDescription();
    void entriesSwitchFaults();
    void allOffEndsThemAll();
    void entriesFollowFaultsSwitchedElsewhere();
    void statusBarNamesTheFaultsThatAreOn();
    void unpluggedModuleComesBack();
    void resetTakesTheChipToItsResetValues();
    void registersAreDeletedForAllMotors();
    void registerWidgetsAreDeletedFromTheEventLoop();
    void linkOutlivesItsControl();

private:
    XmlValueRegister *reg(const char *name) const
    {
        return module->hostModule().getIcProduct(0)->getRegisterByName(QLatin1String(name), true);
    }
    bool read(int *value) const
    {
        return module->hostModule().readChannelRegister(reg("M0_VMAX"), 0, value);
    }
    QAction *entry(const char *name) const
    {
        return menu->findChild<QAction *>(QLatin1String(name));
    }

    SteppedClock clock;
    std::unique_ptr<SimulatedModule> module;
    std::unique_ptr<FaultyLink> link;
    std::unique_ptr<FaultControl> control;
    std::unique_ptr<FaultMenu> menu;
};

void AppFaultsTest::init()
{
    const auto chip = readShippedChip();
    QVERIFY(chip);
    module = std::make_unique<SimulatedModule>(*chip, clock);
    link = std::make_unique<FaultyLink>(module->link(), clock, chip->axisAddresses());
    module->hostModule().setLink(link.get());
    control = std::make_unique<FaultControl>(*link, *module);
    menu = std::make_unique<FaultMenu>(*control);
}

void AppFaultsTest::cleanup()
{
    menu.reset();
    control.reset();
    module.reset();
    link.reset();
}

void AppFaultsTest::optionsAreTaken()
{
    const QStringList arguments{
        QStringLiteral("workbench"),  QStringLiteral("--fault"), QStringLiteral("late:7"),
        QStringLiteral("--fault"),    QStringLiteral("unplug"),  QStringLiteral("--seed"),
        QStringLiteral("4294967295"), QStringLiteral("--tape"),  QStringLiteral("a.tape"),
        QStringLiteral("--replay"),   QStringLiteral("b.tape")};
    const CommandLine line = parseCommandLine(arguments);
    QCOMPARE(line.outcome, CommandLine::Run);
    QCOMPARE(line.options.faults.size(), 2);
    QCOMPARE(faultText(line.options.faults.at(0)), QStringLiteral("late:7"));
    QCOMPARE(faultText(line.options.faults.at(1)), QStringLiteral("unplug"));
    QCOMPARE(line.options.seed, 4294967295u);
    QCOMPARE(line.options.tapeFile, QStringLiteral("a.tape"));
    QCOMPARE(line.options.replayFile, QStringLiteral("b.tape"));
    const CommandLine plain = parseCommandLine({QStringLiteral("workbench")});
    QVERIFY(plain.options.faults.isEmpty());
    QCOMPARE(plain.options.seed, FaultyLink::defaultSeed);
}

void AppFaultsTest::helpListsTheFaults()
{
    const CommandLine line =
        parseCommandLine({QStringLiteral("workbench"), QStringLiteral("--help")});
    QCOMPARE(line.outcome, CommandLine::PrintText);
    QVERIFY(line.text.endsWith(faultHelp()));
    for (const char *option :
         {"--fault <NAME[:PARAMETER]>", "--seed <N>", "--tape <FILE>", "--replay <FILE>"})
        QVERIFY2(line.text.contains(QLatin1String(option)), option);
}

void AppFaultsTest::wrongOptionsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const char *arguments, const char *complaint) {
        QTest::newRow(name) << QString::fromLatin1(arguments).split(QLatin1Char(' '))
                            << QString::fromLatin1(complaint);
    };
    row("unknown fault", "--fault bogus", "--fault: there is no fault \"bogus\"; known are ");
    row("parameter out of range", "--fault lose:2",
        "--fault: P of \"lose\" must be a number from 0 to 1, not \"2\"");
    row("second fault", "--fault spin --fault spin:1", "--fault: \"spin\" has no parameter");
    row("negative seed", "--seed=-1", "--seed: \"-1\" is not a whole number from 0 to 4294967295");
    row("seed beyond 32 bits", "--seed 4294967296",
        "--seed: \"4294967296\" is not a whole number from 0 to 4294967295");
    row("tape without a name", "--tape=", "--tape needs a name");
    row("replay without a name", "--replay=", "--replay needs a name");
    row("replay on a link of another speed", "--replay a.tape --link-cost 100",
        "--replay and --link-cost do not go together");
}

void AppFaultsTest::wrongOptionsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    const CommandLine line = parseCommandLine(QStringList{QStringLiteral("workbench")} + arguments);
    QCOMPARE(line.outcome, CommandLine::Refuse);
    QVERIFY2(line.text.startsWith(complaint), qPrintable(line.text));
    QVERIFY(!line.text.contains(QLatin1Char('\n')));
}

void AppFaultsTest::eachFaultHasAnEntryWithItsDescription()
{
    for (const FaultInfo &info : faultTable()) {
        const QAction *const action = menu->findChild<QAction *>(info.name);
        QVERIFY2(action, qPrintable(info.name));
        QVERIFY(action->isCheckable() && !action->isChecked());
        QCOMPARE(action->text(), faultText(presetFault(info.kind)));
        QCOMPARE(action->toolTip(), info.description);
    }
    QVERIFY(menu->toolTipsVisible());
}

void AppFaultsTest::entriesSwitchFaults()
{
    entry("late")->trigger();
    QVERIFY(link->isOn(FaultKind::Late));
    QCOMPARE(link->active().constFirst().parameter, 50.0);
    entry("late")->trigger();
    QVERIFY(!link->isOn(FaultKind::Late));
}

void AppFaultsTest::allOffEndsThemAll()
{
    QVERIFY(!entry("allFaultsOff")->isEnabled());
    entry("late")->trigger();
    entry("spin")->trigger();
    QVERIFY(entry("allFaultsOff")->isEnabled());
    entry("allFaultsOff")->trigger();
    QVERIFY(link->active().isEmpty());
    QVERIFY(!entry("late")->isChecked() && !entry("spin")->isChecked());
    QVERIFY(!entry("allFaultsOff")->isEnabled());
}

void AppFaultsTest::entriesFollowFaultsSwitchedElsewhere()
{
    control->switchOn({FaultKind::Late, 7});
    QVERIFY(entry("late")->isChecked());
    QCOMPARE(entry("late")->text(), QStringLiteral("late:7"));
    control->switchOff(FaultKind::Late);
    QVERIFY(!entry("late")->isChecked());
    entry("late")->trigger();
    QCOMPARE(link->active().constFirst().parameter, 7.0);
}

void AppFaultsTest::statusBarNamesTheFaultsThatAreOn()
{
    MessageLog log;
    MainWindow window(*module, log);
    window.addFaults(*control);
    const auto *const label = window.findChild<QLabel *>(QStringLiteral("faultsLabel"));
    QVERIFY(label);
    QVERIFY(label->isHidden());
    QStringList menus;
    for (const QAction *const action : window.menuBar()->actions())
        menus << action->text().remove(QLatin1Char('&'));
    QCOMPARE(menus.join(QLatin1Char(' ')), QStringLiteral("File View Faults Help"));
    window.findChild<QAction *>(QStringLiteral("spin"))->trigger();
    control->switchOn({FaultKind::Late, 7});
    QVERIFY(!label->isHidden());
    QCOMPARE(label->text(), QStringLiteral("Faults: late:7, spin"));
    control->switchOffAll();
    QVERIFY(label->isHidden());
}

void AppFaultsTest::unpluggedModuleComesBack()
{
    int value = 0;
    QVERIFY(read(&value));
    QCOMPARE(value, 2000);
    entry("unplug")->trigger();
    value = 0;
    QVERIFY(!read(&value));
    QCOMPARE(value, 0);
    entry("unplug")->trigger();
    QVERIFY(read(&value));
    QCOMPARE(value, 2000);
}

void AppFaultsTest::resetTakesTheChipToItsResetValues()
{
    HostModule &host = module->hostModule();
    QVERIFY(host.writeChannelRegister(reg("M0_VMAX"), 0, 77));
    QVERIFY(host.writeChannelRegister(reg("M0_XTARGET"), 0, 5000));
    control->switchOn({FaultKind::Reset, 1000});
    QVERIFY(host.writeChannelRegister(reg("M0_XTARGET"), 0, 6000));
    clock.advance(999000000);
    int value = 0;
    QVERIFY(host.readChannelRegister(reg("M0_XACTUAL"), 0, &value));
    QVERIFY2(value > 50, qPrintable(QString::number(value)));
    clock.advance(1000000);
    QVERIFY(read(&value));
    QCOMPARE(value, 2000);
    QVERIFY(host.readChannelRegister(reg("M0_XACTUAL"), 0, &value));
    QCOMPARE(value, 0);
}

void AppFaultsTest::registersAreDeletedForAllMotors()
{
    const QPointer<XmlValueRegister> before(reg("M0_VMAX"));
    QVERIFY(before);
    const QPointer<XmlValueRegisterField> field(ChipInfo::fields(before).constFirst());
    entry("delete-registers")->trigger();
    QVERIFY(!before && !field);
    for (unsigned char motor = 0; motor < SimulatedModule::motorCount; ++motor)
        QVERIFY(ChipInfo::registers(module->hostModule().getIcProduct(motor)).isEmpty());
    entry("delete-registers")->trigger();
    entry("delete-registers")->trigger();
}

void AppFaultsTest::registerWidgetsAreDeletedFromTheEventLoop()
{
    ToolsInterface tool(QStringLiteral("tool"), QStringLiteral("Tool"), ToolsType::PositionMode, 0,
                        &module->hostModule(), QString(), nullptr);
    HostRegistry::add(&tool, QStringLiteral("module-1/Tool/0"));
    const QPointer<XmlRegisterWidget> widget =
        new XmlRegisterWidget(ChipInfo::fields(reg("M0_VMAX")).constFirst(), &tool);
    entry("delete-widgets")->trigger();
    QVERIFY(widget);
    QTRY_VERIFY(!widget);
}

void AppFaultsTest::linkOutlivesItsControl()
{
    control->switchOn({FaultKind::DeleteRegisters, 1});
    menu.reset();
    control.reset();
    int value = 0;
    QVERIFY(read(&value));
    QCOMPARE(value, 2000);
}

QTEST_MAIN(AppFaultsTest)
#include "tst_app_faults.moc"
