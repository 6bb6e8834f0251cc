#pragma once

#include <optional>

class ToolsInterface;
class XmlProductIC;
class XmlValueRegister;

/// Requests of a tool to its module. GUI thread; each blocks until the module has answered or the
/// link has given up.
namespace tools {

/// The chip that serves the tool; null without a module or a chip.
XmlProductIC *chipOf(ToolsInterface *tool);

/// Reads a register as one of a repeated series of requests, which stays out of the request log.
/// Nothing when there is no answer, no register or no module.
std::optional<int> readRepeatedly(ToolsInterface *tool, XmlValueRegister *reg);

/// False when there is no answer, no register or no module. Listeners of the write may have deleted
/// anything when it returns, the tool included.
bool write(ToolsInterface *tool, XmlValueRegister *reg, int value);

/// Whether what was written for `motor` went to the tool's own chip.
bool isOwnChip(ToolsInterface *tool, unsigned char motor);

unsigned char motorOf(ToolsInterface *tool);

} // namespace tools
