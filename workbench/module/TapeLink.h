#pragma once

#include "AxisRegisters.h"
#include "ModuleLink.h"
#include "Tape.h"

#include <QHash>
#include <QString>

#include <functional>

namespace bench {

class Clock;

/// Answers requests from a tape, each after the time that it took then.
///
/// Writes have to come in the order of the tape, with the same values; each takes the tape to the
/// moment at which it was recorded, and between two of them the tape runs with the clock, up to the
/// next write and no further. One that does not come as on the tape fails and is a deviation.
/// What is measured is answered as of the tape's time, however often it is asked: positions as
/// last recorded, velocities as last recorded since the last write, failing before that. All
/// other requests are answered in their order between two writes; when that is used up, or was not
/// recorded there, as last recorded. What is nowhere on the tape fails. GUI thread.
class TapeLink : public ModuleLink
{
public:
    /// The tape begins now. `clock` is not owned. `registers` tells what is measured.
    TapeLink(const Tape &tape, Clock &clock, const AxisRegisters &registers);

    /// Called for each deviation with one line of English.
    std::function<void(const QString &)> onDeviation;

    /// The first deviation; empty while there is none.
    QString deviation() const { return firstDeviation; }

    /// True when all writes of the tape have been repeated and its last reply is due.
    bool isAtEnd() const;

    bool readRegister(unsigned int address, unsigned char motor, int *value) override;
    bool writeRegister(unsigned int address, unsigned char motor, int value) override;
    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override;

private:
    /// Requests that are answered alike: their places on the tape and the one answered last.
    struct Track
    {
        QVector<int> places;
        int answered = -1;
    };

    static quint64 trackOf(const TapeEntry &request);
    bool isPosition(const TapeEntry &request) const;
    bool isVelocity(const TapeEntry &request) const;
    qint64 tapeNow() const;
    int findWrite(int from) const;
    int findMeasured(const Track &track, int after) const;
    int findNext(Track &track) const;
    const TapeEntry *answer(const TapeEntry &request);
    bool play(const TapeEntry *entry);
    void deviate(const TapeEntry &request);

    QVector<TapeEntry> entries;
    Clock &clock;
    AxisRegisters known;
    QHash<quint64, Track> tracks;
    int lastWrite = -1; ///< repeated last
    int nextWrite = 0;  ///< to be repeated next, or the number of entries
    qint64 anchorTapeNs = 0;
    qint64 anchorClockNs = 0;
    QString firstDeviation;
};

} // namespace bench
