#include "FlightDialogs.h"
#include "HeadlessPlatform.h"
#include "PollBench.h"

#include <QTemporaryDir>

namespace {

const QVector<QPointF> defaultPath{{0, 0},    {0, 1025},    {1025, 1025}, {0, 0},
                                   {1025, 0}, {1025, 1025}, {512, 1800},  {0, 1025},
                                   {1025, 0}, {1125, -200}, {-100, -200}, {0, 0}};

QString write(const char *name, int value)
{
    return QStringLiteral("write %1 m0 %2").arg(QLatin1String(name)).arg(value);
}

int inRegister(double position)
{
    return static_cast<int>(position) & 0xFFFFFF;
}

/// The writes of a start at maximum velocities 500 and 700.
QStringList startWrites(const QPointF &target)
{
    const int x = inRegister(target.x());
    const int y = inRegister(target.y());
    return {write("M0_VMAX", 0),    write("M1_VMAX", 0),    write("RAMPMODE", 0),
            write("M1_XTARGET", y), write("RAMPMODE", 768), write("M0_XTARGET", x),
            write("M1_XTARGET", y), write("M0_VMAX", 500),  write("M1_VMAX", 700)};
}

/// A shown tool at velocities 500 and 700 and at rest in the origin.
struct FlightBench : PollBench
{
    FlightBench()
    {
        setRegister(QStringLiteral("M0_VMAX"), 500);
        setRegister(QStringLiteral("M1_VMAX"), 700);
        tool()->showPlugin();
        updateTick();
        takeCalls();
    }
    void run() { menuEntry(*this, "Run flight path")->trigger(); }
    bool isMoving() const { return !startButton()->isEnabled(); }
    void pressStop() { QTest::mouseClick(widget<QToolButton>("pbStop"), Qt::LeftButton); }
    /// Several ticks of an idle tool write no start.
    bool staysIdle()
    {
        takeCalls();
        for (int i = 0; i < 3; ++i)
            updateTick();
        return !isMoving() && takeWrites().filter(QStringLiteral("RAMPMODE")).isEmpty();
    }
};

} // namespace

class ToolFlightPathTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void menuHasTwoEntries();
    void entriesGoWithTheTool();
    void toolWithoutAModuleHasTheMenuToo();
    void nothingIsRunAtFirst();
    void runStartsTheMoveToTheFirstPoint();
    void eachPointIsStartedWhenTheOneBeforeIsReached();
    void pointIsNotLeftWhileTheAxesMove();
    void stopEndsTheRunWhereTheAxesAre();
    void runCanBeStartedAgainAfterAStop();
    void pickDuringARunTurnsTheAxesAndTheRunGoesOn();
    void hiddenToolGoesOnWhenItIsShownAgain();
    void toolDeletedDuringARunIsSurvived();
    void toolDeletedWhileARunStartsIsSurvived();
    void runDuringAMoveStartsNothingYet();
    void emptyPathIsReplacedByTheBuiltInOne();
    void pathAcceptedDuringARunTakesOver();
    void fractionsAreDroppedWhenAPointIsDrivenTo();
    void entriesLogTheirTexts();
    void fieldsOfALoadedFileAreLogged();

private:
    QString path(const char *name) const { return folder.filePath(QLatin1String(name)); }
    QTemporaryDir folder;
};

void ToolFlightPathTest::initTestCase()
{
    silenceHeadlessPlatform();
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QVERIFY(folder.isValid());
}

void ToolFlightPathTest::menuHasTwoEntries()
{
    PollBench bench;
    const QMenu *menu = bench.startButton()->menu();
    QVERIFY(menu);
    QCOMPARE(menu->parent(), bench.tool());
    const QList<QAction *> entries = menu->actions();
    QCOMPARE(entries.size(), 2);
    const char *const texts[] = {"Run flight path", "Edit flight path"};
    const char *const icons[] = {":/Software-Icons/Amp", ":/Software-Icons/Code-Editor"};
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(entries.at(i)->text(), QLatin1String(texts[i]));
        QVERIFY(!entries.at(i)->parent());
        QVERIFY(entries.at(i)->isEnabled());
        const QImage expected = QIcon(QLatin1String(icons[i])).pixmap(16).toImage();
        QVERIFY(!expected.isNull());
        QCOMPARE(entries.at(i)->icon().pixmap(16).toImage(), expected);
    }
    QCOMPARE(bench.tool()->findChildren<QMenu *>().size(), 1);
}

void ToolFlightPathTest::entriesGoWithTheTool()
{
    PollBench bench;
    const QPointer<QAction> run = menuEntry(bench, "Run flight path");
    const QPointer<QAction> edit = menuEntry(bench, "Edit flight path");
    bench.deleteTool();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!run);
    QVERIFY(!edit);
}

void ToolFlightPathTest::toolWithoutAModuleHasTheMenuToo()
{
    BenchGaps gaps;
    gaps.hasModule = false;
    PollBench bench(0, gaps);
    menuEntry(bench, "Run flight path")->trigger();
    QCOMPARE(bench.flightIndex(), 0);
    QCOMPARE(bench.target()->at(0), QPointF(0, 0));
}

void ToolFlightPathTest::nothingIsRunAtFirst()
{
    PollBench bench;
    const QVariant index = bench.startButton()->property("RunFp");
    QCOMPARE(index.type(), QVariant::Int);
    QCOMPARE(index.toInt(), 12);
    bench.tool()->showPlugin();
    bench.setTarget(QPointF(40, 40));
    bench.startButton()->click();
    bench.arrive();
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.flightIndex(), 12);
}

void ToolFlightPathTest::runStartsTheMoveToTheFirstPoint()
{
    FlightBench bench;
    bench.setTarget(QPointF(50, 60));
    bench.updateTick();
    bench.takeCalls();
    const QString before = bench.limits();
    bench.run();
    QCOMPARE(bench.flightIndex(), 0);
    QCOMPARE(bench.target()->at(0), QPointF(0, 0));
    QVERIFY(bench.isTargetNew());
    QVERIFY(bench.isMoving());
    QCOMPARE(bench.timerIntervals(), (QList<int>{0, 50}));
    QCOMPARE(bench.limits(), before);
    const QStringList calls = bench.takeCalls();
    QCOMPARE(calls.mid(0, 2),
             (QStringList{QStringLiteral("read M0_VMAX m0"), QStringLiteral("read M1_VMAX m0")}));
    QCOMPARE(calls.filter(QStringLiteral("write ")), startWrites({0, 0}));
}

void ToolFlightPathTest::eachPointIsStartedWhenTheOneBeforeIsReached()
{
    FlightBench bench;
    bench.run();
    for (int i = 0; i < defaultPath.size(); ++i) {
        QCOMPARE(bench.flightIndex(), i);
        QCOMPARE(bench.target()->at(0), defaultPath.at(i));
        bench.takeCalls();
        bench.arrive();
        const QStringList writes = bench.takeWrites();
        if (i + 1 < defaultPath.size())
            QCOMPARE(writes.mid(writes.size() - 9), startWrites(defaultPath.at(i + 1)));
        else
            QCOMPARE(writes.filter(QStringLiteral("RAMPMODE")), QStringList());
    }
    QCOMPARE(bench.flightIndex(), 11);
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    QVERIFY(bench.staysIdle());
    QCOMPARE(bench.flightIndex(), 11);
}

void ToolFlightPathTest::pointIsNotLeftWhileTheAxesMove()
{
    FlightBench bench;
    bench.run();
    bench.setVelocities(0, -3);
    for (int i = 0; i < 3; ++i)
        bench.updateTick();
    QCOMPARE(bench.flightIndex(), 0);
    bench.setVelocities(0, 0);
    bench.updateTick();
    QCOMPARE(bench.flightIndex(), 1);
    // New positions count as movement, whatever the velocities say.
    bench.sample(0, 500);
    bench.updateTick();
    QCOMPARE(bench.flightIndex(), 1);
    bench.updateTick();
    QCOMPARE(bench.flightIndex(), 2);
}

void ToolFlightPathTest::stopEndsTheRunWhereTheAxesAre()
{
    FlightBench bench;
    bench.show();
    bench.run();
    bench.arrive();
    bench.setVelocities(0, 300);
    bench.sample(3, 400);
    bench.updateTick();
    bench.takeCalls();
    bench.pressStop();
    QCOMPARE(bench.takeCalls(),
             (QStringList{write("M0_XTARGET", 3), write("M1_XTARGET", 400), write("RAMPMODE", 0)}));
    QCOMPARE(bench.flightIndex(), 12);
    QCOMPARE(bench.target()->at(0), QPointF(3, 400));
    QVERIFY(bench.isMoving());
    bench.sample(3, 420);
    bench.updateTick();
    bench.setVelocities(0, 0);
    bench.updateTick();
    QVERIFY(!bench.isMoving());
    QVERIFY(bench.staysIdle());
    QCOMPARE(bench.flightIndex(), 12);
    QCOMPARE(bench.target()->at(0), QPointF(3, 400));
}

void ToolFlightPathTest::runCanBeStartedAgainAfterAStop()
{
    FlightBench bench;
    bench.show();
    bench.run();
    for (int i = 0; i < 3; ++i)
        bench.arrive();
    bench.pressStop();
    bench.arrive();
    QVERIFY(!bench.isMoving());
    bench.run();
    QCOMPARE(bench.flightIndex(), 0);
    QCOMPARE(bench.target()->at(0), defaultPath.at(0));
    bench.arrive();
    QCOMPARE(bench.flightIndex(), 1);
    QCOMPARE(bench.target()->at(0), defaultPath.at(1));
}

void ToolFlightPathTest::pickDuringARunTurnsTheAxesAndTheRunGoesOn()
{
    FlightBench bench;
    bench.makeWide();
    bench.run();
    bench.arrive();
    QCOMPARE(bench.flightIndex(), 1);
    bench.setVelocities(0, 50);
    bench.updateTick();
    bench.takeCalls();
    QTest::mouseClick(bench.view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      bench.pixelOf(QPointF(4000, -3000)));
    const QPointF picked = bench.target()->at(0);
    QVERIFY(QLineF(picked, QPointF(4000, -3000)).length() < 200);
    QCOMPARE(bench.takeCalls(), QStringList());
    bench.updateTick();
    QCOMPARE(bench.takeWrites(), (QStringList{write("M0_XTARGET", inRegister(picked.x())),
                                              write("M1_XTARGET", inRegister(picked.y()))}));
    QCOMPARE(bench.flightIndex(), 1);
    bench.setVelocities(0, 0);
    bench.arrive();
    QCOMPARE(bench.flightIndex(), 2);
    QCOMPARE(bench.target()->at(0), defaultPath.at(2));
}

void ToolFlightPathTest::hiddenToolGoesOnWhenItIsShownAgain()
{
    FlightBench bench;
    bench.run();
    bench.arrive();
    bench.tool()->hidePlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{0});
    bench.sample(0, 700);
    bench.sample(0, 1025);
    QVERIFY(!bench.updateTick());
    QCOMPARE(bench.flightIndex(), 1);
    QVERIFY(bench.isMoving());

    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), (QList<int>{0, 100}));
    bench.updateTick();
    QCOMPARE(bench.actual()->at(0), QPointF(0, 1025));
    QCOMPARE(bench.flightIndex(), 1);
    bench.updateTick();
    QCOMPARE(bench.flightIndex(), 2);
    QCOMPARE(bench.timerIntervals(), (QList<int>{0, 50}));
}

void ToolFlightPathTest::toolDeletedDuringARunIsSurvived()
{
    FlightBench bench;
    bench.run();
    bench.arrive();
    bench.sample(0, 30);
    bench.takeCalls();
    bench.deleteTool();
    QCoreApplication::processEvents();
    QCOMPARE(bench.takeCalls(), QStringList());
}

void ToolFlightPathTest::toolDeletedWhileARunStartsIsSurvived()
{
    int survivedAfter = 0;
    for (int last = 1; survivedAfter == 0; ++last) {
        FlightBench bench;
        int count = 0;
        bench.link.onRequest = [&] {
            if (++count == last)
                bench.deleteTool();
        };
        bench.run();
        if (bench.tool())
            survivedAfter = last - 1;
        else
            QCOMPARE(count, last);
    }
    // The two reads and the nine writes, besides what others ask when a register was written.
    QVERIFY(survivedAfter >= 11);
}

void ToolFlightPathTest::runDuringAMoveStartsNothingYet()
{
    FlightBench bench;
    bench.setTarget(QPointF(200, 200));
    bench.startButton()->click();
    bench.setVelocities(100, 100);
    bench.sample(20, 20);
    bench.updateTick();
    bench.takeCalls();
    bench.run();
    QCOMPARE(bench.takeCalls(), QStringList());
    QCOMPARE(bench.flightIndex(), 0);
    QCOMPARE(bench.target()->at(0), QPointF(0, 0));
    QVERIFY(bench.isTargetNew());
    // The move turns to the first point, as to any target that is picked on the way.
    bench.updateTick();
    QCOMPARE(bench.takeWrites(), (QStringList{write("M0_XTARGET", 0), write("M1_XTARGET", 0)}));
    QCOMPARE(bench.flightIndex(), 0);
    bench.setVelocities(0, 0);
    bench.arrive();
    QCOMPARE(bench.flightIndex(), 1);
    QCOMPARE(bench.target()->at(0), defaultPath.at(1));
}

void ToolFlightPathTest::emptyPathIsReplacedByTheBuiltInOne()
{
    writeFile(path("title.csv"), "Only a title\n");
    FlightBench bench;
    bench.setTarget(QPointF(7, 7));
    bench.updateTick();
    const QMenu *menu = bench.startButton()->menu();
    QVERIFY(takePath(bench, path("title.csv")));
    QCOMPARE(bench.flightIndex(), 12);
    bench.run();
    QCOMPARE(bench.startButton()->menu(), menu);
    QCOMPARE(menu->actions().size(), 2);
    QCOMPARE(bench.target()->at(0), QPointF(0, 0));
    for (int i = 0; i < defaultPath.size(); ++i) {
        QCOMPARE(bench.flightIndex(), i);
        QCOMPARE(bench.target()->at(0), defaultPath.at(i));
        bench.arrive();
    }
    QVERIFY(!bench.isMoving());
}

void ToolFlightPathTest::pathAcceptedDuringARunTakesOver()
{
    writeFile(path("short.csv"), "Short\n1;1;2;2;3;3\n");
    FlightBench bench;
    bench.run();
    bench.arrive();
    // Keeps the tool's own timers from ending the move while the dialogs are open.
    bench.setVelocities(0, 9);
    QVERIFY(takePath(bench, path("short.csv")));
    QCOMPARE(bench.flightIndex(), 1);
    QCOMPARE(bench.target()->at(0), defaultPath.at(1));
    bench.setVelocities(0, 0);
    bench.arrive();
    QCOMPARE(bench.flightIndex(), 2);
    QCOMPARE(bench.target()->at(0), QPointF(3, 3));
    bench.arrive();
    QVERIFY(!bench.isMoving());
    QCOMPARE(bench.flightIndex(), 2);
}

void ToolFlightPathTest::fractionsAreDroppedWhenAPointIsDrivenTo()
{
    writeFile(path("fractions.csv"), "Fractions\n10.9;-3.9\n");
    FlightBench bench;
    QVERIFY(takePath(bench, path("fractions.csv")));
    bench.takeCalls();
    bench.run();
    QCOMPARE(bench.takeWrites(), startWrites({10, -3}));
    // The marker follows what the chip was told.
    QCOMPARE(bench.target()->at(0), QPointF(10, -3));
    bench.updateTick();
    QCOMPARE(bench.takeWrites(),
             (QStringList{write("M0_XTARGET", 10), write("M1_XTARGET", inRegister(-3))}));
}

void ToolFlightPathTest::entriesLogTheirTexts()
{
    for (const bool isOn : {true, false}) {
        FlightBench bench;
        const LowLevelLines lines(isOn);
        const auto expected = [isOn](const char *text) {
            const QString line =
                QStringLiteral("SynchronisedDriveTool::initFlightPath()::<lambda()> \"%1\"");
            return isOn ? QStringList{line.arg(QLatin1String(text))} : QStringList();
        };
        QVERIFY(inEditor(bench, [](QDialog *) {}));
        QCOMPARE(LowLevelLines::take(), expected("Edit flight path"));
        bench.run();
        QCOMPARE(LowLevelLines::take(), expected("Run flight path"));
    }
}

void ToolFlightPathTest::fieldsOfALoadedFileAreLogged()
{
    writeFile(path("fields.csv"), "a;b\n1; 2\n#3;4;5\n\n");
    for (const bool isOn : {true, false}) {
        FlightBench bench;
        const LowLevelLines lines(isOn);
        QVERIFY(takePath(bench, path("fields.csv")));
        const QStringList expected{QStringLiteral("2 (\"1\", \" 2\") 1"),
                                   QStringLiteral("3 (\"#3\", \"4\", \"5\") 1"),
                                   QStringLiteral("1 (\"\") 0")};
        QCOMPARE(LowLevelLines::take().mid(1), isOn ? expected : QStringList());
    }
}

QTEST_MAIN(ToolFlightPathTest)
#include "tst_tool_flight_path.moc"
