#include "FaultyLink.h"

#include "Clock.h"
#include "PositionPacking.h"

namespace workbench {

namespace {

constexpr qint64 nsPerMs = 1000000;

// What a reply holds: a value and, for user functions, two bytes.
constexpr unsigned int valueBits = 32;
constexpr unsigned int byteBits = 8;

} // namespace

void FaultyLink::spoil(const Request &request, LinkReply *reply)
{
    spoilValues(request, reply);
    const LinkReply fresh = *reply;
    if (isOn(FaultKind::Stale) && previousReply)
        *reply = *previousReply;
    previousReply = fresh;
    if (happens(FaultKind::Corrupt))
        flipBit(request, reply);
}

void FaultyLink::spoilValues(const Request &request, LinkReply *reply)
{
    if (request.kind == Request::User && request.address == bothPositionsFunction) {
        const int first = spoiltPosition(0, unpackPosition(*reply, 0));
        const int second = spoiltPosition(1, unpackPosition(*reply, 1));
        *reply = packPositions(first, second);
    }
    if (request.kind != Request::Read)
        return;
    const int value = static_cast<int>(reply->value);
    for (int axis = 0; axis < axisCount; ++axis) {
        const auto index = static_cast<std::size_t>(axis);
        if (known.position[index] == request.address)
            reply->value = static_cast<unsigned int>(spoiltPosition(axis, value));
        if (known.velocity[index] == request.address)
            reply->value = static_cast<unsigned int>(spoiltVelocity(axis, value));
    }
}

int FaultyLink::spoiltPosition(int axis, int position)
{
    qint64 spoilt = position;
    const auto standStill = [&spoilt, axis](Running &fault) {
        auto &stood = fault.stood[static_cast<std::size_t>(axis)];
        if (!stood)
            stood = static_cast<int>(spoilt);
        spoilt = *stood;
    };
    if (Running *const frozen = running(FaultKind::FrozenPositions))
        standStill(*frozen);
    Running *const stuck = running(FaultKind::StuckAxis);
    if (stuck && axis == static_cast<int>(stuck->fault.parameter))
        standStill(*stuck);
    const Running *const jump = running(FaultKind::Jump);
    if (jump && (time.now() - jump->onSinceNs) % jumpPeriodNs < jumpNs)
        spoilt += static_cast<qint64>(jump->fault.parameter);
    if (Running *const noise = running(FaultKind::Noise)) {
        const auto greatest = static_cast<qint64>(noise->fault.parameter);
        spoilt += static_cast<qint64>(noise->chance()) % (2 * greatest + 1) - greatest;
    }
    return static_cast<int>(qBound<qint64>(minimumPosition, spoilt, maximumPosition));
}

int FaultyLink::spoiltVelocity(int axis, int velocity)
{
    if (isOn(FaultKind::StuckAxis) && axis == static_cast<int>(parameter(FaultKind::StuckAxis)))
        return 0;
    Running *const zero = running(FaultKind::ZeroVelocity);
    if (!zero)
        return velocity;
    if (!zero->moveSinceNs && velocity != 0)
        zero->moveSinceNs = time.now();
    const qint64 durationNs = static_cast<qint64>(zero->fault.parameter) * nsPerMs;
    const bool isZero = zero->moveSinceNs && time.now() - *zero->moveSinceNs < durationNs;
    return isZero ? 0 : velocity;
}

void FaultyLink::flipBit(const Request &request, LinkReply *reply)
{
    const bool hasBytes = request.kind == Request::User;
    const unsigned int bits = hasBytes ? valueBits + 2 * byteBits : valueBits;
    const auto bit = static_cast<unsigned int>(running(FaultKind::Corrupt)->chance() % bits);
    if (bit < valueBits)
        reply->value ^= 1u << bit;
    else if (bit < valueBits + byteBits)
        reply->a = static_cast<unsigned char>(reply->a ^ 1u << (bit - valueBits));
    else
        reply->b = static_cast<unsigned char>(reply->b ^ 1u << (bit - valueBits - byteBits));
}

} // namespace workbench
