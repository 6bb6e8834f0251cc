#pragma once

#include <QLocale>

/// The locale that the host's plug-ins format numbers with: made from "fr_Fr", French as written
/// in France. Constructed when the host's library is loaded.
extern const QLocale curLocale;
