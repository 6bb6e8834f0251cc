#include "SimulatedLink.h"

#include "Clock.h"
#include "PositionPacking.h"
#include "RegisterDevice.h"

namespace workbench {

SimulatedLink::SimulatedLink(RegisterDevice &reachedDevice, Clock &requestClock)
    : device(reachedDevice)
    , clock(requestClock)
{
}

void SimulatedLink::beginRequest()
{
    if (costNs > 0)
        clock.wait(costNs);
    device.advanceTo(clock.now());
}

bool SimulatedLink::readRegister(unsigned int address, unsigned char, int *value)
{
    ++requests.reads;
    beginRequest();
    return device.read(address, value);
}

bool SimulatedLink::writeRegister(unsigned int address, unsigned char, int value)
{
    ++requests.writes;
    beginRequest();
    return device.write(address, value);
}

bool SimulatedLink::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                                 unsigned char, unsigned char, unsigned int *reply)
{
    ++requests.userFunctions;
    beginRequest();
    if (function != bothPositionsFunction)
        return false;
    const LinkReply packed = packPositions(device.position(0), device.position(1));
    *a = packed.a;
    *b = packed.b;
    *reply = packed.value;
    return true;
}

} // namespace workbench
