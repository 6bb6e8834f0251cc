#include "HeadlessPlatform.h"
#include "PollRig.h"

#include "XmlRegisterWidget.h"

#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include <cmath>

using QtCharts::QXYSeries;

namespace {

/// The trace once these points have been appended one by one, each unless it falls on the pixel of
/// the one drawn before.
QVector<QPointF> appended(const ToolRig &rig, const QVector<QPointF> &points)
{
    const auto pixel = [&](const QPointF &point) {
        const QPointF at = rig.chart()->mapToPosition(point, rig.trace());
        return QPointF(std::floor(at.x() + 0.5), std::floor(at.y() + 0.5));
    };
    QVector<QPointF> trace = rig.trace()->pointsVector();
    for (const QPointF &point : points) {
        if (pixel(point) != pixel(trace.constLast()))
            trace << point;
    }
    return trace;
}

} // namespace

class ToolDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void aLongHiddenMoveIsDrawnWithItsNewestPoints();
    void initTestCase() { silenceHeadlessPlatform(); }
    void samplesAreDrawnTogether();
    void pointsOnTheSamePixelAreDrawnOnce();
    void drawingChangesTheTraceAtMostOnce();
    void theActualMarkerGoesToTheNewestSample();
    void theActualWidgetsShowTheNewestSample();
    void drawingWithoutActualWidgetsWorks();
    void theViewFollowsTheActualPosition_data();
    void theViewFollowsTheActualPosition();
    void theViewFollowsInWholeSteps();
    void theTraceIsCutToItsLength();
    void aShorterLengthCutsWithTheNextTick();
    void theHistoryIsBounded();
    void aPlotOfHardlyAnySizeIsSurvived();
};

void ToolDrawingTest::samplesAreDrawnTogether()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    rig.sample(1000, 0);
    rig.sample(2000, 1000);
    rig.sample(3000, -1000);
    QCOMPARE(rig.trace()->count(), 1);
    rig.updateTick();
    QCOMPARE(rig.trace()->pointsVector(),
             QVector<QPointF>({{0, 0}, {1000, 0}, {2000, 1000}, {3000, -1000}}));
    // What is drawn is not drawn again.
    rig.sample(0, -3000);
    rig.updateTick();
    QCOMPARE(rig.trace()->count(), 5);
}

void ToolDrawingTest::pointsOnTheSamePixelAreDrawnOnce()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    for (int tick = 0; tick < 4; ++tick) {
        QVector<QPointF> points;
        for (int i = 1; i <= 200; ++i) {
            const double t = tick + i / 200.0;
            points << QPointF(std::floor(2000 * std::sin(t)) + i % 3,
                              std::floor(1500 * std::cos(2 * t)));
            rig.sample(int(points.constLast().x()), int(points.constLast().y()));
        }
        const QVector<QPointF> wanted = appended(rig, points);
        QVERIFY(wanted.size() < rig.trace()->count() + 190);
        QVERIFY(wanted.size() > rig.trace()->count() + 20);
        rig.updateTick();
        QCOMPARE(rig.trace()->pointsVector(), wanted);
    }
}

void ToolDrawingTest::drawingChangesTheTraceAtMostOnce()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    ChangeCount trace(rig.trace());
    for (int i = 1; i <= 100; ++i)
        rig.sample(30 * i, -20 * i);
    QCOMPARE(trace.take(), 0);
    rig.updateTick();
    QCOMPARE(trace.take(), 1);
    QVERIFY(rig.trace()->count() > 50);
    // Nothing that shows: another unit on the same pixel.
    const int before = rig.trace()->count();
    const int x = appended(rig, {QPointF(3001, -2000)}).size() == before ? 3001 : 2999;
    rig.sample(x, -2000);
    rig.updateTick();
    QCOMPARE(rig.actual()->at(0), QPointF(x, -2000));
    QCOMPARE(trace.take(), 0);
}

void ToolDrawingTest::theActualMarkerGoesToTheNewestSample()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    ChangeCount actual(rig.actual());
    rig.sample(1000, 0);
    rig.sample(2000, 1000);
    rig.updateTick();
    QCOMPARE(actual.take(), 1);
    QCOMPARE(rig.actual()->pointsVector(), QVector<QPointF>{QPointF(2000, 1000)});
}

void ToolDrawingTest::theActualWidgetsShowTheNewestSample()
{
    PollRig rig;
    rig.makeWide();
    QSignalSpy m0(rig.registerWidget("M0_XACTUAL"), &XmlRegisterWidget::valueChanged);
    QSignalSpy m1(rig.registerWidget("M1_XACTUAL"), &XmlRegisterWidget::valueChanged);
    rig.start();
    rig.sample(1000, -7);
    rig.sample(2000, -8);
    rig.updateTick();
    QCOMPARE(m0.count(), 1);
    QCOMPARE(m0.at(0).at(0).toInt(), 2000);
    QCOMPARE(m1.count(), 1);
    QCOMPARE(m1.at(0).at(0).toInt(), -8);
    QCOMPARE(rig.takeWrites(), QStringList());
}

void ToolDrawingTest::drawingWithoutActualWidgetsWorks()
{
    PollRig rig;
    rig.makeWide();
    delete rig.registerWidget("M0_XACTUAL");
    rig.start();
    rig.sample(9000, -7);
    QSignalSpy m1(rig.registerWidget("M1_XACTUAL"), &XmlRegisterWidget::valueChanged);
    rig.updateTick();
    QCOMPARE(m1.count(), 1);
    delete rig.registerWidget("M1_XACTUAL");
    rig.sample(9001, -9000);
    rig.updateTick();
    QCOMPARE(rig.actual()->at(0), QPointF(9001, -9000));
}

void ToolDrawingTest::theViewFollowsTheActualPosition_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QString>("limits");
    QTest::newRow("inside") << QPoint(255, -255) << QStringLiteral("-256 256 -256 256");
    QTest::newRow("on the edges") << QPoint(256, -256) << QStringLiteral("-256 256 -256 256");
    QTest::newRow("just right") << QPoint(257, 0) << QStringLiteral("-256 512 -256 256");
    QTest::newRow("just left") << QPoint(-257, 0) << QStringLiteral("-512 256 -256 256");
    QTest::newRow("just above") << QPoint(0, 257) << QStringLiteral("-256 256 -256 512");
    QTest::newRow("just below") << QPoint(0, -257) << QStringLiteral("-256 256 -512 256");
    QTest::newRow("far out") << QPoint(100000, -99900) << QStringLiteral("-256 100096 -100096 256");
    QTest::newRow("farthest") << QPoint(8388607, -8388608)
                              << QStringLiteral("-256 8388352 -8388352 256");
    // A tick, 64 units, beyond the position: one unit less would stay on the grid line before.
    QTest::newRow("a tick to the line") << QPoint(448, -448) << QStringLiteral("-256 512 -512 256");
    QTest::newRow("a tick past the line")
        << QPoint(449, -449) << QStringLiteral("-256 768 -768 256");
}

void ToolDrawingTest::theViewFollowsTheActualPosition()
{
    QFETCH(QPoint, position);
    QFETCH(QString, limits);
    PollRig rig;
    rig.start();
    rig.sample(position.x(), position.y());
    rig.updateTick();
    QCOMPARE(rig.limits(), limits);
    QCOMPARE(rig.axisX()->min(), double(rig.widget<QSpinBox>("spM0min")->value()));
    QCOMPARE(rig.axisX()->max(), double(rig.widget<QSpinBox>("spM0max")->value()));
    QCOMPARE(rig.axisY()->min(), double(rig.widget<QSpinBox>("spM1min")->value()));
    QCOMPARE(rig.axisY()->max(), double(rig.widget<QSpinBox>("spM1max")->value()));
}

void ToolDrawingTest::theViewFollowsInWholeSteps()
{
    // 512 / 6 is 85 in whole steps, and with the fraction the limit would miss the grid line -512.
    PollRig rig;
    rig.setLimits(-1536, -1024, -1536, -1024);
    rig.axisX()->setTickCount(7);
    rig.start();
    rig.sample(-597, -597);
    rig.updateTick();
    QCOMPARE(rig.limits(), QStringLiteral("-1536 -512 -1536 -256"));
    PollRig other;
    other.setLimits(-1536, -1024, -1536, -1024);
    other.axisY()->setTickCount(7);
    other.start();
    other.sample(-597, -597);
    other.updateTick();
    QCOMPARE(other.limits(), QStringLiteral("-1536 -256 -1536 -512"));
}

void ToolDrawingTest::theTraceIsCutToItsLength()
{
    PollRig rig;
    rig.makeWide();
    rig.widget<QSpinBox>("spTraces")->setValue(100);
    rig.start();
    QVector<QPointF> points;
    for (int i = 1; i <= 149; ++i) {
        points << QPointF(i % 2 ? 4000 : -4000, 50 * i);
        rig.sample(int(points.constLast().x()), int(points.constLast().y()));
    }
    rig.updateTick();
    QCOMPARE(rig.trace()->pointsVector(), points.mid(49));
    ChangeCount trace(rig.trace());
    rig.updateTick();
    QCOMPARE(trace.take(), 0);
}

void ToolDrawingTest::aShorterLengthCutsWithTheNextTick()
{
    PollRig rig;
    rig.makeWide();
    rig.start();
    for (int i = 1; i <= 20; ++i)
        rig.sample(100 * i, 100 * i);
    rig.updateTick();
    rig.updateTick();
    QVERIFY(rig.startButton()->isEnabled());
    QCOMPARE(rig.trace()->count(), 21);
    rig.widget<QSpinBox>("spTraces")->setValue(12);
    QCOMPARE(rig.trace()->count(), 21);
    rig.updateTick();
    QCOMPARE(rig.trace()->count(), 12);
    QCOMPARE(rig.trace()->at(0), QPointF(900, 900));
    QCOMPARE(rig.trace()->at(11), QPointF(2000, 2000));
}

void ToolDrawingTest::theHistoryIsBounded()
{
    constexpr int capacity = 100000;
    constexpr int surplus = 120;
    PollRig rig;
    rig.makeWide();
    rig.start();
    for (int i = 0; i < surplus; ++i)
        rig.sample(-6000 + 100 * i, 6000);
    rig.sample(7000, -7000);
    for (int i = 1; i < capacity; ++i) {
        rig.sample(i % 2000, -i / 2000);
        rig.link.calls.clear();
    }
    rig.updateTick();
    rig.axisX()->setRange(-16384, 16384);
    const QVector<QPointF> redrawn = rig.trace()->pointsVector();
    QVERIFY(redrawn.size() > 1);
    QCOMPARE(redrawn.at(0), QPointF(7000, -7000));
    for (const QPointF &point : redrawn)
        QVERIFY(point.y() <= 0);
}

void ToolDrawingTest::aPlotOfHardlyAnySizeIsSurvived()
{
    PollRig rig;
    rig.makeWide();
    rig.chart()->setPlotArea(QRectF(100, 100, 1e-300, 1e-300));
    rig.start();
    for (int i = 1; i <= 20; ++i)
        rig.sample(100 * i, -100 * i);
    rig.updateTick();
    QCOMPARE(rig.actual()->at(0), QPointF(2000, -2000));
    rig.widget<QPushButton>("btnZoomIn")->click();
    rig.widget<QPushButton>("btnZoomOut")->click();
    rig.sample(9000, 9000);
    rig.updateTick();
    QCOMPARE(rig.axisX()->max(), double(rig.widget<QSpinBox>("spM0max")->value()));
    QVERIFY(rig.trace()->count() >= 1);
}

/// Hidden, it draws nothing for as long as the axes tremble, and keeps no more than it may draw.
void ToolDrawingTest::aLongHiddenMoveIsDrawnWithItsNewestPoints()
{
    constexpr int samples = 250000;
    PollRig rig;
    rig.makeWide();
    rig.widget<QSpinBox>("spTraces")->setValue(100000);
    rig.setTarget({4000, 4000});
    rig.start();
    rig.tool()->hidePlugin();
    // Each a pixel or more from the one before it.
    const auto positionOf = [](int sample) { return QPoint(sample % 2 * 8000 - 4000, sample % 9); };
    for (int i = 0; i < samples; ++i)
        rig.sample(positionOf(i).x(), positionOf(i).y());
    rig.tool()->showPlugin();
    rig.updateTick();
    const QPoint newest = positionOf(samples - 1);
    QCOMPARE(rig.actual()->at(0), QPointF(newest));
    const QVector<QPointF> drawn = rig.trace()->pointsVector();
    QVERIFY(drawn.size() > 90000 && drawn.size() <= 100000);
    for (int i = 0; i < 90000; ++i)
        QCOMPARE(drawn.at(drawn.size() - 1 - i), QPointF(positionOf(samples - 1 - i)));
}

QTEST_MAIN(ToolDrawingTest)
#include "tst_tool_drawing.moc"
