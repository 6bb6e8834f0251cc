#include "SampleTap.h"

#include "Clock.h"

namespace workbench {

namespace {

constexpr unsigned char bothPositionsFunction = 0xFD;

/// The low 24 bits as a signed number.
int signExtended(unsigned int bits)
{
    constexpr unsigned int signBit = 0x800000;
    constexpr unsigned int mask = 0xFFFFFF;
    return static_cast<int>((bits & mask) ^ signBit) - static_cast<int>(signBit);
}

/// See PositionPacking.h for how the reply holds the two.
QPoint unpacked(unsigned char a, unsigned char b, unsigned int reply)
{
    const unsigned int axis0 =
        static_cast<unsigned int>(a) << 16 | static_cast<unsigned int>(b) << 8 | reply >> 24;
    return {signExtended(axis0), signExtended(reply)};
}

} // namespace

SampleTap::SampleTap(ModuleLink &nextLink, const Clock &sampleClock)
    : next(nextLink)
    , clock(sampleClock)
{
}

bool SampleTap::readRegister(unsigned int address, unsigned char motor, int *value)
{
    return next.readRegister(address, motor, value);
}

bool SampleTap::writeRegister(unsigned int address, unsigned char motor, int value)
{
    return next.writeRegister(address, motor, value);
}

bool SampleTap::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                             unsigned char arg, unsigned char motor, unsigned int *reply)
{
    const bool isAnswered = next.userFunction(a, b, function, arg, motor, reply);
    if (isAnswered && function == bothPositionsFunction && onSample)
        onSample({clock.now(), unpacked(*a, *b, *reply)});
    return isAnswered;
}

} // namespace workbench
