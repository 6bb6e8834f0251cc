#include "LinkRates.h"

namespace workbench {

namespace {

constexpr double nsPerSecond = 1e9;

double rate(quint64 now, quint64 before, qint64 spanNs)
{
    return static_cast<double>(now - before) * nsPerSecond / static_cast<double>(spanNs);
}

} // namespace

void LinkRates::update(const SimulatedLink::RequestCounts &counts, qint64 nowNs)
{
    const qint64 span = nowNs - beforeNs;
    if (hasStart && span <= 0)
        return;
    if (hasStart) {
        requests = rate(counts.total(), before.total(), span);
        samples = rate(counts.userFunctions, before.userFunctions, span);
    }
    hasStart = true;
    before = counts;
    beforeNs = nowNs;
}

} // namespace workbench
