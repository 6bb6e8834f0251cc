#pragma once

#include "ChipDescription.h"
#include "CommandLine.h"
#include "ExitCodes.h"
#include "Tape.h"

#include <optional>

namespace workbench {

class Clock;

/// An unattended run, of the simulated module or of the tape, from the first file opened to the
/// summary: carries the moves out, writes the record and the picture, reports on the standard
/// outputs. SIGINT and SIGTERM stop the axes and end it, as does closing the window; no record is
/// left then. The clock must go with the event loop's. Returns one of exitCode.
int runUnattended(const Options &options, const ChipDescription &chip, Clock &clock,
                  const std::optional<Tape> &replay = std::nullopt);

} // namespace workbench
