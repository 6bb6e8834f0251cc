#include "LinkChain.h"

namespace workbench {

namespace {

/// `replay` filled from the tape, if there is one; the link that then answers requests.
ModuleLink &answering(ModuleLink &end, const std::optional<Tape> &tape, Clock &clock,
                      const AxisAddresses &registers, std::optional<TapeLink> &replay)
{
    if (!tape)
        return end;
    return replay.emplace(*tape, clock, registers);
}

} // namespace

LinkChain::LinkChain(ModuleLink &end, Clock &clock, const AxisAddresses &registers,
                     const std::optional<Tape> &tape, quint32 seed)
    : faultyLink(answering(end, tape, clock, registers, tapeLink), clock, registers, seed)
    , tapeRecorder(faultyLink, clock)
    , sampleTap(tapeRecorder, clock)
{
}

} // namespace workbench
