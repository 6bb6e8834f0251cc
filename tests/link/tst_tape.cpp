#include "Clock.h"
#include "RecordingLink.h"
#include "TapeReader.h"
#include "TapeRecorder.h"

#include <QBuffer>
#include <QtTest>

using namespace workbench;

namespace {

constexpr qint64 msInNs = 1000000;

std::optional<Tape> readText(QByteArray text, TapeError *error = nullptr)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readTape(&buffer, error);
}

QByteArray whole(const QByteArray &lines)
{
    return "module-tape 1\n" + lines;
}

} // namespace

Q_DECLARE_METATYPE(TapeEntry)

class TapeTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void linesAreReadable_data();
    void linesAreReadable();
    void linesAreReadBack_data() { linesAreReadable_data(); }
    void linesAreReadBack();
    void remarksAndEmptyLinesArePassedOver();
    void anEmptyTapeIsATape();
    void nestedRequestsAreInTheOrderOfTheirReplies();
    void faultyTapesAreRefused_data();
    void faultyTapesAreRefused();
    void cutOffTapesAreRefused();
    void changedBytesNeverGetPastTheReaderUnbounded();
    void tooLargeTapesAreRefused();

    void recorderPassesRequestsOn();
    void recorderWritesRequestsWithTheirTimes();
    void recorderWritesNothingBeforeItStartsAndAfterItsEnd();
    void recorderLeavesResultsOfFailedRequestsAlone();
    void recorderNotesWhatIsAskedMeanwhile();
    void recorderStopsWhereNoTapeMayGoOn();
    void recorderStartsAnotherTape();

private:
    std::unique_ptr<SteppedClock> clock;
    std::unique_ptr<RecordingLink> device;
    std::unique_ptr<TapeRecorder> recorder;
    std::unique_ptr<QBuffer> buffer;
};

void TapeTest::init()
{
    clock = std::make_unique<SteppedClock>();
    device = std::make_unique<RecordingLink>();
    device->onRequest = [this] { clock->advance(msInNs); };
    recorder = std::make_unique<TapeRecorder>(*device, *clock);
    buffer = std::make_unique<QBuffer>();
    QVERIFY(buffer->open(QIODevice::WriteOnly));
}

void TapeTest::linesAreReadable_data()
{
    QTest::addColumn<TapeEntry>("entry");
    QTest::addColumn<QByteArray>("line");
    TapeEntry entry;
    entry.askedNs = 12345678901;
    entry.tookNs = 500000;
    entry.address = 0x5;
    entry.motor = 1;
    entry.isAnswered = true;
    entry.value = -2147483647 - 1;
    QTest::newRow("read") << entry
                          << QByteArray("12.345678901 0.000500000 read 0x05 m1 = -2147483648");
    entry.kind = TapeEntry::Write;
    entry.address = 0xFFFF;
    entry.motor = 255;
    entry.value = 768;
    entry.askedNs = 0;
    QTest::newRow("write") << entry
                           << QByteArray("0.000000000 0.000500000 write 0xFFFF m255 768 = ok");
    entry.isAnswered = false;
    QTest::newRow("failed write") << entry
                                  << QByteArray(
                                         "0.000000000 0.000500000 write 0xFFFF m255 768 = failed");
    entry.kind = TapeEntry::UserFunction;
    entry.address = 0xFD;
    entry.value = 0;
    entry.motor = 0;
    entry.arg = 3;
    entry.a = 0xFF;
    entry.b = 0x48;
    QTest::newRow("failed user function")
        << entry << QByteArray("0.000000000 0.000500000 user 0xFD m0 0x03 0xFF 0x48 = failed");
    entry.isAnswered = true;
    entry.replyA = 1;
    entry.replyB = 0xFE;
    entry.reply = 0xFFFFFFFF;
    entry.tookNs = 0;
    QTest::newRow("user function")
        << entry
        << QByteArray("0.000000000 0.000000000 user 0xFD m0 0x03 0xFF 0x48 = 0x01 0xFE 0xFFFFFFFF");
    entry = TapeEntry();
    entry.askedNs = 999999999999999999;
    entry.tookNs = 1;
    QTest::newRow("latest failed read")
        << entry << QByteArray("999999999.999999999 0.000000001 read 0x00 m0 = failed");
}

void TapeTest::linesAreReadable()
{
    QFETCH(TapeEntry, entry);
    QTEST(tapeLine(entry), "line");
}

void TapeTest::linesAreReadBack()
{
    QFETCH(TapeEntry, entry);
    QFETCH(QByteArray, line);
    TapeError error;
    const auto tape = readText(whole(line + "\nend 1\n"), &error);
    QVERIFY2(tape.has_value(), qPrintable(error.reason));
    QCOMPARE(tape->entries.size(), 1);
    QVERIFY(tape->entries.constFirst() == entry);
}

void TapeTest::remarksAndEmptyLinesArePassedOver()
{
    const auto tape = readText("# first\r\n\nmodule-tape 1\r\n# a remark\n\n"
                               "0.000000000 0.000500000 read 0x05 m1 = 7\r\n   \nend 1\n# bye\n\n");
    QVERIFY(tape.has_value());
    QCOMPARE(tape->entries.size(), 1);
    QCOMPARE(tape->entries.constFirst().value, 7);
}

void TapeTest::anEmptyTapeIsATape()
{
    const auto tape = readText(whole("end 0"));
    QVERIFY(tape.has_value());
    QVERIFY(tape->entries.isEmpty());
}

void TapeTest::nestedRequestsAreInTheOrderOfTheirReplies()
{
    QVERIFY(readText(whole("0.002000000 0.001000000 read 0x05 m0 = 1\n"
                           "0.001000000 0.002000000 read 0x05 m0 = 1\nend 2\n"))
                .has_value());
}

void TapeTest::faultyTapesAreRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const QByteArray &text, int line, const char *reason) {
        QTest::newRow(name) << text << line << QString::fromLatin1(reason);
    };
    const QByteArray good = "0.000000000 0.000500000 read 0x05 m1 = 7\n";
    const auto second = [&row, &good](const char *name, const QByteArray &text,
                                      const char *reason) {
        row(name, whole(good + text + "\nend 2\n"), 3, reason);
    };
    row("empty file", "", 1, R"(not a tape: it does not begin with "module-tape 1")");
    row("other file", "time (s),axis 0\n1,2\n", 1,
        R"(not a tape: it does not begin with "module-tape 1")");
    row("later version", "module-tape 2\n", 1, R"(the version "module-tape 2" is not known)");
    row("binary file", QByteArray("\x7f\x45\0\x02", 4), 1,
        R"(not a tape: it does not begin with "module-tape 1")");
    row("no end", whole(good), 3, "the tape has no end, it was cut off");
    row("wrong count", whole(good + "end 2\n"), 3, R"("end 2" behind 1 requests)");
    row("behind the end", whole(good + "end 1\n\n" + good), 5, "the tape goes on behind its end");
    second("a word", "hello", R"("hello" where the time in seconds with nine decimals should be)");
    second("short time", "0.1 0.000500000 read 0x05 m1 = 7",
           R"("0.1" where the time in seconds with nine decimals should be)");
    second("long time", "1234567890.000000000 0.000500000 read 0x05 m1 = 7",
           R"("1234567890.000000000" where the time in seconds with nine decimals should be)");
    second("negative time", "-1.000000000 0.000500000 read 0x05 m1 = 7",
           R"("-1.000000000" where the time in seconds with nine decimals should be)");
    second("no duration", "1.000000000 read 0x05 m1 = 7",
           R"("read" where the time that the reply took, with nine decimals, should be)");
    second("only times", "1.000000000 0.000500000", "the line ends where a request should be");
    second("unknown request", "1.000000000 0.000500000 poke 0x05 m1 = 7",
           R"("poke" where read, write or user should be)");
    second("address beyond 16 bits", "1.000000000 0.000500000 read 0x10000 m1 = 7",
           R"("0x10000" where an address such as 0x22 should be)");
    second("decimal address", "1.000000000 0.000500000 read 22 m1 = 7",
           R"("22" where an address such as 0x22 should be)");
    second("signed address", "1.000000000 0.000500000 read 0x+22 m1 = 7",
           R"("0x+22" where an address such as 0x22 should be)");
    second("address with two prefixes", "1.000000000 0.000500000 read 0x0x22 m1 = 7",
           R"("0x0x22" where an address such as 0x22 should be)");
    second("signed motor", "1.000000000 0.000500000 read 0x05 m+0 = 7",
           R"("m+0" where a motor such as m0 should be)");
    second("value with a plus", "1.000000000 0.000500000 read 0x05 m1 = +7",
           R"("+7" where the value read should be)");
    second("value with two signs", "1.000000000 0.000500000 read 0x05 m1 = --7",
           R"("--7" where the value read should be)");
    second("a sign alone", "1.000000000 0.000500000 read 0x05 m1 = -",
           R"("-" where the value read should be)");
    second("motor beyond a byte", "1.000000000 0.000500000 read 0x05 m256 = 7",
           R"("m256" where a motor such as m0 should be)");
    second("no motor", "1.000000000 0.000500000 read 0x05 = 7",
           R"("=" where a motor such as m0 should be)");
    second("value beyond 32 bits", "1.000000000 0.000500000 write 0x05 m0 2147483648 = ok",
           R"("2147483648" where the value written should be)");
    second("write without ok", "1.000000000 0.000500000 write 0x05 m0 1 = 1",
           R"("1" where ok should be)");
    second("no reply", "1.000000000 0.000500000 read 0x05 m0", "the line ends where = should be");
    second("empty reply", "1.000000000 0.000500000 read 0x05 m0 =",
           "the line ends where the value read should be");
    second("more than a reply", "1.000000000 0.000500000 read 0x05 m0 = 7 8",
           R"("8" where the end of the line should be)");
    second("two spaces", "1.000000000 0.000500000  read 0x05 m0 = 7",
           R"("" where read, write or user should be)");
    second("argument beyond a byte",
           "1.000000000 0.000500000 user 0xFD m0 0x100 0x00 0x00 = failed",
           R"("0x100" where an argument such as 0x00 should be)");
    second("reply beyond 32 bits",
           "1.000000000 0.000500000 user 0xFD m0 0x00 0x00 0x00 = 0x00 0x00 0x100000000",
           R"("0x100000000" where a value such as 0x00000000 should be)");
    second("time goes back", "0.000000000 0.000499999 read 0x05 m0 = 7",
           "the reply comes before that of the line before");
    second("control characters", "1.000000000 0.000500000 \x01\x1b[2J",
           R"("??[2J" where read, write or user should be)");
    second("long line", QByteArray(100000, 'x'), "the line is too long");
}

void TapeTest::faultyTapesAreRefused()
{
    QFETCH(QByteArray, text);
    TapeError error;
    QVERIFY(!readText(text, &error));
    QTEST(error.reason, "reason");
    QTEST(int(error.line), "line");
    QVERIFY(!readText(text));
}

void TapeTest::cutOffTapesAreRefused()
{
    const QByteArray text = whole("0.000000000 0.000500000 read 0x05 m1 = 7\n"
                                  "0.001000000 0.000500000 write 0x05 m1 7 = ok\nend 2");
    QVERIFY(readText(text).has_value());
    for (int size = 0; size < text.size(); ++size)
        QVERIFY2(!readText(text.left(size)), qPrintable(QString::number(size)));
}

void TapeTest::changedBytesNeverGetPastTheReaderUnbounded()
{
    const QByteArray text = whole("0.000000000 0.000500000 read 0x05 m1 = 7\n"
                                  "0.001000000 0.000500000 user 0xFD m0 0x00 0x00 0x48 = 0x01 "
                                  "0x02 0x03040506\nend 2\n");
    for (int place = 0; place < text.size(); ++place) {
        for (const char byte : QByteArray("\0\n #0x-\x7F\xFF", 9)) {
            QByteArray changed = text;
            changed[place] = byte;
            TapeError error;
            const auto tape = readText(changed, &error);
            if (tape)
                QVERIFY(tape->entries.size() <= 2);
            else
                QVERIFY(!error.reason.isEmpty() && !error.reason.contains(QLatin1Char('\n')) &&
                        error.reason.size() < 150 && error.line >= 1 && error.line <= 6);
        }
    }
}

void TapeTest::tooLargeTapesAreRefused()
{
    // Remarks without end, as nothing else would keep a reader busy for so long.
    struct Endless : QIODevice
    {
        qint64 readData(char *data, qint64 size) override
        {
            for (qint64 i = 0; i < size; ++i)
                data[i] = (position + i) % 64 == 63 ? '\n' : '#';
            position += size;
            return size;
        }
        qint64 writeData(const char *, qint64) override { return -1; }
        bool isSequential() const override { return true; }
        qint64 position = 0;
    } endless;
    QVERIFY(endless.open(QIODevice::ReadOnly));
    TapeError error;
    QVERIFY(!readTape(&endless, &error));
    QCOMPARE(error.reason, QStringLiteral("the tape is larger than 64 MiB"));
}

void TapeTest::recorderPassesRequestsOn()
{
    recorder->start(buffer.get());
    device->values.insert(0x13, 500);
    int value = 0;
    QVERIFY(recorder->readRegister(0x13, 1, &value));
    QCOMPARE(value, 500);
    QVERIFY(recorder->writeRegister(0x14, 2, 9));
    unsigned char a = 1;
    unsigned char b = 2;
    unsigned int reply = 0;
    device->position1 = 77;
    QVERIFY(recorder->userFunction(&a, &b, 0xFD, 3, 4, &reply));
    QCOMPARE(reply, 77u);
    QCOMPARE(device->userRequest, QByteArray("\x01\x02\xFD\x03\x04"));
    QCOMPARE(device->takeCalls(),
             (QStringList{QStringLiteral("read 0x13 m1"), QStringLiteral("write 0x14 m2 9"),
                          QStringLiteral("user 0xFD")}));
}

void TapeTest::recorderWritesRequestsWithTheirTimes()
{
    clock->advance(123 * msInNs);
    recorder->start(buffer.get());
    device->values.insert(0x13, -5);
    int value = 0;
    recorder->readRegister(0x13, 1, &value);
    clock->advance(1500 * msInNs);
    recorder->writeRegister(0x14, 2, 9);
    device->failReads = true;
    recorder->readRegister(0x13, 1, &value);
    device->position0 = 0x010203;
    device->position1 = -2;
    unsigned char a = 0;
    unsigned char b = 0x48;
    unsigned int reply = 0;
    recorder->userFunction(&a, &b, 0xFD, 0, 0, &reply);
    QCOMPARE(recorder->entryCount(), qint64(4));
    recorder->finish();
    QCOMPARE(buffer->data(),
             QByteArray("module-tape 1\n# asked at (s), took (s), request = reply\n"
                        "0.000000000 0.001000000 read 0x13 m1 = -5\n"
                        "1.501000000 0.001000000 write 0x14 m2 9 = ok\n"
                        "1.502000000 0.001000000 read 0x13 m1 = failed\n"
                        "1.503000000 0.001000000 user 0xFD m0 0x00 0x00 0x48 = 0x01 0x02 "
                        "0x03FFFFFE\nend 4\n"));
    QVERIFY(readText(buffer->data()).has_value());
}

void TapeTest::recorderWritesNothingBeforeItStartsAndAfterItsEnd()
{
    QVERIFY(recorder->writeRegister(1, 0, 1));
    recorder->finish();
    recorder->start(buffer.get());
    recorder->finish();
    QVERIFY(recorder->writeRegister(1, 0, 1));
    recorder->finish();
    QVERIFY(buffer->data().endsWith("reply\nend 0\n"));
    QCOMPARE(device->calls.size(), 2);
}

void TapeTest::recorderLeavesResultsOfFailedRequestsAlone()
{
    recorder->start(buffer.get());
    device->failReads = device->failWrites = device->failUserFunctions = true;
    int value = 42;
    unsigned char a = 1;
    unsigned char b = 2;
    unsigned int reply = 3;
    QVERIFY(!recorder->readRegister(1, 0, &value));
    QVERIFY(!recorder->writeRegister(1, 0, 5));
    QVERIFY(!recorder->userFunction(&a, &b, 0xFD, 0, 0, &reply));
    QCOMPARE(value, 42);
    QCOMPARE(int(a), 1);
    QCOMPARE(int(b), 2);
    QCOMPARE(reply, 3u);
}

void TapeTest::recorderNotesWhatIsAskedMeanwhile()
{
    recorder->start(buffer.get());
    bool isNested = false;
    device->onRequest = [this, &isNested] {
        clock->advance(msInNs);
        if (!isNested) {
            isNested = true;
            recorder->writeRegister(1, 0, 1);
        }
    };
    recorder->writeRegister(2, 0, 2);
    recorder->finish();
    const auto tape = readText(buffer->data());
    QVERIFY(tape.has_value());
    QCOMPARE(tape->entries.size(), 2);
    QCOMPARE(tape->entries.at(0).address, 1u);
    QCOMPARE(tape->entries.at(0).askedNs, msInNs);
    QCOMPARE(tape->entries.at(1).askedNs, qint64(0));
}

void TapeTest::recorderStopsWhereNoTapeMayGoOn()
{
    struct Counter : QIODevice
    {
        qint64 readData(char *, qint64) override { return -1; }
        qint64 writeData(const char *data, qint64 size) override
        {
            total += size;
            last = QByteArray(data, int(size));
            return size;
        }
        qint64 total = 0;
        QByteArray last;
    } counter;
    QVERIFY(counter.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    recorder->start(&counter);
    device->onRequest = nullptr;
    unsigned char a = 0;
    unsigned char b = 0;
    unsigned int reply = 0;
    while (!recorder->isFull()) {
        QVERIFY(recorder->userFunction(&a, &b, 0xFD, 0, 0, &reply));
        QVERIFY(counter.total < maximumTapeSize);
        device->calls.clear();
    }
    const qint64 count = recorder->entryCount();
    QVERIFY(recorder->writeRegister(1, 0, 1));
    recorder->finish();
    QCOMPARE(counter.last, "end " + QByteArray::number(count) + '\n');
    QVERIFY(counter.total > maximumTapeSize - 2 * maximumTapeLine);
    QVERIFY(counter.total <= maximumTapeSize);
}

void TapeTest::recorderStartsAnotherTape()
{
    recorder->start(buffer.get());
    recorder->writeRegister(1, 0, 1);
    recorder->finish();
    QBuffer other;
    QVERIFY(other.open(QIODevice::WriteOnly));
    recorder->start(&other);
    recorder->writeRegister(2, 0, 2);
    recorder->finish();
    const auto tape = readText(other.data());
    QVERIFY(tape.has_value());
    QCOMPARE(tape->entries.size(), 1);
    QCOMPARE(tape->entries.constFirst().askedNs, qint64(0));
}

QTEST_GUILESS_MAIN(TapeTest)
#include "tst_tape.moc"
