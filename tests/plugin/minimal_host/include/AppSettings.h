#pragma once

#include <QSettings>

class AppSettings : public QSettings
{
public:
    AppSettings();

    int untouched = 0;
};
