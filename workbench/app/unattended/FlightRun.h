#pragma once

#include "FlightProgress.h"

#include <QString>

namespace workbench {

class RunStage;

/// Runs the panel's flight path through its menu and watches that every point is reached.
class FlightRun
{
public:
    /// Refers to the stage and takes its onSample and progressText over for its lifetime.
    explicit FlightRun(RunStage &stage);
    ~FlightRun();
    FlightRun(const FlightRun &) = delete;
    FlightRun &operator=(const FlightRun &) = delete;

    /// `points` are those that the panel's path leads to, at least one. Shows all of the path and
    /// nothing of what was driven before. Reports each point and, at the end, the run. Returns an
    /// empty text, or one line about what failed first; nothing moves any more then, unless that
    /// is what failed.
    QString carryOut(const QVector<QPoint> &points);

private:
    void tell();
    QString drive(const QVector<QPoint> &points);
    QString begin(const QVector<QPoint> &points);
    QString waitForPoint(int index);
    QString checkEnd();
    QString notReached(int index, const QString &reason);
    void take(const Sample &sample);
    bool hasLeft(int index);

    RunStage &stage;
    FlightProgress progress;
    qint64 endNs = 0;
};

} // namespace workbench
