#include "HeadlessPlatform.h"
#include "PollRig.h"

#include "XmlRegisterWidget.h"

#include <QRandomGenerator>
#include <QSpinBox>
#include <QTest>

using QtCharts::QXYSeries;

namespace {

const QStringList positionRequest{QStringLiteral("user 0xFD")};

} // namespace

class ToolPollingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void aToolIsIdleUntilShown();
    void showPollsEveryHundredMilliseconds();
    void showDrawsWhereTheAxesAre();
    void aSampleWithoutAnEventIsNeitherComparedNorKept();
    void hideStopsTheUpdateTimerOnly();
    void aHiddenMoveIsDrawnAndEndedAfterTheNextShow();
    void showDuringAMovePollsSlowlyUntilItsEnd();
    void positionsAreDecoded_data();
    void positionsAreDecoded();
    void theRequestIsExact();
    void circularModeIsOnDuringTheRequestOnly();
    void aFailedRequestIsDecodedAllTheSame();
    void aSampleTickDoesNothingElse();
    void repeatedPositionsAddNothing();
    void returningPositionsAreKept();
    void eventsOfOtherTimersAreIgnored();
    void aStoppedTimersEventIsIgnored();
    void aNewTargetIsWrittenOnce();
    void aTargetPickedDuringAMoveIsWritten();
    void theTargetWidgetsStayQuietWhileItIsWritten();
    void aTargetIsWrittenAsFarAsThereAreWidgets_data();
    void aTargetIsWrittenAsFarAsThereAreWidgets();
    void farTargetsEndAtTheFieldsRange();
    void theToolMayGoInASampleRequest();
    void theToolMayGoInAnyRequestOfAnUpdateTick();
    void garbageFromTheLinkIsSurvived();
    void deletingAMovingToolWritesNothing();
};

void ToolPollingTest::aToolIsIdleUntilShown()
{
    PollRig rig;
    QCOMPARE(rig.timerIntervals(), QList<int>());
    QVERIFY(!rig.takeCalls().contains(positionRequest.at(0)));
}

void ToolPollingTest::showPollsEveryHundredMilliseconds()
{
    PollRig rig;
    rig.takeCalls();
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(rig.tool()).at(0).timerType,
             Qt::PreciseTimer);
    QCOMPARE(rig.takeCalls().filter(positionRequest.at(0)).size(), 1);
}

void ToolPollingTest::showDrawsWhereTheAxesAre()
{
    PollRig rig;
    rig.link.position0 = 120;
    rig.link.position1 = -45;
    rig.tool()->showPlugin();
    QCOMPARE(rig.actual()->at(0), QPointF(0, 0));
    rig.updateTick();
    QCOMPARE(rig.actual()->pointsVector(), QVector<QPointF>{QPointF(120, -45)});
}

void ToolPollingTest::aSampleWithoutAnEventIsNeitherComparedNorKept()
{
    PollRig rig;
    rig.makeWide();
    for (int i = 0; i < 2; ++i) {
        rig.link.position0 = 2000;
        QVERIFY(QMetaObject::invokeMethod(rig.tool(), "timerEvent", Q_ARG(QTimerEvent *, nullptr)));
        QSignalSpy drawn(rig.actual(), &QXYSeries::pointReplaced);
        rig.updateTick();
        QCOMPARE(drawn.count(), 1);
        rig.updateTick();
        QCOMPARE(drawn.count(), 1);
    }
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>({{0, 0}, {2000, 0}}));
    // A redraw shows that the history is empty: no more than the last drawn point is left.
    rig.axisX()->setRange(-4096, 4096);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>{QPointF(2000, 0)});
    rig.start();
    rig.sample(100, 0);
    rig.updateTick();
    rig.axisX()->setRange(-8192, 8192);
    QCOMPARE(rig.trace()->count(), 1);
}

void ToolPollingTest::hideStopsTheUpdateTimerOnly()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.tool()->hidePlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>());
    rig.tool()->showPlugin();
    rig.start();
    rig.tool()->hidePlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>{0});
    QVERIFY(!rig.startButton()->isEnabled());
    QCOMPARE(rig.takeCalls(), QStringList());
}

void ToolPollingTest::aHiddenMoveIsDrawnAndEndedAfterTheNextShow()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    rig.tool()->hidePlugin();
    rig.sample(1000, 0);
    rig.sample(2000, 500);
    QCOMPARE(rig.trace()->count(), 1);
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 100}));
    rig.updateTick();
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>({{0, 0}, {1000, 0}, {2000, 500}}));
    QVERIFY(!rig.startButton()->isEnabled());
    rig.updateTick();
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
}

void ToolPollingTest::showDuringAMovePollsSlowlyUntilItsEnd()
{
    PollRig rig;
    rig.start();
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
    rig.tool()->showPlugin();
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 100}));
    QSignalSpy drawn(rig.actual(), &QXYSeries::pointReplaced);
    rig.updateTick();
    QCOMPARE(drawn.count(), 1);
    rig.updateTick();
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
}

void ToolPollingTest::positionsAreDecoded_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::newRow("origin") << 0 << 0;
    QTest::newRow("minus one") << -1 << -1;
    QTest::newRow("minus one and one") << -1 << 1;
    QTest::newRow("one and minus one") << 1 << -1;
    QTest::newRow("lowest") << -8388608 << -8388608;
    QTest::newRow("highest") << 8388607 << 8388607;
    QTest::newRow("every byte") << 0x123456 << 0x789ABC - 0x1000000 + 0x800000;
    QTest::newRow("low bytes") << 0xFF << 0x80;
    QTest::newRow("middle bytes") << 0xFF00 << 0x8000;
    QTest::newRow("high bytes") << 0x7F0000 << -0x800000;
}

void ToolPollingTest::positionsAreDecoded()
{
    QFETCH(int, x);
    QFETCH(int, y);
    PollRig rig;
    rig.link.position0 = x;
    rig.link.position1 = y;
    rig.tool()->showPlugin();
    rig.updateTick();
    QCOMPARE(rig.actual()->at(0), QPointF(x, y));
    rig.call("on_pbStart_clicked");
    rig.sample(5, 6);
    rig.sample(x, y);
    rig.updateTick();
    QCOMPARE(rig.actual()->at(0), QPointF(x, y));
}

void ToolPollingTest::theRequestIsExact()
{
    for (int motor : {0, 1, 200}) {
        PollRig rig(static_cast<unsigned char>(motor));
        rig.start();
        rig.sampleTick();
        QCOMPARE(rig.takeCalls(), positionRequest);
        QCOMPARE(rig.link.userRequest.left(4).toHex(), QByteArray("0048fd00"));
    }
}

void ToolPollingTest::circularModeIsOnDuringTheRequestOnly()
{
    PollRig rig;
    QList<bool> during;
    rig.link.onRequest = [&] {
        if (rig.link.calls.constLast() == positionRequest.at(0))
            during << rig.module()->isCircularMode();
        else
            QVERIFY(!rig.module()->isCircularMode());
    };
    rig.tool()->showPlugin();
    QCOMPARE(during, QList<bool>{true});
    QVERIFY(!rig.module()->isCircularMode());
    rig.call("on_pbStart_clicked");
    rig.sampleTick();
    rig.link.failUserFunctions = true;
    rig.sampleTick();
    QCOMPARE(during, QList<bool>({true, true, true}));
    QVERIFY(!rig.module()->isCircularMode());
}

void ToolPollingTest::aFailedRequestIsDecodedAllTheSame()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    rig.link.failUserFunctions = true;
    rig.sampleTick();
    rig.updateTick();
    // The request's own bytes, 00 48 and a reply of 0.
    QCOMPARE(rig.actual()->at(0), QPointF(0x4800, 0));
}

void ToolPollingTest::aSampleTickDoesNothingElse()
{
    PollRig rig;
    rig.makeWide();
    rig.setTarget(QPointF(50, 50));
    rig.start();
    rig.setTarget(QPointF(60, 60));
    ChangeCount trace(rig.trace());
    ChangeCount actual(rig.actual());
    rig.sample(1000, 1000);
    rig.sample(3000, 1000);
    QCOMPARE(rig.takeCalls(), positionRequest + positionRequest);
    QCOMPARE(trace.take() + actual.take(), 0);
    QVERIFY(rig.isTargetNew());
}

void ToolPollingTest::repeatedPositionsAddNothing()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    rig.sample(0, 0);
    rig.sample(0, 0);
    ChangeCount trace(rig.trace());
    ChangeCount actual(rig.actual());
    rig.setVelocities(1, 1);
    rig.updateTick();
    QCOMPARE(trace.take() + actual.take(), 0);
    rig.sample(2000, 0);
    rig.sample(2000, 0);
    rig.updateTick();
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>({{0, 0}, {2000, 0}}));
    rig.sample(2000, 0);
    actual.take();
    rig.updateTick();
    QCOMPARE(actual.take(), 0);
    // Only the one new position is in the history, and that is where the axes are.
    rig.axisX()->setRange(-4096, 4096);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>{QPointF(2000, 0)});
}

void ToolPollingTest::returningPositionsAreKept()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    for (int x : {2000, 0, 2000, -2000})
        rig.sample(x, 0);
    rig.updateTick();
    QCOMPARE(rig.trace()->pointsVector(),
             QVector<QPointF>({{0, 0}, {2000, 0}, {0, 0}, {2000, 0}, {-2000, 0}}));
    // The history begins with the first sampled position; the origin was there before.
    rig.axisX()->setRange(-4096, 4096);
    QCOMPARE(rig.trace()->pointsVector(),
             QVector<QPointF>({{2000, 0}, {0, 0}, {2000, 0}, {-2000, 0}}));
}

void ToolPollingTest::eventsOfOtherTimersAreIgnored()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.start();
    rig.setTarget(QPointF(9, 9));
    const int other = rig.tool()->startTimer(100000);
    for (int id : {other, 0, -1, 424242})
        rig.deliver(id);
    QCOMPARE(rig.takeCalls(), QStringList());
    QVERIFY(rig.isTargetNew());
    QVERIFY(rig.timerId(100000) == other);
}

void ToolPollingTest::aStoppedTimersEventIsIgnored()
{
    PollRig rig;
    rig.tool()->showPlugin();
    const int updateId = rig.timerId(100);
    rig.setTarget(QPointF(9, 9));
    rig.tool()->hidePlugin();
    rig.takeCalls();
    rig.deliver(updateId);
    rig.deliver(0);
    QCOMPARE(rig.takeCalls(), QStringList());
    QVERIFY(rig.isTargetNew());
}

void ToolPollingTest::aNewTargetIsWrittenOnce()
{
    PollRig rig(1);
    rig.tool()->showPlugin();
    rig.updateTick();
    rig.takeCalls();
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), QStringList());
    rig.setTarget(QPointF(100.9, -1.9));
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), QStringList({QStringLiteral("write M0_XTARGET m1 100"),
                                           QStringLiteral("write M1_XTARGET m1 16777215")}));
    QCOMPARE(rig.target()->property("NewPt"), QVariant(false));
    rig.updateTick();
    QCOMPARE(rig.takeCalls(), QStringList());
}

void ToolPollingTest::aTargetPickedDuringAMoveIsWritten()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.start();
    rig.sample(10, 10);
    rig.setTarget(QPointF(70, 80));
    rig.takeCalls();
    rig.updateTick();
    QCOMPARE(rig.takeWrites(), QStringList({QStringLiteral("write M0_XTARGET m0 70"),
                                            QStringLiteral("write M1_XTARGET m0 80")}));
    QCOMPARE(rig.timerIntervals(), QList<int>({0, 50}));
    QVERIFY(!rig.startButton()->isEnabled());
}

void ToolPollingTest::theTargetWidgetsStayQuietWhileItIsWritten()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.setTarget(QPointF(70.5, -80.5));
    ChangeCount target(rig.target());
    QSignalSpy m0(rig.registerWidget("M0_XTARGET"), &XmlRegisterWidget::valueChanged);
    QSignalSpy m1(rig.registerWidget("M1_XTARGET"), &XmlRegisterWidget::valueChanged);
    bool areBoth = true;
    rig.link.onRequest = [&] {
        areBoth = areBoth && rig.registerWidget("M0_XTARGET")->signalsBlocked() &&
                  rig.registerWidget("M1_XTARGET")->signalsBlocked();
    };
    rig.updateTick();
    rig.link.onRequest = nullptr;
    QVERIFY(areBoth);
    QCOMPARE(m0.count() + m1.count(), 0);
    QCOMPARE(target.take(), 0);
    QCOMPARE(rig.target()->at(0), QPointF(70.5, -80.5));
    QVERIFY(!rig.registerWidget("M0_XTARGET")->signalsBlocked());
    QVERIFY(!rig.registerWidget("M1_XTARGET")->signalsBlocked());
    rig.registerWidget("M0_XTARGET")->setAndUpdateValue(55);
    QCOMPARE(rig.target()->at(0), QPointF(55, -80.5));
}

void ToolPollingTest::aTargetIsWrittenAsFarAsThereAreWidgets_data()
{
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QStringList>("writes");
    const QString m0 = QStringLiteral("write M0_XTARGET m0 70");
    const QString m1 = QStringLiteral("write M1_XTARGET m0 80");
    QTest::newRow("axis 0") << QStringLiteral("M0_XTARGET") << QStringList{m1};
    QTest::newRow("axis 1") << QStringLiteral("M1_XTARGET") << QStringList{m0};
}

void ToolPollingTest::aTargetIsWrittenAsFarAsThereAreWidgets()
{
    QFETCH(QString, missing);
    QFETCH(QStringList, writes);
    RigGaps gaps;
    gaps.fields.insert(missing);
    PollRig never(0, gaps);
    PollRig noMore;
    delete noMore.registerWidget(qPrintable(missing));
    for (PollRig *rig : {&never, &noMore}) {
        rig->tool()->showPlugin();
        rig->setTarget(QPointF(70, 80));
        rig->takeCalls();
        rig->updateTick();
        QCOMPARE(rig->takeWrites(), writes);
        QVERIFY(!rig->isTargetNew());
    }
}

void ToolPollingTest::farTargetsEndAtTheFieldsRange()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.setTarget(QPointF(1e300, -1e300));
    rig.takeCalls();
    rig.updateTick();
    QCOMPARE(rig.takeWrites(), QStringList({QStringLiteral("write M0_XTARGET m0 8388607"),
                                            QStringLiteral("write M1_XTARGET m0 8388608")}));
}

void ToolPollingTest::theToolMayGoInASampleRequest()
{
    for (bool isShow : {true, false}) {
        PollRig rig;
        if (!isShow)
            rig.start();
        rig.link.onRequest = [&] { rig.deleteTool(); };
        if (isShow)
            rig.tool()->showPlugin();
        else
            rig.sampleTick();
        QVERIFY(!rig.tool());
    }
}

void ToolPollingTest::theToolMayGoInAnyRequestOfAnUpdateTick()
{
    for (int last = 1; last <= 2; ++last) {
        PollRig rig;
        rig.start();
        rig.sample(5000, 5000);
        rig.setTarget(QPointF(77, 78));
        int count = 0;
        rig.link.onRequest = [&] {
            if (++count == last)
                rig.deleteTool();
        };
        rig.updateTick();
        QVERIFY(!rig.tool());
        QCOMPARE(count, last);
    }
}

void ToolPollingTest::garbageFromTheLinkIsSurvived()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    QRandomGenerator random(20201);
    for (int i = 0; i < 200; ++i) {
        rig.link.failUserFunctions = random.bounded(4) == 0;
        rig.link.failReads = random.bounded(4) == 0;
        rig.link.failWrites = random.bounded(4) == 0;
        rig.setVelocities(random.bounded(3), static_cast<int>(random.generate()));
        rig.sample(static_cast<int>(random.generate()), static_cast<int>(random.generate()));
        if (i % 5 == 0) {
            rig.updateTick();
            rig.call("on_pbStart_clicked");
        }
        if (i % 17 == 0)
            rig.call("on_pbStop_clicked");
    }
    const QPointF actual = rig.actual()->at(0);
    QVERIFY(qAbs(actual.x()) <= 8388608 && qAbs(actual.y()) <= 8388608);
    QCOMPARE(rig.axisX()->max(), double(rig.widget<QSpinBox>("spM0max")->value()));
}

void ToolPollingTest::deletingAMovingToolWritesNothing()
{
    PollRig rig;
    rig.tool()->showPlugin();
    rig.setTarget(QPointF(4, 4));
    rig.start();
    rig.sample(10, 20);
    rig.takeCalls();
    rig.deleteTool();
    QCOMPARE(rig.takeCalls(), QStringList());
}

QTEST_MAIN(ToolPollingTest)
#include "tst_tool_polling.moc"
