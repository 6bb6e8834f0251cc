#pragma once

#include <QSettings>

/// The host's settings store. Each object reads and writes the same store, so make one where it is
/// needed and let it go; a change is on disk at the latest when the object goes.
class AppSettings : public QSettings
{
public:
    AppSettings();
};
