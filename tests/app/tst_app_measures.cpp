#include "LinkRates.h"
#include "MoveResult.h"
#include "PanelView.h"
#include "PathMeasure.h"

#include <QTest>

using namespace workbench;

namespace {

constexpr PanelView widest{-8388352, 8388352, -8388352, 8388352};
constexpr qint64 second = 1000000000;

MoveResult moveThrough(const QVector<Sample> &samples)
{
    MoveResult move;
    move.samples = samples;
    move.start = samples.constFirst().position;
    move.halt = samples.constLast().position;
    move.picked = move.halt;
    move.startNs = samples.constFirst().timeNs;
    return move;
}

} // namespace

Q_DECLARE_METATYPE(workbench::PanelView)

class AppMeasuresTest : public QObject
{
    Q_OBJECT

private slots:
    void distanceIsToTheNearestPointOfALeg_data();
    void distanceIsToTheNearestPointOfALeg();
    void deviationIsTheLargestOfAllSamples();
    void durationEndsWithTheArrival();
    void samplesAreCountedOverTheirTime();
    void turnedMoveIsMeasuredAgainstBothLegs();
    void stoppedMoveIsMeasuredBeforeTheStop();
    void viewIsWidenedToShowPoints_data();
    void viewIsWidenedToShowPoints();
    void closeUpIsTheSmallestViewAroundAPoint_data();
    void closeUpIsTheSmallestViewAroundAPoint();
    void ratesAreThoseBetweenTwoUpdates();
};

void AppMeasuresTest::distanceIsToTheNearestPointOfALeg_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<double>("distance");
    QTest::newRow("beside") << QPointF(5, 3) << QPointF(0, 0) << QPointF(10, 0) << 3.0;
    QTest::newRow("on it") << QPointF(5, 5) << QPointF(0, 0) << QPointF(10, 10) << 0.0;
    QTest::newRow("before it") << QPointF(-3, 4) << QPointF(0, 0) << QPointF(10, 0) << 5.0;
    QTest::newRow("behind it") << QPointF(13, 4) << QPointF(0, 0) << QPointF(10, 0) << 5.0;
    QTest::newRow("no length") << QPointF(3, 4) << QPointF(0, 0) << QPointF(0, 0) << 5.0;
}

void AppMeasuresTest::distanceIsToTheNearestPointOfALeg()
{
    QFETCH(QPointF, point);
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    QFETCH(double, distance);
    QCOMPARE(distanceFromSegment(point, a, b) + 1, distance + 1);
}

void AppMeasuresTest::deviationIsTheLargestOfAllSamples()
{
    const QVector<Sample> samples{{0, {0, 0}}, {1, {50, 7}}, {2, {60, -4}}, {3, {100, 0}}};
    QCOMPARE(largestDistanceFromPath(samples, {{0, 0}, {100, 0}}), 7.0);
    QCOMPARE(largestDistanceFromPath({}, {{0, 0}, {100, 0}}), 0.0);
    QCOMPARE(largestDeviation(moveThrough(samples)), 7.0);
}

void AppMeasuresTest::durationEndsWithTheArrival()
{
    const auto move = moveThrough({{second, {0, 0}},
                                   {2 * second, {5, 0}},
                                   {3 * second, {9, 0}},
                                   {4 * second, {9, 0}},
                                   {5 * second, {9, 0}}});
    QCOMPARE(durationSeconds(move), 2.0);
    QCOMPARE(durationSeconds(moveThrough({{second, {3, 3}}, {2 * second, {3, 3}}})), 0.0);
}

void AppMeasuresTest::samplesAreCountedOverTheirTime()
{
    QCOMPARE(samplesPerSecond(moveThrough({{0, {}}, {second / 4, {}}, {second / 2, {}}})), 4.0);
    QCOMPARE(samplesPerSecond(moveThrough({{0, {}}})), 0.0);
}

void AppMeasuresTest::turnedMoveIsMeasuredAgainstBothLegs()
{
    auto move = moveThrough({{0, {0, 0}}, {1, {100, 0}}, {2, {103, 50}}, {3, {100, 100}}});
    move.planned.kind = ScriptedMove::Turned;
    move.turnedAt = {100, 0};
    move.turnPicked = {100, 100};
    QCOMPARE(largestDeviation(move), 3.0);
}

void AppMeasuresTest::stoppedMoveIsMeasuredBeforeTheStop()
{
    auto move = moveThrough({{0, {0, 0}}, {1, {50, 2}}, {2, {60, 40}}});
    move.planned.kind = ScriptedMove::Stopped;
    move.picked = {100, 0};
    move.stopSample = 2;
    QCOMPARE(largestDeviation(move), 2.0);
}

void AppMeasuresTest::viewIsWidenedToShowPoints_data()
{
    QTest::addColumn<QVector<QPoint>>("points");
    QTest::addColumn<PanelView>("expected");
    using Points = QVector<QPoint>;
    QTest::newRow("none") << Points{} << PanelView{-256, 256, -256, 256};
    QTest::newRow("visible already") << Points{{256, -256}} << PanelView{-256, 256, -256, 256};
    QTest::newRow("right of it") << Points{{300, 0}} << PanelView{-256, 768, -256, 256};
    QTest::newRow("on all sides") << Points{{-300, 300}, {300, -300}}
                                  << PanelView{-768, 768, -768, 768};
    QTest::newRow("ends of the axes")
        << Points{{-8388608, 8388607}} << PanelView{-8388352, 256, -256, 8388352};
}

void AppMeasuresTest::viewIsWidenedToShowPoints()
{
    QFETCH(QVector<QPoint>, points);
    QFETCH(PanelView, expected);
    const PanelView wide = widened({-256, 256, -256, 256}, points, widest);
    QCOMPARE(wide.left, expected.left);
    QCOMPARE(wide.right, expected.right);
    QCOMPARE(wide.bottom, expected.bottom);
    QCOMPARE(wide.top, expected.top);
}

void AppMeasuresTest::closeUpIsTheSmallestViewAroundAPoint_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("left");
    QTest::newRow("origin") << QPoint(0, 0) << -256;
    QTest::newRow("positive") << QPoint(300, 300) << 0;
    QTest::newRow("negative") << QPoint(-1, -1) << -512;
    QTest::newRow("lower end") << QPoint(-8388352, -8388352) << -8388352;
    QTest::newRow("upper end") << QPoint(8388352, 8388352) << 8388352 - 512;
}

void AppMeasuresTest::closeUpIsTheSmallestViewAroundAPoint()
{
    QFETCH(QPoint, point);
    QFETCH(int, left);
    const PanelView close = closeUp(point, widest);
    QVERIFY(close.contains(point));
    QVERIFY((close == PanelView{left, left + 512, left, left + 512}));
}

void AppMeasuresTest::ratesAreThoseBetweenTwoUpdates()
{
    LinkRates rates;
    rates.update({10, 0, 20}, 5 * second);
    QCOMPARE(rates.requestsPerSecond(), 0.0);
    rates.update({20, 10, 1020}, 5 * second + second / 2);
    QCOMPARE(rates.requestsPerSecond(), 2040.0);
    QCOMPARE(rates.samplesPerSecond(), 2000.0);
    rates.update({20, 10, 1020}, 7 * second);
    QCOMPARE(rates.requestsPerSecond(), 0.0);
    QCOMPARE(rates.samplesPerSecond(), 0.0);
}

QTEST_APPLESS_MAIN(AppMeasuresTest)
#include "tst_app_measures.moc"
