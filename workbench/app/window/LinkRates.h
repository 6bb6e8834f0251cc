#pragma once

#include "SimulatedLink.h"

namespace workbench {

/// How busy a link has been between the last two updates.
class LinkRates
{
public:
    /// `nowNs` on any steady clock, later than the last time. The first update only sets the start.
    void update(const SimulatedLink::RequestCounts &counts, qint64 nowNs);

    double requestsPerSecond() const { return requests; }
    /// User-function requests, which is what the positions are sampled with.
    double samplesPerSecond() const { return samples; }

private:
    bool hasStart = false;
    SimulatedLink::RequestCounts before;
    qint64 beforeNs = 0;
    double requests = 0;
    double samples = 0;
};

} // namespace workbench
