#include "ChartView.h"

#include "HeadlessPlatform.h"
#include "ToolBench.h"

#include <QMetaMethod>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>

using QtCharts::QChartView;

namespace {

QPoint nearest(const QPointF &point)
{
    return {static_cast<int>(std::floor(point.x() + 0.5)),
            static_cast<int>(std::floor(point.y() + 0.5))};
}

/// Counts the mouse events that the view hands on to its scene.
class SceneEvents : public QObject
{
public:
    int presses = 0;
    int moves = 0;
    int releases = 0;
    /// The signals seen by `spy` when the last move reached the scene.
    const QSignalSpy *spy = nullptr;
    int signalsBeforeMove = -1;

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::GraphicsSceneMousePress)
            ++presses;
        if (event->type() == QEvent::GraphicsSceneMouseRelease)
            ++releases;
        if (event->type() == QEvent::GraphicsSceneMouseMove) {
            ++moves;
            signalsBeforeMove = spy ? spy->count() : -1;
        }
        return false;
    }
};

/// A view on a chart of two scatter series and a line, at a scale of some units per pixel.
struct Fixture
{
    Fixture()
        : view(new QtCharts::QChart, nullptr)
        , spy(&view, &ChartView::position)
    {
        auto *x = new QtCharts::QValueAxis;
        auto *y = new QtCharts::QValueAxis;
        x->setRange(-3000, 5000);
        y->setRange(-2000, 1000);
        chart()->addAxis(x, Qt::AlignBottom);
        chart()->addAxis(y, Qt::AlignLeft);
        addSeries(new QtCharts::QScatterSeries, x, y);
        addSeries(line, x, y);
        for (int i = 0; i < 5; ++i)
            line->append(100 * i, 10 * i);
        view.resize(600, 450);
        view.show();
        isShown = QTest::qWaitForWindowExposed(&view);
        view.scene()->installEventFilter(&scene);
    }

    QtCharts::QChart *chart() const { return view.chart(); }
    QRectF plot() const { return chart()->plotArea(); }
    QPoint inside() const { return nearest(plot().center()); }
    QPoint pickedAt(const QPointF &pixel) const { return nearest(chart()->mapToValue(pixel)); }

    void addSeries(QtCharts::QAbstractSeries *series, QtCharts::QAbstractAxis *x,
                   QtCharts::QAbstractAxis *y)
    {
        chart()->addSeries(series);
        series->attachAxis(x);
        series->attachAxis(y);
    }

    void send(QEvent::Type type, const QPointF &at, Qt::MouseButton button, Qt::MouseButtons held,
              Qt::KeyboardModifiers inEvent = Qt::NoModifier)
    {
        QMouseEvent event(type, at, button, held, inEvent);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }
    void press(const QPointF &at, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, at, button, button);
    }
    void drag(const QPointF &to, Qt::MouseButtons held = Qt::LeftButton)
    {
        send(QEvent::MouseMove, to, Qt::NoButton, held);
    }
    void release(const QPointF &at, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, at, button, Qt::NoButton);
    }

    /// The arguments of the one signal since the last time.
    QPoint takeValue() { return spy.count() == 1 ? spy.at(0).at(0).toPoint() : QPoint(-1, -1); }
    QPoint takeOuter()
    {
        return spy.count() == 1 ? spy.takeFirst().at(1).toPoint() : QPoint(-99, -99);
    }

    ChartView view;
    QSignalSpy spy;
    SceneEvents scene;
    QtCharts::QLineSeries *line = new QtCharts::QLineSeries;
    bool isShown = false;
};

} // namespace

class ChartViewTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void init();
    void cleanup();
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
    void theRubberBandStaysUntilAPlainPress();
    void hoveringDoesNothing();
    void aCtrlDragPicksNothing();
    void aDragIsPinnedToTheInset_data();
    void aDragIsPinnedToTheInset();
    void aDragReportsOnlyAnOutwardPush_data();
    void aDragReportsOnlyAnOutwardPush();
    void eachMoveOfADragIsMeasuredFromTheOneBefore();
    void aTinyPlotPinsToItsLeftAndTopInset();
    void aPlotOfHardlyAnySizeIsSurvived();
    void eventsGoOnToTheBaseClass();
    void aRubberBandReleaseLeavesTheNewestTracePoint_data();
    void aRubberBandReleaseLeavesTheNewestTracePoint();
    void aPlainReleaseLeavesTheTrace();
    void onlyALineAtTheEndOfTheSeriesIsCutShort();
    void aRubberBandZoomsInAndARightReleaseZoomsOut();
    void settingThePressPositionIsNoGesture();

private:
    std::unique_ptr<Fixture> f;
};

void ChartViewTest::init()
{
    f = std::make_unique<Fixture>();
    QVERIFY(f->isShown);
    QVERIFY(f->plot().width() > 200 && f->plot().height() > 200);
}

void ChartViewTest::cleanup()
{
    f.reset();
    QCOMPARE(int(QGuiApplication::keyboardModifiers()), int(Qt::NoModifier));
}

void ChartViewTest::hasOneSignalAndNothingElseOfItsOwn()
{
    const QMetaObject *meta = f->view.metaObject();
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 1);
    QCOMPARE(meta->propertyCount(), meta->superClass()->propertyCount());
    const QMetaMethod signal = meta->method(meta->methodOffset());
    QCOMPARE(signal.methodSignature(), QByteArray("position(QPoint,QPoint)"));
    QCOMPARE(signal.parameterNames(), QList<QByteArray>({QByteArray(), QByteArray("outer")}));
    QCOMPARE(f->view.rubberBand(), QChartView::NoRubberBand);
}

void ChartViewTest::anyButtonPicksThePositionUnderIt_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("right") << int(Qt::RightButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
    QTest::newRow("back") << int(Qt::BackButton);
}

void ChartViewTest::anyButtonPicksThePositionUnderIt()
{
    QFETCH(int, button);
    const QPoint at = f->inside() + QPoint(37, -21);
    QTest::mousePress(f->view.viewport(), Qt::MouseButton(button), Qt::NoModifier, at);
    QCOMPARE(f->takeValue(), f->pickedAt(at));
    QCOMPARE(f->takeOuter(), QPoint(0, 0));
    QTest::mouseRelease(f->view.viewport(), Qt::MouseButton(button), Qt::NoModifier, at);
    QVERIFY(f->spy.isEmpty());
}

void ChartViewTest::aPressBetweenPixelsIsRoundedHalvesUpward()
{
    const QPoint at = f->inside();
    f->press(QPointF(at) + QPointF(0.5, -0.5));
    QCOMPARE(f->takeValue(), f->pickedAt(at + QPoint(1, 0)));
    f->spy.clear();
    f->press(QPointF(at) + QPointF(0.4, -0.6));
    QCOMPARE(f->takeValue(), f->pickedAt(at + QPoint(0, -1)));
}

void ChartViewTest::picksRoundHalvesUpward_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("picked");
    QTest::newRow("2.5") << 2.5 << 3;
    QTest::newRow("-2.5") << -2.5 << -2;
    QTest::newRow("-2.75") << -2.75 << -3;
    QTest::newRow("2.25") << 2.25 << 2;
    QTest::newRow("-0.5") << -0.5 << 0;
}

void ChartViewTest::picksRoundHalvesUpward()
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

void ChartViewTest::aPressOutsideThePlotPicksNothingButIsWhereADragStarts()
{
    const int right = static_cast<int>(f->plot().right());
    const QPoint outside(right + 12, f->inside().y());
    f->press(outside);
    QVERIFY(f->spy.isEmpty());
    f->drag(outside + QPoint(3, 0));
    QCOMPARE(f->takeOuter(), QPoint(3, 0));
}

void ChartViewTest::aPressEventWithoutButtonsPicksNothingButIsWhereADragStarts()
{
    f->send(QEvent::MouseButtonPress, f->inside(), Qt::LeftButton, Qt::NoButton);
    QVERIFY(f->spy.isEmpty());
    const QPoint outside(static_cast<int>(f->plot().right()) + 12, f->inside().y());
    f->drag(outside);
    QCOMPARE(f->takeOuter(), QPoint(outside.x() - f->inside().x(), 0));
}

void ChartViewTest::aCtrlPressNeitherPicksNorMovesTheStartOfADrag()
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

void ChartViewTest::ctrlWithAnotherModifierIsAPlainGesture_data()
{
    QTest::addColumn<int>("held");
    QTest::newRow("ctrl shift") << int(Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("ctrl alt") << int(Qt::ControlModifier | Qt::AltModifier);
    QTest::newRow("ctrl meta") << int(Qt::ControlModifier | Qt::MetaModifier);
    QTest::newRow("shift") << int(Qt::ShiftModifier);
    QTest::newRow("nothing") << int(Qt::NoModifier);
}

void ChartViewTest::ctrlWithAnotherModifierIsAPlainGesture()
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

void ChartViewTest::theKeyboardCountsAndNotTheEvent()
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

void ChartViewTest::theRubberBandStaysUntilAPlainPress()
{
    const QPoint at = f->inside();
    {
        const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
        f->press(at);
        QCOMPARE(f->view.rubberBand(), QChartView::RectangleRubberBand);
    }
    f->release(at);
    f->drag(at, Qt::NoButton);
    QCOMPARE(f->view.rubberBand(), QChartView::RectangleRubberBand);
    f->press(at);
    QCOMPARE(f->view.rubberBand(), QChartView::NoRubberBand);
}

void ChartViewTest::hoveringDoesNothing()
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

void ChartViewTest::aCtrlDragPicksNothing()
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

void ChartViewTest::aDragIsPinnedToTheInset_data()
{
    QTest::addColumn<QPoint>("fromCentre");
    QTest::newRow("inside") << QPoint(30, 20);
    QTest::newRow("right") << QPoint(900, 0);
    QTest::newRow("left") << QPoint(-900, 0);
    QTest::newRow("above") << QPoint(0, -900);
    QTest::newRow("below") << QPoint(0, 900);
    QTest::newRow("corner") << QPoint(-900, 900);
}

void ChartViewTest::aDragIsPinnedToTheInset()
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

void ChartViewTest::aDragReportsOnlyAnOutwardPush_data()
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

void ChartViewTest::aDragReportsOnlyAnOutwardPush()
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

void ChartViewTest::eachMoveOfADragIsMeasuredFromTheOneBefore()
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

void ChartViewTest::aTinyPlotPinsToItsLeftAndTopInset()
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

void ChartViewTest::aPlotOfHardlyAnySizeIsSurvived()
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

void ChartViewTest::eventsGoOnToTheBaseClass()
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

void ChartViewTest::aRubberBandReleaseLeavesTheNewestTracePoint_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<bool>("isCtrlHeldAtRelease");
    QTest::newRow("five points, Ctrl held") << 5 << true;
    QTest::newRow("five points, Ctrl let go") << 5 << false;
    QTest::newRow("one point") << 1 << false;
    QTest::newRow("no point") << 0 << false;
}

void ChartViewTest::aRubberBandReleaseLeavesTheNewestTracePoint()
{
    QFETCH(int, points);
    QFETCH(bool, isCtrlHeldAtRelease);
    f->line->removePoints(0, 5 - points);
    auto ctrl = std::make_unique<HeldKeys>(f->view.viewport(), Qt::ControlModifier);
    f->press(f->inside());
    if (!isCtrlHeldAtRelease)
        ctrl.reset();
    QCOMPARE(f->line->count(), points);
    f->release(f->inside());
    if (points == 0)
        QCOMPARE(f->line->count(), 0);
    else
        QCOMPARE(f->line->pointsVector(), QVector<QPointF>{QPointF(400, 40)});
}

void ChartViewTest::aPlainReleaseLeavesTheTrace()
{
    f->press(f->inside());
    const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
    f->release(f->inside());
    QCOMPARE(f->line->count(), 5);
}

void ChartViewTest::onlyALineAtTheEndOfTheSeriesIsCutShort()
{
    auto *scatter = new QtCharts::QScatterSeries;
    f->chart()->addSeries(scatter);
    scatter->append(1, 1);
    scatter->append(2, 2);
    {
        const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
        f->press(f->inside());
        f->release(f->inside());
        QCOMPARE(scatter->count(), 2);
        QCOMPARE(f->line->count(), 5);
    }
    f->chart()->removeAllSeries();
    const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
    f->press(f->inside());
    f->release(f->inside());
    QVERIFY(f->chart()->series().isEmpty());
}

void ChartViewTest::aRubberBandZoomsInAndARightReleaseZoomsOut()
{
    auto *x = qobject_cast<QtCharts::QValueAxis *>(f->chart()->axes(Qt::Horizontal).at(0));
    const QPoint from = f->inside() - QPoint(50, 50);
    const QPoint to = f->inside() + QPoint(50, 50);
    const double low = f->chart()->mapToValue(from).x();
    const double high = f->chart()->mapToValue(to).x();
    const double perPixel = (high - low) / 100;
    const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
    f->press(from);
    f->drag(to);
    f->release(to);
    QVERIFY2(qAbs(x->min() - low) <= 2 * perPixel, qPrintable(QString::number(x->min())));
    QVERIFY2(qAbs(x->max() - high) <= 2 * perPixel, qPrintable(QString::number(x->max())));
    const double span = x->max() - x->min();
    f->press(to, Qt::RightButton);
    f->release(to, Qt::RightButton);
    QVERIFY(qAbs(x->max() - x->min() - 2 * span) < span / 100);
}

void ChartViewTest::settingThePressPositionIsNoGesture()
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

QTEST_MAIN(ChartViewTest)
#include "tst_chart_view.moc"
