#pragma once

/// Names of dynamic properties through which a plug-in gives the host hints about its window.
namespace DynamicProperty {

/// "dpWindowFlags": an unsigned value, the `Qt::WindowFlags` that the plug-in's window is to have.
extern const char *const WindowFlags;

/// "dpNoAnimate": true when the host is to show and hide the window without an animation.
extern const char *const DoNotAnimate;

} // namespace DynamicProperty
