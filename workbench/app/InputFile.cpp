#include "InputFile.h"

#include <QFileInfo>

namespace workbench {

QString openInput(QFile &file, const QString &name)
{
    const QFileInfo info(name);
    if (info.exists() && !info.isFile())
        return QStringLiteral("%1: is not an ordinary file").arg(name);
    file.setFileName(name);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1: %2").arg(name, file.errorString());
    return QString();
}

} // namespace workbench
