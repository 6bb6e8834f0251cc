#include "PositionPacking.h"

namespace workbench {

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

int unpackPosition(const PositionReply &reply, int axis)
{
    constexpr unsigned int mask = 0xFFFFFF;
    constexpr unsigned int signBit = 0x800000;
    const unsigned int high =
        static_cast<unsigned int>(reply.a) << 16 | static_cast<unsigned int>(reply.b) << 8;
    const unsigned int bits = axis == 0 ? high | reply.value >> 24 : reply.value & mask;
    return static_cast<int>(bits ^ signBit) - static_cast<int>(signBit);
}

} // namespace workbench
