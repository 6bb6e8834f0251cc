#include "PositionRig.h"

#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

class PositionModeMovesTest : public PositionRig
{
    Q_OBJECT

private slots:
    void positionAndVelocityAreLive();
    void hidingPausesTheReads();
    void aSilentModuleIsReported();

    void goSetsTheModeAndThenTheTarget();
    void theTypedTargetCountsWithoutReturn();
    void stopBrakesAndComesBack();
    void stopWithoutAPositionHoldsBothAxes();
    void aStopThatDoesNotGoOutIsReported();
};

void PositionModeMovesTest::positionAndVelocityAreLive()
{
    QCOMPARE(timerInterval(tool), 100);
    QCOMPARE(label(QStringLiteral("lbPosition")), QStringLiteral("0 units"));
    record();
    link.values.insert(0x10, -123);
    link.values.insert(0x11, 456);
    tick();
    QCOMPARE(label(QStringLiteral("lbPosition")), QStringLiteral("-123 units"));
    QCOMPARE(label(QStringLiteral("lbVelocity")), QStringLiteral("456 units/s"));
    QCOMPARE(link.takeCalls(),
             QStringList({QStringLiteral("read 0x10 m0"), QStringLiteral("read 0x11 m0")}));
}

void PositionModeMovesTest::hidingPausesTheReads()
{
    tool->hidePlugin();
    QCOMPARE(timerInterval(tool), -1);
    record();
    // What was written from outside the host meanwhile is read when the tool comes back.
    link.values.insert(0x13, 4);
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), 100);
    QCOMPARE(box(QStringLiteral("M0_VMAX"))->value(), 4);
}

void PositionModeMovesTest::aSilentModuleIsReported()
{
    record();
    link.values.insert(0x10, 17);
    tick();
    link.failReads = true;
    link.takeCalls();
    tick();
    QCOMPARE(link.takeCalls().size(), 1);
    QCOMPARE(status(), QStringLiteral("The module gives no answer."));
    auto *const position = tool->findChild<QLabel *>(QStringLiteral("lbPosition"));
    QCOMPARE(position->text(), QStringLiteral("17 units"));
    QCOMPARE(position->foregroundRole(), QPalette::PlaceholderText);
    link.failReads = false;
    tick();
    QCOMPARE(status(), QString());
    QCOMPARE(position->foregroundRole(), QPalette::WindowText);
}

void PositionModeMovesTest::goSetsTheModeAndThenTheTarget()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    record();
    click(QStringLiteral("pbGo"));
    QCOMPARE(link.takeCalls(), QStringList({QStringLiteral("write 0x01 m0 0"),
                                            QStringLiteral("write 0x12 m0 5000")}));
    link.failWrites = true;
    click(QStringLiteral("pbGo"));
    QCOMPARE(link.takeCalls().size(), 1);
    QVERIFY2(status().contains(QStringLiteral("not started")), qPrintable(status()));
}

void PositionModeMovesTest::theTypedTargetCountsWithoutReturn()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("-800"), false);
    // A shortcut presses the button without taking the focus from the box.
    QTest::keyClick(tool->findChild<QPushButton *>(QStringLiteral("pbGo")), Qt::Key_Space);
    runUntilStandstill();
    QCOMPARE(simulated->chip().position(0), -800);
    QCOMPARE(simulated->chip().position(1), 0);
    QCOMPARE(label(QStringLiteral("lbPosition")), QStringLiteral("-800 units"));
}

void PositionModeMovesTest::stopBrakesAndComesBack()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    click(QStringLiteral("pbGo"));
    run(1000);
    const int stoppedAt = simulated->chip().position(0);
    QVERIFY(stoppedAt > 500 && stoppedAt < 4000);
    click(QStringLiteral("pbStop"));
    QCOMPARE(simulated->registerValue(QStringLiteral("RAMPMODE")).value_or(-1), 0);
    QCOMPARE(simulated->registerValue(QStringLiteral("M0_XTARGET")).value_or(-1), stoppedAt);
    run(300);
    QVERIFY(simulated->chip().position(0) > stoppedAt);
    runUntilStandstill();
    QCOMPARE(simulated->chip().position(0), stoppedAt);
    QCOMPARE(box(QStringLiteral("spTarget"))->value(), 5000);
    QVERIFY(!profile().isEmpty());
}

void PositionModeMovesTest::stopWithoutAPositionHoldsBothAxes()
{
    record();
    link.failReads = true;
    click(QStringLiteral("pbStop"));
    QCOMPARE(link.takeCalls(),
             QStringList({QStringLiteral("read 0x10 m0"), QStringLiteral("write 0x01 m0 1")}));
    QVERIFY2(status().contains(QStringLiteral("both axes are held")), qPrintable(status()));
}

void PositionModeMovesTest::aStopThatDoesNotGoOutIsReported()
{
    record();
    link.failWrites = true;
    click(QStringLiteral("pbStop"));
    QVERIFY2(status().contains(QStringLiteral("not stopped")), qPrintable(status()));
    link.failReads = true;
    click(QStringLiteral("pbStop"));
    QVERIFY2(status().contains(QStringLiteral("not stopped")), qPrintable(status()));
}

QTEST_MAIN(PositionModeMovesTest)
#include "tst_position_mode_moves.moc"
