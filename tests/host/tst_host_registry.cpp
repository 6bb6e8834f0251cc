#include "DebugCategories.h"
#include "DeviceTree.h"
#include "HostModule.h"
#include "HostRegistry.h"
#include "PluginHandler.h"
#include "ToolDetails.h"
#include "ToolsInterface.h"

#include <QIcon>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

#include <functional>

namespace {

class ListeningTool : public ToolsInterface
{
    Q_OBJECT
    Q_INTERFACES(ToolsInterface)

public:
    explicit ListeningTool(unsigned char motor = 0, QVXLModuleInterface *module = nullptr)
        : ToolsInterface(QStringLiteral("tool"), QStringLiteral("ListeningTool"),
                         ToolsType::PositionMode, motor, module,
                         QStringLiteral(":/Software-Icons/Data"), nullptr)
    {
    }

    void importValue(const export_type_t *type, QVariant value, QObject *sender) override
    {
        imports << type->name;
        lastValue = value;
        lastSender = sender;
        if (onImport)
            onImport();
    }

    void siblingIsVisible(const QString &key, bool isVisible) override
    {
        siblings << key + (isVisible ? QStringLiteral(" shown") : QStringLiteral(" hidden"));
    }

    QStringList imports;
    QVariant lastValue;
    QObject *lastSender = nullptr;
    QStringList siblings;
    std::function<void()> onImport;
};

QString key(const char *text)
{
    return QString::fromLatin1(text);
}

} // namespace

class HostRegistryTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void registeredPluginsAreListedByKey();
    void aDeletedPluginLeavesTheRegistry();
    void aNewKeyReplacesTheOldOne();
    void aRenewedRegistryIsEmpty();
    void modulesRegisterThemselves();
    void toolsAreOfTypeThreeAndModulesAreNot();
    void toolsKnowWhatTheyWereMadeWith();
    void anExportReachesEveryOtherPlugin();
    void aReceiverMayDeleteTheNextOne();
    void aReceiverMayDeleteTheSender();
    void theDeviceTreeOpensAKnownKey();
    void theDeviceTreeHearsPluginsThatComeLater();
    void theDeviceTreeIgnoresWhoHasLeft();
    void anUnknownKeyGivesOneDebugLine_data();
    void anUnknownKeyGivesOneDebugLine();
    void visibilityIsToldToTheOtherToolsOfTheModule();
    void statusMessagesReachTheApplication();
};

void HostRegistryTest::cleanup()
{
    PluginHandler::instance(true);
}

void HostRegistryTest::registeredPluginsAreListedByKey()
{
    ListeningTool tool;
    QCOMPARE(tool.key(), QString());
    HostRegistry::add(&tool, key("m/a"));
    QCOMPARE(tool.key(), key("m/a"));
    QCOMPARE(HostRegistry::plugin(key("m/a")), &tool);
    QHash<QString, PluginInterface *> copy = PluginHandler::instance(false)->plugins();
    QCOMPARE(copy.size(), 1);
    QCOMPARE(copy.value(key("m/a")), &tool);
    copy.clear();
    QCOMPARE(PluginHandler::instance(false)->plugins().size(), 1);
    HostRegistry::add(nullptr, key("null"));
    HostRegistry::add(&tool, QString());
    QCOMPARE(PluginHandler::instance(false)->plugins().keys(), {key("m/a")});
}

void HostRegistryTest::aDeletedPluginLeavesTheRegistry()
{
    QSignalSpy removed(HostRegistry::instance(), &HostRegistry::pluginRemoved);
    {
        ListeningTool tool;
        HostRegistry::add(&tool, key("m/a"));
    }
    QVERIFY(PluginHandler::instance(false)->plugins().isEmpty());
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.at(0).at(0).toString(), key("m/a"));
}

void HostRegistryTest::aNewKeyReplacesTheOldOne()
{
    ListeningTool first;
    ListeningTool second;
    HostRegistry::add(&first, key("a"));
    HostRegistry::add(&first, key("b"));
    QVERIFY(!HostRegistry::plugin(key("a")));
    HostRegistry::add(&second, key("b"));
    QCOMPARE(HostRegistry::plugin(key("b")), &second);
    QCOMPARE(first.key(), QString());
}

void HostRegistryTest::aRenewedRegistryIsEmpty()
{
    ListeningTool tool;
    HostRegistry::add(&tool, key("a"));
    QVERIFY(PluginHandler::instance(true)->plugins().isEmpty());
    QCOMPARE(tool.key(), QString());
}

void HostRegistryTest::modulesRegisterThemselves()
{
    {
        HostModule module(QStringLiteral("Module"), key("m/"), nullptr);
        QCOMPARE(module.name(), QStringLiteral("Module"));
        QCOMPARE(module.key(), key("m/"));
        QCOMPARE(HostRegistry::plugin(key("m/")), &module);
    }
    QVERIFY(!HostRegistry::plugin(key("m/")));
}

void HostRegistryTest::toolsAreOfTypeThreeAndModulesAreNot()
{
    ListeningTool tool;
    HostModule module(QString(), QString(), nullptr);
    QCOMPARE(tool.pluginType(), 3);
    QVERIFY(module.pluginType() != 3);
    QCOMPARE(tool.qt_metacast("com.qvx.ToolsInterface/2.0"), static_cast<ToolsInterface *>(&tool));
    QVERIFY(!module.qt_metacast("com.qvx.ToolsInterface/2.0"));
}

void HostRegistryTest::toolsKnowWhatTheyWereMadeWith()
{
    ListeningTool tool(1);
    QCOMPARE(tool.name(), QStringLiteral("tool"));
    QCOMPARE(tool.motorNumber(), 1);
    QVERIFY(!tool.module());
    tool.setToolsName(QStringLiteral("Position mode"));
    QCOMPARE(tool.toolsName(false), QStringLiteral("Position mode"));
    QCOMPARE(tool.toolsName(true), QStringLiteral("Position mode 1"));
    QCOMPARE(ToolDetails::of(&tool).type, ToolsType::PositionMode);
    QCOMPARE(ToolDetails::of(&tool).className, QStringLiteral("ListeningTool"));
    QVERIFY(!tool.windowIcon().isNull());
    QVERIFY(!tool.clone(QString(), 0, nullptr));
}

void HostRegistryTest::anExportReachesEveryOtherPlugin()
{
    ListeningTool sender;
    ListeningTool receiver;
    ListeningTool stranger;
    HostRegistry::add(&sender, key("a"));
    HostRegistry::add(&receiver, key("b"));
    const QVariantList list = {0x20u, 0x21u};
    sender.exportValue(&ExportTypes::RegisterList, list);
    QCOMPARE(receiver.imports, QStringList(QStringLiteral("RergisterList")));
    QCOMPARE(receiver.lastValue, QVariant(list));
    QCOMPARE(receiver.lastSender, &sender);
    QVERIFY(sender.imports.isEmpty());
    QVERIFY(stranger.imports.isEmpty());
    sender.exportValue(nullptr, list);
    QCOMPARE(receiver.imports.size(), 1);
}

void HostRegistryTest::aReceiverMayDeleteTheNextOne()
{
    ListeningTool sender;
    ListeningTool first;
    auto *second = new ListeningTool;
    ListeningTool third;
    HostRegistry::add(&sender, key("0"));
    HostRegistry::add(&first, key("1"));
    HostRegistry::add(second, key("2"));
    HostRegistry::add(&third, key("3"));
    first.onImport = [second] { delete second; };
    sender.exportValue(&ExportTypes::RegisterList, 1);
    QCOMPARE(third.imports.size(), 1);
}

void HostRegistryTest::aReceiverMayDeleteTheSender()
{
    auto *sender = new ListeningTool;
    ListeningTool first;
    ListeningTool second;
    HostRegistry::add(sender, key("0"));
    HostRegistry::add(&first, key("1"));
    HostRegistry::add(&second, key("2"));
    first.onImport = [sender] { delete sender; };
    sender->exportValue(&ExportTypes::RegisterList, 1);
    QCOMPARE(second.imports.size(), 1);
    QVERIFY(!second.lastSender);
}

void HostRegistryTest::theDeviceTreeOpensAKnownKey()
{
    ListeningTool asking;
    ListeningTool wanted;
    HostRegistry::add(&asking, key("m/a"));
    HostRegistry::add(&wanted, key("m/b"));
    DeviceTree tree;
    QSignalSpy opened(&tree, &DeviceTree::openRequested);
    emit asking.signalDeviceTreeOperation(eDeviceTreeOpenPlugin, key("m/b"), QVariant());
    QCOMPARE(opened.size(), 1);
    QCOMPARE(opened.at(0).at(0).value<PluginInterface *>(), &wanted);
    emit asking.signalDeviceTreeOperation(static_cast<eDeviceTreeOperation>(0), key("m/b"),
                                          QVariant());
    QCOMPARE(opened.size(), 1);
}

void HostRegistryTest::theDeviceTreeHearsPluginsThatComeLater()
{
    DeviceTree tree;
    QSignalSpy opened(&tree, &DeviceTree::openRequested);
    ListeningTool asking;
    HostRegistry::add(&asking, key("old"));
    HostRegistry::add(&asking, key("new"));
    emit asking.signalDeviceTreeOperation(eDeviceTreeOpenPlugin, key("new"), QVariant());
    QCOMPARE(opened.size(), 1);
}

void HostRegistryTest::theDeviceTreeIgnoresWhoHasLeft()
{
    DeviceTree tree;
    QSignalSpy opened(&tree, &DeviceTree::openRequested);
    ListeningTool asking;
    ListeningTool wanted;
    HostRegistry::add(&asking, key("a"));
    HostRegistry::add(&wanted, key("b"));
    HostRegistry::remove(&asking);
    emit asking.signalDeviceTreeOperation(eDeviceTreeOpenPlugin, key("b"), QVariant());
    QVERIFY(opened.isEmpty());
}

void HostRegistryTest::anUnknownKeyGivesOneDebugLine_data()
{
    QTest::addColumn<QString>("wantedKey");
    QTest::newRow("empty") << QString();
    QTest::newRow("unknown") << QStringLiteral("m/none");
}

void HostRegistryTest::anUnknownKeyGivesOneDebugLine()
{
    QFETCH(QString, wantedKey);
    static int lineCount;
    lineCount = 0;
    ListeningTool asking;
    HostRegistry::add(&asking, key("m/a"));
    DeviceTree tree;
    QSignalSpy opened(&tree, &DeviceTree::openRequested);
    const auto ask = [&] {
        emit asking.signalDeviceTreeOperation(eDeviceTreeOpenPlugin, wantedKey, QVariant());
    };
    const auto previous = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext &context, const QString &) {
            if (type == QtDebugMsg && qstrcmp(context.category, "workbench.lowlevel") == 0)
                ++lineCount;
        });
    ask();
    const int countWhileOff = lineCount;
    QLoggingCategory::setFilterRules(QStringLiteral("workbench.lowlevel.debug=true"));
    ask();
    QLoggingCategory::setFilterRules(QString());
    qInstallMessageHandler(previous);
    QCOMPARE(countWhileOff, 0);
    QCOMPARE(lineCount, 1);
    QVERIFY(opened.isEmpty());
}

void HostRegistryTest::visibilityIsToldToTheOtherToolsOfTheModule()
{
    HostModule module(QStringLiteral("Module"), key("m/"), nullptr);
    HostModule other(QStringLiteral("Other"), key("o/"), nullptr);
    ListeningTool shown(0, &module);
    ListeningTool sibling(1, &module);
    ListeningTool stranger(0, &other);
    HostRegistry::add(&shown, key("m/a"));
    HostRegistry::add(&sibling, key("m/b"));
    HostRegistry::add(&stranger, key("o/a"));
    QVERIFY(!HostRegistry::isOnScreen(&shown));
    HostRegistry::announceVisibility(&shown, true);
    QVERIFY(HostRegistry::isOnScreen(&shown));
    HostRegistry::announceVisibility(&shown, false);
    QVERIFY(!HostRegistry::isOnScreen(&shown));
    QCOMPARE(sibling.siblings,
             (QStringList{QStringLiteral("m/a shown"), QStringLiteral("m/a hidden")}));
    QVERIFY(shown.siblings.isEmpty());
    QVERIFY(stranger.siblings.isEmpty());
    HostRegistry::announceVisibility(nullptr, true);
}

void HostRegistryTest::statusMessagesReachTheApplication()
{
    QSignalSpy messages(HostRegistry::instance(), &HostRegistry::statusMessage);
    ListeningTool tool;
    tool.showStatusMessage(QStringLiteral("hello"), 500);
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.at(0), (QVariantList{QStringLiteral("hello"), 500}));
}

QTEST_MAIN(HostRegistryTest)
#include "tst_host_registry.moc"
