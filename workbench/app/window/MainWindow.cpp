#include "MainWindow.h"

#include "DeviceTreeView.h"
#include "FaultMenu.h"
#include "LogDock.h"
#include "ModuleStatus.h"
#include "ToolWindow.h"

#include "AppSettings.h"
#include "DeviceTree.h"
#include "HostRegistry.h"
#include "ToolsInterface.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QLayout>
#include <QMdiArea>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>

namespace workbench {

namespace {

constexpr QSize defaultSize(1320, 860);
constexpr int defaultTreeWidth = 250;
constexpr int defaultLogHeight = 130;
/// A sub-window is opened this large at least, where the area has the room.
constexpr QSize defaultToolSize(960, 600);

const auto geometryKey = QStringLiteral("MainWindow/geometry");
const auto stateKey = QStringLiteral("MainWindow/state");

} // namespace

MainWindow::MainWindow(SimulatedModule &module, const MessageLog &log, QWidget *parent)
    : QMainWindow(parent)
{
    setWindowTitle(tr("Workbench"));
    area = new QMdiArea;
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(area);
    resize(defaultSize);
    addTree();
    addLog(log);
    addMenus();
    resizeDocks({treeDock}, {defaultTreeWidth}, Qt::Horizontal);
    resizeDocks({logDock}, {defaultLogHeight}, Qt::Vertical);
    status = new ModuleStatus(module, statusBar());
    connect(HostRegistry::instance(), &HostRegistry::statusMessage, statusBar(),
            &QStatusBar::showMessage);
}

MainWindow::~MainWindow()
{
    for (const ToolWindow *const window : qAsConst(windows)) {
        if (ToolsInterface *const tool = window->tool())
            tool->aboutToExit();
    }
    // While the tree and the status bar, which hear of it, are still there.
    qDeleteAll(windows);
}

void MainWindow::addTree()
{
    tree = new DeviceTreeView;
    treeDock = new QDockWidget(tr("Devices"), this);
    treeDock->setObjectName(QStringLiteral("treeDock"));
    treeDock->setWidget(tree);
    addDockWidget(Qt::LeftDockWidgetArea, treeDock);
    connect(tree, &DeviceTreeView::openRequested, this, &MainWindow::openTool);
    auto *const operations = new DeviceTree(this);
    connect(operations, &DeviceTree::openRequested, this,
            [this](PluginInterface *plugin) { openTool(plugin->key()); });
}

void MainWindow::addLog(const MessageLog &log)
{
    logDock = new LogDock(log, this);
    addDockWidget(Qt::BottomDockWidgetArea, logDock);
}

void MainWindow::addMenus()
{
    QMenu *const file = menuBar()->addMenu(tr("&File"));
    QAction *const quit = file->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence(int(Qt::CTRL) | Qt::Key_Q));
    addViewMenu();
    helpMenu = menuBar()->addMenu(tr("&Help"));
    helpMenu->addAction(tr("&About Workbench"), this, &MainWindow::showAbout);
}

void MainWindow::addViewMenu()
{
    QMenu *const view = menuBar()->addMenu(tr("&View"));
    view->addAction(treeDock->toggleViewAction());
    view->addAction(logDock->toggleViewAction());
    view->addSeparator();
    view->addAction(tr("&Tile Windows"), area, &QMdiArea::tileSubWindows);
    view->addAction(tr("&Cascade Windows"), area, &QMdiArea::cascadeSubWindows);
}

void MainWindow::showAbout()
{
    QMessageBox::about(
        this, tr("About Workbench"),
        tr("<p><b>Workbench</b> %1</p><p>A desk for trying motion-control tools on a simulated "
           "dual-axis module. Nothing on it is connected to a real motor.</p>")
            .arg(QApplication::applicationVersion()));
}

void MainWindow::addTool(ToolsInterface *tool)
{
    auto *const window = new ToolWindow(tool, area);
    windows.insert(tool->key(), window);
    tree->addTool(tool);
    connect(window, &ToolWindow::visibilityChanged, tree, &DeviceTreeView::markOnScreen);
}

void MainWindow::addFaults(FaultControl &control)
{
    menuBar()->insertMenu(helpMenu->menuAction(), new FaultMenu(control, this));
    statusBar()->addPermanentWidget(makeFaultLabel(control));
}

void MainWindow::showReplay(const TapeLink &tape, const QString &fileName)
{
    status->showReplay(tape, fileName);
}

/// The window, given a fitting size before it is opened for the first time.
ToolWindow *MainWindow::prepareWindow(const QString &key)
{
    ToolWindow *const window = toolWindow(key);
    // Right after the main window was shown its area may not have its size yet.
    layout()->activate();
    if (window && !window->testAttribute(Qt::WA_Resized))
        window->resize(defaultToolSize.boundedTo(area->size()).expandedTo(window->sizeHint()));
    return window;
}

void MainWindow::openTool(const QString &key)
{
    ToolWindow *const window = prepareWindow(key);
    if (!window)
        return;
    // A maximised window would hide the tool that asked for this one behind it.
    QMdiSubWindow *const active = area->activeSubWindow();
    if (active && active != window && active->isMaximized())
        active->showNormal();
    window->open();
}

void MainWindow::openToolMaximised(const QString &key)
{
    if (ToolWindow *const window = prepareWindow(key)) {
        window->open();
        window->showMaximized();
    }
}

ToolWindow *MainWindow::toolWindow(const QString &key) const
{
    return windows.value(key);
}

void MainWindow::rememberLayout()
{
    isLayoutRemembered = true;
    const AppSettings settings;
    restoreGeometry(settings.value(geometryKey).toByteArray());
    restoreState(settings.value(stateKey).toByteArray());
}

void MainWindow::saveLayout()
{
    AppSettings settings;
    settings.setValue(geometryKey, saveGeometry());
    settings.setValue(stateKey, saveState());
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (isLayoutRemembered)
        saveLayout();
    QMainWindow::closeEvent(event);
}

} // namespace workbench
