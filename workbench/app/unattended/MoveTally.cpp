#include "MoveTally.h"

#include <QString>

#include <algorithm>

namespace workbench {

namespace {

constexpr int nameWidth = 20;
constexpr int numberWidth = 10;

QString row(const QString &name, const QStringList &cells)
{
    QString text = name.leftJustified(nameWidth);
    for (const QString &cell : cells)
        text += cell.rightJustified(numberWidth);
    return text;
}

/// Of an even number of values the upper one of the two in the middle: one that was there.
QString rowOf(const QString &name, std::vector<double> values, int decimals)
{
    if (values.empty())
        return row(name, {QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-")});
    std::sort(values.begin(), values.end());
    const auto number = [decimals](double value) { return QString::number(value, 'f', decimals); };
    return row(name,
               {number(values.front()), number(values[values.size() / 2]), number(values.back())});
}

} // namespace

void MoveTally::add(const MoveFigures &move)
{
    moves.push_back(move);
}

QString MoveTally::line() const
{
    const std::size_t begin = moves.size() > movesPerLine ? moves.size() - movesPerLine : 0;
    double seconds = 0;
    double deviation = 0;
    qint64 samples = 0;
    for (std::size_t i = begin; i < moves.size(); ++i) {
        seconds += moves[i].durationS;
        samples += moves[i].samples;
        deviation = std::max(deviation, moves[i].deviationUnits.value_or(0));
    }
    return QStringLiteral("moves %1 to %2: %3 s, %4 samples; at most %5 units off their lines")
        .arg(begin + 1)
        .arg(moves.size())
        .arg(seconds, 0, 'f', 2)
        .arg(samples)
        .arg(deviation, 0, 'f', 1);
}

QStringList MoveTally::table() const
{
    const auto figures = [this](auto figure) {
        std::vector<double> values;
        for (const MoveFigures &move : moves)
            values.push_back(static_cast<double>(move.*figure));
        return values;
    };
    std::vector<double> deviations;
    for (const MoveFigures &move : moves) {
        if (move.deviationUnits)
            deviations.push_back(*move.deviationUnits);
    }
    return {row(QStringLiteral("%1 moves").arg(moves.size()),
                {QStringLiteral("least"), QStringLiteral("median"), QStringLiteral("largest")}),
            rowOf(QStringLiteral("duration (s)"), figures(&MoveFigures::durationS), 2),
            rowOf(QStringLiteral("end seen late (ms)"), figures(&MoveFigures::latenessMs), 1),
            rowOf(QStringLiteral("deviation (units)"), deviations, 1),
            rowOf(QStringLiteral("samples"), figures(&MoveFigures::samples), 0)};
}

} // namespace workbench
