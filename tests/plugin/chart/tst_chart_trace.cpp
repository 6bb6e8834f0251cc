#include "HeadlessPlatform.h"
#include "ZoomBench.h"

#include <QSignalSpy>
#include <QSpinBox>

#include <cmath>

using QtCharts::QValueAxis;

namespace {

/// What a redraw along an axis is to leave, worked out point by point.
QVector<QPointF> redrawn(const ToolBench &bench, const QVector<QPointF> &history, bool alongX,
                         double min, double max)
{
    const auto pixel = [&](const QPointF &point) {
        const QPointF at = bench.chart()->mapToPosition(point, bench.trace());
        return QPointF(std::floor(at.x() + 0.5), std::floor(at.y() + 0.5));
    };
    QVector<QPointF> kept;
    QPointF previous = pixel(bench.actual()->at(0));
    for (const QPointF &point : history) {
        const QPointF at = pixel(point);
        const double coordinate = alongX ? point.x() : point.y();
        if (at != previous && coordinate >= min && coordinate <= max) {
            kept << point;
            previous = at;
        }
    }
    return kept;
}

} // namespace

class ChartTraceTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void aFractionalRangeIsTruncatedAndSnapped_data();
    void aFractionalRangeIsTruncatedAndSnapped();
    void theUpperLimitIsSetBeforeTheLowerOne();
    void aRangeChangeRedrawsTheHistory_data();
    void aRangeChangeRedrawsTheHistory();
    void aSkippedPointDoesNotCountAsDrawn();
    void pointsOnTheBoundsStay();
    void theFirstPointIsComparedWithTheActualPosition();
    void anEmptyRedrawKeepsTheLastDrawnPoint();
    void pointsOutsideComeBack();
    void aRedrawChangesTheTraceOnce();
    void clearLeavesTheActualPosition();
    void clearForgetsTheHistory();
    void clearPutsTheActualPositionIntoTheHistory();
    void everyClickClears();
};

void ChartTraceTest::aFractionalRangeIsTruncatedAndSnapped_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<int>("lower");
    QTest::addColumn<int>("upper");
    QTest::newRow("off the grid") << -1000.7 << 2000.9 << -1024 << 2048;
    QTest::newRow("truncated onto the grid") << -512.9 << 1024.9 << -512 << 1024;
    QTest::newRow("positive lower") << 767.9 << 3071.9 << 512 << 3072;
    QTest::newRow("negative upper") << -5000.0 << -1030.5 << -5120 << -768;
    QTest::newRow("less than the least span") << -0.9 << 0.9 << -512 << 512;
}

void ChartTraceTest::aFractionalRangeIsTruncatedAndSnapped()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(int, lower);
    QFETCH(int, upper);
    ToolBench bench;
    for (QValueAxis *axis : {bench.axisX(), bench.axisY()}) {
        bench.setLimits(-8192, 8192, -8192, 8192);
        axis->setRange(min, max);
        const bool isX = axis == bench.axisX();
        const QString changed = QStringLiteral("%1 %2").arg(lower).arg(upper);
        const QString kept = QStringLiteral("-8192 8192");
        QCOMPARE(bench.limits(),
                 isX ? changed + QLatin1Char(' ') + kept : kept + QLatin1Char(' ') + changed);
        QCOMPARE(axis->min(), double(lower));
        QCOMPARE(axis->max(), double(upper));
    }
}

void ChartTraceTest::theUpperLimitIsSetBeforeTheLowerOne()
{
    // The one that is set first is held back by the other's old value.
    ToolBench bench;
    bench.axisX()->setRange(-20000, -10000);
    bench.axisY()->setRange(-20000, -10000);
    QCOMPARE(bench.limits(), QStringLiteral("-20224 256 -20224 256"));
    QCOMPARE(bench.axisX()->max(), 256.0);
    ToolBench other;
    other.axisX()->setRange(10000, 20000);
    other.axisY()->setRange(10000, 20000);
    QCOMPARE(other.limits(), QStringLiteral("9984 20224 9984 20224"));
}

void ChartTraceTest::aRangeChangeRedrawsTheHistory_data()
{
    QTest::addColumn<bool>("alongX");
    QTest::addColumn<int>("min");
    QTest::addColumn<int>("max");
    QTest::newRow("x, all") << true << -8192 << 8192;
    QTest::newRow("x, a part") << true << -1024 << 2048;
    QTest::newRow("x, very wide") << true << -4194304 << 4194304;
    QTest::newRow("y, all") << false << -8192 << 8192;
    QTest::newRow("y, a part") << false << -1024 << 512;
}

void ChartTraceTest::aRangeChangeRedrawsTheHistory()
{
    QFETCH(bool, alongX);
    QFETCH(int, min);
    QFETCH(int, max);
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.driveAround(3000);
    (alongX ? bench.axisX() : bench.axisY())->setRange(min, max);
    const QVector<QPointF> wanted = redrawn(bench, bench.history, alongX, min, max);
    QVERIFY(!wanted.isEmpty() && wanted.size() < bench.history.size());
    QCOMPARE(bench.trace()->pointsVector(), wanted);
}

void ChartTraceTest::aSkippedPointDoesNotCountAsDrawn()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.start();
    bench.sampled(100, 100);
    bench.sampled(3000, 100);
    bench.sampled(100, 101);
    bench.sampled(-500, 0);
    bench.updateTick();
    // The second point is out of the range, and the third on the first one's pixel.
    bench.axisX()->setRange(-2048, 2048);
    QCOMPARE(bench.pixelOf(QPointF(100, 100)), bench.pixelOf(QPointF(100, 101)));
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>({{100, 100}, {-500, 0}}));
}

void ChartTraceTest::pointsOnTheBoundsStay()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.start();
    bench.sampled(-1024, 0);
    bench.sampled(-1025, 500);
    bench.sampled(1024, 1024);
    bench.sampled(1025, -1025);
    bench.sampled(0, 0);
    bench.updateTick();
    bench.axisX()->setRange(-1024, 1024);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>({{-1024, 0}, {1024, 1024}, {0, 0}}));
    bench.axisX()->setRange(-4096, 4096);
    bench.axisY()->setRange(-1024, 1024);
    QCOMPARE(bench.trace()->pointsVector(),
             QVector<QPointF>({{-1024, 0}, {-1025, 500}, {1024, 1024}, {0, 0}}));
}

void ChartTraceTest::theFirstPointIsComparedWithTheActualPosition()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.start();
    bench.sampled(1000, 1000);
    bench.sampled(0, 500);
    bench.sampled(1000, 1001);
    bench.updateTick();
    bench.axisX()->setRange(-8192, 8192);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>({{0, 500}, {1000, 1001}}));
}

void ChartTraceTest::anEmptyRedrawKeepsTheLastDrawnPoint()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.axisX()->setRange(-8192, 8192);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>{QPointF(0, 0)});
    bench.start();
    bench.sampled(1000, 1000);
    bench.sampled(1001, 1000);
    bench.updateTick();
    // The actual position is on the pixel of the last drawn point, which is not the same point.
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>({{0, 0}, {1000, 1000}}));
    bench.axisX()->setRange(-3072, 512);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>{QPointF(1000, 1000)});
    bench.axisY()->setRange(-3072, 512);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>{QPointF(1000, 1000)});
}

void ChartTraceTest::pointsOutsideComeBack()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.driveAround(3000);
    bench.axisX()->setRange(-512, 512);
    const int few = bench.trace()->count();
    bench.axisX()->setRange(-4096, 4096);
    QVERIFY(bench.trace()->count() > few);
    QCOMPARE(bench.trace()->pointsVector(), redrawn(bench, bench.history, true, -4096, 4096));
}

void ChartTraceTest::aRedrawChangesTheTraceOnce()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.driveAround(3000);
    QSignalSpy replaced(bench.trace(), &QtCharts::QXYSeries::pointsReplaced);
    QSignalSpy added(bench.trace(), &QtCharts::QXYSeries::pointAdded);
    QSignalSpy removed(bench.trace(), &QtCharts::QXYSeries::pointRemoved);
    QSignalSpy removedMany(bench.trace(), &QtCharts::QXYSeries::pointsRemoved);
    bench.axisX()->setRange(-2048, 2048);
    QCOMPARE(replaced.count(), 1);
    QCOMPARE(added.count() + removed.count() + removedMany.count(), 0);
}

void ChartTraceTest::clearLeavesTheActualPosition()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.driveAround(3000);
    QVERIFY(bench.trace()->count() > 10);
    QTest::mouseClick(bench.widget<QPushButton>("btnClearTraces"), Qt::LeftButton);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>{bench.actual()->at(0)});
    QCOMPARE(bench.trace()->at(0), bench.history.constLast());
}

void ChartTraceTest::clearForgetsTheHistory()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.driveAround(3000);
    bench.call("on_btnClearTraces_clicked");
    bench.out()->click();
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>{bench.actual()->at(0)});
}

void ChartTraceTest::clearPutsTheActualPositionIntoTheHistory()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.driveAround(3000);
    bench.call("on_btnClearTraces_clicked");
    const QPointF cleared = bench.actual()->at(0);
    const QPointF moved(-2500, -2500);
    bench.sample(-2500, -2500);
    bench.updateTick();
    bench.axisX()->setRange(-8192, 8192);
    QCOMPARE(bench.trace()->pointsVector(), QVector<QPointF>({cleared, moved}));
}

void ChartTraceTest::everyClickClears()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    auto *button = bench.widget<QPushButton>("btnClearTraces");
    bench.start();
    for (int i = 1; i <= 3; ++i) {
        bench.sample(1000 * i, 500);
        bench.sample(0, -500 * i);
        bench.updateTick();
        QVERIFY(bench.trace()->count() > 1);
        button->click();
        QCOMPARE(bench.trace()->count(), 1);
    }
}

QTEST_MAIN(ChartTraceTest)
#include "tst_chart_trace.moc"
