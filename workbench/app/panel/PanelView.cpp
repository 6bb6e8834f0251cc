#include "PanelView.h"

namespace workbench {

namespace {

/// The panel keeps its limits on this grid, and those of an axis two steps apart or more.
constexpr int grid = 256;
constexpr int narrowest = 2 * grid;

int gridBelow(int value)
{
    const int remainder = value % grid;
    return value - (remainder < 0 ? remainder + grid : remainder);
}

int lowerLimit(int shown, int wanted, int lowest)
{
    return wanted < shown ? qMax(gridBelow(wanted) - grid, lowest) : shown;
}

int upperLimit(int shown, int wanted, int highest)
{
    return wanted > shown ? qMin(gridBelow(wanted) + narrowest, highest) : shown;
}

} // namespace

bool PanelView::contains(const QPoint &point) const
{
    return point.x() >= left && point.x() <= right && point.y() >= bottom && point.y() <= top;
}

bool PanelView::operator==(const PanelView &other) const
{
    return left == other.left && right == other.right && bottom == other.bottom && top == other.top;
}

PanelView widened(const PanelView &view, const QVector<QPoint> &points, const PanelView &widest)
{
    PanelView wide = view;
    for (const QPoint &point : points) {
        wide.left = lowerLimit(wide.left, point.x(), widest.left);
        wide.right = upperLimit(wide.right, point.x(), widest.right);
        wide.bottom = lowerLimit(wide.bottom, point.y(), widest.bottom);
        wide.top = upperLimit(wide.top, point.y(), widest.top);
    }
    return wide;
}

PanelView closeUp(const QPoint &point, const PanelView &widest)
{
    const auto low = [](int value, int lowest, int highest) {
        return qBound(lowest, gridBelow(value) - grid, highest - narrowest);
    };
    PanelView close;
    close.left = low(point.x(), widest.left, widest.right);
    close.right = close.left + narrowest;
    close.bottom = low(point.y(), widest.bottom, widest.top);
    close.top = close.bottom + narrowest;
    return close;
}

} // namespace workbench
