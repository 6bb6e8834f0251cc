#pragma once

#include "ModuleLink.h"

#include <QtGlobal>

namespace workbench {

class Clock;
class RegisterDevice;

/// The way from the host to a device. Each request blocks for a fixed time on the clock and then
/// acts on the device as it is at that moment. It mirrors a link that always works: the only
/// requests that fail are those that the device or its firmware refuses. All motors lead to the
/// same device.
class SimulatedLink : public ModuleLink
{
public:
    /// Requests since the link was made, failed ones included.
    struct RequestCounts
    {
        quint64 reads = 0;
        quint64 writes = 0;
        quint64 userFunctions = 0;

        quint64 total() const { return reads + writes + userFunctions; }
    };

    /// Refers to both, owns neither.
    SimulatedLink(RegisterDevice &device, Clock &clock);

    static constexpr qint64 defaultRequestCostNs = 500000;

    /// How long each request blocks; 0 and below: not at all.
    qint64 requestCostNs() const { return costNs; }
    void setRequestCostNs(qint64 ns) { costNs = ns; }

    const RequestCounts &counts() const { return requests; }

    bool readRegister(unsigned int address, unsigned char motor, int *value) override;
    bool writeRegister(unsigned int address, unsigned char motor, int value) override;

    /// Knows function 0xFD alone, which answers with both positions (see PositionPacking.h).
    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override;

private:
    void beginRequest();

    RegisterDevice &device;
    Clock &clock;
    qint64 costNs = defaultRequestCostNs;
    RequestCounts requests;
};

} // namespace workbench
