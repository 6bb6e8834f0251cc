#include "TapeReader.h"

#include "TapeWords.h"

#include <QIODevice>

namespace workbench {

namespace {

void takeRequest(TapeWords &words, TapeEntry *entry)
{
    constexpr unsigned int maximumAddress = 0xFFFF;
    const QByteArray kind = words.take("a request");
    if (kind == "user") {
        entry->kind = TapeEntry::UserFunction;
        entry->address = words.byte("a function such as 0xFD");
    } else {
        entry->kind = kind == "write" ? TapeEntry::Write : TapeEntry::Read;
        if (kind != "write" && kind != "read")
            words.refuse(kind, "read, write or user");
        entry->address = words.hex(maximumAddress, "an address such as 0x22");
    }
    entry->motor = words.motor();
    if (entry->kind == TapeEntry::Write)
        entry->value = words.number("the value written");
    if (entry->kind == TapeEntry::UserFunction) {
        entry->arg = words.byte("an argument such as 0x00");
        entry->a = words.byte("a byte such as 0x00");
        entry->b = words.byte("a byte such as 0x00");
    }
}

void takeReply(TapeWords &words, TapeEntry *entry)
{
    words.expect("=");
    entry->isAnswered = !words.takeIf("failed");
    if (!entry->isAnswered)
        return;
    switch (entry->kind) {
    case TapeEntry::Read:
        entry->value = words.number("the value read");
        break;
    case TapeEntry::Write:
        words.expect("ok");
        break;
    case TapeEntry::UserFunction:
        entry->replyA = words.byte("a byte such as 0x00");
        entry->replyB = words.byte("a byte such as 0x00");
        entry->reply = words.hex(~0u, "a value such as 0x00000000");
        break;
    }
}

QString parseEntry(const QByteArray &line, TapeEntry *entry)
{
    TapeWords words(line);
    entry->askedNs = words.nanoseconds("the time in seconds with nine decimals");
    entry->tookNs = words.nanoseconds("the time that the reply took, with nine decimals,");
    takeRequest(words, entry);
    takeReply(words, entry);
    words.expectEnd();
    return words.error();
}

// Reads one tape; after a failed step, which returned false, `error` says why.
class Reader
{
public:
    explicit Reader(QIODevice *source)
        : device(source)
    {
    }

    bool read(Tape *tape);
    const TapeError &error() const { return firstError; }

private:
    bool nextLine(QByteArray *line);
    bool readHeader();
    bool readEntry(const QByteArray &line, Tape *tape);
    bool readEnd(const QByteArray &line, const Tape &tape);
    bool fail(const QString &reason);

    QIODevice *device;
    TapeError firstError;
    qint64 size = 0;
    bool isLineComplete = true; ///< The line read last had an end, so another may follow.
};

bool Reader::fail(const QString &reason)
{
    firstError.reason = reason;
    return false;
}

/// The next line with anything in it; one that is empty means the end of the file.
bool Reader::nextLine(QByteArray *line)
{
    do {
        firstError.line += isLineComplete ? 1 : 0;
        *line = device->readLine(maximumTapeLine);
        isLineComplete = line->endsWith('\n');
        if (line->isEmpty())
            return true;
        size += line->size();
        if (size > maximumTapeSize)
            return fail(QStringLiteral("the tape is larger than %1 MiB")
                            .arg(maximumTapeSize / (1024 * 1024)));
        if (!line->endsWith('\n') && line->size() >= maximumTapeLine - 1)
            return fail(QStringLiteral("the line is too long"));
        *line = line->trimmed();
    } while (line->isEmpty() || line->startsWith('#'));
    return true;
}

bool Reader::readHeader()
{
    QByteArray line;
    if (!nextLine(&line))
        return false;
    if (line == tapeHeader())
        return true;
    return fail(line.startsWith("module-tape ")
                    ? QStringLiteral("the version \"%1\" is not known").arg(TapeWords::shown(line))
                    : QStringLiteral("not a tape: it does not begin with \"%1\"")
                          .arg(QString::fromLatin1(tapeHeader())));
}

bool Reader::readEntry(const QByteArray &line, Tape *tape)
{
    TapeEntry entry;
    const QString reason = parseEntry(line, &entry);
    if (!reason.isEmpty())
        return fail(reason);
    if (!tape->entries.isEmpty() && entry.repliedNs() < tape->entries.constLast().repliedNs())
        return fail(QStringLiteral("the reply comes before that of the line before"));
    tape->entries.append(entry);
    return true;
}

bool Reader::readEnd(const QByteArray &line, const Tape &tape)
{
    if (line != tapeEnd(tape.entries.size()))
        return fail(QStringLiteral("\"%1\" behind %2 requests")
                        .arg(TapeWords::shown(line))
                        .arg(tape.entries.size()));
    QByteArray more;
    if (!nextLine(&more))
        return false;
    return more.isEmpty() || fail(QStringLiteral("the tape goes on behind its end"));
}

bool Reader::read(Tape *tape)
{
    if (!readHeader())
        return false;
    for (;;) {
        QByteArray line;
        if (!nextLine(&line))
            return false;
        if (line.isEmpty())
            return fail(QStringLiteral("the tape has no end, it was cut off"));
        if (line.startsWith("end "))
            return readEnd(line, *tape);
        if (!readEntry(line, tape))
            return false;
    }
}

} // namespace

std::optional<Tape> readTape(QIODevice *device, TapeError *error)
{
    Tape tape;
    Reader reader(device);
    if (reader.read(&tape))
        return tape;
    if (error)
        *error = reader.error();
    return std::nullopt;
}

} // namespace workbench
