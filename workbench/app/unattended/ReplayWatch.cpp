#include "ReplayWatch.h"

#include "TapeLink.h"
#include "Wording.h"

namespace workbench {

namespace {

/// How long the panel may take for its next step, and for as many requests.
constexpr qint64 patienceNs = 5000000000;
constexpr qint64 patienceRequests = 20;

} // namespace

ReplayWatch::ReplayWatch(const TapeLink *played)
    : tape(played)
{
}

QString ReplayWatch::problem() const
{
    const QString deviates = deviation();
    const bool isInVain =
        tape && tape->waitingNs() > patienceNs + patienceRequests * tape->longestRequestNs();
    if (!deviates.isEmpty() || !isInVain)
        return deviates;
    if (tape->isAtEnd())
        return wording::tapeAtEnd;
    return wording::tapeWaits(tape->awaitedWrite());
}

QString ReplayWatch::problemAtEnd() const
{
    const QString deviates = deviation();
    if (!deviates.isEmpty() || !tape || tape->isPlayed())
        return deviates;
    return wording::tapeNotPlayed(tape->awaitedWrite());
}

QString ReplayWatch::deviation() const
{
    return tape && !tape->deviation().isEmpty() ? wording::notAsOnTape(tape->deviation())
                                                : QString();
}

} // namespace workbench
