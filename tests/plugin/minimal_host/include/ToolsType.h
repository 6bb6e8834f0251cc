#pragma once

struct ToolsType
{
    enum Types { SynchronisedDriveTool = 101 };
};
