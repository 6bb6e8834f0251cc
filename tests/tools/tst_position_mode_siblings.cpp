#include "PositionRig.h"
#include "ProfileArea.h"
#include "ShippedChip.h"
#include "ToolRig.h"

#include "HostRegistry.h"
#include "XmlProductIC.h"

#include <QAbstractItemModel>
#include <QSpinBox>
#include <QTableView>
#include <QTest>

class PositionModeSiblingsTest : public PositionRig
{
    Q_OBJECT

private slots:
    void editsAreSeenInTheOtherTools();
    void writesToAnotherChipAreNotTakenOver();
    void aZeroTurnsTheDrivesLinkRed();
    void theDrivesTargetIsTakenOver();
};

void PositionModeSiblingsTest::editsAreSeenInTheOtherTools()
{
    const std::unique_ptr<ToolsInterface> browser(
        loadPrototype(QStringLiteral(REGISTER_BROWSER_FILE))
            ->clone(QStringLiteral("browser"), 0, &simulated->hostModule()));
    const std::unique_ptr<ToolsInterface> twin(
        loadPrototype()->clone(QStringLiteral("twin"), 0, &simulated->hostModule()));
    const QAbstractItemModel *const registers = browser->findChild<QTableView *>()->model();
    const auto shown = [registers](const QString &name) {
        constexpr int nameColumn = 1;
        constexpr int decimalColumn = 4;
        const QModelIndex found =
            registers->match(registers->index(0, nameColumn), Qt::DisplayRole, name, 1).value(0);
        return found.siblingAtColumn(decimalColumn).data().toString();
    };
    simulated->hostModule().setLink(&link);
    enter(QStringLiteral("M0_AMAX"), QStringLiteral("4321"));
    QCOMPARE(shown(QStringLiteral("M0_AMAX")), QStringLiteral("4321"));
    QCOMPARE(twin->findChild<QSpinBox *>(QStringLiteral("M0_AMAX"))->value(), 4321);
    QVERIFY(simulated->hostModule().writeChannelRegister(reg(QStringLiteral("M0_D1")), 1, 55));
    QCOMPARE(box(QStringLiteral("M0_D1"))->value(), 55);
    QCOMPARE(link.takeCalls().filter(QStringLiteral("read ")), QStringList());
}

void PositionModeSiblingsTest::writesToAnotherChipAreNotTakenOver()
{
    HostModule &module = simulated->hostModule();
    module.setProduct(2, workbench::buildProduct(*readShippedChip()));
    for (const char *name : {"M0_VMAX", "M0_XTARGET"})
        QVERIFY(module.writeChannelRegister(
            module.getIcProduct(2)->getRegisterByName(QLatin1String(name), true), 2, 99));
    QCOMPARE(box(QStringLiteral("M0_VMAX"))->value(), 2000);
    QCOMPARE(box(QStringLiteral("spTarget"))->value(), 0);
}

void PositionModeSiblingsTest::aZeroTurnsTheDrivesLinkRed()
{
    const std::unique_ptr<ToolsInterface> drive(
        toolPrototype()->clone(QStringLiteral("drive"), 0, &simulated->hostModule()));
    HostRegistry::add(drive.get(), QStringLiteral("sim/drive/0"));
    drive->show();
    drive->showPlugin();
    auto *const button = drive->findChild<QWidget *>(QStringLiteral("btnShowPosition"));
    QVERIFY(button && button->isEnabled());
    QCOMPARE(button->styleSheet(), QString());
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("0"));
    QVERIFY(button->styleSheet().contains(QStringLiteral("red")));
    QCOMPARE(button->toolTip(), QStringLiteral("Zero settings:\n\nM0_VMAX"));
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("2000"));
    QCOMPARE(button->styleSheet(), QString());
    QCOMPARE(button->toolTip(), QString());
}

void PositionModeSiblingsTest::theDrivesTargetIsTakenOver()
{
    QVERIFY(
        simulated->hostModule().writeChannelRegister(reg(QStringLiteral("M0_XTARGET")), 1, -64));
    QCOMPARE(box(QStringLiteral("spTarget"))->value(), -64);
    QVERIFY(qAbs(areaBelow(profile()) + 64) < 1e-6);
    QVERIFY(simulated->hostModule().writeChannelRegister(reg(QStringLiteral("M1_XTARGET")), 0, 32));
    QCOMPARE(box(QStringLiteral("spTarget"))->value(), -64);
}

QTEST_MAIN(PositionModeSiblingsTest)
#include "tst_position_mode_siblings.moc"
