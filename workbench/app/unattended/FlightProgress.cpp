#include "FlightProgress.h"

#include "PathMeasure.h"

namespace workbench {

namespace {

constexpr double nsPerSecond = 1e9;

} // namespace

FlightProgress::FlightProgress(const QVector<QPoint> &pathPoints, const QPoint &pathStart,
                               qint64 pathStartNs)
    : points(pathPoints)
    , start(pathStart)
    , startNs(pathStartNs)
{
}

void FlightProgress::take(const Sample &sample, int leg, bool isStandingStill)
{
    if (count++ == 0)
        firstNs = sample.timeNs;
    lastNs = sample.timeNs;
    if (leg < 0 || leg >= points.size())
        return;
    deviation = qMax(deviation, distanceFromSegment(sample.position, beginOf(leg), points.at(leg)));
    enter(leg);
    if (leg == reachedCount() && isStandingStill && sample.position == points.at(leg))
        reachedNs.append(sample.timeNs);
}

void FlightProgress::enter(int leg)
{
    while (reachedCount() < qMin(leg, pointCount()) &&
           points.at(reachedCount()) == beginOf(reachedCount()))
        reachedNs.append(reachedNs.isEmpty() ? startNs : reachedNs.constLast());
}

double FlightProgress::secondsTo(int index) const
{
    return static_cast<double>(reachedNs.at(index) - startNs) / nsPerSecond;
}

double FlightProgress::samplesPerSecond() const
{
    const double seconds = static_cast<double>(lastNs - firstNs) / nsPerSecond;
    return seconds > 0 ? static_cast<double>(count - 1) / seconds : 0;
}

} // namespace workbench
