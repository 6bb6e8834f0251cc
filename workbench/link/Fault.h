#pragma once

#include <QString>
#include <QVector>

#include <optional>

namespace workbench {

/// What can go wrong between the host and its module; faultTable() says what each one does.
enum class FaultKind {
    NoReply,
    Late,
    Slow,
    Lose,
    Stale,
    Corrupt,
    FailEvery,
    FailReads,
    FailWrites,
    FailUser,
    IgnoreWrites,
    HalfWrite,
    DuplicateWrite,
    FrozenPositions,
    StuckAxis,
    Jump,
    Noise,
    ZeroVelocity,
    Reset,
    Unplug,
    DeleteRegisters,
    DeleteWidgets,
    Spin,
};

/// The number that may follow the name of a fault behind a colon; both ends are included.
struct FaultParameter
{
    QString name; ///< as in "late:MS"
    double minimum = 0;
    double maximum = 0;
    double preset = 0;   ///< what holds when the number is left out
    bool isWhole = true; ///< false: decimals behind a point are accepted
    QString meaning;     ///< half a line, with the unit
};

struct FaultInfo
{
    FaultKind kind = FaultKind::NoReply;
    QString name;
    QString description; ///< one line without a full stop
    std::optional<FaultParameter> parameter;

    /// The name with that of the parameter, "late[:MS]".
    QString usage() const;
};

/// All faults, each kind once, in the order in which they are offered.
const QVector<FaultInfo> &faultTable();

const FaultInfo &faultInfo(FaultKind kind);

/// A fault to be switched on. The parameter is within its range; 0 for a fault without one.
struct Fault
{
    FaultKind kind = FaultKind::NoReply;
    double parameter = 0;

    bool operator==(const Fault &other) const;
};

/// That kind with the preset parameter.
Fault presetFault(FaultKind kind);

/// As parseFault() reads it: "late:20".
QString faultText(const Fault &fault);

/// The result of parseFault(): a fault, or one line of English that says why there is none.
struct ParsedFault
{
    std::optional<Fault> fault;
    QString error;
};

/// Reads NAME[:PARAMETER], numbers as in the C locale. An error about an unknown name lists those
/// that are known.
ParsedFault parseFault(const QString &text);

/// A line or two for each fault: usage, description, and the parameter with its range and preset.
QString faultHelp();

} // namespace workbench
