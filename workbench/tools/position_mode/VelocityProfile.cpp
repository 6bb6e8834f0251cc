#include "VelocityProfile.h"

#include <cmath>
#include <limits>
#include <vector>

namespace {

/// From the end of the stage before up to the velocity `upTo`.
struct Stage
{
    double upTo;
    double acceleration;
    double deceleration;
};

/// Ascending; the last one ends at VMAX.
std::vector<Stage> stagesOf(const RampSettings &settings)
{
    std::vector<Stage> stages;
    const int vMax = settings[VMax];
    double from = 0;
    for (const int first : {V1, V2}) {
        const auto velocity = static_cast<std::size_t>(first);
        if (settings[velocity] <= from || from >= vMax)
            continue;
        from = qMin(settings[velocity], vMax);
        stages.push_back({from, double(settings[velocity + 1]), double(settings[velocity + 2])});
    }
    if (from < vMax)
        stages.push_back({double(vMax), double(settings[AMax]), double(settings[DMax])});
    return stages;
}

/// The way that it takes to get from `low` to `high` and back to `low`, over 0.5 (high² - low²).
double wayFactor(const Stage &stage)
{
    return 1 / stage.acceleration + 1 / stage.deceleration;
}

/// The highest velocity of a move over `distance`; `cruise` is what is left of that at VMAX.
double peakVelocity(const std::vector<Stage> &stages, double distance, double *cruise)
{
    *cruise = 0;
    double low = 0;
    for (const Stage &stage : stages) {
        const double way = (stage.upTo * stage.upTo - low * low) / 2 * wayFactor(stage);
        if (way >= distance)
            return std::sqrt(low * low + 2 * distance / wayFactor(stage));
        distance -= way;
        low = stage.upTo;
    }
    *cruise = distance;
    return low;
}

} // namespace

QString rampSettingName(int setting)
{
    static const QStringList names{
        QStringLiteral("VMAX"), QStringLiteral("AMAX"), QStringLiteral("DMAX"),
        QStringLiteral("V1"),   QStringLiteral("A1"),   QStringLiteral("D1"),
        QStringLiteral("V2"),   QStringLiteral("A2"),   QStringLiteral("D2"),
    };
    return names.value(setting);
}

QStringList missingSettings(const RampSettings &settings)
{
    QStringList missing;
    // A velocity and its two rates each.
    constexpr std::size_t groupSize = 3;
    for (std::size_t first = VMax; first < rampSettingCount; first += groupSize) {
        const bool isStage = first != VMax;
        if (isStage && settings[first] <= 0)
            continue;
        for (std::size_t setting = first; setting < first + groupSize; ++setting) {
            if (settings[setting] <= 0)
                missing << rampSettingName(static_cast<int>(setting));
        }
    }
    return missing;
}

QPolygonF velocityProfile(const RampSettings &settings, double distance)
{
    if (distance == 0 || !missingSettings(settings).isEmpty())
        return {};
    const std::vector<Stage> stages = stagesOf(settings);
    double cruise = 0;
    const double peak = peakVelocity(stages, std::abs(distance), &cruise);
    QPolygonF rising(1);
    QPolygonF falling(1); // backwards in time, from the end of the move
    for (const Stage &stage : stages) {
        const double low = rising.last().y();
        const double high = qMin(stage.upTo, peak);
        if (high <= low)
            break;
        rising << QPointF(rising.last().x() + (high - low) / stage.acceleration, high);
        falling << QPointF(falling.last().x() - (high - low) / stage.deceleration, high);
    }
    const double end = rising.last().x() + cruise / peak - falling.last().x();
    // Without a cruise both lines end in the same corner.
    if (cruise <= 0)
        falling.removeLast();
    falling.translate(end, 0);
    QPolygonF corners = rising;
    for (int i = falling.size() - 1; i >= 0; --i)
        corners << falling.at(i);
    if (distance < 0) {
        for (QPointF &corner : corners)
            corner.setY(-corner.y());
    }
    return corners;
}
