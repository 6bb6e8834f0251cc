#pragma once

#include "Harness.h"
#include "QuietLink.h"
#include "SimulatedModule.h"
#include "WanderingPath.h"

#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>

#include <memory>

class QAbstractButton;
class ToolsInterface;

/// The tool out of the built module, on screen with a plot area of `plotPixels`, over a simulated
/// chip. At first the link is a quiet one, and the tool's timers fire only when they are delivered
/// by hand. Ends the program when a part is missing.
class DriveScene
{
public:
    static QSize plotPixels() { return {560, 330}; }

    /// The axes show -`reach` to `reach`, a multiple of 256 units; the trace holds up to
    /// `traceCapacity` points.
    DriveScene(int reach, int traceCapacity);
    ~DriveScene();

    ToolsInterface *tool() const { return working.get(); }
    workbench::SimulatedModule &module() { return simulated; }
    workbench::Clock &clock() { return steady; }
    QtCharts::QChartView *view() const { return chartView; }
    QtCharts::QChart *chart() const { return chartView->chart(); }
    QtCharts::QLineSeries *trace() const;
    QAbstractButton *button(const char *name) const;

    /// The range of both axes in position units, y growing upward.
    QRectF range() const;
    void showWholeArea();

    void pressStart() const;
    bool isMoving() const;

    /// Delivers one event of the sample timer for each of the next points of the path, or for the
    /// points given. Nothing is drawn.
    void samplePath(int count);
    void sample(const QVector<QPointF> &points);
    /// The same position again and again.
    void sampleSame(int count);
    void updateTick() const;

    /// Makes trace and history anew, with the first `count` points of the path, and paints. Needs a
    /// move.
    void refill(int count);
    /// Draws and paints what was sampled, at the cost of a tick.
    harness::Cost drawTick();

    /// Ends a move on the quiet link.
    void endMove();
    /// Lets all further requests go to `link`.
    void connectTo(ModuleLink *link) { simulated.hostModule().setLink(link); }

    harness::PaintWatch &paints() { return *paintWatch; }
    WanderingPath &path() { return *wanderingPath; }

private:
    void placeOnScreen();
    QSize missingPixels() const;
    void setLimit(const char *name, int value) const;
    int timerId(int intervalMs) const;

    workbench::SteadyClock steady;
    workbench::SimulatedModule simulated;
    QuietLink quiet;
    int reach;
    std::unique_ptr<ToolsInterface> working;
    QtCharts::QChartView *chartView = nullptr;
    std::unique_ptr<harness::PaintWatch> paintWatch;
    std::unique_ptr<WanderingPath> wanderingPath;
};
