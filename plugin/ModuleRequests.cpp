#include "ModuleRequests.h"

#include "Positions.h"

#include "CommandHandlerInterface.h"
#include "QVXLModuleInterface.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegister.h"

SynchronisedDriveTool::ModuleRequests::ModuleRequests(SynchronisedDriveTool *asking)
    : tool(asking)
    , before(asking->begun)
{
}

int SynchronisedDriveTool::ModuleRequests::read(Register reg)
{
    return tool ? readForMotor(tool->motorByte(), reg, 0) : 0;
}

int SynchronisedDriveTool::ModuleRequests::readForMotor(unsigned char motor, Register reg,
                                                        int preset)
{
    int value = preset;
    if (module())
        module()->readChannelRegister((tool->*reg).data(), motor, &value);
    return value;
}

int SynchronisedDriveTool::ModuleRequests::read(const QString &registerName)
{
    return tool ? tool->getRegisterValue(registerName) : 0;
}

void SynchronisedDriveTool::ModuleRequests::write(Register reg, int value)
{
    if (mayWrite())
        module()->writeChannelRegister((tool->*reg).data(), tool->motorByte(), value);
}

void SynchronisedDriveTool::ModuleRequests::writeField(Widget widget, double coordinate)
{
    if (!mayWrite())
        return;
    XmlRegisterWidget *row = tool->*widget;
    module()->writeAndReadChannelField(row ? row->registerField() : nullptr, tool->motorByte(),
                                       drive::truncated(coordinate), nullptr);
}

/// A negative coordinate goes to the row as 64-bit two's complement.
void SynchronisedDriveTool::ModuleRequests::setAndUpdate(Widget widget, double coordinate)
{
    if (tool && tool->*widget)
        (tool->*widget)
            ->setAndUpdateValue(static_cast<unsigned long long>(drive::truncated64(coordinate)));
}

void SynchronisedDriveTool::ModuleRequests::setCircularMode(bool on)
{
    CommandHandlerInterface *handler = tool ? tool->commandHandler() : nullptr;
    if (handler)
        handler->setCircularMode(on);
}

int SynchronisedDriveTool::ModuleRequests::userFunction(unsigned char *a, unsigned char *b,
                                                        unsigned char function)
{
    return tool ? tool->userFunction(a, b, function, 0) : 0;
}
