#pragma once

#include <QString>

class QWidget;

namespace workbench {

/// Saves what `panel` looks like at twice its size on screen. The name's suffix decides about the
/// format. Returns an empty text, or one line that says what failed; an existing file then stays.
QString savePicture(QWidget *panel, const QString &fileName);

} // namespace workbench
