#pragma once

#include <QPoint>
#include <QPointF>
#include <QVector>

namespace drive {

/// Appends to `kept` those points of [`first`, `last`) that fall on another pixel than the point
/// kept before them and that `accepts` lets through. `pixel` is the pixel of what is drawn before
/// the first; a point left out does not move it.
template <typename Iterator, typename ToPixel, typename Accepts>
void appendThinned(QVector<QPointF> &kept, Iterator first, Iterator last, QPoint pixel,
                   const ToPixel &toPixel, const Accepts &accepts)
{
    for (; first != last; ++first) {
        const QPoint next = toPixel(*first);
        if (next != pixel && accepts(*first)) {
            kept.append(*first);
            pixel = next;
        }
    }
}

} // namespace drive
