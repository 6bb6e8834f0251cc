#pragma once

#include <QRect>
#include <QRegion>
#include <QVector>

namespace drive {

/// Where the lines of a trace lie, in boxes of some consecutive lines each: those at a place are
/// found without a look at every line. Lines are counted from the oldest on.
class LineBoxes
{
public:
    static constexpr int linesPerBox = 16;

    int lines() const { return count; }

    /// Takes in the next line, all of which is within `extent`.
    void append(const QRect &extent)
    {
        const int box = (gone + count) / linesPerBox;
        if (box == boxes.size())
            boxes.append(extent);
        else
            boxes[box] |= extent;
        ++count;
    }

    void removeOldest(int number)
    {
        count -= number;
        gone += number;
        boxes.remove(0, gone / linesPerBox);
        gone %= linesPerBox;
    }

    /// Calls `visit(first, last)` for the lines, up to the one before `last`, of every box that
    /// meets `area`.
    template <typename Visit>
    void visitAt(const QRegion &area, const Visit &visit) const
    {
        for (int box = 0; box < boxes.size(); ++box) {
            if (area.intersects(boxes.at(box)))
                visit(qMax(box * linesPerBox - gone, 0),
                      qMin((box + 1) * linesPerBox - gone, count));
        }
    }

private:
    QVector<QRect> boxes;
    int count = 0;
    int gone = 0; ///< Lines of the first box that have been removed.
};

} // namespace drive
