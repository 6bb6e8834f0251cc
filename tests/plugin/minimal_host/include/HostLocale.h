#pragma once

#include <QLocale>

extern const QLocale curLocale;
