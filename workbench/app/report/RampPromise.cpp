#include "RampPromise.h"

#include "AxesState.h"
#include "Ramp.h"

#include <QLineF>

namespace workbench {

namespace {

RampLimits limitsOf(const AxesState &axes, int axis)
{
    const auto setting = [&axes, axis](const char *name) {
        return axes.registerValue(QStringLiteral("M%1_%2").arg(axis).arg(QLatin1String(name)));
    };
    RampSettings settings;
    settings.vMax = setting("VMAX");
    settings.aMax = setting("AMAX");
    settings.dMax = setting("DMAX");
    settings.v1 = setting("V1");
    settings.a1 = setting("A1");
    settings.d1 = setting("D1");
    settings.v2 = setting("V2");
    settings.a2 = setting("A2");
    settings.d2 = setting("D2");
    return axisLimits(settings);
}

} // namespace

std::optional<double> promisedSeconds(const AxesState &axes, const QPoint &from, const QPoint &to)
{
    const QPoint way = to - from;
    if (way.isNull())
        return 0;
    const double length = QLineF(from, to).length();
    const auto along = [&](int axis, int distance) {
        return limitsAlong(limitsOf(axes, axis), qAbs(distance) / length);
    };
    RampLimits limits;
    if (way.y() == 0)
        limits = along(0, way.x());
    else if (way.x() == 0)
        limits = along(1, way.y());
    else
        limits = bothLimits(along(0, way.x()), along(1, way.y()));
    const PlannedMove planned = planMove(limits, length, 0);
    return planned.arrives ? std::optional<double>(planned.profile.duration()) : std::nullopt;
}

} // namespace workbench
