#pragma once

#include <QString>
#include <QVector>

class QLocale;

/// A step of 1, 2 or 5 times a power of ten that divides `span`, which is above 0, into at most
/// `steps` parts.
double niceStep(double span, int steps);

/// The multiples of `step` from `from` to `to`.
QVector<double> multiples(double step, double from, double to);

/// A multiple of `step` with the decimals that the step needs.
QString tickText(const QLocale &locale, double value, double step);
