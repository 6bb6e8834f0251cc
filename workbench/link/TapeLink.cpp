#include "TapeLink.h"

#include "Clock.h"
#include "PositionPacking.h"

#include <algorithm>

namespace workbench {

namespace {

TapeEntry makeRequest(TapeEntry::Kind kind, unsigned int address, unsigned char motor)
{
    TapeEntry request;
    request.kind = kind;
    request.address = address;
    request.motor = motor;
    return request;
}

} // namespace

TapeLink::TapeLink(const Tape &tape, Clock &tapeClock, const AxisAddresses &registers)
    : entries(tape.entries)
    , clock(tapeClock)
    , known(registers)
    , anchorClockNs(tapeClock.now())
{
    index();
    awaitWrite(0);
}

void TapeLink::index()
{
    for (int place = 0; place < entries.size(); ++place) {
        const TapeEntry &entry = entries.at(place);
        tracks[trackOf(entry)].places.append(place);
        const bool isBoth =
            entry.kind == TapeEntry::UserFunction && entry.address == bothPositionsFunction;
        if (isBoth && entry.isAnswered)
            positions.places.append(place);
        if (isOrderedWrite(place))
            ++writes;
        longestNs = qMax(longestNs, entry.tookNs);
    }
}

bool TapeLink::readRegister(unsigned int address, unsigned char motor, int *value)
{
    ++requests.reads;
    const TapeEntry *const entry = answer(makeRequest(TapeEntry::Read, address, motor));
    if (!play(entry))
        return false;
    *value = entry->value;
    return true;
}

bool TapeLink::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                            unsigned char arg, unsigned char motor, unsigned int *reply)
{
    ++requests.userFunctions;
    TapeEntry request = makeRequest(TapeEntry::UserFunction, function, motor);
    request.arg = arg;
    const TapeEntry *const entry = answer(request);
    if (!play(entry))
        return false;
    *a = entry->replyA;
    *b = entry->replyB;
    *reply = entry->reply;
    return true;
}

bool TapeLink::writeRegister(unsigned int address, unsigned char motor, int value)
{
    ++requests.writes;
    TapeEntry request = makeRequest(TapeEntry::Write, address, motor);
    request.value = value;
    // What a panel writes there depends on when it asked for it.
    if (isPosition(request) || isVelocity(request))
        return true;
    if (!hasFurtherWrite() || tapeRequest(entries.at(nextWrite)) != tapeRequest(request)) {
        deviate(request);
        return false;
    }
    const TapeEntry &entry = entries.at(nextWrite);
    // A write that comes early must not skip any of a movement.
    if (waitingNs() >= 0 || areAtRest()) {
        anchorTapeNs = entry.askedNs;
        anchorClockNs = clock.now();
    }
    ++repeatedWrites;
    lastWrite = nextWrite;
    awaitWrite(lastWrite + 1);
    return play(&entry);
}

quint64 TapeLink::trackOf(const TapeEntry &request)
{
    return static_cast<quint64>(request.kind) << 32 | static_cast<quint64>(request.arg) << 24 |
           static_cast<quint64>(request.motor) << 16 | request.address;
}

bool TapeLink::isPosition(const TapeEntry &request) const
{
    return request.kind == TapeEntry::UserFunction ? request.address == bothPositionsFunction
                                                   : contains(known.position, request.address);
}

bool TapeLink::isVelocity(const TapeEntry &request) const
{
    return request.kind != TapeEntry::UserFunction && contains(known.velocity, request.address);
}

/// What comes without an order of its own is left out, see writeRegister().
bool TapeLink::isOrderedWrite(int place) const
{
    const TapeEntry &entry = entries.at(place);
    return entry.kind == TapeEntry::Write && !isPosition(entry) && !isVelocity(entry);
}

qint64 TapeLink::tapeNow() const
{
    return anchorTapeNs + clock.now() - anchorClockNs;
}

void TapeLink::awaitWrite(int from)
{
    nextWrite = findWrite(from);
    stopPlace = findStop();
}

int TapeLink::findWrite(int from) const
{
    int place = from;
    while (place < entries.size() && !isOrderedWrite(place))
        ++place;
    return place;
}

/// The last place behind `after` that had been asked for by now, or -1.
int TapeLink::findMeasured(const Track &track, int after) const
{
    const qint64 now = tapeNow();
    const auto end = std::lower_bound(track.places.cbegin(), track.places.cend(), nextWrite);
    // The tape is in the order of the replies; behind those that had come by now is what was under
    // way.
    auto place =
        std::upper_bound(track.places.cbegin(), end, now, [this](qint64 time, int candidate) {
            return time < entries.at(candidate).repliedNs();
        });
    while (place != end && entries.at(*place).askedNs <= now)
        ++place;
    return place != track.places.cbegin() && *(place - 1) > after ? *(place - 1) : -1;
}

/// The place to answer from, in order.
int TapeLink::findNext(Track &track) const
{
    const auto begin = track.places.cbegin();
    const auto end = std::lower_bound(begin, track.places.cend(), nextWrite);
    const auto next = std::upper_bound(begin, end, qMax(track.answered, lastWrite));
    if (next != end)
        track.answered = *next;
    else
        track.answered = end == begin ? *begin : *(end - 1);
    return track.answered;
}

/// Null for what the tape has no answer to.
const TapeEntry *TapeLink::answer(const TapeEntry &request)
{
    const auto track = tracks.find(trackOf(request));
    if (track == tracks.end())
        return nullptr;
    int place = 0;
    if (isVelocity(request)) {
        place = findMeasured(*track, lastWrite);
    } else if (request.kind == TapeEntry::UserFunction && isPosition(request) && isAtStop()) {
        place = stopPlace;
    } else if (isPosition(request)) {
        place = findMeasured(*track, -1);
        if (place < 0)
            place = track->places.constFirst();
    } else {
        place = findNext(*track);
    }
    return place < 0 ? nullptr : &entries.at(place);
}

bool TapeLink::play(const TapeEntry *entry)
{
    if (!entry)
        return false;
    clock.wait(entry->tookNs);
    return entry->isAnswered;
}

void TapeLink::deviate(const TapeEntry &request)
{
    const QString wanted = hasFurtherWrite() ? awaitedWrite() : QStringLiteral("no further write");
    const QString text = QStringLiteral("%1, but the tape has %2 there")
                             .arg(QString::fromLatin1(tapeRequest(request)), wanted);
    if (firstDeviation.isEmpty())
        firstDeviation = text;
    if (onDeviation)
        onDeviation(text);
}

} // namespace workbench
