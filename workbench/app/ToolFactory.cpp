#include "ToolFactory.h"

#include "HostModule.h"
#include "HostRegistry.h"
#include "ToolDetails.h"
#include "ToolsInterface.h"

namespace workbench {

QVector<unsigned char> motorsFor(ToolsType::Types type)
{
    // A position-mode tool drives one axis; everything else serves the chip as a whole.
    if (type == ToolsType::PositionMode)
        return {0, 1};
    return {0};
}

QString toolKey(const QString &moduleKey, const ToolsInterface *tool, unsigned char motor)
{
    return moduleKey + ToolDetails::of(tool).className + QLatin1Char('/') + QString::number(motor);
}

QVector<ToolsInterface *> makeTools(const QVector<ToolsInterface *> &prototypes, HostModule *module)
{
    QVector<ToolsInterface *> tools;
    for (ToolsInterface *const prototype : prototypes) {
        const ToolDetails details = ToolDetails::of(prototype);
        for (const unsigned char motor : motorsFor(details.type)) {
            ToolsInterface *const tool = prototype->clone(details.className, motor, module);
            if (!tool)
                continue;
            HostRegistry::add(tool, toolKey(module->key(), tool, motor));
            tools.append(tool);
        }
    }
    return tools;
}

} // namespace workbench
