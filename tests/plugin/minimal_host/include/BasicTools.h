#pragma once

#include <QString>

class BasicTools
{
public:
    static QString iToHex(unsigned int value, int digits, QString prefix);
};
