#include "TapeLink.h"

#include "Clock.h"
#include "PositionPacking.h"
#include "SignExtension.h"

#include <algorithm>

namespace workbench {

namespace {

/// Targets go out as the 24 bits that the chip keeps, positive or negative alike.
int targetOf(int value)
{
    return signExtended(static_cast<unsigned int>(value), positionBits);
}

QPoint positionsIn(const TapeEntry &entry)
{
    const LinkReply reply{entry.replyA, entry.replyB, entry.reply};
    return {unpackPosition(reply, 0), unpackPosition(reply, 1)};
}

} // namespace

bool TapeLink::isAtEnd() const
{
    return !hasFurtherWrite() && waitingNs() >= 0;
}

qint64 TapeLink::waitingNs() const
{
    if (hasFurtherWrite())
        return tapeNow() - entries.at(nextWrite).askedNs;
    return entries.isEmpty() ? tapeNow() : tapeNow() - entries.constLast().repliedNs();
}

QString TapeLink::awaitedWrite() const
{
    return hasFurtherWrite() ? QString::fromLatin1(tapeRequest(entries.at(nextWrite))) : QString();
}

std::optional<QPoint> TapeLink::awaitedTarget() const
{
    const auto x = targetWritten(nextWrite, 0);
    const auto y = x ? targetWritten(findWrite(nextWrite + 1), 1) : std::nullopt;
    return y ? std::optional<QPoint>({*x, *y}) : std::nullopt;
}

std::optional<QPoint> TapeLink::position() const
{
    if (positions.places.isEmpty())
        return std::nullopt;
    return positionsIn(entries.at(findPosition()));
}

bool TapeLink::areAtRest() const
{
    for (const Track &track : tracks) {
        const TapeEntry &first = entries.at(track.places.constFirst());
        if (first.kind != TapeEntry::Read || !isVelocity(first))
            continue;
        // The last reading counts: one that still saw the axes move may be followed by rest.
        const auto end = std::lower_bound(track.places.cbegin(), track.places.cend(), nextWrite);
        const int last = end == track.places.cbegin() ? -1 : *(end - 1);
        if (last > lastWrite && entries.at(last).isAnswered && entries.at(last).value != 0)
            return false;
    }
    return !isMovingBehind(positions.places.isEmpty() ? lastWrite : findPosition());
}

std::optional<int> TapeLink::value(unsigned int address) const
{
    const int after = contains(known.velocity, address) ? lastWrite : -1;
    int newest = -1;
    for (const Track &track : tracks) {
        const TapeEntry &first = entries.at(track.places.constFirst());
        if (first.kind == TapeEntry::UserFunction || first.address != address)
            continue;
        const int place = findMeasured(track, after);
        if (place > newest && entries.at(place).isAnswered)
            newest = place;
    }
    return newest < 0 ? std::nullopt : std::optional<int>(entries.at(newest).value);
}

std::optional<int> TapeLink::target(int axis) const
{
    const auto &address = known.target.at(static_cast<size_t>(axis));
    const auto raw = address ? value(*address) : std::nullopt;
    return raw ? std::optional<int>(targetOf(*raw)) : std::nullopt;
}

/// The place of the positions that are told now, of which there must be some on the tape.
int TapeLink::findPosition() const
{
    if (isAtStop())
        return stopPlace;
    const int place = findMeasured(positions, -1);
    return place < 0 ? positions.places.constFirst() : place;
}

/// True when anything but rest is recorded behind that place up to the next write.
bool TapeLink::isMovingBehind(int place) const
{
    const QPoint here = positions.places.isEmpty() ? QPoint() : positionsIn(entries.at(place));
    for (int later = place + 1; later < nextWrite; ++later) {
        const TapeEntry &entry = entries.at(later);
        if (!entry.isAnswered)
            continue;
        if (entry.kind == TapeEntry::Read && isVelocity(entry) && entry.value != 0)
            return true;
        if (entry.kind == TapeEntry::UserFunction && isPosition(entry) &&
            positionsIn(entry) != here)
            return true;
    }
    return false;
}

std::optional<int> TapeLink::targetWritten(int place, int axis) const
{
    if (place >= entries.size() || entries.at(place).kind != TapeEntry::Write ||
        entries.at(place).address != known.target.at(static_cast<size_t>(axis)))
        return std::nullopt;
    return targetOf(entries.at(place).value);
}

/// Where the panel was told the position that the next two writes have as their targets, in the
/// move that they end; -1 when they are no such pair.
int TapeLink::findStop() const
{
    const auto target = awaitedTarget();
    if (!target)
        return -1;
    const auto begin = positions.places.cbegin();
    auto place = std::lower_bound(begin, positions.places.cend(), nextWrite);
    while (place != begin) {
        --place;
        if (positionsIn(entries.at(*place)) == target)
            return *place;
        // What is shown when the move begins was told before it.
        if (*place < lastWrite)
            break;
    }
    return -1;
}

} // namespace workbench
