#pragma once

#include "ToolsType.h"

#include <QString>
#include <QVector>

class HostModule;
class ToolsInterface;

namespace workbench {

/// The motors of a module that get a tool of this kind of their own.
QVector<unsigned char> motorsFor(ToolsType::Types type);

/// The key of a tool: that of its module, the tool's class name, "/" and the motor.
QString toolKey(const QString &moduleKey, const ToolsInterface *tool, unsigned char motor);

/// Clones the prototypes' working tools for a module and registers each under its key. The caller
/// owns the tools, which have no parent and are not shown. A prototype that makes none is left out.
QVector<ToolsInterface *> makeTools(const QVector<ToolsInterface *> &prototypes,
                                    HostModule *module);

} // namespace workbench
