#pragma once

#include <QString>

/// Drops the warning that Qt's headless platform writes whenever a window's size limits change; all
/// other messages pass. To be called from initTestCase() of a test that shows windows.
inline void silenceHeadlessPlatform()
{
    static QtMessageHandler next = nullptr;
    if (next)
        return;
    next = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext &context, const QString &message) {
            const QLatin1String known("This plugin does not support propagateSizeHints()");
            if (type != QtWarningMsg || message != known)
                next(type, context, message);
        });
}
