#include "PlotScale.h"

#include <QLocale>

#include <cmath>

double niceStep(double span, int steps)
{
    const double wanted = span / qMax(steps, 1);
    const double decade = std::pow(10, std::floor(std::log10(wanted)));
    for (const double factor : {1, 2, 5}) {
        if (factor * decade >= wanted * (1 - 1e-9))
            return factor * decade;
    }
    return 10 * decade;
}

QVector<double> multiples(double step, double from, double to)
{
    // Rounding must not drop a multiple that lies on the end.
    constexpr double tolerance = 1e-6;
    QVector<double> values;
    const auto first = static_cast<qint64>(std::ceil(from / step - tolerance));
    const auto last = static_cast<qint64>(std::floor(to / step + tolerance));
    for (qint64 i = first; i <= last; ++i)
        values.append(static_cast<double>(i) * step);
    return values;
}

QString tickText(const QLocale &locale, double value, double step)
{
    const int decimals = qMax(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
    return locale.toString(value, 'f', decimals);
}
