#include "AppSettings.h"

AppSettings::AppSettings()
    : QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Workbench"),
                QStringLiteral("Workbench"))
{
}
