#pragma once

#include "ChipDescription.h"
#include "CommandLine.h"

namespace bench {

/// An unattended run from the first file opened to the summary: carries the moves out, writes the
/// record and the picture, reports on the standard outputs. SIGINT and SIGTERM stop the axes and
/// end it, as does closing the window; no record is left then. Returns the exit code.
int runUnattended(const Options &options, const ChipDescription &chip);

} // namespace bench
