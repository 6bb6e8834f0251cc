#include "BrowserRig.h"

#include "XmlValueRegister.h"

#include <QTableView>
#include <QTest>
#include <QTimerEvent>

class RegisterBrowserLifeTest : public BrowserRig
{
    Q_OBJECT

private slots:
    void thePrototypeIsQuiet();
    void isFoundByItsName();

    void deletedRegistersStayInert();
    void theModuleMayGo();
    void worksWithoutAModule();
    void aListenerOfAWriteMayDeleteTheTool();
};

void RegisterBrowserLifeTest::thePrototypeIsQuiet()
{
    ToolsInterface *const prototype = loadPrototype();
    prototype->showPlugin();
    prototype->hidePlugin();
    prototype->siblingIsVisible(QStringLiteral("m/browser/0"), true);
    prototype->importValue(&ExportTypes::RegisterList, listOf({0x10}), nullptr);
    prototype->importValue(nullptr, QVariant(), nullptr);
    QTimerEvent event(1);
    QCoreApplication::sendEvent(prototype, &event);
    QVERIFY(!prototype->module());
    QVERIFY(!prototype->layout());
    QCOMPARE(timerInterval(prototype), -1);
}

void RegisterBrowserLifeTest::isFoundByItsName()
{
    QVERIFY(tool->toolsName(false).startsWith(QStringLiteral("Register browser")));
    QCOMPARE(tool->pluginType(), 3);
    QCOMPARE(tool->motorNumber(), 0);
    QCOMPARE(tool->module(), module.get());
}

void RegisterBrowserLifeTest::deletedRegistersStayInert()
{
    link.values.insert(0x13, 99);
    show();
    round();
    table()->setCurrentIndex(cell(QStringLiteral("SPEED"), Decimal));
    delete reg("SPEED");
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("99"));
    QCOMPARE(text(QStringLiteral("SPEED"), State), QStringLiteral("deleted"));
    QVERIFY(isGrey(QStringLiteral("SPEED")));
    link.takeCalls();
    round();
    QCOMPARE(link.takeCalls().filter(QStringLiteral("0x13")), QStringList());
    QVERIFY(!openEditor(table(), cell(QStringLiteral("SPEED"), Decimal)));
    QVERIFY(!openEditor(table("tvFields"), table("tvFields")->model()->index(0, Value)));
    tool->grab();
    import(listOf({0x13}));
    QCOMPARE(names(), QStringList{QStringLiteral("SPEED")});
}

void RegisterBrowserLifeTest::theModuleMayGo()
{
    show();
    round();
    table()->setCurrentIndex(cell(QStringLiteral("SPEED"), Decimal));
    module.reset();
    QCOMPARE(timerInterval(tool), -1);
    QVERIFY(isGrey(QStringLiteral("SPEED")));
    QCOMPARE(status(), QStringLiteral("The module is gone."));
    tool->hidePlugin();
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), -1);
    tool->grab();
}

void RegisterBrowserLifeTest::worksWithoutAModule()
{
    delete tool;
    tool = loadPrototype()->clone(QStringLiteral("browser"), 0, nullptr);
    show();
    import(listOf({0x10}));
    QCOMPARE(names(), QStringList());
    QCOMPARE(timerInterval(tool), -1);
    QVERIFY(!status().isEmpty());
    tool->hidePlugin();
}

void RegisterBrowserLifeTest::aListenerOfAWriteMayDeleteTheTool()
{
    show();
    connect(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten, this,
            [this] { delete tool; });
    enter(table(), cell(QStringLiteral("SPEED"), Decimal), QStringLiteral("5"));
    QVERIFY(!tool);
    QCOMPARE(takeWrites(), QStringList{QStringLiteral("write 0x13 m0 5")});
}

QTEST_MAIN(RegisterBrowserLifeTest)
#include "tst_register_browser_life.moc"
