#include "ReplayWatch.h"

#include "TapeLink.h"

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
        return QStringLiteral("the tape is at its end");
    return QStringLiteral("the tape waits for %1, which does not come").arg(tape->awaitedWrite());
}

QString ReplayWatch::problemAtEnd() const
{
    const QString deviates = deviation();
    if (!deviates.isEmpty() || !tape || tape->isPlayed())
        return deviates;
    const QString next = tape->awaitedWrite();
    return QStringLiteral("the tape was not played to its end, where %1")
        .arg(next.isEmpty() ? QStringLiteral("the axes still move")
                            : QStringLiteral("%1 comes next").arg(next));
}

QString ReplayWatch::deviation() const
{
    return tape && !tape->deviation().isEmpty()
               ? QStringLiteral("not as on the tape: %1").arg(tape->deviation())
               : QString();
}

} // namespace workbench
