#pragma once

namespace workbench {

/// The exit codes of the program.
namespace exitCode {
constexpr int success = 0;
constexpr int failure = 1; ///< an unattended run did not go as it should
constexpr int usage = 2;   ///< the command line or a file named on it is wrong
} // namespace exitCode

} // namespace workbench
