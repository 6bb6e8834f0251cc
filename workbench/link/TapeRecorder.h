#pragma once

#include "ModuleLink.h"
#include "Tape.h"

#include <functional>

class QIODevice;

namespace workbench {

class Clock;

/// A link that passes every request on to another and writes it down on a tape with its reply and
/// times. GUI thread.
class TapeRecorder : public ModuleLink
{
public:
    /// Refers to both, owns neither.
    TapeRecorder(ModuleLink &next, const Clock &clock);

    /// The tape begins now, on `device`, which is open for writing, not owned and used until
    /// finish(). A device that fails is noticed by whoever closes it. `sizeLimit` in bytes, with
    /// the tape's end, is 1024 at least.
    void start(QIODevice *tapeDevice, qint64 sizeLimit = maximumTapeSize);

    /// Called once for each tape that becomes full, behind the request that it has no room for.
    std::function<void()> onFull;

    /// Writes the end of the tape and lets go of the device; nothing happens without one.
    void finish();

    qint64 entryCount() const { return count; }
    /// True when the tape has become as large as a tape may be and holds nothing after that.
    bool isFull() const { return hasOverflown; }

    bool readRegister(unsigned int address, unsigned char motor, int *value) override;
    bool writeRegister(unsigned int address, unsigned char motor, int value) override;
    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override;

private:
    TapeEntry ask(TapeEntry::Kind kind, unsigned int address, unsigned char motor) const;
    void note(TapeEntry entry, bool isAnswered);
    void writeLine(const QByteArray &line);

    ModuleLink &next;
    const Clock &clock;
    QIODevice *device = nullptr;
    qint64 beginNs = 0;
    qint64 limit = maximumTapeSize;
    qint64 size = 0;
    qint64 count = 0;
    bool hasOverflown = false;
};

} // namespace workbench
