#include "ToolRequests.h"

#include "CommandHandlerInterface.h"
#include "QVXLModuleInterface.h"
#include "ToolsInterface.h"

namespace tools {

unsigned char motorOf(ToolsInterface *tool)
{
    return static_cast<unsigned char>(tool->motorNumber() & 0xFF);
}

XmlProductIC *chipOf(ToolsInterface *tool)
{
    return tool->module() ? tool->module()->getIcProduct(motorOf(tool)) : nullptr;
}

std::optional<int> readRepeatedly(ToolsInterface *tool, XmlValueRegister *reg)
{
    QVXLModuleInterface *const module = tool->module();
    if (!module || !reg)
        return std::nullopt;
    CommandHandlerInterface *const handler = tool->commandHandler();
    if (handler)
        handler->setCircularMode(true);
    int value = 0;
    const bool isAnswered = module->readChannelRegister(reg, motorOf(tool), &value);
    if (handler)
        handler->setCircularMode(false);
    return isAnswered ? std::optional<int>(value) : std::nullopt;
}

bool write(ToolsInterface *tool, XmlValueRegister *reg, int value)
{
    QVXLModuleInterface *const module = tool->module();
    return module && module->writeChannelRegister(reg, motorOf(tool), value);
}

bool isOwnChip(ToolsInterface *tool, unsigned char motor)
{
    XmlProductIC *const chip = chipOf(tool);
    return chip && tool->module()->getIcProduct(motor) == chip;
}

} // namespace tools
