#pragma once

#include "LinkReply.h"

namespace workbench {

constexpr int axisCount = 2;

/// Positions are signed numbers of so many bits, in requests and replies.
constexpr int positionBits = 24;
constexpr int minimumPosition = -8388608;
constexpr int maximumPosition = 8388607;

/// The user function that asks for both positions.
constexpr unsigned char bothPositionsFunction = 0xFD;

/// The reply to that function for two positions of minimumPosition to maximumPosition: its two
/// bytes and its value hold axis 0 and then axis 1 as six bytes, each axis as a 24-bit
/// two's-complement number with the highest byte first.
///
/// | part of the reply       | holds                  |
/// |-------------------------|------------------------|
/// | `a`                     | axis 0, bits 16 to 23  |
/// | `b`                     | axis 0, bits 8 to 15   |
/// | `value`, bits 24 to 31  | axis 0, bits 0 to 7    |
/// | `value`, bits 0 to 23   | axis 1                 |
///
/// Example: axis 0 at 66051 (0x010203) and axis 1 at -2 (0xFFFFFE) make a = 0x01, b = 0x02 and
/// value = 0x03FFFFFE.
LinkReply packPositions(int axis0, int axis1);

/// The position of axis 0 or 1 in a reply.
int unpackPosition(const LinkReply &reply, int axis);

} // namespace workbench
