#include "QVXLModuleInterface.h"
#include "ToolsInterface.h"

#include <QAbstractEventDispatcher>
#include <QLibrary>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QPointer>
#include <QSpinBox>
#include <QTest>

#include <memory>

/// The plug-in, built against other headers than the workbench's, in a process that implements just
/// these. It shows that the plug-in relies on nothing but the interfaces' shapes.
class MinimalHostTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void factoryReturnsOnePrototype();
    void deletedPrototypeIsMadeAnew();
    void prototypeIsFoundByItsInterface();
    void versionIsToldToTheLastCharacter();
    void metaObjectListsSixteenPrivateSlots();
    void cloneWithoutModuleShowsAndHides();
    void cloneLooksItsRegistersUpInTheModulesChip();
    void cloneAsksForItsChipOnce();

private:
    ToolsInterface *prototype() { return qobject_cast<ToolsInterface *>(loader.instance()); }
    std::unique_ptr<ToolsInterface> makeTool(unsigned char motor, QVXLModuleInterface *module)
    {
        return std::unique_ptr<ToolsInterface>(
            prototype()->clone(QStringLiteral("tool"), motor, module));
    }

    QPluginLoader loader{QStringLiteral(MINIMAL_PLUGIN_FILE)};
};

void MinimalHostTest::initTestCase()
{
    // With all symbols resolved at once, an operation that a minimal host lacks fails here.
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    QVERIFY(prototype());
}

void MinimalHostTest::factoryReturnsOnePrototype()
{
    using Factory = QObject *(*)();
    const auto factory =
        reinterpret_cast<Factory>(QLibrary::resolve(loader.fileName(), "qt_plugin_instance"));
    QVERIFY(factory);

    QObject *first = factory();

    QVERIFY(first);
    QCOMPARE(factory(), first);
    QCOMPARE(loader.instance(), first);
}

void MinimalHostTest::deletedPrototypeIsMadeAnew()
{
    const QPointer<QObject> first = loader.instance();
    delete first;
    QVERIFY(!first);

    QVERIFY(prototype());
    QCOMPARE(prototype()->name(), QStringLiteral("undefined"));
}

void MinimalHostTest::prototypeIsFoundByItsInterface()
{
    QCOMPARE(loader.instance()->qt_metacast("com.qvx.ToolsInterface/2.0"),
             static_cast<void *>(prototype()));
    QCOMPARE(prototype()->toolsType(), ToolsType::SynchronisedDriveTool);
    QCOMPARE(prototype()->pluginType(), 3);
    QVERIFY(!prototype()->module());
    QVERIFY(prototype()->children().isEmpty());
}

void MinimalHostTest::versionIsToldToTheLastCharacter()
{
    QCOMPARE(prototype()->version(),
             QStringLiteral("4.6.0 - tools_synchronised_drive_tool;"
                            "Plugin-Interface.4.6.0.tools_synchronised_drive_tool;"
                            "Plugin ;Plugin.Interface."));
}

void MinimalHostTest::metaObjectListsSixteenPrivateSlots()
{
    const QMetaObject *meta = loader.instance()->metaObject();
    QCOMPARE(QByteArray(meta->className()), QByteArray("SynchronisedDriveTool"));
    QCOMPARE(meta->superClass(), &ToolsInterface::staticMetaObject);
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 16);
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        QCOMPARE(meta->method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta->method(i).access(), QMetaMethod::Private);
    }
}

void MinimalHostTest::cloneWithoutModuleShowsAndHides()
{
    QWidget window;
    const std::unique_ptr<ToolsInterface> tool = makeTool(1, nullptr);
    QVERIFY(tool);
    QCOMPARE(tool->name(), QStringLiteral("tool"));
    QCOMPARE(tool->motorNumber(), 1);
    QCOMPARE(tool->toolsName(false), QStringLiteral("Synchronized drive"));

    QCOMPARE(tool->findChild<QSpinBox *>(QStringLiteral("spM0min"))->value(), -256);

    tool->setParent(&window);
    window.show();
    const auto timers = [&tool] {
        return QAbstractEventDispatcher::instance()->registeredTimers(tool.get()).size();
    };
    QCOMPARE(timers(), 0);
    tool->showPlugin();
    QCOMPARE(timers(), 1);
    tool->hidePlugin();
    QCOMPARE(timers(), 0);
}

void MinimalHostTest::cloneLooksItsRegistersUpInTheModulesChip()
{
    QVXLModuleInterface module;
    const std::unique_ptr<ToolsInterface> tool = makeTool(0, &module);
    QVERIFY(module.getIcProduct(0)->lookUpCount() > 0);

    tool->showPlugin();
    tool->hidePlugin();
    QCOMPARE(tool->requestCount(), 1);
}

void MinimalHostTest::cloneAsksForItsChipOnce()
{
    QVXLModuleInterface module;
    std::unique_ptr<ToolsInterface> tool = makeTool(0, &module);
    for (int i = 0; i < 3; ++i) {
        tool->showPlugin();
        for (const char *slot : {"on_pbStart_clicked", "on_pbStop_clicked", "initExternTools"})
            QVERIFY(QMetaObject::invokeMethod(tool.get(), slot));
        emit module.registerOutputBufferHasWritten(0, 0, 0, 0);
        tool->hidePlugin();
    }
    tool.reset();
    QCOMPARE(module.chipRequestCount(), 1);
}

QTEST_MAIN(MinimalHostTest)
#include "tst_minimal_host.moc"
