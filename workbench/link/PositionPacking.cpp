#include "PositionPacking.h"

#include "SignExtension.h"

namespace workbench {

LinkReply packPositions(int axis0, int axis1)
{
    const unsigned int first = static_cast<unsigned int>(axis0);
    const unsigned int second = static_cast<unsigned int>(axis1);
    LinkReply reply;
    reply.a = static_cast<unsigned char>((first >> 16) & 0xFF);
    reply.b = static_cast<unsigned char>((first >> 8) & 0xFF);
    reply.value = (first & 0xFF) << 24 | (second & 0xFFFFFF);
    return reply;
}

int unpackPosition(const LinkReply &reply, int axis)
{
    const unsigned int high =
        static_cast<unsigned int>(reply.a) << 16 | static_cast<unsigned int>(reply.b) << 8;
    return signExtended(axis == 0 ? high | reply.value >> 24 : reply.value, positionBits);
}

} // namespace workbench
