#include "SimulatedLink.h"

#include "Clock.h"
#include "PositionPacking.h"
#include "SimulatedChip.h"

namespace bench {

SimulatedLink::SimulatedLink(SimulatedChip &simulatedChip, Clock &requestClock)
    : chip(simulatedChip)
    , clock(requestClock)
{
}

void SimulatedLink::beginRequest()
{
    if (costNs > 0)
        clock.wait(costNs);
    chip.advanceTo(clock.now());
}

bool SimulatedLink::readRegister(unsigned int address, unsigned char, int *value)
{
    ++requests.reads;
    beginRequest();
    return chip.read(address, value);
}

bool SimulatedLink::writeRegister(unsigned int address, unsigned char, int value)
{
    ++requests.writes;
    beginRequest();
    return chip.write(address, value);
}

bool SimulatedLink::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                                 unsigned char, unsigned char, unsigned int *reply)
{
    ++requests.userFunctions;
    beginRequest();
    if (function != bothPositionsFunction)
        return false;
    const PositionReply packed = packPositions(chip.position(0), chip.position(1));
    *a = packed.a;
    *b = packed.b;
    *reply = packed.value;
    return true;
}

} // namespace bench
