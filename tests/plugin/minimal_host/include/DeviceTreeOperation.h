#pragma once

enum eDeviceTreeOperation { deviceTreeNothing = 0, deviceTreeOpen = 1, deviceTreeClose = 2 };
