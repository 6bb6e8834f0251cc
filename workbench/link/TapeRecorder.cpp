#include "TapeRecorder.h"

#include "Clock.h"

#include <QIODevice>

namespace workbench {

TapeRecorder::TapeRecorder(ModuleLink &nextLink, const Clock &tapeClock)
    : next(nextLink)
    , clock(tapeClock)
{
}

void TapeRecorder::start(QIODevice *tapeDevice, qint64 sizeLimit)
{
    device = tapeDevice;
    limit = sizeLimit;
    beginNs = clock.now();
    size = 0;
    count = 0;
    hasOverflown = false;
    writeLine(tapeHeader());
    writeLine("# asked at (s), took (s), request = reply");
}

void TapeRecorder::finish()
{
    if (!device)
        return;
    writeLine(tapeEnd(count));
    device = nullptr;
}

bool TapeRecorder::readRegister(unsigned int address, unsigned char motor, int *value)
{
    TapeEntry entry = ask(TapeEntry::Read, address, motor);
    const bool isAnswered = next.readRegister(address, motor, value);
    if (isAnswered)
        entry.value = *value;
    note(entry, isAnswered);
    return isAnswered;
}

bool TapeRecorder::writeRegister(unsigned int address, unsigned char motor, int value)
{
    TapeEntry entry = ask(TapeEntry::Write, address, motor);
    entry.value = value;
    const bool isAnswered = next.writeRegister(address, motor, value);
    note(entry, isAnswered);
    return isAnswered;
}

bool TapeRecorder::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                                unsigned char arg, unsigned char motor, unsigned int *reply)
{
    TapeEntry entry = ask(TapeEntry::UserFunction, function, motor);
    entry.arg = arg;
    entry.a = *a;
    entry.b = *b;
    const bool isAnswered = next.userFunction(a, b, function, arg, motor, reply);
    if (isAnswered) {
        entry.replyA = *a;
        entry.replyB = *b;
        entry.reply = *reply;
    }
    note(entry, isAnswered);
    return isAnswered;
}

TapeEntry TapeRecorder::ask(TapeEntry::Kind kind, unsigned int address, unsigned char motor) const
{
    TapeEntry entry;
    entry.kind = kind;
    entry.askedNs = clock.now() - beginNs;
    entry.address = address;
    entry.motor = motor;
    return entry;
}

void TapeRecorder::note(TapeEntry entry, bool isAnswered)
{
    // Also a request that was under way when the tape began belongs to no tape.
    if (!device || hasOverflown || entry.askedNs < 0)
        return;
    entry.isAnswered = isAnswered;
    entry.tookNs = clock.now() - beginNs - entry.askedNs;
    const QByteArray line = tapeLine(entry);
    // The end must still fit.
    hasOverflown = size + line.size() + maximumTapeLine > limit;
    if (hasOverflown) {
        if (onFull)
            onFull();
        return;
    }
    ++count;
    writeLine(line);
}

void TapeRecorder::writeLine(const QByteArray &line)
{
    const QByteArray whole = line + '\n';
    size += whole.size();
    device->write(whole);
}

} // namespace workbench
