#pragma once

#include "Clock.h"
#include "FaultyLink.h"
#include "PositionPacking.h"
#include "RecordingLink.h"

#include <QStringList>

/// A faulty link in front of a recording one, whose requests take a millisecond each on a stepped
/// clock. Positions are at 0x10 and 0x20, velocities and targets behind them; 0x13 is a setting.
struct FaultLinkRig
{
    static constexpr qint64 msInNs = 1000000;
    static constexpr unsigned int position0 = 0x10;
    static constexpr unsigned int velocity0 = 0x11;
    static constexpr unsigned int target0 = 0x12;
    static constexpr unsigned int setting = 0x13;

    explicit FaultLinkRig(quint32 seed = workbench::FaultyLink::defaultSeed)
        : link(device, clock, {{0x10, 0x20}, {0x11, 0x21}, {0x12, 0x22}}, seed)
    {
        device.onRequest = [this] { clock.advance(msInNs); };
        device.values = {{setting, 500}, {position0, 10}, {velocity0, 30}, {0x20, -20}};
        device.position0 = 10;
        device.position1 = -20;
    }

    /// Switches a fault on as the user writes it; false when that cannot be read.
    bool on(const char *text)
    {
        const auto parsed = workbench::parseFault(QLatin1String(text));
        if (parsed.fault)
            link.switchOn(*parsed.fault);
        return parsed.fault.has_value();
    }

    QString read(unsigned int address)
    {
        int value = leftAlone;
        if (link.readRegister(address, 0, &value))
            return QString::number(value);
        return value == leftAlone ? QStringLiteral("failed")
                                  : QStringLiteral("failed, but changed");
    }

    QString write(unsigned int address, int value)
    {
        return link.writeRegister(address, 0, value) ? QStringLiteral("ok")
                                                     : QStringLiteral("failed");
    }

    QString positions()
    {
        workbench::LinkReply reply{leftByte, leftByte, leftAlone};
        if (link.userFunction(&reply.a, &reply.b, workbench::bothPositionsFunction, 0, 0,
                              &reply.value))
            return QStringLiteral("%1,%2")
                .arg(unpackPosition(reply, 0))
                .arg(unpackPosition(reply, 1));
        const bool isUnchanged =
            reply.a == leftByte && reply.b == leftByte && reply.value == leftAlone;
        return isUnchanged ? QStringLiteral("failed") : QStringLiteral("failed, but changed");
    }

    /// What a read, a write and a request for the positions give, and how many milliseconds they
    /// take: "500 ok 10,-20 3ms".
    QString results()
    {
        const qint64 start = clock.now();
        const QStringList replies{read(setting), write(setting, 7), positions()};
        const qint64 ms = (clock.now() - start) / msInNs;
        return replies.join(QLatin1Char(' ')) + QStringLiteral(" %1ms").arg(ms);
    }

    static constexpr int leftAlone = 123456;
    static constexpr unsigned char leftByte = 0x48;

    workbench::SteppedClock clock;
    RecordingLink device;
    workbench::FaultyLink link;
};
