#pragma once

#include "Tape.h"

#include <QString>

#include <optional>

class QIODevice;

namespace workbench {

/// Why a tape was refused. For "FILE:LINE: reason".
struct TapeError
{
    qint64 line = 0; ///< from 1
    QString reason;  ///< one line of English, without a full stop
};

/// Reads a tape from `device`, which is open for reading. The format, in plain ASCII:
///
///     module-tape 1
///     # a remark
///     0.001000000 0.000500000 read 0x22 m0 = 2000
///     0.001500000 0.000500000 write 0x22 m0 0 = ok
///     0.002000000 0.000500000 read 0x99 m0 = failed
///     0.002500000 0.000500000 user 0xFD m0 0x00 0x00 0x48 = 0x01 0x02 0x03FFFFFE
///     end 4
///
/// After the version each line is a request with its reply: the seconds at which it was asked,
/// the seconds that the reply took, the request and, behind "=", the reply. A read names the
/// register's address and the motor and gets a number; a write ends in the value written and gets
/// ok; a user function names function, motor, argument and two bytes, and gets two bytes and a
/// 32-bit value. Any of them may have failed. The lines are in the order of the replies; the last
/// one counts them, so that a tape that was cut off is noticed. Empty lines and those that begin
/// with # are passed over.
///
/// Nothing of a faulty tape is returned: the result is empty and `error`, unless null, is set to
/// the first error. Tapes beyond maximumTapeSize are refused.
std::optional<Tape> readTape(QIODevice *device, TapeError *error);

} // namespace workbench
