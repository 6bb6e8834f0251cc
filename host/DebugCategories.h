#pragma once

#include <QLoggingCategory>

/// The category for low-level debug lines. Off unless the user switches it on, so callers test
/// `isDebugEnabled()` before they put a line together. GUI thread.
const QLoggingCategory &debLowLevel();
