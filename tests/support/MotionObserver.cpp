#include "MotionObserver.h"

#include <algorithm>
#include <cmath>
#include <limits>

using workbench::SimulatedChip;

int readByName(const SimulatedChip &chip, const QString &name)
{
    const auto *entry = chip.description().findRegister(name);
    int value = 0;
    if (entry)
        chip.read(entry->address, &value);
    return value;
}

bool writeByName(SimulatedChip &chip, const QString &name, int value)
{
    const auto *entry = chip.description().findRegister(name);
    return entry && chip.write(entry->address, value);
}

QString axisRegister(int axis, const char *name)
{
    return QStringLiteral("M%1_%2").arg(axis).arg(QLatin1String(name));
}

MotionObserver::MotionObserver(SimulatedChip &observed, qint64 startNs)
    : chip(observed)
    , timeNs(startNs)
{
    const char *names[] = {"XACTUAL", "VACTUAL", "VMAX", "AMAX", "DMAX", "V1",
                           "A1",      "D1",      "V2",   "A2",   "D2"};
    for (int axis = 0; axis < 2; ++axis) {
        for (std::size_t i = 0; i < registerCount; ++i) {
            const auto *entry = chip.description().findRegister(axisRegister(axis, names[i]));
            addresses[std::size_t(axis)][i] = entry ? entry->address : ~0u;
        }
    }
    last = sample();
}

int MotionObserver::read(int axis, Register which) const
{
    int value = 0;
    chip.read(addresses[std::size_t(axis)][which], &value);
    return value;
}

int MotionObserver::setting(int axis, Register which) const
{
    return std::max(0, read(axis, which));
}

MotionObserver::Sample MotionObserver::sample() const
{
    Sample result;
    for (int axis = 0; axis < 2; ++axis) {
        result.position[std::size_t(axis)] = read(axis, XActual);
        result.velocity[std::size_t(axis)] = read(axis, VActual);
    }
    return result;
}

void MotionObserver::step(qint64 ns)
{
    timeNs += ns;
    chip.advanceTo(timeNs);
    const Sample now = sample();
    for (int axis = 0; axis < 2; ++axis) {
        check(axis, now, double(ns) * 1e-9);
        const std::size_t i = std::size_t(axis);
        highest[i] = std::max(highest[i], std::abs(now.velocity[i]));
        if (now.velocity[i] != 0)
            movingAt[i] = timeNs;
    }
    last = now;
}

void MotionObserver::run(double seconds, qint64 stepNs)
{
    const qint64 end = timeNs + qint64(seconds * 1e9);
    while (timeNs < end)
        step(std::min(stepNs, end - timeNs));
}

bool MotionObserver::runToStandstill(double seconds, qint64 stepNs)
{
    const qint64 end = timeNs + qint64(seconds * 1e9);
    do {
        step(stepNs);
    } while (chip.isMoving() && timeNs < end);
    return !chip.isMoving();
}

// The highest rate at which an axis may change its speed anywhere between `low` and `high`.
double MotionObserver::fastestRate(int axis, double low, double high) const
{
    struct Stage
    {
        double end;
        int acceleration;
        int deceleration;
    };
    const Stage stages[] = {
        {double(setting(axis, V1)), setting(axis, A1), setting(axis, D1)},
        {double(setting(axis, V2)), setting(axis, A2), setting(axis, D2)},
        {std::numeric_limits<double>::infinity(), setting(axis, AMax), setting(axis, DMax)}};
    double begin = 0;
    double rate = 0;
    for (const Stage &stage : stages) {
        if (stage.end <= begin)
            continue;
        if (high >= begin && low <= stage.end)
            rate = std::max<double>({rate, double(stage.acceleration), double(stage.deceleration)});
        begin = stage.end;
    }
    return rate;
}

void MotionObserver::check(int axis, const Sample &now, double seconds)
{
    const std::size_t i = std::size_t(axis);
    const double v0 = last.velocity[i];
    const double v1 = now.velocity[i];
    const double slack = fastestRate(axis, 0, std::numeric_limits<double>::max()) * seconds + 1;
    const double faster = std::max(std::abs(v0), std::abs(v1));
    const double slower = v0 * v1 <= 0 ? 0 : std::min(std::abs(v0), std::abs(v1));
    const double rate = fastestRate(axis, slower - slack, faster + slack);

    // Two roundings of a velocity by less than 1, in the same direction unless the sign changes.
    const double velocityChange = std::abs(v1 - v0);
    const double allowedChange = rate * seconds + 2 + rate * 1e-9;
    if (velocityChange > allowedChange)
        fail(axis, "velocity changed by", velocityChange, allowedChange);

    const double travelled = now.position[i] - last.position[i];
    const double deviation = std::abs(travelled - (v0 + v1) / 2 * seconds);
    const double allowedDeviation = rate * seconds * seconds + seconds + 1 + 1e-6;
    const bool atEnd = now.position[i] == workbench::minimumPosition ||
                       now.position[i] == workbench::maximumPosition;
    if (deviation > allowedDeviation && !atEnd)
        fail(axis, "position is off the velocity by", deviation, allowedDeviation);

    const double vMax = setting(axis, VMax);
    if (std::abs(v1) > std::max(vMax, std::abs(v0)))
        fail(axis, "velocity is", v1, vMax);
}

void MotionObserver::fail(int axis, const char *what, double value, double limit)
{
    if (fault.isEmpty())
        fault = QStringLiteral("at %1 ns axis %2: %3 %4, limit %5")
                    .arg(timeNs)
                    .arg(axis)
                    .arg(QLatin1String(what))
                    .arg(value)
                    .arg(limit);
}
