#include "Positions.h"

#include "ToolConstants.h"

#include <QtMath>

#include <cmath>
#include <limits>

namespace drive {
namespace {

constexpr unsigned int positionMask = 0xFFFFFF;
constexpr unsigned int signBit = 0x800000;
constexpr double equalityScale = 1e12;
constexpr double equalityNearZero = 1e-12;

int signExtended(unsigned int position)
{
    position &= positionMask;
    const int magnitude = static_cast<int>(position);
    return (position & signBit) != 0 ? magnitude - static_cast<int>(positionMask + 1) : magnitude;
}

bool sameCoordinate(double a, double b)
{
    const double difference = qAbs(a - b);
    if (a == 0.0 || b == 0.0)
        return difference <= equalityNearZero;
    return difference * equalityScale <= qMin(qAbs(a), qAbs(b));
}

} // namespace

QPointF decodePositions(const PositionReply &reply)
{
    const unsigned int axis0 = (static_cast<unsigned int>(reply.high) << 16) |
                               (static_cast<unsigned int>(reply.middle) << 8) | reply.low |
                               (reply.value >> 24);
    return {static_cast<double>(signExtended(axis0)),
            static_cast<double>(signExtended(reply.value))};
}

bool samePoint(const QPointF &a, const QPointF &b)
{
    return sameCoordinate(a.x(), b.x()) && sameCoordinate(a.y(), b.y());
}

bool isFinite(const QPointF &point)
{
    return qIsFinite(point.x()) && qIsFinite(point.y());
}

int truncated(double value)
{
    using Int = std::numeric_limits<int>;
    return qIsNaN(value) ? 0 : static_cast<int>(qBound<double>(Int::min(), value, Int::max()));
}

long long truncated64(double value)
{
    // 2^63 is exact as a double, the type's maximum is not.
    constexpr double bound = 9223372036854775808.0;
    if (value >= bound)
        return std::numeric_limits<long long>::max();
    return qIsNaN(value) ? 0 : static_cast<long long>(qMax(value, -bound));
}

int rounded(double value)
{
    return truncated(std::floor(value + 0.5));
}

QPoint rounded(const QPointF &point)
{
    return {rounded(point.x()), rounded(point.y())};
}

int saturatedSum(int a, int b)
{
    return truncated(double(a) + b);
}

bool isOnGrid(int limit)
{
    return limit % gridStep == 0;
}

int snappedLowerLimit(int limit)
{
    return saturatedSum(limit - limit % gridStep, limit < 0 ? -gridStep : 0);
}

int snappedUpperLimit(int limit)
{
    return saturatedSum(limit - limit % gridStep, gridStep);
}

} // namespace drive
