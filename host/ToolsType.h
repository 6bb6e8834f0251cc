#pragma once

/// The host's kinds of tools.
struct ToolsType
{
    enum Types {
        RegisterBrowser = 1,
        PositionMode = 2,
        SynchronisedDriveTool = 101,
    };
};
