#include "FlightDialogs.h"
#include "HeadlessPlatform.h"
#include "PollRig.h"

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
struct FlightRig : PollRig
{
    FlightRig()
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
    PollRig rig;
    const QMenu *menu = rig.startButton()->menu();
    QVERIFY(menu);
    QCOMPARE(menu->parent(), rig.tool());
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
    QCOMPARE(rig.tool()->findChildren<QMenu *>().size(), 1);
}

void ToolFlightPathTest::entriesGoWithTheTool()
{
    PollRig rig;
    const QPointer<QAction> run = menuEntry(rig, "Run flight path");
    const QPointer<QAction> edit = menuEntry(rig, "Edit flight path");
    rig.deleteTool();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!run);
    QVERIFY(!edit);
}

void ToolFlightPathTest::toolWithoutAModuleHasTheMenuToo()
{
    RigGaps gaps;
    gaps.hasModule = false;
    PollRig rig(0, gaps);
    menuEntry(rig, "Run flight path")->trigger();
    QCOMPARE(rig.flightIndex(), 0);
    QCOMPARE(rig.target()->at(0), QPointF(0, 0));
}

void ToolFlightPathTest::nothingIsRunAtFirst()
{
    PollRig rig;
    const QVariant index = rig.startButton()->property("RunFp");
    QCOMPARE(index.type(), QVariant::Int);
    QCOMPARE(index.toInt(), 12);
    rig.tool()->showPlugin();
    rig.setTarget(QPointF(40, 40));
    rig.startButton()->click();
    rig.arrive();
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.flightIndex(), 12);
}

void ToolFlightPathTest::runStartsTheMoveToTheFirstPoint()
{
    FlightRig rig;
    rig.setTarget(QPointF(50, 60));
    rig.updateTick();
    rig.takeCalls();
    const QString before = rig.limits();
    rig.run();
    QCOMPARE(rig.flightIndex(), 0);
    QCOMPARE(rig.target()->at(0), QPointF(0, 0));
    QVERIFY(rig.isTargetNew());
    QVERIFY(rig.isMoving());
    QCOMPARE(rig.timerIntervals(), (QList<int>{0, 50}));
    QCOMPARE(rig.limits(), before);
    const QStringList calls = rig.takeCalls();
    QCOMPARE(calls.mid(0, 2),
             (QStringList{QStringLiteral("read M0_VMAX m0"), QStringLiteral("read M1_VMAX m0")}));
    QCOMPARE(calls.filter(QStringLiteral("write ")), startWrites({0, 0}));
}

void ToolFlightPathTest::eachPointIsStartedWhenTheOneBeforeIsReached()
{
    FlightRig rig;
    rig.run();
    for (int i = 0; i < defaultPath.size(); ++i) {
        QCOMPARE(rig.flightIndex(), i);
        QCOMPARE(rig.target()->at(0), defaultPath.at(i));
        rig.takeCalls();
        rig.arrive();
        const QStringList writes = rig.takeWrites();
        if (i + 1 < defaultPath.size())
            QCOMPARE(writes.mid(writes.size() - 9), startWrites(defaultPath.at(i + 1)));
        else
            QCOMPARE(writes.filter(QStringLiteral("RAMPMODE")), QStringList());
    }
    QCOMPARE(rig.flightIndex(), 11);
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    QVERIFY(rig.staysIdle());
    QCOMPARE(rig.flightIndex(), 11);
}

void ToolFlightPathTest::pointIsNotLeftWhileTheAxesMove()
{
    FlightRig rig;
    rig.run();
    rig.setVelocities(0, -3);
    for (int i = 0; i < 3; ++i)
        rig.updateTick();
    QCOMPARE(rig.flightIndex(), 0);
    rig.setVelocities(0, 0);
    rig.updateTick();
    QCOMPARE(rig.flightIndex(), 1);
    // New positions count as movement, whatever the velocities say.
    rig.sample(0, 500);
    rig.updateTick();
    QCOMPARE(rig.flightIndex(), 1);
    rig.updateTick();
    QCOMPARE(rig.flightIndex(), 2);
}

void ToolFlightPathTest::stopEndsTheRunWhereTheAxesAre()
{
    FlightRig rig;
    rig.show();
    rig.run();
    rig.arrive();
    rig.setVelocities(0, 300);
    rig.sample(3, 400);
    rig.updateTick();
    rig.takeCalls();
    rig.pressStop();
    QCOMPARE(rig.takeCalls(),
             (QStringList{write("M0_XTARGET", 3), write("M1_XTARGET", 400), write("RAMPMODE", 0)}));
    QCOMPARE(rig.flightIndex(), 12);
    QCOMPARE(rig.target()->at(0), QPointF(3, 400));
    QVERIFY(rig.isMoving());
    rig.sample(3, 420);
    rig.updateTick();
    rig.setVelocities(0, 0);
    rig.updateTick();
    QVERIFY(!rig.isMoving());
    QVERIFY(rig.staysIdle());
    QCOMPARE(rig.flightIndex(), 12);
    QCOMPARE(rig.target()->at(0), QPointF(3, 400));
}

void ToolFlightPathTest::runCanBeStartedAgainAfterAStop()
{
    FlightRig rig;
    rig.show();
    rig.run();
    for (int i = 0; i < 3; ++i)
        rig.arrive();
    rig.pressStop();
    rig.arrive();
    QVERIFY(!rig.isMoving());
    rig.run();
    QCOMPARE(rig.flightIndex(), 0);
    QCOMPARE(rig.target()->at(0), defaultPath.at(0));
    rig.arrive();
    QCOMPARE(rig.flightIndex(), 1);
    QCOMPARE(rig.target()->at(0), defaultPath.at(1));
}

void ToolFlightPathTest::pickDuringARunTurnsTheAxesAndTheRunGoesOn()
{
    FlightRig rig;
    rig.makeWide();
    rig.run();
    rig.arrive();
    QCOMPARE(rig.flightIndex(), 1);
    rig.setVelocities(0, 50);
    rig.updateTick();
    rig.takeCalls();
    QTest::mouseClick(rig.view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      rig.pixelOf(QPointF(4000, -3000)));
    const QPointF picked = rig.target()->at(0);
    QVERIFY(QLineF(picked, QPointF(4000, -3000)).length() < 200);
    QCOMPARE(rig.takeCalls(), QStringList());
    rig.updateTick();
    QCOMPARE(rig.takeWrites(), (QStringList{write("M0_XTARGET", inRegister(picked.x())),
                                            write("M1_XTARGET", inRegister(picked.y()))}));
    QCOMPARE(rig.flightIndex(), 1);
    rig.setVelocities(0, 0);
    rig.arrive();
    QCOMPARE(rig.flightIndex(), 2);
    QCOMPARE(rig.target()->at(0), defaultPath.at(2));
}

void ToolFlightPathTest::hiddenToolGoesOnWhenItIsShownAgain()
{
    FlightRig rig;
    rig.run();
    rig.arrive();
    rig.tool()->hidePlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{0});
    rig.sample(0, 700);
    rig.sample(0, 1025);
    QVERIFY(!rig.updateTick());
    QCOMPARE(rig.flightIndex(), 1);
    QVERIFY(rig.isMoving());

    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), (QList<int>{0, 100}));
    rig.updateTick();
    QCOMPARE(rig.actual()->at(0), QPointF(0, 1025));
    QCOMPARE(rig.flightIndex(), 1);
    rig.updateTick();
    QCOMPARE(rig.flightIndex(), 2);
    QCOMPARE(rig.timerIntervals(), (QList<int>{0, 50}));
}

void ToolFlightPathTest::toolDeletedDuringARunIsSurvived()
{
    FlightRig rig;
    rig.run();
    rig.arrive();
    rig.sample(0, 30);
    rig.takeCalls();
    rig.deleteTool();
    QCoreApplication::processEvents();
    QCOMPARE(rig.takeCalls(), QStringList());
}

void ToolFlightPathTest::toolDeletedWhileARunStartsIsSurvived()
{
    int survivedAfter = 0;
    for (int last = 1; survivedAfter == 0; ++last) {
        FlightRig rig;
        int count = 0;
        rig.link.onRequest = [&] {
            if (++count == last)
                rig.deleteTool();
        };
        rig.run();
        if (rig.tool())
            survivedAfter = last - 1;
        else
            QCOMPARE(count, last);
    }
    // The two reads and the nine writes, besides what others ask when a register was written.
    QVERIFY(survivedAfter >= 11);
}

void ToolFlightPathTest::runDuringAMoveStartsNothingYet()
{
    FlightRig rig;
    rig.setTarget(QPointF(200, 200));
    rig.startButton()->click();
    rig.setVelocities(100, 100);
    rig.sample(20, 20);
    rig.updateTick();
    rig.takeCalls();
    rig.run();
    QCOMPARE(rig.takeCalls(), QStringList());
    QCOMPARE(rig.flightIndex(), 0);
    QCOMPARE(rig.target()->at(0), QPointF(0, 0));
    QVERIFY(rig.isTargetNew());
    // The move turns to the first point, as to any target that is picked on the way.
    rig.updateTick();
    QCOMPARE(rig.takeWrites(), (QStringList{write("M0_XTARGET", 0), write("M1_XTARGET", 0)}));
    QCOMPARE(rig.flightIndex(), 0);
    rig.setVelocities(0, 0);
    rig.arrive();
    QCOMPARE(rig.flightIndex(), 1);
    QCOMPARE(rig.target()->at(0), defaultPath.at(1));
}

void ToolFlightPathTest::emptyPathIsReplacedByTheBuiltInOne()
{
    writeFile(path("title.csv"), "Only a title\n");
    FlightRig rig;
    rig.setTarget(QPointF(7, 7));
    rig.updateTick();
    const QMenu *menu = rig.startButton()->menu();
    QVERIFY(takePath(rig, path("title.csv")));
    QCOMPARE(rig.flightIndex(), 12);
    rig.run();
    QCOMPARE(rig.startButton()->menu(), menu);
    QCOMPARE(menu->actions().size(), 2);
    QCOMPARE(rig.target()->at(0), QPointF(0, 0));
    for (int i = 0; i < defaultPath.size(); ++i) {
        QCOMPARE(rig.flightIndex(), i);
        QCOMPARE(rig.target()->at(0), defaultPath.at(i));
        rig.arrive();
    }
    QVERIFY(!rig.isMoving());
}

void ToolFlightPathTest::pathAcceptedDuringARunTakesOver()
{
    writeFile(path("short.csv"), "Short\n1;1;2;2;3;3\n");
    FlightRig rig;
    rig.run();
    rig.arrive();
    // Keeps the tool's own timers from ending the move while the dialogs are open.
    rig.setVelocities(0, 9);
    QVERIFY(takePath(rig, path("short.csv")));
    QCOMPARE(rig.flightIndex(), 1);
    QCOMPARE(rig.target()->at(0), defaultPath.at(1));
    rig.setVelocities(0, 0);
    rig.arrive();
    QCOMPARE(rig.flightIndex(), 2);
    QCOMPARE(rig.target()->at(0), QPointF(3, 3));
    rig.arrive();
    QVERIFY(!rig.isMoving());
    QCOMPARE(rig.flightIndex(), 2);
}

void ToolFlightPathTest::fractionsAreDroppedWhenAPointIsDrivenTo()
{
    writeFile(path("fractions.csv"), "Fractions\n10.9;-3.9\n");
    FlightRig rig;
    QVERIFY(takePath(rig, path("fractions.csv")));
    rig.takeCalls();
    rig.run();
    QCOMPARE(rig.takeWrites(), startWrites({10, -3}));
    // The marker follows what the chip was told.
    QCOMPARE(rig.target()->at(0), QPointF(10, -3));
    rig.updateTick();
    QCOMPARE(rig.takeWrites(),
             (QStringList{write("M0_XTARGET", 10), write("M1_XTARGET", inRegister(-3))}));
}

void ToolFlightPathTest::entriesLogTheirTexts()
{
    for (const bool isOn : {true, false}) {
        FlightRig rig;
        const LowLevelLines lines(isOn);
        const auto expected = [isOn](const char *text) {
            const QString line =
                QStringLiteral("SynchronisedDriveTool::initFlightPath()::<lambda()> \"%1\"");
            return isOn ? QStringList{line.arg(QLatin1String(text))} : QStringList();
        };
        QVERIFY(inEditor(rig, [](QDialog *) {}));
        QCOMPARE(LowLevelLines::take(), expected("Edit flight path"));
        rig.run();
        QCOMPARE(LowLevelLines::take(), expected("Run flight path"));
    }
}

void ToolFlightPathTest::fieldsOfALoadedFileAreLogged()
{
    writeFile(path("fields.csv"), "a;b\n1; 2\n#3;4;5\n\n");
    for (const bool isOn : {true, false}) {
        FlightRig rig;
        const LowLevelLines lines(isOn);
        QVERIFY(takePath(rig, path("fields.csv")));
        const QStringList expected{QStringLiteral("2 (\"1\", \" 2\") 1"),
                                   QStringLiteral("3 (\"#3\", \"4\", \"5\") 1"),
                                   QStringLiteral("1 (\"\") 0")};
        QCOMPARE(LowLevelLines::take().mid(1), isOn ? expected : QStringList());
    }
}

QTEST_MAIN(ToolFlightPathTest)
#include "tst_tool_flight_path.moc"
