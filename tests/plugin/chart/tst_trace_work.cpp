#include "HeadlessPlatform.h"
#include "PollRig.h"
#include "TraceSeries.h"

#include <QBuffer>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPdfWriter>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QWheelEvent>
#include <QtCharts/QLegend>

#include <cmath>
#include <utility>

// Work is counted and not timed: by what a reader of the trace is told of, and by the pixels that
// are drawn anew, which show in another colour when the pen changes behind the drawing's back.

namespace {

struct WorkRig : PollRig
{
    WorkRig()
    {
        makeWide();
        // Such a velocity never ends the move.
        setVelocities(5, 5);
        start();
    }
    /// A saw-tooth that goes on where it ended, of lines far longer than a pixel.
    void saw(int points)
    {
        for (; points > 0; --points, ++at)
            sample(-7000 + at * 13 % 14000, at % 2 ? 3000 : -3000);
    }
    void wheel(bool in)
    {
        const HeldKeys keys(tool(), Qt::ControlModifier);
        QWheelEvent turn(QPointF(300, 200), QPointF(300, 200), QPoint(), QPoint(0, in ? 120 : -120),
                         Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(tool(), &turn);
    }
    void mouse(QEvent::Type type, const QPoint &pixel)
    {
        QMouseEvent event(type, pixel, pixel, pixel,
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          QGuiApplication::keyboardModifiers());
        QCoreApplication::sendEvent(view()->viewport(), &event);
    }
    void band(const QRect &rect)
    {
        const HeldKeys keys(tool(), Qt::ControlModifier);
        mouse(QEvent::MouseButtonPress, rect.topLeft());
        mouse(QEvent::MouseMove, rect.bottomRight());
        mouse(QEvent::MouseButtonRelease, rect.bottomRight());
    }

    int at = 0;
};

/// A chart with a trace that is drawn by its own item.
struct DrawnTrace
{
    DrawnTrace()
    {
        trace->addTo(view.chart());
        for (auto side : {Qt::AlignBottom, Qt::AlignLeft}) {
            auto *axis = new QtCharts::QValueAxis;
            axis->setRange(0, 1000);
            view.chart()->addAxis(axis, side);
            axis->hide();
            trace->attachAxis(axis);
        }
        view.chart()->legend()->hide();
        view.resize(640, 480);
        view.chart()->setPlotArea(QRectF(20, 20, 500, 400));
        view.show();
        trace->setPen(QPen(QColor(Qt::blue), 2.0));
    }
    QImage picture(double ratio = 1)
    {
        QImage image(view.viewport()->size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        view.viewport()->render(&image);
        return image;
    }
    /// The pen from now on, without a redraw of what is drawn.
    void changePenUnnoticed()
    {
        const QSignalBlocker blocker(trace);
        trace->setPen(QPen(QColor(Qt::red), 2.0));
    }
    QRect pixels(const QPointF &a, const QPointF &b) const
    {
        const QPoint from = view.chart()->mapToPosition(a, trace).toPoint();
        const QPoint to = view.chart()->mapToPosition(b, trace).toPoint();
        return QRect(from, from).united(QRect(to, to)).adjusted(-4, -4, 4, 4);
    }

    QtCharts::QChartView view;
    TraceSeries *trace = new TraceSeries;
};

/// Where an image is red.
QRegion redPart(const QImage &image)
{
    QRegion red;
    for (int line = 0; line < image.height(); ++line) {
        for (int column = 0; column < image.width(); ++column) {
            const QColor colour = image.pixelColor(column, line);
            if (colour.red() > 200 && colour.green() < 60 && colour.blue() < 60)
                red += QRect(column, line, 1, 1);
        }
    }
    return red;
}

int area(const QRegion &region)
{
    int pixels = 0;
    for (const QRect &rect : region)
        pixels += rect.width() * rect.height();
    return pixels;
}

QRect scaled(const QRect &rect, double ratio)
{
    return QTransform::fromScale(ratio, ratio).mapRect(QRectF(rect)).toAlignedRect();
}

void addRatios()
{
    QTest::addColumn<double>("ratio");
    QTest::newRow("a pixel a unit") << 1.0;
    QTest::newRow("1.25 pixels a unit") << 1.25;
    QTest::newRow("1.5 pixels a unit") << 1.5;
    QTest::newRow("2 pixels a unit") << 2.0;
    QTest::newRow("2.75 pixels a unit") << 2.75;
}

/// What a tick takes away is painted behind what it adds.
void paintAll()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents();
}

/// Counts the pixels that a widget is asked to paint.
class PaintedArea : public QObject
{
public:
    explicit PaintedArea(QWidget *widget) { widget->installEventFilter(this); }
    int take() { return std::exchange(pixels, 0); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            pixels += area(static_cast<QPaintEvent *>(event)->region());
        return QObject::eventFilter(watched, event);
    }

private:
    int pixels = 0;
};

QVector<QPointF> zigzag(int first, int last)
{
    QVector<QPointF> points;
    for (int i = first; i < last; ++i)
        points << QPointF(10 * i, i % 2 ? 300 : 600);
    return points;
}

} // namespace

class TraceWorkTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void aTickChangesTheTraceOnce();
    void aTickThatAlsoTrimsAndMovesTheViewChangesTheTraceOnce();
    void aTickWithNothingNewChangesNothing();
    void aZoomChangesTheTraceOnce_data();
    void aZoomChangesTheTraceOnce();
    void aRectangleChangesTheTraceTwice();
    void aLimitChangesTheTraceOnce();
    void aPushedLimitChangesTheTraceOnce();
    void clearingChangesTheTraceOnce();
    void layoutChangesNothing();
    void onlyNewLinesAreDrawn_data();
    void onlyNewLinesAreDrawn();
    void nothingIsDrawnAnewWithoutAChange_data();
    void nothingIsDrawnAnewWithoutAChange();
    void onlyTheTrimmedPartIsDrawnAnew_data();
    void onlyTheTrimmedPartIsDrawnAnew();
    void aTrimOfMostDrawsEverythingAnew();
    void anotherRangeDrawsEverythingAnew();
    void foreignChangesDrawEverythingAnew();
    void aChangeInsideAnAnnouncementIsForeignToo();
    void aPrintHasLinesAndNoImage();
    void aTickPaintsOnlyWhatChanged();
    void aPickPaintsOnlyTheMarker();
};

void TraceWorkTest::aTickChangesTheTraceOnce()
{
    WorkRig rig;
    ChangeCount changes(rig.trace());
    for (int points : {1, 2, 50, 500}) {
        rig.saw(points);
        QCOMPARE(changes.take(), 0);
        const int before = rig.trace()->count();
        rig.updateTick();
        QCOMPARE(changes.take(), 1);
        QCOMPARE(rig.trace()->count(), before + points);
    }
}

void TraceWorkTest::aTickThatAlsoTrimsAndMovesTheViewChangesTheTraceOnce()
{
    WorkRig rig;
    rig.widget<QSpinBox>("spTraces")->setValue(100);
    rig.saw(200);
    rig.updateTick();
    QCOMPARE(rig.trace()->count(), 100);
    ChangeCount changes(rig.trace());
    rig.saw(30);
    rig.updateTick();
    QCOMPARE(rig.trace()->count(), 100);
    QCOMPARE(changes.take(), 1);
    rig.saw(30);
    rig.sample(20000, -20000);
    const QString limits = rig.limits();
    rig.updateTick();
    QVERIFY(rig.limits() != limits);
    QCOMPARE(rig.trace()->count(), 100);
    QCOMPARE(changes.take(), 1);
}

void TraceWorkTest::aTickWithNothingNewChangesNothing()
{
    WorkRig rig;
    rig.saw(50);
    rig.updateTick();
    ChangeCount changes(rig.trace());
    rig.updateTick();
    rig.sample(rig.link.position0, rig.link.position1);
    rig.updateTick();
    rig.widget<QSpinBox>("spTraces")->setValue(60);
    rig.updateTick();
    QCOMPARE(changes.take(), 0);
}

void TraceWorkTest::aZoomChangesTheTraceOnce_data()
{
    QTest::addColumn<bool>("in");
    QTest::addColumn<bool>("isWheel");
    QTest::addColumn<int>("x");
    QTest::newRow("in") << true << false << 0;
    QTest::newRow("out") << false << false << 0;
    QTest::newRow("in and to the actual position") << true << false << 6000;
    QTest::newRow("out and to the actual position") << false << false << -6000;
    QTest::newRow("wheel in") << true << true << 0;
    QTest::newRow("wheel out") << false << true << 0;
}

void TraceWorkTest::aZoomChangesTheTraceOnce()
{
    QFETCH(bool, in);
    QFETCH(bool, isWheel);
    QFETCH(int, x);
    WorkRig rig;
    rig.saw(300);
    rig.sample(x, x);
    rig.updateTick();
    ChangeCount changes(rig.trace());
    for (int step = 0; step < 3; ++step) {
        if (isWheel)
            rig.wheel(in);
        else
            rig.widget<QPushButton>(in ? "btnZoomIn" : "btnZoomOut")->click();
        QCOMPARE(changes.take(), 1);
    }
}

void TraceWorkTest::aRectangleChangesTheTraceTwice()
{
    WorkRig rig;
    rig.saw(300);
    rig.updateTick();
    ChangeCount changes(rig.trace());
    const QRect plot = rig.chart()->plotArea().toAlignedRect();
    const QString limits = rig.limits();
    rig.band(QRect(plot.center() - QPoint(100, 100), QSize(150, 120)));
    QVERIFY(rig.limits() != limits);
    // The newest point alone, and then the zoomed trace.
    QCOMPARE(changes.take(), 2);
}

void TraceWorkTest::aLimitChangesTheTraceOnce()
{
    WorkRig rig;
    rig.saw(300);
    rig.updateTick();
    ChangeCount changes(rig.trace());
    const QHash<const char *, int> outward{
        {"spM0min", -100}, {"spM0max", 100}, {"spM1min", -100}, {"spM1max", 100}};
    for (auto limit = outward.cbegin(); limit != outward.cend(); ++limit) {
        auto *box = rig.widget<QSpinBox>(limit.key());
        // On the grid and off it, where the limit snaps.
        for (int by : {512, limit.value()}) {
            box->setValue(box->value() + by);
            QCOMPARE(changes.take(), 1);
        }
        box->setValue(box->value());
        QCOMPARE(changes.take(), 0);
    }
}

void TraceWorkTest::aPushedLimitChangesTheTraceOnce()
{
    WorkRig rig;
    rig.saw(300);
    rig.updateTick();
    ChangeCount changes(rig.trace());
    QVERIFY(rig.setTarget(QPointF(100, 100), QPoint(3, 0)));
    QCOMPARE(changes.take(), 1);
    QVERIFY(rig.setTarget(QPointF(200, 100), QPoint(0, -3)));
    QCOMPARE(changes.take(), 1);
    QVERIFY(rig.setTarget(QPointF(300, 100), QPoint(0, 0)));
    QCOMPARE(changes.take(), 0);
}

void TraceWorkTest::clearingChangesTheTraceOnce()
{
    WorkRig rig;
    rig.saw(300);
    rig.updateTick();
    ChangeCount changes(rig.trace());
    QVERIFY(rig.call("on_btnClearTraces_clicked"));
    QCOMPARE(changes.take(), 1);
}

void TraceWorkTest::layoutChangesNothing()
{
    WorkRig rig;
    rig.saw(300);
    rig.updateTick();
    const QVector<QPointF> points = rig.trace()->pointsVector();
    ChangeCount changes(rig.trace());
    rig.tool()->resize(1000, 700);
    rig.tool()->hide();
    rig.tool()->show();
    rig.chart()->setPlotArea(QRectF(30, 30, 300, 200));
    QCoreApplication::sendPostedEvents(rig.chart());
    QCOMPARE(changes.take(), 0);
    QCOMPARE(rig.trace()->pointsVector(), points);
}

void TraceWorkTest::onlyNewLinesAreDrawn_data()
{
    addRatios();
}

void TraceWorkTest::onlyNewLinesAreDrawn()
{
    QFETCH(double, ratio);
    DrawnTrace drawn;
    drawn.trace->setPoints(zigzag(0, 50));
    drawn.picture(ratio);
    drawn.changePenUnnoticed();
    // However long the trace has become, each time as much is drawn as was appended.
    int least = 1000000;
    int most = 0;
    int before = 0;
    for (int first = 50; first < 90; first += 5) {
        const QVector<QPointF> points = zigzag(first, first + 5);
        const QPointF from = drawn.trace->at(drawn.trace->count() - 1);
        drawn.trace->appendPoints(points);
        const QRegion red = redPart(drawn.picture(ratio));
        const int added = area(red) - before;
        before = area(red);
        least = qMin(least, added);
        most = qMax(most, added);
        const QRect all = drawn.pixels({490, 300}, points.constLast())
                              .united(drawn.pixels(from, {points.constLast().x(), 600}));
        QVERIFY(QRegion(scaled(all, ratio)).contains(red.boundingRect()));
    }
    QVERIFY(least > 100);
    QVERIFY(most < least * 5 / 4);
}

void TraceWorkTest::nothingIsDrawnAnewWithoutAChange_data()
{
    addRatios();
}

void TraceWorkTest::nothingIsDrawnAnewWithoutAChange()
{
    QFETCH(double, ratio);
    DrawnTrace drawn;
    drawn.trace->setPoints(zigzag(0, 80));
    const QImage before = drawn.picture(ratio);
    drawn.changePenUnnoticed();
    QCOMPARE(drawn.picture(ratio), before);
    {
        const TraceRangeChange change(drawn.trace);
        const TraceChange other(drawn.trace);
    }
    QCOMPARE(drawn.picture(ratio), before);
}

void TraceWorkTest::onlyTheTrimmedPartIsDrawnAnew_data()
{
    addRatios();
}

void TraceWorkTest::onlyTheTrimmedPartIsDrawnAnew()
{
    QFETCH(double, ratio);
    DrawnTrace drawn;
    const QVector<QPointF> points = zigzag(0, 90);
    drawn.trace->setPoints(points);
    const QImage before = drawn.picture(ratio);
    drawn.changePenUnnoticed();
    drawn.trace->removeOldest(20);
    const QImage after = drawn.picture(ratio);
    // Up to the last trimmed line and the one that touches it.
    const QRegion red = redPart(after);
    const QRect trimmed = scaled(drawn.pixels(points.at(0), {points.at(20).x(), 600}), ratio);
    QVERIFY(!red.isEmpty());
    QVERIFY(QRegion(trimmed).contains(red.boundingRect()));
    const QRect rest(trimmed.right() + 1, 0, before.width() - trimmed.right() - 1, before.height());
    QCOMPARE(after.copy(rest), before.copy(rest));
    QVERIFY(after != before);
}

void TraceWorkTest::aTrimOfMostDrawsEverythingAnew()
{
    DrawnTrace drawn;
    drawn.trace->setPoints(zigzag(0, 90));
    drawn.picture();
    drawn.changePenUnnoticed();
    drawn.trace->removeOldest(60);
    DrawnTrace fresh;
    fresh.trace->setPoints(zigzag(60, 90));
    fresh.trace->setPen(drawn.trace->pen());
    QCOMPARE(drawn.picture(), fresh.picture());
}

void TraceWorkTest::anotherRangeDrawsEverythingAnew()
{
    DrawnTrace drawn;
    drawn.trace->setPoints(zigzag(0, 80));
    drawn.picture();
    drawn.changePenUnnoticed();
    drawn.view.chart()->axes(Qt::Horizontal).constFirst()->setRange(0, 1010);
    QVERIFY(area(redPart(drawn.picture())) > 5000);
}

void TraceWorkTest::foreignChangesDrawEverythingAnew()
{
    const std::function<void(TraceSeries *)> changes[] = {
        [](TraceSeries *trace) { trace->append(5, 5); },
        [](TraceSeries *trace) { trace->remove(3); },
        [](TraceSeries *trace) { trace->removePoints(3, 2); },
        [](TraceSeries *trace) { trace->replace(3, QPointF(30, 500)); },
        [](TraceSeries *trace) { trace->replace(zigzag(0, 80)); }};
    for (const auto &change : changes) {
        DrawnTrace drawn;
        drawn.trace->setPoints(zigzag(0, 80));
        drawn.picture();
        drawn.changePenUnnoticed();
        change(drawn.trace);
        QVERIFY(area(redPart(drawn.picture())) > 5000);
    }
}

void TraceWorkTest::aChangeInsideAnAnnouncementIsForeignToo()
{
    DrawnTrace drawn;
    drawn.trace->setPoints(zigzag(0, 40));
    drawn.picture();
    bool isFirst = true;
    connect(drawn.trace, &QtCharts::QXYSeries::pointsReplaced, this, [&] {
        if (std::exchange(isFirst, false))
            drawn.trace->replace(0, QPointF(500, 900));
    });
    drawn.trace->appendPoints(zigzag(40, 45));
    DrawnTrace fresh;
    fresh.trace->setPoints(drawn.trace->pointsVector());
    QCOMPARE(drawn.picture(), fresh.picture());
}

void TraceWorkTest::aPrintHasLinesAndNoImage()
{
    DrawnTrace drawn;
    drawn.trace->setPoints(zigzag(0, 80));
    QBuffer file;
    QVERIFY(file.open(QIODevice::WriteOnly));
    {
        QPdfWriter writer(&file);
        QPainter painter(&writer);
        drawn.view.viewport()->render(&painter);
    }
    QVERIFY(file.data().startsWith("%PDF"));
    QVERIFY(!file.data().contains("/Subtype /Image"));
    // That of a picture of pixels has one.
    QBuffer other;
    QVERIFY(other.open(QIODevice::WriteOnly));
    {
        QPdfWriter writer(&other);
        QPainter painter(&writer);
        painter.drawImage(0, 0, drawn.picture());
    }
    QVERIFY(other.data().contains("/Subtype /Image"));
}

void TraceWorkTest::aTickPaintsOnlyWhatChanged()
{
    WorkRig rig;
    rig.widget<QSpinBox>("spTraces")->setValue(400);
    // A long way round, so that the oldest and the newest points are far from each other.
    double angle = 0;
    const auto drive = [&](int points) {
        for (; points > 0; --points, angle += 0.01)
            rig.sample(qRound(6000 * std::cos(angle)), qRound(6000 * std::sin(angle)));
        rig.updateTick();
    };
    drive(500);
    paintAll();
    PaintedArea painted(rig.view()->viewport());
    for (int tick = 0; tick < 10; ++tick) {
        drive(20);
        paintAll();
        QVERIFY(painted.take() < area(rig.chart()->plotArea().toAlignedRect()) / 8);
    }
}

void TraceWorkTest::aPickPaintsOnlyTheMarker()
{
    WorkRig rig;
    rig.saw(300);
    rig.updateTick();
    QCoreApplication::sendPostedEvents();
    PaintedArea painted(rig.view()->viewport());
    for (int x : {-3000, 100, 5000}) {
        QVERIFY(rig.setTarget(QPointF(x, 700), QPoint()));
        QCoreApplication::sendPostedEvents();
        const int pixels = painted.take();
        QVERIFY(pixels > 0);
        QVERIFY(pixels < 3 * 40 * 40);
    }
}

QTEST_MAIN(TraceWorkTest)
#include "tst_trace_work.moc"
