#include "PositionPacking.h"

namespace bench {

PositionReply packPositions(int axis0, int axis1)
{
    const unsigned int first = static_cast<unsigned int>(axis0);
    const unsigned int second = static_cast<unsigned int>(axis1);
    PositionReply reply;
    reply.a = static_cast<unsigned char>((first >> 16) & 0xFF);
    reply.b = static_cast<unsigned char>((first >> 8) & 0xFF);
    reply.value = (first & 0xFF) << 24 | (second & 0xFFFFFF);
    return reply;
}

} // namespace bench
