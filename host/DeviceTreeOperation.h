#pragma once

/// What a plug-in can ask the host's device tree to do.
enum eDeviceTreeOperation {
    /// Open (show) the plug-in with the given key. Tools rely on the value, not on the name.
    eDeviceTreeOpenPlugin = 1,
};
