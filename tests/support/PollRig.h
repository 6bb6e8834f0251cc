#pragma once

#include "ToolRig.h"

#include <QAction>
#include <QMenu>
#include <QSignalSpy>
#include <QTimerEvent>
#include <QToolButton>

#include <memory>
#include <vector>

/// Counts how often a series changes.
class ChangeCount
{
public:
    explicit ChangeCount(const QtCharts::QXYSeries *series)
    {
        spies.push_back(std::make_unique<QSignalSpy>(series, &QtCharts::QXYSeries::pointAdded));
        spies.push_back(std::make_unique<QSignalSpy>(series, &QtCharts::QXYSeries::pointReplaced));
        spies.push_back(std::make_unique<QSignalSpy>(series, &QtCharts::QXYSeries::pointsReplaced));
        spies.push_back(std::make_unique<QSignalSpy>(series, &QtCharts::QXYSeries::pointRemoved));
        spies.push_back(std::make_unique<QSignalSpy>(series, &QtCharts::QXYSeries::pointsRemoved));
    }
    int take()
    {
        int changes = 0;
        for (const auto &spy : spies) {
            changes += spy->count();
            spy->clear();
        }
        return changes;
    }

private:
    std::vector<std::unique_ptr<QSignalSpy>> spies;
};

/// A tool rig for the polling cycle.
struct PollRig : ToolRig
{
    using ToolRig::ToolRig;

    QToolButton *startButton() const { return widget<QToolButton>("pbStart"); }
    bool isTargetNew() const { return target()->property("NewPt").toBool(); }
    int flightIndex() const { return startButton()->property("RunFp").toInt(); }
    void start()
    {
        call("on_pbStart_clicked");
        takeCalls();
    }
    void setVelocities(int axis0, int axis1)
    {
        setRegister(QStringLiteral("M0_VACTUAL"), axis0);
        setRegister(QStringLiteral("M1_VACTUAL"), axis1);
    }
    void makeWide()
    {
        setLimits(-8192, 8192, -8192, 8192);
        show();
        updateTick();
        takeCalls();
    }
    int timerId(int intervalMs) const
    {
        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(tool());
        for (const auto &timer : timers) {
            if (timer.interval == intervalMs)
                return timer.timerId;
        }
        return -1;
    }
    void deliver(int timerId) const
    {
        QTimerEvent event(timerId);
        QCoreApplication::sendEvent(tool(), &event);
    }
    QAction *runAction() const
    {
        QMenu *menu = startButton()->menu();
        return menu ? menu->actions().value(0) : nullptr;
    }
    /// The axes reach the target and stand still there.
    void arrive()
    {
        const QPoint at = target()->at(0).toPoint();
        const int index = flightIndex();
        sample(at.x(), at.y());
        updateTick();
        // The first tick draws, unless the axes were there already.
        if (flightIndex() == index && !startButton()->isEnabled())
            updateTick();
    }
};
