#include "ProgramRig.h"
#include "TapeFile.h"
#include "TapeRecorder.h"

#include "Clock.h"
#include "RecordingLink.h"

#include <csignal>
#include <sys/resource.h>

using namespace workbench;

namespace {

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What the program writes to the standard error output by itself or in the test's name.
QStringList errorLines(QProcess &process)
{
    return ProgramRig::lines(process.readAllStandardError())
        .filter(QRegularExpression(QStringLiteral("^(workbench: |[^ ]+\\.tape:\\d+: )")));
}

/// Whether the program, started and no longer a copy of this one, has a handler for the signal.
bool catches(const QProcess &process, int number)
{
    const QByteArray status = contents(QStringLiteral("/proc/%1/status").arg(process.processId()));
    const QByteArray mask = status.mid(status.indexOf("SigCgt:") + 7).trimmed().left(16);
    return status.startsWith("Name:\tworkbench\n") &&
           (mask.toULongLong(nullptr, 16) >> (number - 1) & 1) != 0;
}

} // namespace

class AppTapesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void tapeIsInTheFileOnceFinished();
    void abandonedTapeLeavesAnExistingFileAlone();
    void tapeOnAFullDiskIsRefused();
    void fullTapeIsWarnedOfOnceAndKept();
    void withoutANameNothingIsRecorded();

    void runIsRecorded();
    void runThatFailsIsRecordedToo();
    void interruptedRunIsRecordedToo();
    void interruptedWindowIsRecordedToo();
    void tapeThatCannotBeWrittenIsRefused_data();
    void tapeThatCannotBeWrittenIsRefused();
    void tapeThatCannotBeReadIsRefused_data();
    void tapeThatCannotBeReadIsRefused();
    void failingStepsAreNamed_data();
    void failingStepsAreNamed();

private:
    static QStringList unattended(const QStringList &more)
    {
        return QStringList{QStringLiteral("--unattended"), QStringLiteral("--clock"),
                           QStringLiteral("simulated"), QStringLiteral("--target"),
                           QStringLiteral("300,200")} +
               more;
    }

    std::unique_ptr<ProgramRig> rig;
    SteppedClock clock;
    RecordingLink device;
};

void AppTapesTest::init()
{
    rig = std::make_unique<ProgramRig>();
    QVERIFY(rig->isValid());
}

void AppTapesTest::tapeIsInTheFileOnceFinished()
{
    const QString name = rig->filePath(QStringLiteral("a.tape"));
    TapeRecorder recorder(device, clock);
    TapeFile file(recorder);
    QCOMPARE(file.begin(name), QString());
    recorder.writeRegister(1, 0, 2);
    QVERIFY(!QFile::exists(name));
    QCOMPARE(file.finish(), QString());
    QVERIFY(contents(name).endsWith("write 0x01 m0 2 = ok\nend 1\n"));
    recorder.writeRegister(1, 0, 2);
    const auto tape = readTapeFile(name);
    QVERIFY(tape.has_value());
    QCOMPARE(tape->entries.size(), 1);
}

void AppTapesTest::abandonedTapeLeavesAnExistingFileAlone()
{
    rig->write(QStringLiteral("a.tape"), "precious");
    TapeRecorder recorder(device, clock);
    {
        TapeFile file(recorder);
        QCOMPARE(file.begin(rig->filePath(QStringLiteral("a.tape"))), QString());
        recorder.writeRegister(1, 0, 2);
    }
    recorder.writeRegister(1, 0, 2);
    QCOMPARE(contents(rig->filePath(QStringLiteral("a.tape"))), QByteArray("precious"));
    QCOMPARE(rig->files(), QStringList{QStringLiteral("a.tape")});
}

void AppTapesTest::tapeOnAFullDiskIsRefused()
{
    rig->write(QStringLiteral("a.tape"), "precious");
    TapeRecorder recorder(device, clock);
    TapeFile file(recorder);
    QCOMPARE(file.begin(rig->filePath(QStringLiteral("a.tape"))), QString());
    recorder.writeRegister(1, 0, 2);
    // Like a full disk: no file of this process may grow beyond a few bytes.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit tight = before;
    tight.rlim_cur = 16;
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &tight), 0);
    const QString fault = file.finish();
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, SIG_DFL);
    QVERIFY(fault.startsWith(rig->filePath(QStringLiteral("a.tape: "))));
    QCOMPARE(contents(rig->filePath(QStringLiteral("a.tape"))), QByteArray("precious"));
    QCOMPARE(rig->files(), QStringList{QStringLiteral("a.tape")});
}

void AppTapesTest::fullTapeIsWarnedOfOnceAndKept()
{
    static int warnings;
    warnings = 0;
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &) {
            warnings += type == QtWarningMsg;
        });
    const QString name = rig->filePath(QStringLiteral("a.tape"));
    constexpr qint64 limit = 2048;
    TapeRecorder recorder(device, clock);
    TapeFile file(recorder);
    QCOMPARE(file.begin(name, limit), QString());
    int warningsBefore = -1;
    for (int i = 0; i < 100; ++i) {
        if (!recorder.isFull())
            warningsBefore = warnings;
        recorder.writeRegister(1, 0, i);
    }
    const QString fault = file.finish();
    qInstallMessageHandler(before);
    QCOMPARE(warningsBefore, 0);
    QCOMPARE(warnings, 1);
    const auto tape = readTapeFile(name);
    QVERIFY(tape.has_value());
    QVERIFY(tape->entries.size() > 10 && tape->entries.size() < 100);
    QVERIFY(QFileInfo(name).size() <= limit);
    QCOMPARE(fault, QStringLiteral("%1: the tape became full and lacks what came after its %2 "
                                   "requests")
                        .arg(name)
                        .arg(tape->entries.size()));
}

void AppTapesTest::withoutANameNothingIsRecorded()
{
    TapeRecorder recorder(device, clock);
    TapeFile file(recorder);
    QCOMPARE(file.begin(QString()), QString());
    recorder.writeRegister(1, 0, 2);
    QCOMPARE(recorder.entryCount(), qint64(0));
    QCOMPARE(file.finish(), QString());
}

void AppTapesTest::runIsRecorded()
{
    const auto ending = rig->run(unattended({QStringLiteral("--tape"), QStringLiteral("a.tape")}));
    QCOMPARE(ending.complaints, QStringList());
    QCOMPARE(ending.exitCode, 0);
    const auto tape = readTapeFile(rig->filePath(QStringLiteral("a.tape")));
    QVERIFY(tape.has_value());
    QStringList writes;
    for (const TapeEntry &entry : tape->entries) {
        if (entry.kind == TapeEntry::Write)
            writes << QString::fromLatin1(tapeRequest(entry)).section(QLatin1Char(' '), 1);
    }
    // The start of the move, and the target once more with the next update.
    QCOMPARE(writes.join(QStringLiteral(", ")),
             QStringLiteral("0x13 m0 0, 0x23 m0 0, 0x01 m0 0, 0x22 m0 200, 0x01 m0 768, "
                            "0x12 m0 300, 0x22 m0 200, 0x13 m0 2000, 0x23 m0 2000, "
                            "0x12 m0 300, 0x22 m0 200"));
    QCOMPARE(rig->files(), QStringList{QStringLiteral("a.tape")});
}

void AppTapesTest::runThatFailsIsRecordedToo()
{
    const auto ending =
        rig->run(unattended({QStringLiteral("--fault"), QStringLiteral("fail-writes"),
                             QStringLiteral("--tape"), QStringLiteral("a.tape")}));
    QCOMPARE(ending.exitCode, 1);
    const auto tape = readTapeFile(rig->filePath(QStringLiteral("a.tape")));
    QVERIFY(tape.has_value());
    QVERIFY(!tape->entries.isEmpty());
    for (const TapeEntry &entry : tape->entries)
        QCOMPARE(entry.isAnswered, entry.kind != TapeEntry::Write);
}

void AppTapesTest::interruptedRunIsRecordedToo()
{
    const auto process = rig->start(unattended(
        {QStringLiteral("--target"), QStringLiteral("8000000,0"), QStringLiteral("--tape"),
         QStringLiteral("a.tape"), QStringLiteral("--clock"), QStringLiteral("real")}));
    QVERIFY(process->waitForReadyRead(ProgramRig::runTimeoutMs));
    QVERIFY(process->readAllStandardOutput().startsWith("move 1: "));
    process->terminate();
    QVERIFY(process->waitForFinished(ProgramRig::runTimeoutMs));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 1);
    QCOMPARE(errorLines(*process), QStringList{QStringLiteral("workbench: move 2: interrupted")});
    QCOMPARE(rig->files(), QStringList{QStringLiteral("a.tape")});
    const auto tape = readTapeFile(rig->filePath(QStringLiteral("a.tape")));
    QVERIFY(tape.has_value());
    QVERIFY(tape->entries.size() > 100);
}

void AppTapesTest::interruptedWindowIsRecordedToo()
{
    for (const int number : {SIGINT, SIGTERM}) {
        const auto process = rig->start({QStringLiteral("--tape"), QStringLiteral("window.tape")});
        QTRY_VERIFY_WITH_TIMEOUT(catches(*process, number), ProgramRig::runTimeoutMs);
        QCOMPARE(::kill(static_cast<pid_t>(process->processId()), number), 0);
        QVERIFY(process->waitForFinished(ProgramRig::runTimeoutMs));
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
        QCOMPARE(errorLines(*process), QStringList());
        QCOMPARE(rig->files(), QStringList{QStringLiteral("window.tape")});
        QVERIFY(readTapeFile(rig->filePath(QStringLiteral("window.tape"))).has_value());
        QVERIFY(QFile::remove(rig->filePath(QStringLiteral("window.tape"))));
    }
}

void AppTapesTest::tapeThatCannotBeWrittenIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("folder") << "folder"
                            << "is a folder";
    QTest::newRow("folder that is missing") << "nowhere/a.tape"
                                            << "its folder does not exist";
    QTest::newRow("device") << "/dev/full"
                            << "is not an ordinary file";
}

void AppTapesTest::tapeThatCannotBeWrittenIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QVERIFY(QDir(rig->path()).mkdir(QStringLiteral("folder")));
    for (const QStringList &mode : {unattended({}), QStringList()}) {
        const auto ending = rig->run(mode + QStringList{QStringLiteral("--tape"), name});
        QCOMPARE(ending.exitCode, 1);
        QCOMPARE(ending.complaints,
                 QStringList{QStringLiteral("workbench: %1: %2").arg(name, reason)});
        QCOMPARE(rig->files(), QStringList());
    }
}

void AppTapesTest::tapeThatCannotBeReadIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("missing") << "nowhere.tape"
                             << "workbench: nowhere.tape: No such file or directory";
    QTest::newRow("folder") << "."
                            << "workbench: .: is not an ordinary file";
    QTest::newRow("faulty") << "faulty.tape"
                            << "faulty.tape:2: the line ends where the time that the reply took, "
                               "with nine decimals, should be";
    QTest::newRow("cut off") << "short.tape"
                             << "short.tape:2: the tape has no end, it was cut off";
}

void AppTapesTest::tapeThatCannotBeReadIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, complaint);
    rig->write(QStringLiteral("faulty.tape"), "module-tape 1\n0.000000000\n");
    rig->write(QStringLiteral("short.tape"), "module-tape 1\n");
    const auto process = rig->start({QStringLiteral("--replay"), name});
    QVERIFY(process->waitForFinished(ProgramRig::runTimeoutMs));
    QCOMPARE(process->exitCode(), 2);
    QCOMPARE(errorLines(*process), QStringList{complaint});
}

void AppTapesTest::failingStepsAreNamed_data()
{
    QTest::addColumn<QString>("step");
    QTest::newRow("reset:100") << "workbench: move 1: ";
    QTest::newRow("fail-writes") << "workbench: move 1: ";
    QTest::newRow("ignore-writes") << "workbench: move 1: ";
}

void AppTapesTest::failingStepsAreNamed()
{
    QFETCH(QString, step);
    const auto ending = rig->run(
        unattended({QStringLiteral("--fault"), QString::fromLatin1(QTest::currentDataTag())}));
    QCOMPARE(ending.exitCode, 1);
    QCOMPARE(ending.complaints.size(), 1);
    QVERIFY2(ending.complaints.constFirst().startsWith(step),
             qPrintable(ending.complaints.constFirst()));
}

QTEST_GUILESS_MAIN(AppTapesTest)
#include "tst_app_tapes.moc"
