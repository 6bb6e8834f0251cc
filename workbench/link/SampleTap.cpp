#include "SampleTap.h"

#include "Clock.h"
#include "PositionPacking.h"

namespace workbench {

SampleTap::SampleTap(ModuleLink &nextLink, const Clock &sampleClock)
    : next(nextLink)
    , clock(sampleClock)
{
}

bool SampleTap::counted(bool isAnswered)
{
    failed += isAnswered ? 0 : 1;
    return isAnswered;
}

bool SampleTap::readRegister(unsigned int address, unsigned char motor, int *value)
{
    return counted(next.readRegister(address, motor, value));
}

bool SampleTap::writeRegister(unsigned int address, unsigned char motor, int value)
{
    return counted(next.writeRegister(address, motor, value));
}

bool SampleTap::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                             unsigned char arg, unsigned char motor, unsigned int *reply)
{
    const bool isAnswered = counted(next.userFunction(a, b, function, arg, motor, reply));
    if (isAnswered && function == bothPositionsFunction && onSample) {
        const LinkReply both{*a, *b, *reply};
        onSample({clock.now(), {unpackPosition(both, 0), unpackPosition(both, 1)}});
    }
    return isAnswered;
}

} // namespace workbench
