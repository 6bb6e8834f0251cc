#include "HeadlessPlatform.h"
#include "PollBench.h"

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
    PollBench bench;
    QCOMPARE(bench.timerIntervals(), QList<int>());
    QVERIFY(!bench.takeCalls().contains(positionRequest.at(0)));
}

void ToolPollingTest::showPollsEveryHundredMilliseconds()
{
    PollBench bench;
    bench.takeCalls();
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(bench.tool()).at(0).timerType,
             Qt::PreciseTimer);
    QCOMPARE(bench.takeCalls().filter(positionRequest.at(0)).size(), 1);
}

void ToolPollingTest::showDrawsWhereTheAxesAre()
{
    PollBench bench;
    bench.link.position0 = 120;
    bench.link.position1 = -45;
    bench.tool()->showPlugin();
    QCOMPARE(bench.actual()->at(0), QPointF(0, 0));
    bench.updateTick();
    QCOMPARE(bench.actual()->pointsVector(), QVector<QPointF>{QPointF(120, -45)});
}

void ToolPollingTest::aSampleWithoutAnEventIsNeitherComparedNorKept()
{
    PollBench bench;
    bench.makeWide();
    for (int i = 0; i < 2; ++i) {
        bench.link.position0 = 2000;
        QVERIFY(
            QMetaObject::invokeMethod(bench.tool(), "timerEvent", Q_ARG(QTimerEvent *, nullptr)));
        QSignalSpy drawn(bench.actual(), &QXYSeries::pointReplaced);
        bench.updateTick();
        QCOMPARE(drawn.count(), 1);
        bench.updateTick();
        QCOMPARE(drawn.count(), 1);
    }
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>({{0, 0}, {2000, 0}}));
    // A redraw shows that the history is empty: no more than the last drawn point is left.
    bench.axisX()->setRange(-4096, 4096);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>{QPointF(2000, 0)});
    bench.start();
    bench.sample(100, 0);
    bench.updateTick();
    bench.axisX()->setRange(-8192, 8192);
    QCOMPARE(bench.trace()->count(), 1);
}

void ToolPollingTest::hideStopsTheUpdateTimerOnly()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.tool()->hidePlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>());
    bench.tool()->showPlugin();
    bench.start();
    bench.tool()->hidePlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>{0});
    QVERIFY(!bench.startButton()->isEnabled());
    QCOMPARE(bench.takeCalls(), QStringList());
}

void ToolPollingTest::aHiddenMoveIsDrawnAndEndedAfterTheNextShow()
{
    PollBench bench;
    bench.makeWide();
    bench.start();
    bench.tool()->hidePlugin();
    bench.sample(1000, 0);
    bench.sample(2000, 500);
    QCOMPARE(bench.trace()->count(), 1);
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>({0, 100}));
    bench.updateTick();
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>({{0, 0}, {1000, 0}, {2000, 500}}));
    QVERIFY(!bench.startButton()->isEnabled());
    bench.updateTick();
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
}

void ToolPollingTest::showDuringAMovePollsSlowlyUntilItsEnd()
{
    PollBench bench;
    bench.start();
    QCOMPARE(bench.timerIntervals(), QList<int>({0, 50}));
    bench.tool()->showPlugin();
    QCOMPARE(bench.timerIntervals(), QList<int>({0, 100}));
    QSignalSpy drawn(bench.actual(), &QXYSeries::pointReplaced);
    bench.updateTick();
    QCOMPARE(drawn.count(), 1);
    bench.updateTick();
    QVERIFY(bench.startButton()->isEnabled());
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
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
    PollBench bench;
    bench.link.position0 = x;
    bench.link.position1 = y;
    bench.tool()->showPlugin();
    bench.updateTick();
    QCOMPARE(bench.actual()->at(0), QPointF(x, y));
    bench.call("on_pbStart_clicked");
    bench.sample(5, 6);
    bench.sample(x, y);
    bench.updateTick();
    QCOMPARE(bench.actual()->at(0), QPointF(x, y));
}

void ToolPollingTest::theRequestIsExact()
{
    for (int motor : {0, 1, 200}) {
        PollBench bench(static_cast<unsigned char>(motor));
        bench.start();
        bench.sampleTick();
        QCOMPARE(bench.takeCalls(), positionRequest);
        QCOMPARE(bench.link.userRequest.left(4).toHex(), QByteArray("0048fd00"));
    }
}

void ToolPollingTest::circularModeIsOnDuringTheRequestOnly()
{
    PollBench bench;
    QList<bool> during;
    bench.link.onRequest = [&] {
        if (bench.link.calls.constLast() == positionRequest.at(0))
            during << bench.module()->isCircularMode();
        else
            QVERIFY(!bench.module()->isCircularMode());
    };
    bench.tool()->showPlugin();
    QCOMPARE(during, QList<bool>{true});
    QVERIFY(!bench.module()->isCircularMode());
    bench.call("on_pbStart_clicked");
    bench.sampleTick();
    bench.link.failUserFunctions = true;
    bench.sampleTick();
    QCOMPARE(during, QList<bool>({true, true, true}));
    QVERIFY(!bench.module()->isCircularMode());
}

void ToolPollingTest::aFailedRequestIsDecodedAllTheSame()
{
    PollBench bench;
    bench.makeWide();
    bench.start();
    bench.link.failUserFunctions = true;
    bench.sampleTick();
    bench.updateTick();
    // The request's own bytes, 00 48 and a reply of 0.
    QCOMPARE(bench.actual()->at(0), QPointF(0x4800, 0));
}

void ToolPollingTest::aSampleTickDoesNothingElse()
{
    PollBench bench;
    bench.makeWide();
    bench.setTarget(QPointF(50, 50));
    bench.start();
    bench.setTarget(QPointF(60, 60));
    ChangeCount trace(bench.trace());
    ChangeCount actual(bench.actual());
    bench.sample(1000, 1000);
    bench.sample(3000, 1000);
    QCOMPARE(bench.takeCalls(), positionRequest + positionRequest);
    QCOMPARE(trace.take() + actual.take(), 0);
    QVERIFY(bench.isTargetNew());
}

void ToolPollingTest::repeatedPositionsAddNothing()
{
    PollBench bench;
    bench.makeWide();
    bench.start();
    bench.sample(0, 0);
    bench.sample(0, 0);
    ChangeCount trace(bench.trace());
    ChangeCount actual(bench.actual());
    bench.setVelocities(1, 1);
    bench.updateTick();
    QCOMPARE(trace.take() + actual.take(), 0);
    bench.sample(2000, 0);
    bench.sample(2000, 0);
    bench.updateTick();
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>({{0, 0}, {2000, 0}}));
    bench.sample(2000, 0);
    actual.take();
    bench.updateTick();
    QCOMPARE(actual.take(), 0);
    // Only the one new position is in the history, and that is where the axes are.
    bench.axisX()->setRange(-4096, 4096);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>{QPointF(2000, 0)});
}

void ToolPollingTest::returningPositionsAreKept()
{
    PollBench bench;
    bench.makeWide();
    bench.start();
    for (int x : {2000, 0, 2000, -2000})
        bench.sample(x, 0);
    bench.updateTick();
    QCOMPARE(bench.trace()->pointsVector(),
             QVector<QPointF>({{0, 0}, {2000, 0}, {0, 0}, {2000, 0}, {-2000, 0}}));
    // The history begins with the first sampled position; the origin was there before.
    bench.axisX()->setRange(-4096, 4096);
    QCOMPARE(bench.trace()->pointsVector(),
             QVector<QPointF>({{2000, 0}, {0, 0}, {2000, 0}, {-2000, 0}}));
}

void ToolPollingTest::eventsOfOtherTimersAreIgnored()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.start();
    bench.setTarget(QPointF(9, 9));
    const int other = bench.tool()->startTimer(100000);
    for (int id : {other, 0, -1, 424242})
        bench.deliver(id);
    QCOMPARE(bench.takeCalls(), QStringList());
    QVERIFY(bench.isTargetNew());
    QVERIFY(bench.timerId(100000) == other);
}

void ToolPollingTest::aStoppedTimersEventIsIgnored()
{
    PollBench bench;
    bench.tool()->showPlugin();
    const int updateId = bench.timerId(100);
    bench.setTarget(QPointF(9, 9));
    bench.tool()->hidePlugin();
    bench.takeCalls();
    bench.deliver(updateId);
    bench.deliver(0);
    QCOMPARE(bench.takeCalls(), QStringList());
    QVERIFY(bench.isTargetNew());
}

void ToolPollingTest::aNewTargetIsWrittenOnce()
{
    PollBench bench(1);
    bench.tool()->showPlugin();
    bench.updateTick();
    bench.takeCalls();
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), QStringList());
    bench.setTarget(QPointF(100.9, -1.9));
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), QStringList({QStringLiteral("write M0_XTARGET m1 100"),
                                             QStringLiteral("write M1_XTARGET m1 16777215")}));
    QCOMPARE(bench.target()->property("NewPt"), QVariant(false));
    bench.updateTick();
    QCOMPARE(bench.takeCalls(), QStringList());
}

void ToolPollingTest::aTargetPickedDuringAMoveIsWritten()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.start();
    bench.sample(10, 10);
    bench.setTarget(QPointF(70, 80));
    bench.takeCalls();
    bench.updateTick();
    QCOMPARE(bench.takeWrites(), QStringList({QStringLiteral("write M0_XTARGET m0 70"),
                                              QStringLiteral("write M1_XTARGET m0 80")}));
    QCOMPARE(bench.timerIntervals(), QList<int>({0, 50}));
    QVERIFY(!bench.startButton()->isEnabled());
}

void ToolPollingTest::theTargetWidgetsStayQuietWhileItIsWritten()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.setTarget(QPointF(70.5, -80.5));
    ChangeCount target(bench.target());
    QSignalSpy m0(bench.registerWidget("M0_XTARGET"), &XmlRegisterWidget::valueChanged);
    QSignalSpy m1(bench.registerWidget("M1_XTARGET"), &XmlRegisterWidget::valueChanged);
    bool areBoth = true;
    bench.link.onRequest = [&] {
        areBoth = areBoth && bench.registerWidget("M0_XTARGET")->signalsBlocked() &&
                  bench.registerWidget("M1_XTARGET")->signalsBlocked();
    };
    bench.updateTick();
    bench.link.onRequest = nullptr;
    QVERIFY(areBoth);
    QCOMPARE(m0.count() + m1.count(), 0);
    QCOMPARE(target.take(), 0);
    QCOMPARE(bench.target()->at(0), QPointF(70.5, -80.5));
    QVERIFY(!bench.registerWidget("M0_XTARGET")->signalsBlocked());
    QVERIFY(!bench.registerWidget("M1_XTARGET")->signalsBlocked());
    bench.registerWidget("M0_XTARGET")->setAndUpdateValue(55);
    QCOMPARE(bench.target()->at(0), QPointF(55, -80.5));
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
    BenchGaps gaps;
    gaps.fields.insert(missing);
    PollBench never(0, gaps);
    PollBench noMore;
    delete noMore.registerWidget(qPrintable(missing));
    for (PollBench *bench : {&never, &noMore}) {
        bench->tool()->showPlugin();
        bench->setTarget(QPointF(70, 80));
        bench->takeCalls();
        bench->updateTick();
        QCOMPARE(bench->takeWrites(), writes);
        QVERIFY(!bench->isTargetNew());
    }
}

void ToolPollingTest::farTargetsEndAtTheFieldsRange()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.setTarget(QPointF(1e300, -1e300));
    bench.takeCalls();
    bench.updateTick();
    QCOMPARE(bench.takeWrites(), QStringList({QStringLiteral("write M0_XTARGET m0 8388607"),
                                              QStringLiteral("write M1_XTARGET m0 8388608")}));
}

void ToolPollingTest::theToolMayGoInASampleRequest()
{
    for (bool isShow : {true, false}) {
        PollBench bench;
        if (!isShow)
            bench.start();
        bench.link.onRequest = [&] { bench.deleteTool(); };
        if (isShow)
            bench.tool()->showPlugin();
        else
            bench.sampleTick();
        QVERIFY(!bench.tool());
    }
}

void ToolPollingTest::theToolMayGoInAnyRequestOfAnUpdateTick()
{
    for (int last = 1; last <= 2; ++last) {
        PollBench bench;
        bench.start();
        bench.sample(5000, 5000);
        bench.setTarget(QPointF(77, 78));
        int count = 0;
        bench.link.onRequest = [&] {
            if (++count == last)
                bench.deleteTool();
        };
        bench.updateTick();
        QVERIFY(!bench.tool());
        QCOMPARE(count, last);
    }
}

void ToolPollingTest::garbageFromTheLinkIsSurvived()
{
    PollBench bench;
    bench.makeWide();
    bench.start();
    QRandomGenerator random(20201);
    for (int i = 0; i < 200; ++i) {
        bench.link.failUserFunctions = random.bounded(4) == 0;
        bench.link.failReads = random.bounded(4) == 0;
        bench.link.failWrites = random.bounded(4) == 0;
        bench.setVelocities(random.bounded(3), static_cast<int>(random.generate()));
        bench.sample(static_cast<int>(random.generate()), static_cast<int>(random.generate()));
        if (i % 5 == 0) {
            bench.updateTick();
            bench.call("on_pbStart_clicked");
        }
        if (i % 17 == 0)
            bench.call("on_pbStop_clicked");
    }
    const QPointF actual = bench.actual()->at(0);
    QVERIFY(qAbs(actual.x()) <= 8388608 && qAbs(actual.y()) <= 8388608);
    QCOMPARE(bench.axisX()->max(), double(bench.widget<QSpinBox>("spM0max")->value()));
}

void ToolPollingTest::deletingAMovingToolWritesNothing()
{
    PollBench bench;
    bench.tool()->showPlugin();
    bench.setTarget(QPointF(4, 4));
    bench.start();
    bench.sample(10, 20);
    bench.takeCalls();
    bench.deleteTool();
    QCOMPARE(bench.takeCalls(), QStringList());
}

QTEST_MAIN(ToolPollingTest)
#include "tst_tool_polling.moc"
