#pragma once

#include "FaultyLink.h"
#include "SampleTap.h"
#include "TapeLink.h"
#include "TapeRecorder.h"

#include <optional>

namespace workbench {

/// The links between the host and what answers it, put one behind another. Requests go down,
/// replies come up:
///
///     a tool
///       |    ToolsInterface, QVXLModuleInterface
///     HostModule               one of the host's modules
///       |    ModuleLink, from here on
///     SampleTap                tells of the positions that come up
///       |
///     TapeRecorder             writes down what goes by, spoilt replies as the tool gets them
///       |
///     FaultyLink               spoils requests and replies in the ways that are switched on
///       |
///       +-------------------+
///       |                   |  instead, when there is a tape to play
///     SimulatedLink       TapeLink
///       |    RegisterDevice
///     SimulatedChip
///
/// GUI thread.
class LinkChain
{
public:
    /// Refers to `end`, which answers when there is no tape, and to the clock. `registers` tells
    /// the faults and the tape what is measured.
    LinkChain(ModuleLink &end, Clock &clock, const AxisAddresses &registers,
              const std::optional<Tape> &tape, quint32 seed = FaultyLink::defaultSeed);

    /// What the host is to ask.
    ModuleLink &front() { return sampleTap; }

    SampleTap &tap() { return sampleTap; }
    TapeRecorder &recorder() { return tapeRecorder; }
    FaultyLink &faults() { return faultyLink; }
    /// Null without a tape to play.
    TapeLink *replay() { return tapeLink ? &*tapeLink : nullptr; }
    const TapeLink *replay() const { return tapeLink ? &*tapeLink : nullptr; }

private:
    std::optional<TapeLink> tapeLink;
    FaultyLink faultyLink;
    TapeRecorder tapeRecorder;
    SampleTap sampleTap;
};

} // namespace workbench
