#include "HeadlessPlatform.h"
#include "ToolRig.h"

#include "XmlProductIC.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegister.h"

#include <QTest>
#include <QToolButton>

#include <limits>

namespace {

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

/// A position as its 24 bits stand in a register.
int inRegister(int position)
{
    return position & 0xFFFFFF;
}

QString write(const char *name, int motor, int value)
{
    return QStringLiteral("write %1 m%2 %3").arg(QLatin1String(name)).arg(motor).arg(value);
}

/// The writes of a start at maximum velocities 500 and 700.
QStringList startWrites(int motor, int x, int y)
{
    return {write("M0_VMAX", motor, 0),
            write("M1_VMAX", motor, 0),
            write("RAMPMODE", motor, 0),
            write("M1_XTARGET", motor, inRegister(y)),
            write("RAMPMODE", motor, 768),
            write("M0_XTARGET", motor, inRegister(x)),
            write("M1_XTARGET", motor, inRegister(y)),
            write("M0_VMAX", motor, 500),
            write("M1_VMAX", motor, 700)};
}

QStringList without(QStringList lines, const QString &name)
{
    const QStringList dropped = lines.filter(QLatin1Char(' ') + name + QLatin1Char(' '));
    for (const QString &line : dropped)
        lines.removeAll(line);
    return lines;
}

/// A rig with velocities 500 and 700 and a fractional target, quiet so far.
struct ReadyRig : ToolRig
{
    explicit ReadyRig(unsigned char motor = 0, const RigGaps &gaps = {})
        : ToolRig(motor, gaps)
    {
        setRegister(QStringLiteral("M0_VMAX"), 500);
        setRegister(QStringLiteral("M1_VMAX"), 700);
        setTarget(QPointF(100.9, -200.9));
        takeCalls();
    }

    QToolButton *start() const { return widget<QToolButton>("pbStart"); }
    bool isTargetNew() const { return target()->property("NewPt").toBool(); }

    /// Draws an actual position without a move.
    void standAt(int x, int y)
    {
        link.position0 = x;
        link.position1 = y;
        tool()->showPlugin();
        updateTick();
        QCOMPARE(actual()->at(0), QPointF(x, y));
        takeCalls();
    }
};

/// Gone in one of the ways in which a binding can go.
void takeAway(ReadyRig &rig, const QString &name, bool isField)
{
    if (isField)
        delete rig.registerWidget(qPrintable(name));
    else
        delete rig.module()->getIcProduct(0)->getRegisterByName(name, true);
}

} // namespace

class ToolMotionTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void startWritesInItsOrder_data();
    void startWritesInItsOrder();
    void startReadsBothVelocitiesFirst();
    void startRunsBothTimersPrecisely();
    void startBeginsWithTheUpdateTimerAndEndsWithTheSampleTimer();
    void startRestartsTheUpdateTimer();
    void startReadsTheTargetAfreshForEachWrite();
    void startDropsSamplesThatAreNotDrawn();
    void startDisablesItsButton();
    void aVelocityOfZeroIsWrittenBack();
    void aFailedReadWritesZeroBack();
    void failedWritesDoNotStopTheStart();
    void startWithoutABindingDoesTheRest_data();
    void startWithoutABindingDoesTheRest();
    void startWithoutAModuleOnlyRunsTheTimers();
    void farTargetsAreSaturated();
    void stopDrivesToTheActualPosition();
    void stopWhereTheTargetIsRaisesNoFlag();
    void stopLeavesTimersAndButtonAlone();
    void stopEndsAFlightPath();
    void stopWithoutABindingDoesTheRest_data();
    void stopWithoutABindingDoesTheRest();
    void theToolMayGoInAnyRequestOfAStart();
    void theToolMayGoInAnyRequestOfAStop();
    void thePrototypeTakesEveryCallQuietly();
};

void ToolMotionTest::startWritesInItsOrder_data()
{
    QTest::addColumn<int>("motor");
    QTest::newRow("motor 0") << 0;
    QTest::newRow("motor 1") << 1;
    QTest::newRow("motor 200") << 200;
}

void ToolMotionTest::startWritesInItsOrder()
{
    QFETCH(int, motor);
    ReadyRig rig(static_cast<unsigned char>(motor));
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.takeWrites(), startWrites(motor, 100, -200));
    // The marker follows its register, so a second start finds whole numbers.
    QCOMPARE(rig.target()->at(0), QPointF(100, -200));
}

void ToolMotionTest::startReadsBothVelocitiesFirst()
{
    ReadyRig rig(1);
    rig.call("on_pbStart_clicked");
    const QStringList calls = rig.takeCalls();
    QCOMPARE(calls.mid(0, 3),
             QStringList({QStringLiteral("read M0_VMAX m1"), QStringLiteral("read M1_VMAX m1"),
                          QStringLiteral("write M0_VMAX m1 0")}));
    QVERIFY(calls.filter(QStringLiteral("user")).isEmpty());
}

void ToolMotionTest::startRunsBothTimersPrecisely()
{
    ReadyRig rig;
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(rig.tool());
    for (const auto &timer : timers)
        QCOMPARE(timer.timerType, Qt::PreciseTimer);
}

void ToolMotionTest::startBeginsWithTheUpdateTimerAndEndsWithTheSampleTimer()
{
    ReadyRig rig;
    int requests = 0;
    bool isInOrder = true;
    rig.link.onRequest = [&] {
        ++requests;
        isInOrder = isInOrder && rig.timerIntervals() == QList<int>{50} && rig.start()->isEnabled();
    };
    rig.call("on_pbStart_clicked");
    rig.link.onRequest = nullptr;
    QVERIFY(requests >= 11);
    QVERIFY(isInOrder);
}

void ToolMotionTest::startRestartsTheUpdateTimer()
{
    ReadyRig rig;
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
}

void ToolMotionTest::startReadsTheTargetAfreshForEachWrite()
{
    ReadyRig rig;
    rig.link.onRequest = [&] {
        if (rig.link.calls.constLast().endsWith(QLatin1String(" m0 768")))
            rig.setTarget(QPointF(31, 32));
    };
    rig.call("on_pbStart_clicked");
    QStringList wanted = startWrites(0, 31, 32);
    wanted[3] = write("M1_XTARGET", 0, inRegister(-200));
    QCOMPARE(rig.takeWrites(), wanted);
}

void ToolMotionTest::startDropsSamplesThatAreNotDrawn()
{
    ReadyRig rig;
    rig.link.position0 = 50;
    rig.tool()->showPlugin();
    rig.call("on_pbStart_clicked");
    rig.takeCalls();
    rig.updateTick();
    QCOMPARE(rig.actual()->at(0), QPointF(0, 0));
    QVERIFY(rig.takeCalls().contains(QStringLiteral("read M0_VACTUAL m0")));
}

void ToolMotionTest::startDisablesItsButton()
{
    ReadyRig rig;
    rig.show();
    rig.takeCalls();
    QTest::mouseClick(rig.start(), Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
    QCOMPARE(rig.takeWrites().size(), 9);
    QVERIFY(!rig.start()->isEnabled());
    QTest::mouseClick(rig.start(), Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
    QCOMPARE(rig.takeWrites(), QStringList());
}

void ToolMotionTest::aVelocityOfZeroIsWrittenBack()
{
    ReadyRig rig;
    rig.setRegister(QStringLiteral("M0_VMAX"), 0);
    rig.call("on_pbStart_clicked");
    QStringList wanted = startWrites(0, 100, -200);
    wanted[7] = write("M0_VMAX", 0, 0);
    QCOMPARE(rig.takeWrites(), wanted);
    QVERIFY(!rig.start()->isEnabled());
}

void ToolMotionTest::aFailedReadWritesZeroBack()
{
    ReadyRig rig;
    rig.link.failReads = true;
    rig.call("on_pbStart_clicked");
    QStringList wanted = startWrites(0, 100, -200);
    wanted[7] = write("M0_VMAX", 0, 0);
    wanted[8] = write("M1_VMAX", 0, 0);
    QCOMPARE(rig.takeWrites(), wanted);
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
}

void ToolMotionTest::failedWritesDoNotStopTheStart()
{
    ReadyRig rig;
    rig.link.failWrites = true;
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.takeWrites(), startWrites(0, 100, -200));
    QVERIFY(!rig.start()->isEnabled());
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
}

void ToolMotionTest::startWithoutABindingDoesTheRest_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isField");
    for (const char *name : {"M0_VMAX", "M1_VMAX", "RAMPMODE"})
        QTest::newRow(name) << QString(QLatin1String(name)) << false;
    for (const char *name : {"M0_XTARGET", "M1_XTARGET"})
        QTest::newRow(name) << QString(QLatin1String(name)) << true;
}

void ToolMotionTest::startWithoutABindingDoesTheRest()
{
    QFETCH(QString, name);
    QFETCH(bool, isField);
    RigGaps gaps;
    gaps.registers.insert(name);
    ReadyRig never(0, gaps);
    ReadyRig noMore(0);
    takeAway(noMore, name, isField);
    ReadyRig noRegister(0);
    takeAway(noRegister, name, false);
    const QStringList wanted = without(startWrites(0, 100, -200), name);
    for (ReadyRig *rig : {&never, &noMore, &noRegister}) {
        rig->call("on_pbStart_clicked");
        QCOMPARE(rig->takeWrites(), wanted);
        QVERIFY(!rig->start()->isEnabled());
        QCOMPARE(rig->timerIntervals(), QList<int>({0, 50}));
    }
}

void ToolMotionTest::startWithoutAModuleOnlyRunsTheTimers()
{
    RigGaps gaps;
    gaps.hasModule = false;
    ReadyRig rig(0, gaps);
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.takeCalls(), QStringList());
    QVERIFY(!rig.start()->isEnabled());
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
    rig.call("on_pbStop_clicked");
    rig.sampleTick();
    rig.updateTick();
}

void ToolMotionTest::farTargetsAreSaturated()
{
    ReadyRig rig;
    rig.setTarget(QPointF(1e300, -1e300));
    rig.call("on_pbStart_clicked");
    QStringList wanted = startWrites(0, highest, lowest);
    const QStringList written = rig.takeWrites();
    QCOMPARE(written.mid(0, 4), wanted.mid(0, 4));
    QCOMPARE(written.at(5), wanted.at(5));
}

void ToolMotionTest::stopDrivesToTheActualPosition()
{
    ReadyRig rig(1);
    rig.standAt(131, -77);
    rig.call("on_pbStop_clicked");
    QCOMPARE(rig.takeCalls(),
             QStringList({write("M0_XTARGET", 1, 131), write("M1_XTARGET", 1, inRegister(-77)),
                          write("RAMPMODE", 1, 0)}));
    QCOMPARE(rig.target()->pointsVector(), QVector<QPointF>{QPointF(131, -77)});
    QVERIFY(rig.isTargetNew());
    QCOMPARE(rig.limits(), QStringLiteral("-256 256 -256 256"));
}

void ToolMotionTest::stopWhereTheTargetIsRaisesNoFlag()
{
    ReadyRig rig;
    rig.setTarget(QPointF(131, -77));
    rig.standAt(131, -77);
    QVERIFY(!rig.isTargetNew());
    rig.call("on_pbStop_clicked");
    QVERIFY(!rig.isTargetNew());
    QCOMPARE(rig.takeWrites().size(), 3);
}

void ToolMotionTest::stopLeavesTimersAndButtonAlone()
{
    ReadyRig rig;
    rig.show();
    rig.call("on_pbStart_clicked");
    rig.takeCalls();
    QTest::mouseClick(rig.widget<QToolButton>("pbStop"), Qt::LeftButton);
    QCOMPARE(rig.takeWrites().size(), 3);
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
    QVERIFY(!rig.start()->isEnabled());
}

void ToolMotionTest::stopEndsAFlightPath()
{
    ReadyRig rig;
    rig.start()->setProperty("RunFp", 3);
    rig.call("on_pbStop_clicked");
    QCOMPARE(rig.start()->property("RunFp"), QVariant(12));
}

void ToolMotionTest::stopWithoutABindingDoesTheRest_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"M0_XTARGET", "M1_XTARGET", "RAMPMODE"})
        QTest::newRow(name) << QString(QLatin1String(name));
}

void ToolMotionTest::stopWithoutABindingDoesTheRest()
{
    QFETCH(QString, name);
    RigGaps gaps;
    gaps.registers.insert(name);
    ReadyRig never(0, gaps);
    ReadyRig noMore;
    takeAway(noMore, name, name.contains(QLatin1String("TARGET")));
    const QStringList wanted = without(
        {write("M0_XTARGET", 0, 0), write("M1_XTARGET", 0, 0), write("RAMPMODE", 0, 0)}, name);
    for (ReadyRig *rig : {&never, &noMore}) {
        rig->call("on_pbStop_clicked");
        QCOMPARE(rig->takeWrites(), wanted);
        QCOMPARE(rig->start()->property("RunFp"), QVariant(12));
    }
}

void ToolMotionTest::theToolMayGoInAnyRequestOfAStart()
{
    int requests = 0;
    for (int last = 1; last <= requests + 1; ++last) {
        ReadyRig rig;
        int count = 0;
        rig.link.onRequest = [&] {
            if (++count == last)
                rig.deleteTool();
        };
        rig.start()->click();
        if (last == 1)
            QCOMPARE(count, 1);
        if (rig.tool())
            break;
        requests = qMax(requests, last);
        QCOMPARE(count, last);
    }
    QVERIFY2(requests >= 11, qPrintable(QString::number(requests)));
}

void ToolMotionTest::theToolMayGoInAnyRequestOfAStop()
{
    for (int last = 1; last <= 3; ++last) {
        ReadyRig rig;
        int count = 0;
        rig.link.onRequest = [&] {
            if (++count == last)
                rig.deleteTool();
        };
        rig.widget<QToolButton>("pbStop")->click();
        QVERIFY(!rig.tool());
        QCOMPARE(count, last);
    }
}

void ToolMotionTest::thePrototypeTakesEveryCallQuietly()
{
    ToolsInterface *prototype = toolPrototype();
    QVERIFY(QMetaObject::invokeMethod(prototype, "setTargetPosition", Q_ARG(QPointF, QPointF(1, 2)),
                                      Q_ARG(QPoint, QPoint(1, 1))));
    for (const char *slot : {"on_spM0min_valueChanged", "on_spM0max_valueChanged",
                             "on_spM1min_valueChanged", "on_spM1max_valueChanged"})
        QVERIFY(QMetaObject::invokeMethod(prototype, slot, Q_ARG(int, 7)));
    for (const char *slot :
         {"on_pbStart_clicked", "on_pbStop_clicked", "on_btnClearTraces_clicked", "zoom"})
        QVERIFY(QMetaObject::invokeMethod(prototype, slot));
    prototype->showPlugin();
    QVERIFY(QAbstractEventDispatcher::instance()->registeredTimers(prototype).isEmpty());
}

QTEST_MAIN(ToolMotionTest)
#include "tst_tool_motion.moc"
