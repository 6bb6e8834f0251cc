#include "Ramp.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace workbench {

namespace {

// With what an axis brakes that has no acceleration and no deceleration set at all, in units/s².
constexpr double lastResortDeceleration = 1000;

constexpr double unlimited = std::numeric_limits<double>::infinity();

double nonNegative(int setting)
{
    return std::max(setting, 0);
}

double zoneEnd(const std::vector<SpeedZone> &zones, std::size_t index)
{
    return index + 1 < zones.size() ? zones[index + 1].from : unlimited;
}

const SpeedZone &zoneAt(const std::vector<SpeedZone> &zones, double speed)
{
    const auto above = std::upper_bound(zones.begin() + 1, zones.end(), speed,
                                        [](double s, const SpeedZone &z) { return s < z.from; });
    return *std::prev(above);
}

double rampDistance(double low, double high, double rate)
{
    return (high - low) * (high + low) / (2 * rate);
}

void fillDecelerations(std::vector<SpeedZone> &zones)
{
    double substitute = 0;
    for (const SpeedZone &zone : zones)
        substitute = std::max(substitute, zone.deceleration);
    for (const SpeedZone &zone : zones)
        substitute = substitute > 0 ? substitute : zone.acceleration;
    if (substitute <= 0)
        substitute = lastResortDeceleration;
    for (SpeedZone &zone : zones) {
        if (zone.deceleration <= 0)
            zone.deceleration = zone.acceleration > 0 ? zone.acceleration : substitute;
    }
}

// The speed from which braking ends exactly at `distance`, when first accelerating from `speed`;
// the highest possible one when there is room for cruising. `speed` can still brake in time.
double peakSpeed(const RampLimits &limits, double distance, double speed)
{
    double travelled = 0;
    double low = speed;
    for (std::size_t i = 0; i < limits.zones.size(); ++i) {
        const SpeedZone &zone = limits.zones[i];
        const double high = std::min(zoneEnd(limits.zones, i), limits.topSpeed);
        if (high <= low)
            continue;
        if (zone.acceleration <= 0)
            return low;
        const double toHigh = rampDistance(low, high, zone.acceleration);
        if (travelled + toHigh + limits.brakingDistance(high) >= distance) {
            const double spare = distance - travelled - limits.brakingDistance(low);
            const double inverse = 0.5 / zone.acceleration + 0.5 / zone.deceleration;
            return std::sqrt(low * low + std::max(spare, 0.0) / inverse);
        }
        travelled += toHigh;
        low = high;
    }
    return low;
}

void appendAcceleration(Profile &profile, const RampLimits &limits, double direction, double from,
                        double to)
{
    for (std::size_t i = 0; i < limits.zones.size() && from < to; ++i) {
        const double high = std::min(zoneEnd(limits.zones, i), to);
        if (high <= from)
            continue;
        profile.changeSpeed(direction * high, limits.zones[i].acceleration);
        from = high;
    }
}

void appendBraking(Profile &profile, const RampLimits &limits, double direction, double from,
                   double to)
{
    for (auto zone = limits.zones.rbegin(); zone != limits.zones.rend() && from > to; ++zone) {
        if (zone->from >= from)
            continue;
        from = std::max(zone->from, to);
        profile.changeSpeed(direction * from, zone->deceleration);
    }
}

// Goes on from `speed` >= 0 in `direction`, from which it can stop within `distance`. False when it
// stays where it is, short of the goal.
bool appendApproach(Profile &profile, const RampLimits &limits, double direction, double distance,
                    double speed)
{
    if (speed > limits.topSpeed) {
        appendBraking(profile, limits, direction, speed, limits.topSpeed);
        distance -= limits.brakingDistance(speed, limits.topSpeed);
        speed = limits.topSpeed;
    }
    const double peak = peakSpeed(limits, distance, speed);
    if (peak <= 0)
        return distance < negligibleDistance;
    const double before = profile.endPosition();
    appendAcceleration(profile, limits, direction, speed, peak);
    const double rising = std::abs(profile.endPosition() - before);
    const double cruising = distance - rising - limits.brakingDistance(peak);
    if (cruising > 0)
        profile.cruise(cruising);
    appendBraking(profile, limits, direction, peak, 0);
    return true;
}

} // namespace

bool RampSettings::operator==(const RampSettings &other) const
{
    return vMax == other.vMax && aMax == other.aMax && dMax == other.dMax && v1 == other.v1 &&
           a1 == other.a1 && d1 == other.d1 && v2 == other.v2 && a2 == other.a2 && d2 == other.d2;
}

double RampLimits::accelerationAt(double speed) const
{
    return zoneAt(zones, speed).acceleration;
}

double RampLimits::decelerationAt(double speed) const
{
    return zoneAt(zones, speed).deceleration;
}

double RampLimits::brakingDistance(double from, double to) const
{
    double distance = 0;
    for (auto zone = zones.rbegin(); zone != zones.rend() && from > to; ++zone) {
        if (zone->from >= from)
            continue;
        const double low = std::max(zone->from, to);
        distance += rampDistance(low, from, zone->deceleration);
        from = low;
    }
    return distance;
}

double RampLimits::reachableSpeed() const
{
    for (const SpeedZone &zone : zones) {
        if (zone.acceleration <= 0)
            return std::min(zone.from, topSpeed);
    }
    return topSpeed;
}

double RampLimits::weakestChange() const
{
    double weakest = unlimited;
    for (const SpeedZone &zone : zones) {
        weakest = std::min(weakest, zone.deceleration);
        if (zone.acceleration > 0)
            weakest = std::min(weakest, zone.acceleration);
    }
    return weakest;
}

RampLimits axisLimits(const RampSettings &settings)
{
    RampLimits limits;
    limits.topSpeed = nonNegative(settings.vMax);
    double from = 0;
    const auto addStage = [&limits, &from](double upTo, int acceleration, int deceleration) {
        if (upTo <= from)
            return;
        limits.zones.push_back({from, nonNegative(acceleration), nonNegative(deceleration)});
        from = upTo;
    };
    addStage(settings.v1, settings.a1, settings.d1);
    addStage(settings.v2, settings.a2, settings.d2);
    addStage(unlimited, settings.aMax, settings.dMax);
    fillDecelerations(limits.zones);
    return limits;
}

RampLimits limitsAlong(const RampLimits &limits, double share)
{
    RampLimits scaled = limits;
    scaled.topSpeed /= share;
    for (SpeedZone &zone : scaled.zones) {
        zone.from /= share;
        zone.acceleration /= share;
        zone.deceleration /= share;
    }
    return scaled;
}

RampLimits bothLimits(const RampLimits &first, const RampLimits &second)
{
    std::vector<double> borders;
    for (const RampLimits *limits : {&first, &second}) {
        for (const SpeedZone &zone : limits->zones)
            borders.push_back(zone.from);
    }
    std::sort(borders.begin(), borders.end());
    borders.erase(std::unique(borders.begin(), borders.end()), borders.end());

    RampLimits both;
    both.topSpeed = std::min(first.topSpeed, second.topSpeed);
    for (double from : borders) {
        both.zones.push_back({from,
                              std::min(first.accelerationAt(from), second.accelerationAt(from)),
                              std::min(first.decelerationAt(from), second.decelerationAt(from))});
    }
    return both;
}

Profile planHalt(const RampLimits &limits, double speed)
{
    Profile profile(speed);
    appendBraking(profile, limits, speed < 0 ? -1 : 1, std::abs(speed), 0);
    return profile;
}

PlannedMove planMove(const RampLimits &limits, double distance, double speed)
{
    const double direction = distance < 0 ? -1 : 1;
    const double forward = speed * direction;
    const bool stopsInTime =
        forward >= 0 && limits.brakingDistance(forward) <= std::abs(distance) + negligibleDistance;
    PlannedMove move;
    if (stopsInTime && limits.topSpeed > 0) {
        move.profile = Profile(speed);
        move.arrives = appendApproach(move.profile, limits, direction, std::abs(distance), forward);
        return move;
    }
    move.profile = planHalt(limits, speed);
    const double rest = distance - move.profile.endPosition();
    move.arrives = std::abs(rest) < negligibleDistance ||
                   appendApproach(move.profile, limits, rest < 0 ? -1 : 1, std::abs(rest), 0);
    return move;
}

} // namespace workbench
