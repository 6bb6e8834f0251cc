#include "HeadlessPlatform.h"
#include "PixelMap.h"
#include "Positions.h"

#include <QTest>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

#include <cmath>
#include <cstring>
#include <random>

using drive::PixelMap;

namespace {

constexpr double farthest = 8388608;

bool fitsInt(const QPointF &point)
{
    constexpr double bound = 2147483646;
    return std::abs(point.x()) < bound && std::abs(point.y()) < bound;
}

bool isClose(double a, double b)
{
    return std::abs(a - b) <= 1e-11 * (2000 + std::abs(b));
}

/// Two series with the same axes in a chart that is on screen.
struct MapRig
{
    MapRig()
    {
        auto *first = new QtCharts::QScatterSeries;
        chart()->addSeries(first);
        chart()->addSeries(series);
        chart()->addAxis(x, Qt::AlignBottom);
        chart()->addAxis(y, Qt::AlignLeft);
        for (QtCharts::QXYSeries *all :
             std::initializer_list<QtCharts::QXYSeries *>{series, first}) {
            all->append(0, 0);
            all->attachAxis(x);
            all->attachAxis(y);
        }
    }

    QtCharts::QChart *chart() const { return view.chart(); }
    PixelMap map() const { return PixelMap::of(chart(), series); }

    double between(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(random);
    }
    /// Whole, fractional, or on the grid of the limits.
    double anyValue(double size)
    {
        const double value = between(-size, size);
        switch (random() % 4) {
        case 0:
            return value;
        case 1:
            return 256 * std::round(value / 256);
        default:
            return std::round(value);
        }
    }
    /// Limits as the spin boxes hold them.
    void setWholeRange(QtCharts::QValueAxis *axis)
    {
        const double size = std::exp2(between(9, 22));
        const double low = 256 * std::round(between(-size, size) / 256);
        axis->setRange(low, low + 512 + 256 * std::round(between(0, size) / 256));
    }
    void setAnyRange(QtCharts::QValueAxis *axis)
    {
        const double size = std::exp2(between(9, 23));
        const double a = anyValue(size);
        double b = anyValue(size);
        if (std::abs(a - b) < 1)
            b = a + 512;
        axis->setRange(qMin(a, b), qMax(a, b));
    }
    void setAnyPlotArea()
    {
        const auto length = [&](double value) { return random() % 2 ? value : std::round(value); };
        chart()->setPlotArea(QRectF(length(between(0, 150)), length(between(0, 150)),
                                    length(between(20, 2000)), length(between(20, 2000))));
    }

    /// How the map and the chart disagree for a number of points; nothing when they do not. The
    /// pixels have to be the same, the doubles to the last bit or but for rounding.
    QString disagreement(bool toTheLastBit, int points = 40)
    {
        const PixelMap now = map();
        for (int i = 0; i < points; ++i) {
            const QPointF value(anyValue(farthest), anyValue(std::exp2(between(0, 23))));
            const QPointF mapped = now.position(value);
            const QPointF wanted = chart()->mapToPosition(value, series);
            const bool agrees =
                toTheLastBit ? std::memcmp(&mapped, &wanted, sizeof mapped) == 0
                             : isClose(mapped.x(), wanted.x()) && isClose(mapped.y(), wanted.y());
            if (!agrees || (fitsInt(wanted) && drive::rounded(mapped) != wanted.toPoint()))
                return QStringLiteral("%1 %2 in %3..%4 %5..%6: %7 %8 and not %9 %10")
                    .arg(value.x(), 0, 'g', 17)
                    .arg(value.y(), 0, 'g', 17)
                    .arg(x->min(), 0, 'g', 17)
                    .arg(x->max(), 0, 'g', 17)
                    .arg(y->min(), 0, 'g', 17)
                    .arg(y->max(), 0, 'g', 17)
                    .arg(mapped.x(), 0, 'g', 17)
                    .arg(mapped.y(), 0, 'g', 17)
                    .arg(wanted.x(), 0, 'g', 17)
                    .arg(wanted.y(), 0, 'g', 17);
        }
        return {};
    }

    QtCharts::QChartView view;
    QtCharts::QLineSeries *series = new QtCharts::QLineSeries;
    QtCharts::QValueAxis *x = new QtCharts::QValueAxis;
    QtCharts::QValueAxis *y = new QtCharts::QValueAxis;
    std::mt19937 random{4711};
};

} // namespace

class PixelMapTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void itAgreesToTheLastBitForWholeLimits_data();
    void itAgreesToTheLastBitForWholeLimits();
    void itAgreesForAnyLimits();
    void itAgreesWithALaidOutChart();
    void itAgreesBetweenTheChangesOfBothAxes();
    void itAgreesAtTheExtremes_data();
    void itAgreesAtTheExtremes();
    void aMapOutlivesTheRangeItWasTakenIn();
    void mapsOfTheSameMomentAreEqual();
    void itAgreesWithoutAPlotArea_data();
    void itAgreesWithoutAPlotArea();
    void itAgreesWithAChartTooSmallForAPlotArea();
};

void PixelMapTest::itAgreesToTheLastBitForWholeLimits_data()
{
    QTest::addColumn<bool>("wholePlotArea");
    QTest::newRow("plot area of whole pixels") << true;
    QTest::newRow("plot area between pixels") << false;
}

void PixelMapTest::itAgreesToTheLastBitForWholeLimits()
{
    QFETCH(bool, wholePlotArea);
    MapRig rig;
    for (int i = 0; i < 4000; ++i) {
        if (i % 7 == 0)
            rig.setAnyPlotArea();
        if (wholePlotArea)
            rig.chart()->setPlotArea(rig.chart()->plotArea().toAlignedRect());
        rig.setWholeRange(i % 2 ? rig.x : rig.y);
        QCOMPARE(rig.disagreement(true), QString());
    }
}

void PixelMapTest::itAgreesForAnyLimits()
{
    MapRig rig;
    for (int i = 0; i < 4000; ++i) {
        if (i % 7 == 0)
            rig.setAnyPlotArea();
        rig.setAnyRange(i % 2 ? rig.x : rig.y);
        QCOMPARE(rig.disagreement(false), QString());
    }
}

void PixelMapTest::itAgreesWithALaidOutChart()
{
    MapRig rig;
    rig.view.show();
    for (int i = 0; i < 60; ++i) {
        rig.view.resize(int(rig.between(300, 1500)), int(rig.between(300, 1000)));
        rig.setWholeRange(rig.x);
        rig.setWholeRange(rig.y);
        QCoreApplication::sendPostedEvents();
        QVERIFY(rig.chart()->plotArea().width() > 50);
        QCOMPARE(rig.disagreement(true), QString());
    }
}

void PixelMapTest::itAgreesBetweenTheChangesOfBothAxes()
{
    MapRig rig;
    int handled = 0;
    QString first;
    const auto check = [&] {
        ++handled;
        if (first.isEmpty())
            first = rig.disagreement(false, 10);
    };
    connect(rig.x, &QtCharts::QValueAxis::rangeChanged, this, check);
    connect(rig.y, &QtCharts::QValueAxis::rangeChanged, this, check);
    for (int i = 0; i < 500; ++i) {
        rig.setAnyPlotArea();
        rig.setAnyRange(rig.x);
        rig.setAnyRange(rig.y);
        const QRectF plot = rig.chart()->plotArea();
        switch (i % 4) {
        case 0:
            rig.chart()->zoomIn();
            break;
        case 1:
            rig.chart()->zoomOut();
            break;
        case 2:
            rig.chart()->zoomIn(plot.adjusted(3.25, 7.5, -plot.width() / 3, -1.125));
            break;
        default:
            rig.chart()->scroll(rig.between(-50, 50), rig.between(-50, 50));
            break;
        }
        check();
        QCOMPARE(first, QString());
    }
    QVERIFY(handled > 2000);
}

void PixelMapTest::itAgreesAtTheExtremes_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::newRow("everything") << -farthest << farthest;
    QTest::newRow("twice everything") << -2 * farthest << 2 * farthest;
    QTest::newRow("least span at the left end") << -farthest << -farthest + 512;
    QTest::newRow("least span at the right end") << farthest - 512 << farthest;
    QTest::newRow("least span around zero") << -256.0 << 256.0;
    QTest::newRow("half the least span") << -128.0 << 128.0;
    QTest::newRow("from zero") << 0.0 << farthest;
    QTest::newRow("to zero") << -farthest << 0.0;
    QTest::newRow("thirds") << -1000 / 3.0 << 10000 / 3.0;
}

void PixelMapTest::itAgreesAtTheExtremes()
{
    QFETCH(double, min);
    QFETCH(double, max);
    MapRig rig;
    for (int i = 0; i < 50; ++i) {
        rig.setAnyPlotArea();
        rig.x->setRange(min, max);
        rig.setAnyRange(rig.y);
        QCOMPARE(rig.disagreement(false, 100), QString());
        rig.y->setRange(min, max);
        rig.setAnyRange(rig.x);
        QCOMPARE(rig.disagreement(false, 100), QString());
    }
}

void PixelMapTest::aMapOutlivesTheRangeItWasTakenIn()
{
    MapRig rig;
    rig.setAnyPlotArea();
    rig.x->setRange(-1024, 3072);
    rig.y->setRange(-512, 512);
    const QPointF value(777, -99);
    const QPointF before = rig.chart()->mapToPosition(value, rig.series);
    const PixelMap map = rig.map();
    rig.chart()->zoomIn();
    QVERIFY(rig.chart()->mapToPosition(value, rig.series) != before);
    QCOMPARE(map.position(value), before);
}

void PixelMapTest::mapsOfTheSameMomentAreEqual()
{
    MapRig rig;
    rig.setAnyPlotArea();
    rig.x->setRange(-1024, 3072);
    const PixelMap map = rig.map();
    QVERIFY(map == rig.map());
    rig.x->setRange(-1024, 3328);
    QVERIFY(!(map == rig.map()));
    rig.x->setRange(-1024, 3072);
    QVERIFY(map == rig.map());
    rig.y->setRange(-5, 6);
    QVERIFY(!(map == rig.map()));
    const PixelMap other = rig.map();
    rig.chart()->setPlotArea(rig.chart()->plotArea().translated(0, 1));
    QVERIFY(!(other == rig.map()));
}

void PixelMapTest::itAgreesWithoutAPlotArea_data()
{
    QTest::addColumn<QRectF>("area");
    QTest::newRow("none") << QRectF();
    QTest::newRow("a point") << QRectF(100, 100, 0, 0);
    QTest::newRow("an upright line") << QRectF(100, 100, 0, 50);
    QTest::newRow("a level line") << QRectF(100, 100, 50, 0);
}

void PixelMapTest::itAgreesWithoutAPlotArea()
{
    QFETCH(QRectF, area);
    MapRig rig;
    rig.x->setRange(-1024, 3072);
    rig.y->setRange(-512, 512);
    for (const QRectF &before : {QRectF(), QRectF(20, 20, 500, 400)}) {
        rig.chart()->setPlotArea(before);
        rig.chart()->setPlotArea(area);
        QCOMPARE(rig.disagreement(true), QString());
    }
}

void PixelMapTest::itAgreesWithAChartTooSmallForAPlotArea()
{
    MapRig rig;
    rig.setAnyRange(rig.x);
    rig.view.resize(1, 1);
    rig.view.show();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(rig.disagreement(false), QString());
}

QTEST_MAIN(PixelMapTest)
#include "tst_pixel_map.moc"
