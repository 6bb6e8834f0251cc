#include "DebugCategories.h"

const QLoggingCategory &debLowLevel()
{
    static const QLoggingCategory category("workbench.lowlevel", QtWarningMsg);
    return category;
}
