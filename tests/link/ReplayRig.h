#pragma once

#include "AxisAddresses.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"
#include "ToolRig.h"

#include <QTest>
#include <QTimerEvent>
#include <QToolButton>

#include <functional>

/// The tool out of the built module on the simulated module, on a stepped clock that its requests
/// move on. Time passes in turns: one sample tick each while a move runs, and an update tick when
/// that is due.
class ReplayRig
{
public:
    static constexpr qint64 msInNs = 1000000;

    ReplayRig()
        : module(readShippedChip().value_or(workbench::ChipDescription()), clock)
    {
    }
    ~ReplayRig() { delete tool; }

    workbench::AxisAddresses registers() { return module.chip().description().axisAddresses(); }

    /// Makes the tool, whose requests go to `link`.
    void begin(ModuleLink *link)
    {
        module.hostModule().setLink(link);
        tool = toolPrototype()->clone(QStringLiteral("tool"), 0, &module.hostModule());
        tool->resize(900, 600);
        tool->show();
        QVERIFY(QTest::qWaitForWindowExposed(tool));
        tool->showPlugin();
    }

    void moveTo(const QPointF &target)
    {
        QMetaObject::invokeMethod(tool, "setTargetPosition", Q_ARG(QPointF, target),
                                  Q_ARG(QPoint, QPoint()));
        QMetaObject::invokeMethod(tool, "on_pbStart_clicked");
    }

    void stop() { QMetaObject::invokeMethod(tool, "on_pbStop_clicked"); }

    bool isMoving() const { return !startButton()->isEnabled(); }

    /// Lets time go on until the move ends; false when that takes more than `limitMs`. Each turn
    /// takes `pauseNs` and what its request takes.
    bool finishMove(qint64 pauseNs = 0, int limitMs = 60000)
    {
        return goOn([this] { return !isMoving(); }, pauseNs, limitMs);
    }

    /// As finishMove(), until `isOver`.
    bool goOn(const std::function<bool()> &isOver, qint64 pauseNs = 0, int limitMs = 60000)
    {
        const qint64 limit = clock.now() + limitMs * msInNs;
        qint64 nextUpdate = clock.now() + updatePeriodNs;
        while (!isOver() && clock.now() < limit) {
            clock.advance(pauseNs);
            const qint64 before = clock.now();
            deliver(0);
            // A request that fails at once takes no time, but the turn does.
            if (clock.now() == before)
                clock.advance(msInNs);
            if (clock.now() >= nextUpdate) {
                nextUpdate = clock.now() + updatePeriodNs;
                deliver(50);
            }
        }
        return isOver();
    }

    QVector<QPointF> trace() const { return points(2); }
    QPointF shownPosition() const { return points(1).value(0); }
    QPointF shownTarget() const { return points(0).value(0); }

    QToolButton *startButton() const
    {
        return tool->findChild<QToolButton *>(QStringLiteral("pbStart"));
    }

    workbench::SteppedClock clock;
    workbench::SimulatedModule module;

private:
    static constexpr qint64 updatePeriodNs = 50 * msInNs;

    QVector<QPointF> points(int index) const
    {
        const auto *const view = tool->findChild<QtCharts::QChartView *>();
        const auto *const series =
            qobject_cast<QtCharts::QXYSeries *>(view->chart()->series().value(index));
        return series ? series->pointsVector() : QVector<QPointF>();
    }

    void deliver(int intervalMs)
    {
        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(tool);
        for (const auto &timer : timers) {
            if (timer.interval == intervalMs) {
                QTimerEvent event(timer.timerId);
                QCoreApplication::sendEvent(tool, &event);
                return;
            }
        }
    }

    ToolsInterface *tool = nullptr;
};
