#include "Targets.h"

#include "TapeReader.h"

#include <QBuffer>

namespace fuzz {
namespace {

using workbench::Tape;
using workbench::TapeEntry;

std::optional<Tape> read(const QByteArray &bytes, workbench::TapeError *error)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return workbench::readTape(&buffer, error);
}

QByteArray written(const Tape &tape)
{
    QByteArray bytes = workbench::tapeHeader() + '\n';
    for (const TapeEntry &entry : tape.entries)
        bytes += workbench::tapeLine(entry) + '\n';
    return bytes + workbench::tapeEnd(tape.entries.size()) + '\n';
}

QString checkEntries(const Tape &tape)
{
    qint64 latestNs = 0;
    for (const TapeEntry &entry : tape.entries) {
        if (entry.askedNs < 0 || entry.tookNs < 0 || entry.repliedNs() < latestNs)
            return QStringLiteral("times that go backward");
        latestNs = entry.repliedNs();
        if (entry.address > (entry.kind == TapeEntry::UserFunction ? 0xFFu : 0xFFFFu))
            return QStringLiteral("an address out of range");
        if (workbench::tapeLine(entry).size() >= workbench::maximumTapeLine)
            return QStringLiteral("a line that would be too long to read");
    }
    return QString();
}

QString checkReadsTheSame(const Tape &tape)
{
    workbench::TapeError error;
    const std::optional<Tape> again = read(written(tape), &error);
    if (!again)
        return QStringLiteral("written anew it is refused: ") + error.reason;
    return again->entries == tape.entries ? QString()
                                          : QStringLiteral("written anew it reads differently");
}

} // namespace

QString checkTape(const QByteArray &bytes)
{
    workbench::TapeError error;
    const std::optional<Tape> tape = read(bytes, &error);
    if (!tape)
        return checkRefusal(bytes, error.line, error.reason);
    if (!bytes.contains("end "))
        return QStringLiteral("a tape without an end");
    const QString problem = checkEntries(*tape);
    return problem.isEmpty() ? checkReadsTheSame(*tape) : problem;
}

} // namespace fuzz
