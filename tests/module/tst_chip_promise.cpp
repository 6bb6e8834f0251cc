#include "ChipCommands.h"
#include "ShippedChip.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using namespace workbench;

namespace {

constexpr double nsPerS = 1e9;

/// Along the line of a move, or of an axis by itself: between two speeds the rates stay the same.
struct Zone
{
    double low;
    double high;
    double acceleration;
    double deceleration;
};

double zoneRate(const RampSettings &axis, double speed, int first, int second, int last)
{
    if (speed < axis.v1)
        return first;
    return speed < axis.v2 ? second : last;
}

/// What the ramp settings of both axes promise of a linked move, in closed form: of constant rates
/// between the speeds at which either axis changes its own.
class Promise
{
public:
    Promise(const std::array<RampSettings, 2> &axes, double wayX, double wayY)
        : length(std::hypot(wayX, wayY))
    {
        const std::array<double, 2> shares{std::abs(wayX) / length, std::abs(wayY) / length};
        std::vector<double> speeds{0};
        top = 1e12;
        for (std::size_t i = 0; i < axes.size(); ++i) {
            if (shares[i] > 0)
                top = std::min(top, axes[i].vMax / shares[i]);
        }
        for (std::size_t i = 0; i < axes.size(); ++i) {
            for (const int speed : {axes[i].v1, axes[i].v2}) {
                if (shares[i] > 0 && speed > 0 && speed / shares[i] < top)
                    speeds.push_back(speed / shares[i]);
            }
        }
        speeds.push_back(top);
        std::sort(speeds.begin(), speeds.end());
        for (std::size_t k = 1; k < speeds.size(); ++k)
            addZone(axes, shares, speeds[k - 1], speeds[k]);
        findPeak();
    }

    double seconds() const { return upSeconds + cruiseSeconds + downSeconds; }

    /// How far from the start after `t` seconds.
    double distanceAfter(double t) const
    {
        if (t <= upSeconds)
            return covered(t, &Zone::acceleration);
        if (t < upSeconds + cruiseSeconds)
            return covered(upSeconds, &Zone::acceleration) + peak * (t - upSeconds);
        return length - covered(seconds() - t, &Zone::deceleration);
    }

private:
    using Rate = double Zone::*;

    void addZone(const std::array<RampSettings, 2> &axes, const std::array<double, 2> &shares,
                 double low, double high)
    {
        Zone zone{low, high, 1e12, 1e12};
        const double middle = (low + high) / 2;
        for (std::size_t i = 0; i < axes.size(); ++i) {
            if (shares[i] <= 0)
                continue;
            const RampSettings &axis = axes[i];
            const double speed = middle * shares[i];
            zone.acceleration = std::min(
                zone.acceleration, zoneRate(axis, speed, axis.a1, axis.a2, axis.aMax) / shares[i]);
            zone.deceleration = std::min(
                zone.deceleration, zoneRate(axis, speed, axis.d1, axis.d2, axis.dMax) / shares[i]);
        }
        zones.push_back(zone);
    }

    double secondsTo(double speed, Rate rate) const
    {
        double sum = 0;
        for (const Zone &zone : zones)
            sum += std::max(0.0, std::min(speed, zone.high) - zone.low) / zone.*rate;
        return sum;
    }

    double distanceTo(double speed, Rate rate) const
    {
        double sum = 0;
        for (const Zone &zone : zones) {
            const double high = std::min(speed, zone.high);
            if (high > zone.low)
                sum += (high * high - zone.low * zone.low) / (2 * zone.*rate);
        }
        return sum;
    }

    double rampsTo(double speed) const
    {
        return distanceTo(speed, &Zone::acceleration) + distanceTo(speed, &Zone::deceleration);
    }

    void findPeak()
    {
        constexpr int halvings = 200;
        double low = 0;
        double high = top;
        for (int i = 0; i < halvings; ++i) {
            const double middle = (low + high) / 2;
            (rampsTo(middle) > length ? high : low) = middle;
        }
        peak = rampsTo(top) > length ? low : top;
        upSeconds = secondsTo(peak, &Zone::acceleration);
        downSeconds = secondsTo(peak, &Zone::deceleration);
        cruiseSeconds = std::max(0.0, length - rampsTo(peak)) / peak;
    }

    /// From standstill in `t` seconds.
    double covered(double t, Rate rate) const
    {
        double distance = 0;
        for (const Zone &zone : zones) {
            const double spent = std::min(t, (zone.high - zone.low) / zone.*rate);
            distance += zone.low * spent + zone.*rate * spent * spent / 2;
            t -= spent;
        }
        return distance;
    }

    double length;
    double top = 0;
    double peak = 0;
    double upSeconds = 0;
    double cruiseSeconds = 0;
    double downSeconds = 0;
    std::vector<Zone> zones;
};

int countFromEnvironment(const char *name, int whenNotSet)
{
    const int count = qEnvironmentVariableIntValue(name);
    return count > 0 ? count : whenNotSet;
}

} // namespace

class ChipPromiseTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void linkedMovesGoAsTheirSettingsSay();

private:
    int between(int low, int high)
    {
        return low + static_cast<int>(chance() % static_cast<quint32>(high - low + 1));
    }
    RampSettings randomRamp();
    void checkMove(const std::array<RampSettings, 2> &axes, const Positions &from,
                   const Positions &to);

    std::optional<ChipDescription> description;
    std::unique_ptr<SimulatedChip> chip;
    std::mt19937 chance{1};
    qint64 nowNs = 0;
};

void ChipPromiseTest::initTestCase()
{
    description = readShippedChip();
    QVERIFY(description);
    chip = std::make_unique<SimulatedChip>(*description);
    chance.seed(static_cast<quint32>(countFromEnvironment("PROMISE_SEED", 1)));
}

/// Often without one stage or both.
RampSettings ChipPromiseTest::randomRamp()
{
    RampSettings axis = ramp(between(50, 5000), between(100, 20000), between(100, 20000));
    axis.v1 = between(0, 2) == 0 ? 0 : between(1, axis.vMax);
    axis.v2 = between(0, 2) == 0 ? 0 : between(axis.v1 + 1, axis.vMax + 1);
    axis.a1 = between(100, 20000);
    axis.d1 = between(100, 20000);
    axis.a2 = between(100, 20000);
    axis.d2 = between(100, 20000);
    return axis;
}

void ChipPromiseTest::linkedMovesGoAsTheirSettingsSay()
{
    // 100,000 take some seconds.
    const int moves = countFromEnvironment("PROMISE_MOVES", 2000);
    for (int i = 0; i < moves; ++i) {
        const std::array<RampSettings, 2> axes{randomRamp(), randomRamp()};
        setRamp(*chip, 0, axes[0]);
        setRamp(*chip, 1, axes[1]);
        const Positions from{chip->position(0), chip->position(1)};
        Positions to{between(-5000, 5000), between(-5000, 5000)};
        // Some along one axis, some of a few units.
        const int kind = between(0, 9);
        if (kind < 2)
            to[static_cast<std::size_t>(kind)] = from[static_cast<std::size_t>(kind)];
        else if (kind == 2)
            to = {from[0] + between(-5, 5), from[1] + between(-5, 5)};
        if (to == from)
            to[0] += 1;
        checkMove(axes, from, to);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("move %1").arg(i + 1)));
    }
}

void ChipPromiseTest::checkMove(const std::array<RampSettings, 2> &axes, const Positions &from,
                                const Positions &to)
{
    constexpr int looks = 8;
    constexpr double reach = 1; // half a unit is due to whole positions
    const double wayX = to[0] - from[0];
    const double wayY = to[1] - from[1];
    const Promise promise(axes, wayX, wayY);
    const double length = std::hypot(wayX, wayY);
    const qint64 startNs = nowNs;
    startLinked(*chip, to[0], to[1]);
    for (int look = 1; look < looks; ++look) {
        const double t = promise.seconds() * look / looks;
        nowNs = startNs + static_cast<qint64>(t * nsPerS);
        chip->advanceTo(nowNs);
        const double share = promise.distanceAfter(t) / length;
        QVERIFY(std::abs(chip->position(0) - from[0] - share * wayX) <= reach);
        QVERIFY(std::abs(chip->position(1) - from[1] - share * wayY) <= reach);
        for (int axis = 0; axis < 2; ++axis) {
            const int velocity = readByName(*chip, axisRegister(axis, "VACTUAL"));
            QVERIFY(std::abs(velocity) <= axes[static_cast<std::size_t>(axis)].vMax);
        }
    }
    // Both are there at the very microsecond.
    nowNs = startNs + static_cast<qint64>(promise.seconds() * nsPerS) + 1000;
    chip->advanceTo(nowNs);
    QVERIFY(!chip->isMoving());
    QCOMPARE(chip->position(0), to[0]);
    QCOMPARE(chip->position(1), to[1]);
}

QTEST_GUILESS_MAIN(ChipPromiseTest)
#include "tst_chip_promise.moc"
