#pragma once

#include "Application.h"
#include "Clock.h"
#include "EventWait.h"
#include "MainWindow.h"
#include "PanelDriver.h"

#include "ToolDetails.h"
#include "ToolsInterface.h"

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QXYSeries>

#include <functional>
#include <utility>
#include <vector>

/// The window of the running application and the panel in it, for somebody who sits in front of
/// them: the mouse alone operates the panel, and whatever takes time passes in the event loop.
class AppWindow
{
public:
    static constexpr int timeoutMs = 60000;

    AppWindow(workbench::MainWindow *mainWindow, ToolsInterface *driveTool)
        : window(mainWindow)
        , tool(driveTool)
        , panel(driveTool)
    {
    }

    bool waitFor(const std::function<bool()> &condition) const
    {
        const workbench::SteadyClock clock;
        workbench::EventWait wait(clock);
        return wait.until(condition, timeoutMs) == workbench::WaitResult::Happened;
    }

    /// Closes in on the point, so that a pixel is about a unit, and clicks on it. What is still to
    /// be drawn takes the view back to the axes, so that may take a few turns.
    bool pick(const QPoint &target)
    {
        constexpr int triesWithoutChange = 20;
        const workbench::PanelView view = workbench::closeUp(target, panel.widestView());
        QRectF seen;
        int unchanged = 0;
        const auto isLaidOut = [&] {
            const QRectF before = std::exchange(seen, panel.plotArea());
            unchanged = before == seen && panel.view() == view ? unchanged + 1 : 0;
            if (unchanged == 0)
                panel.setView(view);
            return unchanged >= triesWithoutChange;
        };
        return waitFor(isLaidOut) && panel.pick(target) && panel.target() == target;
    }

    bool start() { return panel.pressStart() && panel.isMoving(); }
    bool finishMove()
    {
        return waitFor([this] { return !panel.isMoving(); });
    }

    QString label(const char *name) const
    {
        const auto *const found = window->statusBar()->findChild<QLabel *>(QLatin1String(name));
        return found && found->isVisible() ? found->text() : QString();
    }

    bool waitForLabel(const char *name, const QString &text) const
    {
        return waitFor([&] { return label(name) == text; });
    }

    QString log() const
    {
        return window->findChild<QPlainTextEdit *>(QStringLiteral("logText"))->toPlainText();
    }

    QVector<QPointF> trace() const
    {
        const auto all = tool->findChild<QtCharts::QChartView *>()->chart()->series();
        return qobject_cast<QtCharts::QXYSeries *>(all.value(2))->pointsVector();
    }

    workbench::MainWindow *window;
    ToolsInterface *tool;
    bool endsByItself = false; ///< nobody is to close the window
    workbench::PanelDriver panel;
};

using AppScript = std::function<void(AppWindow &)>;

inline AppScript &appScript()
{
    static AppScript script;
    return script;
}

/// Plays the script in the application's event loop once its window is there, and then closes the
/// window, if the application is not about to end anyway.
inline void playAppScript()
{
    workbench::MainWindow *window = nullptr;
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget *const widget : widgets) {
        if (auto *const candidate = qobject_cast<workbench::MainWindow *>(widget))
            window = candidate;
    }
    QVERIFY(window);
    const auto tools = window->findChildren<ToolsInterface *>();
    for (ToolsInterface *const tool : tools) {
        if (ToolDetails::of(tool).type == ToolsType::SynchronisedDriveTool) {
            AppWindow app(window, tool);
            appScript()(app);
            if (app.endsByItself)
                return;
        }
    }
    window->close();
}

/// The program itself, from its command line to its exit code, in this process. There is no other
/// application object.
inline int runApp(const QStringList &arguments, const AppScript &script)
{
    std::vector<QByteArray> texts{QByteArrayLiteral("workbench")};
    for (const QString &argument :
         arguments + QStringList{QStringLiteral("--plugins"), QStringLiteral(PLUGINS_FOLDER),
                                 QStringLiteral("--chip"), QStringLiteral(CHIP_FILE)})
        texts.push_back(argument.toLocal8Bit());
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    bool hasPlayed = false;
    appScript() = [&](AppWindow &app) {
        hasPlayed = true;
        script(app);
    };
    const int code = workbench::runApplication(static_cast<int>(texts.size()), pointers.data());
    return hasPlayed ? code : -1;
}
