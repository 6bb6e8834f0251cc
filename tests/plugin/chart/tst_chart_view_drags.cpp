#include "ChartViewRig.h"
#include "ToolRig.h"

#include <QTest>

#include <limits>

class ChartViewDragsTest : public ChartViewRig
{
    Q_OBJECT

private slots:
    void hoveringDoesNothing();
    void aCtrlDragPicksNothing();
    void aDragIsPinnedToTheInset_data();
    void aDragIsPinnedToTheInset();
    void aDragReportsOnlyAnOutwardPush_data();
    void aDragReportsOnlyAnOutwardPush();
    void eachMoveOfADragIsMeasuredFromTheOneBefore();
    void aTinyPlotPinsToItsLeftAndTopInset();
    void aPlotOfHardlyAnySizeIsSurvived();
    void settingThePressPositionIsNoGesture();
};

void ChartViewDragsTest::hoveringDoesNothing()
{
    const QPoint start = f->inside();
    f->press(start);
    f->release(start);
    f->spy.clear();
    const QPoint outside(static_cast<int>(f->plot().right()) + 12, start.y());
    f->drag(outside, Qt::NoButton);
    QVERIFY(f->spy.isEmpty());
    f->drag(outside);
    QCOMPARE(f->takeOuter(), QPoint(outside.x() - start.x(), 0));
}

void ChartViewDragsTest::aCtrlDragPicksNothing()
{
    const QPoint start = f->inside();
    f->press(start);
    f->spy.clear();
    const QPoint outside(static_cast<int>(f->plot().right()) + 12, start.y());
    {
        const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
        f->drag(outside);
    }
    QVERIFY(f->spy.isEmpty());
    f->drag(outside);
    QCOMPARE(f->takeOuter(), QPoint(outside.x() - start.x(), 0));
}

void ChartViewDragsTest::aDragIsPinnedToTheInset_data()
{
    QTest::addColumn<QPoint>("fromCentre");
    QTest::newRow("inside") << QPoint(30, 20);
    QTest::newRow("right") << QPoint(900, 0);
    QTest::newRow("left") << QPoint(-900, 0);
    QTest::newRow("above") << QPoint(0, -900);
    QTest::newRow("below") << QPoint(0, 900);
    QTest::newRow("corner") << QPoint(-900, 900);
}

void ChartViewDragsTest::aDragIsPinnedToTheInset()
{
    QFETCH(QPoint, fromCentre);
    const QRectF inset = f->plot().adjusted(10, 10, -10, -10);
    const QPoint to = f->inside() + fromCentre;
    QPointF pinned = to;
    if (fromCentre.x() != 30) {
        pinned.rx() = fromCentre.x() > 0   ? inset.right()
                      : fromCentre.x() < 0 ? inset.left()
                                           : to.x();
        pinned.ry() = fromCentre.y() > 0   ? inset.bottom()
                      : fromCentre.y() < 0 ? inset.top()
                                           : to.y();
    }
    // From outside on purpose: a drag need not begin in the plot.
    f->press(QPoint(1, 1));
    f->drag(to, Qt::RightButton);
    QCOMPARE(f->takeValue(), f->pickedAt(pinned));
}

void ChartViewDragsTest::aDragReportsOnlyAnOutwardPush_data()
{
    // Pixels beyond the right (left, lower, upper) edge of the plot, inward when negative.
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<bool>("isReported");
    QTest::newRow("inside outward") << -30 << -20 << false;
    QTest::newRow("into the band") << -30 << 5 << false;
    QTest::newRow("to just before its end") << -30 << 9 << false;
    QTest::newRow("to its end") << -30 << 10 << true;
    QTest::newRow("from its end on") << 10 << 11 << true;
    QTest::newRow("far out, farther") << 40 << 55 << true;
    QTest::newRow("far out, back") << 40 << 30 << false;
    QTest::newRow("far out, back in") << 40 << -30 << false;
    QTest::newRow("far out, at rest") << 40 << 40 << false;
}

void ChartViewDragsTest::aDragReportsOnlyAnOutwardPush()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(bool, isReported);
    const QRect plot(100, 80, 400, 300);
    f->chart()->setPlotArea(plot);
    QTRY_COMPARE(f->plot(), QRectF(plot));
    const QPoint c = f->inside();
    const int right = plot.x() + plot.width();
    const int bottom = plot.y() + plot.height();
    const int push = isReported ? to - from : 0;
    f->press(QPoint(right + from, c.y()));
    f->spy.clear();
    f->drag(QPoint(right + to, c.y()));
    QCOMPARE(f->takeOuter(), QPoint(push, 0));
    f->press(QPoint(plot.x() - from, c.y()));
    f->spy.clear();
    f->drag(QPoint(plot.x() - to, c.y()));
    QCOMPARE(f->takeOuter(), QPoint(-push, 0));
    f->press(QPoint(c.x(), bottom + from));
    f->spy.clear();
    f->drag(QPoint(c.x(), bottom + to));
    QCOMPARE(f->takeOuter(), QPoint(0, push));
    f->press(QPoint(c.x(), plot.y() - from));
    f->spy.clear();
    f->drag(QPoint(c.x(), plot.y() - to));
    QCOMPARE(f->takeOuter(), QPoint(0, -push));
    // Both directions at once, each by its own rule: out to the right, at rest vertically.
    f->press(QPoint(right + from, plot.y() - 20));
    f->spy.clear();
    f->drag(QPoint(right + to, plot.y() - 25));
    QCOMPARE(f->takeOuter(), QPoint(push, -5));
}

void ChartViewDragsTest::eachMoveOfADragIsMeasuredFromTheOneBefore()
{
    const QPoint outside(static_cast<int>(f->plot().right()) + 12, f->inside().y());
    f->press(outside);
    f->drag(outside + QPoint(4, 0));
    QCOMPARE(f->takeOuter(), QPoint(4, 0));
    f->drag(QPointF(outside) + QPointF(6.5, 0));
    QCOMPARE(f->takeOuter(), QPoint(3, 0));
    f->drag(QPointF(outside) + QPointF(8, 0));
    QCOMPARE(f->takeOuter(), QPoint(1, 0));
}

void ChartViewDragsTest::aTinyPlotPinsToItsLeftAndTopInset()
{
    f->chart()->setPlotArea(QRectF(200, 150, 15, 12));
    QTRY_COMPARE(f->plot(), QRectF(200, 150, 15, 12));
    f->press(QPoint(1, 1));
    f->drag(QPoint(190, 160));
    QCOMPARE(f->takeValue(), f->pickedAt(QPointF(210, 160)));
    f->spy.clear();
    f->drag(QPoint(300, 300));
    QCOMPARE(f->takeValue(), f->pickedAt(QPointF(210, 160)));
}

void ChartViewDragsTest::aPlotOfHardlyAnySizeIsSurvived()
{
    // No area at all would mean a plot laid out by the chart.
    const QRectF plot(200, 150, 1e-300, 1e-300);
    f->chart()->setPlotArea(plot);
    QTRY_COMPARE(f->plot(), plot);
    f->press(QPoint(1, 1));
    QVERIFY(f->spy.isEmpty());
    f->drag(QPoint(2001, 1901));
    QCOMPARE(f->takeOuter(), QPoint(2000, 1900));
}

void ChartViewDragsTest::settingThePressPositionIsNoGesture()
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    const QPoint outside(static_cast<int>(f->plot().right()) + 12, f->inside().y());
    f->press(outside);
    // The differences wrap around.
    for (const QPoint p : {QPoint(lowest, highest), QPoint(highest, lowest), QPoint(5, 7)})
        f->view.setPos(p);
    QVERIFY(f->spy.isEmpty());
    f->drag(outside + QPoint(2, 0));
    QCOMPARE(f->takeOuter(), QPoint(2, 0));
}

QTEST_MAIN(ChartViewDragsTest)
#include "tst_chart_view_drags.moc"
