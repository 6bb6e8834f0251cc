#pragma once

#include <QSet>
#include <QVariant>

#include <optional>

/// The addresses in an exported register list. Entries that are no unsigned 32-bit number are left
/// out; nothing when the value is no list at all.
std::optional<QSet<unsigned int>> registerAddresses(const QVariant &value);
