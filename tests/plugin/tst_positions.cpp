#include "Positions.h"
#include "TraceThinning.h"

#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <limits>

namespace {

constexpr int intMin = std::numeric_limits<int>::min();
constexpr int intMax = std::numeric_limits<int>::max();
constexpr qint64 longMin = std::numeric_limits<qint64>::min();
constexpr qint64 longMax = std::numeric_limits<qint64>::max();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int rounds = 20000;

using Random = QRandomGenerator;

int saturatedModel(qint64 value)
{
    return static_cast<int>(qBound<qint64>(intMin, value, intMax));
}

/// By search, not by arithmetic on remainders.
qint64 gridValueAtOrBelow(qint64 value)
{
    while (value % 256 != 0)
        --value;
    return value;
}

/// Whole numbers, halves and neighbours of both around the interesting magnitudes.
double randomDouble(Random &random)
{
    static const double magnitudes[] = {1.0, 10.0, 1e6, 2147483647.0, 4e9};
    const double magnitude = magnitudes[random.bounded(5)];
    const double value = (random.generateDouble() - 0.5) * 2.0 * magnitude;
    switch (random.bounded(3)) {
    case 0:
        return std::floor(value) + 0.5;
    case 1:
        return std::floor(value);
    default:
        return value;
    }
}

int byteOf(int position, int index)
{
    return static_cast<int>((static_cast<unsigned int>(position) >> (8 * index)) & 0xFFu);
}

} // namespace

class PositionsTest : public QObject
{
    Q_OBJECT

private slots:
    void decodesAReply_data();
    void decodesAReply();
    void decodesWhateverWasPacked();
    void comparesPointsForgivingly_data();
    void comparesPointsForgivingly();
    void knowsFinitePoints();
    void truncatesTowardZeroAndSaturates_data();
    void truncatesTowardZeroAndSaturates();
    void roundsHalvesUpwardAndSaturates_data();
    void roundsHalvesUpwardAndSaturates();
    void conversionsAgreeWithASlowModel();
    void sumsSaturate_data();
    void sumsSaturate();
    void limitsSnapToTheGrid_data();
    void limitsSnapToTheGrid();
    void limitsOnTheGridStay();
    void snappingAgreesWithASlowModel();
    void thinningDropsPointsOnTheSamePixel_data();
    void thinningDropsPointsOnTheSamePixel();
    void thinningIgnoresRefusedPoints();
    void thinningAgreesWithASlowModel();
};

void PositionsTest::decodesAReply_data()
{
    QTest::addColumn<int>("high");
    QTest::addColumn<int>("middle");
    QTest::addColumn<int>("low");
    QTest::addColumn<unsigned int>("value");
    QTest::addColumn<QPointF>("position");

    QTest::newRow("zero") << 0 << 0 << 0 << 0u << QPointF(0, 0);
    QTest::newRow("-2 and 258") << 0xFF << 0xFF << 0 << 0xFE000102u << QPointF(-2, 258);
    QTest::newRow("-1 on axis 0") << 0xFF << 0xFF << 0 << 0xFF000000u << QPointF(-1, 0);
    QTest::newRow("-1 on axis 1") << 0 << 0 << 0 << 0x00FFFFFFu << QPointF(0, -1);
    QTest::newRow("lowest") << 0x80 << 0 << 0 << 0x00800000u << QPointF(-8388608, -8388608);
    QTest::newRow("highest") << 0x7F << 0xFF << 0 << 0xFF7FFFFFu << QPointF(8388607, 8388607);
    QTest::newRow("low byte is combined by or")
        << 0x01 << 0x02 << 0x05 << 0x06000000u << QPointF(0x010207, 0);
    QTest::newRow("top byte of the value stays out of axis 1")
        << 0 << 0 << 0 << 0x80000001u << QPointF(0x80, 1);
    QTest::newRow("request unchanged, no reply") << 0 << 0x48 << 0 << 0u << QPointF(0x4800, 0);
}

void PositionsTest::decodesAReply()
{
    QFETCH(int, high);
    QFETCH(int, middle);
    QFETCH(int, low);
    QFETCH(unsigned int, value);
    const drive::PositionReply reply{static_cast<unsigned char>(high),
                                     static_cast<unsigned char>(middle),
                                     static_cast<unsigned char>(low), value};
    QTEST(drive::decodePositions(reply), "position");
}

void PositionsTest::decodesWhateverWasPacked()
{
    Random random(1);
    for (int i = 0; i < rounds; ++i) {
        const int x = random.bounded(-8388608, 8388608);
        const int y = random.bounded(-8388608, 8388608);
        const auto low = static_cast<unsigned int>(byteOf(x, 0));
        const auto value = low << 24 | (static_cast<unsigned int>(y) & 0xFFFFFFu);
        const drive::PositionReply reply{static_cast<unsigned char>(byteOf(x, 2)),
                                         static_cast<unsigned char>(byteOf(x, 1)), 0, value};
        QCOMPARE(drive::decodePositions(reply), QPointF(x, y));
    }
}

void PositionsTest::comparesPointsForgivingly_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<bool>("same");

    QTest::newRow("equal") << 5.0 << 5.0 << true;
    QTest::newRow("whole numbers differ") << 5.0 << 6.0 << false;
    QTest::newRow("largest positions differ by one") << 8388607.0 << 8388606.0 << false;
    QTest::newRow("both zero") << 0.0 << 0.0 << true;
    QTest::newRow("both signs of zero") << 0.0 << -0.0 << true;
    QTest::newRow("at the bound from zero") << 0.0 << 1e-12 << true;
    QTest::newRow("at the bound below zero") << -1e-12 << 0.0 << true;
    QTest::newRow("past the bound from zero") << 0.0 << 1.001e-12 << false;
    QTest::newRow("small but not zero") << 1e-13 << 2e-13 << false;
    QTest::newRow("opposite signs") << 1e-13 << -1e-13 << false;
    QTest::newRow("within the scale") << 1.0 << 1.0 + 9e-13 << true;
    QTest::newRow("past the scale") << 1.0 << 1.0 + 1.1e-12 << false;
    QTest::newRow("within the scale, large") << 1e6 << 1e6 + 9e-7 << true;
    QTest::newRow("past the scale, large") << 1e6 << 1e6 + 1.1e-6 << false;
    QTest::newRow("within the scale, negative") << -1e6 << -1e6 - 9e-7 << true;
    QTest::newRow("a point that is no number") << notANumber << notANumber << false;
}

void PositionsTest::comparesPointsForgivingly()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(bool, same);
    QCOMPARE(drive::samePoint({a, 7.0}, {b, 7.0}), same);
    QCOMPARE(drive::samePoint({7.0, b}, {7.0, a}), same);
    QCOMPARE(drive::samePoint({a, a}, {b, b}), same);
    // One coordinate alone does not make two points the same.
    QVERIFY(!drive::samePoint({a, 7.0}, {b, 8.0}));
}

void PositionsTest::knowsFinitePoints()
{
    QVERIFY(drive::isFinite(QPointF(1e300, -1e300)));
    for (const double odd : {inf, -inf, notANumber}) {
        QVERIFY(!drive::isFinite(QPointF(odd, 0)));
        QVERIFY(!drive::isFinite(QPointF(0, odd)));
    }
}

void PositionsTest::truncatesTowardZeroAndSaturates_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("narrow");
    QTest::addColumn<qint64>("wide");

    QTest::newRow("positive") << 2.9 << 2 << qint64(2);
    QTest::newRow("negative") << -2.9 << -2 << qint64(-2);
    QTest::newRow("below one") << -0.999 << 0 << qint64(0);
    QTest::newRow("no number") << notANumber << 0 << qint64(0);
    QTest::newRow("infinite") << inf << intMax << longMax;
    QTest::newRow("minus infinite") << -inf << intMin << longMin;
    QTest::newRow("int maximum") << 2147483647.9 << intMax << qint64(2147483647);
    QTest::newRow("2^31") << 2147483648.0 << intMax << qint64(2147483648);
    QTest::newRow("-2^31") << -2147483648.0 << intMin << qint64(-2147483648);
    QTest::newRow("-2^31 - 1") << -2147483649.0 << intMin << qint64(-2147483649);
    QTest::newRow("2^63") << std::ldexp(1.0, 63) << intMax << longMax;
    QTest::newRow("below 2^63") << std::nextafter(std::ldexp(1.0, 63), 0.0) << intMax
                                << longMax - 1023;
    QTest::newRow("-2^63") << -std::ldexp(1.0, 63) << intMin << longMin;
    QTest::newRow("below -2^63") << -std::ldexp(1.0, 64) << intMin << longMin;
}

void PositionsTest::truncatesTowardZeroAndSaturates()
{
    QFETCH(double, value);
    QTEST(drive::truncated(value), "narrow");
    QTEST(static_cast<qint64>(drive::truncated64(value)), "wide");
}

void PositionsTest::roundsHalvesUpwardAndSaturates_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("whole");

    QTest::newRow("down") << 2.4 << 2;
    QTest::newRow("half") << 2.5 << 3;
    QTest::newRow("negative half") << -2.5 << -2;
    QTest::newRow("past a negative half") << -2.51 << -3;
    QTest::newRow("half below zero") << -0.5 << 0;
    QTest::newRow("no number") << notANumber << 0;
    QTest::newRow("infinite") << inf << intMax;
    QTest::newRow("minus infinite") << -inf << intMin;
    QTest::newRow("half below the maximum") << 2147483646.5 << intMax;
    QTest::newRow("half past the maximum") << 2147483647.5 << intMax;
    QTest::newRow("2^31") << 2147483648.0 << intMax;
    QTest::newRow("half past the minimum") << -2147483648.5 << intMin;
    QTest::newRow("half above the minimum") << -2147483647.5 << -2147483647;
    QTest::newRow("-2^31 - 1") << -2147483649.0 << intMin;
}

void PositionsTest::roundsHalvesUpwardAndSaturates()
{
    QFETCH(double, value);
    QFETCH(int, whole);
    QCOMPARE(drive::rounded(value), whole);
    QCOMPARE(drive::rounded(QPointF(value, 1.5)), QPoint(whole, 2));
    QCOMPARE(drive::rounded(QPointF(-1.5, value)), QPoint(-1, whole));
}

void PositionsTest::conversionsAgreeWithASlowModel()
{
    Random random(2);
    for (int i = 0; i < rounds; ++i) {
        const double value = randomDouble(random);
        double integral = 0.0;
        const double fraction = std::modf(value, &integral);
        const auto whole = static_cast<qint64>(integral);
        QCOMPARE(drive::truncated(value), saturatedModel(whole));
        QCOMPARE(static_cast<qint64>(drive::truncated64(value)), whole);
        const qint64 up = fraction >= 0.5 ? 1 : 0;
        const qint64 down = fraction < -0.5 ? 1 : 0;
        QCOMPARE(drive::rounded(value), saturatedModel(whole + up - down));
    }
}

void PositionsTest::sumsSaturate_data()
{
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<int>("sum");

    QTest::newRow("small") << 3 << -5 << -2;
    QTest::newRow("exactly the maximum") << intMax - 512 << 512 << intMax;
    QTest::newRow("past the maximum") << intMax - 511 << 512 << intMax;
    QTest::newRow("past the minimum") << intMin + 511 << -512 << intMin;
    QTest::newRow("both minima") << intMin << intMin << intMin;
    QTest::newRow("both maxima") << intMax << intMax << intMax;
    QTest::newRow("opposite ends") << intMin << intMax << -1;
}

void PositionsTest::sumsSaturate()
{
    QFETCH(int, a);
    QFETCH(int, b);
    QTEST(drive::saturatedSum(a, b), "sum");
    QTEST(drive::saturatedSum(b, a), "sum");
}

void PositionsTest::limitsSnapToTheGrid_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("lower");
    QTest::addColumn<int>("upper");

    QTest::newRow("1") << 1 << 0 << 256;
    QTest::newRow("255") << 255 << 0 << 256;
    QTest::newRow("257") << 257 << 256 << 512;
    QTest::newRow("1000") << 1000 << 768 << 1024;
    QTest::newRow("-1") << -1 << -256 << 256;
    QTest::newRow("-10") << -10 << -256 << 256;
    QTest::newRow("-255") << -255 << -256 << 256;
    QTest::newRow("-257") << -257 << -512 << 0;
    QTest::newRow("-266") << -266 << -512 << 0;
    QTest::newRow("-600") << -600 << -768 << -256;
    QTest::newRow("maximum") << intMax << intMax - 255 << intMax;
    QTest::newRow("above the minimum") << intMin + 1 << intMin << intMin + 512;
}

void PositionsTest::limitsSnapToTheGrid()
{
    QFETCH(int, limit);
    QVERIFY(!drive::isOnGrid(limit));
    QTEST(drive::snappedLowerLimit(limit), "lower");
    QTEST(drive::snappedUpperLimit(limit), "upper");
}

void PositionsTest::limitsOnTheGridStay()
{
    for (const int limit : {0, 256, -256, 8388352, -8388352, intMin, intMax - 255})
        QVERIFY2(drive::isOnGrid(limit), qPrintable(QString::number(limit)));
}

void PositionsTest::snappingAgreesWithASlowModel()
{
    Random random(3);
    for (int i = 0; i < rounds; ++i) {
        const int limit = i % 2 ? static_cast<int>(random.generate()) : random.bounded(-2000, 2000);
        const qint64 below = gridValueAtOrBelow(limit);
        QCOMPARE(drive::isOnGrid(limit), below == limit);
        if (below == limit)
            continue;
        const qint64 above = below + (limit > 0 ? 256 : 512);
        QCOMPARE(drive::snappedLowerLimit(limit), saturatedModel(below));
        QCOMPARE(drive::snappedUpperLimit(limit), saturatedModel(above));
    }
}

void PositionsTest::thinningDropsPointsOnTheSamePixel_data()
{
    QTest::addColumn<QVector<int>>("xs");
    QTest::addColumn<int>("pixel");
    QTest::addColumn<QVector<int>>("kept");

    QTest::newRow("nothing") << QVector<int>{} << 0 << QVector<int>{};
    QTest::newRow("first on the drawn pixel") << QVector<int>{3, 12} << 0 << QVector<int>{12};
    QTest::newRow("first on another pixel") << QVector<int>{3, 12} << 9 << QVector<int>{3, 12};
    QTest::newRow("run on one pixel") << QVector<int>{10, 12, 19, 20} << 0 << QVector<int>{10, 20};
    QTest::newRow("back and forth") << QVector<int>{10, 1, 11} << 0 << QVector<int>{10, 1, 11};
}

namespace {

/// Ten units a pixel.
struct TenthMap
{
    static QPoint pixel(const QPointF &point)
    {
        return {drive::truncated(point.x() / 10), drive::truncated(point.y() / 10)};
    }
};

QVector<QPointF> pointsAt(const QVector<int> &xs)
{
    QVector<QPointF> points;
    for (const int x : xs)
        points.append(QPointF(x, 0));
    return points;
}

bool acceptAll(const QPointF &)
{
    return true;
}

} // namespace

void PositionsTest::thinningDropsPointsOnTheSamePixel()
{
    QFETCH(QVector<int>, xs);
    QFETCH(int, pixel);
    QFETCH(QVector<int>, kept);
    QCOMPARE(drive::thinned(pointsAt(xs), QPoint(pixel, 0), TenthMap(), acceptAll), pointsAt(kept));
}

void PositionsTest::thinningIgnoresRefusedPoints()
{
    // 25 is refused, so 12 stays the point before 15 and 31.
    const auto accepts = [](const QPointF &point) { return point.x() != 25; };
    QCOMPARE(drive::thinned(pointsAt({12, 25, 15, 31}), QPoint(0, 0), TenthMap(), accepts),
             pointsAt({12, 31}));
}

void PositionsTest::thinningAgreesWithASlowModel()
{
    Random random(4);
    for (int round = 0; round < 200; ++round) {
        QVector<QPointF> points;
        for (int i = 0; i < 100; ++i)
            points.append(QPointF(random.bounded(60), random.bounded(60)));
        const auto accepts = [](const QPointF &point) { return point.y() < 40; };
        QVector<QPointF> model;
        for (const QPointF &point : qAsConst(points)) {
            const bool isDrawn =
                !model.isEmpty() && TenthMap::pixel(model.last()) == TenthMap::pixel(point);
            if (accepts(point) && !isDrawn)
                model.append(point);
        }
        QCOMPARE(drive::thinned(points, QPoint(-1, -1), TenthMap(), accepts), model);
    }
}

QTEST_APPLESS_MAIN(PositionsTest)
#include "tst_positions.moc"
