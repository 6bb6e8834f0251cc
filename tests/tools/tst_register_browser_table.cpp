#include "BrowserRig.h"
#include "HostRegistry.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"
#include "ToolRig.h"
#include "XmlProductIC.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

class RegisterBrowserTableTest : public BrowserRig
{
    Q_OBJECT

private slots:
    void showsTheRegistersByAddress();
    void tellsWhatARegisterIs();
    void showsBothNotations_data();
    void showsBothNotations();
    void theFieldsOfTheSelectedRegisterAreShown();

    void theSearchLooksAtNameDescriptionAndAddress_data();
    void theSearchLooksAtNameDescriptionAndAddress();

    void anImportReplacesWhatIsShown();
    void garbageIsNotImported_data();
    void garbageIsNotImported();
    void listsOfOtherModulesAreLeftAlone();
    void theDriveExportsItsNineRegisters();
};

void RegisterBrowserTableTest::showsTheRegistersByAddress()
{
    const QStringList expected{
        QStringLiteral("TRIGGER"), QStringLiteral("CONFIG"), QStringLiteral("PLACE"),
        QStringLiteral("OFFSET"),  QStringLiteral("SPEED"),  QStringLiteral("PLAIN0"),
        QStringLiteral("PLAIN1"),  QStringLiteral("PLAIN2"), QStringLiteral("PLAIN3"),
        QStringLiteral("PLAIN4"),  QStringLiteral("PLAIN5")};
    QCOMPARE(names(), expected);
}

void RegisterBrowserTableTest::tellsWhatARegisterIs()
{
    QStringList row;
    for (const int column : {Address, Access, Unit, Description})
        row << text(QStringLiteral("SPEED"), column);
    QCOMPARE(row.join(QLatin1Char('|')), QStringLiteral("0x13|R/W|units/s|How fast"));
    QCOMPARE(text(QStringLiteral("PLACE"), Access), QStringLiteral("R"));
    QCOMPARE(text(QStringLiteral("TRIGGER"), Access), QStringLiteral("W"));
}

void RegisterBrowserTableTest::showsBothNotations_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<unsigned int>("address");
    QTest::addColumn<int>("word");
    QTest::addColumn<QString>("shown");
    QTest::newRow("signed") << "SPEED" << 0x13u << -2 << "0xFFFFFFFE -2";
    QTest::newRow("24 bits") << "PLACE" << 0x10u << -5 << "0xFFFFFB -5";
    QTest::newRow("24 bits without the sign's") << "PLACE" << 0x10u << 0xFFFFFB << "0xFFFFFB -5";
    QTest::newRow("unsigned word") << "PLAIN0" << 0x40u << -1 << "0xFFFFFFFF 4294967295";
    QTest::newRow("several fields") << "CONFIG" << 0x05u << 0xFF07 << "0x0000FF07 65287";
}

void RegisterBrowserTableTest::showsBothNotations()
{
    QFETCH(QString, name);
    QFETCH(unsigned int, address);
    QFETCH(int, word);
    link.values.insert(address, word);
    show();
    round();
    QTEST(text(name, Hexadecimal) + QLatin1Char(' ') + text(name, Decimal), "shown");
    QVERIFY(!isGrey(name));
}

void RegisterBrowserTableTest::theFieldsOfTheSelectedRegisterAreShown()
{
    link.values.insert(0x05, 0xFE03);
    show();
    round();
    QTableView *const fields = table("tvFields");
    QCOMPARE(fields->model()->rowCount(), 0);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      table()->visualRect(cell(QStringLiteral("CONFIG"), Name)).center());
    QStringList shown;
    for (int row = 0; row < fields->model()->rowCount(); ++row) {
        for (const int column : {Identifier, FieldName, Bits, Value, Range})
            shown << fields->model()->index(row, column).data().toString();
    }
    QCOMPARE(shown.join(QLatin1Char('|')),
             QStringLiteral("CFG_LOW|Low|3:0|3|0 to 15|CFG_HIGH|High|15:8|-2|-128 to 127"));
    link.values.insert(0x05, 0x0104);
    round();
    QCOMPARE(fields->model()->index(0, Value).data().toString(), QStringLiteral("4"));
    QCOMPARE(fields->model()->index(1, Value).data().toString(), QStringLiteral("1"));
}

void RegisterBrowserTableTest::theSearchLooksAtNameDescriptionAndAddress_data()
{
    QTest::addColumn<QString>("searched");
    QTest::addColumn<QString>("found");
    QTest::newRow("name in the other case") << "speed"
                                            << "SPEED";
    QTest::newRow("part of the description") << "switch"
                                             << "CONFIG";
    QTest::newRow("address") << "0x1"
                             << "PLACE OFFSET SPEED";
    QTest::newRow("spaces around") << " place "
                                   << "PLACE";
    QTest::newRow("unit does not count") << "units/s"
                                         << "";
}

void RegisterBrowserTableTest::theSearchLooksAtNameDescriptionAndAddress()
{
    QFETCH(QString, searched);
    auto *const search = tool->findChild<QLineEdit *>(QStringLiteral("leSearch"));
    QTest::keyClicks(search, searched);
    QTEST(names().join(QLatin1Char(' ')), "found");
    search->clear();
    QCOMPARE(names().size(), readableCount + 1);
}

void RegisterBrowserTableTest::anImportReplacesWhatIsShown()
{
    show();
    QTest::keyClicks(tool->findChild<QLineEdit *>(QStringLiteral("leSearch")),
                     QStringLiteral("PLAIN"));
    import(listOf({0x41, 0x13, 0x41, 0x10}));
    QCOMPARE(names().join(QLatin1Char(' ')), QStringLiteral("PLACE SPEED PLAIN1"));
    import(listOf({0x40}));
    QCOMPARE(names().join(QLatin1Char(' ')), QStringLiteral("PLAIN0"));
    QTest::mouseClick(tool->findChild<QPushButton *>(QStringLiteral("pbShowAll")), Qt::LeftButton);
    QCOMPARE(names().size(), readableCount + 1);
}

void RegisterBrowserTableTest::garbageIsNotImported_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("shown");
    const QString before = QStringLiteral("PLACE SPEED");
    const QVariantList mixed{
        QVariant(),          QStringLiteral("0x13"),       -1, 1.5, 0x40u, 0x9999u,
        QVariantList{0x10u}, QVariant(qulonglong(1) << 33)};
    QTest::newRow("nothing") << QVariant() << before;
    QTest::newRow("a number") << QVariant(0x40u) << before;
    QTest::newRow("texts") << QVariant(QStringList{QStringLiteral("64")}) << before;
    QTest::newRow("an empty list") << QVariant(QVariantList()) << before;
    QTest::newRow("unknown addresses") << QVariant(listOf({0x9999, 0xFFFFFFFF})) << before;
    QTest::newRow("a register that users do not see") << QVariant(listOf({0x03})) << before;
    QTest::newRow("one good entry") << QVariant(mixed) << "PLAIN0";
}

void RegisterBrowserTableTest::garbageIsNotImported()
{
    QFETCH(QVariant, value);
    import(listOf({0x10, 0x13}));
    import(value);
    QTEST(names().join(QLatin1Char(' ')), "shown");
    const export_type_t other{QStringLiteral("RegisterList"), QVariant::List};
    tool->importValue(&other, listOf({0x41}), nullptr);
    tool->importValue(nullptr, listOf({0x41}), nullptr);
    QTEST(names().join(QLatin1Char(' ')), "shown");
}

void RegisterBrowserTableTest::listsOfOtherModulesAreLeftAlone()
{
    HostModule other(QStringLiteral("other"), QStringLiteral("other/"), &link);
    other.setProduct(0, makeProduct());
    const std::unique_ptr<ToolsInterface> stranger(
        loadPrototype()->clone(QStringLiteral("stranger"), 0, &other));
    import(listOf({0x10}), stranger.get());
    QCOMPARE(names().size(), readableCount + 1);
    import(listOf({0x10}), this);
    QCOMPARE(names().size(), 1);
}

void RegisterBrowserTableTest::theDriveExportsItsNineRegisters()
{
    const auto chip = readShippedChip();
    QVERIFY(chip);
    workbench::SteppedClock clock;
    workbench::SimulatedModule simulated(*chip, clock, QStringLiteral("sim/"));
    const std::unique_ptr<ToolsInterface> drive(
        toolPrototype()->clone(QStringLiteral("drive"), 0, &simulated.hostModule()));
    delete tool;
    tool = loadPrototype()->clone(QStringLiteral("browser"), 0, &simulated.hostModule());
    HostRegistry::add(drive.get(), QStringLiteral("sim/drive/0"));
    HostRegistry::add(tool, QStringLiteral("sim/browser/0"));
    QCOMPARE(names().size(), chip->registers.size());
    drive->resize(900, 600);
    drive->show();
    drive->showPlugin();
    auto *const button = drive->findChild<QWidget *>(QStringLiteral("btnShowRegister"));
    QVERIFY(button && button->isEnabled());
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_COMPARE(names(), QStringList({QStringLiteral("RAMPMODE"), QStringLiteral("M0_XACTUAL"),
                                       QStringLiteral("M0_VACTUAL"), QStringLiteral("M0_XTARGET"),
                                       QStringLiteral("M0_VMAX"), QStringLiteral("M1_XACTUAL"),
                                       QStringLiteral("M1_VACTUAL"), QStringLiteral("M1_XTARGET"),
                                       QStringLiteral("M1_VMAX")}));
    delete tool;
}

QTEST_MAIN(RegisterBrowserTableTest)
#include "tst_register_browser_table.moc"
