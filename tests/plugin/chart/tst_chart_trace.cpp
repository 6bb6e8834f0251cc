#include "HeadlessPlatform.h"
#include "ZoomRig.h"

#include <QSignalSpy>
#include <QSpinBox>

#include <cmath>

using QtCharts::QValueAxis;

namespace {

/// What a redraw along an axis is to leave, worked out point by point.
QVector<QPointF> redrawn(const ToolRig &rig, const QVector<QPointF> &history, bool alongX,
                         double min, double max)
{
    const auto pixel = [&](const QPointF &point) {
        const QPointF at = rig.chart()->mapToPosition(point, rig.trace());
        return QPointF(std::floor(at.x() + 0.5), std::floor(at.y() + 0.5));
    };
    QVector<QPointF> kept;
    QPointF previous = pixel(rig.actual()->at(0));
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
    ToolRig rig;
    for (QValueAxis *axis : {rig.axisX(), rig.axisY()}) {
        rig.setLimits(-8192, 8192, -8192, 8192);
        axis->setRange(min, max);
        const bool isX = axis == rig.axisX();
        const QString changed = QStringLiteral("%1 %2").arg(lower).arg(upper);
        const QString kept = QStringLiteral("-8192 8192");
        QCOMPARE(rig.limits(),
                 isX ? changed + QLatin1Char(' ') + kept : kept + QLatin1Char(' ') + changed);
        QCOMPARE(axis->min(), double(lower));
        QCOMPARE(axis->max(), double(upper));
    }
}

void ChartTraceTest::theUpperLimitIsSetBeforeTheLowerOne()
{
    // The one that is set first is held back by the other's old value.
    ToolRig rig;
    rig.axisX()->setRange(-20000, -10000);
    rig.axisY()->setRange(-20000, -10000);
    QCOMPARE(rig.limits(), QStringLiteral("-20224 256 -20224 256"));
    QCOMPARE(rig.axisX()->max(), 256.0);
    ToolRig other;
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
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.driveAround(3000);
    (alongX ? rig.axisX() : rig.axisY())->setRange(min, max);
    const QVector<QPointF> wanted = redrawn(rig, rig.history, alongX, min, max);
    QVERIFY(!wanted.isEmpty() && wanted.size() < rig.history.size());
    QCOMPARE(rig.trace()->pointsVector(), wanted);
}

void ChartTraceTest::aSkippedPointDoesNotCountAsDrawn()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.start();
    rig.sampled(100, 100);
    rig.sampled(3000, 100);
    rig.sampled(100, 101);
    rig.sampled(-500, 0);
    rig.updateTick();
    // The second point is out of the range, and the third on the first one's pixel.
    rig.axisX()->setRange(-2048, 2048);
    QCOMPARE(rig.pixelOf(QPointF(100, 100)), rig.pixelOf(QPointF(100, 101)));
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>({{100, 100}, {-500, 0}}));
}

void ChartTraceTest::pointsOnTheBoundsStay()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.start();
    rig.sampled(-1024, 0);
    rig.sampled(-1025, 500);
    rig.sampled(1024, 1024);
    rig.sampled(1025, -1025);
    rig.sampled(0, 0);
    rig.updateTick();
    rig.axisX()->setRange(-1024, 1024);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>({{-1024, 0}, {1024, 1024}, {0, 0}}));
    rig.axisX()->setRange(-4096, 4096);
    rig.axisY()->setRange(-1024, 1024);
    QCOMPARE(rig.trace()->pointsVector(),
             QVector<QPointF>({{-1024, 0}, {-1025, 500}, {1024, 1024}, {0, 0}}));
}

void ChartTraceTest::theFirstPointIsComparedWithTheActualPosition()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.start();
    rig.sampled(1000, 1000);
    rig.sampled(0, 500);
    rig.sampled(1000, 1001);
    rig.updateTick();
    rig.axisX()->setRange(-8192, 8192);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>({{0, 500}, {1000, 1001}}));
}

void ChartTraceTest::anEmptyRedrawKeepsTheLastDrawnPoint()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.axisX()->setRange(-8192, 8192);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>{QPointF(0, 0)});
    rig.start();
    rig.sampled(1000, 1000);
    rig.sampled(1001, 1000);
    rig.updateTick();
    // The actual position is on the pixel of the last drawn point, which is not the same point.
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>({{0, 0}, {1000, 1000}}));
    rig.axisX()->setRange(-3072, 512);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>{QPointF(1000, 1000)});
    rig.axisY()->setRange(-3072, 512);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>{QPointF(1000, 1000)});
}

void ChartTraceTest::pointsOutsideComeBack()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.driveAround(3000);
    rig.axisX()->setRange(-512, 512);
    const int few = rig.trace()->count();
    rig.axisX()->setRange(-4096, 4096);
    QVERIFY(rig.trace()->count() > few);
    QCOMPARE(rig.trace()->pointsVector(), redrawn(rig, rig.history, true, -4096, 4096));
}

void ChartTraceTest::aRedrawChangesTheTraceOnce()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.driveAround(3000);
    QSignalSpy replaced(rig.trace(), &QtCharts::QXYSeries::pointsReplaced);
    QSignalSpy added(rig.trace(), &QtCharts::QXYSeries::pointAdded);
    QSignalSpy removed(rig.trace(), &QtCharts::QXYSeries::pointRemoved);
    QSignalSpy removedMany(rig.trace(), &QtCharts::QXYSeries::pointsRemoved);
    rig.axisX()->setRange(-2048, 2048);
    QCOMPARE(replaced.count(), 1);
    QCOMPARE(added.count() + removed.count() + removedMany.count(), 0);
}

void ChartTraceTest::clearLeavesTheActualPosition()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.driveAround(3000);
    QVERIFY(rig.trace()->count() > 10);
    QTest::mouseClick(rig.widget<QPushButton>("btnClearTraces"), Qt::LeftButton);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>{rig.actual()->at(0)});
    QCOMPARE(rig.trace()->at(0), rig.history.constLast());
}

void ChartTraceTest::clearForgetsTheHistory()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.driveAround(3000);
    rig.call("on_btnClearTraces_clicked");
    rig.out()->click();
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>{rig.actual()->at(0)});
}

void ChartTraceTest::clearPutsTheActualPositionIntoTheHistory()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.driveAround(3000);
    rig.call("on_btnClearTraces_clicked");
    const QPointF cleared = rig.actual()->at(0);
    const QPointF moved(-2500, -2500);
    rig.sample(-2500, -2500);
    rig.updateTick();
    rig.axisX()->setRange(-8192, 8192);
    QCOMPARE(rig.trace()->pointsVector(), QVector<QPointF>({cleared, moved}));
}

void ChartTraceTest::everyClickClears()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    auto *button = rig.widget<QPushButton>("btnClearTraces");
    rig.start();
    for (int i = 1; i <= 3; ++i) {
        rig.sample(1000 * i, 500);
        rig.sample(0, -500 * i);
        rig.updateTick();
        QVERIFY(rig.trace()->count() > 1);
        button->click();
        QCOMPARE(rig.trace()->count(), 1);
    }
}

QTEST_MAIN(ChartTraceTest)
#include "tst_chart_trace.moc"
