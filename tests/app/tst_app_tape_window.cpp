#include "AppWindowRig.h"
#include "HeadlessPlatform.h"
#include "PathMeasure.h"
#include "PositionPacking.h"
#include "ShippedChip.h"
#include "TapeFile.h"
#include "ToolWindow.h"
#include "UnattendedRun.h"

#include "AppSettings.h"

#include <QAction>
#include <QFileInfo>
#include <QLineF>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>

using namespace workbench;

namespace {

const QVector<QPoint> targets{{800, 300}, {-200, 450}};

QVector<Sample> positionsOn(const Tape &tape)
{
    QVector<Sample> positions;
    for (const TapeEntry &entry : tape.entries) {
        const LinkReply reply{entry.replyA, entry.replyB, entry.reply};
        if (entry.kind == TapeEntry::UserFunction && entry.isAnswered)
            positions.append({entry.askedNs, {unpackPosition(reply, 0), unpackPosition(reply, 1)}});
    }
    return positions;
}

/// The values that were written last to the registers of both targets.
QPoint lastTargets(const Tape &tape)
{
    QPoint last;
    for (const TapeEntry &entry : tape.entries) {
        if (entry.kind == TapeEntry::Write && entry.address == 0x12)
            last.setX(entry.value);
        if (entry.kind == TapeEntry::Write && entry.address == 0x22)
            last.setY(entry.value);
    }
    return last;
}

/// True when all points were told in this order, some of them perhaps several times.
bool areToldInOrder(const QVector<QPointF> &points, const QVector<Sample> &told)
{
    int next = 0;
    for (const QPointF &point : points) {
        while (next < told.size() && told.at(next).position != point.toPoint())
            ++next;
        if (next == told.size())
            return false;
    }
    return true;
}

/// Starts the script as soon as the application that gets a window runs.
void prepareScript()
{
    if (qobject_cast<QApplication *>(QCoreApplication::instance()) && appScript())
        QTimer::singleShot(0, QCoreApplication::instance(), playAppScript);
}
Q_COREAPP_STARTUP_FUNCTION(prepareScript)

} // namespace

class AppTapeWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    // Each window begins as it is made, wherever the one before was left.
    void init() { AppSettings().clear(); }

    void keptTapesAreRepeatedInTheWindow_data();
    void keptTapesAreRepeatedInTheWindow();
    void statusBarSaysHowFarTheTapeHasCome();
    void otherTargetsAreSaidInTheWindow();
    void stopByHandIsRepeated();
    void signalStopsTheAxesAndEndsTheTape_data();
    void signalStopsTheAxesAndEndsTheTape();
    void signalEndsTheTapeOfStandingAxes();
    void runWhoseTapeBecomesFullFails();

private:
    QString path(const char *name) const { return folder.filePath(QLatin1String(name)); }

    QTemporaryDir folder;
};

void AppTapeWindowTest::initTestCase()
{
    QVERIFY(folder.isValid());
    // Otherwise each application would warn that there is none.
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
    silenceHeadlessPlatform();
}

void AppTapeWindowTest::keptTapesAreRepeatedInTheWindow_data()
{
    QTest::addColumn<QString>("fileName");
    for (const char *name : {"two-moves.tape", "late-replies.tape", "duplicate-writes.tape"})
        QTest::newRow(name) << QStringLiteral(TAPES_FOLDER "/") + QLatin1String(name);
}

void AppTapeWindowTest::keptTapesAreRepeatedInTheWindow()
{
    QFETCH(QString, fileName);
    const auto tape = readTapeFile(fileName);
    QVERIFY(tape.has_value());
    QVector<QPointF> trace;
    QPoint position;
    QString log;
    const int code = runApp({QStringLiteral("--replay"), fileName}, [&](AppWindow &app) {
        for (const QPoint &target : targets)
            QVERIFY(app.pick(target) && app.start() && app.finishMove());
        QVERIFY(app.waitFor(
            [&] { return app.label("replayLabel").endsWith(QLatin1String(" writes, played")); }));
        // What was out of sight is drawn again once it is in sight.
        app.panel.setView({-512, 1024, -256, 768});
        trace = app.trace();
        position = app.panel.shownPosition();
        log = app.log();
    });
    QCOMPARE(code, 0);
    QVERIFY2(!log.contains(QLatin1String("but the tape has")), qPrintable(log));
    const QVector<Sample> told = positionsOn(*tape);
    QCOMPARE(position, told.constLast().position);
    QCOMPARE(position, targets.constLast());
    QVERIFY(trace.size() > 20);
    QVERIFY(areToldInOrder(trace, told));
    // The line has no point of its own for the last few units.
    QVERIFY(QLineF(trace.constLast(), targets.constLast()).length() < 10);
    // Nothing that was recorded is far from what is drawn, of which a pixel is a few units; the
    // line begins with the first sample of the first move.
    trace.prepend(told.constFirst().position);
    QVERIFY(largestDistanceFromPath(told, trace) < 10);
}

void AppTapeWindowTest::statusBarSaysHowFarTheTapeHasCome()
{
    const QString begin = QStringLiteral("Replaying two-moves.tape: %1 of 22 writes, %2");
    const QString atRest = QStringLiteral("Axes standing still");
    const int code = runApp(
        {QStringLiteral("--replay"), QStringLiteral(TAPES_FOLDER "/two-moves.tape")},
        [&](AppWindow &app) {
            QVERIFY(app.waitForLabel("replayLabel",
                                     begin.arg(0).arg(QStringLiteral("waiting for the next"))));
            QCOMPARE(app.label("motionLabel"), atRest);
            QCOMPARE(app.label("costLabel"), QString());
            QVERIFY(app.pick(targets.at(0)) && app.start());
            QVERIFY(app.waitForLabel("replayLabel", begin.arg(11).arg(QStringLiteral("running"))));
            QVERIFY(app.waitForLabel("motionLabel", QStringLiteral("Axes moving")));
            QVERIFY(app.waitFor([&] {
                const QString samples = app.label("samplesLabel").section(QLatin1Char(' '), 0, 0);
                return samples.toInt() > 10;
            }));
            QVERIFY(app.finishMove());
            QVERIFY(app.waitForLabel("motionLabel", atRest));
            QVERIFY(app.pick(targets.at(1)) && app.start() && app.finishMove());
            QVERIFY(app.waitForLabel("replayLabel", begin.arg(22).arg(QStringLiteral("played"))));
        });
    QCOMPARE(code, 0);
}

void AppTapeWindowTest::otherTargetsAreSaidInTheWindow()
{
    const QString deviation =
        QStringLiteral("write 0x22 m0 301, but the tape has write 0x22 m0 300 there");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("but the tape has")));
    const int code = runApp(
        {QStringLiteral("--replay"), QStringLiteral(TAPES_FOLDER "/two-moves.tape")},
        [&](AppWindow &app) {
            QVERIFY(app.pick({800, 301}) && app.start());
            QVERIFY(app.waitFor([&] { return app.log().contains(deviation); }));
            QVERIFY(app.waitFor([&] {
                return app.label("replayLabel").endsWith(QLatin1String(", not as on the tape"));
            }));
            const auto *const label =
                app.window->findChild<QLabel *>(QStringLiteral("replayLabel"));
            QCOMPARE(label->toolTip(), QStringLiteral("First: ") + deviation);
        });
    QCOMPARE(code, 0);
}

/// A person takes the time between two clicks that they take, and looks where the axes are.
void AppTapeWindowTest::stopByHandIsRepeated()
{
    const auto drive = [](AppWindow &app, const std::function<bool()> &isTimeToStop) {
        QVERIFY(app.pick(targets.at(0)));
        QVERIFY(app.waitFor([&, tries = 0]() mutable { return ++tries > 60; }));
        QVERIFY(app.start() && app.waitFor(isTimeToStop));
        QVERIFY(app.panel.pressStop() && app.finishMove());
    };
    QPoint stopped;
    QCOMPARE(runApp({QStringLiteral("--tape"), path("stop.tape")},
                    [&](AppWindow &app) {
                        drive(app, [&] { return app.panel.shownPosition().x() > 300; });
                        stopped = app.panel.shownPosition();
                    }),
             0);
    QVERIFY(stopped.x() > 300 && stopped.x() < 800);
    const QString waiting = QStringLiteral("waiting for the next");
    const int code = runApp({QStringLiteral("--replay"), path("stop.tape")}, [&](AppWindow &app) {
        drive(app, [&] {
            return app.panel.shownPosition() == stopped &&
                   app.label("replayLabel").endsWith(waiting);
        });
        QCOMPARE(app.panel.shownPosition(), stopped);
        QCOMPARE(app.panel.target(), stopped);
        QVERIFY(!app.log().contains(QLatin1String("but the tape has")));
        QVERIFY(app.waitFor(
            [&] { return app.label("replayLabel").endsWith(QLatin1String(" writes, played")); }));
    });
    QCOMPARE(code, 0);
}

void AppTapeWindowTest::signalStopsTheAxesAndEndsTheTape_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("isFlight");
    QTest::addColumn<bool>("isOnScreen");
    QTest::newRow("interrupt in a move") << SIGINT << false << true;
    QTest::newRow("termination in a move") << SIGTERM << false << true;
    QTest::newRow("interrupt in a flight path") << SIGINT << true << true;
    QTest::newRow("interrupt in a move of a hidden panel") << SIGINT << false << false;
}

void AppTapeWindowTest::signalStopsTheAxesAndEndsTheTape()
{
    QFETCH(int, number);
    QFETCH(bool, isFlight);
    QFETCH(bool, isOnScreen);
    const int code = runApp({QStringLiteral("--tape"), path("signal.tape")}, [&](AppWindow &app) {
        QVERIFY(app.pick({20000, 10000}));
        if (isFlight)
            app.panel.menuEntry(QStringLiteral("Run flight path"))->trigger();
        else
            QVERIFY(app.start());
        const QPoint begin = app.panel.shownPosition();
        QVERIFY(app.waitFor([&] { return app.panel.shownPosition() != begin || isFlight; }));
        if (!isOnScreen)
            app.window->toolWindow(app.tool->key())->close();
        QCOMPARE(std::raise(number), 0);
        app.endsByItself = true;
    });
    QCOMPARE(code, 0);
    const auto tape = readTapeFile(path("signal.tape"));
    QVERIFY(tape.has_value());
    const QVector<Sample> told = positionsOn(*tape);
    const QPoint stop = lastTargets(*tape);
    QVERIFY(stop.x() < 20000);
    QVERIFY(std::any_of(told.cbegin(), told.cend(),
                        [&](const Sample &sample) { return sample.position == stop; }));
    if (isOnScreen) {
        // The panel's own look for the end of the move is on the tape too.
        QCOMPARE(told.constLast().position, stop);
        QCOMPARE(tape->entries.constLast().kind, TapeEntry::Read);
        QCOMPARE(tape->entries.constLast().address, 0x21u);
        QCOMPARE(tape->entries.constLast().value, 0);
    }
}

void AppTapeWindowTest::signalEndsTheTapeOfStandingAxes()
{
    const int code = runApp({QStringLiteral("--tape"), path("still.tape")}, [&](AppWindow &app) {
        QVERIFY(app.pick({30, 20}));
        QCOMPARE(std::raise(SIGINT), 0);
        app.endsByItself = true;
    });
    QCOMPARE(code, 0);
    const auto tape = readTapeFile(path("still.tape"));
    QVERIFY(tape.has_value());
    QVERIFY(!tape->entries.isEmpty());
}

void AppTapeWindowTest::runWhoseTapeBecomesFullFails()
{
    appScript() = nullptr;
    int argc = 1;
    char name[] = "workbench";
    char *arguments[] = {name, nullptr};
    const QApplication application(argc, arguments);
    Options options;
    options.isUnattended = true;
    options.targets = {{30, 20}};
    options.pluginsFolder = QStringLiteral(PLUGINS_FOLDER);
    options.tapeFile = path("full.tape");
    options.recordFile = path("full.csv");
    options.tapeSizeLimit = 5000;
    const auto chip = readShippedChip();
    QVERIFY(chip);
    QTest::ignoreMessage(
        QtWarningMsg,
        qPrintable(options.tapeFile + QStringLiteral(": the tape is full and ends here")));
    SteadyClock clock;
    QCOMPARE(runUnattended(options, *chip, clock), exitCode::failure);
    const auto tape = readTapeFile(options.tapeFile);
    QVERIFY(tape.has_value());
    QVERIFY(QFileInfo(options.tapeFile).size() <= options.tapeSizeLimit);
    // The run itself went well.
    QVERIFY(QFile::exists(options.recordFile));
}

QTEST_APPLESS_MAIN(AppTapeWindowTest)
#include "tst_app_tape_window.moc"
