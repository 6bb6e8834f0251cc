#include "FaultyLink.h"

#include "Clock.h"

#include <QCoreApplication>

namespace workbench {

namespace {

constexpr qint64 nsPerMs = 1000000;

} // namespace

FaultyLink::FaultyLink(ModuleLink &link, Clock &clock, const AxisAddresses &registers,
                       quint32 chanceSeed)
    : next(link)
    , time(clock)
    , known(registers)
    , seed(chanceSeed)
{
}

void FaultyLink::switchOn(const Fault &fault)
{
    Running fresh;
    fresh.fault = fault;
    fresh.onSinceNs = time.now();
    // Each fault has a chance of its own, so that none depends on which others are on.
    std::seed_seq mixed{seed, static_cast<quint32>(fault.kind)};
    fresh.chance.seed(mixed);
    faults[fault.kind] = fresh;
    act();
}

void FaultyLink::switchOff(FaultKind kind)
{
    faults.erase(kind);
}

void FaultyLink::switchOffAll()
{
    faults.clear();
}

bool FaultyLink::isOn(FaultKind kind) const
{
    return faults.count(kind) != 0;
}

QVector<Fault> FaultyLink::active() const
{
    QVector<Fault> all;
    for (const FaultInfo &info : faultTable()) {
        const auto found = faults.find(info.kind);
        if (found != faults.end())
            all.append(found->second.fault);
    }
    return all;
}

bool FaultyLink::readRegister(unsigned int address, unsigned char motor, int *value)
{
    Request request;
    request.address = address;
    request.motor = motor;
    const auto reply = carry(request);
    if (reply)
        *value = static_cast<int>(reply->value);
    return reply.has_value();
}

bool FaultyLink::writeRegister(unsigned int address, unsigned char motor, int value)
{
    Request request;
    request.kind = Request::Write;
    request.address = address;
    request.motor = motor;
    request.value = value;
    return carry(request).has_value();
}

bool FaultyLink::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                              unsigned char arg, unsigned char motor, unsigned int *reply)
{
    const auto answer = carry({Request::User, function, motor, 0, *a, *b, arg});
    if (answer) {
        *a = answer->a;
        *b = answer->b;
        *reply = answer->value;
    }
    return answer.has_value();
}

FaultyLink::Running *FaultyLink::running(FaultKind kind)
{
    const auto found = faults.find(kind);
    return found == faults.end() ? nullptr : &found->second;
}

double FaultyLink::parameter(FaultKind kind) const
{
    const auto found = faults.find(kind);
    return found == faults.end() ? 0 : found->second.fault.parameter;
}

/// Draws whether a fault that is on with a probability happens this time.
bool FaultyLink::happens(FaultKind kind)
{
    Running *const fault = running(kind);
    if (!fault)
        return false;
    const double drawn = static_cast<double>(fault->chance() - std::mt19937::min()) /
                         (static_cast<double>(std::mt19937::max()) + 1);
    return drawn < fault->fault.parameter;
}

// What is called out of a request may switch faults and make requests, so nothing that is found in
// `faults` is held on to across a call.

std::optional<LinkReply> FaultyLink::carry(const Request &request)
{
    ++depth;
    countRequest(request);
    act();
    resetWhenDue();
    const auto reply = isRefused(request) ? std::nullopt : passOn(request);
    --depth;
    return reply;
}

std::optional<LinkReply> FaultyLink::passOn(const Request &request)
{
    spin();
    if (request.kind == Request::Write && isOn(FaultKind::IgnoreWrites))
        return LinkReply();
    const qint64 start = time.now();
    LinkReply reply;
    bool isAnswered = send(request, &reply);
    if (request.kind == Request::Write && isOn(FaultKind::DuplicateWrite))
        isAnswered = send(request, &reply);
    waitLonger(time.now() - start);
    if (isReplyLost(request) || !isAnswered)
        return std::nullopt;
    if (request.kind != Request::Write)
        spoil(request, &reply);
    return reply;
}

bool FaultyLink::send(const Request &request, LinkReply *reply)
{
    switch (request.kind) {
    case Request::Write:
        return next.writeRegister(request.address, request.motor, request.value);
    case Request::User:
        reply->a = request.a;
        reply->b = request.b;
        return next.userFunction(&reply->a, &reply->b, static_cast<unsigned char>(request.address),
                                 request.extra, request.motor, &reply->value);
    default:
        int value = 0;
        const bool isAnswered = next.readRegister(request.address, request.motor, &value);
        reply->value = static_cast<unsigned int>(value);
        return isAnswered;
    }
}

void FaultyLink::countRequest(const Request &request)
{
    const bool isTarget = request.kind == Request::Write && contains(known.target, request.address);
    for (auto &entry : faults) {
        Running &fault = entry.second;
        ++fault.requests;
        if (isTarget && entry.first == FaultKind::ZeroVelocity)
            fault.moveSinceNs.reset();
        if (isTarget && entry.first == FaultKind::Reset && !fault.moveSinceNs)
            fault.moveSinceNs = time.now();
    }
}

void FaultyLink::act()
{
    actOnce(FaultKind::DeleteRegisters, actions.deleteRegisters);
    actOnce(FaultKind::DeleteWidgets, actions.deleteWidgets);
}

void FaultyLink::actOnce(FaultKind kind, const std::function<void()> &action)
{
    Running *const fault = running(kind);
    if (!fault || fault->hasActed || static_cast<double>(fault->requests) < fault->fault.parameter)
        return;
    fault->hasActed = true;
    if (action)
        action();
}

void FaultyLink::resetWhenDue()
{
    Running *const fault = running(FaultKind::Reset);
    if (!fault || fault->hasActed || !fault->moveSinceNs)
        return;
    const qint64 due = *fault->moveSinceNs + static_cast<qint64>(fault->fault.parameter) * nsPerMs;
    if (time.now() < due)
        return;
    fault->hasActed = true;
    if (actions.resetChip)
        actions.resetChip(due);
}

bool FaultyLink::isRefused(const Request &request)
{
    const FaultKind refusals[] = {FaultKind::FailReads, FaultKind::FailWrites, FaultKind::FailUser};
    if (isOn(FaultKind::Unplug) || isOn(refusals[request.kind]))
        return true;
    const Running *const fault = running(FaultKind::FailEvery);
    return fault && fault->requests % static_cast<quint64>(fault->fault.parameter) == 0;
}

/// The outermost request alone, or requests out of events would nest without end.
void FaultyLink::spin()
{
    if (depth == 1 && isOn(FaultKind::Spin))
        QCoreApplication::processEvents();
}

void FaultyLink::waitLonger(qint64 tookNs)
{
    if (isOn(FaultKind::Slow))
        time.wait((static_cast<qint64>(parameter(FaultKind::Slow)) - 1) * tookNs);
    time.wait(static_cast<qint64>(parameter(FaultKind::Late)) * nsPerMs);
}

bool FaultyLink::isReplyLost(const Request &request)
{
    if (request.kind == Request::Write && isOn(FaultKind::HalfWrite))
        return true;
    const bool isLost = happens(FaultKind::Lose);
    if (!isLost && !isOn(FaultKind::NoReply))
        return false;
    time.wait(replyTimeoutNs);
    return true;
}

} // namespace workbench
