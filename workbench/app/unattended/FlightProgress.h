#pragma once

#include "SampleTap.h"

#include <QVector>

namespace workbench {

/// Follows a run along a path by what is sampled on the way. The first leg leads from the start to
/// point 0, leg k from point k - 1 to point k.
class FlightProgress
{
public:
    FlightProgress() = default;
    FlightProgress(const QVector<QPoint> &points, const QPoint &start, qint64 startNs);

    /// `leg` is the one that the panel says it drives, which may lie outside of the path.
    /// `isStandingStill` tells whether both axes have stopped where the sample says.
    void take(const Sample &sample, int leg, bool isStandingStill);

    /// The panel drives leg `leg` now, or is through when that is the number of points. A leg of no
    /// length may be over before anything is sampled: its point counts as reached then.
    void enter(int leg);

    int pointCount() const { return points.size(); }
    QPoint point(int index) const { return points.at(index); }

    /// How many points were reached, in their order: the axes stood exactly there while the panel
    /// drove to that very point.
    int reachedCount() const { return reachedNs.size(); }
    double secondsTo(int index) const;

    qint64 sampleCount() const { return count; }
    /// 0 for less than two samples.
    double samplesPerSecond() const;
    /// The largest distance of a sample from the straight line of its leg, position units.
    double largestDeviation() const { return deviation; }

private:
    QPoint beginOf(int leg) const { return leg > 0 ? points.at(leg - 1) : start; }

    QVector<QPoint> points;
    QVector<qint64> reachedNs;
    QPoint start;
    qint64 startNs = 0;
    qint64 firstNs = 0;
    qint64 lastNs = 0;
    qint64 count = 0;
    double deviation = 0;
};

} // namespace workbench
