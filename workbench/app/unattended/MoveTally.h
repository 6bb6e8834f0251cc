#pragma once

#include <QStringList>
#include <QtGlobal>

#include <optional>
#include <vector>

namespace workbench {

/// What is counted of a move, or of a whole flight path.
struct MoveFigures
{
    double durationS = 0;
    double latenessMs = 0; ///< of the end that the panel found, behind that of the axes
    std::optional<double> deviationUnits; ///< nothing for a turned move, which has no line
    qint64 samples = 0;
};

/// Adds up many moves.
class MoveTally
{
public:
    /// After how many moves a line is due.
    static constexpr int movesPerLine = 100;

    void add(const MoveFigures &move);

    int count() const { return static_cast<int>(moves.size()); }
    bool isLineDue() const { return count() % movesPerLine == 0; }

    /// About the last movesPerLine moves; one line.
    QString line() const;
    /// Least, median and largest of each figure, a line each below a title; of one move at least.
    QStringList table() const;

private:
    std::vector<MoveFigures> moves;
};

} // namespace workbench
