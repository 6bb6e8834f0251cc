#pragma once

#include "ToolsType.h"

#include <QString>

class ToolsInterface;

/// What a tool passed to its base's constructor about itself.
struct ToolDetails
{
    QString className;
    ToolsType::Types type = ToolsType::RegisterBrowser;
    QString iconPath;

    /// Null gives a default-constructed record.
    static ToolDetails of(const ToolsInterface *tool);
};
