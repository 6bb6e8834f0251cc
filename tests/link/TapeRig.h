#pragma once

#include "Clock.h"
#include "PositionPacking.h"
#include "TapeLink.h"

#include <QStringList>

inline constexpr qint64 msInNs = 1000000;
inline constexpr unsigned int position0 = 0x10;
inline constexpr unsigned int velocity0 = 0x11;
inline constexpr unsigned int setting = 0x13;
inline constexpr unsigned int target0 = 0x12;
inline constexpr unsigned int target1 = 0x22;

inline const workbench::AxisAddresses registers{
    {position0, 0x20}, {velocity0, 0x21}, {target0, target1}};

/// A tape that is put together line by line; each request takes a millisecond.
struct TapeMaker
{
    workbench::Tape tape;

    TapeMaker &add(workbench::TapeEntry entry, int askedMs)
    {
        entry.askedNs = askedMs * msInNs;
        entry.tookNs = msInNs;
        entry.isAnswered = true;
        tape.entries.append(entry);
        return *this;
    }

    TapeMaker &read(int askedMs, unsigned int address, int value)
    {
        workbench::TapeEntry entry;
        entry.address = address;
        entry.value = value;
        return add(entry, askedMs);
    }

    TapeMaker &write(int askedMs, unsigned int address, int value)
    {
        workbench::TapeEntry entry;
        entry.kind = workbench::TapeEntry::Write;
        entry.address = address;
        entry.value = value;
        return add(entry, askedMs);
    }

    TapeMaker &positions(int askedMs, int x, int y)
    {
        workbench::TapeEntry entry;
        entry.kind = workbench::TapeEntry::UserFunction;
        entry.address = workbench::bothPositionsFunction;
        entry.b = 0x48;
        const workbench::LinkReply reply = workbench::packPositions(x, y);
        entry.replyA = reply.a;
        entry.replyB = reply.b;
        entry.reply = reply.value;
        return add(entry, askedMs);
    }

    TapeMaker &failed()
    {
        tape.entries.last().isAnswered = false;
        return *this;
    }
};

/// A tape link on a stepped clock that writes down its deviations.
struct Player
{
    explicit Player(const TapeMaker &maker)
        : link(maker.tape, clock, registers)
    {
        link.onDeviation = [this](const QString &text) { deviations << text; };
    }

    void waitUntil(int ms) { clock.advance(ms * msInNs - clock.now()); }

    QString read(unsigned int address)
    {
        int value = 4711;
        if (link.readRegister(address, 0, &value))
            return QString::number(value);
        return value == 4711 ? QStringLiteral("failed") : QStringLiteral("failed, but changed");
    }

    QString positions()
    {
        workbench::LinkReply reply{1, 2, 3};
        if (link.userFunction(&reply.a, &reply.b, workbench::bothPositionsFunction, 0, 0,
                              &reply.value))
            return QStringLiteral("%1,%2")
                .arg(workbench::unpackPosition(reply, 0))
                .arg(workbench::unpackPosition(reply, 1));
        return reply.a == 1 && reply.b == 2 && reply.value == 3
                   ? QStringLiteral("failed")
                   : QStringLiteral("failed, but changed");
    }

    bool write(unsigned int address, int value) { return link.writeRegister(address, 0, value); }

    workbench::SteppedClock clock;
    workbench::TapeLink link;
    QStringList deviations;
};
