#include "Profile.h"

#include <cmath>

namespace workbench {

void Profile::append(double seconds, double acceleration, State after)
{
    pieces.push_back({end, last, acceleration});
    last = after;
    end += seconds;
}

void Profile::changeSpeed(double speed, double rate)
{
    const double change = speed - last.speed;
    const double seconds = std::abs(change) / rate;
    const double travelled = (speed + last.speed) / 2 * seconds;
    append(seconds, change < 0 ? -rate : rate, {last.position + travelled, speed});
}

void Profile::cruise(double distance)
{
    const double signedDistance = last.speed < 0 ? -distance : distance;
    append(signedDistance / last.speed, 0, {last.position + signedDistance, last.speed});
}

Profile::State Profile::at(double seconds) const
{
    if (seconds >= end)
        return last;
    auto piece = pieces.rbegin();
    while (piece->begin > seconds)
        ++piece;
    const double elapsed = seconds - piece->begin;
    const State &from = piece->state;
    return {from.position + (from.speed + piece->acceleration * elapsed / 2) * elapsed,
            from.speed + piece->acceleration * elapsed};
}

} // namespace workbench
