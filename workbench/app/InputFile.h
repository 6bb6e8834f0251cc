#pragma once

#include <QFile>
#include <QString>

namespace workbench {

/// Opens `file` for reading under `name`. Returns the reason when it cannot be read, "NAME:
/// reason", and otherwise an empty text. An existing name that is no ordinary file is refused: to
/// open a device or a pipe could block.
QString openInput(QFile &file, const QString &name);

} // namespace workbench
