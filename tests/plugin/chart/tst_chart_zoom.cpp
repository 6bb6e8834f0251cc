#include "HeadlessPlatform.h"
#include "ZoomRig.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QSpinBox>
#include <QWheelEvent>

using QtCharts::QValueAxis;

namespace {

/// Sends a wheel turn where the window system does, to the view, with the keys that are held; true
/// when it was accepted.
bool turnWheel(const ToolRig &rig, const QPointF &at, QPoint angle)
{
    QWidget *viewport = rig.view()->viewport();
    QWheelEvent event(at, viewport->mapToGlobal(at.toPoint()), QPoint(), angle, Qt::NoButton,
                      QGuiApplication::keyboardModifiers(), Qt::NoScrollPhase, false);
    // Only what comes from the window system goes on from a widget to its parent.
    QSpontaneKeyEvent::setSpontaneous(&event);
    event.ignore();
    qApp->notify(viewport, &event);
    return event.isAccepted();
}

/// Hands the panel a wheel event of its own; true when it is accepted afterwards.
bool callWheel(const ToolRig &rig, const QPointF &at, QPoint angle, bool isAccepted,
               Qt::KeyboardModifiers inEvent = Qt::NoModifier)
{
    QWheelEvent event(at, at, QPoint(), angle, Qt::NoButton, inEvent, Qt::NoScrollPhase, false);
    event.setAccepted(isAccepted);
    QMetaObject::invokeMethod(rig.tool(), "wheelEvent", Q_ARG(QWheelEvent *, &event));
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
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.standAt(3000, -2000);
    QTest::mouseClick(rig.in(), Qt::LeftButton);
    // 2048 and -2048 moved by 3000 and by -2000, and then snapped.
    QCOMPARE(rig.limits(), QStringLiteral("768 5120 -4096 256"));
    QCOMPARE(rig.axisX()->min(), 768.0);
    QCOMPARE(rig.axisX()->max(), 5120.0);
    QCOMPARE(rig.axisY()->min(), -4096.0);
    QCOMPARE(rig.axisY()->max(), 256.0);
    QVERIFY(!rig.in()->property("ZoomPt").isValid());
}

void ChartZoomTest::aButtonZoomsByTwo()
{
    ZoomRig rig(-4096, 4096, -8192, 8192);
    QTest::mouseClick(rig.in(), Qt::LeftButton);
    QCOMPARE(rig.limits(), QStringLiteral("-2048 2048 -4096 4096"));
    QTest::mouseClick(rig.out(), Qt::LeftButton);
    QTest::mouseClick(rig.out(), Qt::LeftButton);
    QCOMPARE(rig.limits(), QStringLiteral("-8192 8192 -16384 16384"));
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
    ZoomRig rig(-8192, 8192, -8192, 8192);
    rig.standAt(position.x(), position.y());
    rig.setLimits(-256, 256, -256, 256);
    rig.in()->click();
    QCOMPARE(rig.limits(), limits);
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
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.standAt(x, y);
    rig.in()->click();
    QCOMPARE(rig.limits(), limits);
}

void ChartZoomTest::zoomingIsBoundedOnBothSides()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    for (int i = 0; i < 40; ++i)
        rig.out()->click();
    QCOMPARE(rig.limits(), QStringLiteral("-8388352 8388352 -8388352 8388352"));
    QCOMPARE(rig.axisX()->max(), 8388352.0);
    QCOMPARE(rig.axisY()->min(), -8388352.0);
    for (int i = 0; i < 40; ++i)
        rig.in()->click();
    for (QValueAxis *axis : {rig.axisX(), rig.axisY()}) {
        QVERIFY(axis->max() - axis->min() >= 512);
        QVERIFY(axis->max() - axis->min() <= 1024);
    }
}

void ChartZoomTest::zoomWithoutAButtonOnlyCentres()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.standAt(3000, -100);
    QVERIFY(rig.call("zoom"));
    // 4096 and -4096 moved by 3000 and then snapped.
    QCOMPARE(rig.limits(), QStringLiteral("-1280 7168 -4096 4096"));
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
    ZoomRig rig(-65536, 65536, -65536, 65536);
    QSignalSpy in(rig.in(), &QPushButton::clicked);
    QSignalSpy out(rig.out(), &QPushButton::clicked);
    {
        const HeldKeys ctrl(rig.tool(), Qt::ControlModifier);
        turnWheel(rig, rig.chart()->plotArea().center(), angle);
    }
    QCOMPARE(in.count(), isIn ? 1 : 0);
    QCOMPARE(out.count(), isIn ? 0 : 1);
    const double span = rig.axisX()->max() - rig.axisX()->min();
    const double wanted = isIn ? 65536 : 262144;
    QVERIFY2(qAbs(span - wanted) <= 512, qPrintable(QString::number(span)));
}

void ChartZoomTest::theWheelPositionIsTakenAsAChartPosition()
{
    ZoomRig rig(-1048576, 1048576, -1048576, 1048576);
    rig.standAt(700000, 700000);
    const QPoint atView = rig.chart()->plotArea().center().toPoint() + QPoint(120, -80);
    const QPoint atPanel = rig.view()->viewport()->mapTo(rig.tool(), atView);
    QVERIFY(atPanel != atView);
    const HeldKeys ctrl(rig.tool(), Qt::ControlModifier);
    for (int delta : {120, 120, -120}) {
        const QPointF before = rig.chart()->mapToValue(atPanel);
        turnWheel(rig, atView, QPoint(0, delta));
        const QPointF after = rig.chart()->mapToValue(atPanel);
        // Half the threshold's worth and what the grid adds at either end.
        QVERIFY2(qAbs(after.x() - before.x()) <= 384, qPrintable(QString::number(after.x())));
        QVERIFY2(qAbs(after.y() - before.y()) <= 384, qPrintable(QString::number(after.y())));
    }
}

void ChartZoomTest::theWheelPositionIsOnTheButtonDuringItsClick()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    const HeldKeys ctrl(rig.tool(), Qt::ControlModifier);
    for (QPushButton *button : {rig.in(), rig.out()}) {
        QVariant during;
        connect(button, &QPushButton::clicked,
                [&during, button] { during = button->property("ZoomPt"); });
        const QPoint at(150, 120);
        turnWheel(rig, at, QPoint(0, button == rig.in() ? 120 : -120));
        QCOMPARE(during, QVariant(rig.view()->viewport()->mapTo(rig.tool(), at)));
        QVERIFY(!button->dynamicPropertyNames().contains("ZoomPt"));
    }
}

void ChartZoomTest::aWheelPositionIsRoundedHalvesUpward()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    const HeldKeys ctrl(rig.tool(), Qt::ControlModifier);
    QVariant during;
    connect(rig.in(), &QPushButton::clicked, [&] { during = rig.in()->property("ZoomPt"); });
    callWheel(rig, QPointF(100.5, 99.4), QPoint(0, 120), false);
    QCOMPARE(during, QVariant(QPoint(101, 99)));
    callWheel(rig, QPointF(-2.5, -2.6), QPoint(0, 120), false);
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
    ZoomRig rig(-4096, 4096, -4096, 4096);
    rig.standAt(3000, 3000);
    QSignalSpy in(rig.in(), &QPushButton::clicked);
    QSignalSpy out(rig.out(), &QPushButton::clicked);
    const HeldKeys keys(rig.tool(), Qt::KeyboardModifiers(held));
    turnWheel(rig, QPointF(150, 120), QPoint(0, 120));
    turnWheel(rig, QPointF(150, 120), QPoint(0, -120));
    QVERIFY(callWheel(rig, QPointF(150, 120), QPoint(0, 120), true));
    QVERIFY(!callWheel(rig, QPointF(150, 120), QPoint(0, 120), false));
    QCOMPARE(in.count() + out.count(), 0);
    QCOMPARE(rig.limits(), QStringLiteral("-4096 4096 -4096 4096"));
}

void ChartZoomTest::theKeyboardCountsAndNotTheWheelEvent()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    QVERIFY(!callWheel(rig, QPointF(150, 120), QPoint(0, 120), false, Qt::ControlModifier));
    QCOMPARE(rig.limits(), QStringLiteral("-4096 4096 -4096 4096"));
}

void ChartZoomTest::aTurnWithCtrlIsAccepted()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    const HeldKeys ctrl(rig.tool(), Qt::ControlModifier);
    QVERIFY(turnWheel(rig, QPointF(150, 120), QPoint(0, 120)));
    QVERIFY(callWheel(rig, QPointF(150, 120), QPoint(0, 120), false));
    QVERIFY(callWheel(rig, QPointF(150, 120), QPoint(0, -120), false));
}

void ChartZoomTest::aRubberBandZoomsIn()
{
    ZoomRig rig(-16384, 16384, -16384, 16384);
    rig.driveAround(12000);
    rig.target()->setProperty("NewPt", false);
    const QPoint centre = rig.chart()->plotArea().center().toPoint();
    const QPointF low = rig.chart()->mapToValue(centre + QPoint(-60, 50));
    const QPointF high = rig.chart()->mapToValue(centre + QPoint(60, -50));
    const QPointF newest = rig.trace()->at(rig.trace()->count() - 1);
    QWidget *viewport = rig.view()->viewport();
    const HeldKeys ctrl(rig.tool(), Qt::ControlModifier);
    const auto send = [viewport](QEvent::Type type, QPoint at, Qt::MouseButton button) {
        QMouseEvent event(type, at, button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    };
    QVector<QPointF> first;
    connect(rig.trace(), &QtCharts::QXYSeries::pointsReplaced, rig.trace(), [&] {
        if (first.isEmpty())
            first = rig.trace()->pointsVector();
    });
    send(QEvent::MouseButtonPress, centre - QPoint(60, 50), Qt::LeftButton);
    send(QEvent::MouseMove, centre + QPoint(60, 50), Qt::NoButton);
    send(QEvent::MouseButtonRelease, centre + QPoint(60, 50), Qt::LeftButton);
    QCOMPARE(first, QVector<QPointF>{newest});
    QVERIFY(rig.trace()->count() > 1);
    const double tolerance = 512 + 32768.0 / rig.chart()->plotArea().height();
    QVERIFY(qAbs(rig.axisX()->min() - low.x()) < tolerance);
    QVERIFY(qAbs(rig.axisX()->max() - high.x()) < tolerance);
    QVERIFY(qAbs(rig.axisY()->min() - low.y()) < tolerance);
    QVERIFY(qAbs(rig.axisY()->max() - high.y()) < tolerance);
    QCOMPARE(rig.axisX()->min(), double(rig.widget<QSpinBox>("spM0min")->value()));
    QCOMPARE(rig.axisY()->max(), double(rig.widget<QSpinBox>("spM1max")->value()));
    QVERIFY(!rig.target()->property("NewPt").toBool());
}

void ChartZoomTest::ctrlAndRightClickZoomsOut()
{
    ZoomRig rig(-4096, 4096, -4096, 4096);
    const HeldKeys ctrl(rig.tool(), Qt::ControlModifier);
    QTest::mouseClick(rig.view()->viewport(), Qt::RightButton, Qt::ControlModifier,
                      rig.chart()->plotArea().center().toPoint());
    QCOMPARE(rig.limits(), QStringLiteral("-8192 8192 -8192 8192"));
}

QTEST_MAIN(ChartZoomTest)
#include "tst_chart_zoom.moc"
