#include "OutputFile.h"

#include <QDir>
#include <QFileInfo>

namespace workbench {

namespace {

QString failure(const QString &name, const QString &reason)
{
    return QStringLiteral("%1: %2").arg(name, reason.simplified());
}

} // namespace

QString openOutput(QSaveFile &file, const QString &name)
{
    const QFileInfo info(name);
    if (info.isDir())
        return failure(name, QStringLiteral("is a folder"));
    // To take over the name of a device would remove the device.
    if (info.exists() && !info.isFile())
        return failure(name, QStringLiteral("is not an ordinary file"));
    if (!info.absoluteDir().exists())
        return failure(name, QStringLiteral("its folder does not exist"));
    file.setFileName(name);
    if (!file.open(QIODevice::WriteOnly))
        return failure(name, file.errorString());
    return QString();
}

QString commitOutput(QSaveFile &file)
{
    // What is still buffered goes out first: QSaveFile does not notice when that fails during the
    // commit, and would give its name to a file that lacks its end.
    if (!file.flush()) {
        const QString reason = file.errorString();
        file.cancelWriting();
        file.commit();
        return failure(file.fileName(), reason);
    }
    return file.commit() ? QString() : failure(file.fileName(), file.errorString());
}

} // namespace workbench
