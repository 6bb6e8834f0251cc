#include "HeadlessPlatform.h"
#include "ZoomBench.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QSpinBox>
#include <QWheelEvent>

using QtCharts::QValueAxis;

namespace {

/// Sends a wheel turn where the window system does, to the view, with the keys that are held; true
/// when it was accepted.
bool turnWheel(const ToolBench &bench, const QPointF &at, QPoint angle)
{
    QWidget *viewport = bench.view()->viewport();
    QWheelEvent event(at, viewport->mapToGlobal(at.toPoint()), QPoint(), angle, Qt::NoButton,
                      QGuiApplication::keyboardModifiers(), Qt::NoScrollPhase, false);
    // Only what comes from the window system goes on from a widget to its parent.
    QSpontaneKeyEvent::setSpontaneous(&event);
    event.ignore();
    qApp->notify(viewport, &event);
    return event.isAccepted();
}

/// Hands the panel a wheel event of its own; true when it is accepted afterwards.
bool callWheel(const ToolBench &bench, const QPointF &at, QPoint angle, bool isAccepted,
               Qt::KeyboardModifiers inEvent = Qt::NoModifier)
{
    QWheelEvent event(at, at, QPoint(), angle, Qt::NoButton, inEvent, Qt::NoScrollPhase, false);
    event.setAccepted(isAccepted);
    QMetaObject::invokeMethod(bench.tool(), "wheelEvent", Q_ARG(QWheelEvent *, &event));
    return event.isAccepted();
}

} // namespace

class ChartZoomTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void cleanup();
    void aButtonCentresOnTheActualPosition();
    void aButtonZoomsByTwo();
    void theUpperLimitIsMovedBeforeTheLowerOne_data();
    void theUpperLimitIsMovedBeforeTheLowerOne();
    void smallShiftsAreNotMade_data();
    void smallShiftsAreNotMade();
    void zoomingIsBoundedOnBothSides();
    void zoomWithoutAButtonOnlyCentres();
    void theWheelZoomsWithCtrl_data();
    void theWheelZoomsWithCtrl();
    void theWheelPositionIsTakenAsAChartPosition();
    void theWheelPositionIsOnTheButtonDuringItsClick();
    void aWheelPositionIsRoundedHalvesUpward();
    void withoutExactlyCtrlTheWheelDoesNothing_data();
    void withoutExactlyCtrlTheWheelDoesNothing();
    void theKeyboardCountsAndNotTheWheelEvent();
    void aTurnWithCtrlIsAccepted();
    void aRubberBandZoomsIn();
    void ctrlAndRightClickZoomsOut();
};

void ChartZoomTest::cleanup()
{
    QCOMPARE(int(QGuiApplication::keyboardModifiers()), int(Qt::NoModifier));
}

void ChartZoomTest::aButtonCentresOnTheActualPosition()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.standAt(3000, -2000);
    QTest::mouseClick(bench.in(), Qt::LeftButton);
    // 2048 and -2048 moved by 3000 and by -2000, and then snapped.
    QCOMPARE(bench.limits(), QStringLiteral("768 5120 -4096 256"));
    QCOMPARE(bench.axisX()->min(), 768.0);
    QCOMPARE(bench.axisX()->max(), 5120.0);
    QCOMPARE(bench.axisY()->min(), -4096.0);
    QCOMPARE(bench.axisY()->max(), 256.0);
    QVERIFY(!bench.in()->property("ZoomPt").isValid());
}

void ChartZoomTest::aButtonZoomsByTwo()
{
    ZoomBench bench(-4096, 4096, -8192, 8192);
    QTest::mouseClick(bench.in(), Qt::LeftButton);
    QCOMPARE(bench.limits(), QStringLiteral("-2048 2048 -4096 4096"));
    QTest::mouseClick(bench.out(), Qt::LeftButton);
    QTest::mouseClick(bench.out(), Qt::LeftButton);
    QCOMPARE(bench.limits(), QStringLiteral("-8192 8192 -16384 16384"));
}

void ChartZoomTest::theUpperLimitIsMovedBeforeTheLowerOne_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QString>("limits");
    // It comes no lower than the lower limit lets it, which has not moved yet.
    QTest::newRow("left") << QPoint(-8000, 0) << QStringLiteral("-8448 256 -256 256");
    QTest::newRow("down") << QPoint(0, -8000) << QStringLiteral("-256 256 -8448 256");
}

void ChartZoomTest::theUpperLimitIsMovedBeforeTheLowerOne()
{
    QFETCH(QPoint, position);
    QFETCH(QString, limits);
    ZoomBench bench(-8192, 8192, -8192, 8192);
    bench.standAt(position.x(), position.y());
    bench.setLimits(-256, 256, -256, 256);
    bench.in()->click();
    QCOMPARE(bench.limits(), limits);
}

void ChartZoomTest::smallShiftsAreNotMade_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<QString>("limits");
    QTest::newRow("at the threshold") << 128 << 128 << QStringLiteral("-2048 2048 -2048 2048");
    QTest::newRow("x beyond it") << 129 << 128 << QStringLiteral("-2048 2304 -2048 2048");
    QTest::newRow("y beyond it") << 128 << 129 << QStringLiteral("-2048 2048 -2048 2304");
    QTest::newRow("at it, down") << -128 << -128 << QStringLiteral("-2048 2048 -2048 2048");
    QTest::newRow("x beyond it, down") << -129 << -128 << QStringLiteral("-2304 2048 -2048 2048");
    QTest::newRow("y beyond it, down") << -128 << -129 << QStringLiteral("-2048 2048 -2304 2048");
}

void ChartZoomTest::smallShiftsAreNotMade()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(QString, limits);
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.standAt(x, y);
    bench.in()->click();
    QCOMPARE(bench.limits(), limits);
}

void ChartZoomTest::zoomingIsBoundedOnBothSides()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    for (int i = 0; i < 40; ++i)
        bench.out()->click();
    QCOMPARE(bench.limits(), QStringLiteral("-8388352 8388352 -8388352 8388352"));
    QCOMPARE(bench.axisX()->max(), 8388352.0);
    QCOMPARE(bench.axisY()->min(), -8388352.0);
    for (int i = 0; i < 40; ++i)
        bench.in()->click();
    for (QValueAxis *axis : {bench.axisX(), bench.axisY()}) {
        QVERIFY(axis->max() - axis->min() >= 512);
        QVERIFY(axis->max() - axis->min() <= 1024);
    }
}

void ChartZoomTest::zoomWithoutAButtonOnlyCentres()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.standAt(3000, -100);
    QVERIFY(bench.call("zoom"));
    // 4096 and -4096 moved by 3000 and then snapped.
    QCOMPARE(bench.limits(), QStringLiteral("-1280 7168 -4096 4096"));
}

void ChartZoomTest::theWheelZoomsWithCtrl_data()
{
    QTest::addColumn<QPoint>("angle");
    QTest::addColumn<bool>("isIn");
    QTest::newRow("up") << QPoint(0, 120) << true;
    QTest::newRow("down") << QPoint(0, -120) << false;
    QTest::newRow("a little down") << QPoint(0, -1) << false;
    QTest::newRow("left") << QPoint(-120, 0) << false;
    QTest::newRow("right") << QPoint(120, 0) << true;
    QTest::newRow("more left than up") << QPoint(-120, 60) << false;
    QTest::newRow("more down than right") << QPoint(60, -120) << false;
    QTest::newRow("not at all") << QPoint(0, 0) << true;
}

void ChartZoomTest::theWheelZoomsWithCtrl()
{
    QFETCH(QPoint, angle);
    QFETCH(bool, isIn);
    ZoomBench bench(-65536, 65536, -65536, 65536);
    QSignalSpy in(bench.in(), &QPushButton::clicked);
    QSignalSpy out(bench.out(), &QPushButton::clicked);
    {
        const HeldKeys ctrl(bench.tool(), Qt::ControlModifier);
        turnWheel(bench, bench.chart()->plotArea().center(), angle);
    }
    QCOMPARE(in.count(), isIn ? 1 : 0);
    QCOMPARE(out.count(), isIn ? 0 : 1);
    const double span = bench.axisX()->max() - bench.axisX()->min();
    const double wanted = isIn ? 65536 : 262144;
    QVERIFY2(qAbs(span - wanted) <= 512, qPrintable(QString::number(span)));
}

void ChartZoomTest::theWheelPositionIsTakenAsAChartPosition()
{
    ZoomBench bench(-1048576, 1048576, -1048576, 1048576);
    bench.standAt(700000, 700000);
    const QPoint atView = bench.chart()->plotArea().center().toPoint() + QPoint(120, -80);
    const QPoint atPanel = bench.view()->viewport()->mapTo(bench.tool(), atView);
    QVERIFY(atPanel != atView);
    const HeldKeys ctrl(bench.tool(), Qt::ControlModifier);
    for (int delta : {120, 120, -120}) {
        const QPointF before = bench.chart()->mapToValue(atPanel);
        turnWheel(bench, atView, QPoint(0, delta));
        const QPointF after = bench.chart()->mapToValue(atPanel);
        // Half the threshold's worth and what the grid adds at either end.
        QVERIFY2(qAbs(after.x() - before.x()) <= 384, qPrintable(QString::number(after.x())));
        QVERIFY2(qAbs(after.y() - before.y()) <= 384, qPrintable(QString::number(after.y())));
    }
}

void ChartZoomTest::theWheelPositionIsOnTheButtonDuringItsClick()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    const HeldKeys ctrl(bench.tool(), Qt::ControlModifier);
    for (QPushButton *button : {bench.in(), bench.out()}) {
        QVariant during;
        connect(button, &QPushButton::clicked,
                [&during, button] { during = button->property("ZoomPt"); });
        const QPoint at(150, 120);
        turnWheel(bench, at, QPoint(0, button == bench.in() ? 120 : -120));
        QCOMPARE(during, QVariant(bench.view()->viewport()->mapTo(bench.tool(), at)));
        QVERIFY(!button->dynamicPropertyNames().contains("ZoomPt"));
    }
}

void ChartZoomTest::aWheelPositionIsRoundedHalvesUpward()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    const HeldKeys ctrl(bench.tool(), Qt::ControlModifier);
    QVariant during;
    connect(bench.in(), &QPushButton::clicked, [&] { during = bench.in()->property("ZoomPt"); });
    callWheel(bench, QPointF(100.5, 99.4), QPoint(0, 120), false);
    QCOMPARE(during, QVariant(QPoint(101, 99)));
    callWheel(bench, QPointF(-2.5, -2.6), QPoint(0, 120), false);
    QCOMPARE(during, QVariant(QPoint(-2, -3)));
}

void ChartZoomTest::withoutExactlyCtrlTheWheelDoesNothing_data()
{
    QTest::addColumn<int>("held");
    QTest::newRow("nothing") << int(Qt::NoModifier);
    QTest::newRow("shift") << int(Qt::ShiftModifier);
    QTest::newRow("ctrl shift") << int(Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("ctrl alt") << int(Qt::ControlModifier | Qt::AltModifier);
    QTest::newRow("ctrl meta") << int(Qt::ControlModifier | Qt::MetaModifier);
}

void ChartZoomTest::withoutExactlyCtrlTheWheelDoesNothing()
{
    QFETCH(int, held);
    ZoomBench bench(-4096, 4096, -4096, 4096);
    bench.standAt(3000, 3000);
    QSignalSpy in(bench.in(), &QPushButton::clicked);
    QSignalSpy out(bench.out(), &QPushButton::clicked);
    const HeldKeys keys(bench.tool(), Qt::KeyboardModifiers(held));
    turnWheel(bench, QPointF(150, 120), QPoint(0, 120));
    turnWheel(bench, QPointF(150, 120), QPoint(0, -120));
    QVERIFY(callWheel(bench, QPointF(150, 120), QPoint(0, 120), true));
    QVERIFY(!callWheel(bench, QPointF(150, 120), QPoint(0, 120), false));
    QCOMPARE(in.count() + out.count(), 0);
    QCOMPARE(bench.limits(), QStringLiteral("-4096 4096 -4096 4096"));
}

void ChartZoomTest::theKeyboardCountsAndNotTheWheelEvent()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    QVERIFY(!callWheel(bench, QPointF(150, 120), QPoint(0, 120), false, Qt::ControlModifier));
    QCOMPARE(bench.limits(), QStringLiteral("-4096 4096 -4096 4096"));
}

void ChartZoomTest::aTurnWithCtrlIsAccepted()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    const HeldKeys ctrl(bench.tool(), Qt::ControlModifier);
    QVERIFY(turnWheel(bench, QPointF(150, 120), QPoint(0, 120)));
    QVERIFY(callWheel(bench, QPointF(150, 120), QPoint(0, 120), false));
    QVERIFY(callWheel(bench, QPointF(150, 120), QPoint(0, -120), false));
}

void ChartZoomTest::aRubberBandZoomsIn()
{
    ZoomBench bench(-16384, 16384, -16384, 16384);
    bench.driveAround(12000);
    bench.target()->setProperty("NewPt", false);
    const QPoint centre = bench.chart()->plotArea().center().toPoint();
    const QPointF low = bench.chart()->mapToValue(centre + QPoint(-60, 50));
    const QPointF high = bench.chart()->mapToValue(centre + QPoint(60, -50));
    const QPointF newest = bench.trace()->at(bench.trace()->count() - 1);
    QWidget *viewport = bench.view()->viewport();
    const HeldKeys ctrl(bench.tool(), Qt::ControlModifier);
    const auto send = [viewport](QEvent::Type type, QPoint at, Qt::MouseButton button) {
        QMouseEvent event(type, at, button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    };
    QVector<QPointF> first;
    connect(bench.trace(), &QtCharts::QXYSeries::pointsReplaced, bench.trace(), [&] {
        if (first.isEmpty())
            first = bench.trace()->pointsVector();
    });
    send(QEvent::MouseButtonPress, centre - QPoint(60, 50), Qt::LeftButton);
    send(QEvent::MouseMove, centre + QPoint(60, 50), Qt::NoButton);
    send(QEvent::MouseButtonRelease, centre + QPoint(60, 50), Qt::LeftButton);
    QCOMPARE(first, QVector<QPointF>{newest});
    QVERIFY(bench.trace()->count() > 1);
    const double tolerance = 512 + 32768.0 / bench.chart()->plotArea().height();
    QVERIFY(qAbs(bench.axisX()->min() - low.x()) < tolerance);
    QVERIFY(qAbs(bench.axisX()->max() - high.x()) < tolerance);
    QVERIFY(qAbs(bench.axisY()->min() - low.y()) < tolerance);
    QVERIFY(qAbs(bench.axisY()->max() - high.y()) < tolerance);
    QCOMPARE(bench.axisX()->min(), double(bench.widget<QSpinBox>("spM0min")->value()));
    QCOMPARE(bench.axisY()->max(), double(bench.widget<QSpinBox>("spM1max")->value()));
    QVERIFY(!bench.target()->property("NewPt").toBool());
}

void ChartZoomTest::ctrlAndRightClickZoomsOut()
{
    ZoomBench bench(-4096, 4096, -4096, 4096);
    const HeldKeys ctrl(bench.tool(), Qt::ControlModifier);
    QTest::mouseClick(bench.view()->viewport(), Qt::RightButton, Qt::ControlModifier,
                      bench.chart()->plotArea().center().toPoint());
    QCOMPARE(bench.limits(), QStringLiteral("-8192 8192 -8192 8192"));
}

QTEST_MAIN(ChartZoomTest)
#include "tst_chart_zoom.moc"
