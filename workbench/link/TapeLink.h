#pragma once

#include "AxisAddresses.h"
#include "ModuleLink.h"
#include "SimulatedLink.h"
#include "Tape.h"

#include <QHash>
#include <QPoint>
#include <QString>

#include <functional>
#include <optional>

namespace workbench {

class Clock;

/// Answers requests from a tape, each after the time that it took then.
///
/// Writes have to come in the order of the tape, with the same values; each takes the tape to the
/// moment at which it was recorded, unless it comes while the axes still move before that. Between
/// two of them the tape runs with the clock, up to the next write and no further. One that does not
/// come as on the tape fails and is a deviation.
/// What is measured is answered as of the tape's time, however often it is asked: positions as
/// last recorded, velocities as last recorded since the last write, failing before that. All
/// other requests are answered in their order between two writes; when that is used up, or was not
/// recorded there, as last recorded. What is nowhere on the tape fails.
///
/// A panel stops the axes by driving them to where it shows them, which lies a little behind what
/// it was told last. A tape that waits for such targets says until then that the axes are there:
/// else a panel that has asked at other moments could not repeat them. GUI thread.
class TapeLink : public ModuleLink
{
public:
    /// The tape begins now. `clock` is not owned. `registers` tells what is measured.
    TapeLink(const Tape &tape, Clock &clock, const AxisAddresses &registers);

    /// Called for each deviation with one line of English.
    std::function<void(const QString &)> onDeviation;

    /// The first deviation; empty while there is none.
    QString deviation() const { return firstDeviation; }

    /// True when all writes of the tape have been repeated and its last reply is due.
    bool isAtEnd() const;

    /// True when nothing is left to be played: all writes have been repeated and the axes are at
    /// rest from now on.
    bool isPlayed() const { return !hasFurtherWrite() && areAtRest(); }

    /// How long the tape has been waiting for its next write, or has been at its end; 0 and below
    /// while it runs.
    qint64 waitingNs() const;

    /// The write that has to come next, "write 0x12 m0 300"; empty behind the last.
    QString awaitedWrite() const;
    /// Where the next two writes drive the axes; nothing when they are no pair of targets.
    std::optional<QPoint> awaitedTarget() const;
    int writeCount() const { return writes; }
    int repeatedWriteCount() const { return repeatedWrites; }

    /// The longest that a request on the tape took.
    qint64 longestRequestNs() const { return longestNs; }

    // What the tape says now, found without a request: nothing of it takes part in the replay.

    /// Position units; nothing when the tape has none at all.
    std::optional<QPoint> position() const;
    /// The tape has neither another position nor a velocity but 0 from now until its next write, or
    /// its end.
    bool areAtRest() const;
    /// What was last read from or written to a register; nothing when neither was answered by now.
    /// A velocity counts since the last write.
    std::optional<int> value(unsigned int address) const;
    /// The target of an axis as a signed number; as value().
    std::optional<int> target(int axis) const;

    /// Requests since the tape began, failed ones included.
    const SimulatedLink::RequestCounts &counts() const { return requests; }

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
    bool isOrderedWrite(int place) const;
    bool hasFurtherWrite() const { return nextWrite < entries.size(); }
    qint64 tapeNow() const;
    void index();
    void awaitWrite(int from);
    int findWrite(int from) const;
    int findStop() const;
    bool isAtStop() const { return stopPlace >= 0 && waitingNs() >= 0; }
    int findMeasured(const Track &track, int after) const;
    int findPosition() const;
    int findNext(Track &track) const;
    std::optional<int> targetWritten(int place, int axis) const;
    bool isMovingBehind(int place) const;
    const TapeEntry *answer(const TapeEntry &request);
    bool play(const TapeEntry *entry);
    void deviate(const TapeEntry &request);

    QVector<TapeEntry> entries;
    Clock &clock;
    AxisAddresses known;
    QHash<quint64, Track> tracks;
    Track positions;    ///< all answered requests for both
    int lastWrite = -1; ///< repeated last
    int nextWrite = 0;  ///< to be repeated next, or the number of entries
    int stopPlace = -1; ///< the position that the next two writes drive to, if they are a stop's
    int writes = 0;
    int repeatedWrites = 0;
    qint64 longestNs = 0;
    SimulatedLink::RequestCounts requests;
    qint64 anchorTapeNs = 0;
    qint64 anchorClockNs = 0;
    QString firstDeviation;
};

} // namespace workbench
