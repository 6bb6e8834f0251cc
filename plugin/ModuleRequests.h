#pragma once

#include "SynchronisedDriveTool.h"

/// The requests of one operation of the tool, from its head to its end. A host may handle events
/// while it waits for the module, so behind any request the tool may be gone, or have been started,
/// stopped or hidden. Once the tool is gone nothing is asked any more: an operation reads as its
/// steps, and asks at its end what came in the middle of it.
class SynchronisedDriveTool::ModuleRequests
{
public:
    using Register = QPointer<XmlValueRegister> Tool::*;
    using Widget = QPointer<XmlRegisterWidget> Tool::*;

    explicit ModuleRequests(Tool *asking);

    bool isToolGone() const { return tool.isNull(); }
    /// True when stop was pressed since the first request.
    bool isStopped() const { return tool && tool->begun.stops != before.stops; }
    /// True when the tool is gone, or anything was begun since the first request.
    bool isOvertaken() const { return !tool || tool->begun != before; }
    /// While on, nothing is written once stop was pressed.
    void obeyStop(bool on) { obeysStop = on; }

    // A binding that is gone goes to the host as null. How a request went is not looked at: what
    // could not be read is 0, or what it was preset to.
    int read(Register reg);
    int readForMotor(unsigned char motor, Register reg, int preset);
    int read(const QString &registerName);
    void write(Register reg, int value);
    void writeField(Widget widget, double coordinate);
    void setAndUpdate(Widget widget, double coordinate);
    void setCircularMode(bool on);
    int userFunction(unsigned char *a, unsigned char *b, unsigned char function);

    /// The tool's target as it is now.
    QPointF target() const { return tool ? tool->target() : QPointF(); }

private:
    /// Null when the tool is gone or has none.
    QVXLModuleInterface *module() const { return tool ? tool->module() : nullptr; }
    bool mayWrite() const { return module() && !(obeysStop && isStopped()); }

    const QPointer<Tool> tool;
    const Begun before;
    bool obeysStop = false;
};
