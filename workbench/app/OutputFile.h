#pragma once

#include <QSaveFile>
#include <QString>

namespace workbench {

/// Opens `file` for writing under `name`. The name changes hands only with commit(): until then,
/// and when anything fails, what was there before stays. Returns the reason when it cannot be
/// written, "NAME: reason", and otherwise an empty text. An existing name that is no ordinary file
/// (a folder, a device) is refused.
QString openOutput(QSaveFile &file, const QString &name);

/// Gives the file its name. Returns like openOutput().
QString commitOutput(QSaveFile &file);

} // namespace workbench
