#pragma once

#include "Positions.h"
#include "SynchronisedDriveTool.h"

#include "CommandHandlerInterface.h"
#include "QVXLModuleInterface.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegister.h"

/// The requests of one operation of the tool, from its head to its end. A host may handle events
/// while it waits for the module, so behind any request the tool may be gone, or have been started,
/// stopped or hidden. Once the tool is gone nothing is asked any more: an operation reads as its
/// steps, and asks at its end what came in the middle of it.
///
/// A register or row that is gone goes to the host as null. How a request went is not looked at.
class SynchronisedDriveTool::ModuleRequests
{
public:
    using Register = QPointer<XmlValueRegister> Tool::*;
    using Row = QPointer<XmlRegisterWidget> Tool::*;

    ModuleRequests(Tool *asking, unsigned char forMotor)
        : tool(asking)
        , before(asking->begun)
        , motor(forMotor)
    {
    }

    bool isToolGone() const { return !tool; }
    /// Stop was pressed since the operation's head.
    bool wasStopPressed() const { return tool && tool->begun.stops != before.stops; }
    /// The tool is gone, or was started, stopped, hidden, picked at or ticked since the head.
    bool isOvertaken() const { return !tool || tool->begun != before; }
    /// While on, nothing is written once stop was pressed.
    void obeyStop(bool on) { obeysStop = on; }

    /// `preset` when the register could not be read.
    int read(Register reg, int preset = 0)
    {
        if (QVXLModuleInterface *asked = module())
            asked->readChannelRegister((tool->*reg).data(), motor, &preset);
        return preset;
    }
    int read(const QString &name) { return tool ? tool->getRegisterValue(name) : 0; }
    void write(Register reg, int value)
    {
        if (QVXLModuleInterface *asked = writable())
            asked->writeChannelRegister((tool->*reg).data(), motor, value);
    }
    void writeField(Row row, double position)
    {
        XmlRegisterWidget *widget = tool ? (tool->*row).data() : nullptr;
        if (QVXLModuleInterface *asked = writable())
            asked->writeAndReadChannelField(widget ? widget->registerField() : nullptr, motor,
                                            drive::truncated(position), nullptr);
    }
    /// A negative position goes to the row as 64-bit two's complement.
    void setAndUpdate(Row row, double position)
    {
        if (tool && tool->*row)
            (tool->*row)->setAndUpdateValue(quint64(drive::truncated64(position)));
    }
    void setCircularMode(bool on)
    {
        if (CommandHandlerInterface *handler = tool ? tool->commandHandler() : nullptr)
            handler->setCircularMode(on);
    }
    int userFunction(unsigned char *a, unsigned char *b, unsigned char function)
    {
        return tool ? tool->userFunction(a, b, function, 0) : 0;
    }

    /// The tool's target as it is now.
    QPointF target() const { return tool ? tool->target() : QPointF(); }

private:
    QVXLModuleInterface *module() const { return tool ? tool->module() : nullptr; }
    QVXLModuleInterface *writable() const
    {
        return obeysStop && wasStopPressed() ? nullptr : module();
    }

    const QPointer<Tool> tool;
    const Begun before;
    const unsigned char motor;
    bool obeysStop = false;
};
