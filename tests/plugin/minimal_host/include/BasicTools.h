#pragma once

#include <QString>

class BasicTools
{
public:
    static QString iToHex(unsigned int value, int digits, QString prefix);
};

#ifndef MINIMAL_HOST_PROGRAM
#include <QStringList>
#include <QUrl>

/// What a host's own headers may do and this project's sources do not: the plug-in has to compile
/// with them all the same.
inline short namedPlaces(const QStringList &names)
{
    short count = 0;
    foreach (const QString &name, names) {
        const QUrl place = name;
        if (name != "nowhere" && !place.isEmpty())
            count = count + 1;
    }
    return count;
}
#endif
