#pragma once

namespace workbench {

/// The program from its start to its exit code.
int runApplication(int argc, char *argv[]);

} // namespace workbench
