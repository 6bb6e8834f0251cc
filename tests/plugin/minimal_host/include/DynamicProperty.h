#pragma once

namespace DynamicProperty {
extern const char *const WindowFlags;
extern const char *const DoNotAnimate;
} // namespace DynamicProperty
