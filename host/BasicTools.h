#pragma once

#include <QString>

/// Formatting helpers shared by all plug-ins.
class BasicTools
{
public:
    /// `value` as hexadecimal text behind `prefix`, padded with zeros to at least `digits` digits.
    static QString iToHex(unsigned int value, int digits, QString prefix);
};
