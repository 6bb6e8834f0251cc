#include "PluginLoader.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"
#include "ToolFactory.h"

#include "HostRegistry.h"
#include "ToolDetails.h"
#include "ToolsInterface.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using workbench::PluginLoader;
using workbench::RejectedFile;

namespace {

/// Makes working tools of a given kind.
class Prototype : public ToolsInterface
{
    Q_OBJECT
    Q_INTERFACES(ToolsInterface)

public:
    explicit Prototype(ToolsType::Types toolType, bool makesTools = true)
        : Prototype(QStringLiteral("undefined"), toolType, 0, nullptr)
    {
        isProductive = makesTools;
    }

    ToolsInterface *clone(QString name, unsigned char motor, QVXLModuleInterface *module) override
    {
        return isProductive ? new Prototype(name, type, motor, module) : nullptr;
    }

private:
    Prototype(const QString &name, ToolsType::Types toolType, unsigned char motor,
              QVXLModuleInterface *module)
        : ToolsInterface(name, QStringLiteral("Prototype"), toolType, motor, module, QString(),
                         nullptr)
        , type(toolType)
    {
    }

    ToolsType::Types type;
    bool isProductive = true;
};

QString reasonFor(const PluginLoader &loader, const QString &fileName)
{
    for (const RejectedFile &file : loader.rejected()) {
        if (file.fileName == fileName)
            return file.reason;
    }
    return QString();
}

} // namespace

class AppPluginLoaderTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void loadsTheToolOfTheBuildTree();
    void refusesAFileThatIsNoPlugIn();
    void refusesAnotherIdentifierWithoutLoadingTheFile();
    void refusesAPlugInWithAMissingSymbol();
    void refusesAPlugInThatMakesNoTool();
    void goesOnAfterRefusedFiles();
    void reportsAFolderThatDoesNotExist();
    void toolsOutliveTheLoader();
    void makesOneToolForEachMotorOfItsRule_data();
    void makesOneToolForEachMotorOfItsRule();
    void leavesOutAPrototypeThatMakesNothing();

private:
    void copy(const char *from);
    QString fileName(const char *of) const { return QFileInfo(QLatin1String(of)).fileName(); }

    std::unique_ptr<QTemporaryDir> folder;
    workbench::SteppedClock clock;
    std::optional<workbench::ChipDescription> chip;
};

void AppPluginLoaderTest::initTestCase()
{
    chip = readShippedChip();
    QVERIFY(chip);
}

void AppPluginLoaderTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
}

void AppPluginLoaderTest::copy(const char *from)
{
    QVERIFY(QFile::copy(QString::fromLocal8Bit(from), folder->filePath(fileName(from))));
}

void AppPluginLoaderTest::loadsTheToolOfTheBuildTree()
{
    PluginLoader loader;
    loader.loadFolder(QFileInfo(QStringLiteral(DRIVE_PLUGIN)).absolutePath());
    QStringList classes;
    const auto prototypes = loader.prototypes();
    for (const ToolsInterface *tool : prototypes)
        classes << ToolDetails::of(tool).className;
    QVERIFY(classes.contains(QStringLiteral("SynchronisedDriveTool")));
    QVERIFY(loader.rejected().isEmpty());
}

void AppPluginLoaderTest::refusesAFileThatIsNoPlugIn()
{
    QFile garbage(folder->filePath(QStringLiteral("garbage.so")));
    QVERIFY(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray("\x7f"
                             "ELF and then nonsense")
                      .repeated(50));
    garbage.close();
    PluginLoader loader;
    loader.loadFolder(folder->path());
    QVERIFY(loader.prototypes().isEmpty());
    QCOMPARE(loader.rejected().size(), 1);
    const QString reason = reasonFor(loader, QStringLiteral("garbage.so"));
    QVERIFY2(reason.startsWith(QLatin1String("not a plug-in: ")), qPrintable(reason));
    QVERIFY(reason.size() > 20);
}

void AppPluginLoaderTest::refusesAnotherIdentifierWithoutLoadingTheFile()
{
    copy(WRONG_IDENTIFIER_PLUGIN);
    PluginLoader loader;
    loader.loadFolder(folder->path());
    QVERIFY(loader.prototypes().isEmpty());
    const QString reason = reasonFor(loader, fileName(WRONG_IDENTIFIER_PLUGIN));
    QVERIFY2(reason.contains(QLatin1String("com.example.OtherInterface/1.0")), qPrintable(reason));
    QVERIFY(!qEnvironmentVariableIsSet("WRONG_IDENTIFIER_LOADED"));
}

void AppPluginLoaderTest::refusesAPlugInWithAMissingSymbol()
{
    copy(MISSING_SYMBOL_PLUGIN);
    PluginLoader loader;
    loader.loadFolder(folder->path());
    QVERIFY(loader.prototypes().isEmpty());
    const QString reason = reasonFor(loader, fileName(MISSING_SYMBOL_PLUGIN));
    QVERIFY2(reason.contains(QLatin1String("operationOfSomeOtherHost")), qPrintable(reason));
}

void AppPluginLoaderTest::refusesAPlugInThatMakesNoTool()
{
    copy(NO_TOOL_PLUGIN);
    PluginLoader loader;
    loader.loadFolder(folder->path());
    QVERIFY(loader.prototypes().isEmpty());
    QCOMPARE(reasonFor(loader, fileName(NO_TOOL_PLUGIN)), QStringLiteral("makes no tool"));
}

void AppPluginLoaderTest::goesOnAfterRefusedFiles()
{
    copy(MISSING_SYMBOL_PLUGIN);
    copy(WRONG_IDENTIFIER_PLUGIN);
    copy(DRIVE_PLUGIN);
    PluginLoader loader;
    loader.loadFolder(folder->path());
    QCOMPARE(loader.rejected().size(), 2);
    QCOMPARE(loader.prototypes().size(), 1);
    QCOMPARE(ToolDetails::of(loader.prototypes().constFirst()).type,
             ToolsType::SynchronisedDriveTool);
}

void AppPluginLoaderTest::reportsAFolderThatDoesNotExist()
{
    PluginLoader loader;
    loader.loadFolder(folder->filePath(QStringLiteral("nowhere")));
    QCOMPARE(loader.rejected().size(), 1);
    QCOMPARE(loader.rejected().constFirst().reason, QStringLiteral("no such folder"));
}

void AppPluginLoaderTest::toolsOutliveTheLoader()
{
    workbench::SimulatedModule module(*chip, clock);
    auto loader = std::make_unique<PluginLoader>();
    loader->loadFile(QStringLiteral(DRIVE_PLUGIN));
    const auto tools = workbench::makeTools(loader->prototypes(), &module.hostModule());
    QCOMPARE(tools.size(), 1);
    const std::unique_ptr<ToolsInterface> tool(tools.constFirst());
    loader.reset();
    QVERIFY(tool->version().startsWith(QLatin1String("4.6.0")));
}

void AppPluginLoaderTest::makesOneToolForEachMotorOfItsRule_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("keys");
    const QStringList first{QStringLiteral("module-1/Prototype/0")};
    QTest::newRow("synchronised drive") << int(ToolsType::SynchronisedDriveTool) << first;
    QTest::newRow("register browser") << int(ToolsType::RegisterBrowser) << first;
    QTest::newRow("position mode") << int(ToolsType::PositionMode)
                                   << first + QStringList{QStringLiteral("module-1/Prototype/1")};
}

void AppPluginLoaderTest::makesOneToolForEachMotorOfItsRule()
{
    QFETCH(int, type);
    QFETCH(QStringList, keys);
    workbench::SimulatedModule module(*chip, clock);
    Prototype prototype(static_cast<ToolsType::Types>(type));
    const auto tools = workbench::makeTools({&prototype}, &module.hostModule());
    QStringList made;
    for (ToolsInterface *tool : tools) {
        made << tool->key();
        QCOMPARE(HostRegistry::plugin(tool->key()), tool);
        QCOMPARE(tool->module(), &module.hostModule());
        QVERIFY(tool->key().endsWith(QString::number(tool->motorNumber())));
    }
    qDeleteAll(tools);
    QCOMPARE(made, keys);
}

void AppPluginLoaderTest::leavesOutAPrototypeThatMakesNothing()
{
    workbench::SimulatedModule module(*chip, clock);
    Prototype barren(ToolsType::PositionMode, false);
    QVERIFY(workbench::makeTools({&barren}, &module.hostModule()).isEmpty());
}

QTEST_MAIN(AppPluginLoaderTest)
#include "tst_app_plugin_loader.moc"
