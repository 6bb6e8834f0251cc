#include "ProgramRig.h"

#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTest>

#include <memory>

namespace {

struct Move
{
    QPoint target;
    QPoint end;
    double deviation = 0;
    int samples = 0;
};

QPoint point(const QString &x, const QString &y)
{
    return {x.toInt(), y.toInt()};
}

/// What a line says about a plain move; the test fails on any other line.
Move plainMove(const QString &line)
{
    const QRegularExpression form(
        QStringLiteral("^move \\d+: .*target (-?\\d+),(-?\\d+); end (-?\\d+),(-?\\d+); "
                       "\\d+\\.\\d\\d s, (\\d+) samples, \\d+/s; at most (\\d+\\.\\d) units off "
                       "the straight line$"));
    const auto match = form.match(line);
    if (!match.hasMatch())
        QTest::qFail(qPrintable(line), __FILE__, __LINE__);
    return {point(match.captured(1), match.captured(2)),
            point(match.captured(3), match.captured(4)), match.captured(6).toDouble(),
            match.captured(5).toInt()};
}

} // namespace

class AppRunTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void carriesTheBuiltInRunOutAndLeavesPictureAndRecord();
    void drivesToGivenTargetsExactly();
    void failsWithoutThePlugIn();
    void failsBeforeTheRunWhenAFileCannotBeWritten();
    void interruptedRunLeavesNoRecord();
    void wrongOptionsExitWithTwo_data();
    void wrongOptionsExitWithTwo();
    void brokenChipDescriptionExitsWithTwo();
    void missingChipDescriptionExitsWithTwo();
    void printsItsVersion();

private:
    std::unique_ptr<ProgramRig> rig;
};

void AppRunTest::init()
{
    rig = std::make_unique<ProgramRig>();
    QVERIFY(rig->isValid());
}

void AppRunTest::carriesTheBuiltInRunOutAndLeavesPictureAndRecord()
{
    const ProgramRig::Ending ending =
        rig->run({QStringLiteral("--unattended"), QStringLiteral("--clock"),
                  QStringLiteral("simulated"), QStringLiteral("--picture"), QStringLiteral("p.png"),
                  QStringLiteral("--record"), QStringLiteral("r.csv")});
    QVERIFY2(ending.exitCode == 0, qPrintable(ending.complaints.join(QLatin1Char('\n'))));
    QCOMPARE(ending.complaints, QStringList());
    QCOMPARE(ending.output.size(), 18);

    const Move first = plainMove(ending.output.at(0));
    QCOMPARE(first.end, first.target);
    QVERIFY(first.deviation <= 1.0);
    QVERIFY(first.samples > 10);
    QVERIFY(ending.output.at(1).contains(QLatin1String("turned to")));
    QVERIFY(ending.output.at(2).contains(QLatin1String("halted at")));
    QCOMPARE(plainMove(ending.output.at(3)).end, QPoint(0, 0));
    QVERIFY(ending.output.at(4).startsWith(QLatin1String("point 1 of 12: 0,0: reached after ")));
    QVERIFY(ending.output.at(16).startsWith(QLatin1String("flight path: 12 of 12 points reached")));

    QCOMPARE(rig->files(), (QStringList{QStringLiteral("p.png"), QStringLiteral("r.csv")}));
    const QImage picture(rig->filePath(QStringLiteral("p.png")));
    QVERIFY(picture.width() >= 1600 && picture.height() >= 800);

    QFile record(rig->filePath(QStringLiteral("r.csv")));
    QVERIFY(record.open(QIODevice::ReadOnly));
    const QStringList rows = ProgramRig::lines(record.readAll());
    QCOMPARE(rows.at(0), QStringLiteral("time (s),axis 0 (units),axis 1 (units)"));
    // The axes may be on their way by the time of the first sample.
    const QStringList start = rows.at(1).split(QLatin1Char(','));
    QCOMPARE(start.at(0), QStringLiteral("0.000000"));
    QVERIFY(start.at(1).toInt() >= 0 && start.at(1).toInt() < first.target.x());
    const QString arrival = QStringLiteral(",%1,%2").arg(first.end.x()).arg(first.end.y());
    QVERIFY(!rows.filter(arrival).isEmpty());
    QVERIFY(
        ending.output.at(17).contains(QStringLiteral("%1 samples in r.csv").arg(rows.size() - 1)));
    double before = -1;
    for (const QString &row : rows.mid(1)) {
        const QStringList cells = row.split(QLatin1Char(','));
        QCOMPARE(cells.size(), 3);
        QVERIFY(cells.at(0).toDouble() > before);
        before = cells.at(0).toDouble();
    }
}

void AppRunTest::drivesToGivenTargetsExactly()
{
    const ProgramRig::Ending ending =
        rig->run({QStringLiteral("--unattended"), QStringLiteral("--target"),
                  QStringLiteral("700,-311"), QStringLiteral("--target"), QStringLiteral("-1,259"),
                  QStringLiteral("--link-cost"), QStringLiteral("100")});
    QVERIFY2(ending.exitCode == 0, qPrintable(ending.complaints.join(QLatin1Char('\n'))));
    QCOMPARE(ending.output.size(), 3);
    QCOMPARE(plainMove(ending.output.at(0)).end, QPoint(700, -311));
    QCOMPARE(plainMove(ending.output.at(1)).end, QPoint(-1, 259));
    QVERIFY(ending.output.at(1).contains(QLatin1String("asked for -1,259")));
}

void AppRunTest::failsWithoutThePlugIn()
{
    const ProgramRig::Ending ending =
        rig->run({QStringLiteral("--unattended"), QStringLiteral("--plugins"), rig->path()});
    QCOMPARE(ending.exitCode, 1);
    QCOMPARE(ending.output, QStringList());
    QCOMPARE(
        ending.complaints,
        QStringList{QStringLiteral("workbench: no Synchronized drive plug-in in ") + rig->path()});
}

void AppRunTest::failsBeforeTheRunWhenAFileCannotBeWritten()
{
    const ProgramRig::Ending ending = rig->run(
        {QStringLiteral("--unattended"), QStringLiteral("--picture"), QStringLiteral("p.png"),
         QStringLiteral("--record"), QStringLiteral("nowhere/r.csv")});
    QCOMPARE(ending.exitCode, 1);
    QCOMPARE(ending.output, QStringList());
    QCOMPARE(ending.complaints,
             QStringList{QStringLiteral("workbench: nowhere/r.csv: its folder does not exist")});
    QCOMPARE(rig->files(), QStringList());
}

void AppRunTest::interruptedRunLeavesNoRecord()
{
    const auto process = rig->start(
        {QStringLiteral("--unattended"), QStringLiteral("--record"), QStringLiteral("r.csv")});
    // The second move is under way, or about to be, when the first is reported.
    QVERIFY(process->waitForReadyRead(ProgramRig::runTimeoutMs));
    QVERIFY(process->readAllStandardOutput().startsWith("move 1: "));
    process->terminate();
    QVERIFY(process->waitForFinished(ProgramRig::runTimeoutMs));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 1);
    QVERIFY(process->readAllStandardError().contains("workbench: move 2: interrupted\n"));
    QCOMPARE(rig->files(), QStringList());
}

void AppRunTest::wrongOptionsExitWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown") << QStringList{QStringLiteral("--nonsense")};
    QTest::newRow("target out of range") << QStringList{
        QStringLiteral("--unattended"), QStringLiteral("--target"), QStringLiteral("8388608,0")};
    QTest::newRow("link cost of no number")
        << QStringList{QStringLiteral("--link-cost"), QStringLiteral("much")};
}

void AppRunTest::wrongOptionsExitWithTwo()
{
    QFETCH(QStringList, arguments);
    const ProgramRig::Ending ending = rig->run(arguments);
    QCOMPARE(ending.exitCode, 2);
    QCOMPARE(ending.output, QStringList());
    QCOMPARE(ending.complaints.size(), 1);
}

void AppRunTest::brokenChipDescriptionExitsWithTwo()
{
    QFile file(rig->filePath(QStringLiteral("broken.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<chip name=\"Broken\">\n\n  <register name=\"ALONE\"/>\n</chip>\n");
    file.close();
    const ProgramRig::Ending ending =
        rig->run({QStringLiteral("--chip"), QStringLiteral("broken.xml")});
    QCOMPARE(ending.exitCode, 2);
    QCOMPARE(ending.complaints.size(), 1);
    QVERIFY2(ending.complaints.constFirst().startsWith(QLatin1String("broken.xml:3: ")),
             qPrintable(ending.complaints.constFirst()));
}

void AppRunTest::missingChipDescriptionExitsWithTwo()
{
    const ProgramRig::Ending ending =
        rig->run({QStringLiteral("--chip"), QStringLiteral("none.xml")});
    QCOMPARE(ending.exitCode, 2);
    QCOMPARE(ending.complaints.size(), 1);
    QVERIFY(ending.complaints.constFirst().startsWith(QLatin1String("workbench: none.xml: ")));
}

void AppRunTest::printsItsVersion()
{
    const ProgramRig::Ending ending = rig->run({QStringLiteral("--version")});
    QCOMPARE(ending.exitCode, 0);
    QCOMPARE(ending.output, QStringList{QStringLiteral("workbench 4.6.0")});
}

QTEST_GUILESS_MAIN(AppRunTest)
#include "tst_app_run.moc"
