#pragma once

#include "ModuleLink.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>

/// A link that answers from public fields and writes down every call in order. Registers keep what
/// is written to them, for all motors alike; there is no behaviour behind them and no time. The
/// motor is written down only. User function 0xFD answers with the two positions, 24 bits each,
/// axis 0 first, spread over the two bytes and the reply.
struct RecordingLink : ModuleLink
{
    QStringList calls;
    QHash<unsigned int, int> values;
    int position0 = 0;
    int position1 = 0;
    bool failReads = false;
    bool failWrites = false;
    bool failUserFunctions = false;
    /// The last user function's request: both bytes, function, argument, motor.
    QByteArray userRequest;
    /// Runs in each request once that is written down, before it is answered.
    std::function<void()> onRequest;

    bool readRegister(unsigned int address, unsigned char motor, int *value) override
    {
        calls << QStringLiteral("read 0x%1 m%2").arg(hex(address)).arg(motor);
        notify();
        if (failReads)
            return false;
        *value = values.value(address);
        return true;
    }

    bool writeRegister(unsigned int address, unsigned char motor, int value) override
    {
        calls << QStringLiteral("write 0x%1 m%2 %3").arg(hex(address)).arg(motor).arg(value);
        notify();
        if (failWrites)
            return false;
        values.insert(address, value);
        return true;
    }

    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override
    {
        calls << QStringLiteral("user 0x%1").arg(hex(function));
        userRequest = QByteArray();
        for (unsigned char byte : {*a, *b, function, arg, motor})
            userRequest.append(static_cast<char>(byte));
        notify();
        if (failUserFunctions || function != 0xFD)
            return false;
        const auto x = static_cast<unsigned int>(position0) & 0xFFFFFFu;
        const auto y = static_cast<unsigned int>(position1) & 0xFFFFFFu;
        *a = static_cast<unsigned char>(x >> 16);
        *b = static_cast<unsigned char>(x >> 8);
        *reply = (x << 24) | y;
        return true;
    }

    /// The calls since the last time, which are then forgotten.
    QStringList takeCalls()
    {
        const QStringList taken = calls;
        calls.clear();
        return taken;
    }

private:
    void notify() const
    {
        if (onRequest)
            onRequest();
    }

    static QString hex(unsigned int number)
    {
        return QStringLiteral("%1").arg(number, 2, 16, QLatin1Char('0')).toUpper();
    }
};
