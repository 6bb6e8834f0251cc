#pragma once

#include "AxisAddresses.h"
#include "Fault.h"
#include "LinkReply.h"
#include "ModuleLink.h"

#include <QtGlobal>

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <random>

namespace workbench {

class Clock;

/// What a fault does beyond the requests. Whatever is left empty does not happen.
struct FaultActions
{
    std::function<void(qint64 ns)> resetChip; ///< as of that time of the clock, not in the future
    std::function<void()> deleteRegisters;    ///< the host's register and field objects
    std::function<void()> deleteWidgets;      ///< the tools' register widgets
};

/// Stands in front of another link and spoils requests and replies in the ways that are switched
/// on, several at a time. Without faults it passes everything on unchanged.
///
/// Chance comes from the seed alone: the same seed, faults and requests give the same replies.
/// Whatever takes time waits on the clock. A failed request leaves its results alone. Actions are
/// called in the middle of a request, before that is passed on, or when the fault is switched on.
/// GUI thread; requests may be nested (see FaultKind::Spin).
class FaultyLink : public ModuleLink
{
public:
    static constexpr quint32 defaultSeed = 1;
    /// How long a reply that never comes is waited for.
    static constexpr qint64 replyTimeoutNs = 20000000;
    /// FaultKind::Jump: so long is the position off, from the first moment of each period on.
    static constexpr qint64 jumpNs = 100000000;
    static constexpr qint64 jumpPeriodNs = 500000000;

    /// Refers to link and clock, owns neither.
    FaultyLink(ModuleLink &link, Clock &clock, const AxisAddresses &registers,
               quint32 seed = defaultSeed);

    void setActions(const FaultActions &newActions) { actions = newActions; }

    /// Starts the fault afresh when it is on already.
    void switchOn(const Fault &fault);
    /// Requests are as before the fault from the next one on; what a request or an action has
    /// already done stays.
    void switchOff(FaultKind kind);
    void switchOffAll();

    bool isOn(FaultKind kind) const;
    /// In the order of faultTable().
    QVector<Fault> active() const;

    bool readRegister(unsigned int address, unsigned char motor, int *value) override;
    bool writeRegister(unsigned int address, unsigned char motor, int value) override;
    /// Function 0xFD asks for both positions (see PositionPacking.h).
    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override;

private:
    struct Request
    {
        enum Kind { Read, Write, User };

        Kind kind = Read;
        unsigned int address = 0; ///< of a register, or the user function
        unsigned char motor = 0;
        int value = 0;           ///< written
        unsigned char a = 0;     ///< User
        unsigned char b = 0;     ///< User
        unsigned char extra = 0; ///< User: the argument
    };

    /// A fault that is on, with what it has seen since then.
    struct Running
    {
        Fault fault;
        qint64 onSinceNs = 0;
        quint64 requests = 0;
        std::optional<qint64> moveSinceNs;       ///< Reset, ZeroVelocity: of the present move
        std::array<std::optional<int>, 2> stood; ///< FrozenPositions, StuckAxis: by axis
        bool hasActed = false;                   ///< faults that act once
        std::mt19937 chance;
    };

    Running *running(FaultKind kind);
    double parameter(FaultKind kind) const;
    bool happens(FaultKind kind);

    std::optional<LinkReply> carry(const Request &request);
    std::optional<LinkReply> passOn(const Request &request);
    bool send(const Request &request, LinkReply *reply);
    void countRequest(const Request &request);
    void act();
    void actOnce(FaultKind kind, const std::function<void()> &action);
    void resetWhenDue();
    bool isRefused(const Request &request);
    void spin();
    void waitLonger(qint64 tookNs);
    bool isReplyLost(const Request &request);
    void spoil(const Request &request, LinkReply *reply);
    void spoilValues(const Request &request, LinkReply *reply);
    int spoiltPosition(int axis, int position);
    int spoiltVelocity(int axis, int velocity);
    void flipBit(const Request &request, LinkReply *reply);

    ModuleLink &next;
    Clock &time;
    AxisAddresses known;
    FaultActions actions;
    quint32 seed;
    std::map<FaultKind, Running> faults;
    std::optional<LinkReply> previousReply;
    int depth = 0; ///< requests under way
};

} // namespace workbench
