#include "DeviceTreeView.h"
#include "HeadlessPlatform.h"
#include "MainWindow.h"
#include "MessageLog.h"
#include "ModuleStatus.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"
#include "ToolFactory.h"
#include "ToolWindow.h"

#include "AppSettings.h"
#include "DebugCategories.h"
#include "DynamicProperty.h"
#include "HostRegistry.h"
#include "ToolsInterface.h"

#include <QCheckBox>
#include <QLabel>
#include <QMdiArea>
#include <QPlainTextEdit>
#include <QPropertyAnimation>
#include <QStatusBar>
#include <QTest>

using workbench::MainWindow;
using workbench::ToolWindow;

namespace {

/// A tool that writes down what its host tells it.
class StubTool : public ToolsInterface
{
    Q_OBJECT
    Q_INTERFACES(ToolsInterface)

public:
    StubTool(unsigned char motor, QVXLModuleInterface *module)
        : ToolsInterface(QStringLiteral("stub"), QStringLiteral("StubTool"),
                         ToolsType::PositionMode, motor, module,
                         QStringLiteral(":/Software-Icons/Amp"), nullptr)
    {
        setToolsName(QStringLiteral("Stub"));
    }

    void showPlugin() override { calls << QStringLiteral("show"); }
    void hidePlugin() override { calls << QStringLiteral("hide"); }
    void aboutToExit() override
    {
        if (exits)
            ++*exits;
    }
    void siblingIsVisible(const QString &key, bool isVisible) override
    {
        siblings << key + (isVisible ? QStringLiteral(" shown") : QStringLiteral(" hidden"));
    }

    QStringList calls;
    QStringList siblings;
    int *exits = nullptr; ///< counts aboutToExit()
};

} // namespace

class AppWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void listsModuleAndToolsWithIconAndName();
    void addedToolIsNotOnScreen();
    void openingShowsTheToolOnce();
    void closingHidesTheToolOnceAndKeepsIt();
    void reopeningShowsTheToolAgain();
    void minimisingDoesNotHideTheTool();
    void opensFromTheTree();
    void opensOnADeviceTreeOperation();
    void tellsSiblings();
    void marksOpenToolsInTheTree();
    void honoursTheWindowFlagsOfTheTool();
    void givesAFullFrameForTheFlagsOfTheDriveTool();
    void animatesUnlessTheToolObjects();
    void survivesAToolThatIsDeleted();
    void endTellsTheToolsAndDeletesThem();
    void showsMessagesOfBeforeAndAfter();
    void switchesTheLowLevelLines();
    void showsStatusMessagesOfTools();
    void saysWhetherTheAxesMove();
    void remembersItsLayout();

private:
    StubTool *addTool(unsigned char motor = 0, unsigned int flags = 18)
    {
        auto *const tool = new StubTool(motor, &module->hostModule());
        tool->setProperty(DynamicProperty::WindowFlags, flags);
        tool->setProperty(DynamicProperty::DoNotAnimate, true);
        HostRegistry::add(tool, workbench::toolKey(module->hostModule().key(), tool, motor));
        window->addTool(tool);
        return tool;
    }

    workbench::SteppedClock clock;
    std::unique_ptr<workbench::MessageLog> log;
    std::unique_ptr<workbench::SimulatedModule> module;
    std::unique_ptr<MainWindow> window;
};

void AppWindowTest::initTestCase()
{
    silenceHeadlessPlatform();
    AppSettings().clear();
}

void AppWindowTest::init()
{
    const auto chip = readShippedChip();
    QVERIFY(chip);
    log = std::make_unique<workbench::MessageLog>();
    module = std::make_unique<workbench::SimulatedModule>(*chip, clock);
    window = std::make_unique<MainWindow>(*module, *log);
    window->show();
}

void AppWindowTest::cleanup()
{
    window.reset();
    module.reset();
    log.reset();
    QLoggingCategory::setFilterRules(QString());
}

void AppWindowTest::listsModuleAndToolsWithIconAndName()
{
    addTool(0);
    addTool(1);
    const auto *const tree = window->findChild<workbench::DeviceTreeView *>();
    QCOMPARE(tree->topLevelItemCount(), 1);
    const QTreeWidgetItem *const entry = tree->topLevelItem(0);
    QCOMPARE(entry->text(0), QStringLiteral("Dual axis"));
    QCOMPARE(entry->childCount(), 2);
    QCOMPARE(entry->child(0)->text(0), QStringLiteral("Stub 0"));
    QCOMPARE(entry->child(1)->text(0), QStringLiteral("Stub 1"));
    QVERIFY(!entry->child(0)->icon(0).isNull());
}

void AppWindowTest::addedToolIsNotOnScreen()
{
    const StubTool *const tool = addTool();
    QVERIFY(!tool->isVisible());
    QVERIFY(!window->toolWindow(tool->key())->isVisible());
    QVERIFY(tool->calls.isEmpty());
}

void AppWindowTest::openingShowsTheToolOnce()
{
    const StubTool *const tool = addTool();
    window->openTool(tool->key());
    window->openTool(tool->key());
    QVERIFY(tool->isVisible());
    QCOMPARE(tool->calls, QStringList{QStringLiteral("show")});
    QVERIFY(HostRegistry::isOnScreen(tool));
    QCOMPARE(window->toolWindow(tool->key())->windowTitle(), QStringLiteral("Stub 0"));
}

void AppWindowTest::closingHidesTheToolOnceAndKeepsIt()
{
    const QPointer<StubTool> tool(addTool());
    window->openTool(tool->key());
    ToolWindow *const toolWindow = window->toolWindow(tool->key());
    toolWindow->close();
    toolWindow->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(tool);
    QVERIFY(!tool->isVisible());
    QCOMPARE(tool->calls, (QStringList{QStringLiteral("show"), QStringLiteral("hide")}));
    QVERIFY(!HostRegistry::isOnScreen(tool));
    QCOMPARE(window->toolWindow(tool->key()), toolWindow);
}

void AppWindowTest::reopeningShowsTheToolAgain()
{
    const StubTool *const tool = addTool();
    window->openTool(tool->key());
    window->findChild<QMdiArea *>()->closeActiveSubWindow();
    window->openTool(tool->key());
    QVERIFY(tool->isVisible());
    QCOMPARE(tool->calls,
             (QStringList{QStringLiteral("show"), QStringLiteral("hide"), QStringLiteral("show")}));
}

void AppWindowTest::minimisingDoesNotHideTheTool()
{
    const StubTool *const tool = addTool();
    window->openTool(tool->key());
    window->toolWindow(tool->key())->showMinimized();
    QCOMPARE(tool->calls, QStringList{QStringLiteral("show")});
    window->openTool(tool->key());
    QVERIFY(!window->toolWindow(tool->key())->isMinimized());
    QCOMPARE(tool->calls, QStringList{QStringLiteral("show")});
}

void AppWindowTest::opensFromTheTree()
{
    const StubTool *const tool = addTool();
    auto *const tree = window->findChild<workbench::DeviceTreeView *>();
    tree->setCurrentItem(tree->item(tool->key()));
    QTest::keyClick(tree, Qt::Key_Return);
    QCOMPARE(tool->calls, QStringList{QStringLiteral("show")});
}

void AppWindowTest::opensOnADeviceTreeOperation()
{
    StubTool *const asking = addTool(0);
    const StubTool *const other = addTool(1);
    emit asking->signalDeviceTreeOperation(eDeviceTreeOpenPlugin, other->key(), QVariant());
    QCOMPARE(other->calls, QStringList{QStringLiteral("show")});
    QVERIFY(asking->calls.isEmpty());
}

void AppWindowTest::tellsSiblings()
{
    const StubTool *const first = addTool(0);
    const StubTool *const second = addTool(1);
    window->openTool(first->key());
    window->toolWindow(first->key())->close();
    QCOMPARE(second->siblings, (QStringList{QStringLiteral("module-1/StubTool/0 shown"),
                                            QStringLiteral("module-1/StubTool/0 hidden")}));
    QVERIFY(first->siblings.isEmpty());
}

void AppWindowTest::marksOpenToolsInTheTree()
{
    const StubTool *const tool = addTool();
    const auto *const tree = window->findChild<workbench::DeviceTreeView *>();
    QVERIFY(!tree->item(tool->key())->font(0).bold());
    window->openTool(tool->key());
    QVERIFY(tree->item(tool->key())->font(0).bold());
    window->toolWindow(tool->key())->close();
    QVERIFY(!tree->item(tool->key())->font(0).bold());
}

void AppWindowTest::honoursTheWindowFlagsOfTheTool()
{
    const Qt::WindowFlags hints = Qt::SubWindow | Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    const StubTool *const tool = addTool(0, static_cast<unsigned int>(hints));
    const Qt::WindowFlags flags = window->toolWindow(tool->key())->windowFlags();
    QVERIFY(flags.testFlag(Qt::WindowTitleHint));
    QVERIFY(!flags.testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(!flags.testFlag(Qt::WindowCloseButtonHint));
}

void AppWindowTest::givesAFullFrameForTheFlagsOfTheDriveTool()
{
    const StubTool *const tool = addTool(0, 18);
    const Qt::WindowFlags flags = window->toolWindow(tool->key())->windowFlags();
    QCOMPARE(flags & Qt::WindowType_Mask, Qt::WindowFlags(Qt::SubWindow));
    QVERIFY(flags.testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
}

void AppWindowTest::animatesUnlessTheToolObjects()
{
    const StubTool *const still = addTool(0);
    StubTool *const lively = addTool(1);
    lively->setProperty(DynamicProperty::DoNotAnimate, QVariant());
    window->openTool(still->key());
    window->openTool(lively->key());
    QVERIFY(!window->toolWindow(still->key())->findChild<QPropertyAnimation *>());
    QVERIFY(window->toolWindow(lively->key())->findChild<QPropertyAnimation *>());
    QTRY_VERIFY(!window->toolWindow(lively->key())->findChild<QPropertyAnimation *>());
}

void AppWindowTest::survivesAToolThatIsDeleted()
{
    StubTool *const tool = addTool();
    const QString key = tool->key();
    window->openTool(key);
    delete tool;
    QVERIFY(!window->findChild<workbench::DeviceTreeView *>()->item(key));
    window->openTool(key);
    window->toolWindow(key)->close();
    QVERIFY(!window->toolWindow(key)->tool());
}

void AppWindowTest::endTellsTheToolsAndDeletesThem()
{
    int exits = 0;
    const QPointer<StubTool> tool(addTool());
    tool->exits = &exits;
    window.reset();
    QVERIFY(!tool);
    QCOMPARE(exits, 1);
}

void AppWindowTest::showsMessagesOfBeforeAndAfter()
{
    bool hasArrived = false;
    connect(log.get(), &workbench::MessageLog::added, this, [&](const workbench::LogEntry &entry) {
        hasArrived = hasArrived || entry.text == QLatin1String("said before");
    });
    QTest::ignoreMessage(QtWarningMsg, "said before");
    qWarning("said before");
    QTRY_VERIFY(hasArrived);
    disconnect(log.get(), nullptr, this, nullptr);
    const MainWindow later(*module, *log);
    QTest::ignoreMessage(QtCriticalMsg, "said after");
    qCritical("said after");
    const auto *const text = later.findChild<QPlainTextEdit *>(QStringLiteral("logText"));
    QVERIFY(text->toPlainText().contains(QLatin1String("warning said before")));
    QTRY_VERIFY(text->toPlainText().contains(QLatin1String("error   said after")));
}

void AppWindowTest::switchesTheLowLevelLines()
{
    auto *const box = window->findChild<QCheckBox *>(QStringLiteral("lowLevelLines"));
    QVERIFY(!box->isChecked());
    QVERIFY(!debLowLevel().isDebugEnabled());
    box->click();
    QVERIFY(debLowLevel().isDebugEnabled());
    box->click();
    QVERIFY(!debLowLevel().isDebugEnabled());
}

void AppWindowTest::showsStatusMessagesOfTools()
{
    addTool()->showStatusMessage(QStringLiteral("done so"), 0);
    QCOMPARE(window->statusBar()->currentMessage(), QStringLiteral("done so"));
}

void AppWindowTest::saysWhetherTheAxesMove()
{
    auto *const status = window->statusBar()->findChild<workbench::ModuleStatus *>();
    const auto *const motion =
        window->statusBar()->findChild<QLabel *>(QStringLiteral("motionLabel"));
    const auto *const requests =
        window->statusBar()->findChild<QLabel *>(QStringLiteral("requestsLabel"));
    status->update();
    QCOMPARE(motion->text(), QStringLiteral("Axes standing still"));
    const auto address = [this](const char *name) {
        return module->chip().description().findRegister(QLatin1String(name))->address;
    };
    clock.advance(500000000);
    status->update();
    QVERIFY(module->link().writeRegister(address("RAMPMODE"), 0, 768));
    QVERIFY(module->link().writeRegister(address("M0_XTARGET"), 0, 5000));
    clock.advance(499000000);
    status->update();
    QCOMPARE(motion->text(), QStringLiteral("Axes moving"));
    QCOMPARE(requests->text(), QStringLiteral("4 requests/s"));
    clock.advance(qint64(60) * 1000000000);
    status->update();
    QCOMPARE(motion->text(), QStringLiteral("Axes standing still"));
    QCOMPARE(requests->text(), QStringLiteral("0 requests/s"));
}

void AppWindowTest::remembersItsLayout()
{
    window->rememberLayout();
    window->resize(612, 487);
    const QSize size = window->size();
    window->close();
    MainWindow next(*module, *log);
    QVERIFY(next.size() != size);
    next.rememberLayout();
    QCOMPARE(next.size(), size);
}

QTEST_MAIN(AppWindowTest)
#include "tst_app_window.moc"
