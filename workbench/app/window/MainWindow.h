#pragma once

#include <QHash>
#include <QMainWindow>
#include <QString>

class PluginInterface;
class QMdiArea;
class QMenu;
class ToolsInterface;

namespace workbench {

class DeviceTreeView;
class FaultControl;
class LogDock;
class MessageLog;
class ModuleStatus;
class SimulatedModule;
class TapeLink;
class ToolWindow;

/// The workbench's window: the device tree, a sub-window for each tool that is open, the log, and
/// the module's state in the status bar.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Both must outlive the window.
    MainWindow(SimulatedModule &module, const MessageLog &log, QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Takes a registered tool over and lists it; it is not on screen yet.
    void addTool(ToolsInterface *tool);

    /// Adds the menu of faults, and to the status bar which are on. `control` must outlive the
    /// window.
    void addFaults(FaultControl &control);

    /// The status bar is about the tape from here on, which answers instead of the module and must
    /// outlive the window.
    void showReplay(const TapeLink &tape, const QString &fileName);

    /// Puts a tool on screen or to the front; nothing happens for an unknown key.
    void openTool(const QString &key);

    /// As openTool(), filling the area.
    void openToolMaximised(const QString &key);

    /// The sub-window of a tool, on screen or not; null for an unknown key.
    ToolWindow *toolWindow(const QString &key) const;

    /// From here on the window's place and layout are kept in the settings, and the kept ones are
    /// taken over.
    void rememberLayout();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void addTree();
    void addLog(const MessageLog &log);
    void addMenus();
    void addViewMenu();
    void showAbout();
    void saveLayout();
    ToolWindow *prepareWindow(const QString &key);

    QMdiArea *area = nullptr;
    DeviceTreeView *tree = nullptr;
    LogDock *logDock = nullptr;
    ModuleStatus *status = nullptr;
    QDockWidget *treeDock = nullptr;
    QMenu *helpMenu = nullptr;
    QHash<QString, ToolWindow *> windows;
    bool isLayoutRemembered = false;
};

} // namespace workbench
