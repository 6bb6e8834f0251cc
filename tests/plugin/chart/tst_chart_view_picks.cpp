#include "ChartViewRig.h"
#include "ToolRig.h"

#include <QMetaMethod>
#include <QTest>
#include <QtCharts/QValueAxis>

using QtCharts::QChartView;

class ChartViewPicksTest : public ChartViewRig
{
    Q_OBJECT

private slots:
    void hasOneSignalAndNothingElseOfItsOwn();
    void anyButtonPicksThePositionUnderIt_data();
    void anyButtonPicksThePositionUnderIt();
    void aPressBetweenPixelsIsRoundedHalvesUpward();
    void picksRoundHalvesUpward_data();
    void picksRoundHalvesUpward();
    void aPressOutsideThePlotPicksNothingButIsWhereADragStarts();
    void aPressEventWithoutButtonsPicksNothingButIsWhereADragStarts();
    void aCtrlPressNeitherPicksNorMovesTheStartOfADrag();
    void ctrlWithAnotherModifierIsAPlainGesture_data();
    void ctrlWithAnotherModifierIsAPlainGesture();
    void theKeyboardCountsAndNotTheEvent();
    void eventsGoOnToTheBaseClass();
};

void ChartViewPicksTest::hasOneSignalAndNothingElseOfItsOwn()
{
    const QMetaObject *meta = f->view.metaObject();
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 1);
    QCOMPARE(meta->propertyCount(), meta->superClass()->propertyCount());
    const QMetaMethod signal = meta->method(meta->methodOffset());
    QCOMPARE(signal.methodSignature(), QByteArray("position(QPoint,QPoint)"));
    QCOMPARE(signal.parameterNames(), QList<QByteArray>({QByteArray(), QByteArray("outer")}));
    QCOMPARE(f->view.rubberBand(), QChartView::NoRubberBand);
}

void ChartViewPicksTest::anyButtonPicksThePositionUnderIt_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("right") << int(Qt::RightButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
    QTest::newRow("back") << int(Qt::BackButton);
}

void ChartViewPicksTest::anyButtonPicksThePositionUnderIt()
{
    QFETCH(int, button);
    const QPoint at = f->inside() + QPoint(37, -21);
    QTest::mousePress(f->view.viewport(), Qt::MouseButton(button), Qt::NoModifier, at);
    QCOMPARE(f->takeValue(), f->pickedAt(at));
    QCOMPARE(f->takeOuter(), QPoint(0, 0));
    QTest::mouseRelease(f->view.viewport(), Qt::MouseButton(button), Qt::NoModifier, at);
    QVERIFY(f->spy.isEmpty());
}

void ChartViewPicksTest::aPressBetweenPixelsIsRoundedHalvesUpward()
{
    const QPoint at = f->inside();
    f->press(QPointF(at) + QPointF(0.5, -0.5));
    QCOMPARE(f->takeValue(), f->pickedAt(at + QPoint(1, 0)));
    f->spy.clear();
    f->press(QPointF(at) + QPointF(0.4, -0.6));
    QCOMPARE(f->takeValue(), f->pickedAt(at + QPoint(0, -1)));
}

void ChartViewPicksTest::picksRoundHalvesUpward_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("picked");
    QTest::newRow("2.5") << 2.5 << 3;
    QTest::newRow("-2.5") << -2.5 << -2;
    QTest::newRow("-2.75") << -2.75 << -3;
    QTest::newRow("2.25") << 2.25 << 2;
    QTest::newRow("-0.5") << -0.5 << 0;
}

void ChartViewPicksTest::picksRoundHalvesUpward()
{
    QFETCH(double, value);
    QFETCH(int, picked);
    // One unit a pixel, so that `value` lies exactly under a pixel.
    const QPoint at = f->inside();
    f->chart()->setPlotArea(QRectF(at - QPoint(128, 128), QSizeF(256, 256)));
    QTRY_COMPARE(f->plot().width(), 256.0);
    f->chart()->axes(Qt::Horizontal).at(0)->setRange(value - 128, value + 128);
    f->chart()->axes(Qt::Vertical).at(0)->setRange(value - 128, value + 128);
    QCOMPARE(f->chart()->mapToValue(at), QPointF(value, value));
    f->press(at);
    QCOMPARE(f->takeValue(), QPoint(picked, picked));
}

void ChartViewPicksTest::aPressOutsideThePlotPicksNothingButIsWhereADragStarts()
{
    const int right = static_cast<int>(f->plot().right());
    const QPoint outside(right + 12, f->inside().y());
    f->press(outside);
    QVERIFY(f->spy.isEmpty());
    f->drag(outside + QPoint(3, 0));
    QCOMPARE(f->takeOuter(), QPoint(3, 0));
}

void ChartViewPicksTest::aPressEventWithoutButtonsPicksNothingButIsWhereADragStarts()
{
    f->send(QEvent::MouseButtonPress, f->inside(), Qt::LeftButton, Qt::NoButton);
    QVERIFY(f->spy.isEmpty());
    const QPoint outside(static_cast<int>(f->plot().right()) + 12, f->inside().y());
    f->drag(outside);
    QCOMPARE(f->takeOuter(), QPoint(outside.x() - f->inside().x(), 0));
}

void ChartViewPicksTest::aCtrlPressNeitherPicksNorMovesTheStartOfADrag()
{
    const QPoint start = f->inside();
    f->press(start);
    f->spy.clear();
    {
        const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
        f->press(start + QPoint(40, 40));
    }
    QVERIFY(f->spy.isEmpty());
    const QPoint outside(static_cast<int>(f->plot().right()) + 12, start.y());
    f->drag(outside);
    QCOMPARE(f->takeOuter(), QPoint(outside.x() - start.x(), 0));
}

void ChartViewPicksTest::ctrlWithAnotherModifierIsAPlainGesture_data()
{
    QTest::addColumn<int>("held");
    QTest::newRow("ctrl shift") << int(Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("ctrl alt") << int(Qt::ControlModifier | Qt::AltModifier);
    QTest::newRow("ctrl meta") << int(Qt::ControlModifier | Qt::MetaModifier);
    QTest::newRow("shift") << int(Qt::ShiftModifier);
    QTest::newRow("nothing") << int(Qt::NoModifier);
}

void ChartViewPicksTest::ctrlWithAnotherModifierIsAPlainGesture()
{
    QFETCH(int, held);
    const HeldKeys keys(f->view.viewport(), Qt::KeyboardModifiers(held));
    QCOMPARE(int(QGuiApplication::keyboardModifiers()), held);
    f->press(f->inside());
    QCOMPARE(f->takeOuter(), QPoint(0, 0));
    QCOMPARE(f->view.rubberBand(), QChartView::NoRubberBand);
    f->drag(f->inside() + QPoint(5, 5));
    QCOMPARE(f->spy.count(), 1);
}

void ChartViewPicksTest::theKeyboardCountsAndNotTheEvent()
{
    f->send(QEvent::MouseButtonPress, f->inside(), Qt::LeftButton, Qt::LeftButton,
            Qt::ControlModifier);
    QCOMPARE(f->spy.count(), 1);
    f->send(QEvent::MouseMove, f->inside() + QPoint(1, 1), Qt::NoButton, Qt::LeftButton,
            Qt::ControlModifier);
    QCOMPARE(f->spy.count(), 2);
    QCOMPARE(f->view.rubberBand(), QChartView::NoRubberBand);
    const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
    f->press(f->inside());
    f->drag(f->inside());
    QCOMPARE(f->spy.count(), 2);
}

void ChartViewPicksTest::eventsGoOnToTheBaseClass()
{
    f->scene.spy = &f->spy;
    f->press(f->inside());
    QCOMPARE(f->scene.presses, 1);
    QCOMPARE(f->spy.count(), 1);
    f->drag(f->inside() + QPoint(3, 3));
    QCOMPARE(f->scene.moves, 1);
    QCOMPARE(f->scene.signalsBeforeMove, 1);
    QCOMPARE(f->spy.count(), 2);
    f->drag(f->inside() + QPoint(4, 4), Qt::NoButton);
    QCOMPARE(f->scene.moves, 2);
    f->release(f->inside());
    QCOMPARE(f->scene.releases, 1);
    f->press(QPoint(1, 1));
    f->send(QEvent::MouseButtonPress, QPoint(1, 1), Qt::LeftButton, Qt::NoButton);
    QCOMPARE(f->scene.presses, 3);
    const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
    f->press(f->inside(), Qt::RightButton);
    QCOMPARE(f->scene.presses, 4);
}

QTEST_MAIN(ChartViewPicksTest)
#include "tst_chart_view_picks.moc"
