#pragma once

#include <QLoggingCategory>

const QLoggingCategory &debLowLevel();
