#include "BasicTools.h"

QString BasicTools::iToHex(unsigned int value, int digits, QString prefix)
{
    return prefix + QString::number(value, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
}
