#include "Tape.h"

#include <tuple>

namespace workbench {

namespace {

constexpr qint64 nsPerSecond = 1000000000;
constexpr int secondsDecimals = 9;
constexpr int byteDigits = 2;
constexpr int valueDigits = 8;

auto asTuple(const TapeEntry &entry)
{
    return std::tie(entry.kind, entry.askedNs, entry.tookNs, entry.address, entry.motor,
                    entry.isAnswered, entry.value, entry.arg, entry.a, entry.b, entry.replyA,
                    entry.replyB, entry.reply);
}

QByteArray hex(unsigned int number, int digits)
{
    return "0x" + QByteArray::number(number, 16).toUpper().rightJustified(digits, '0');
}

QByteArray seconds(qint64 ns)
{
    return QByteArray::number(ns / nsPerSecond) + '.' +
           QByteArray::number(ns % nsPerSecond).rightJustified(secondsDecimals, '0');
}

QByteArray replyText(const TapeEntry &entry)
{
    if (!entry.isAnswered)
        return "failed";
    switch (entry.kind) {
    case TapeEntry::Read:
        return QByteArray::number(entry.value);
    case TapeEntry::Write:
        return "ok";
    default:
        return hex(entry.replyA, byteDigits) + ' ' + hex(entry.replyB, byteDigits) + ' ' +
               hex(entry.reply, valueDigits);
    }
}

} // namespace

bool TapeEntry::operator==(const TapeEntry &other) const
{
    return asTuple(*this) == asTuple(other);
}

QByteArray tapeHeader()
{
    return "module-tape 1";
}

QByteArray tapeRequest(const TapeEntry &entry)
{
    const QByteArray at = hex(entry.address, byteDigits);
    const QByteArray motor = " m" + QByteArray::number(entry.motor);
    switch (entry.kind) {
    case TapeEntry::Read:
        return "read " + at + motor;
    case TapeEntry::Write:
        return "write " + at + motor + ' ' + QByteArray::number(entry.value);
    default:
        return "user " + at + motor + ' ' + hex(entry.arg, byteDigits) + ' ' +
               hex(entry.a, byteDigits) + ' ' + hex(entry.b, byteDigits);
    }
}

QByteArray tapeLine(const TapeEntry &entry)
{
    return seconds(entry.askedNs) + ' ' + seconds(entry.tookNs) + ' ' + tapeRequest(entry) + " = " +
           replyText(entry);
}

QByteArray tapeEnd(qint64 entryCount)
{
    return "end " + QByteArray::number(entryCount);
}

} // namespace workbench
