#include "Fault.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>

namespace workbench {

namespace {

constexpr int textLimit = 60;

FaultParameter whole(const char *name, double minimum, double maximum, double preset,
                     const char *meaning)
{
    return {QLatin1String(name), minimum, maximum, preset, true, QLatin1String(meaning)};
}

FaultParameter fraction(const char *name, double preset, const char *meaning)
{
    return {QLatin1String(name), 0, 1, preset, false, QLatin1String(meaning)};
}

FaultInfo entry(FaultKind kind, const char *name, const char *description,
                const std::optional<FaultParameter> &parameter = std::nullopt)
{
    return {kind, QLatin1String(name), QLatin1String(description), parameter};
}

QString number(double value)
{
    return QString::number(value, 'g', 10);
}

QVector<FaultInfo> replyFaults()
{
    return {
        entry(FaultKind::NoReply, "no-reply", "requests are carried out and never answered"),
        entry(FaultKind::Late, "late", "each reply comes late",
              whole("MS", 0, 10000, 50, "delay in milliseconds")),
        entry(FaultKind::Slow, "slow", "each request takes a multiple of its time",
              whole("FACTOR", 1, 1000, 10, "multiple of the usual time")),
        entry(FaultKind::Lose, "lose", "requests are carried out but some replies get lost",
              fraction("P", 0.1, "probability of each loss")),
        entry(FaultKind::Stale, "stale", "each reply is that of the request before"),
        entry(FaultKind::Corrupt, "corrupt", "one bit is wrong in some replies",
              fraction("P", 0.1, "probability for each reply")),
    };
}

QVector<FaultInfo> requestFaults()
{
    return {
        entry(FaultKind::FailEvery, "fail-every", "one request in N is not carried out and fails",
              whole("N", 1, 1000000, 5, "requests from one failure to the next")),
        entry(FaultKind::FailReads, "fail-reads", "all register reads fail"),
        entry(FaultKind::FailWrites, "fail-writes",
              "all register writes fail and are not carried out"),
        entry(FaultKind::FailUser, "fail-user", "all user functions fail"),
        entry(FaultKind::IgnoreWrites, "ignore-writes",
              "register writes are answered with success but not carried out"),
        entry(FaultKind::HalfWrite, "half-write",
              "register writes are carried out but answered with failure"),
        entry(FaultKind::DuplicateWrite, "duplicate-write",
              "each register write is carried out twice"),
    };
}

QVector<FaultInfo> motionFaults()
{
    return {
        entry(FaultKind::FrozenPositions, "frozen-positions",
              "both positions are reported where they were when first asked for"),
        entry(FaultKind::StuckAxis, "stuck-axis",
              "one axis is reported standing where it was when first asked for",
              whole("AXIS", 0, 1, 0, "the axis")),
        entry(FaultKind::Jump, "jump",
              "positions are reported off for 100 ms, twice a second and from the start",
              whole("UNITS", -1000000, 1000000, 1000, "offset in position units")),
        entry(FaultKind::Noise, "noise", "positions are reported with a random error",
              whole("UNITS", 0, 1000000, 3, "greatest error in position units")),
        entry(FaultKind::ZeroVelocity, "zero-velocity",
              "velocities read as zero for a while in each move",
              whole("MS", 1, 600000, 200, "milliseconds from the first velocity that is not zero")),
        entry(FaultKind::Reset, "reset", "the chip falls back to its reset values once in a move",
              whole("MS", 0, 600000, 200, "milliseconds after the next write of a target")),
    };
}

QVector<FaultInfo> hostFaults()
{
    return {
        entry(FaultKind::Unplug, "unplug",
              "the module is unplugged until this is switched off: every request fails"),
        entry(FaultKind::DeleteRegisters, "delete-registers",
              "the host deletes its register objects, for good",
              whole("N", 0, 1000000, 0, "the request in which that happens; 0: at once")),
        entry(FaultKind::DeleteWidgets, "delete-widgets",
              "the host deletes the register widgets of its tools, for good",
              whole("N", 0, 1000000, 0, "the request in which that happens; 0: at once")),
        entry(FaultKind::Spin, "spin", "the event loop goes on while a request waits"),
    };
}

/// Why `text` does not give a number for the parameter, or an empty text.
QString readNumber(const FaultInfo &info, const QString &text, double *value)
{
    const FaultParameter &wanted = *info.parameter;
    bool isNumber = false;
    if (wanted.isWhole)
        *value = QLocale::c().toInt(text, &isNumber);
    else
        *value = QLocale::c().toDouble(text, &isNumber);
    // Not the other way round, so that what is no number at all is refused as well.
    if (isNumber && *value >= wanted.minimum && *value <= wanted.maximum)
        return QString();
    return QStringLiteral("%1 of \"%2\" must be a %3 from %4 to %5, not \"%6\"")
        .arg(wanted.name, info.name,
             wanted.isWhole ? QStringLiteral("whole number") : QStringLiteral("number"),
             number(wanted.minimum), number(wanted.maximum), text.left(textLimit).simplified());
}

QString unknownName(const QString &name)
{
    QStringList names;
    for (const FaultInfo &info : faultTable())
        names.append(info.name);
    return QStringLiteral("there is no fault \"%1\"; known are %2")
        .arg(name.left(textLimit).simplified(), names.join(QStringLiteral(", ")));
}

} // namespace

QString FaultInfo::usage() const
{
    return parameter ? QStringLiteral("%1[:%2]").arg(name, parameter->name) : name;
}

const QVector<FaultInfo> &faultTable()
{
    static const QVector<FaultInfo> table =
        replyFaults() + requestFaults() + motionFaults() + hostFaults();
    return table;
}

const FaultInfo &faultInfo(FaultKind kind)
{
    const auto isIt = [kind](const FaultInfo &info) { return info.kind == kind; };
    const auto found = std::find_if(faultTable().cbegin(), faultTable().cend(), isIt);
    Q_ASSERT(found != faultTable().cend());
    return *found;
}

bool Fault::operator==(const Fault &other) const
{
    return kind == other.kind && !(parameter < other.parameter) && !(other.parameter < parameter);
}

Fault presetFault(FaultKind kind)
{
    const auto &parameter = faultInfo(kind).parameter;
    return {kind, parameter ? parameter->preset : 0};
}

QString faultText(const Fault &fault)
{
    const FaultInfo &info = faultInfo(fault.kind);
    return info.parameter ? info.name + QLatin1Char(':') + number(fault.parameter) : info.name;
}

ParsedFault parseFault(const QString &text)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    const QString name = text.left(colon);
    const auto isIt = [&name](const FaultInfo &info) { return info.name == name; };
    const auto info = std::find_if(faultTable().cbegin(), faultTable().cend(), isIt);
    if (info == faultTable().cend())
        return {std::nullopt, unknownName(name)};
    Fault fault = presetFault(info->kind);
    if (colon < 0)
        return {fault, QString()};
    if (!info->parameter)
        return {std::nullopt, QStringLiteral("\"%1\" has no parameter").arg(name)};
    const QString error = readNumber(*info, text.mid(colon + 1), &fault.parameter);
    if (!error.isEmpty())
        return {std::nullopt, error};
    return {fault, QString()};
}

QString faultHelp()
{
    QString help;
    for (const FaultInfo &info : faultTable()) {
        help += QStringLiteral("  %1  %2").arg(info.usage(), -26).arg(info.description);
        if (info.parameter) {
            help += QStringLiteral("\n  %1  %2, %3 to %4; %5 when left out")
                        .arg(QString(), -26)
                        .arg(info.parameter->meaning, number(info.parameter->minimum),
                             number(info.parameter->maximum), number(info.parameter->preset));
        }
        help += QLatin1Char('\n');
    }
    return help;
}

} // namespace workbench
