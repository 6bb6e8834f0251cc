#pragma once

#include "ChipDescription.h"

#include <optional>

class QIODevice;

namespace workbench {

/// Why a chip description was refused. For "FILE:LINE: reason".
struct ChipDescriptionError
{
    qint64 line = 0; ///< from 1; for a faulty start tag the line on which the tag ends
    QString reason;  ///< one line of English, without a full stop
};

/// Reads a chip description from `device`, which is open for reading. The format:
///
///     <chip name="Dual axis">
///       <register name="M0_VMAX" address="0x22" access="rw" reset="2000" unit="units/s"
///                 min="0" max="2147483647" description="Maximum velocity of axis 0 in units/s">
///         <field identifier="M0_VMAX" name="VMAX" low="0" width="32" signed="true"/>
///       </register>
///     </chip>
///
/// `access` is r, w or rw. Numbers are decimal, or hexadecimal behind 0x. `unit`, `min` and `max`
/// (the two only together) and `signed` (true or false) may be left out, everything else is needed.
/// Nothing of a faulty file is returned: the result is empty and `error`, unless null, is set to
/// the first error. Files beyond 16 MiB, 4096 registers or 1024 characters a text are refused.
std::optional<ChipDescription> readChipDescription(QIODevice *device, ChipDescriptionError *error);

} // namespace workbench
