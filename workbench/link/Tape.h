#pragma once

#include <QByteArray>
#include <QVector>
#include <QtGlobal>

namespace workbench {

/// A request to a module and what came of it.
struct TapeEntry
{
    enum Kind { Read, Write, UserFunction };

    Kind kind = Read;
    qint64 askedNs = 0;       ///< since the tape began
    qint64 tookNs = 0;        ///< until the reply
    unsigned int address = 0; ///< of the register; the function of a UserFunction
    unsigned char motor = 0;
    bool isAnswered = false; ///< false: the request failed, and no reply follows
    int value = 0;           ///< Write: what was written; Read: the reply
    unsigned char arg = 0;   ///< from here on UserFunction alone
    unsigned char a = 0;     ///< as asked
    unsigned char b = 0;
    unsigned char replyA = 0;
    unsigned char replyB = 0;
    unsigned int reply = 0;

    qint64 repliedNs() const { return askedNs + tookNs; }

    bool operator==(const TapeEntry &other) const;
};

/// What went over a link, in the order of the replies. A plain value.
struct Tape
{
    QVector<TapeEntry> entries;
};

/// Larger files are neither written nor read, nor are longer lines.
constexpr qint64 maximumTapeSize = qint64(64) * 1024 * 1024;
constexpr int maximumTapeLine = 256;

/// The lines of a tape file as readTape() explains them, without their ends.
QByteArray tapeHeader();
QByteArray tapeLine(const TapeEntry &entry);
QByteArray tapeEnd(qint64 entryCount);

/// The request part of a line, "write 0x22 m0 500".
QByteArray tapeRequest(const TapeEntry &entry);

} // namespace workbench
