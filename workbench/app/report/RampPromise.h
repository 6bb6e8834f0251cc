#pragma once

#include <QPoint>

#include <optional>

namespace workbench {

class AxesState;

/// How many seconds both axes take together from standstill to standstill, as their ramp settings
/// are now; nothing when those do not take them there.
std::optional<double> promisedSeconds(const AxesState &axes, const QPoint &from, const QPoint &to);

} // namespace workbench
