#pragma once

#include <QPoint>
#include <QPointF>

/// Arithmetic on positions: no widgets, no state.
namespace drive {

/// The reply to one request for both positions.
struct PositionReply
{
    unsigned char high;   ///< Bits 16 to 23 of axis 0.
    unsigned char middle; ///< Bits 8 to 15 of axis 0.
    unsigned char low;    ///< Combined with the reply value's top byte into bits 0 to 7 of axis 0.
    unsigned int value;   ///< Top byte: bits 0 to 7 of axis 0. Low 24 bits: axis 1.
};

/// Decodes both positions, each a 24-bit two's complement number, so -8388608 to 8388607.
///
/// The two bytes and the value form six bytes, axis 0 and then axis 1, most significant byte first.
/// Bytes FF FF and value FE000102 are FFFFFE and 000102: axis 0 at -2, axis 1 at 258.
QPointF decodePositions(const PositionReply &reply);

/// Equality that forgives rounding: within 1e-12 where a coordinate is exactly 0, else within 1e-12
/// of the smaller magnitude.
bool samePoint(const QPointF &a, const QPointF &b);

bool isFinite(const QPointF &point);

/// Toward zero, saturating at the type's limits; 0 for what is not a number.
int truncated(double value);
long long truncated64(double value);

/// To the nearest whole number, halves upward, saturating; 0 for what is not a number.
int rounded(double value);
QPoint rounded(const QPointF &point);

/// `a + b`, saturating.
int saturatedSum(int a, int b);

/// True when a limit lies on the grid of 256 units.
bool isOnGrid(int limit);

/// The largest grid value not above a lower limit that is off the grid.
int snappedLowerLimit(int limit);

/// The grid value for an upper limit that is off the grid: the next one above a positive limit, but
/// one step further than that for a negative one. -10 becomes 256 and not 0: leave it so.
int snappedUpperLimit(int limit);

} // namespace drive
