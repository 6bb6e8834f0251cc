#include "HeadlessPlatform.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"
#include "ToolsInterface.h"
#include "XmlProductIC.h"

#include <QAbstractEventDispatcher>
#include <QPixmapCache>
#include <QPluginLoader>
#include <QTimerEvent>
#include <QToolButton>
#include <QtTest>

#include <malloc.h>

/// Where Qt has its table of functions that are told of every object; made for inspection tools.
extern Q_CORE_EXPORT quintptr qtHookData[];

namespace {

constexpr qint64 msInNs = 1000000;

// Qt and Qt Charts keep what they make on first use, and a little for each chart that was shown.
constexpr int warmUpCount = 20;

// The form of pointers that a tool leaves, 208 bytes, and what Qt keeps (some 500 bytes here).
constexpr double mostBytesLeft = 1024;

constexpr int lifeCount = 1000;

#ifdef SANITIZED
// The allocator of the address sanitizer counts differently and is slow.
constexpr bool areBytesCounted = false;
constexpr int cycleCount = 60;
#else
constexpr bool areBytesCounted = true;
constexpr int cycleCount = 1000;
#endif

int livingObjects = 0;

/// Counts every QObject of the process.
void countObjects()
{
    constexpr int addedHook = 3;
    constexpr int removedHook = 4;
    const auto added = [](QObject *) { ++livingObjects; };
    const auto removed = [](QObject *) { --livingObjects; };
    qtHookData[addedHook] = reinterpret_cast<quintptr>(static_cast<void (*)(QObject *)>(added));
    qtHookData[removedHook] = reinterpret_cast<quintptr>(static_cast<void (*)(QObject *)>(removed));
}

qint64 allocatedBytes()
{
    // It fills up to a limit of its own.
    QPixmapCache::clear();
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

bool isMapped()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return !maps.open(QIODevice::ReadOnly) || maps.readAll().contains("libSynchronisedDriveTool");
}

bool deliverTimer(ToolsInterface *tool, int intervalMs)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(tool);
    for (const auto &timer : timers) {
        if (timer.interval == intervalMs) {
            QTimerEvent event(timer.timerId);
            QCoreApplication::sendEvent(tool, &event);
            return true;
        }
    }
    return false;
}

/// A short move on the simulated chip; false when it does not end.
bool makeMove(ToolsInterface *tool, workbench::SteppedClock &clock)
{
    constexpr int mostTicks = 1000;
    const auto *start = tool->findChild<QToolButton *>(QStringLiteral("pbStart"));
    QMetaObject::invokeMethod(tool, "setTargetPosition", Q_ARG(QPointF, QPointF(60, -40)));
    QMetaObject::invokeMethod(tool, "on_pbStart_clicked");
    for (int tick = 0; tick < mostTicks && !start->isEnabled(); ++tick) {
        clock.advance(5 * msInNs);
        deliverTimer(tool, 0);
        deliverTimer(tool, 50);
    }
    return start->isEnabled();
}

} // namespace

namespace {

void checkBytes(qint64 before, int count)
{
    if (!areBytesCounted)
        return;
    const double left = double(allocatedBytes() - before) / count;
    QVERIFY2(left < mostBytesLeft, qPrintable(QStringLiteral("%1 bytes each").arg(left)));
}

} // namespace

class ToolUnloadTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void moduleFileIsUnloaded();
    void cyclesLeaveNothingButTheForm();
    void modulesWritesReachNoCodeThatIsUnloaded();
    void connectionsEndWithTheirTools();
    void toolsOfOneModuleObjectLeaveNothing();

private:
    void cycle();
    void useTool(ToolsInterface *tool, workbench::SteppedClock &clock);

    workbench::ChipDescription chip;
};

void ToolUnloadTest::initTestCase()
{
    silenceHeadlessPlatform();
    const auto shipped = readShippedChip();
    QVERIFY(shipped);
    chip = *shipped;
    countObjects();
}

void ToolUnloadTest::useTool(ToolsInterface *tool, workbench::SteppedClock &clock)
{
    tool->resize(900, 600);
    tool->show();
    QVERIFY(QTest::qWaitForWindowExposed(tool));
    tool->showPlugin();
    QVERIFY(makeMove(tool, clock));
    tool->hidePlugin();
}

/// Everything from loading the file to unloading it.
void ToolUnloadTest::cycle()
{
    QPluginLoader loader(QStringLiteral(TOOL_MODULE_FILE));
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    auto *const prototype = qobject_cast<ToolsInterface *>(loader.instance());
    QVERIFY2(prototype, qPrintable(loader.errorString()));
    {
        workbench::SteppedClock clock;
        workbench::SimulatedModule module(chip, clock);
        const std::unique_ptr<ToolsInterface> tool(
            prototype->clone(QStringLiteral("tool"), 0, &module.hostModule()));
        useTool(tool.get(), clock);
    }
    QVERIFY(loader.unload());
}

void ToolUnloadTest::moduleFileIsUnloaded()
{
    QVERIFY(!isMapped());
    {
        QPluginLoader loader(QStringLiteral(TOOL_MODULE_FILE));
        loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        QVERIFY(loader.instance());
        QVERIFY(isMapped());
        QVERIFY(loader.unload());
    }
    QVERIFY(!isMapped());
    cycle();
    QVERIFY(!isMapped());
}

void ToolUnloadTest::cyclesLeaveNothingButTheForm()
{
    for (int i = 0; i < warmUpCount; ++i)
        cycle();
    const int objects = livingObjects;
    const qint64 bytes = allocatedBytes();
    for (int i = 0; i < cycleCount; ++i) {
        cycle();
        if (QTest::currentTestFailed())
            return;
    }
    QCOMPARE(livingObjects, objects);
    checkBytes(bytes, cycleCount);
}

/// The module object outlives the file whose tools it served.
void ToolUnloadTest::modulesWritesReachNoCodeThatIsUnloaded()
{
    workbench::SteppedClock clock;
    workbench::SimulatedModule module(chip, clock);
    HostModule &host = module.hostModule();
    auto *const setting = host.getIcProduct(0)->getRegisterByName(QStringLiteral("M0_VMAX"), true);
    QVERIFY(setting);
    for (int i = 0; i < 3; ++i) {
        QPluginLoader loader(QStringLiteral(TOOL_MODULE_FILE));
        loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        auto *const prototype = qobject_cast<ToolsInterface *>(loader.instance());
        QVERIFY2(prototype, qPrintable(loader.errorString()));
        delete prototype->clone(QStringLiteral("tool"), 0, &host);
        QVERIFY(loader.unload());
        QVERIFY(!isMapped());
        QSignalSpy written(&host, &QVXLModuleInterface::registerOutputBufferHasWritten);
        QVERIFY(host.writeChannelRegister(setting, 0, 1000 + i));
        QCOMPARE(written.size(), 1);
    }
}

namespace {

/// A module that tells who listens to its writes.
class WatchedModule : public HostModule
{
public:
    using HostModule::HostModule;
    int listeners() const
    {
        return receivers(SIGNAL(registerOutputBufferHasWritten(ushort, int, int, uchar)));
    }
};

} // namespace

void ToolUnloadTest::connectionsEndWithTheirTools()
{
    workbench::SteppedClock clock;
    workbench::SimulatedModule simulated(chip, clock);
    WatchedModule module(QStringLiteral("watched"), QString(), simulated.hostModule().link());
    module.setProduct(0, workbench::buildProduct(chip));
    QPluginLoader loader(QStringLiteral(TOOL_MODULE_FILE));
    auto *const prototype = qobject_cast<ToolsInterface *>(loader.instance());
    QVERIFY2(prototype, qPrintable(loader.errorString()));
    const int before = module.listeners();
    for (int i = 0; i < lifeCount; ++i) {
        const std::unique_ptr<ToolsInterface> tool(
            prototype->clone(QStringLiteral("tool"), 0, &module));
        QVERIFY(module.listeners() > before);
    }
    QCOMPARE(module.listeners(), before);
}

void ToolUnloadTest::toolsOfOneModuleObjectLeaveNothing()
{
    constexpr int toolCount = 50;
    QPluginLoader loader(QStringLiteral(TOOL_MODULE_FILE));
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    auto *const prototype = qobject_cast<ToolsInterface *>(loader.instance());
    QVERIFY(prototype);
    workbench::SteppedClock clock;
    workbench::SimulatedModule module(chip, clock);
    qint64 bytes = 0;
    int objects = 0;
    for (int i = -warmUpCount; i < toolCount; ++i) {
        if (i == 0) {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            objects = livingObjects;
            bytes = allocatedBytes();
        }
        const std::unique_ptr<ToolsInterface> tool(
            prototype->clone(QStringLiteral("tool"), 0, &module.hostModule()));
        useTool(tool.get(), clock);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(livingObjects, objects);
    checkBytes(bytes, toolCount);
}

QTEST_MAIN(ToolUnloadTest)
#include "tst_tool_unload.moc"
